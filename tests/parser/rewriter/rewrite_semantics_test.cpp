// Rewritten host statements run on the demo database: the rows of what is
// revoked for the user are gone, everything else stays, and the privileged
// user sees every row.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "demo/tour.h"
#include "rewriter_probe.h"

namespace zarvik {
namespace {

using testing::RewriterSession;
using Values = std::vector<std::string>;

// The first column of every row the statement returns, as text.
Values Rows(db::Connection& db, const std::string& sql) {
  Values values;
  for (const auto& row : demo::QueryRows(db, sql)) values.push_back(row.at(0).ConcatText());
  return values;
}

bool Has(const Values& values, const std::string& v) {
  return std::find(values.begin(), values.end(), v) != values.end();
}

struct SemanticCase {
  const char* what;
  std::string user;
  std::string statement;
  Values gone;  // rows the plain statement returns and the rewritten one must not
  Values kept;  // rows both return
};

void PrintTo(const SemanticCase& c, std::ostream* out) { *out << c.what; }

class RewrittenStatement : public ::testing::TestWithParam<SemanticCase> {};

TEST_P(RewrittenStatement, HidesTheRevokedRowsOnly) {
  const SemanticCase& c = GetParam();
  RewriterSession session(c.user);
  const Values before = Rows(*session.db, c.statement);
  const std::string rewritten = session.Rewrite(c.statement);
  ASSERT_NE(rewritten, c.statement);
  const Values after = Rows(*session.db, rewritten);
  for (const std::string& v : c.gone) {
    EXPECT_TRUE(Has(before, v)) << v << " is in the data";
    EXPECT_FALSE(Has(after, v)) << v << " is revoked\n" << rewritten;
  }
  for (const std::string& v : c.kept) {
    EXPECT_TRUE(Has(before, v)) << v;
    EXPECT_TRUE(Has(after, v)) << v << " is not revoked\n" << rewritten;
  }
  // Nothing appears that the plain statement does not return.
  for (const std::string& v : after) EXPECT_TRUE(Has(before, v)) << v;
  EXPECT_TRUE(session.sink->messages.empty());

  // The privileged user gets the statement back and sees every row.
  RewriterSession zentad("ZentAd");
  const std::string unchanged = zentad.Rewrite(c.statement);
  EXPECT_EQ(unchanged, c.statement);
  EXPECT_EQ(Rows(*zentad.db, unchanged), before);
}

INSTANTIATE_TEST_SUITE_P(
    DemoDatabase, RewrittenStatement,
    ::testing::Values(
        SemanticCase{"document types (NCV, OFF and the personalised FTVP revoked)",
                     "ROSSI",
                     "SELECT MG36_CODDOCUM FROM MG36_DOCUMENTI ORDER BY MG36_CODDOCUM",
                     {"NCV", "OFF", "FTVP"},
                     {"FTV", "DDT", "OCL", "FTA"}},
        SemanticCase{"document headers with their customers",
                     "ROSSI",
                     "SELECT D.DO11_NUMREG_CO99, C.CG44_RAGSOC FROM DO11_DOCTESTATA D INNER JOIN "
                     "CG44_CLIFOR C ON C.CG44_DITTA_CG18 = D.DO11_DITTACF_CG44 AND C.CG44_TIPOCF "
                     "= D.DO11_TIPOCF_CG44 AND C.CG44_CLIFOR = D.DO11_CLIFOR_CG44 WHERE "
                     "D.DO11_DITTA_CG18 = 1 ORDER BY D.DO11_NUMREG_CO99",
                     // 1005 NCV, 1006 OFF, 1019 FTVP (document types); 1007 customer 7
                     // (revoked by itself); 1012 customer 8 (macro-category PA); 1013
                     // customer 9 (grouping 1 C); 1002 office 3; 1001 warehouse A1.
                     {"1005", "1006", "1019", "1007", "1012", "1013", "1002", "1001"},
                     {"1008", "1015"}},
        SemanticCase{"customers of the FROM list",
                     "ROSSI",
                     "SELECT CG44_CLIFOR FROM CG44_CLIFOR WHERE CG44_DITTA_CG18 = 1 AND "
                     "CG44_TIPOCF = 0 ORDER BY CG44_CLIFOR",
                     // 7 by itself, 5 and 6 macro-area SUD, 2 zone TO, 8 PA, 9 grouping 1 C,
                     // 11 grouping 2 VIP, 10 grouping 3 X2.
                     {"7", "5", "6", "2", "8", "9", "11", "10"},
                     {"1", "3", "4", "12", "13", "40"}},
        SemanticCase{"projects (P1 and P2 of company 1)",
                     "ROSSI",
                     "SELECT PD68_CODPROG FROM PD68_PROGETTI WHERE PD68_DITTA_CG18 = 1",
                     {"P1", "P2"},
                     {"P3", "P4", "P5"}},
        SemanticCase{"project of company 2 for BIANCHI",
                     "BIANCHI",
                     "SELECT PD68_CODPROG FROM PD68_PROGETTI ORDER BY PD68_DITTA_CG18",
                     {"Q1"},
                     {"Q2", "Q3", "P1"}},
        SemanticCase{"warehouses (A1 and B2 of company 1)",
                     "ROSSI",
                     "SELECT MG58_CODDEP FROM MG58_DEPOSITI WHERE MG58_DITTA_CG18 = 1",
                     {"A1", "B2"},
                     {"C3", "D4"}},
        SemanticCase{"stock of the visible warehouses",
                     "ROSSI",
                     "SELECT G.MG97_CODART_MG66 FROM MG97_GIACENZE G INNER JOIN MG58_DEPOSITI W "
                     "ON W.MG58_DITTA_CG18 = G.MG97_DITTA_CG18 AND W.MG58_CODDEP = "
                     "G.MG97_CODDEP_MG58 WHERE G.MG97_DITTA_CG18 = 1",
                     {"ART001", "ART004", "ART002"},
                     {"ART005", "ART006", "ART011"}},
        SemanticCase{"companies (company 2 excluded)",
                     "ROSSI",
                     "SELECT CG18_DITTA FROM CG18_DITTE",
                     {"2"},
                     {"1"}},
        SemanticCase{"companies, group-based user",
                     "VERDI",
                     "SELECT CG18_DITTA FROM CG18_DITTE",
                     {"2"},
                     {"1"}},
        SemanticCase{"project nodes N1 (P4/N1 revoked, P5/N1 enabled again)",
                     "ROSSI",
                     "SELECT PD0C_CODPROG_PD68 FROM PD0C_NODO WHERE PD0C_DITTA_CG18 = 1 AND "
                     "PD0C_CODNODO = 'N1'",
                     {"P4"},
                     {"P3", "P5"}},
        SemanticCase{"union of documents and projects",
                     "ROSSI",
                     "SELECT MG36_CODDOCUM FROM MG36_DOCUMENTI UNION SELECT PD68_CODPROG FROM "
                     "PD68_PROGETTI ORDER BY 1",
                     {"NCV", "P1", "P2"},
                     {"FTV", "P3", "Q1"}},
        SemanticCase{"goods-blocking models and free reports",
                     "ROSSI",
                     "SELECT MG0F_CODPARAM FROM MG0F_BLMPARAM WHERE MG0F_DITTA_CG18 = 1",
                     {"BLM2"},
                     {"BLM1", "BLM3"}},
        SemanticCase{"accounting reasons (register type 3 and STORNO)",
                     "ROSSI",
                     "SELECT C.CG33_CODICE FROM CG33_TABCAU C WHERE C.CG33_DESCR <> ''",
                     {"CORR", "CORRV", "STORNO"},
                     {"GIRO", "FATVEN", "FATACQ"}},
        SemanticCase{"branch offices (3 and 12)",
                     "ROSSI",
                     "SELECT CG31_CODICE FROM CG31_SEDI WHERE CG31_DITTA_CG18 = 1",
                     {"3", "12"},
                     {"1", "7"}}));

TEST(RewrittenStatement, AUserWithoutRevocationsSeesEveryRow) {
  // GIALLI has nothing revoked: the conditions are there and keep every row.
  const std::string s =
      "SELECT D.DO11_NUMREG_CO99 FROM DO11_DOCTESTATA D WHERE D.DO11_DITTA_CG18 = 1";
  RewriterSession gialli("GIALLI");
  const std::string rewritten = gialli.Rewrite(s);
  EXPECT_NE(rewritten, s);
  EXPECT_EQ(Rows(*gialli.db, rewritten), Rows(*gialli.db, s));
}

}  // namespace
}  // namespace zarvik
