// An instance of a described class seen as a late-bound Object: every
// property and method goes through the dispatcher. The instance's
// termination runs when the last reference to it goes away.
#ifndef ZARVIK_AUTOMATION_AUTOMATION_OBJECT_H_
#define ZARVIK_AUTOMATION_AUTOMATION_OBJECT_H_

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "automation/invocation.h"
#include "automation/type_library.h"
#include "platform/object.h"
#include "platform/variant.h"

namespace zarvik::automation {

class AutomationObject : public Object {
 public:
  AutomationObject(std::shared_ptr<const ClassDescription> cls, std::shared_ptr<void> instance);

  const ClassDescription& Description() const { return *cls_; }
  void* Instance() const { return instance_.get(); }

  // The dispatcher's entry points with omitted-argument markers.
  Variant Get(const std::string& name, std::vector<Argument>& args);
  void Put(const std::string& name, const Variant& value);
  Variant Call(const std::string& name, std::vector<Argument>& args);

  std::string TypeName() const override { return cls_->name; }
  Variant GetProperty(const std::string& name) override;
  void PutProperty(const std::string& name, const Variant& value) override;
  Variant CallMethod(const std::string& name, std::vector<Variant>& args) override;
  // Through the class's hooks; nothing for a class without them.
  void ForEachReference(const std::function<void(const ObjectRef&)>& visit) const override;
  void ReleaseReferences() override;

 private:
  std::shared_ptr<const ClassDescription> cls_;
  std::shared_ptr<void> instance_;
};

// A new instance of the named class of the library; unknown class: error
// 429 ("ActiveX component can't create object").
std::shared_ptr<AutomationObject> CreateObject(const TypeLibrary& library,
                                               const std::string& class_name,
                                               const CreationContext& context);

}  // namespace zarvik::automation

#endif  // ZARVIK_AUTOMATION_AUTOMATION_OBJECT_H_
