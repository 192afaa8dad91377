#include "automation/idl_text.h"

#include <sstream>

namespace zarvik::automation {
namespace {

std::string Literal(const Variant& value) {
  switch (value.Type()) {
    case VarType::kString:
      return "\"" + value.RawString() + "\"";
    case VarType::kBoolean:
      return value.ToBool() ? "-1" : "0";
    case VarType::kEmpty:
      return "Empty";
    case VarType::kNull:
      return "Null";
    case VarType::kObject:
      return "Nothing";
    default:
      return value.ToString();
  }
}

std::string Param(const ParamDescription& p) {
  std::string attributes = p.by_ref ? "in, out" : "in";
  if (p.optional) attributes += ", optional";
  if (p.default_value) attributes += ", defaultvalue(" + Literal(*p.default_value) + ")";
  return "[" + attributes + "] " + TypeName(p.type) + (p.by_ref ? "* " : " ") + p.name;
}

std::string Attributes(const MemberDescription& m) {
  std::string a;
  switch (m.kind) {
    case MemberKind::kPropertyGet:
      a = "propget";
      break;
    case MemberKind::kPropertyLet:
      a = "propput";
      break;
    case MemberKind::kPropertySet:
      a = "propputref";
      break;
    case MemberKind::kMethod:
      break;
  }
  if (!m.help.empty()) a += std::string(a.empty() ? "" : ", ") + "helpstring(\"" + m.help + "\")";
  return a.empty() ? "" : "[" + a + "] ";
}

}  // namespace

std::string TypeLibraryIdl(const TypeLibrary& library) {
  std::ostringstream out;
  out << "[helpstring(\"" << library.help << "\")]\n";
  out << "library " << library.name << "\n{\n";
  for (const EnumDescription& e : library.enums) {
    out << "    typedef enum " << e.name << " {\n";
    for (size_t i = 0; i < e.values.size(); ++i) {
      out << "        " << e.values[i].first << " = " << e.values[i].second
          << (i + 1 < e.values.size() ? "," : "") << "\n";
    }
    out << "    } " << e.name << ";\n\n";
  }
  for (const RecordDescription& r : library.records) {
    out << "    typedef struct " << r.name << " {\n";
    for (const RecordField& f : r.fields)
      out << "        " << TypeName(f.type) << " " << f.name << ";\n";
    out << "    } " << r.name << ";\n\n";
  }
  for (size_t c = 0; c < library.classes.size(); ++c) {
    const ClassDescription& cls = *library.classes[c];
    if (!cls.help.empty()) out << "    [helpstring(\"" << cls.help << "\")]\n";
    out << "    coclass " << cls.name << "\n    {\n";
    for (const MemberDescription& m : cls.members) {
      std::string params;
      for (const ParamDescription& p : m.params) {
        params += (params.empty() ? "" : ", ") + Param(p);
      }
      if (m.result.base != BaseType::kVoid) {
        params += std::string(params.empty() ? "" : ", ") + "[out, retval] " + TypeName(m.result) +
                  "* " + (m.kind == MemberKind::kPropertyGet ? "value" : "result");
      }
      out << "        " << Attributes(m) << "HRESULT " << m.name << "(" << params << ");\n";
    }
    out << "    };\n" << (c + 1 < library.classes.size() ? "\n" : "");
  }
  out << "};\n";
  return out.str();
}

}  // namespace zarvik::automation
