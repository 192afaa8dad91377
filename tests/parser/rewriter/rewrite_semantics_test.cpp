// Rewritten host statements run on the demo database: the rows of what is
// revoked for the user are gone, everything else stays, and the privileged
// user sees every row.
#include <gtest/gtest.h>

#include <ostream>
#include <sstream>
#include <string>

#include "../parser_test_support.h"

namespace zarvik {
namespace {

using testing::ParserSession;

struct SemanticCase {
  const char* name;  // the test name: letters, digits and '_'
  const char* user;
  std::string statement;
  const char* gone;  // blank-separated rows the plain statement returns and the rewritten does not
  const char* kept;  // blank-separated rows both return
};

void PrintTo(const SemanticCase& c, std::ostream* out) { *out << c.name; }

bool Has(const std::string& rows, const std::string& value) {
  return (" " + rows + " ").find(" " + value + " ") != std::string::npos;
}

class RewrittenStatement : public ::testing::TestWithParam<SemanticCase> {};

TEST_P(RewrittenStatement, HidesTheRevokedRowsOnly) {
  const SemanticCase& c = GetParam();
  ParserSession session(c.user);
  const std::string before = session.Rows(c.statement);
  const std::string rewritten = session.Rewrite(c.statement);
  ASSERT_NE(rewritten, c.statement);
  const std::string after = session.Rows(rewritten);
  std::istringstream gone(c.gone), kept(c.kept), returned(after);
  for (std::string v; gone >> v;) {
    EXPECT_TRUE(Has(before, v)) << v << " is in the data";
    EXPECT_FALSE(Has(after, v)) << v << " is revoked\n" << rewritten;
  }
  for (std::string v; kept >> v;) {
    EXPECT_TRUE(Has(before, v)) << v;
    EXPECT_TRUE(Has(after, v)) << v << " is not revoked\n" << rewritten;
  }
  // Nothing appears that the plain statement does not return.
  for (std::string v; returned >> v;) EXPECT_TRUE(Has(before, v)) << v;
  EXPECT_TRUE(session.Boxes().empty());

  // The privileged user gets the statement back and sees every row.
  ParserSession zentad("ZentAd");
  EXPECT_EQ(zentad.Rewrite(c.statement), c.statement);
  EXPECT_EQ(zentad.Rows(c.statement), before);
}

INSTANTIATE_TEST_SUITE_P(
    DemoDatabase, RewrittenStatement,
    ::testing::Values(
        // NCV, OFF and the personalised FTVP are revoked.
        SemanticCase{"DocumentTypes", "ROSSI",
                     "SELECT MG36_CODDOCUM FROM MG36_DOCUMENTI ORDER BY MG36_CODDOCUM",
                     "NCV OFF FTVP", "FTV DDT OCL FTA"},
        // 1005 NCV, 1006 OFF, 1019 FTVP (document types); 1007 customer 7
        // (revoked by itself); 1012 customer 8 (macro-category PA); 1013
        // customer 9 (grouping 1 C); 1002 office 3; 1001 warehouse A1.
        SemanticCase{"DocumentHeadersWithCustomers", "ROSSI",
                     "SELECT D.DO11_NUMREG_CO99, C.CG44_RAGSOC FROM DO11_DOCTESTATA D INNER JOIN "
                     "CG44_CLIFOR C ON C.CG44_DITTA_CG18 = D.DO11_DITTACF_CG44 AND C.CG44_TIPOCF "
                     "= D.DO11_TIPOCF_CG44 AND C.CG44_CLIFOR = D.DO11_CLIFOR_CG44 WHERE "
                     "D.DO11_DITTA_CG18 = 1 ORDER BY D.DO11_NUMREG_CO99",
                     "1005 1006 1019 1007 1012 1013 1002 1001", "1008 1015"},
        // 7 by itself, 5 and 6 macro-area SUD, 2 zone TO, 8 PA, 9 grouping
        // 1 C, 11 grouping 2 VIP, 10 grouping 3 X2.
        SemanticCase{"Customers", "ROSSI",
                     "SELECT CG44_CLIFOR FROM CG44_CLIFOR WHERE CG44_DITTA_CG18 = 1 AND "
                     "CG44_TIPOCF = 0 ORDER BY CG44_CLIFOR",
                     "7 5 6 2 8 9 11 10", "1 3 4 12 13 40"},
        SemanticCase{"Projects", "ROSSI",
                     "SELECT PD68_CODPROG FROM PD68_PROGETTI WHERE PD68_DITTA_CG18 = 1", "P1 P2",
                     "P3 P4 P5"},
        SemanticCase{"ProjectsOfCompany2", "BIANCHI",
                     "SELECT PD68_CODPROG FROM PD68_PROGETTI ORDER BY PD68_DITTA_CG18", "Q1",
                     "Q2 Q3 P1"},
        SemanticCase{"Warehouses", "ROSSI",
                     "SELECT MG58_CODDEP FROM MG58_DEPOSITI WHERE MG58_DITTA_CG18 = 1", "A1 B2",
                     "C3 D4"},
        SemanticCase{"StockOfTheVisibleWarehouses", "ROSSI",
                     "SELECT G.MG97_CODART_MG66 FROM MG97_GIACENZE G INNER JOIN MG58_DEPOSITI W "
                     "ON W.MG58_DITTA_CG18 = G.MG97_DITTA_CG18 AND W.MG58_CODDEP = "
                     "G.MG97_CODDEP_MG58 WHERE G.MG97_DITTA_CG18 = 1",
                     "ART001 ART004 ART002", "ART005 ART006 ART011"},
        SemanticCase{"Companies", "ROSSI", "SELECT CG18_DITTA FROM CG18_DITTE", "2", "1"},
        SemanticCase{"CompaniesOfAGroupBasedUser", "VERDI", "SELECT CG18_DITTA FROM CG18_DITTE",
                     "2", "1"},
        // P4/N1 revoked, P5/N1 enabled again.
        SemanticCase{"ProjectNodes", "ROSSI",
                     "SELECT PD0C_CODPROG_PD68 FROM PD0C_NODO WHERE PD0C_DITTA_CG18 = 1 AND "
                     "PD0C_CODNODO = 'N1'",
                     "P4", "P3 P5"},
        SemanticCase{"UnionOfDocumentsAndProjects", "ROSSI",
                     "SELECT MG36_CODDOCUM FROM MG36_DOCUMENTI UNION SELECT PD68_CODPROG FROM "
                     "PD68_PROGETTI ORDER BY 1",
                     "NCV P1 P2", "FTV P3 Q1"},
        SemanticCase{"GoodsBlockingModels", "ROSSI",
                     "SELECT MG0F_CODPARAM FROM MG0F_BLMPARAM WHERE MG0F_DITTA_CG18 = 1", "BLM2",
                     "BLM1 BLM3"},
        // Register type 3 and STORNO.
        SemanticCase{"AccountingReasons", "ROSSI",
                     "SELECT C.CG33_CODICE FROM CG33_TABCAU C WHERE C.CG33_DESCR <> ''",
                     "CORR CORRV STORNO", "GIRO FATVEN FATACQ"},
        SemanticCase{"BranchOffices", "ROSSI",
                     "SELECT CG31_CODICE FROM CG31_SEDI WHERE CG31_DITTA_CG18 = 1", "3 12", "1 7"}),
    [](const ::testing::TestParamInfo<SemanticCase>& info) { return info.param.name; });

TEST(RewrittenStatement, AUserWithoutRevocationsSeesEveryRow) {
  // GIALLI has nothing revoked: the conditions are there and keep every row.
  const std::string s =
      "SELECT D.DO11_NUMREG_CO99 FROM DO11_DOCTESTATA D WHERE D.DO11_DITTA_CG18 = 1";
  ParserSession gialli("GIALLI");
  const std::string rewritten = gialli.Rewrite(s);
  EXPECT_NE(rewritten, s);
  EXPECT_EQ(gialli.Rows(rewritten), gialli.Rows(s));
}

}  // namespace
}  // namespace zarvik
