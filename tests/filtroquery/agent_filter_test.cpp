// Agent fields: the lookup of the agent's code, the two branches of the
// report form, and when the filter produces nothing.
#include "filtroquery/agent_filter.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "filtroquery/clsfw_filtroquery.h"
#include "filtroquery/filtroquery_test_support.h"

namespace zarvik::filtroquery {
namespace {

using testing::FilterOnDemo;

TEST(AgentFilterPieces, LookupAndSqlForm) {
  EXPECT_EQ(AgentLookupStatement(Variant(int32_t{12})),
            "SELECT MG17_AGENTE FROM MG17_AGENTI WHERE MG17_IDAGENTE = '12'");
  EXPECT_EQ(AgentSqlCondition("MG17_AGENTE", "AG12"), "MG17_AGENTE = N'AG12' ");
}

TEST(AgentFilterPieces, ReportFormWrapsABareFieldInBraces) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"MG17.AGENTE", " ({MG17.AGENTE} = \"AG12\")"},
      {"{MG17.AGENTE}", " ({MG17.AGENTE} = \"AG12\")"},
      {"@Agente", " ({@Agente} = \"AG12\")"},
      {"{@Agente}", " ({@Agente} = \"AG12\")"},
      // Any brace counts: the reference is then taken as it stands.
      {"Trim({MG17.AGENTE})", " (Trim({MG17.AGENTE}) = \"AG12\")"},
  };
  for (const auto& [field, expected] : cases) {
    EXPECT_EQ(AgentReportCondition(field, "AG12"), expected) << field;
  }
}

struct AgentCase {
  const char* name;
  const char* field;
  std::optional<Variant> report;
  const char* sql;
  const char* report_form;
};

TEST(CondAgente, AgentOfTheCurrentCompany) {
  // Agent 12 is stored as "AG12   "; the code is trimmed.
  const std::vector<AgentCase> cases = {
      {"report field without braces", "MG17_AGENTE", Variant("MG17.AGENTE"),
       "MG17_AGENTE = N'AG12' ", " ({MG17.AGENTE} = \"AG12\")"},
      {"report field with braces", "MG17_AGENTE", Variant("{MG17.AGENTE}"),
       "MG17_AGENTE = N'AG12' ", " ({MG17.AGENTE} = \"AG12\")"},
      {"report field omitted", "MG17_AGENTE", std::nullopt, "MG17_AGENTE = N'AG12' ",
       " ({MG17_AGENTE} = \"AG12\")"},
      {"report field blank", "MG17_AGENTE", Variant(""), "MG17_AGENTE = N'AG12' ", ""},
      {"exact name with trailing blanks", "MG17_AGENTE  ", Variant("{A}"),
       "MG17_AGENTE   = N'AG12' ", " ({A} = \"AG12\")"},
      {"agent column of another table", "DO29_IDAGENTE_MG17", Variant("{A}"),
       "DO29_IDAGENTE_MG17 = N'AG12' ", " ({A} = \"AG12\")"},
      {"other MG17 column", "MG17_DESCR", Variant("{A}"), "", ""},
      {"MG17 at both ends", "MG17_AGENTE_MG17", Variant("{A}"), "", ""},
  };
  for (const AgentCase& c : cases) {
    FilterOnDemo f("GIALLI");
    f.ActAsAgent(Variant(int32_t{12}), Variant(int32_t{1}));
    f.Filter(c.field, c.report);
    EXPECT_EQ(f.Sql(), c.sql) << c.name;
    EXPECT_EQ(f.Report(), c.report_form) << c.name;
    EXPECT_TRUE(f.Boxes().empty()) << c.name;
  }
}

TEST(CondAgente, LookupStatementAsSent) {
  FilterOnDemo f("GIALLI");
  f.ActAsAgent(Variant(int32_t{12}), Variant(int32_t{1}));
  f.Filter("MG17_AGENTE", Variant("{A}"));
  ASSERT_FALSE(f.Sent().empty());
  EXPECT_EQ(f.Sent().back(), "SELECT MG17_AGENTE FROM MG17_AGENTI WHERE MG17_IDAGENTE = '12'");
}

TEST(CondAgente, NothingWithoutAnAgentThatApplies) {
  struct Case {
    const char* name;
    Variant agent;
    Variant company;
    bool looked_up;
  };
  const std::vector<Case> cases = {
      {"no agent", Variant(), Variant(int32_t{1}), false},
      {"blank agent", Variant("  "), Variant(int32_t{1}), false},
      {"agent of another company", Variant(int32_t{21}), Variant(int32_t{2}), false},
      {"company of the agent is Null", Variant(int32_t{12}), Variant::Null(), false},
      {"unknown agent", Variant(int32_t{99}), Variant(int32_t{1}), true},
  };
  for (const Case& c : cases) {
    FilterOnDemo f("GIALLI");
    f.ActAsAgent(c.agent, c.company);
    f.Filter("MG17_AGENTE", Variant("{A}"));
    EXPECT_EQ(f.Sql(), "") << c.name;
    EXPECT_EQ(f.Report(), "") << c.name;
    EXPECT_TRUE(f.Boxes().empty()) << c.name;
    bool looked_up = false;
    for (const std::string& s : f.Sent()) looked_up |= s.find("MG17_AGENTI") != std::string::npos;
    EXPECT_EQ(looked_up, c.looked_up) << c.name;
  }
}

TEST(CondAgente, FailingLookupIsIgnored) {
  FilterOnDemo f("GIALLI");
  f.ActAsAgent(Variant("12'"), Variant(int32_t{1}));  // breaks the lookup statement
  f.Filter("MG17_AGENTE", Variant("{A}"));
  EXPECT_TRUE(f.Boxes().empty());
  EXPECT_EQ(f.Sql(), "");
  EXPECT_EQ(f.Report(), "");
}

TEST(CondAgenteOnTheDemo, DocumentsOfTheAgent) {
  // Agent 14's code has no padding, so the engine compares it as it is.
  FilterOnDemo f("GIALLI");
  f.ActAsAgent(Variant(int32_t{14}), Variant(int32_t{1}));
  f.Filter("MG17_AGENTE");
  EXPECT_EQ(f.Column("SELECT DO29_NUMREG_CO99 FROM DO29_DOCTESAGENTI INNER JOIN MG17_AGENTI ON "
                     "MG17_IDAGENTE = DO29_IDAGENTE_MG17 WHERE " +
                     f.Sql() + "ORDER BY DO29_NUMREG_CO99"),
            (std::vector<std::string>{"1001", "1003", "1004", "1020"}));
}

}  // namespace
}  // namespace zarvik::filtroquery
