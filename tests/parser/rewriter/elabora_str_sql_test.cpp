// ElaboraStrSQL: one example per scanner quirk (the digest pins the bytes).
#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "../parser_test_support.h"
#include "parser/rewriter/scan_report.h"

namespace zarvik {
namespace {

using testing::CliForCondition;
using testing::ParserSession;
using testing::RossiTableText;

constexpr auto& T = RossiTableText;  // ROSSI's condition for a table

// The wrapped WHERE of the host and the conditions behind it.
std::string Where(const std::string& host) { return " WHERE (  " + host + " )  AND "; }

TEST(ElaboraStrSQL, TheReportNamesEachTableItsAliasSourceAndCondition) {
  ParserSession rossi("ROSSI");
  // The first alias qualifies the FROM list, a join keeps its own.
  const std::string statement =
      "SELECT D.MG36_CODDOCUM, C.CG44_RAGSOC FROM MG36_DOCUMENTI D INNER JOIN CG44_CLIFOR C ON "
      "C.CG44_DITTA_CG18 = D.MG36_DITTA_CG18 WHERE D.MG36_INDSTAPER = 0";
  std::string buffer = statement;
  rewriter::ScanReport report;
  rossi.parser.ElaboraStrSQLExplained(buffer, report);
  EXPECT_EQ(report.outcome, rewriter::ScanOutcome::kRewritten);
  // The argument is the working buffer: it ends as the cut head.
  EXPECT_EQ(buffer + "WHERE D.MG36_INDSTAPER = 0", statement);
  std::string tables;
  for (const auto& t : report.tables) {
    tables += t.prefix + "|" + t.alias + "|" + TableSourceName(t.source) + "|" + t.condition + "\n";
  }
  EXPECT_EQ(tables, "MG36|D.|FROM list| AND " + T("MG36") + "\nCG44|C.|join| AND " +
                        CliForCondition("C.") + "\n");
  // A CG18 after CG16 takes its place in the recognised tables.
  buffer = "SELECT * FROM CG16_ANAGRAFICA B, CG18_DITTE D WHERE 1 = 1";
  rossi.parser.ElaboraStrSQLExplained(buffer, report);
  ASSERT_EQ(report.tables.size(), 1U);
  EXPECT_EQ(report.tables[0].prefix, "CG18");
}

struct Rule {
  const char* rule;
  std::string statement, expected;
};
// A statement `head` WHERE `host`, rewritten with the host's condition wrapped.
Rule Wrapped(const char* rule, const std::string& head, const std::string& host,
             const std::string& conditions) {
  return {rule, head + "WHERE " + host, head + Where(host) + conditions};
}

TEST(ElaboraStrSQL, EachScannerRuleRewritesToTheCharacter) {
  const std::string pd68_pd0c = "SELECT * FROM PD68_PROGETTI P LEFT OUTER JOIN PD0C_NODO N ON ";
  const std::string mg3n_joined =
      "SELECT * FROM MG58_DEPOSITI A INNER JOIN MG3N_TRASFDOC X ON 1 = 1 INNER JOIN "
      "MG36_DOCUMENTI Y ON 1 = 1";
  const std::string stock_joins =
      "SELECT * FROM MG97_GIACENZE G INNER JOIN MG58_DEPOSITI W ON W.MG58_CODDEP = "
      "G.MG97_CODDEP_MG58 INNER JOIN MG0F_BLMPARAM B ON B.MG0F_DITTA_CG18 = G.MG97_DITTA_CG18";
  const Rule cases[] = {
      {"derived table in a later segment: that segment alone (deliberate)",
       "SELECT MG36_CODDOCUM FROM MG36_DOCUMENTI UNION SELECT * FROM (SELECT PD68_CODPROG FROM "
       "PD68_PROGETTI) X",
       "UNION SELECT * FROM (SELECT PD68_CODPROG FROM PD68_PROGETTI) X"},
      Wrapped("CG16 after CG44: the customer condition alone",
              "SELECT * FROM CG44_CLIFOR A, CG16_ANAGRAFICA B ",
              "A.CG44_CODANAG_CG16 = B.CG16_CODICE", CliForCondition(" ")),
      {"MG36 joined to MG3N gets no second document condition",
       "SELECT * FROM MG3N_TRASFDOC X INNER JOIN MG36_DOCUMENTI Y ON Y.MG36_CODDOCUM = "
       "X.MG3N_DOCORIG_MG36",
       "SELECT * FROM MG3N_TRASFDOC X INNER JOIN MG36_DOCUMENTI Y ON Y.MG36_CODDOCUM = "
       "X.MG3N_DOCORIG_MG36 WHERE " +
           T("MG3N")},
      {"nor after a joined MG3N", mg3n_joined,
       mg3n_joined + " WHERE " + T("MG58") + " AND " + T("MG3N")},
      Wrapped("left join in lower case is restricted (deliberate)",
              "SELECT * FROM PD68_PROGETTI P left outer join PD0C_NODO N ON N.PD0C_CODPROG_PD68 = "
              "P.PD68_CODPROG ",
              "P.PD68_DITTA_CG18 = 1", T("PD68") + " AND " + T("PD0C")),
      Wrapped(
          "GROUP BY followed by ON stays in its joined sub-query",
          "SELECT * FROM PD68_PROGETTI P INNER JOIN (SELECT PD0C_CODPROG_PD68, COUNT(*) AS NODI "
          "FROM PD0C_NODO WHERE PD0C_DITTA_CG18 = 1 GROUP BY PD0C_CODPROG_PD68) N ON "
          "N.PD0C_CODPROG_PD68 = P.PD68_CODPROG ",
          "P.PD68_DITTA_CG18 = 1", T("PD68")),
      {"join conditions do not mark the WHERE as present (deliberate)", stock_joins,
       stock_joins + " WHERE " + T("MG58") + " WHERE " + T("MG0F")},
      Wrapped("line breaks are not blanks", "SELECT *\r\nFROM PD68_PROGETTI\r\n",
              "PD68_DITTA_CG18 = 1", T("PD68")),
      {"a tab after FROM hides the table",
       "SELECT *\r\nFROM\tPD68_PROGETTI\r\nWHERE PD68_DITTA_CG18 = 1",
       "SELECT *\r\nFROM\tPD68_PROGETTI\r\n WHERE (  PD68_DITTA_CG18 = 1 ) "},
  };
  for (const auto& c : cases) {
    ParserSession rossi("ROSSI");
    EXPECT_EQ(rossi.Rewrite(c.statement), c.expected) << c.rule;
    EXPECT_TRUE(rossi.Boxes().empty()) << c.rule;
  }
}

TEST(ElaboraStrSQL, OutcomesOtherThanARewrite) {
  const std::string wide(33000, ' ');
  const std::string unpaired =
      "parser error: unpaired FROM in the select list 0 Parser Error|Caso non contemplato dal "
      "Parser, segnalare il problema a Norvello|" +
      std::to_string(msgstyle::kCritical);
  const std::string run_time = "run-time error: scan ended silently ";
  const std::pair<std::string, std::string> cases[] = {
      {"SELECT * FROM (SELECT A FROM B) X",
       "SELECT * FROM (SELECT A FROM B) Xderived table after FROM: segment returned as it is 0"},
      {"SELECT (SELECT (SELECT 1 FROM CG18_DITTE) FROM CG44_CLIFOR) FROM MG36_DOCUMENTI", unpaired},
      {"SELECT * FROM MG36_DOCUMENTI WHERE MG36_INDSTAPER IN (SELECT 0)", unpaired},
      {"SELECT MG36_CODDOCUM FROM MG36_DOCUMENTI UNION SELECT (SELECT (SELECT 1 FROM "
       "CG18_DITTE) FROM CG44_CLIFOR) FROM PD68_PROGETTI",
       unpaired},
      // Run-time errors end silently: JOIN in the first 15 characters, FROM or
      // WHERE beyond 32767, and in a later segment (the finished ones are lost).
      {"FROM ABCD JOIN PD68_PROGETTI P ON 1 = 1", run_time + "5"},
      {"SELECT" + wide + "1 FROM PD68_PROGETTI", run_time + "6"},
      {"SELECT * FROM PD68_PROGETTI P" + wide + "WHERE P.PD68_DITTA_CG18 = 1", run_time + "6"},
      {"SELECT MG36_CODDOCUM FROM MG36_DOCUMENTI UNION SELECT * FROM PD68_PROGETTI P" + wide +
           "WHERE P.PD68_DITTA_CG18 = 1",
       run_time + "6"},
  };
  for (const auto& [statement, expected] : cases) {
    ParserSession session("ROSSI");
    rewriter::ScanReport report;
    std::string buffer = statement;
    std::string seen = session.parser.ElaboraStrSQLExplained(buffer, report);
    seen += ScanOutcomeName(report.outcome) + (" " + std::to_string(report.error_number));
    for (const Message& box : session.Boxes()) {
      seen += " " + box.title + "|" + box.text + "|" + std::to_string(box.style);
    }
    EXPECT_EQ(seen, expected) << statement.substr(0, 80);
  }
}

TEST(ElaboraStrSQL, GuardExitsGiveTheStatementBackWithoutAQuery) {
  const std::string s = "SELECT * FROM MG36_DOCUMENTI WHERE MG36_INDSTAPER = 0";
  const struct {
    const char* what;
    const char* user;
    const char* clifor;  // CodiceUtenteCLIFOR when not null
    bool disabled;
  } cases[] = {{"privileged", "ZentAd", nullptr, false},
               {"disabled", "ROSSI", nullptr, true},
               {"nobody", "", nullptr, false},
               {"the customer/supplier code wins", "ROSSI", "ZentAd", false}};
  for (const auto& c : cases) {
    ParserSession session(c.user);
    if (c.clifor != nullptr) session.parser.SetCodiceUtenteCLIFOR(c.clifor);
    session.parser.SetRevokeDisabilitata(c.disabled);
    EXPECT_EQ(session.Rewrite(s), s) << c.what;
    EXPECT_TRUE(session.Statements().empty()) << c.what;
  }
  // The WHERE fixes the customer kind hint; a statement without one resets it.
  ParserSession rossi("ROSSI");
  rossi.Rewrite("SELECT * FROM CG44_CLIFOR WHERE CG44_TIPOCF = 1");
  const std::string hint = std::to_string(RewriterProbe::TipoCFHint(rossi.parser));
  rossi.Rewrite("SELECT * FROM CG44_CLIFOR");
  EXPECT_EQ(hint + "|" + std::to_string(RewriterProbe::TipoCFHint(rossi.parser)), "1|-1");
  // "zentad" is an ordinary code: unknown user, id 0, conditions for id 0.
  EXPECT_NE(ParserSession("zentad").Rewrite(s), s);
}

}  // namespace
}  // namespace zarvik
