// ContoPDCBloccato: the stored procedure on the embedded engine (which
// describes its parameters) and through the ODBC call path on the SQLite3
// ODBC driver (which describes none, so the parameters are declared).
#include <gtest/gtest.h>
#include <sql.h>
#include <sqlext.h>
#include <unistd.h>

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "check_test_support.h"
#include "db/connection.h"
#include "demo/demo_db.h"

namespace zarvik {
namespace {

struct AccountCase {
  const char* user;
  const char* group;
  int16_t gruppo;
  const char* conto;
  bool blocked;
  int16_t can_abilitato;
  int16_t can_visualizza;
};

// ROSSI: 10/1001 revoked, 10/1002 enabled but not changeable; BIANCHI has
// no account row.
const std::vector<AccountCase>& AccountCases() {
  static const std::vector<AccountCase> cases = {
      {"ROSSI", "VEN", 10, "1001", true, 0, 0},    {"ROSSI", "VEN", 10, "1002", false, 1, 0},
      {"ROSSI", "VEN", 10, "1003", false, 1, 1},   {"ROSSI", "VEN", 20, "1001", false, 1, 1},
      {"BIANCHI", "VEN", 10, "1001", false, 1, 1},
  };
  return cases;
}

void ExpectAccountAnswers(const std::shared_ptr<db::Connection>& connection,
                          const std::shared_ptr<db::StatementLog>& log) {
  for (const AccountCase& c : AccountCases()) {
    SCOPED_TRACE(std::string(c.user) + " " + std::to_string(c.gruppo) + "/" + c.conto);
    auto sink = std::make_shared<RecordingMessageSink>();
    CLSFW_PARSER parser(Env{sink, std::make_shared<SystemClock>()});
    parser.SetConnectionADO(connection);
    parser.SetDittaCorrente(Variant(int32_t{1}));
    parser.SetCodiceGruppo(c.group);
    parser.SetCodiceUtente(c.user);
    log->statements.clear();
    int16_t can_abilitato = 7;
    int16_t can_visualizza = 7;
    EXPECT_EQ(parser.ContoPDCBloccato(c.gruppo, c.conto, can_abilitato, can_visualizza), c.blocked);
    EXPECT_EQ(can_abilitato, c.can_abilitato);
    EXPECT_EQ(can_visualizza, c.can_visualizza);
    EXPECT_TRUE(sink->messages.empty()) << sink->messages.front().text;
    ASSERT_FALSE(log->statements.empty());
    EXPECT_EQ(log->statements.back(), "{call SPFW_GetInfoRevokeContoPDC}");
  }
}

class AccountCheckTest : public testing::CheckTest {};

TEST_F(AccountCheckTest, ProcedureOnTheEmbeddedEngineFillsBothFlags) {
  ExpectAccountAnswers(db, log);
}

TEST_F(AccountCheckTest, PrivilegedUserOrDisabledContextGetsBothFlagsWithoutACall) {
  AsZentAd();
  int16_t can_abilitato = 0;
  int16_t can_visualizza = 0;
  EXPECT_FALSE(parser.ContoPDCBloccato(10, "1001", can_abilitato, can_visualizza));
  EXPECT_EQ(can_abilitato, 1);
  EXPECT_EQ(can_visualizza, 1);

  // The only check that honours RevokeDisabilitata.
  AsRossi();
  parser.SetRevokeDisabilitata(true);
  can_abilitato = 0;
  can_visualizza = 0;
  EXPECT_FALSE(parser.ContoPDCBloccato(10, "1001", can_abilitato, can_visualizza));
  EXPECT_EQ(can_abilitato, 1);
  EXPECT_EQ(can_visualizza, 1);
  EXPECT_TRUE(Statements().empty());
}

TEST_F(AccountCheckTest, BlankAccountLeavesTheFlagsAsTheyWere) {
  AsZentAd();
  int16_t can_abilitato = 5;
  int16_t can_visualizza = 6;
  EXPECT_FALSE(parser.ContoPDCBloccato(10, "  ", can_abilitato, can_visualizza));
  EXPECT_EQ(can_abilitato, 5);
  EXPECT_EQ(can_visualizza, 6);
  EXPECT_TRUE(Statements().empty());
}

TEST_F(AccountCheckTest, UserIsLookedUpOnlyWhileTheIdIsZero) {
  AsRossi();
  // An id the host set is used as it stands: BIANCHI's id under ROSSI's code.
  parser.SetIdUser(demo::user_id::kBianchi);
  int16_t can_abilitato = 0;
  int16_t can_visualizza = 0;
  EXPECT_FALSE(parser.ContoPDCBloccato(10, "1001", can_abilitato, can_visualizza));
  EXPECT_EQ(Statements(), std::vector<std::string>{"{call SPFW_GetInfoRevokeContoPDC}"});
  EXPECT_FALSE(parser.Frame().UserResolved());
}

TEST_F(AccountCheckTest, MissingProcedureIsReportedAndTheFlagsKeepTheirValues) {
  AsRossi();
  Run("DELETE FROM ZARVIK_ROUTINES WHERE NAME = 'SPFW_GetInfoRevokeContoPDC'");
  int16_t can_abilitato = 4;
  int16_t can_visualizza = 4;
  EXPECT_FALSE(parser.ContoPDCBloccato(10, "1001", can_abilitato, can_visualizza));
  EXPECT_EQ(can_abilitato, 4);
  EXPECT_EQ(can_visualizza, 4);
  ASSERT_EQ(Boxes().size(), 1u);
  EXPECT_TRUE(EndsWith(Boxes()[0].text, TagLine("ContoPDCBloccato"))) << Boxes()[0].text;
}

bool SqliteOdbcDriverInstalled() {
  SQLHENV env = SQL_NULL_HENV;
  if (!SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &env))) return false;
  SQLSetEnvAttr(env, SQL_ATTR_ODBC_VERSION, reinterpret_cast<SQLPOINTER>(SQL_OV_ODBC3), 0);
  bool found = false;
  SQLCHAR name[256];
  SQLCHAR attributes[1024];
  SQLSMALLINT name_length = 0;
  SQLSMALLINT attributes_length = 0;
  SQLUSMALLINT direction = SQL_FETCH_FIRST;
  while (SQL_SUCCEEDED(SQLDrivers(env, direction, name, sizeof name, &name_length, attributes,
                                  sizeof attributes, &attributes_length))) {
    if (std::string(reinterpret_cast<const char*>(name)) == "SQLite3") found = true;
    direction = SQL_FETCH_NEXT;
  }
  SQLFreeHandle(SQL_HANDLE_ENV, env);
  return found;
}

TEST(AccountCheckOdbcTest, ProcedureThroughOdbcDeclaresItsParametersAndFillsBothFlags) {
  if (!SqliteOdbcDriverInstalled()) {
    GTEST_SKIP() << "the SQLite3 ODBC driver is not registered (odbcinst -q -d)";
  }
  const std::string path = "/tmp/zarvik_account_check_" + std::to_string(getpid()) + ".db";
  std::remove(path.c_str());
  demo::OpenDemoDatabase(path)->Close();
  {
    auto log = std::make_shared<db::StatementLog>();
    auto odbc = std::make_shared<db::Connection>();
    odbc->SetConnectionString("Driver=SQLite3;Database=" + path);
    odbc->SetCursorLocation(db::kUseClient);
    odbc->SetStatementLog(log);
    odbc->Open();
    ExpectAccountAnswers(odbc, log);
    odbc->Close();
  }
  std::remove(path.c_str());
}

}  // namespace
}  // namespace zarvik
