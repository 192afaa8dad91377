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

struct TransferCase {
  const char* what;
  int32_t company;
  int32_t user;
  const char* from;
  const char* to;
  int32_t revoked;
};

class TransferRevokedTest : public ::testing::TestWithParam<TransferCase> {};

// The statement text is the one the transfer check sends.
TEST_P(TransferRevokedTest, AnswersForEitherWarehouse) {
  const auto db = FreshDemo();
  const TransferCase& c = GetParam();
  const std::string sql = "SELECT dbo.FNFW_TRASFREVOCATI (" + std::to_string(c.company) + ", " +
                          std::to_string(c.user) + ", '" + c.from + "', '" + c.to + "')";
  EXPECT_EQ(Scalar(*db, sql), c.revoked) << c.what;
}

INSTANTIATE_TEST_SUITE_P(
    Cases, TransferRevokedTest,
    ::testing::Values(
        TransferCase{"origin revoked", 1, user_id::kRossi, "A1", "C3", 1},
        TransferCase{"destination revoked", 1, user_id::kRossi, "C3", "B2", 1},
        TransferCase{"neither revoked", 1, user_id::kRossi, "C3", "D4", 0},
        TransferCase{"revocations hold in their company only", 2, user_id::kRossi, "A1", "C3", 0},
        TransferCase{"other user, other company", 2, user_id::kBianchi, "A1", "C3", 1},
        TransferCase{"other user, nothing in company 1", 1, user_id::kBianchi, "A1", "B2", 0},
        TransferCase{"group user: every group revokes B2", 1, user_id::kVerdi, "B2", "A1", 1},
        TransferCase{"group user: only one group revokes D4", 1, user_id::kVerdi, "D4", "A1", 0},
        TransferCase{"blank-padded code", 1, user_id::kRossi, "A1  ", "C3", 1},
        TransferCase{"privileged user has no rows", 1, user_id::kZentAd, "A1", "B2", 0}));

TEST(DemoRoutines, ServerClockGivesTheLocalDateAndTimeWithMilliseconds) {
  const auto db = FreshDemo();
  const std::time_t before = std::time(nullptr);
  const std::vector<std::string> now = FirstColumn(*db, "SELECT [dbo].[KVL_GETDATE]()");
  ASSERT_EQ(now.size(), 1u);
  EXPECT_TRUE(std::regex_match(now[0], std::regex(R"(\d{4}-\d{2}-\d{2} \d{2}:\d{2}:\d{2}\.\d{3})")))
      << now[0];
  std::tm local{};
  localtime_r(&before, &local);
  char day[16];
  std::strftime(day, sizeof day, "%Y-%m-%d", &local);
  const std::time_t after = std::time(nullptr);
  std::tm local_after{};
  localtime_r(&after, &local_after);
  char day_after[16];
  std::strftime(day_after, sizeof day_after, "%Y-%m-%d", &local_after);
  EXPECT_TRUE(now[0].substr(0, 10) == day || now[0].substr(0, 10) == day_after) << now[0];
}

// The login log insert writes the server clock into FW33_DATAORA.
TEST(DemoRoutines, LoginLogInsertTakesTheServerClock) {
  const auto db = FreshDemo();
  db->Execute(
      " INSERT INTO FW33_RVKUSER  (FW33_ID_FW07, FW33_DATA, FW33_AZIONE, FW33_RISULTATO, "
      "FW33_WINUSER, FW33_DATAORA)  VALUES  (10, '20991231', 0, 1,'PC-TEST', "
      "[dbo].[KVL_GETDATE]()) ",
      db::kCmdText);
  const auto stamp =
      FirstColumn(*db, "SELECT FW33_DATAORA FROM FW33_RVKUSER WHERE FW33_DATA = '20991231'");
  ASSERT_EQ(stamp.size(), 1u);
  EXPECT_TRUE(
      std::regex_match(stamp[0], std::regex(R"(\d{4}-\d{2}-\d{2} \d{2}:\d{2}:\d{2}\.\d{3})")))
      << stamp[0];
}

struct AccountCase {
  const char* what;
  int32_t user;
  int16_t group;
  const char* account;
  int32_t can_enable;
  int32_t can_show;
};

class AccountRightsTest : public ::testing::TestWithParam<AccountCase> {};

// Called as the account check does: a stored-procedure command whose
// parameters the provider describes, addressed by name.
TEST_P(AccountRightsTest, ProcedureAnswersBothRights) {
  const AccountCase& c = GetParam();
  const auto db = FreshDemo();
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

INSTANTIATE_TEST_SUITE_P(
    Cases, AccountRightsTest,
    ::testing::Values(
        AccountCase{"revoked account", user_id::kRossi, 10, "1001", 0, 0},
        AccountCase{"account that may not be changed", user_id::kRossi, 10, "1002", 1, 0},
        AccountCase{"account without a row", user_id::kRossi, 10, "1003", 1, 1},
        AccountCase{"same code in another group", user_id::kRossi, 20, "1001", 1, 1},
        AccountCase{"another user", user_id::kBianchi, 10, "1001", 1, 1},
        AccountCase{"blank-padded account code", user_id::kRossi, 10, "1001      ", 0, 0}));

TEST(DemoRoutines, ProcedureDescribesItsParameters) {
  const auto db = FreshDemo();
  const auto params = db->OpenBackendOrThrow().DescribeProcedure("SPFW_GetInfoRevokeContoPDC");
  ASSERT_EQ(params.size(), 5u);
  const char* names[] = {"@IdUtente", "@GruppoPDC", "@ContoPDC", "@canAbilitato", "@canVisualizza"};
  const db::ParameterDirection directions[] = {
      db::ParameterDirection::kInput, db::ParameterDirection::kInput,
      db::ParameterDirection::kInput, db::ParameterDirection::kOutput,
      db::ParameterDirection::kOutput};
  const int types[] = {db::adtype::kInteger, db::adtype::kSmallInt, db::adtype::kVarChar,
                       db::adtype::kInteger, db::adtype::kInteger};
  for (size_t i = 0; i < params.size(); ++i) {
    EXPECT_EQ(params[i].name, names[i]);
    EXPECT_EQ(params[i].direction, directions[i]) << names[i];
    EXPECT_EQ(params[i].type, types[i]) << names[i];
  }
}

}  // namespace
}  // namespace zarvik::demo
