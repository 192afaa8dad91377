// The routines of the demo database, called the way the component calls
// them.
#include <gtest/gtest.h>

#include <ctime>
#include <regex>
#include <string>

#include "db/command.h"
#include "demo_test_support.h"

namespace zarvik::demo {
namespace {

using testing::FirstColumn;
using testing::FreshDemo;
using testing::Scalar;

TEST(DemoRoutines, TransferFunctionAnswersForEitherWarehouse) {
  struct Case {
    const char* what;
    int32_t company;
    int32_t user;
    const char* from;
    const char* to;
    int32_t revoked;
  };
  const Case cases[] = {
      {"origin revoked", 1, user_id::kRossi, "A1", "C3", 1},
      {"destination revoked", 1, user_id::kRossi, "C3", "B2", 1},
      {"neither revoked", 1, user_id::kRossi, "C3", "D4", 0},
      {"revocations hold in their company only", 2, user_id::kRossi, "A1", "C3", 0},
      {"group user: every group revokes B2", 1, user_id::kVerdi, "B2", "A1", 1},
      {"group user: only one group revokes D4", 1, user_id::kVerdi, "D4", "A1", 0},
      {"blank-padded code", 1, user_id::kRossi, "A1  ", "C3", 1},
  };
  const auto db = FreshDemo();
  for (const Case& c : cases) {
    // The statement text is the one the transfer check sends.
    const std::string sql = "SELECT dbo.FNFW_TRASFREVOCATI (" + std::to_string(c.company) + ", " +
                            std::to_string(c.user) + ", '" + c.from + "', '" + c.to + "')";
    EXPECT_EQ(Scalar(*db, sql), c.revoked) << c.what;
  }
}

TEST(DemoRoutines, ServerClockGivesTheLocalDateAndTimeWithMilliseconds) {
  const auto db = FreshDemo();
  const auto today = [] {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    char day[16];
    std::strftime(day, sizeof day, "%Y-%m-%d", &local);
    return std::string(day);
  };
  const std::string before = today();
  const std::vector<std::string> now = FirstColumn(*db, "SELECT [dbo].[KVL_GETDATE]()");
  const std::string after = today();
  ASSERT_EQ(now.size(), 1u);
  EXPECT_TRUE(std::regex_match(now[0], std::regex(R"(\d{4}-\d{2}-\d{2} \d{2}:\d{2}:\d{2}\.\d{3})")))
      << now[0];
  EXPECT_TRUE(now[0].substr(0, 10) == before || now[0].substr(0, 10) == after) << now[0];
}

// Called as the account check does: a stored-procedure command whose
// parameters the provider describes, addressed by name.
TEST(DemoRoutines, AccountProcedureAnswersBothRights) {
  struct Case {
    const char* what;
    int32_t user;
    int16_t group;
    const char* account;
    int32_t can_enable;
    int32_t can_show;
  };
  const Case cases[] = {
      {"revoked account", user_id::kRossi, 10, "1001", 0, 0},
      {"account that may not be changed", user_id::kRossi, 10, "1002", 1, 0},
      {"account without a row", user_id::kRossi, 10, "1003", 1, 1},
      {"same code in another group", user_id::kRossi, 20, "1001", 1, 1},
      {"another user", user_id::kBianchi, 10, "1001", 1, 1},
      {"blank-padded account code", user_id::kRossi, 10, "1001      ", 0, 0},
  };
  const auto db = FreshDemo();
  for (const Case& c : cases) {
    db::Command command;
    command.SetCommandType(static_cast<int>(db::kCmdStoredProc));
    command.SetCommandText("SPFW_GetInfoRevokeContoPDC");
    command.SetActiveConnection(db);
    command.Parameters("@GruppoPDC").SetValue(Variant(c.group));
    command.Parameters("@ContoPDC").SetValue(Variant(std::string(c.account)));
    command.Parameters("@IdUtente").SetValue(Variant(c.user));
    command.Execute();  // options -1, as the account check runs it
    EXPECT_EQ(command.Parameters("@canAbilitato").Value().ToInteger(), c.can_enable) << c.what;
    EXPECT_EQ(command.Parameters("@canVisualizza").Value().ToInteger(), c.can_show) << c.what;
  }
}

}  // namespace
}  // namespace zarvik::demo
