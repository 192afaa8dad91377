// The table condition dispatch: the text of every prefix, the connector,
// the customer/supplier qualifiers, the list builders on the demo data and
// their failures. The user is ROSSI (id 5), company 1, unless said otherwise.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "rewriter_probe.h"

namespace zarvik {
namespace {

using testing::RewriterSession;

std::string Vfw32(const std::string& table, const std::string& kind_column,
                  const std::string& grouping, const std::string& macro, const std::string& middle,
                  const std::string& leaf) {
  return std::string("  (SELECT * FROM VFW32_RVKCLIFOR ") + " WHERE FW32_ID_FW07 = 5 " +
         " AND FW32_DITTA = " + table + "_DITTA_CG18 " + " AND FW32_TIPOCF = " + kind_column + " " +
         " AND FW32_FLGABILITATO = 0 " + " AND FW32_TIPORAGG = '" + grouping + "'" +
         " AND FW32_CODMACRO = " + macro + " AND FW32_CODMIDDLE = " + middle +
         " AND FW32_CODRAGG = " + leaf + ")";
}

std::string Vfw31(const std::string& negation, int kind, const std::string& scope,
                  const std::string& code) {
  return negation + " EXISTS(SELECT * " + " FROM VFW31_RVKPARAMETRI " + " WHERE FW31_ID_FW07 = 5 " +
         " AND FW31_INDTIPO = " + std::to_string(kind) + " " + " AND FW31_FLGABILITATO = 0 " +
         " AND FW31_DITTARAGG = " + scope + " " + " AND FW31_CODTIPO = " + code + ") ";
}

const std::string kNodi = std::string(" EXISTS(SELECT * ") + " FROM VFW3N_RVKNODI " +
                          " WHERE FW3N_ID_FW07 = 5 " + " AND FW3N_DITTA_CG18 = PD0C_DITTA_CG18 " +
                          " AND FW3N_CODNODO = PD0C_CODNODO " +
                          " AND FW3N_CODPROG_PD68 = PD0C_CODPROG_PD68) ";

struct PrefixCase {
  std::string prefix;
  std::string text;  // behind the connector
};

TEST(TableDispatch, EveryPrefixGetsItsText) {
  RewriterSession rossi("ROSSI");
  CLSFW_PARSER& p = rossi.parser;
  // The parser resolves its user in the guard; do it once here as well.
  p.Frame().ResolveUser();
  const std::vector<PrefixCase> cases = {
      {"CG16", ""},
      {"CG18", " CG18_DITTA NOT IN (2) "},
      {"MG07",
       " NOT EXISTS  (SELECT * FROM VFW32_RVKCLIFOR  WHERE FW32_ID_FW07 = 5  AND FW32_DITTA = "
       "MG07_DITTA_CG18  AND FW32_TIPOCF = MG07_TIPOCF  AND FW32_FLGABILITATO = 0  AND "
       "FW32_TIPORAGG = 'AREA' AND FW32_CODMACRO = MG07_MACROAREA AND FW32_CODMIDDLE = '' AND "
       "FW32_CODRAGG = '')"},
      {"MG08",
       " NOT EXISTS" +
           Vfw32("MG08", "MG08_TIPOCF_MG07", "AREA", "MG08_MACROAREA_MG07", "''", "''") +
           " AND NOT EXISTS" +
           Vfw32("MG08", "MG08_TIPOCF_MG07", "AREA", "MG08_MACROAREA_MG07", "MG08_AREA", "''")},
      {"MG09", " NOT EXISTS" +
                   Vfw32("MG09", "MG09_TIPOCF_MG08", "AREA", "MG09_MACROAREA_MG08", "''", "''") +
                   " AND NOT EXISTS" +
                   Vfw32("MG09", "MG09_TIPOCF_MG08", "AREA", "MG09_MACROAREA_MG08",
                         "MG09_AREA_MG08", "''") +
                   " AND NOT EXISTS" +
                   Vfw32("MG09", "MG09_TIPOCF_MG08", "AREA", "MG09_MACROAREA_MG08",
                         "MG09_AREA_MG08", "MG09_ZONA")},
      {"MG10", " NOT EXISTS" + Vfw32("MG10", "MG10_TIPOCF", "CAT", "MG10_MACROCAT", "''", "''")},
      {"MG11",
       " NOT EXISTS" + Vfw32("MG11", "MG11_TIPOCF_MG10", "CAT", "MG11_MACROCAT_MG10", "''", "''") +
           " AND NOT EXISTS" +
           Vfw32("MG11", "MG11_TIPOCF_MG10", "CAT", "MG11_MACROCAT_MG10", "MG11_CATEG", "''")},
      {"MG12",
       " NOT EXISTS" + Vfw32("MG12", "MG12_TIPOCF_MG11", "CAT", "MG12_MACROCAT_MG11", "''", "''") +
           " AND NOT EXISTS" +
           Vfw32("MG12", "MG12_TIPOCF_MG11", "CAT", "MG12_MACROCAT_MG11", "MG12_CATEG_MG11", "''") +
           " AND NOT EXISTS" +
           Vfw32("MG12", "MG12_TIPOCF_MG11", "CAT", "MG12_MACROCAT_MG11", "MG12_CATEG_MG11",
                 "MG12_SOTTCAT")},
      {"MG31",
       " NOT EXISTS" + Vfw32("MG31", "MG31_TIPOCF", "RAGG1", "MG31_CODRAGGRCF1", "''", "''")},
      {"MG32",
       " NOT EXISTS" + Vfw32("MG32", "MG32_TIPOCF", "RAGG2", "MG32_CODRAGGRCF2", "''", "''")},
      {"MG33",
       " NOT EXISTS" + Vfw32("MG33", "MG33_TIPOCF", "RAGG3", "MG33_CODRAGGRCF3", "''", "''")},
      // Office codes are text in the view: "12" sorts before "3".
      {"CG31", "CG31_CODICE NOT IN (12 , 3 )"},
      {"CG33", " CG33_INDTIPOREG NOT IN (3) AND  CG33_CODICE NOT IN ('STORNO' ) "},
      {"CG41", ""},
      {"VCG42", ""},
      {"DO11", p.SQLConditionDO11(false)},
      {"MG17", ""},  // no agent code
      {"MG36",
       " NOT EXISTS(SELECT *  FROM VFW31_RVKPARAMETRI  WHERE FW31_ID_FW07 = 5  AND FW31_INDTIPO "
       "= 7  AND FW31_FLGABILITATO = 0  AND FW31_DITTARAGG = MG36_INDSTAPER  AND FW31_CODTIPO = "
       "MG36_CODDOCUM) "},
      {"MG3N", Vfw31(" NOT", 9, "MG3N_INDSTAPER", "MG3N_CODTRASFDOC")},
      {"MG58", Vfw31(" NOT", 6, "MG58_DITTA_CG18", "MG58_CODDEP")},
      {"PD68",
       " NOT  EXISTS(SELECT *  FROM VFW31_RVKPARAMETRI  WHERE FW31_ID_FW07 = 5  AND FW31_INDTIPO "
       "= 8  AND FW31_FLGABILITATO = 0  AND FW31_DITTARAGG = PD68_DITTA_CG18  AND FW31_CODTIPO = "
       "PD68_CODPROG) "},
      {"VPD0C",
       " NOT  EXISTS(SELECT *  FROM VFW3N_RVKNODI  WHERE FW3N_ID_FW07 = 5  AND FW3N_DITTA_CG18 = "
       "PD0C_DITTA_CG18  AND FW3N_CODNODO = PD0C_CODNODO  AND FW3N_CODPROG_PD68 = "
       "PD0C_CODPROG_PD68) "},
      {"PD0C", " NOT " + kNodi},
      {"FW34",
       " NOT EXISTS (SELECT FW31_CODICE           FROM VFW31_RVKPARAMETRI          WHERE "
       "FW31_ID_FW07 = 5              AND FW31_CODTIPO = FW34_CODICEDS             AND "
       "FW31_DITTARAGG = 0              AND FW31_INDTIPO = 13 )"},
      {"FW36", std::string(" NOT EXISTS (SELECT FW31_CODICE  ") +
                   "         FROM VFW31_RVKPARAMETRI " + "         WHERE FW31_ID_FW07 = 5 " +
                   "             AND FW31_CODTIPO = FW36_CODICEMATR " +
                   "             AND FW31_DITTARAGG = 1 " + "             AND FW31_INDTIPO = 13 )"},
      {"FW57", std::string(" NOT EXISTS (SELECT FW31_CODICE  ") +
                   "         FROM VFW31_RVKPARAMETRI " + "         WHERE FW31_ID_FW07 = 5 " +
                   "             AND FW31_CODTIPO = FW57_CODICE " +
                   "             AND FW31_INDTIPO = 12 )"},
      {"PD90", p.SQLConditionCodSimPD90("PD90_SIMULAZIONE", false)},
      {"MG0F", Vfw31(" NOT ", 30, "MG0F_DITTA_CG18", "MG0F_CODPARAM")},
      // Unknown, lower case, or the four letters of a five-letter view.
      {"XX99", ""},
      {"mg36", ""},
      {"VPD0", ""},
      {"", ""},
  };
  // The texts of the condition builders the dispatch calls are not empty
  // for ROSSI, so the two rows above test something.
  ASSERT_FALSE(p.SQLConditionDO11(false).empty());
  ASSERT_FALSE(p.SQLConditionCodSimPD90("PD90_SIMULAZIONE", false).empty());
  for (const PrefixCase& c : cases) {
    const std::string with_where = c.text.empty() ? "" : " AND " + c.text;
    const std::string without_where = c.text.empty() ? "" : " WHERE " + c.text;
    EXPECT_EQ(RewriterProbe::Filtri(p, c.prefix, 17, true), with_where) << c.prefix;
    EXPECT_EQ(RewriterProbe::Filtri(p, c.prefix, 0, false), without_where) << c.prefix;
  }
  EXPECT_TRUE(rossi.sink->messages.empty());
}

TEST(TableDispatch, AgentTableFollowsTheAgentCode) {
  RewriterSession gialli("GIALLI");
  gialli.parser.Frame().ResolveUser();
  EXPECT_EQ(RewriterProbe::Filtri(gialli.parser, "MG17", 1, true), "");
  gialli.parser.SetCodiceAgente(Variant(int32_t{12}));
  const std::string rule = RewriterProbe::Filtri(gialli.parser, "MG17", 1, true);
  EXPECT_EQ(rule, " AND  MG17_IDAGENTE = '12' ");
  EXPECT_EQ(RewriterProbe::Filtri(gialli.parser, "MG17", 0, true).rfind(" WHERE  MG17_IDAGENTE", 0),
            0U);
}

TEST(TableDispatch, CustomerTableIsQualifiedAsTheScannerFoundIt) {
  RewriterSession rossi("ROSSI");
  CLSFW_PARSER& p = rossi.parser;
  p.Frame().ResolveUser();
  const auto clifor = [](const std::string& q) {
    return std::string(" NOT EXISTS ") + " (SELECT RVKCLIFOR " + "  FROM VFW32_LISTACFREVOCATI " +
           "  WHERE RVKDITTA = " + q + "CG44_DITTA_CG18" + "     AND RVKTIPOCF = " + q +
           "CG44_TIPOCF" + "     AND RVKCLIFOR = " + q + "CG44_CLIFOR" + "     AND RVKUTENTE = 5 " +
           " )  ";
  };
  struct Case {
    bool from_list;
    std::string alias;
    std::string qualifier;
  };
  const std::vector<Case> cases = {
      {true, "D.", " "},  // a FROM-list table: a single blank, whatever the alias
      {true, "", " "},
      {false, "C.", "C."},          // a joined table keeps its alias
      {false, "", "CG44_CLIFOR."},  // ... or is qualified with the table name
      {false, "C\r\n.", " "},       // an alias that ran into a line break is dropped
      {false, "C\n.", " "},
  };
  for (const Case& c : cases) {
    RewriterProbe::SetCliForDone(p, false);
    EXPECT_EQ(RewriterProbe::Filtri(p, "CG44", 3, c.from_list, c.alias),
              " AND " + clifor(c.qualifier))
        << c.alias;
    EXPECT_EQ(RewriterProbe::CurrentAlias(p), c.alias);  // restored
    EXPECT_TRUE(RewriterProbe::CliForDone(p));
    EXPECT_FALSE(RewriterProbe::FromRewriter(p));  // only during the call
  }
  // The direct call, outside the rewriter, is not qualified.
  RewriterProbe::Filtri(p, "XX99", 0, true, "");
  EXPECT_EQ(p.SQLConditionCliFor("CG44", false, "", "", "", false), clifor(""));
}

TEST(TableDispatch, NegateFalseGivesThePositiveFormsTheBlockChecksUse) {
  RewriterSession rossi("ROSSI");
  CLSFW_PARSER& p = rossi.parser;
  p.Frame().ResolveUser();
  EXPECT_EQ(RewriterProbe::Progetti(p, false),
            " EXISTS(SELECT *  FROM VFW31_RVKPARAMETRI  WHERE FW31_ID_FW07 = 5  AND FW31_INDTIPO "
            "= 8  AND FW31_FLGABILITATO = 0  AND FW31_DITTARAGG = PD68_DITTA_CG18  AND "
            "FW31_CODTIPO = PD68_CODPROG) ");
  EXPECT_EQ(RewriterProbe::Nodi(p, false), kNodi);
  EXPECT_EQ(RewriterProbe::BlmParam(p, false), Vfw31("", 30, "MG0F_DITTA_CG18", "MG0F_CODPARAM"));
  EXPECT_EQ(RewriterProbe::Progetti(p, true), " NOT " + RewriterProbe::Progetti(p, false));
  EXPECT_EQ(RewriterProbe::Nodi(p, true), " NOT " + kNodi);
  EXPECT_EQ(RewriterProbe::BlmParam(p, true), " NOT " + RewriterProbe::BlmParam(p, false));
  // The builders that take a column.
  EXPECT_EQ(RewriterProbe::Depositi(p, "DO11_CODDEP"),
            Vfw31(" NOT", 6, "DO11_DITTA_CG18", "DO11_CODDEP"));
  EXPECT_NE(RewriterProbe::VisSource(p, "X.FW34_CODICEDS").find("FW31_CODTIPO = X.FW34_CODICEDS "),
            std::string::npos);
}

TEST(ListBuilders, ExcludedCompaniesPerUserOrPerGroup) {
  // ROSSI: his own row of FW05_DITTAESCLUSI (FW05_FLGABIL = 0).
  RewriterSession rossi("ROSSI");
  rossi.parser.Frame().ResolveUser();
  EXPECT_EQ(RewriterProbe::RvkDitte(rossi.parser), " CG18_DITTA NOT IN (2) ");
  EXPECT_EQ(rossi.log->statements.back(),
            "SELECT * FROM FW05_DITTAESCLUSI  WHERE FW05_ID_FW07 = 5  AND FW05_FLGABIL = 0");

  // VERDI is group-based: the view, through the group AMM.
  RewriterSession verdi("VERDI");
  verdi.parser.Frame().ResolveUser();
  EXPECT_EQ(RewriterProbe::RvkDitte(verdi.parser), " CG18_DITTA NOT IN (2) ");
  EXPECT_EQ(verdi.log->statements.back(),
            "SELECT DISTINCT FW05_DITTA_CG18 FROM VFW05_DITTAESCLUSI  WHERE FW05_ID_FW07 = 7 "
            " AND FW05_FLGVISIBLE = 0 ");

  // BIANCHI has no excluded company.
  RewriterSession bianchi("BIANCHI");
  bianchi.parser.Frame().ResolveUser();
  EXPECT_EQ(RewriterProbe::RvkDitte(bianchi.parser), "");
}

TEST(ListBuilders, BranchOfficesForEveryTableName) {
  RewriterSession rossi("ROSSI");
  CLSFW_PARSER& p = rossi.parser;
  p.Frame().ResolveUser();
  EXPECT_EQ(RewriterProbe::Sedi(p, "CG31", false), "CG31_CODICE NOT IN (12 , 3 )");
  EXPECT_EQ(rossi.log->statements.back(),
            "SELECT * FROM VFW32_RVKCLIFOR WHERE FW32_ID_FW07 = 5    AND FW32_FLGABILITATO = 0 "
            "    AND FW32_TIPORAGG = 'SEDE'    AND FW32_DITTA = 1 ORDER BY FW32_DITTA, FW32_TIPOCF "
            ", FW32_CODRAGG , FW32_CODMIDDLE , FW32_CODMACRO");
  EXPECT_EQ(RewriterProbe::Sedi(p, "DO11", true), " AND DO11_CODSEDE_CG31 NOT IN (12 , 3 )");
  EXPECT_EQ(RewriterProbe::Sedi(p, "CS05", false), "CS05_CODSEDE_CG31 NOT IN (12 , 3 )");
  // No office revoked in company 2.
  p.SetDittaCorrente(Variant(int32_t{2}));
  EXPECT_EQ(RewriterProbe::Sedi(p, "CG31", true), "");
}

TEST(ListBuilders, AccountingReasonsJoinTheRegisterTypesAndTheReasons) {
  // ROSSI: register type 3 and the reason STORNO.
  RewriterSession rossi("ROSSI");
  rossi.parser.Frame().ResolveUser();
  EXPECT_EQ(RewriterProbe::CausaliContabili(rossi.parser, "X."),
            " X.CG33_INDTIPOREG NOT IN (3) AND  X.CG33_CODICE NOT IN ('STORNO' ) ");
  EXPECT_EQ(rossi.log->statements.back(),
            "SELECT *  FROM VFW31_RVKPARAMETRI  WHERE FW31_ID_FW07 = 5      AND "
            "FW31_FLGABILITATO = 0      AND FW31_INDTIPO = 0  ORDER BY FW31_INDTIPO, "
            "FW31_CODTIPO, FW31_DITTARAGG");

  // One list alone, and several entries in each.
  struct Case {
    std::vector<std::string> rows;  // (scope, code) value lists of FW31_RVKPARAMETRI
    std::string expected;
  };
  const std::vector<Case> cases = {
      {{"(9001, 6, 0, 1, '')", "(9002, 6, 0, 2, '')"}, " CG33_INDTIPOREG NOT IN (1 , 2) "},
      {{"(9001, 6, 0, 0, 'GIRO')", "(9002, 6, 0, 0, 'INC')"},
       " CG33_CODICE NOT IN ('GIRO'  , 'INC' ) "},
      {{"(9001, 6, 0, 3, '')", "(9002, 6, 0, 0, 'INC')", "(9003, 6, 0, 0, 'PAG')"},
       " CG33_INDTIPOREG NOT IN (3) AND  CG33_CODICE NOT IN ('INC'  , 'PAG' ) "},
      {{}, ""},
  };
  for (const Case& c : cases) {
    RewriterSession bianchi("BIANCHI");
    for (const std::string& row : c.rows) {
      bianchi.db->Execute(
          "INSERT INTO FW31_RVKPARAMETRI (FW31_CODICE, FW31_ID_FW07, FW31_INDTIPO, "
          "FW31_DITTARAGG, FW31_CODTIPO) VALUES " +
          row);
    }
    bianchi.parser.Frame().ResolveUser();
    EXPECT_EQ(RewriterProbe::CausaliContabili(bianchi.parser, ""), c.expected);
  }
}

TEST(TableDispatch, FailuresAreReportedAndLeaveTheTableUnrestricted) {
  struct Case {
    std::string prefix;
    std::string tag;
  };
  for (const Case& c :
       {Case{"CG18", "RvkDitte"}, Case{"CG33", "CausaliContabili"}, Case{"CG31", "FiltriStrSQL"}}) {
    RewriterSession rossi("ROSSI");
    rossi.parser.Frame().ResolveUser();
    rossi.db->Close();
    EXPECT_EQ(RewriterProbe::Filtri(rossi.parser, c.prefix, 1, true), "") << c.prefix;
    ASSERT_EQ(rossi.sink->messages.size(), 1U) << c.prefix;
    const std::string& text = rossi.sink->messages[0].text;
    EXPECT_EQ(text.substr(text.size() - c.tag.size()), c.tag) << text;
    EXPECT_NE(text.find("\r\nin ZARVIK: CLSFW_PARSER - "), std::string::npos) << text;
  }
  // A blank current company makes the office query fail.
  RewriterSession no_company("ROSSI");
  no_company.parser.SetDittaCorrente(Variant());
  no_company.parser.Frame().ResolveUser();
  EXPECT_EQ(RewriterProbe::Filtri(no_company.parser, "CG31", 1, true), "");
  ASSERT_EQ(no_company.sink->messages.size(), 1U);
}

}  // namespace
}  // namespace zarvik
