// Rewritten statements on the demo database hide the revoked rows only.
#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "../parser_test_support.h"

namespace zarvik {
namespace {

using testing::ParserSession;

bool Has(const std::string& rows, const std::string& value) {
  return (" " + rows + " ").find(" " + value + " ") != std::string::npos;
}

TEST(RewrittenStatement, HidesTheRevokedRowsOnly) {
  const struct {
    const char* user;
    std::string statement;
    const char* gone;  // rows the plain statement returns and the rewritten does not
    const char* kept;  // rows both return
  } cases[] = {
      // Document types NCV, OFF, FTVP; customers 7 (itself), 8 (category
      // PA), 9 (grouping 1 C); office 3; warehouse A1.
      {"ROSSI",
       "SELECT D.DO11_NUMREG_CO99 FROM DO11_DOCTESTATA D INNER JOIN CG44_CLIFOR C ON "
       "C.CG44_DITTA_CG18 = D.DO11_DITTACF_CG44 AND C.CG44_TIPOCF = D.DO11_TIPOCF_CG44 AND "
       "C.CG44_CLIFOR = D.DO11_CLIFOR_CG44 WHERE D.DO11_DITTA_CG18 = 1",
       "1005 1006 1019 1007 1012 1013 1002 1001", "1008 1015"},
      {"ROSSI",
       "SELECT MG36_CODDOCUM FROM MG36_DOCUMENTI UNION SELECT PD68_CODPROG FROM PD68_PROGETTI "
       "ORDER BY 1",
       "NCV P1 P2", "FTV P3 Q1"},
      {"VERDI", "SELECT CG18_DITTA FROM CG18_DITTE", "2", "1"},
      {"BIANCHI", "SELECT PD68_CODPROG FROM PD68_PROGETTI", "Q1", "Q2 Q3 P1"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.statement);
    ParserSession session(c.user);
    const std::string before = session.Rows(c.statement);
    const std::string rewritten = session.Rewrite(c.statement);
    const std::string after = session.Rows(rewritten);
    std::istringstream gone(c.gone), kept(c.kept), returned(after);
    for (std::string v; gone >> v;) EXPECT_TRUE(Has(before, v) && !Has(after, v)) << v;
    for (std::string v; kept >> v;) EXPECT_TRUE(Has(before, v) && Has(after, v)) << v;
    for (std::string v; returned >> v;) EXPECT_TRUE(Has(before, v)) << v;
    EXPECT_TRUE(session.Boxes().empty());
    ParserSession zentad("ZentAd");
    EXPECT_EQ(zentad.Rewrite(c.statement), c.statement);
  }
}

}  // namespace
}  // namespace zarvik
