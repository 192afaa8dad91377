// The table dispatch beyond ROSSI's texts (the rewrite digest pins those).
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "../parser_test_support.h"

namespace zarvik {
namespace {

using testing::CliForCondition;
using testing::ParserSession;

// A session whose user is resolved, as the guard leaves it.
struct Resolved : ParserSession {
  explicit Resolved(const std::string& user) : ParserSession(user) { parser.Frame().ResolveUser(); }
};

TEST(TableDispatch, ConnectorTheAgentAndAnotherCompany) {
  Resolved rossi("ROSSI");
  CLSFW_PARSER& p = rossi.parser;
  Resolved gialli("GIALLI");
  gialli.parser.SetCodiceAgente(Variant(int32_t{12}));
  EXPECT_EQ(RewriterProbe::Filtri(gialli.parser, "MG17", 1, true), " AND  MG17_IDAGENTE = '12' ");
  // No office revoked in company 2.
  p.SetDittaCorrente(Variant(int32_t{2}));
  EXPECT_EQ(RewriterProbe::Filtri(p, "CG31", 1, true), "");
  EXPECT_TRUE(rossi.Boxes().empty());
  // A FROM-list customer table: a single blank, whatever the alias; a joined one keeps its
  // alias, or takes the table name, or a blank if the alias ran into a line break.
  const std::pair<bool, std::string> cases[] = {
      {true, "D."}, {false, "C."}, {false, ""}, {false, "C\r\n."}, {false, "C\n."}};
  std::string qualified;
  for (const auto& [from_list, alias] : cases) {
    qualified += RewriterProbe::Filtri(rossi.parser, "CG44", 3, from_list, alias) + "|";
  }
  EXPECT_EQ(qualified, " AND " + CliForCondition(" ") + "| AND " + CliForCondition("C.") +
                           "| AND " + CliForCondition("CG44_CLIFOR.") + "| AND " +
                           CliForCondition(" ") + "| AND " + CliForCondition(" ") + "|");
}

TEST(ListBuilders, ListsOfOtherUsers) {
  // VERDI is group-based: the view; BIANCHI has no row.
  Resolved verdi("VERDI"), bianchi("BIANCHI");
  EXPECT_EQ(RewriterProbe::RvkDitte(verdi.parser) + RewriterProbe::RvkDitte(bianchi.parser),
            " CG18_DITTA NOT IN (2) ");
  EXPECT_EQ(verdi.LastStatement(),
            "SELECT DISTINCT FW05_DITTA_CG18 FROM VFW05_DITTAESCLUSI  WHERE FW05_ID_FW07 = 7  AND "
            "FW05_FLGVISIBLE = 0 ");
  // Branch offices under other table names (office codes are text: "12" sorts before "3").
  Resolved rossi("ROSSI");
  EXPECT_EQ(RewriterProbe::Sedi(rossi.parser, "DO11", true) + "|" +
                RewriterProbe::Sedi(rossi.parser, "CS05", false),
            " AND DO11_CODSEDE_CG31 NOT IN (12 , 3 )|CS05_CODSEDE_CG31 NOT IN (12 , 3 )");
  // BIANCHI's accounting reasons: one list alone, several entries in each.
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
    EXPECT_EQ(RewriterProbe::CausaliContabili(bianchi.parser), expected) << rows;
  }
  // Failures are reported and leave the table unrestricted.
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
  EXPECT_EQ(no_company.BoxTags(), std::vector<std::string>{"FiltriStrSQL"});
}

}  // namespace
}  // namespace zarvik
