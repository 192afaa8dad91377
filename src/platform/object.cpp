#include "platform/object.h"

#include <unordered_set>

#include "platform/variant.h"
#include "platform/vb_error.h"

namespace zarvik {

// An object knows none of the members by default; concrete classes override
// the ones they expose and leave the rest to these, as late binding in VB
// reports a member the object lacks.
Variant Object::GetProperty(const std::string& /*name*/) { throw VbError(vberr::kNotSupported); }

void Object::PutProperty(const std::string& /*name*/, const Variant& /*value*/) {
  throw VbError(vberr::kNotSupported);
}

Variant Object::CallMethod(const std::string& /*name*/, std::vector<Variant>& /*args*/) {
  throw VbError(vberr::kNotSupported);
}

void Object::ForEachReference(const std::function<void(const ObjectRef&)>& /*visit*/) const {}

void Object::ReleaseReferences() {}

void ForEachObjectIn(const Variant& value, const std::function<void(const ObjectRef&)>& visit) {
  if (value.Type() == VarType::kObject) {
    if (ObjectRef object = value.ToObject()) visit(object);
    return;
  }
  if (value.Type() != VarType::kArray) return;
  // Arrays inside arrays without recursion, each array once.
  std::vector<std::shared_ptr<VariantArray>> pending = {value.ToArray()};
  std::unordered_set<const VariantArray*> seen;
  while (!pending.empty()) {
    const std::shared_ptr<VariantArray> array = std::move(pending.back());
    pending.pop_back();
    if (!array || !seen.insert(array.get()).second) continue;
    for (int32_t i = array->LBound(1); i <= array->UBound(1); ++i) {
      for (int32_t j = array->LBound(2); j <= array->UBound(2); ++j) {
        const Variant& item = array->At(i, j);
        if (item.Type() == VarType::kArray) {
          pending.push_back(item.ToArray());
        } else if (item.Type() == VarType::kObject && item.ToObject()) {
          visit(item.ToObject());
        }
      }
    }
  }
}

}  // namespace zarvik
