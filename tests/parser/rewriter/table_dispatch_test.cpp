// The table condition dispatch: the text of every prefix, the connector,
// the customer/supplier qualifiers, the list builders on the demo data and
// their failures. The user is ROSSI (id 5), company 1, unless said otherwise.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "../parser_test_support.h"

namespace zarvik {
namespace {

using testing::CliForCondition;
using testing::kNodi;
using testing::ParserSession;

// One grouping test of VFW32_RVKCLIFOR for the table `t`: kind column,
// grouping, then the macro, middle and leaf columns ('' for none).
std::string Vfw32(const std::string& t, const std::string& kind, const std::string& grouping,
                  const std::string& macro, const std::string& middle = "''",
                  const std::string& leaf = "''") {
  return " NOT EXISTS  (SELECT * FROM VFW32_RVKCLIFOR  WHERE FW32_ID_FW07 = 5  AND FW32_DITTA = " +
         t + "_DITTA_CG18  AND FW32_TIPOCF = " + kind + "  AND FW32_FLGABILITATO = 0  AND " +
         "FW32_TIPORAGG = '" + grouping + "' AND FW32_CODMACRO = " + macro +
         " AND FW32_CODMIDDLE = " + middle + " AND FW32_CODRAGG = " + leaf + ")";
}

// A session whose user is resolved, as the guard leaves it.
struct Resolved : ParserSession {
  explicit Resolved(const std::string& user) : ParserSession(user) { parser.Frame().ResolveUser(); }
};

// The prefixes whose text the rewrite tests show (CG18, MG36, MG3N, MG58,
// MG0F, PD68, PD0C) or the block checks send (FW34, FW36, FW57) are not
// repeated here; the rewrite digest covers every prefix for ROSSI.
TEST(TableDispatch, EveryPrefixGetsItsTextBehindTheConnector) {
  Resolved rossi("ROSSI");
  CLSFW_PARSER& p = rossi.parser;
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"CG16", ""},
      {"MG07",
       " NOT EXISTS  (SELECT * FROM VFW32_RVKCLIFOR  WHERE FW32_ID_FW07 = 5  AND FW32_DITTA = "
       "MG07_DITTA_CG18  AND FW32_TIPOCF = MG07_TIPOCF  AND FW32_FLGABILITATO = 0  AND "
       "FW32_TIPORAGG = 'AREA' AND FW32_CODMACRO = MG07_MACROAREA AND FW32_CODMIDDLE = '' AND "
       "FW32_CODRAGG = '')"},
      {"MG08", Vfw32("MG08", "MG08_TIPOCF_MG07", "AREA", "MG08_MACROAREA_MG07") + " AND" +
                   Vfw32("MG08", "MG08_TIPOCF_MG07", "AREA", "MG08_MACROAREA_MG07", "MG08_AREA")},
      {"MG09",
       Vfw32("MG09", "MG09_TIPOCF_MG08", "AREA", "MG09_MACROAREA_MG08") + " AND" +
           Vfw32("MG09", "MG09_TIPOCF_MG08", "AREA", "MG09_MACROAREA_MG08", "MG09_AREA_MG08") +
           " AND" +
           Vfw32("MG09", "MG09_TIPOCF_MG08", "AREA", "MG09_MACROAREA_MG08", "MG09_AREA_MG08",
                 "MG09_ZONA")},
      {"MG10", Vfw32("MG10", "MG10_TIPOCF", "CAT", "MG10_MACROCAT")},
      {"MG11", Vfw32("MG11", "MG11_TIPOCF_MG10", "CAT", "MG11_MACROCAT_MG10") + " AND" +
                   Vfw32("MG11", "MG11_TIPOCF_MG10", "CAT", "MG11_MACROCAT_MG10", "MG11_CATEG")},
      {"MG12",
       Vfw32("MG12", "MG12_TIPOCF_MG11", "CAT", "MG12_MACROCAT_MG11") + " AND" +
           Vfw32("MG12", "MG12_TIPOCF_MG11", "CAT", "MG12_MACROCAT_MG11", "MG12_CATEG_MG11") +
           " AND" +
           Vfw32("MG12", "MG12_TIPOCF_MG11", "CAT", "MG12_MACROCAT_MG11", "MG12_CATEG_MG11",
                 "MG12_SOTTCAT")},
      {"MG31", Vfw32("MG31", "MG31_TIPOCF", "RAGG1", "MG31_CODRAGGRCF1")},
      {"MG32", Vfw32("MG32", "MG32_TIPOCF", "RAGG2", "MG32_CODRAGGRCF2")},
      {"MG33", Vfw32("MG33", "MG33_TIPOCF", "RAGG3", "MG33_CODRAGGRCF3")},
      // Office codes are text in the view: "12" sorts before "3".
      {"CG31", "CG31_CODICE NOT IN (12 , 3 )"},
      {"CG33", " CG33_INDTIPOREG NOT IN (3) AND  CG33_CODICE NOT IN ('STORNO' ) "},
      {"CG41", ""},
      {"VCG42", ""},
      {"DO11", p.SQLConditionDO11(false)},
      {"MG17", ""},  // no agent code
      {"VPD0C", " NOT " + kNodi},
      {"PD90", p.SQLConditionCodSimPD90("PD90_SIMULAZIONE", false)},
      // Unknown, lower case, or the four letters of a five-letter view.
      {"XX99", ""},
      {"mg36", ""},
      {"VPD0", ""},
      {"", ""},
  };
  // The builders the dispatch calls give text for ROSSI, so those rows test something.
  ASSERT_FALSE(p.SQLConditionDO11(false).empty());
  ASSERT_FALSE(p.SQLConditionCodSimPD90("PD90_SIMULAZIONE", false).empty());
  for (const auto& [prefix, text] : cases) {
    EXPECT_EQ(RewriterProbe::Filtri(p, prefix, 17, true), text.empty() ? "" : " AND " + text)
        << prefix;
    EXPECT_EQ(RewriterProbe::Filtri(p, prefix, 0, false), text.empty() ? "" : " WHERE " + text)
        << prefix;
  }
  EXPECT_TRUE(rossi.Boxes().empty());
}

TEST(TableDispatch, AgentTableFollowsTheAgentCode) {
  Resolved gialli("GIALLI");
  EXPECT_EQ(RewriterProbe::Filtri(gialli.parser, "MG17", 1, true), "");
  gialli.parser.SetCodiceAgente(Variant(int32_t{12}));
  EXPECT_EQ(RewriterProbe::Filtri(gialli.parser, "MG17", 1, true), " AND  MG17_IDAGENTE = '12' ");
}

TEST(TableDispatch, CustomerTableIsQualifiedAsTheScannerFoundIt) {
  Resolved rossi("ROSSI");
  CLSFW_PARSER& p = rossi.parser;
  const struct {
    bool from_list;
    std::string alias, qualifier;
  } cases[] = {
      {true, "D.", " "},  // a FROM-list table: a single blank, whatever the alias
      {true, "", " "},
      {false, "C.", "C."},          // a joined table keeps its alias
      {false, "", "CG44_CLIFOR."},  // ... or is qualified with the table name
      {false, "C\r\n.", " "},       // an alias that ran into a line break is dropped
      {false, "C\n.", " "},
  };
  for (const auto& c : cases) {
    RewriterProbe::SetCliForDone(p, false);
    EXPECT_EQ(RewriterProbe::Filtri(p, "CG44", 3, c.from_list, c.alias),
              " AND " + CliForCondition(c.qualifier))
        << c.alias;
    EXPECT_EQ(RewriterProbe::CurrentAlias(p), c.alias);  // restored
    EXPECT_TRUE(RewriterProbe::CliForDone(p));
    EXPECT_FALSE(RewriterProbe::FromRewriter(p));  // only during the call
  }
}

TEST(ListBuilders, ExcludedCompaniesPerUserOrPerGroup) {
  // ROSSI: his own row of FW05_DITTAESCLUSI; VERDI is group-based: the view.
  const struct {
    const char* user;
    const char* expected;
    const char* statement;
  } cases[] = {
      {"ROSSI", " CG18_DITTA NOT IN (2) ",
       "SELECT * FROM FW05_DITTAESCLUSI  WHERE FW05_ID_FW07 = 5  AND FW05_FLGABIL = 0"},
      {"VERDI", " CG18_DITTA NOT IN (2) ",
       "SELECT DISTINCT FW05_DITTA_CG18 FROM VFW05_DITTAESCLUSI  WHERE FW05_ID_FW07 = 7  AND "
       "FW05_FLGVISIBLE = 0 "},
      {"BIANCHI", "", nullptr},
  };
  for (const auto& c : cases) {
    Resolved session(c.user);
    EXPECT_EQ(RewriterProbe::RvkDitte(session.parser), c.expected) << c.user;
    if (c.statement != nullptr) {
      EXPECT_EQ(session.LastStatement(), c.statement);
    }
  }
}

TEST(ListBuilders, BranchOfficesForEveryTableName) {
  Resolved rossi("ROSSI");
  CLSFW_PARSER& p = rossi.parser;
  EXPECT_EQ(RewriterProbe::Sedi(p, "CG31", false), "CG31_CODICE NOT IN (12 , 3 )");
  EXPECT_EQ(rossi.LastStatement(),
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
  Resolved rossi("ROSSI");
  EXPECT_EQ(RewriterProbe::CausaliContabili(rossi.parser, "X."),
            " X.CG33_INDTIPOREG NOT IN (3) AND  X.CG33_CODICE NOT IN ('STORNO' ) ");
  EXPECT_EQ(rossi.LastStatement(),
            "SELECT *  FROM VFW31_RVKPARAMETRI  WHERE FW31_ID_FW07 = 5      AND "
            "FW31_FLGABILITATO = 0      AND FW31_INDTIPO = 0  ORDER BY FW31_INDTIPO, "
            "FW31_CODTIPO, FW31_DITTARAGG");
  // BIANCHI with rows added: one list alone, and several entries in each.
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"(9001, 6, 0, 1, ''), (9002, 6, 0, 2, '')", " CG33_INDTIPOREG NOT IN (1 , 2) "},
      {"(9001, 6, 0, 0, 'GIRO'), (9002, 6, 0, 0, 'INC')",
       " CG33_CODICE NOT IN ('GIRO'  , 'INC' ) "},
      {"(9001, 6, 0, 3, ''), (9002, 6, 0, 0, 'INC'), (9003, 6, 0, 0, 'PAG')",
       " CG33_INDTIPOREG NOT IN (3) AND  CG33_CODICE NOT IN ('INC'  , 'PAG' ) "},
      {"", ""},
  };
  for (const auto& [rows, expected] : cases) {
    ParserSession bianchi("BIANCHI");
    if (!rows.empty()) bianchi.AddParameterRows("", rows);
    bianchi.parser.Frame().ResolveUser();
    EXPECT_EQ(RewriterProbe::CausaliContabili(bianchi.parser, ""), expected) << rows;
  }
}

TEST(TableDispatch, FailuresAreReportedAndLeaveTheTableUnrestricted) {
  for (const auto& [prefix, tag] : std::vector<std::pair<std::string, std::string>>{
           {"CG18", "RvkDitte"}, {"CG33", "CausaliContabili"}, {"CG31", "FiltriStrSQL"}}) {
    Resolved rossi("ROSSI");
    rossi.db->Close();
    EXPECT_EQ(RewriterProbe::Filtri(rossi.parser, prefix, 1, true), "") << prefix;
    EXPECT_EQ(rossi.BoxTags(), std::vector<std::string>{tag});
  }
  // A blank current company makes the office query fail.
  ParserSession no_company("ROSSI");
  no_company.parser.SetDittaCorrente(Variant());
  no_company.parser.Frame().ResolveUser();
  EXPECT_EQ(RewriterProbe::Filtri(no_company.parser, "CG31", 1, true), "");
  EXPECT_EQ(no_company.Boxes().size(), 1U);
}

}  // namespace
}  // namespace zarvik
