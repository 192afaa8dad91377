#include "automation/type_library.h"

#include "platform/vb_string.h"

namespace zarvik::automation {

ParamDescription ParamDescription::Optional() const {
  ParamDescription p = *this;
  p.optional = true;
  p.default_value.reset();
  return p;
}

ParamDescription ParamDescription::Optional(const Variant& value) const {
  ParamDescription p = *this;
  p.optional = true;
  p.default_value = value;
  return p;
}

ParamDescription In(std::string name, TypeRef type) {
  ParamDescription p;
  p.name = std::move(name);
  p.type = std::move(type);
  return p;
}

ParamDescription ByRef(std::string name, TypeRef type) {
  ParamDescription p = In(std::move(name), std::move(type));
  p.by_ref = true;
  return p;
}

const MemberDescription* ClassDescription::Find(const std::string& member_name,
                                                MemberKind kind) const {
  for (const MemberDescription& m : members) {
    if (m.kind == kind && vb::SameText(m.name, member_name)) return &m;
  }
  return nullptr;
}

bool ClassDescription::HasMember(const std::string& member_name) const {
  for (const MemberDescription& m : members) {
    if (vb::SameText(m.name, member_name)) return true;
  }
  return false;
}

std::shared_ptr<const ClassDescription> TypeLibrary::FindClass(
    const std::string& class_name) const {
  for (const auto& c : classes) {
    if (vb::SameText(c->name, class_name)) return c;
  }
  return nullptr;
}

const RecordDescription* TypeLibrary::FindRecord(const std::string& record_name) const {
  for (const RecordDescription& r : records) {
    if (vb::SameText(r.name, record_name)) return &r;
  }
  return nullptr;
}

const EnumDescription* TypeLibrary::FindEnum(const std::string& enum_name) const {
  for (const EnumDescription& e : enums) {
    if (vb::SameText(e.name, enum_name)) return &e;
  }
  return nullptr;
}

TypeLibrary BuildTypeLibrary() {
  TypeLibrary library;
  library.name = "ZARVIK";
  library.help = "Norvello BO Revoke";
  DescribeParser(library);
  DescribeFiltroQuery(library);
  DescribeRvkUsers(library);
  return library;
}

std::string TypeName(const TypeRef& type) {
  switch (type.base) {
    case BaseType::kVoid:
      return "void";
    case BaseType::kVariant:
      return "VARIANT";
    case BaseType::kBoolean:
      return "VARIANT_BOOL";
    case BaseType::kInteger:
      return "short";
    case BaseType::kLong:
      return type.name.empty() ? "long" : type.name;
    case BaseType::kDouble:
      return "double";
    case BaseType::kDate:
      return "DATE";
    case BaseType::kString:
      return "BSTR";
    case BaseType::kObject:
      return type.name == "Object" || type.name.empty() ? "IDispatch*" : type.name + "*";
    case BaseType::kRecord:
      return type.name;
  }
  return "VARIANT";
}

}  // namespace zarvik::automation
