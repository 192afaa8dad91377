#include "automation/automation_object.h"

#include "automation/dispatcher.h"
#include "platform/vb_error.h"

namespace zarvik::automation {

AutomationObject::AutomationObject(std::shared_ptr<const ClassDescription> cls,
                                   std::shared_ptr<void> instance)
    : cls_(std::move(cls)), instance_(std::move(instance)) {}

Variant AutomationObject::Get(const std::string& name, std::vector<Argument>& args) {
  return InvokeGet(*cls_, instance_.get(), name, args);
}

void AutomationObject::Put(const std::string& name, const Variant& value) {
  InvokePut(*cls_, instance_.get(), name, value);
}

Variant AutomationObject::Call(const std::string& name, std::vector<Argument>& args) {
  return InvokeMethod(*cls_, instance_.get(), name, args);
}

Variant AutomationObject::GetProperty(const std::string& name) {
  std::vector<Argument> args;
  return Get(name, args);
}

void AutomationObject::PutProperty(const std::string& name, const Variant& value) {
  Put(name, value);
}

Variant AutomationObject::CallMethod(const std::string& name, std::vector<Variant>& args) {
  std::vector<Argument> arguments;
  arguments.reserve(args.size());
  for (const Variant& v : args) arguments.push_back(Argument{v, false});
  Variant result = Call(name, arguments);
  for (size_t i = 0; i < args.size(); ++i) args[i] = arguments[i].value;
  return result;
}

void AutomationObject::ForEachReference(const std::function<void(const ObjectRef&)>& visit) const {
  if (cls_->for_each_reference) cls_->for_each_reference(instance_.get(), visit);
}

void AutomationObject::ReleaseReferences() {
  if (cls_->release_references) cls_->release_references(instance_.get());
}

std::shared_ptr<AutomationObject> CreateObject(const TypeLibrary& library,
                                               const std::string& class_name,
                                               const CreationContext& context) {
  std::shared_ptr<const ClassDescription> cls = library.FindClass(class_name);
  if (!cls || !cls->create) throw VbError(kCannotCreateObject);
  return std::make_shared<AutomationObject>(cls, cls->create(context));
}

}  // namespace zarvik::automation
