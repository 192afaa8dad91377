// Variants in the JSON of the `zarvik host` protocol, both directions:
//   JSON string -> String; integer -> Long (Double beyond 32 bits);
//   number with a fraction -> Double; true/false -> Boolean; null -> Null;
//   {"$":"empty"} -> Empty; {"$":"nothing"} -> Nothing;
//   {"$":"missing"} -> an omitted optional argument;
//   {"$":"object","id":N} -> the registered object N;
//   {"$":"date","value":"YYYY-MM-DD HH:MM:SS"} -> Date;
//   any other JSON object (no "$" key) -> a new HostObject with those members.
// Results: Empty -> {"$":"empty"}, Nothing -> {"$":"nothing"}, Date -> the
// date form, a record -> {"$":"record","type":T,"fields":{...}}, a recordset
// -> {"$":"recordset","columns":[...],"rows":[[...]]} (rows from its current
// position), an array -> {"$":"array","lbounds":[...],"items":[[...]]}, any
// other object -> registered and given as {"$":"object","id":N}.
#ifndef ZARVIK_AUTOMATION_JSON_VALUES_H_
#define ZARVIK_AUTOMATION_JSON_VALUES_H_

#include <cstdint>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <unordered_map>
#include <vector>

#include "automation/invocation.h"
#include "platform/object.h"
#include "platform/variant.h"

namespace zarvik::automation {

// Answers keep their members in the order written.
using Json = nlohmann::ordered_json;
// Requests are read into objects whose members are found through a sorted
// map: an ordered object searches its members one by one, which makes an
// object of tens of thousands of members take seconds to read. The members
// of a HostObject made from a request therefore come in name order.
using RequestJson = nlohmann::json;

// The objects a host session knows, by id (ids start at 1, never reused).
//
// Objects may hold each other in cycles (a host object that is its own
// member, a parser bound to a host object that holds the parser). The table
// frees such a cycle once no registered object reaches it any more: it
// sweeps when the ids dropped since the last sweep reach an eighth of the
// objects it watches (at once in a small session), and at its end. Letting
// go of an object never recurses through what it holds, so a chain of any
// length is freed.
class ObjectTable {
 public:
  ObjectTable() = default;
  // Releases every object, cycles included.
  ~ObjectTable();
  ObjectTable(const ObjectTable&) = delete;
  ObjectTable& operator=(const ObjectTable&) = delete;

  // The id of an object, registering it when new.
  int64_t Register(const ObjectRef& object);
  // The object with this id; unknown id: VbError 424 ("Object required").
  ObjectRef Get(int64_t id) const;
  bool Has(int64_t id) const { return objects_.count(id) != 0; }
  // Releases the id; false when unknown.
  bool Drop(int64_t id);
  size_t Size() const { return objects_.size(); }

 private:
  // Breaks the references of every dropped object that no registered
  // object reaches any more.
  void Sweep();

  std::map<int64_t, ObjectRef> objects_;
  std::unordered_map<const Object*, int64_t> ids_;
  // Objects whose id was dropped while something else still held them:
  // every cycle nothing reaches holds one of them, since a cycle can only
  // be closed through an object that had an id.
  std::vector<std::weak_ptr<Object>> dropped_;
  size_t drops_since_sweep_ = 0;
  int64_t next_id_ = 1;
};

// A JSON value as an argument (it may be the missing marker). Values that
// cannot be represented raise VbError 13.
Argument ArgumentFromJson(const RequestJson& json, ObjectTable& objects);
// A JSON value as a Variant; the missing marker is not allowed here (13).
Variant VariantFromJson(const RequestJson& json, ObjectTable& objects);
// A Variant as JSON; objects are registered in `objects`.
Json JsonFromVariant(const Variant& value, ObjectTable& objects);
Json JsonFromArgument(const Argument& argument, ObjectTable& objects);

// The compact text of an answer, exactly as Json::dump(-1, ' ', false,
// error_handler_t::replace) writes it, but without that writer's per-byte
// UTF-8 check for the plain ASCII strings that make up nearly every answer.
std::string AnswerText(const Json& answer);

// "YYYY-MM-DD HH:MM:SS" of an OLE automation date, and back (13 when the
// text is not of this form; "YYYY-MM-DD" alone is accepted too).
std::string DateText(double oa_date);
double DateFromText(const std::string& text);

}  // namespace zarvik::automation

#endif  // ZARVIK_AUTOMATION_JSON_VALUES_H_
