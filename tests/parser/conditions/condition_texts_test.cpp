// The condition builders for ROSSI (id 5), for "ZentAd", and their arguments.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "../parser_test_support.h"
#include "platform/vb_error.h"

namespace zarvik {
namespace {

using testing::ParserSession;
using testing::ParserTest;
using P = CLSFW_PARSER;
using S = std::string;

enum class Compares { kUser, kClifor, kBoth };

using testing::CliFor;

// The NOT EXISTS on VFW31_RVKPARAMETRI for user 5 of a kind, scope and code.
S Kind(const S& kind, const S& scope, const S& code) {
  return " NOT EXISTS (SELECT TOP 1 1  FROM VFW31_RVKPARAMETRI  WHERE FW31_ID_FW07 = 5  AND "
         "FW31_INDTIPO = " +
         kind + "  AND FW31_FLGABILITATO = 0  AND FW31_DITTARAGG = " + scope +
         " AND FW31_CODTIPO = " + code + ") ";
}

// SQLConditionCerved on column C (both by reference), and its text.
S Cerved(P& p, bool a, int16_t operation) {
  S column = "C";
  return p.SQLConditionCerved(column, a, operation);
}
S CervedText(const S& flag) {
  return " NOT EXISTS (SELECT TOP 1 1  FROM VFW31_RVKPARAMETRI  WHERE FW31_ID_FW07 = 5  AND " +
         flag + " = 0  AND FW31_INDTIPO = 31  AND FW31_DITTARAGG = -1  AND FW31_CODTIPO = C) ";
}

const S kContiPDC =
    "EXISTS (SELECT TOP 1 1          FROM VFW31_RVKPARAMETRI WITH (NOLOCK)         WHERE "
    "FW31_ID_FW07 = 5               AND FW31_INDTIPO = 26                 AND "
    "(FW31_FLGABILITATO = 0                 ";
const S kContiPDCTail =
    ")                AND FW31_DITTARAGG = CG42_GRUPPOPDC               AND FW31_CODTIPO = "
    "CG42_CONTOPDC) ";
const S kUnchangeable = "OR FW31_FLGMODIFICA = 0                    ";
const S kJoin =
    "     INNER JOIN VFW31_RVKPARAMETRI WITH (NOLOCK)\r\n         ON CONVERT(DECIMAL(2,0), "
    "FW31_DITTARAGG) = CG42_GRUPPOPDC\r\n         AND CONVERT(CHAR(10), FW31_CODTIPO) = "
    "CG42_CONTOPDC\r\n         AND FW31_INDTIPO = 26\r\n         AND FW31_ID_FW07 = 5\r\n     AND "
    "(FW31_FLGABILITATO = 0\r\n";

struct ConditionCase {
  const char* name;
  Compares compares;
  std::function<S(P&, bool)> call;  // the builder with inserire_and
  S text;  // its answer without " AND " ("": pinned by the rewrite digest through CG44/DO11/PD90)
  S and_prefix = " AND ";  // what inserire_and puts before it
};

const std::vector<ConditionCase>& Cases() {
  static const std::vector<ConditionCase> cases = {
      {"CliFor", Compares::kClifor, [](P& p, bool a) { return p.SQLConditionCliFor("CG44", a); },
       ""},
      {"DocMG36", Compares::kClifor,
       [](P& p, bool a) { return p.SQLConditionDocMG36("MG36_CODDOCUM", a); }, ""},
      {"Contesto", Compares::kClifor, [](P& p, bool a) { return p.SQLConditionContesto("C.X", a); },
       Kind("20", "-1 ", "C.X")},
      {"Insiemi", Compares::kClifor, [](P& p, bool a) { return p.SQLConditionInsiemi("I.X", a); },
       Kind("29", "-1 ", "I.X")},
      {"Progetto", Compares::kClifor, [](P& p, bool a) { return p.SQLConditionProgetto("PX", a); },
       Kind("8", "1", "PX")},
      {"TracciatiImport", Compares::kClifor,
       [](P& p, bool a) { return p.SQLConditionTracciatiImport("T.S", Variant("T.C"), a); },
       Kind("27", "T.S", "T.C")},
      {"TracciatiExport", Compares::kClifor,
       [](P& p, bool a) { return p.SQLConditionTracciatiExport("T.S", "T.C", a); },
       Kind("28", "T.S", "T.C")},
      {"WizAnag", Compares::kClifor,
       [](P& p, bool a) { return p.SQLConditionWizAnag(3, "W.M", "W.I", a); },
       " NOT EXISTS (SELECT TOP 1 1      FROM VFW31_RVKPARAMETRI      WHERE FW31_ID_FW07 = 5    "
       "      AND FW31_INDTIPO = 16         AND FW31_FLGABILITATO = 0          AND "
       "FW31_DITTARAGG = W.I         AND FW31_CODTIPO = W.M) "},
      {"Nodo", Compares::kClifor,
       [](P& p, bool a) { return p.SQLConditionNodo("PD0C_CODNODO", "PD0C_CODPROG_PD68", a); },
       " NOT EXISTS (SELECT TOP 1 1  FROM VFW3N_RVKNODI  WHERE FW3N_ID_FW07 = 5  AND "
       "FW3N_DITTA_CG18 = 1 AND FW3N_CODPROG_PD68 = PD0C_CODPROG_PD68 AND FW3N_CODNODO = "
       "PD0C_CODNODO) "},
      {"CodSimPD90", Compares::kBoth,
       [](P& p, bool a) { return p.SQLConditionCodSimPD90("PD90_SIMULAZIONE", a); }, ""},
      // Warehouses are quoted (VERDI's list below), offices not; AllowNull adds IS NULL.
      {"Depositi", Compares::kClifor, [](P& p, bool a) { return p.SQLConditionDepositi("D", a); },
       ""},
      {"SediMov", Compares::kClifor,
       [](P& p, bool a) { return p.SQLConditionSediMov("S", a, false); }, "S NOT IN (3 , 12 )"},
      {"StatiArticolo", Compares::kClifor,
       [](P& p, bool a) { return p.SQLConditionStatiArticolo(a); },
       " MG66_INDSTATO_MG6W IN (                   (SELECT MG6W_INDSTATO                       "
       "FROM MG6W_STATIART                      WHERE NOT EXISTS (SELECT TOP 1 1               "
       "                          FROM VFW31_RVKPARAMETRI                                       "
       " WHERE FW31_CODTIPO = CAST(MG6W_INDSTATO AS NVARCHAR)                                  "
       "            AND FW31_ID_FW07 = 5                                             AND "
       "FW31_INDTIPO = 14                                                AND FW31_DITTARAGG = "
       "-1))) "},
      {"TipiListiniP", Compares::kClifor,
       [](P& p, bool a) { return p.SQLConditionTipiListiniP("TL", a); }, " TL NOT IN (2, 5)",
       " AND"},
      {"TipiMovimenti", Compares::kUser,
       [](P& p, bool a) {
         S column = "CGT0_CODICE";
         const S text = p.SQLConditionTipiMovimenti(column, a);
         EXPECT_EQ(column, "CGT0_CODICE");
         return text;
       },
       " NOT EXISTS (SELECT TOP 1 1  FROM VFW31_RVKPARAMETRI  WHERE FW31_ID_FW07 = 5  AND "
       "FW31_INDTIPO = 1  AND FW31_FLGABILITATO = 0  AND FW31_DITTARAGG = -1  AND FW31_CODTIPO = "
       "CGT0_CODICE)"},
      // CERVED operation 0 (insert) tests the insert flag, others the update flag.
      {"Cerved insert", Compares::kUser, [](P& p, bool a) { return Cerved(p, a, 0); },
       CervedText("FW31_FLGINSERISCI")},
      {"Cerved update", Compares::kUser, [](P& p, bool a) { return Cerved(p, a, -1); },
       CervedText("FW31_FLGMODIFICA")},
      {"ContiPDC", Compares::kUser,
       [](P& p, bool a) { return p.SQLConditionContiPDC("CG42_GRUPPOPDC", "CG42_CONTOPDC", a); },
       " NOT  " + kContiPDC + kUnchangeable + kContiPDCTail},
      // Blocked accounts default to counting the unchangeable ones too.
      {"ContiPDCBloccati", Compares::kUser,
       [](P& p, bool a) {
         return p.SQLConditionContiPDCBloccati("CG42_GRUPPOPDC", "CG42_CONTOPDC", a);
       },
       " " + kContiPDC + kUnchangeable + kContiPDCTail},
      {"ContiPDCBloccati changeable", Compares::kUser,
       [](P& p, bool a) {
         return p.SQLConditionContiPDCBloccati("CG42_GRUPPOPDC", "CG42_CONTOPDC", a, false);
       },
       " " + kContiPDC + "    " + kContiPDCTail},
  };
  return cases;
}

TEST(ConditionTexts, EveryBuilderForRossiAndForThePrivilegedCode) {
  for (const ConditionCase& c : Cases()) {
    SCOPED_TRACE(c.name);
    ParserSession rossi("ROSSI");
    const S text = c.call(rossi.parser, false);
    EXPECT_EQ(text, c.text.empty() ? text : c.text);
    EXPECT_NE(text, "");
    EXPECT_EQ(c.call(rossi.parser, true), c.and_prefix + text);
    EXPECT_TRUE(rossi.Boxes().empty());
    // Only the account conditions honour RevokeDisabilitata.
    rossi.parser.SetRevokeDisabilitata(true);
    const bool account = S(c.name).rfind("Conti", 0) == 0;
    EXPECT_EQ(c.call(rossi.parser, false), !account                  ? text
                                           : S(c.name) == "ContiPDC" ? ""
                                                                     : " 1=0 ");
    // "ZentAd" in the compared code: nothing, no statement; in the other: no effect.
    for (const bool user_field : {true, false}) {
      ParserSession session("ROSSI");
      (user_field ? session.parser.SetCodiceUtente("ZentAd")
                  : session.parser.SetCodiceUtenteCLIFOR("ZentAd"));
      const bool privileged =
          c.compares == Compares::kBoth || (c.compares == Compares::kUser) == user_field;
      const S answer = c.call(session.parser, true);
      // No account is blocked: a condition that selects none.
      if (privileged) {
        EXPECT_EQ(answer, S(c.name).rfind("ContiPDCBloccati", 0) == 0 ? " AND 1=0 " : "");
      }
      EXPECT_EQ(session.Statements().empty(), privileged);
    }
  }
  // The blocked-account join.
  ParserSession rossi("ROSSI");
  const S join = rossi.parser.SQLinnerjoinContiPDCBloccati("CG42_GRUPPOPDC", "CG42_CONTOPDC");
  EXPECT_EQ(join, kJoin + "                    ) ");
  EXPECT_EQ(rossi.parser.SQLinnerjoinContiPDCBloccati("CG42_GRUPPOPDC", "CG42_CONTOPDC", true),
            kJoin + "    " + kUnchangeable + ") ");
  for (const auto& [user, disabled] :
       std::vector<std::pair<S, bool>>{{"ZentAd", false}, {"ROSSI", true}}) {
    ParserSession session(user);
    session.parser.SetRevokeDisabilitata(disabled);
    EXPECT_EQ(session.parser.SQLinnerjoinContiPDCBloccati("G", "C", true),
              " INNER JOIN VFW31_RVKPARAMETRI WITH (NOLOCK) ON 1 = 0 ");
  }
}

class ConditionTest : public ParserTest {};

TEST_F(ConditionTest, CustomerColumnsFollowThePrefixTheScannerStateAndTheArguments) {
  const struct {
    const char *pref_tabella, *current_alias;
    bool from_rewriter;
    const char* tipo_cf;  // the kind column given ("" for the default)
    S ditta, tipo, clifor;
  } cases[] = {
      {"CG44", "", false, "", "CG44_DITTA_CG18", "CG44_TIPOCF", "CG44_CLIFOR"},
      // The alias wins over the rewriter, even the from-list blank.
      {"Cg44", "C.", true, "", "C.CG44_DITTA_CG18", "C.CG44_TIPOCF", "C.CG44_CLIFOR"},
      {"do11", "X.", true, "", "DO11_DITTACF_CG44", "DO11_TIPOCF_CG44", "DO11_CLIFOR_CG44"},
      // Other prefixes keep their case and trailing blanks; a given column wins.
      {"Mg36", "", false, "", "Mg36_DITTA_CG18  ", "Mg36_TIPOCF_CG44 ", "Mg36_CLIFOR_CG44 "},
      {"MG36", "", false, "T.TIPOCF", "MG36_DITTA_CG18  ", "T.TIPOCF", "MG36_CLIFOR_CG44 "},
  };
  AsUnknownUserWithId(12);
  for (const auto& c : cases) {
    RewriterProbe::SetCurrentAlias(parser, c.current_alias);
    RewriterProbe::SetFromRewriter(parser, c.from_rewriter);
    EXPECT_EQ(parser.SQLConditionCliFor(c.pref_tabella, false, "", c.tipo_cf, ""),
              CliFor(c.ditta, c.tipo, c.clifor, 12))
        << c.pref_tabella << " alias '" << c.current_alias << "'";
  }
  // All three given: used as they are; the older entry point forwards.
  RewriterProbe::SetCurrentAlias(parser, "C.");
  EXPECT_EQ(parser.SQLConditionCliFor("CG44", false, "D.DITTA", "D.TIPO", "D.CODICE", false),
            CliFor("D.DITTA", "D.TIPO", "D.CODICE", 12));
  RewriterProbe::SetCurrentAlias(parser, "");
  RewriterProbe::SetFromRewriter(parser, false);
  S pref = "cg44";
  bool inserire_and = true;
  EXPECT_EQ(parser.CLIFORCondition(pref, inserire_and),
            " AND " + CliFor("CG44_DITTA_CG18", "CG44_TIPOCF", "CG44_CLIFOR", 12));
  EXPECT_EQ(pref + (inserire_and ? "T" : "F"), "cg44T");
}

TEST_F(ConditionTest, ArgumentsThatChangeTheText) {
  AsUser("ROSSI");
  // The wizard kind picks the row kind; anything else is kind 0.
  for (const auto& [tipo_wizard, kind] :
       std::vector<std::pair<int16_t, S>>{{4, "17"}, {5, "18"}, {7, "0"}, {0, "0"}}) {
    EXPECT_NE(parser.SQLConditionWizAnag(tipo_wizard, "M", "I", false)
                  .find("         AND FW31_INDTIPO = " + kind + "         AND FW31_FLGABILITATO"),
              S::npos)
        << tipo_wizard;
  }
  // The import layout's code column is pasted as the Variant's text.
  EXPECT_EQ(parser.SQLConditionTracciatiImport("S", Variant(int32_t{7}), false),
            Kind("27", "S", "7"));
  EXPECT_EQ(parser.SQLConditionTracciatiImport("S", Variant::Null(), false), Kind("27", "S", ""));
  // A blank price-list column sends nothing; nothing revoked gives nothing.
  log->statements.clear();
  EXPECT_EQ(parser.SQLConditionTipiListiniP("  ", true), "");
  EXPECT_TRUE(Statements().empty());
  // Nothing revoked (GIALLI; ROSSI in company 2): nothing; VERDI: B2 only.
  auto gialli = Other("GIALLI");
  EXPECT_EQ(gialli->SQLConditionTipiListiniP("TL", true) + gialli->SQLConditionStatiArticolo(true),
            "");
  auto rossi2 = Other("ROSSI", Variant("2"));
  for (CLSFW_PARSER* other : {gialli.get(), rossi2.get()}) {
    EXPECT_EQ(other->SQLConditionDepositi("D", true) + other->SQLConditionSediMov("S", true), "");
  }
  EXPECT_EQ(Other("VERDI")->SQLConditionDepositi("C", false, false), "C NOT IN ('B2' )");
  // Any kind-14 row, enabled or not, makes the article-state condition.
  AddParameterRows(", FW31_FLGABILITATO", "(9001, 9, 14, -1, '1', 1)");
  EXPECT_NE(Other("GIALLI")->SQLConditionStatiArticolo(false), "");
  // One list query per call (DO11 sends the warehouse and office ones in the digest).
  log->statements.clear();
  parser.SQLConditionTipiListiniP("TL", false);
  EXPECT_EQ(LastStatement(),
            "SELECT FW31_CODTIPO  FROM VFW31_RVKPARAMETRI   WHERE FW31_ID_FW07 = 5 AND "
            "FW31_INDTIPO = 32 ");
  parser.SQLConditionStatiArticolo(false);
  EXPECT_EQ(LastStatement(),
            "SELECT TOP 1 1 FROM VFW31_RVKPARAMETRI   WHERE FW31_ID_FW07 = 5 AND FW31_INDTIPO = 14 "
            "   AND FW31_DITTARAGG = -1 ");
  EXPECT_EQ(Statements().size(), 2U);
}

TEST_F(ConditionTest, DocumentHeadersTheAgentsDocumentsAndFailures) {
  AsUser("ROSSI");
  const S plain = parser.SQLConditionDO11(false);  // pinned by the rewrite digest
  parser.SetCodiceAgente(Variant(int32_t{12}));
  const S agent =
      " EXISTS (SELECT 1 FROM DO29_DOCTESAGENTI WITH (NOLOCK) WHERE DO29_DITTA_CG18 = "
      "DO11_DITTA_CG18 AND DO29_NUMREG_CO99 = DO11_NUMREG_CO99 AND DO29_IDAGENTE_MG17 = '12')";
  EXPECT_EQ(parser.SQLConditionDO11(true), " AND " + plain + " AND " + agent);
  EXPECT_EQ(parser.SQLConditionAgentiDoc("DO11_DITTA_CG18", "DO11_NUMREG_CO99", true),
            " AND " + agent);
  // The agent's documents need neither a connection nor a resolved user.
  auto lonely = Other("ROSSI", Variant(int32_t{1}), false);
  lonely->SetCodiceAgente(Variant(int32_t{12}));
  EXPECT_EQ(lonely->SQLConditionAgentiDoc("DO11_DITTA_CG18", "DO11_NUMREG_CO99", false), agent);
  EXPECT_FALSE(lonely->Frame().UserResolved());
  // No agent code: no agent piece, and no agent rule for the rewriter.
  for (const Variant& none : {Variant(), Variant::Null(), Variant("   ")}) {
    parser.SetCodiceAgente(none);
    EXPECT_EQ(parser.SQLConditionAgentiDoc("D", "N", true) + RewriterProbe::AgentRule(parser), "");
  }
  EXPECT_EQ(parser.SQLConditionDO11(false), plain);
  parser.SetCodiceAgente(Variant("AG12   "));
  EXPECT_EQ(RewriterProbe::AgentRule(parser), " MG17_IDAGENTE = 'AG12   ' ");
  EXPECT_TRUE(Boxes().empty());
  // Failures keep the pieces built so far and show one box each.
  parser.Frame().ResolveUser();
  const S built_before_the_lists = parser.SQLConditionDocMG36("DO11_DOCUM_MG36", false) +
                                   parser.SQLConditionCliFor("DO11", true);
  db->Execute("DROP VIEW VFW31_RVKPARAMETRI");
  EXPECT_EQ(parser.SQLConditionDO11(false), built_before_the_lists);
  EXPECT_EQ(parser.SQLConditionSediMov("S", true), "");
  db->Close();
  EXPECT_EQ(parser.SQLConditionDepositi("D", true), "");
  EXPECT_EQ(Other("ROSSI")->SQLConditionContiPDCBloccati("G", "C", true), "");
  EXPECT_EQ(BoxTags(), (std::vector<S>{"SQLConditionDO11", "SQLConditionSediMov",
                                       "SQLConditionDepositi", "SQLConditionContiPDCBloccati"}));
  EXPECT_EQ(Boxes()[2].text.rfind(std::to_string(vberr::kAdoConnectionUnusable) + " - ", 0), 0U);
  // The customer condition does not open a connection itself.
  lonely->SetConnectionStringADO(demo::DemoConnectionString(":memory:"));
  EXPECT_EQ(lonely->SQLConditionCliFor("CG44", true), "");
  EXPECT_EQ(BoxTags().back(), "SQLConditionCliFor");
  EXPECT_EQ(Boxes().back().text.rfind("91 - ", 0), 0U);
}

}  // namespace
}  // namespace zarvik
