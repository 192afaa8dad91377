// The host application's object model as the component sees it: a
// late-bound object whose members are reached by name.
//
// A HostObject holds named Variant members; a member may itself be an object
// (a nested HostObject, a db::Connection, ...). Tests build the host's
// application object from these, and the `zarvik host` protocol builds one
// from every JSON object it receives. Member names compare without regard to
// case, as automation names do.
#ifndef ZARVIK_FRAME_HOST_OBJECT_H_
#define ZARVIK_FRAME_HOST_OBJECT_H_

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "platform/object.h"
#include "platform/variant.h"

namespace zarvik {

class HostObject : public Object {
 public:
  explicit HostObject(std::string type_name = "HostObject");

  // Adds a member or replaces the value of one with the same name; returns
  // *this so that members can be chained.
  HostObject& Set(const std::string& name, const Variant& value);
  bool Has(const std::string& name) const;
  // Removes a member (nothing happens when there is none).
  void Remove(const std::string& name);
  // Member names in the order they were added.
  std::vector<std::string> MemberNames() const;

  std::string TypeName() const override { return type_name_; }
  // The member's value; a missing member raises 438.
  Variant GetProperty(const std::string& name) override;
  // Let or Set: creates the member when it does not exist yet.
  void PutProperty(const std::string& name, const Variant& value) override;
  // Called without arguments a member answers its value (a late-bound call
  // of a property); with arguments, or when missing, 438.
  Variant CallMethod(const std::string& name, std::vector<Variant>& args) override;

  // The objects among the members; releasing drops every member.
  void ForEachReference(const std::function<void(const ObjectRef&)>& visit) const override;
  void ReleaseReferences() override;

 private:
  // The member's position in members_, or nullptr.
  const size_t* Find(const std::string& name) const;

  std::string type_name_;
  std::vector<std::pair<std::string, Variant>> members_;  // in the order added
  // Upper-cased name -> position in members_: a lookup costs the same with
  // ten members or sixty thousand.
  std::unordered_map<std::string, size_t> index_;
};

// Convenience for building host objects in code.
std::shared_ptr<HostObject> MakeHostObject(
    std::vector<std::pair<std::string, Variant>> members = {});

}  // namespace zarvik

#endif  // ZARVIK_FRAME_HOST_OBJECT_H_
