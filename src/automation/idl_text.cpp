#include "automation/idl_text.h"

#include <map>
#include <sstream>

#include "automation/name_uuid.h"
#include "platform/vb_string.h"

namespace zarvik::automation {
namespace {

std::string Uuid(const std::string& name) { return UuidText(NameUuid(name)); }

// The type as IDL (and widl's C++ header) spell it. Object references are
// IDispatch*: the ADO type library cannot be imported where this is built.
std::string IdlType(const TypeRef& type) {
  return type.base == BaseType::kObject ? "IDispatch*" : TypeName(type);
}

// The VARTYPE constant of a type, for the thunks.
std::string VarTypeName(const TypeRef& type) {
  switch (type.base) {
    case BaseType::kVoid:
      return "VT_EMPTY";
    case BaseType::kVariant:
      return "VT_VARIANT";
    case BaseType::kBoolean:
      return "VT_BOOL";
    case BaseType::kInteger:
      return "VT_I2";
    case BaseType::kLong:
      return "VT_I4";
    case BaseType::kDouble:
      return "VT_R8";
    case BaseType::kDate:
      return "VT_DATE";
    case BaseType::kString:
      return "VT_BSTR";
    case BaseType::kObject:
      return "VT_DISPATCH";
    case BaseType::kRecord:
      return "VT_RECORD";
  }
  return "VT_VARIANT";
}

std::string Quoted(const std::string& text) {
  std::string out = "\"";
  for (char c : text) {
    if (c == '"' || c == '\\') out += '\\';
    out += c;
  }
  return out + "\"";
}

// The defaultvalue of an optional parameter. Without a declared default a
// typed by-value parameter defaults to its type's empty value, which is what
// the member sees for an omitted argument of that type.
std::string DefaultLiteral(const ParamDescription& p) {
  if (!p.default_value) return p.type.base == BaseType::kString ? "\"\"" : "0";
  const Variant& v = *p.default_value;
  if (v.Type() == VarType::kString) return Quoted(v.RawString());
  if (v.Type() == VarType::kBoolean) return v.ToBool() ? "-1" : "0";
  return v.ToString();
}

std::string Param(const ParamDescription& p) {
  std::string attributes = p.by_ref ? "in, out" : "in";
  if (p.optional) {
    attributes += ", optional";
    // widl refuses a string default on a BSTR*: an optional by-reference
    // parameter without a declared default has none in the library either.
    if (p.default_value || (!p.by_ref && p.type.base != BaseType::kVariant)) {
      attributes += ", defaultvalue(" + DefaultLiteral(p) + ")";
    }
  }
  return "[" + attributes + "] " + IdlType(p.type) + (p.by_ref ? "* " : " ") + p.name;
}

const char* KindAttribute(MemberKind kind) {
  switch (kind) {
    case MemberKind::kPropertyGet:
      return ", propget";
    case MemberKind::kPropertyLet:
      return ", propput";
    case MemberKind::kPropertySet:
      return ", propputref";
    case MemberKind::kMethod:
      break;
  }
  return "";
}

const char* CppPrefix(MemberKind kind) {
  switch (kind) {
    case MemberKind::kPropertyGet:
      return "get_";
    case MemberKind::kPropertyLet:
      return "put_";
    case MemberKind::kPropertySet:
      return "putref_";
    case MemberKind::kMethod:
      break;
  }
  return "";
}

bool HasResult(const MemberDescription& m) { return m.result.base != BaseType::kVoid; }

std::string ResultName(const MemberDescription& m) {
  return m.kind == MemberKind::kPropertyGet ? "value" : "result";
}

}  // namespace

std::vector<int32_t> MemberDispIds(const ClassDescription& cls) {
  std::map<std::string, int32_t> ids;
  std::vector<int32_t> out;
  for (const MemberDescription& m : cls.members) {
    auto it = ids.emplace(vb::UCase(m.name), static_cast<int32_t>(ids.size() + 1)).first;
    out.push_back(it->second);
  }
  return out;
}

std::string InterfaceName(const ClassDescription& cls) { return "_" + cls.name; }

std::string TypeLibraryIdl(const TypeLibrary& library) {
  const std::string& lib = library.name;
  std::ostringstream out;
  out << "// " << lib << " type library, generated from the component's automation description.\n";
  out << "import \"oaidl.idl\";\n\n";
  out << "[\n  uuid(" << Uuid(LibraryUuidName(lib)) << "),\n  version(1.0),\n  helpstring(\""
      << library.help << "\")\n]\nlibrary " << lib << "\n{\n";
  out << "    importlib(\"stdole2.tlb\");\n\n";
  for (const EnumDescription& e : library.enums) {
    out << "    typedef [uuid(" << Uuid(TypeUuidName(lib, e.name)) << ")] enum " << e.name
        << " {\n";
    for (size_t i = 0; i < e.values.size(); ++i) {
      out << "        " << e.values[i].first << " = " << e.values[i].second
          << (i + 1 < e.values.size() ? "," : "") << "\n";
    }
    out << "    } " << e.name << ";\n\n";
  }
  for (const RecordDescription& r : library.records) {
    out << "    typedef [uuid(" << Uuid(TypeUuidName(lib, r.name)) << ")] struct " << r.name
        << " {\n";
    for (const RecordField& f : r.fields)
      out << "        " << IdlType(f.type) << " " << f.name << ";\n";
    out << "    } " << r.name << ";\n\n";
  }
  for (const auto& cls : library.classes) {
    const std::vector<int32_t> ids = MemberDispIds(*cls);
    out << "    [\n      uuid(" << Uuid(InterfaceUuidName(lib, cls->name)) << "),\n";
    if (!cls->help.empty()) out << "      helpstring(\"" << cls->help << "\"),\n";
    out << "      dual,\n      oleautomation\n    ]\n";
    out << "    interface " << InterfaceName(*cls) << " : IDispatch\n    {\n";
    for (size_t i = 0; i < cls->members.size(); ++i) {
      const MemberDescription& m = cls->members[i];
      std::string params;
      for (const ParamDescription& p : m.params) params += (params.empty() ? "" : ", ") + Param(p);
      if (HasResult(m)) {
        params += std::string(params.empty() ? "" : ", ") + "[out, retval] " + IdlType(m.result) +
                  "* " + ResultName(m);
      }
      out << "        [id(" << ids[i] << ")" << KindAttribute(m.kind);
      if (!m.help.empty()) out << ", helpstring(\"" << m.help << "\")";
      out << "] HRESULT " << m.name << "(" << params << ");\n";
    }
    out << "    };\n\n";
    out << "    [\n      uuid(" << Uuid(ClassUuidName(lib, cls->name)) << ")";
    if (!cls->help.empty()) out << ",\n      helpstring(\"" << cls->help << "\")";
    out << "\n    ]\n    coclass " << cls->name << "\n    {\n        [default] interface "
        << InterfaceName(*cls) << ";\n    };\n\n";
  }
  out << "};\n";
  return out.str();
}

std::string TypeLibraryThunks(const TypeLibrary& library, const std::string& idl_header) {
  std::ostringstream out;
  out << "// Vtable thunks of the " << library.name
      << " dual interfaces, generated from the component's\n// automation description.\n";
  out << "#include \"" << idl_header << "\"\n#include \"com/dual_object.h\"\n\n";
  out << "namespace zarvik::com {\nnamespace {\n\n";
  for (const auto& cls : library.classes) {
    const std::string type = "Dual" + InterfaceName(*cls);
    out << "class " << type << " final : public DualObject<" << InterfaceName(*cls) << "> {\n";
    out << " public:\n  using DualObject::DualObject;\n\n";
    for (size_t i = 0; i < cls->members.size(); ++i) {
      const MemberDescription& m = cls->members[i];
      std::string params;
      std::string slots;
      for (const ParamDescription& p : m.params) {
        params += (params.empty() ? "" : ", ") + IdlType(p.type) + (p.by_ref ? "* " : " ") + p.name;
        slots += std::string(slots.empty() ? "" : ", ") + "{" + VarTypeName(p.type) +
                 (p.by_ref ? " | VT_BYREF, " : ", &") + p.name + "}";
      }
      std::string result = "{VT_EMPTY, nullptr}";
      if (HasResult(m)) {
        params +=
            std::string(params.empty() ? "" : ", ") + IdlType(m.result) + "* " + ResultName(m);
        result = "{" + VarTypeName(m.result) + ", " + ResultName(m) + "}";
      }
      out << "  HRESULT STDMETHODCALLTYPE " << CppPrefix(m.kind) << m.name << "(" << params
          << ") override {\n    return Call(" << i << ", {" << slots << "}, " << result
          << ");\n  }\n";
    }
    out << "};\n\n";
  }
  out << "}  // namespace\n\n";
  out << "IDispatch* NewDualObject(size_t class_index, DualContext context) {\n";
  out << "  switch (class_index) {\n";
  for (size_t c = 0; c < library.classes.size(); ++c) {
    out << "    case " << c << ":\n      return new Dual" << InterfaceName(*library.classes[c])
        << "(std::move(context));\n";
  }
  out << "    default:\n      return nullptr;\n  }\n}\n\n}  // namespace zarvik::com\n";
  return out.str();
}

}  // namespace zarvik::automation
