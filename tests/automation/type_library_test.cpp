// The description of the three classes and its IDL-like text.
#include "automation/type_library.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "automation/idl_text.h"

namespace zarvik::automation {
namespace {

// Every member is bound to a call, and every enum or record a member names
// is declared in the library.
TEST(TypeLibrary, EveryMemberIsBoundAndItsTypesDeclared) {
  const TypeLibrary library = BuildTypeLibrary();
  std::set<std::string> names;
  for (const auto& cls : library.classes) {
    names.insert(cls->name);
    EXPECT_TRUE(cls->create) << cls->name;
    for (const MemberDescription& m : cls->members) {
      EXPECT_TRUE(m.call) << cls->name << "." << m.name;
      std::vector<const TypeRef*> types{&m.result};
      for (const ParamDescription& p : m.params) types.push_back(&p.type);
      for (const TypeRef* t : types) {
        EXPECT_TRUE(t->base != BaseType::kRecord || library.FindRecord(t->name)) << t->name;
        EXPECT_TRUE(t->base != BaseType::kLong || t->name.empty() || library.FindEnum(t->name))
            << t->name;
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
