// CLSFW_RVKUSERS through its automation description: the members a host
// sees and a login made late-bound, with its by-reference results.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "automation/automation_object.h"
#include "automation/type_library.h"
#include "db/connection.h"
#include "demo/demo_db.h"
#include "demo/tour.h"
#include "rvkusers/clsfw_rvkusers.h"

namespace zarvik::automation {
namespace {

TEST(DescribeRvkUsers, LoginRvkTakesItsArgumentsByReference) {
  const TypeLibrary library = BuildTypeLibrary();
  const auto cls = library.FindClass("CLSFW_RVKUSERS");
  ASSERT_NE(cls, nullptr);
  const MemberDescription* login = cls->Find("LoginRvk", MemberKind::kMethod);
  ASSERT_NE(login, nullptr);
  struct Expected {
    const char* name;
    BaseType type;
    bool optional;
  };
  const Expected params[] = {{"Risultato", BaseType::kInteger, false},
                             {"WinUser", BaseType::kString, false},
                             {"Gruppo", BaseType::kString, true},
                             {"Utente", BaseType::kString, true}};
  ASSERT_EQ(login->params.size(), 4u);
  for (size_t i = 0; i < 4; ++i) {
    EXPECT_EQ(login->params[i].name, params[i].name);
    EXPECT_EQ(login->params[i].type.base, params[i].type);
    EXPECT_TRUE(login->params[i].by_ref) << params[i].name;
    EXPECT_EQ(login->params[i].optional, params[i].optional) << params[i].name;
    EXPECT_FALSE(login->params[i].default_value.has_value()) << params[i].name;
  }
  EXPECT_EQ(login->result.base, BaseType::kVoid);
  EXPECT_NE(cls->Find("TerminateConnection", MemberKind::kMethod), nullptr);
  // IsRevoked is read-only; the private operations are not exposed.
  EXPECT_EQ(cls->Find("IsRevoked", MemberKind::kPropertyLet), nullptr);
  for (const char* hidden : {"FormatSqlValue", "WriteLoginLog", "OpenConnection"}) {
    EXPECT_FALSE(cls->HasMember(hidden)) << hidden;
  }
}

TEST(DescribeRvkUsers, LateBoundLoginOfALockedUser) {
  const auto connection = demo::OpenDemoDatabase(":memory:");
  const TypeLibrary library = BuildTypeLibrary();
  auto rvk = CreateObject(library, "CLSFW_RVKUSERS", CreationContext{});
  rvk->PutProperty("ConnectionADO", Variant(ObjectRef(connection)));
  rvk->PutProperty("MaxNumTry", Variant("3"));
  EXPECT_EQ(rvk->GetProperty("MaxNumTry").Type(), VarType::kInteger);
  EXPECT_EQ(rvk->GetProperty("IsRevoked").ToLong(), NoRevoke);

  // GALLO is locked: Risultato comes back as 2. Gruppo is omitted.
  std::vector<Argument> args = {Argument{Variant(int32_t{1})}, Argument{Variant("PC-GALLO")},
                                Argument::Missing(), Argument{Variant("cgallo")}};
  rvk->Call("LoginRvk", args);
  EXPECT_EQ(args[0].value.Type(), VarType::kInteger);
  EXPECT_EQ(args[0].value.ToLong(), 2);
  EXPECT_EQ(args[1].value.ToString(), "PC-GALLO");
  EXPECT_EQ(args[3].value.ToString(), "cgallo");
  const Variant status = rvk->GetProperty("IsRevoked");
  EXPECT_EQ(status.Type(), VarType::kLong);
  EXPECT_EQ(status.ToLong(), RevokeVantor);
  const auto rows = demo::QueryRows(
      *connection, "SELECT FW33_RISULTATO, FW33_WINUSER FROM FW33_RVKUSER WHERE FW33_ID_FW07 = " +
                       std::to_string(demo::user_id::kGallo) +
                       " AND FW33_WINUSER = 'PC-GALLO' "
                       "AND FW33_RISULTATO = 2");
  EXPECT_EQ(rows.size(), 1u);

  // Only the first two arguments: the login name is "", nobody is found.
  std::vector<Argument> two = {Argument{Variant(int32_t{1})}, Argument{Variant("PC")}};
  rvk->Call("LoginRvk", two);
  EXPECT_EQ(two[0].value.ToLong(), 1);
  EXPECT_EQ(rvk->GetProperty("IsRevoked").ToLong(), NoRevoke);

  // TerminateConnection releases the host's connection without closing it.
  std::vector<Argument> none;
  rvk->Call("TerminateConnection", none);
  EXPECT_TRUE(rvk->GetProperty("ConnectionADO").IsNothing());
  EXPECT_EQ(connection->State(), db::kStateOpen);
}

}  // namespace
}  // namespace zarvik::automation
