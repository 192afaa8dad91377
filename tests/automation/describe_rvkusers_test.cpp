// CLSFW_RVKUSERS through its automation description: a login made
// late-bound, with its by-reference results and omitted optionals.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "automation/automation_object.h"
#include "automation/type_library.h"
#include "db/connection.h"
#include "demo/demo_db.h"
#include "rvkusers/clsfw_rvkusers.h"

namespace zarvik::automation {
namespace {

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
