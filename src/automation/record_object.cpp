#include "automation/record_object.h"

#include "platform/vb_error.h"
#include "platform/vb_string.h"

namespace zarvik::automation {

Variant RecordObject::GetProperty(const std::string& name) {
  for (const auto& field : fields_) {
    if (vb::UCase(field.first) == vb::UCase(name)) return field.second;
  }
  throw VbError(vberr::kNotSupported);
}

void RecordObject::PutProperty(const std::string& name, const Variant& value) {
  for (auto& field : fields_) {
    if (vb::UCase(field.first) == vb::UCase(name)) {
      field.second = value;
      return;
    }
  }
  throw VbError(vberr::kNotSupported);
}

Variant MakeRecord(std::string type_name, std::vector<std::pair<std::string, Variant>> fields) {
  return Variant(
      ObjectRef(std::make_shared<RecordObject>(std::move(type_name), std::move(fields))));
}

}  // namespace zarvik::automation
