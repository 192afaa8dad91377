// ContoPDCBloccato: the stored procedure on the embedded engine (which
// describes its parameters) and through the ODBC call path on the SQLite3
// ODBC driver (which describes none, so the parameters are declared).
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "../../db/db_test_support.h"
#include "../parser_test_support.h"

namespace zarvik {
namespace {

using testing::ParserSession;

// The answer and both flags for `user` on group/account, starting from
// flags set to `start`.
struct AccountAnswer {
  bool blocked;
  int16_t can_abilitato, can_visualizza;
  bool operator==(const AccountAnswer& o) const {
    return blocked == o.blocked && can_abilitato == o.can_abilitato &&
           can_visualizza == o.can_visualizza;
  }
};
std::ostream& operator<<(std::ostream& out, const AccountAnswer& a) {
  return out << a.blocked << " " << a.can_abilitato << " " << a.can_visualizza;
}
AccountAnswer Ask(CLSFW_PARSER& p, int16_t gruppo, const std::string& conto, int16_t start) {
  AccountAnswer a{false, start, start};
  a.blocked = p.ContoPDCBloccato(gruppo, conto, a.can_abilitato, a.can_visualizza);
  return a;
}

// ROSSI: 10/1001 revoked, 10/1002 enabled but not changeable; BIANCHI has
// no account row. Every answer comes from the procedure.
void ExpectAccountAnswers(ParserSession& session) {
  const struct {
    const char* user;
    int16_t gruppo;
    const char* conto;
    AccountAnswer expected;
  } cases[] = {
      {"ROSSI", 10, "1001", {true, 0, 0}},    {"ROSSI", 10, "1002", {false, 1, 0}},
      {"ROSSI", 10, "1003", {false, 1, 1}},   {"ROSSI", 20, "1001", {false, 1, 1}},
      {"BIANCHI", 10, "1001", {false, 1, 1}},
  };
  for (const auto& c : cases) {
    session.log->statements.clear();
    auto parser = session.Other(c.user);
    EXPECT_EQ(Ask(*parser, c.gruppo, c.conto, 7), c.expected) << c.user << " " << c.conto;
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

TEST(AccountCheck, ShortCutsSendNothing) {
  // The privileged user and a disabled context (the only check that honours
  // it) get both flags; a blank account leaves them as they were.
  ParserSession zentad("ZentAd");
  EXPECT_EQ(Ask(zentad.parser, 10, "1001", 0), (AccountAnswer{false, 1, 1}));
  EXPECT_EQ(Ask(zentad.parser, 10, "  ", 5), (AccountAnswer{false, 5, 5}));
  ParserSession disabled("ROSSI");
  disabled.parser.SetRevokeDisabilitata(true);
  EXPECT_EQ(Ask(disabled.parser, 10, "1001", 0), (AccountAnswer{false, 1, 1}));
  EXPECT_TRUE(zentad.Statements().empty());
  EXPECT_TRUE(disabled.Statements().empty());
}

TEST(AccountCheck, UserIsLookedUpOnlyWhileTheIdIsZero) {
  // An id the host set is used as it stands: BIANCHI's id under ROSSI's code.
  ParserSession rossi("ROSSI");
  rossi.parser.SetIdUser(demo::user_id::kBianchi);
  EXPECT_EQ(Ask(rossi.parser, 10, "1001", 0), (AccountAnswer{false, 1, 1}));
  EXPECT_EQ(rossi.Statements(), std::vector<std::string>{"{call SPFW_GetInfoRevokeContoPDC}"});
  EXPECT_FALSE(rossi.parser.Frame().UserResolved());
}

TEST(AccountCheck, MissingProcedureIsReportedAndTheFlagsKeepTheirValues) {
  ParserSession rossi("ROSSI");
  rossi.Run("DELETE FROM ZARVIK_ROUTINES WHERE ROUTINE_NAME = 'SPFW_GetInfoRevokeContoPDC'");
  EXPECT_EQ(Ask(rossi.parser, 10, "1001", 4), (AccountAnswer{false, 4, 4}));
  EXPECT_EQ(rossi.BoxTags(), std::vector<std::string>{"ContoPDCBloccato"});
}

}  // namespace
}  // namespace zarvik
