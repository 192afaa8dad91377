// Area and grouping lists (the statement on VFW32_RVKCLIFOR, both forms of
// the condition with their quirks) and agent fields (the lookup of the
// agent's code, the two branches of the report form), exact and on the demo
// database.
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "filtroquery/area_lists.h"
#include "filtroquery/clsfw_filtroquery.h"
#include "filtroquery/filtroquery_test_support.h"
#include "platform/vb_error.h"

namespace zarvik::filtroquery {
namespace {

using testing::FilterOnDemo;

const char kRevokeRows[] =
    "INSERT INTO FW32_RVKCLIFOR (FW32_ID_FW07, FW32_DITTA, FW32_TIPOCF, FW32_TIPORAGG, "
    "FW32_CODMACRO, FW32_CODMIDDLE, FW32_CODRAGG, FW32_FLGABILITATO) VALUES ";

TEST(AreaLists, FilterOfEachLevelAndTheStatementAsSent) {
  const std::vector<std::pair<AreaList, std::string>> cases = {
      {AreaList::kMacroArea,
       " AND FW32_TIPORAGG = 'AREA'  AND FW32_CODMIDDLE = '' AND FW32_CODRAGG = ''"},
      {AreaList::kMiddleArea,
       " AND FW32_TIPORAGG = 'AREA'  AND FW32_CODMIDDLE <> '' AND FW32_CODRAGG = ''"},
      {AreaList::kArea, " AND FW32_TIPORAGG = 'AREA'  AND FW32_CODRAGG <> ''"},
      {AreaList::kGrouping1,
       " AND FW32_TIPORAGG = 'RAGG1'  AND FW32_CODMIDDLE = '' AND FW32_CODRAGG = ''"},
      {AreaList::kGrouping2,
       " AND FW32_TIPORAGG = 'RAGG2'  AND FW32_CODMIDDLE = '' AND FW32_CODRAGG = ''"},
      {AreaList::kGrouping3,
       " AND FW32_TIPORAGG = 'RAGG3'  AND FW32_CODMIDDLE = '' AND FW32_CODRAGG = ''"},
  };
  for (const auto& [list, expected] : cases) {
    EXPECT_EQ(AreaListFilter(list), expected) << static_cast<int>(list);
  }
  // The company is pasted as its text.
  EXPECT_EQ(AreaListExtra(AreaList::kArea, Variant("001")),
            " AND FW32_TIPORAGG = 'AREA'  AND FW32_CODRAGG <> '' AND FW32_FLGABILITATO = 0 AND "
            "FW32_DITTA = 001");
  FilterOnDemo f;
  f.Filter("MG07_MACROAREA");
  ASSERT_FALSE(f.Sent().empty());
  EXPECT_EQ(f.Sent().back(),
            "SELECT * FROM VFW32_RVKCLIFOR WHERE FW32_ID_FW07 = 5  AND FW32_TIPORAGG = 'AREA'  AND "
            "FW32_CODMIDDLE = '' AND FW32_CODRAGG = '' AND FW32_FLGABILITATO = 0 AND FW32_DITTA = "
            "1 ORDER BY FW32_DITTA, FW32_TIPOCF , FW32_CODRAGG , FW32_CODMIDDLE , FW32_CODMACRO");
}

TEST(AreaLists, RossiInCompanyOne) {
  // ROSSI: macro-area SUD; the supplier area SUD/SU (the lists do not look
  // at the customer/supplier kind); the zone NORD/NO/TO; grouping 3 X2 with
  // its code in FW32_CODMACRO. His groupings 1 and 2 carry their codes in
  // FW32_CODRAGG, which these lists do not read; CENTRO is enabled.
  const struct {
    const char* field;
    const char* sql;
    const char* report;  // with the report field "{F}"
  } cases[] = {
      {"MG07_MACROAREA", "MG07_MACROAREA NOT IN (SUD')", " (NOT ({F} IN [SUD]))"},
      {"MG08_AREA", "MG08_AREA NOT IN (SU')", " (NOT ({F} IN [SU]))"},
      {"CG44_ZONA_MG09", "CG44_ZONA_MG09 NOT IN (TO')", " (NOT ({F} IN [TO]))"},
      {"MG31_CODRAGGRCF1", "", ""},
      {"MG32_CODRAGGRCF2", "", ""},
      {"MG33_CODRAGGRCF3", "MG33_CODRAGGRCF3 NOT IN (X2')", " (NOT ({F} IN [X2]))"},
  };
  FilterOnDemo f;
  for (const auto& c : cases) {
    f.Filter(c.field, Variant("{F}"));
    EXPECT_EQ(f.Sql(), c.sql) << c.field;
    EXPECT_EQ(f.Report(), c.report) << c.field;
  }
  // Nothing revoked in the other company.
  f.filter->SetDittaCorrente(Variant(int32_t{demo::kOtherCompany}));
  for (const char* field : {"MG07_MACROAREA", "MG09_ZONA", "MG33_CODRAGGRCF3"}) {
    f.Filter(field, Variant("R"));
    EXPECT_EQ(f.Sql() + f.Report(), "") << field;
  }
}

TEST(AreaLists, SeveralCodesAsTheHostReceivesThemAndOnTheDemo) {
  // BIANCHI has nothing of his own in company 1: give him SUD and NORD (in
  // reverse order, the statement sorts them), three groupings 2, plus rows
  // that must not count (enabled, other company, middle level).
  FilterOnDemo f("BIANCHI");
  f.Setup(std::string(kRevokeRows) +
          "(6, 1, 0, 'AREA', 'SUD', '', '', 0), (6, 1, 0, 'AREA', 'NORD', '', '', 0), "
          "(6, 1, 0, 'AREA', 'E', '', '', 1), (6, 2, 0, 'AREA', 'W', '', '', 0), "
          "(6, 1, 0, 'AREA', 'N', 'NO', '', 0), (6, 1, 0, 'RAGG2', 'STD', '', '', 0), "
          "(6, 1, 0, 'RAGG2', 'VIP', '', '', 0), (6, 1, 0, 'RAGG2', 'ALT', '', '', 0)");
  f.Filter("MG07_MACROAREA", Variant("{MG07.MACROAREA}"));
  EXPECT_EQ(f.Sql(), "MG07_MACROAREA NOT IN (NORD', 'SUD')");
  EXPECT_EQ(f.Report(), " (NOT ({MG07.MACROAREA} IN [NORD,SUD]))");
  f.Filter("MG32_CODRAGGRCF2", Variant("R"));
  EXPECT_EQ(f.Sql(), "MG32_CODRAGGRCF2 NOT IN (ALT', 'STD', 'VIP')");
  EXPECT_EQ(f.Report(), " (NOT (R IN [ALT,STD,VIP]))");
}

TEST(AreaLists, ReportFieldOmittedBlankOrGiven) {
  FilterOnDemo f;
  f.Filter("MG07_MACROAREA");  // omitted: the data field stands in
  EXPECT_EQ(f.Report(), " (NOT (MG07_MACROAREA IN [SUD]))");
  for (const Variant& blank : {Variant("   "), Variant::Null()}) {
    f.Filter("MG07_MACROAREA", blank);
    EXPECT_EQ(f.Sql(), "MG07_MACROAREA NOT IN (SUD')");
    EXPECT_EQ(f.Report(), "");
  }
  f.Filter("MG07_MACROAREA", Variant("{@Zona}"));
  EXPECT_EQ(f.Report(), " (NOT ({@Zona} IN [SUD]))");
}

TEST(AreaLists, DatabaseErrorEndsInTheBoxOfFiltroCondizione) {
  FilterOnDemo f;
  f.filter->SetDittaCorrente(Variant());  // "FW32_DITTA = " with nothing after it
  f.Filter("MG07_MACROAREA", Variant("R"));
  EXPECT_EQ(testing::BoxTags(f.Boxes()), std::vector<std::string>{"FiltroCondizione"});
  EXPECT_EQ(f.Sql() + f.Report(), "");
}

TEST(CondAgente, AgentOfTheCurrentCompany) {
  // Agent 12 is stored as "AG12   "; the code is trimmed. A report field
  // without braces is wrapped in them; any brace leaves it as it stands.
  const struct {
    const char* field;
    std::optional<Variant> report;
    const char* sql;
    const char* report_form;
  } cases[] = {
      {"MG17_AGENTE", Variant("MG17.AGENTE"), "MG17_AGENTE = N'AG12' ",
       " ({MG17.AGENTE} = \"AG12\")"},
      {"MG17_AGENTE", Variant("Trim({A})"), "MG17_AGENTE = N'AG12' ", " (Trim({A}) = \"AG12\")"},
      {"MG17_AGENTE", std::nullopt, "MG17_AGENTE = N'AG12' ", " ({MG17_AGENTE} = \"AG12\")"},
      {"MG17_AGENTE", Variant(""), "MG17_AGENTE = N'AG12' ", ""},
      {"MG17_AGENTE  ", Variant("@A"), "MG17_AGENTE   = N'AG12' ", " ({@A} = \"AG12\")"},
      {"DO29_IDAGENTE_MG17", Variant("{A}"), "DO29_IDAGENTE_MG17 = N'AG12' ", " ({A} = \"AG12\")"},
  };
  for (const auto& c : cases) {
    FilterOnDemo f("GIALLI");
    f.ActAsAgent(Variant(int32_t{12}), Variant(int32_t{1}));
    f.Filter(c.field, c.report);
    EXPECT_EQ(f.Sql(), c.sql) << c.field;
    EXPECT_EQ(f.Report(), c.report_form) << c.field;
    EXPECT_TRUE(f.Boxes().empty()) << c.field;
    EXPECT_EQ(f.Sent().back(), "SELECT MG17_AGENTE FROM MG17_AGENTI WHERE MG17_IDAGENTE = '12'");
  }
}

TEST(CondAgente, NothingWithoutAnAgentThatApplies) {
  const struct {
    const char* name;
    Variant agent;
    Variant company;
    bool looked_up;
  } cases[] = {
      {"no agent", Variant(), Variant(int32_t{1}), false},
      {"blank agent", Variant("  "), Variant(int32_t{1}), false},
      {"agent of another company", Variant(int32_t{21}), Variant(int32_t{2}), false},
      {"company of the agent is Null", Variant(int32_t{12}), Variant::Null(), false},
      {"unknown agent", Variant(int32_t{99}), Variant(int32_t{1}), true},
      {"failing lookup", Variant("12'"), Variant(int32_t{1}), true},
  };
  for (const auto& c : cases) {
    FilterOnDemo f("GIALLI");
    f.ActAsAgent(c.agent, c.company);
    f.Filter("MG17_AGENTE", Variant("{A}"));
    EXPECT_EQ(f.Sql() + f.Report(), "") << c.name;
    EXPECT_TRUE(f.Boxes().empty()) << c.name;
    bool looked_up = false;
    for (const std::string& s : f.Sent()) looked_up |= s.find("MG17_AGENTI") != std::string::npos;
    EXPECT_EQ(looked_up, c.looked_up) << c.name;
  }
}

}  // namespace
}  // namespace zarvik::filtroquery
