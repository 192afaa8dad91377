// ElaboraStrSQL to the character: the worked example, every scanner rule
// with a statement that exercises it, the guard exits and the failures.
// The user is ROSSI (id 5) of the demo database, company 1.
#include <gtest/gtest.h>

#include <string>

#include "parser/rewriter/scan_report.h"
#include "rewriter_probe.h"

namespace zarvik {
namespace {

using testing::RewriterSession;

// The VFW31_RVKPARAMETRI test the dispatch gives MG36 for user 5, written
// out literally once; the other tables are pinned in table_dispatch_test.cpp.
const std::string kMG36 =
    " NOT EXISTS(SELECT *  FROM VFW31_RVKPARAMETRI  WHERE FW31_ID_FW07 = 5  AND FW31_INDTIPO = 7 "
    " AND FW31_FLGABILITATO = 0  AND FW31_DITTARAGG = MG36_INDSTAPER "
    " AND FW31_CODTIPO = MG36_CODDOCUM) ";

std::string Parametri(const std::string& negation, int kind, const std::string& scope,
                      const std::string& code) {
  return negation + " EXISTS(SELECT * " + " FROM VFW31_RVKPARAMETRI " + " WHERE FW31_ID_FW07 = 5 " +
         " AND FW31_INDTIPO = " + std::to_string(kind) + " " + " AND FW31_FLGABILITATO = 0 " +
         " AND FW31_DITTARAGG = " + scope + " " + " AND FW31_CODTIPO = " + code + ") ";
}

const std::string kMG3N = Parametri(" NOT", 9, "MG3N_INDSTAPER", "MG3N_CODTRASFDOC");
const std::string kMG58 = Parametri(" NOT", 6, "MG58_DITTA_CG18", "MG58_CODDEP");
const std::string kPD68 = Parametri(" NOT ", 8, "PD68_DITTA_CG18", "PD68_CODPROG");
const std::string kMG0F = Parametri(" NOT ", 30, "MG0F_DITTA_CG18", "MG0F_CODPARAM");
const std::string kPD0C = std::string(" NOT ") + " EXISTS(SELECT * " + " FROM VFW3N_RVKNODI " +
                          " WHERE FW3N_ID_FW07 = 5 " + " AND FW3N_DITTA_CG18 = PD0C_DITTA_CG18 " +
                          " AND FW3N_CODNODO = PD0C_CODNODO " +
                          " AND FW3N_CODPROG_PD68 = PD0C_CODPROG_PD68) ";
const std::string kCG18 = " CG18_DITTA NOT IN (2) ";

// The customer/supplier condition for CG44 columns qualified with `q`.
std::string CliFor(const std::string& q) {
  return std::string(" NOT EXISTS ") + " (SELECT RVKCLIFOR " + "  FROM VFW32_LISTACFREVOCATI " +
         "  WHERE RVKDITTA = " + q + "CG44_DITTA_CG18" + "     AND RVKTIPOCF = " + q +
         "CG44_TIPOCF" + "     AND RVKCLIFOR = " + q + "CG44_CLIFOR" + "     AND RVKUTENTE = 5 " +
         " )  ";
}

class ElaboraStrSQL : public ::testing::Test {
 protected:
  RewriterSession rossi{"ROSSI"};
};

TEST_F(ElaboraStrSQL, WorkedExample) {
  std::string statement =
      "SELECT A.MG36_NUMREG FROM MG36_DOCUMENTI A WHERE A.MG36_DITTA_CG18 = 1 ORDER BY "
      "A.MG36_NUMREG";
  EXPECT_EQ(rossi.parser.ElaboraStrSQL(statement),
            "SELECT A.MG36_NUMREG FROM MG36_DOCUMENTI A  WHERE (  A.MG36_DITTA_CG18 = 1 )  AND  "
            "NOT EXISTS(SELECT *  FROM VFW31_RVKPARAMETRI  WHERE FW31_ID_FW07 = 5  AND "
            "FW31_INDTIPO = 7  AND FW31_FLGABILITATO = 0  AND FW31_DITTARAGG = MG36_INDSTAPER  AND "
            "FW31_CODTIPO = MG36_CODDOCUM)  ORDER BY A.MG36_NUMREG");
  // The argument is the working buffer: it ends as the cut head.
  EXPECT_EQ(statement, "SELECT A.MG36_NUMREG FROM MG36_DOCUMENTI A ");
  EXPECT_TRUE(rossi.sink->messages.empty());
}

TEST_F(ElaboraStrSQL, FirstAliasQualifiesTheFromListAndTheJoinKeepsItsOwn) {
  const std::string s =
      "SELECT D.MG36_CODDOCUM, C.CG44_RAGSOC FROM MG36_DOCUMENTI D INNER JOIN CG44_CLIFOR C ON "
      "C.CG44_DITTA_CG18 = D.MG36_DITTA_CG18 WHERE D.MG36_INDSTAPER = 0";
  rewriter::ScanReport report;
  std::string buffer = s;
  EXPECT_EQ(rossi.parser.ElaboraStrSQLExplained(buffer, report),
            "SELECT D.MG36_CODDOCUM, C.CG44_RAGSOC FROM MG36_DOCUMENTI D INNER JOIN CG44_CLIFOR C "
            "ON C.CG44_DITTA_CG18 = D.MG36_DITTA_CG18 " +
                std::string(" WHERE (  D.MG36_INDSTAPER = 0 ) ") + " AND " + kMG36 + " AND " +
                CliFor("C."));
  ASSERT_EQ(report.tables.size(), 2U);
  EXPECT_EQ(report.outcome, rewriter::ScanOutcome::kRewritten);
  EXPECT_EQ(report.tables[0].prefix, "MG36");
  EXPECT_EQ(report.tables[0].source, rewriter::TableSource::kFromList);
  EXPECT_EQ(report.tables[0].alias, "D.");
  EXPECT_EQ(report.tables[0].condition, " AND " + kMG36);
  EXPECT_EQ(report.tables[1].prefix, "CG44");
  EXPECT_EQ(report.tables[1].source, rewriter::TableSource::kJoin);
  EXPECT_EQ(report.tables[1].alias, "C.");
  EXPECT_EQ(report.tables[1].condition, " AND " + CliFor("C."));
  // The shared state is reset at the end of the segment.
  EXPECT_FALSE(RewriterProbe::CliForDone(rossi.parser));
  EXPECT_EQ(RewriterProbe::CurrentAlias(rossi.parser), "");
  EXPECT_FALSE(RewriterProbe::FromRewriter(rossi.parser));
}

struct GoldenCase {
  const char* rule;
  std::string statement;
  std::string expected;
};

void PrintTo(const GoldenCase& c, std::ostream* out) { *out << c.rule; }

class ScannerRule : public ::testing::TestWithParam<GoldenCase> {};

TEST_P(ScannerRule, RewritesToTheCharacter) {
  RewriterSession rossi("ROSSI");
  EXPECT_EQ(rossi.Rewrite(GetParam().statement), GetParam().expected);
  EXPECT_TRUE(rossi.sink->messages.empty());
}

INSTANTIATE_TEST_SUITE_P(
    ElaboraStrSQL, ScannerRule,
    ::testing::Values(
        GoldenCase{"union: each segment gets its own conditions",
                   "SELECT MG36_CODDOCUM FROM MG36_DOCUMENTI UNION SELECT PD68_CODPROG FROM "
                   "PD68_PROGETTI ORDER BY 1",
                   "SELECT MG36_CODDOCUM FROM MG36_DOCUMENTI " + std::string(" WHERE ") + kMG36 +
                       "UNION SELECT PD68_CODPROG FROM PD68_PROGETTI" + " WHERE " + kPD68 +
                       " ORDER BY 1"},
        GoldenCase{"union inside quotes does not split",
                   "SELECT MG36_CODDOCUM FROM MG36_DOCUMENTI WHERE MG36_DESCR <> 'UNION'",
                   "SELECT MG36_CODDOCUM FROM MG36_DOCUMENTI " +
                       std::string(" WHERE (  MG36_DESCR <> 'UNION' ) ") + " AND " + kMG36},
        GoldenCase{"no FROM: unchanged", "SELECT 1", "SELECT 1"},
        GoldenCase{"a segment without FROM is copied",
                   "SELECT 'NONE' UNION SELECT MG36_CODDOCUM FROM MG36_DOCUMENTI",
                   "SELECT 'NONE' UNION SELECT MG36_CODDOCUM FROM MG36_DOCUMENTI" +
                       std::string(" WHERE ") + kMG36},
        GoldenCase{"derived table: unchanged",
                   "SELECT * FROM (SELECT MG36_CODDOCUM FROM MG36_DOCUMENTI) X",
                   "SELECT * FROM (SELECT MG36_CODDOCUM FROM MG36_DOCUMENTI) X"},
        GoldenCase{"derived table in a later segment: that segment alone",
                   "SELECT MG36_CODDOCUM FROM MG36_DOCUMENTI UNION SELECT * FROM (SELECT "
                   "PD68_CODPROG FROM PD68_PROGETTI) X",
                   "UNION SELECT * FROM (SELECT PD68_CODPROG FROM PD68_PROGETTI) X"},
        GoldenCase{"lower-case keywords",
                   "select a.mg36_numreg from MG36_DOCUMENTI a where a.mg36_indstaper = 0 order "
                   "by a.mg36_numreg",
                   "select a.mg36_numreg from MG36_DOCUMENTI a " +
                       std::string(" WHERE (  a.mg36_indstaper = 0 ) ") + " AND " + kMG36 +
                       " order by a.mg36_numreg"},
        GoldenCase{"lower-case join",
                   "select * from PD68_PROGETTI p inner join PD0C_NODO n on "
                   "n.PD0C_CODPROG_PD68 = p.PD68_CODPROG where p.PD68_DITTA_CG18 = 1",
                   "select * from PD68_PROGETTI p inner join PD0C_NODO n on "
                   "n.PD0C_CODPROG_PD68 = p.PD68_CODPROG " +
                       std::string(" WHERE (  p.PD68_DITTA_CG18 = 1 ) ") + " AND " + kPD68 +
                       " AND " + kPD0C},
        GoldenCase{"several FROM-list tables with aliases",
                   "SELECT * FROM PD68_PROGETTI P, PD0C_NODO N, MG0F_BLMPARAM B WHERE "
                   "N.PD0C_CODPROG_PD68 = P.PD68_CODPROG",
                   "SELECT * FROM PD68_PROGETTI P, PD0C_NODO N, MG0F_BLMPARAM B " +
                       std::string(" WHERE (  N.PD0C_CODPROG_PD68 = P.PD68_CODPROG ) ") + " AND " +
                       kPD68 + " AND " + kPD0C + " AND " + kMG0F},
        GoldenCase{"without a WHERE the first condition opens it",
                   "SELECT * FROM PD68_PROGETTI P, MG0F_BLMPARAM B",
                   "SELECT * FROM PD68_PROGETTI P, MG0F_BLMPARAM B" + std::string(" WHERE ") +
                       kPD68 + " AND " + kMG0F},
        GoldenCase{
            "a blank before the comma ends the FROM list",
            "SELECT * FROM PD68_PROGETTI P , MG0F_BLMPARAM B",
            "SELECT * FROM PD68_PROGETTI P , MG0F_BLMPARAM B" + std::string(" WHERE ") + kPD68},
        GoldenCase{"repeated prefix restricted once",
                   "SELECT * FROM MG36_DOCUMENTI A, MG36_DOCUMENTI B WHERE A.MG36_CODDOCUM = "
                   "B.MG36_CODDOCUM",
                   "SELECT * FROM MG36_DOCUMENTI A, MG36_DOCUMENTI B " +
                       std::string(" WHERE (  A.MG36_CODDOCUM = B.MG36_CODDOCUM ) ") + " AND " +
                       kMG36},
        GoldenCase{"CG16 after CG44: the customer condition alone",
                   "SELECT * FROM CG44_CLIFOR A, CG16_ANAGRAFICA B WHERE A.CG44_CODANAG_CG16 = "
                   "B.CG16_CODICE",
                   "SELECT * FROM CG44_CLIFOR A, CG16_ANAGRAFICA B " +
                       std::string(" WHERE (  A.CG44_CODANAG_CG16 = B.CG16_CODICE ) ") + " AND " +
                       CliFor(" ")},
        GoldenCase{"CG18 after CG16 takes its place",
                   "SELECT * FROM CG16_ANAGRAFICA B, CG18_DITTE D WHERE 1 = 1",
                   "SELECT * FROM CG16_ANAGRAFICA B, CG18_DITTE D " +
                       std::string(" WHERE (  1 = 1 ) ") + " AND " + kCG18},
        GoldenCase{"CG16 alone gives nothing",
                   "SELECT * FROM CG16_ANAGRAFICA WHERE CG16_CODICE = 1",
                   "SELECT * FROM CG16_ANAGRAFICA " + std::string(" WHERE (  CG16_CODICE = 1 ) ")},
        GoldenCase{"MG36 joined to MG3N gets no second document condition",
                   "SELECT * FROM MG3N_TRASFDOC X INNER JOIN MG36_DOCUMENTI Y ON "
                   "Y.MG36_CODDOCUM = X.MG3N_DOCORIG_MG36",
                   "SELECT * FROM MG3N_TRASFDOC X INNER JOIN MG36_DOCUMENTI Y ON "
                   "Y.MG36_CODDOCUM = X.MG3N_DOCORIG_MG36" +
                       std::string(" WHERE ") + kMG3N},
        GoldenCase{"LEFT join: the optional side is not restricted",
                   "SELECT * FROM PD68_PROGETTI P LEFT OUTER JOIN PD0C_NODO N ON "
                   "N.PD0C_CODPROG_PD68 = P.PD68_CODPROG WHERE P.PD68_DITTA_CG18 = 1",
                   "SELECT * FROM PD68_PROGETTI P LEFT OUTER JOIN PD0C_NODO N ON "
                   "N.PD0C_CODPROG_PD68 = P.PD68_CODPROG " +
                       std::string(" WHERE (  P.PD68_DITTA_CG18 = 1 ) ") + " AND " + kPD68},
        GoldenCase{"left join in lower case is restricted",
                   "SELECT * FROM PD68_PROGETTI P left outer join PD0C_NODO N ON "
                   "N.PD0C_CODPROG_PD68 = P.PD68_CODPROG WHERE P.PD68_DITTA_CG18 = 1",
                   "SELECT * FROM PD68_PROGETTI P left outer join PD0C_NODO N ON "
                   "N.PD0C_CODPROG_PD68 = P.PD68_CODPROG " +
                       std::string(" WHERE (  P.PD68_DITTA_CG18 = 1 ) ") + " AND " + kPD68 +
                       " AND " + kPD0C},
        GoldenCase{"GROUP BY goes back after the conditions",
                   "SELECT MG58_DITTA_CG18, COUNT(*) FROM MG58_DEPOSITI GROUP BY MG58_DITTA_CG18",
                   "SELECT MG58_DITTA_CG18, COUNT(*) FROM MG58_DEPOSITI" + std::string(" WHERE ") +
                       kMG58 + " GROUP BY MG58_DITTA_CG18"},
        GoldenCase{"GROUP BY followed by ON stays in its joined sub-query",
                   "SELECT * FROM PD68_PROGETTI P INNER JOIN (SELECT PD0C_CODPROG_PD68, COUNT(*) "
                   "AS NODI FROM PD0C_NODO WHERE PD0C_DITTA_CG18 = 1 GROUP BY PD0C_CODPROG_PD68) "
                   "N ON N.PD0C_CODPROG_PD68 = P.PD68_CODPROG WHERE P.PD68_DITTA_CG18 = 1",
                   "SELECT * FROM PD68_PROGETTI P INNER JOIN (SELECT PD0C_CODPROG_PD68, COUNT(*) "
                   "AS NODI FROM PD0C_NODO WHERE PD0C_DITTA_CG18 = 1 GROUP BY PD0C_CODPROG_PD68) "
                   "N ON N.PD0C_CODPROG_PD68 = P.PD68_CODPROG " +
                       std::string(" WHERE (  P.PD68_DITTA_CG18 = 1 ) ") + " AND " + kPD68},
        GoldenCase{"ORDER BY with several blanks",
                   "SELECT * FROM PD68_PROGETTI ORDER    BY PD68_CODPROG",
                   "SELECT * FROM PD68_PROGETTI" + std::string(" WHERE ") + kPD68 +
                       " ORDER    BY PD68_CODPROG"},
        GoldenCase{"join conditions do not mark the WHERE as present (deliberate)",
                   "SELECT * FROM MG97_GIACENZE G INNER JOIN MG58_DEPOSITI W ON W.MG58_CODDEP = "
                   "G.MG97_CODDEP_MG58 INNER JOIN MG0F_BLMPARAM B ON B.MG0F_DITTA_CG18 = "
                   "G.MG97_DITTA_CG18",
                   "SELECT * FROM MG97_GIACENZE G INNER JOIN MG58_DEPOSITI W ON W.MG58_CODDEP = "
                   "G.MG97_CODDEP_MG58 INNER JOIN MG0F_BLMPARAM B ON B.MG0F_DITTA_CG18 = "
                   "G.MG97_DITTA_CG18" +
                       std::string(" WHERE ") + kMG58 + " WHERE " + kMG0F},
        GoldenCase{"tabs and line breaks are not blanks",
                   "SELECT *\r\nFROM PD68_PROGETTI\r\nWHERE PD68_DITTA_CG18 = 1",
                   "SELECT *\r\nFROM PD68_PROGETTI\r\n" +
                       std::string(" WHERE (  PD68_DITTA_CG18 = 1 ) ") + " AND " + kPD68},
        GoldenCase{"a tab after FROM hides the table",
                   "SELECT *\r\nFROM\tPD68_PROGETTI\r\nWHERE PD68_DITTA_CG18 = 1",
                   "SELECT *\r\nFROM\tPD68_PROGETTI\r\n" +
                       std::string(" WHERE (  PD68_DITTA_CG18 = 1 ) ")}));

TEST_F(ElaboraStrSQL, TheWhereFixesTheCustomerKindHint) {
  struct Case {
    std::string where;
    int16_t hint;
  };
  for (const Case& c : {Case{"CG44_TIPOCF = 0", 0}, Case{"CG44_TIPOCF = 1", 1},
                        Case{"CG44_TIPOCF=0", -1}, Case{"CG44_CLIFOR = 1", -1}}) {
    rossi.Rewrite("SELECT * FROM CG44_CLIFOR WHERE " + c.where);
    EXPECT_EQ(RewriterProbe::TipoCFHint(rossi.parser), c.hint) << c.where;
  }
  // A statement without WHERE resets the hint.
  rossi.Rewrite("SELECT * FROM CG44_CLIFOR WHERE CG44_TIPOCF = 1");
  rossi.Rewrite("SELECT * FROM CG44_CLIFOR");
  EXPECT_EQ(RewriterProbe::TipoCFHint(rossi.parser), -1);
}

TEST_F(ElaboraStrSQL, UnpairedFromShowsTheParserErrorAndAnswersEmpty) {
  for (const std::string s :
       {"SELECT (SELECT (SELECT 1 FROM CG18_DITTE) FROM CG44_CLIFOR) FROM MG36_DOCUMENTI",
        "SELECT * FROM MG36_DOCUMENTI WHERE MG36_INDSTAPER IN (SELECT 0)",
        "SELECT MG36_CODDOCUM FROM MG36_DOCUMENTI UNION SELECT (SELECT (SELECT 1 FROM "
        "CG18_DITTE) FROM CG44_CLIFOR) FROM PD68_PROGETTI"}) {
    RewriterSession session("ROSSI");
    rewriter::ScanReport report;
    std::string buffer = s;
    EXPECT_EQ(session.parser.ElaboraStrSQLExplained(buffer, report), "") << s;
    EXPECT_EQ(report.outcome, rewriter::ScanOutcome::kParserError);
    ASSERT_EQ(session.sink->messages.size(), 1U);
    EXPECT_EQ(session.sink->messages[0].text,
              "Caso non contemplato dal Parser, segnalare il problema a Norvello");
    EXPECT_EQ(session.sink->messages[0].title, "Parser Error");
    EXPECT_EQ(session.sink->messages[0].style, msgstyle::kCritical);
  }
}

TEST_F(ElaboraStrSQL, RunTimeErrorsEndTheCallSilentlyWithAnEmptyResult) {
  struct Case {
    const char* what;
    std::string statement;
    int32_t error;
  };
  const std::string wide_select(33000, ' ');
  const std::vector<Case> cases = {
      // The look-back for LEFT would start before the first character.
      {"JOIN within the first 15 characters", "FROM ABCD JOIN PD68_PROGETTI P ON 1 = 1", 5},
      {"FROM beyond position 32767", "SELECT" + wide_select + "1 FROM PD68_PROGETTI", 6},
      {"WHERE beyond position 32767",
       "SELECT * FROM PD68_PROGETTI P" + wide_select + "WHERE P.PD68_DITTA_CG18 = 1", 6},
  };
  for (const Case& c : cases) {
    RewriterSession session("ROSSI");
    rewriter::ScanReport report;
    std::string buffer = c.statement;
    EXPECT_EQ(session.parser.ElaboraStrSQLExplained(buffer, report), "") << c.what;
    EXPECT_EQ(report.outcome, rewriter::ScanOutcome::kRunTimeError) << c.what;
    EXPECT_EQ(report.error_number, c.error) << c.what;
    EXPECT_TRUE(session.sink->messages.empty()) << c.what;
  }
}

TEST_F(ElaboraStrSQL, AnErrorInALaterSegmentLosesTheFinishedOnes) {
  RewriterSession session("ROSSI");
  const std::string second = "UNION SELECT * FROM PD68_PROGETTI P" + std::string(33000, ' ') +
                             "WHERE P.PD68_DITTA_CG18 = 1";
  EXPECT_EQ(session.Rewrite("SELECT MG36_CODDOCUM FROM MG36_DOCUMENTI " + second), "");
}

TEST_F(ElaboraStrSQL, GuardExitsGiveTheStatementBackWithoutAQuery) {
  const std::string s = "SELECT * FROM MG36_DOCUMENTI WHERE MG36_INDSTAPER = 0";

  RewriterSession privileged("ZentAd");
  EXPECT_EQ(privileged.Rewrite(s), s);
  EXPECT_TRUE(privileged.log->statements.empty());

  RewriterSession disabled("ROSSI");
  disabled.parser.SetRevokeDisabilitata(true);
  EXPECT_EQ(disabled.Rewrite(s), s);
  EXPECT_TRUE(disabled.log->statements.empty());

  RewriterSession nobody("");
  EXPECT_EQ(nobody.Rewrite(s), s);
  EXPECT_TRUE(nobody.log->statements.empty());

  // The customer/supplier code wins: "ZentAd" there is privileged too.
  RewriterSession clifor("ROSSI");
  clifor.parser.SetCodiceUtenteCLIFOR("ZentAd");
  EXPECT_EQ(clifor.Rewrite(s), s);
  EXPECT_TRUE(clifor.log->statements.empty());

  // "zentad" is an ordinary code: unknown user, id 0, conditions for id 0.
  RewriterSession other_case("zentad");
  EXPECT_NE(other_case.Rewrite(s), s);
}

TEST_F(ElaboraStrSQL, ResolvesTheUserOnceAcrossCalls) {
  const std::string s = "SELECT * FROM MG36_DOCUMENTI";
  rossi.Rewrite(s);
  rossi.Rewrite(s);
  size_t lookups = 0;
  for (const std::string& sql : rossi.log->statements) {
    if (sql.find("FROM FW07_APPUSER") != std::string::npos) ++lookups;
  }
  EXPECT_EQ(lookups, 1U);
}

}  // namespace
}  // namespace zarvik
