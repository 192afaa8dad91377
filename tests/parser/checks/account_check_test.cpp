// ContoPDCBloccato's procedure on the embedded engine (parameters described),
// through ODBC on SQLite3 (declared) and on a provider that describes some.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "../../db/db_test_support.h"
#include "../parser_test_support.h"

namespace zarvik {
namespace {

using testing::ParserSession;

// "blocked canAbilitato canVisualizza" for group/account, the flags starting at `start`.
std::string Ask(CLSFW_PARSER& p, int16_t gruppo, const std::string& conto, int16_t start) {
  int16_t can_abilitato = start, can_visualizza = start;
  const bool blocked = p.ContoPDCBloccato(gruppo, conto, can_abilitato, can_visualizza);
  return std::to_string(blocked) + " " + std::to_string(can_abilitato) + " " +
         std::to_string(can_visualizza);
}

// ROSSI: 10/1001 revoked, 10/1002 not changeable; BIANCHI has no row.
void ExpectAccountAnswers(ParserSession& session) {
  const struct {
    const char *user, *conto, *expected;
    int16_t gruppo;
  } cases[] = {{"ROSSI", "1001", "1 0 0", 10},
               {"ROSSI", "1002", "0 1 0", 10},
               {"ROSSI", "1003", "0 1 1", 10},
               {"ROSSI", "1001", "0 1 1", 20},
               {"BIANCHI", "1001", "0 1 1", 10}};
  for (const auto& c : cases) {
    session.log->statements.clear();
    EXPECT_EQ(Ask(*session.Other(c.user), c.gruppo, c.conto, 7), c.expected) << c.user << c.conto;
    EXPECT_EQ(session.LastStatement(), "{call SPFW_GetInfoRevokeContoPDC}");
  }
  EXPECT_TRUE(session.Boxes().empty()) << session.Boxes().front().text;
}

TEST(AccountCheck, ProcedureOnTheEmbeddedEngineFillsBothFlags) {
  ParserSession session;
  ExpectAccountAnswers(session);
}

TEST(AccountCheck, ProcedureThroughOdbcDeclaresItsParametersAndFillsBothFlags) {
  if (!db::OdbcDriverInstalled()) GTEST_SKIP() << "the SQLite3 ODBC driver is not registered";
  db::TempDbFile file("account_check");
  demo::InitDemoDatabase(file.path());
  auto odbc = db::OpenConnection("Driver=SQLite3;Database=" + file.path());
  ParserSession session("", odbc);
  ExpectAccountAnswers(session);
  odbc->Close();
}

TEST(AccountCheck, ShortCutsTheHostsIdAndFailures) {
  // ZentAd and RevokeDisabilitata get both flags; a blank account leaves them.
  ParserSession zentad("ZentAd"), disabled("ROSSI");
  disabled.parser.SetRevokeDisabilitata(true);
  EXPECT_EQ(Ask(zentad.parser, 10, "1001", 0) + "|" + Ask(zentad.parser, 10, "  ", 5) + "|" +
                Ask(disabled.parser, 10, "1001", 0),
            "0 1 1|0 5 5|0 1 1");
  EXPECT_EQ(zentad.Statements().size() + disabled.Statements().size(), 0U);
  // BIANCHI's id under ROSSI's code: no lookup.
  ParserSession rossi("ROSSI");
  rossi.parser.SetIdUser(demo::user_id::kBianchi);
  EXPECT_EQ(Ask(rossi.parser, 10, "1001", 0), "0 1 1");
  EXPECT_EQ(rossi.Statements(), std::vector<std::string>{"{call SPFW_GetInfoRevokeContoPDC}"});
  EXPECT_FALSE(rossi.parser.Frame().UserResolved());
  // A missing procedure, or a body naming only :ContoPDC (ADO's 3265): reported, no call sent,
  // the flags keep their values.
  for (const auto& [change, error] : std::vector<std::pair<std::string, std::string>>{
           {"DELETE FROM ZARVIK_ROUTINES WHERE ROUTINE_NAME = 'SPFW_GetInfoRevokeContoPDC'",
            "-2147217900 - Could not find stored procedure 'SPFW_GetInfoRevokeContoPDC'"},
           {"UPDATE ZARVIK_ROUTINES SET ROUTINE_BODY = 'SELECT CASE WHEN :ContoPDC = ''1001'' "
            "THEN 0 ELSE 1 END AS canAbilitato, 1 AS canVisualizza' WHERE ROUTINE_NAME = "
            "'SPFW_GetInfoRevokeContoPDC'",
            "3265 - Item cannot be found in the collection"}}) {
    ParserSession broken("ROSSI");
    broken.Run(change);
    broken.log->statements.clear();
    const std::string flags = Ask(broken.parser, 10, "1001", 4);
    ASSERT_EQ(broken.BoxTags(), std::vector<std::string>{"ContoPDCBloccato"});
    EXPECT_EQ(flags + "|" + broken.Boxes()[0].text.substr(0, error.size()), "0 4 4|" + error);
    for (const std::string& statement : broken.Statements()) {
      EXPECT_EQ(statement.find("{call"), std::string::npos) << statement;
    }
  }
}

}  // namespace
}  // namespace zarvik
