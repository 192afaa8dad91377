// The description of the three classes and its IDL-like text.
#include "automation/type_library.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "automation/idl_text.h"

namespace zarvik::automation {
namespace {

TEST(TypeLibrary, EveryClassAndMemberIsBound) {
  const TypeLibrary library = BuildTypeLibrary();
  EXPECT_EQ(library.name, "ZARVIK");
  EXPECT_EQ(library.help, "Norvello BO Revoke");
  std::set<std::string> names;
  for (const auto& cls : library.classes) {
    names.insert(cls->name);
    EXPECT_TRUE(cls->create) << cls->name;
    std::set<std::string> seen;
    for (const MemberDescription& m : cls->members) {
      EXPECT_TRUE(m.call) << cls->name << "." << m.name;
      // One member per name and kind.
      EXPECT_TRUE(seen.insert(m.name + "#" + std::to_string(static_cast<int>(m.kind))).second)
          << cls->name << "." << m.name;
      if (m.kind == MemberKind::kPropertyLet || m.kind == MemberKind::kPropertySet) {
        EXPECT_EQ(m.params.size(), 1u) << m.name;
        EXPECT_EQ(m.result.base, BaseType::kVoid) << m.name;
      }
      if (m.kind == MemberKind::kPropertyGet) {
        EXPECT_NE(m.result.base, BaseType::kVoid) << m.name;
      }
      // Enum and record types the members name are declared in the library.
      for (const TypeRef* t : [&] {
             std::vector<const TypeRef*> all{&m.result};
             for (const ParamDescription& p : m.params) all.push_back(&p.type);
             return all;
           }()) {
        if (t->base == BaseType::kLong && !t->name.empty()) {
          EXPECT_NE(library.FindEnum(t->name), nullptr) << t->name;
        }
        if (t->base == BaseType::kRecord) {
          EXPECT_NE(library.FindRecord(t->name), nullptr) << t->name;
        }
      }
    }
  }
  EXPECT_EQ(names, (std::set<std::string>{"CLSFW_PARSER", "CLSFW_FILTROQUERY", "CLSFW_RVKUSERS"}));
}

TEST(TypeLibrary, IdlText) {
  const std::string idl = TypeLibraryIdl(BuildTypeLibrary());
  for (const char* piece : {
           "[helpstring(\"Norvello BO Revoke\")]\nlibrary ZARVIK\n{\n",
           "    typedef enum tsEnumTipologie {\n        tsGenerico = 1,\n",
           "        RevokeWindows = 2\n    } EnumRevokeStatus;\n",
           "    coclass CLSFW_PARSER\n    {\n",
           "[propputref] HRESULT ConnectionADO([in] Connection* value);",
           "[propput] HRESULT CodiceUtente([in] BSTR value);",
           "HRESULT IdUser([in] long value);",
           "HRESULT FlgGrpRevoke([out, retval] short* value);",
           "HRESULT IsRevoked([out, retval] EnumRevokeStatus* value);",
           "HRESULT ActiveInterface([out, retval] IDispatch** value);",
       }) {
    EXPECT_NE(idl.find(piece), std::string::npos) << piece;
  }
  EXPECT_EQ(idl.substr(idl.size() - 3), "};\n");
}

}  // namespace
}  // namespace zarvik::automation
