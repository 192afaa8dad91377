// The description of the three classes and its IDL-like text.
#include "automation/type_library.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "automation/idl_text.h"

namespace zarvik::automation {
namespace {

// Every member is bound to a call; every enum or record it names is declared.
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
           "import \"oaidl.idl\";\n",
           "  uuid(a69ddc03-a05b-5c6c-b300-97a93953c194),\n  version(1.0),\n"
           "  helpstring(\"Norvello BO Revoke\")\n]\nlibrary ZARVIK\n{\n",
           "    typedef [uuid(30ea6f21-ac6d-5595-83ee-f8148aa3613f)] enum tsEnumTipologie {\n"
           "        tsGenerico = 1,\n",
           "    typedef [uuid(5a176ef3-dddd-5f30-ab4c-6f815730d789)] struct tsRvkTipiMov {\n"
           "        VARIANT_BOOL Cons;\n",
           "    interface _CLSFW_PARSER : IDispatch\n",
           "    coclass CLSFW_PARSER\n    {\n        [default] interface _CLSFW_PARSER;\n",
           "[id(1), propputref] HRESULT ConnectionADO([in] IDispatch* value);",
           "[id(5), propput] HRESULT CodiceUtente([in] BSTR value);",
           "[in, optional, defaultvalue(-1)] VARIANT_BOOL AllowNULL, [out, retval] BSTR* result);",
           "[in, out, optional] BSTR* Gruppo",
           "[in, out, optional] VARIANT* DataFieldCrystal, "
           "[in, optional, defaultvalue(0)] tsEnumTipologie Tipologia",
           "HRESULT IsRevoked([out, retval] EnumRevokeStatus* value);",
       }) {
    EXPECT_NE(idl.find(piece), std::string::npos) << piece;
  }
  EXPECT_EQ(idl.substr(idl.size() - 3), "};\n");
}

// Get, let and set of one name share a DISPID, numbered in order of first appearance.
TEST(TypeLibrary, DispIdsAndThunks) {
  const TypeLibrary library = BuildTypeLibrary();
  const ClassDescription& parser = *library.FindClass("CLSFW_PARSER");
  const std::vector<int32_t> ids = MemberDispIds(parser);
  EXPECT_EQ(std::vector<int32_t>(ids.begin(), ids.begin() + 4), (std::vector<int32_t>{1, 1, 2, 2}));
  const std::string thunks = TypeLibraryThunks(library, "zarvik_h.h");
  for (const char* piece : {
           "class Dual_CLSFW_PARSER final : public DualObject<_CLSFW_PARSER> {\n public:\n",
           "HRESULT STDMETHODCALLTYPE putref_ConnectionADO(IDispatch* value) override "
           "{\n    return Call(1, {{VT_DISPATCH, &value}}, {VT_EMPTY, nullptr});",
           "LoginRvk(short* Risultato, BSTR* WinUser, BSTR* Gruppo, BSTR* Utente) "
           "override {\n    return Call(7, {{VT_I2 | VT_BYREF, Risultato}",
       }) {
    EXPECT_NE(thunks.find(piece), std::string::npos) << piece;
  }
}

}  // namespace
}  // namespace zarvik::automation
