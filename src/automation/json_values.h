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
#include <nlohmann/json.hpp>
#include <string>

#include "automation/invocation.h"
#include "platform/object.h"
#include "platform/variant.h"

namespace zarvik::automation {

using Json = nlohmann::ordered_json;

// The objects a host session knows, by id (ids start at 1, never reused).
class ObjectTable {
 public:
  // The id of an object, registering it when new.
  int64_t Register(const ObjectRef& object);
  // The object with this id; unknown id: VbError 424 ("Object required").
  ObjectRef Get(int64_t id) const;
  bool Has(int64_t id) const { return objects_.count(id) != 0; }
  // Releases the id; false when unknown.
  bool Drop(int64_t id);
  size_t Size() const { return objects_.size(); }

 private:
  std::map<int64_t, ObjectRef> objects_;
  int64_t next_id_ = 1;
};

// A JSON value as an argument (it may be the missing marker). Values that
// cannot be represented raise VbError 13.
Argument ArgumentFromJson(const Json& json, ObjectTable& objects);
// A JSON value as a Variant; the missing marker is not allowed here (13).
Variant VariantFromJson(const Json& json, ObjectTable& objects);
// A Variant as JSON; objects are registered in `objects`.
Json JsonFromVariant(const Variant& value, ObjectTable& objects);
Json JsonFromArgument(const Argument& argument, ObjectTable& objects);

// "YYYY-MM-DD HH:MM:SS" of an OLE automation date, and back (13 when the
// text is not of this form; "YYYY-MM-DD" alone is accepted too).
std::string DateText(double oa_date);
double DateFromText(const std::string& text);

}  // namespace zarvik::automation

#endif  // ZARVIK_AUTOMATION_JSON_VALUES_H_
