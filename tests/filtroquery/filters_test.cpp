// The filter builders on the demo database: each statement's exact text and both forms.
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "filtroquery/area_lists.h"
#include "filtroquery/clifor_statements.h"
#include "filtroquery/filtroquery_test_support.h"
#include "filtroquery/project_statements.h"
#include "platform/vb_error.h"

namespace zarvik::filtroquery {
namespace {

using testing::FilterOnDemo;
using Strings = std::vector<std::string>;

TEST(AreaLists, FilterOfEachLevelAndTheStatementAsSent) {
  // Each after " AND FW32_TIPORAGG = ".
  const std::vector<std::pair<AreaList, std::string>> cases = {
      {AreaList::kMacroArea, "'AREA'  AND FW32_CODMIDDLE = '' AND FW32_CODRAGG = ''"},
      {AreaList::kMiddleArea, "'AREA'  AND FW32_CODMIDDLE <> '' AND FW32_CODRAGG = ''"},
      {AreaList::kArea, "'AREA'  AND FW32_CODRAGG <> ''"},
      {AreaList::kGrouping1, "'RAGG1'  AND FW32_CODMIDDLE = '' AND FW32_CODRAGG = ''"},
      {AreaList::kGrouping2, "'RAGG2'  AND FW32_CODMIDDLE = '' AND FW32_CODRAGG = ''"},
      {AreaList::kGrouping3, "'RAGG3'  AND FW32_CODMIDDLE = '' AND FW32_CODRAGG = ''"},
  };
  for (const auto& [list, expected] : cases) {
    EXPECT_EQ(AreaListFilter(list), " AND FW32_TIPORAGG = " + expected) << static_cast<int>(list);
  }
  FilterOnDemo f;
  f.Filter("MG07_MACROAREA");
  ASSERT_FALSE(f.Sent().empty());
  EXPECT_EQ(f.Sent().back(),
            "SELECT * FROM VFW32_RVKCLIFOR WHERE FW32_ID_FW07 = 5  AND FW32_TIPORAGG = 'AREA'  AND "
            "FW32_CODMIDDLE = '' AND FW32_CODRAGG = '' AND FW32_FLGABILITATO = 0 AND FW32_DITTA = "
            "1 ORDER BY FW32_DITTA, FW32_TIPOCF , FW32_CODRAGG , FW32_CODMIDDLE , FW32_CODMACRO");
}

TEST(AreaLists, RossiInCompanyOneNothingInTheOtherAndAFailingQuery) {
  // The lists ignore the kind (SU is a supplier's) and FW32_CODRAGG (groupings 1, 2).
  const std::optional<Variant> f = Variant("{F}");
  const std::tuple<const char*, std::optional<Variant>, const char*> cases[] = {
      {"MG07_MACROAREA", f, "MG07_MACROAREA NOT IN (SUD')| (NOT ({F} IN [SUD]))|"},
      {"MG08_AREA", f, "MG08_AREA NOT IN (SU')| (NOT ({F} IN [SU]))|"},
      {"CG44_ZONA_MG09", f, "CG44_ZONA_MG09 NOT IN (TO')| (NOT ({F} IN [TO]))|"},
      {"MG31_CODRAGGRCF1", f, "||"},
      {"MG32_CODRAGGRCF2", f, "||"},
      {"MG33_CODRAGGRCF3", f, "MG33_CODRAGGRCF3 NOT IN (X2')| (NOT ({F} IN [X2]))|"},
      // The report field omitted (the data field stands in) or blank.
      {"MG07_MACROAREA", std::nullopt,
       "MG07_MACROAREA NOT IN (SUD')| (NOT (MG07_MACROAREA IN [SUD]))|"},
      {"MG07_MACROAREA", Variant("   "), "MG07_MACROAREA NOT IN (SUD')||"},
      {"MG07_MACROAREA", Variant::Null(), "MG07_MACROAREA NOT IN (SUD')||"},
  };
  FilterOnDemo fr;
  for (const auto& [field, report_field, outcome] : cases) {
    fr.Filter(field, report_field);
    EXPECT_EQ(fr.Outcome(), outcome) << field;
  }
  // Nothing revoked in the other company.
  fr.filter->SetDittaCorrente(Variant(int32_t{demo::kOtherCompany}));
  for (const char* field : {"MG07_MACROAREA", "MG09_ZONA", "MG33_CODRAGGRCF3"}) {
    fr.Filter(field, Variant("R"));
    EXPECT_EQ(fr.Outcome(), "||") << field;
  }
  fr.filter->SetDittaCorrente(Variant());  // "FW32_DITTA = " with nothing after it
  fr.Filter("MG07_MACROAREA", Variant("R"));
  EXPECT_EQ(fr.Outcome(), "||FiltroCondizione ");
}

TEST(AreaLists, SeveralCodesAsTheHostReceivesThemAndOnTheDemo) {
  // Sorted by the statement; rows enabled, of company 2 or of the middle level do not count.
  FilterOnDemo f("BIANCHI");
  f.Setup(
      "INSERT INTO FW32_RVKCLIFOR (FW32_ID_FW07, FW32_DITTA, FW32_TIPOCF, FW32_TIPORAGG, "
      "FW32_CODMACRO, FW32_CODMIDDLE, FW32_CODRAGG, FW32_FLGABILITATO) VALUES "
      "(6, 1, 0, 'AREA', 'SUD', '', '', 0), (6, 1, 0, 'AREA', 'NORD', '', '', 0), "
      "(6, 1, 0, 'AREA', 'E', '', '', 1), (6, 2, 0, 'AREA', 'W', '', '', 0), "
      "(6, 1, 0, 'AREA', 'N', 'NO', '', 0), (6, 1, 0, 'RAGG2', 'STD', '', '', 0), "
      "(6, 1, 0, 'RAGG2', 'VIP', '', '', 0), (6, 1, 0, 'RAGG2', 'ALT', '', '', 0)");
  f.Filter("MG07_MACROAREA", Variant("{MG07.MACROAREA}"));
  EXPECT_EQ(f.Outcome(),
            "MG07_MACROAREA NOT IN (NORD', 'SUD')| (NOT ({MG07.MACROAREA} IN [NORD,SUD]))|");
  f.Filter("MG32_CODRAGGRCF2", Variant("R"));
  EXPECT_EQ(f.Outcome(),
            "MG32_CODRAGGRCF2 NOT IN (ALT', 'STD', 'VIP')| (NOT (R IN [ALT,STD,VIP]))|");
}

TEST(CondAgente, AgentOfTheCurrentCompany) {
  // "AG12   " trimmed; a report field without braces is wrapped in them.
  const std::tuple<const char*, std::optional<Variant>, const char*> cases[] = {
      {"MG17_AGENTE", Variant("MG17.AGENTE"),
       "MG17_AGENTE = N'AG12' | ({MG17.AGENTE} = \"AG12\")|"},
      {"MG17_AGENTE", Variant("Trim({A})"), "MG17_AGENTE = N'AG12' | (Trim({A}) = \"AG12\")|"},
      {"MG17_AGENTE", std::nullopt, "MG17_AGENTE = N'AG12' | ({MG17_AGENTE} = \"AG12\")|"},
      {"MG17_AGENTE", Variant(""), "MG17_AGENTE = N'AG12' ||"},
      {"MG17_AGENTE  ", Variant("@A"), "MG17_AGENTE   = N'AG12' | ({@A} = \"AG12\")|"},
      {"DO29_IDAGENTE_MG17", Variant("{A}"), "DO29_IDAGENTE_MG17 = N'AG12' | ({A} = \"AG12\")|"},
  };
  for (const auto& [field, report_field, outcome] : cases) {
    FilterOnDemo f("GIALLI");
    f.ActAsAgent(Variant(int32_t{12}), Variant(int32_t{1}));
    f.Filter(field, report_field);
    EXPECT_EQ(f.Outcome(), outcome) << field;
    EXPECT_EQ(f.Sent().back(), "SELECT MG17_AGENTE FROM MG17_AGENTI WHERE MG17_IDAGENTE = '12'");
  }
}

TEST(CondAgente, NothingWithoutAnAgentThatApplies) {
  const std::tuple<const char*, Variant, Variant, bool> cases[] = {
      // agent, company, looked up
      {"no agent", Variant(), Variant(int32_t{1}), false},
      {"blank agent", Variant("  "), Variant(int32_t{1}), false},
      {"agent of another company", Variant(int32_t{21}), Variant(int32_t{2}), false},
      {"company of the agent is Null", Variant(int32_t{12}), Variant::Null(), false},
      {"unknown agent", Variant(int32_t{99}), Variant(int32_t{1}), true},
      {"failing lookup", Variant("12'"), Variant(int32_t{1}), true},
  };
  for (const auto& [name, agent, company, looked_up] : cases) {
    FilterOnDemo f("GIALLI");
    f.ActAsAgent(agent, company);
    f.Filter("MG17_AGENTE", Variant("{A}"));
    EXPECT_EQ(f.Outcome(), "||") << name;
    bool sent = false;
    for (const std::string& s : f.Sent()) sent |= s.find("MG17_AGENTI") != std::string::npos;
    EXPECT_EQ(sent, looked_up) << name;
  }
}

// ExistsRvkCliForVa for user 5, character for character.
const char kExistsForUser5[] =
    " (SELECT *  From MG19_CLIFORVA  Where MG19_DITTA_CG18 = CG44_DITTA_CG18  AND "
    "MG19_TIPOCF_CG44 = CG44_TIPOCF  AND MG19_CLIFOR_CG44 = CG44_CLIFOR "
    " AND (EXISTS (SELECT *  From VFW32_RVKCLIFOR  Where FW32_DITTA = MG19_DITTA_CG18  AND "
    "FW32_TIPOCF = MG19_TIPOCF_CG44  AND FW32_ID_FW07 = 5  AND FW32_FLGABILITATO = 0  AND "
    "FW32_TIPORAGG = 'AREA'  AND ((FW32_CODMACRO = CASE WHEN MG19_MACROAREA IS NULL THEN ''  "
    "       ELSE MG19_MACROAREA END  AND FW32_CODMIDDLE = ''  AND FW32_CODRAGG = ''))) "
    " OR EXISTS (SELECT *  From VFW32_RVKCLIFOR  Where FW32_DITTA = MG19_DITTA_CG18  AND "
    "FW32_TIPOCF = MG19_TIPOCF_CG44  AND FW32_ID_FW07 = 5  AND FW32_FLGABILITATO = 0  AND "
    "FW32_TIPORAGG = 'CAT'  AND ((FW32_CODMACRO = CASE WHEN MG19_MACROCAT IS NULL THEN ''  "
    "       ELSE MG19_MACROCAT END  AND FW32_CODMIDDLE = ''  AND FW32_CODRAGG = ''))) "
    " OR EXISTS (SELECT *  From VFW32_RVKCLIFOR  Where FW32_DITTA = MG19_DITTA_CG18  AND "
    "FW32_TIPOCF = MG19_TIPOCF_CG44  AND FW32_ID_FW07 = 5  AND FW32_FLGABILITATO = 0  AND "
    "FW32_TIPORAGG = 'RAGG1'  AND FW32_CODMACRO = ''  AND FW32_CODMIDDLE = ''  AND FW32_CODRAGG = "
    "CASE WHEN MG19_RAGGRCF1 IS NULL THEN ''         ELSE MG19_RAGGRCF1 END) "
    " OR EXISTS (SELECT *  From VFW32_RVKCLIFOR  Where FW32_DITTA = MG19_DITTA_CG18  AND "
    "FW32_TIPOCF = MG19_TIPOCF_CG44  AND FW32_ID_FW07 = 5  AND FW32_FLGABILITATO = 0  AND "
    "FW32_TIPORAGG = 'RAGG2'  AND FW32_CODMACRO = ''  AND FW32_CODMIDDLE = ''  AND FW32_CODRAGG = "
    "CASE WHEN MG19_RAGGRCF2 IS NULL THEN ''         ELSE MG19_RAGGRCF2 END) "
    " OR EXISTS (SELECT *  From VFW32_RVKCLIFOR  Where FW32_DITTA = MG19_DITTA_CG18  AND "
    "FW32_TIPOCF = MG19_TIPOCF_CG44  AND FW32_ID_FW07 = 5  AND FW32_FLGABILITATO = 0  AND "
    "FW32_TIPORAGG = 'RAGG3'  AND FW32_CODMACRO = ''  AND FW32_CODMIDDLE = ''  AND FW32_CODRAGG = "
    "CASE WHEN MG19_RAGGCRF3 IS NULL THEN ''         ELSE MG19_RAGGCRF3 END))) ";

TEST(CliForStatements, ExactTextsWithAndWithoutAgent) {
  const std::string head = "SELECT CG44_TIPOCF, CG44_CLIFOR From CG44_CLIFOR  WHERE CG44_TIPOCF = ";
  const std::string agents =
      " EXISTS ( SELECT * FROM MG1C_CLIFORAGEMUL   Where MG1C_DITTA_CG18 = CG44_DITTA_CG18  AND "
      "MG1C_TIPOCF_CG44 = CG44_TIPOCF  AND MG1C_CLIFOR_CG44 = CG44_CLIFOR  AND ";
  EXPECT_EQ(ExistsRvkCliForVa(5), kExistsForUser5);
  EXPECT_EQ(CliForRevocatiStatement(0, 5, Variant()),
            head + "0 AND (EXISTS " + kExistsForUser5 + " )");
  EXPECT_EQ(CliForNONrevocatiStatement(0, 5, Variant(int32_t{12})),
            head + "0 AND NOT EXISTS " + kExistsForUser5 + "  AND" + agents +
                "MG1C_IDAGENTE_MG17 = '12')");
  // An agent's hidden customers: another column, one parenthesis closed too many.
  EXPECT_EQ(CliForRevocatiStatement(0, 5, Variant("21")),
            head + "0 AND (EXISTS " + kExistsForUser5 + "  OR NOT" + agents +
                "MG1C_AGENTE_IDMG17 = '21') ) )");
  // Suppliers, and customers without an agent (blank in any form): no agent clause.
  EXPECT_EQ(CliForNONrevocatiStatement(1, 5, Variant(int32_t{12})),
            head + "1 AND NOT EXISTS " + kExistsForUser5 + " ");
  EXPECT_EQ(CliForRevocatiStatement(1, 5, Variant(int32_t{12})),
            head + "1 AND (EXISTS " + kExistsForUser5 + " )");
  for (const Variant& blank : {Variant(), Variant::Null(), Variant("  ")}) {
    EXPECT_EQ(CliForNONrevocatiStatement(0, 5, blank).find("MG1C"), std::string::npos);
    EXPECT_EQ(CliForRevocatiStatement(0, 5, blank).find("MG1C"), std::string::npos);
  }
}

TEST(CondCliFor, BothFormsWithAndWithoutAgent) {
  const struct {
    const char* name;
    const char* user;
    Variant agent;          // CodiceAgente
    Variant agent_company;  // DittaAgente
    const char* field;
    int32_t kind;
    const char* outcome;  // both forms, the report field "{R}"
    const char* report_field = "{R}";
    const char* setup = nullptr;
  } cases[] = {
      {"5, 6 (SUD), 8 (PA), 9 (grouping 1 C), 11 (grouping 2 VIP)", "ROSSI", Variant(), Variant(),
       "CG44_CLIFOR", tsCliente, "CG44_CLIFOR NOT IN (5,6,8,9,11)| (NOT ({R} IN [5,6,8,9,11]))|"},
      {"104 (EST); area SUD/SU is below macro level", "ROSSI", Variant(), Variant(), "CG44_CLIFOR",
       tsFornitore, "CG44_CLIFOR NOT IN (104)| (NOT ({R} IN [104]))|"},
      {"agent 12's customers", "GIALLI", Variant(int32_t{12}), Variant(int32_t{1}),
       "DO11_CLIFOR_CG44", tsCliente, "DO11_CLIFOR_CG44 IN (12,40)| (({R} IN [12,40]))|"},
      {"agent and company as text compare as numbers", "GIALLI", Variant("12"), Variant("1"),
       "DO11_CLIFOR_CG44", tsCliente, "DO11_CLIFOR_CG44 IN (12,40)| (({R} IN [12,40]))|"},
      {"suppliers ignore the agent but keep IN and ' (('", "GIALLI", Variant(int32_t{12}),
       Variant(int32_t{1}), "CG44_CLIFOR", tsFornitore,
       "CG44_CLIFOR IN (101,102,103,104,105,101)| (({R} IN [101,102,103,104,105,101]))|"},
      {"nobody hidden, no agent", "GIALLI", Variant(), Variant(), "CG44_CLIFOR", tsCliente, "||"},
      {"blank report field: SQL form only", "ROSSI", Variant(), Variant(), "CG44_CLIFOR",
       tsFornitore, "CG44_CLIFOR NOT IN (104)||", " "},
      {"agent without customers: no restriction", "ROSSI", Variant(int32_t{15}),
       Variant(int32_t{1}), "CG44_CLIFOR", tsCliente, "||", "{R}",
       "INSERT INTO MG17_AGENTI VALUES (15, 1, 'AG15', 'Senza clienti')"},
  };
  for (const auto& c : cases) {
    FilterOnDemo f(c.user);
    if (c.setup) f.Setup(c.setup);
    f.ActAsAgent(c.agent, c.agent_company);
    f.Filter(c.field, Variant(c.report_field), c.kind);
    EXPECT_EQ(f.Outcome(), c.outcome) << c.name;
  }
}

TEST(CondCliFor, AgentOfAnotherCompanyShowsTwoBoxesAndNoCondition) {
  FilterOnDemo f("GIALLI");
  f.Filter("MG09_ZONA", Variant("{R}"));  // a condition that must not survive
  f.ActAsAgent(Variant(int32_t{21}), Variant(int32_t{demo::kOtherCompany}));
  f.Filter("CG44_CLIFOR", Variant("{R}"), tsCliente);
  EXPECT_EQ(f.Outcome(), "||CliForRevocati FiltroCondizione ");
  EXPECT_EQ(f.Boxes()[1].text.rfind(std::to_string(vberr::kObjectNotSet) + " - ", 0), 0u)
      << f.Boxes()[1].text;
  ASSERT_FALSE(f.Sent().empty());
  EXPECT_EQ(f.Sent().back(),
            CliForRevocatiStatement(0, demo::user_id::kGialli, Variant(int32_t{21})));
}

TEST(CondCliFor, NullCompanyFailsIntoFiltroCondizione) {
  for (const Variant& agent : {Variant(int32_t{12}), Variant()}) {
    FilterOnDemo f("GIALLI");
    f.ActAsAgent(agent, Variant::Null());
    f.Filter("CG44_CLIFOR", Variant("{R}"), tsCliente);
    ASSERT_EQ(f.Outcome(), "||FiltroCondizione ");
    EXPECT_EQ(f.Boxes()[0].text.rfind(std::to_string(vberr::kInvalidUseOfNull) + " - ", 0), 0u);
    for (const std::string& s : f.Sent()) EXPECT_EQ(s.find("CG44_CLIFOR"), std::string::npos);
  }
}

const char kRossiProjectCondition[] =
    " NOT EXISTS (SELECT TOP 1 1  FROM VFW31_RVKPARAMETRI  WHERE FW31_ID_FW07 = 5  AND "
    "FW31_INDTIPO = 8  AND FW31_FLGABILITATO = 0  AND FW31_DITTARAGG = 1 AND FW31_CODTIPO = "
    "PD68_CODPROG) ";

// Adds kind-8 revocations of ROSSI in company 1 (codes 9000 and up).
void RevokeForRossi(FilterOnDemo& f, const std::vector<std::string>& projects) {
  int code = 9000;
  for (const std::string& p : projects) {
    f.Setup(
        "INSERT INTO FW31_RVKPARAMETRI (FW31_CODICE, FW31_ID_FW07, FW31_INDTIPO, "
        "FW31_DITTARAGG, FW31_CODTIPO, FW31_FLGABILITATO, FW31_FLGMODIFICA, FW31_FLGELIMINA, "
        "FW31_FLGINSERISCI) VALUES (" +
        std::to_string(code++) + ", 5, 8, 1, '" + p + "', 0, 1, 1, 1)");
  }
}

// Adds projects to company 1.
void AddProjects(FilterOnDemo& f, int first, int last) {
  for (int n = first; n <= last; ++n) {
    f.Setup("INSERT INTO PD68_PROGETTI VALUES (1, 'P" + std::to_string(n) + "', 'Progetto')");
  }
}

TEST(ProjectStatements, TextsForOneUser) {
  const Variant one(int32_t{1});
  EXPECT_EQ(
      (Strings{ProjectProbeStatement(5, one), ProjectCountStatement(5, one),
               RevokedProjectsStatement(5, one), AllowedProjectsStatement(5, one),
               NodeProbeStatement(5, one),
               NodeCondition(5, one, "PD0C_CODNODO", "PD0C_CODPROG_PD68")}),
      (Strings{
          " SELECT TOP 1 1  FROM VFW31_RVKPARAMETRI   WHERE FW31_ID_FW07 = 5      AND "
          "FW31_INDTIPO = 8       AND FW31_FLGABILITATO = 0       AND FW31_DITTARAGG = 1",
          " SELECT COUNT(*) AS NUMPROG, (SELECT COUNT(FW31_CODTIPO)   FROM VFW31_RVKPARAMETRI   "
          "WHERE FW31_ID_FW07 = 5      AND FW31_INDTIPO = 8       AND FW31_FLGABILITATO = 0     "
          "  AND FW31_DITTARAGG = 1) AS NUMREVOKE  FROM PD68_PROGETTI ",
          " SELECT FW31_CODTIPO  FROM VFW31_RVKPARAMETRI  WHERE FW31_ID_FW07 = 5  AND "
          "FW31_INDTIPO = 8  AND FW31_FLGABILITATO = 0  AND FW31_DITTARAGG = 1",
          " SELECT PD68_CODPROG as FW31_CODTIPO  FROM PD68_PROGETTI  WHERE PD68_DITTA_CG18 = 1"
          "     AND NOT EXISTS (SELECT TOP 1 1                         FROM VFW31_RVKPARAMETRI "
          "                        WHERE FW31_ID_FW07 = 5                          AND "
          "FW31_INDTIPO = 8                           AND FW31_FLGABILITATO = 0              "
          "             AND FW31_DITTARAGG = 1                         AND PD68_CODPROG = "
          "FW31_CODTIPO)",
          " SELECT TOP 1 1  FROM VFW3N_RVKNODI   WHERE FW3N_ID_FW07 = 5  AND FW3N_DITTA_CG18 = 1",
          " NOT EXISTS (SELECT TOP 1 1  FROM VFW3N_RVKNODI  WHERE FW3N_ID_FW07 = 5  AND "
          "FW3N_DITTA_CG18 = 1 AND FW3N_CODPROG_PD68 = PD0C_CODPROG_PD68 AND FW3N_CODNODO = "
          "PD0C_CODNODO) ",
      }));
}

TEST(Progetti, TheShorterOfTheRevokedAndTheAllowedListsInTheReportForm) {
  // ROSSI may not see P1 and P2 of company 1 (P1..P8; 11 projects in all).
  // Projects added (P9 on), further revocations, report field and form, the list sent
  // (nullptr: the probe only, for a blank report field).
  using List = std::string (*)(int32_t, const Variant&);
  const List revoked = RevokedProjectsStatement, allowed = AllowedProjectsStatement;
  const std::tuple<int, Strings, const char*, const char*, List> cases[] = {
      {89, {"P9"}, "R", " (NOT (R IN [\"P1\",\"P2\",\"P9\"]))", revoked},
      {1, {"P3", "P4", "P5", "P6"}, "{R}", " ( ({R} IN [\"P7\",\"P8\",\"P9\"]))", allowed},
      {1, {"P3", "P4", "P5"}, "R", " (NOT (R IN [\"P1\",\"P2\",\"P3\",\"P4\",\"P5\"]))", revoked},
      {0, {"P3", "P4", "P5", "P6", "P7", "P8"}, "R", "", allowed},
      {0, {}, " ", "", nullptr},
  };
  const Variant one(int32_t{1});
  for (const auto& [added, revocations, report_field, report, list] : cases) {
    FilterOnDemo f;
    AddProjects(f, 9, 8 + added);
    RevokeForRossi(f, revocations);
    f.Filter("PD68_CODPROG", Variant(report_field));
    EXPECT_EQ(f.Report(), report) << added << " " << revocations.size();
    EXPECT_EQ(f.Sql(), kRossiProjectCondition);
    Strings tail = {ProjectProbeStatement(5, one)};
    if (list) tail.insert(tail.end(), {ProjectCountStatement(5, one), list(5, one)});
    ASSERT_GE(f.Sent().size(), tail.size());
    EXPECT_EQ(Strings(f.Sent().end() - tail.size(), f.Sent().end()), tail);
  }
}

TEST(Progetti, NoRevocationInTheCurrentCompanyAndAFailingQuery) {
  // BIANCHI's project revocation is in company 2; he has no node revoked.
  FilterOnDemo f("BIANCHI");
  f.Filter("PD0C_CODNODO", Variant("R"));
  EXPECT_EQ(f.Outcome(), "||");
  ASSERT_FALSE(f.Sent().empty());
  EXPECT_EQ(f.Sent().back(), NodeProbeStatement(6, Variant(int32_t{1})));
  f.Filter("PD68_CODPROG", Variant("R"));
  EXPECT_EQ(f.Sql() + f.Report(), "");
  f.filter->SetDittaCorrente(Variant(int32_t{2}));
  f.Filter("PD68_CODPROG", Variant("R"));
  EXPECT_EQ(f.Report(), " (NOT (R IN [\"Q1\"]))");
  f.filter->SetDittaCorrente(Variant());  // "FW31_DITTARAGG = " with nothing after it
  f.Filter("PD68_CODPROG", Variant("R"));
  EXPECT_EQ(f.Outcome(), "||Progetti ");
  f.Filter("PD0C_CODNODO", Variant("R"));
  EXPECT_EQ(f.Outcome(), "||Progetti CondNodi ");
}

TEST(CondNodi, ReportFormIsAlwaysTrueAndOmittedReportFields) {
  FilterOnDemo f;
  f.Filter("T.PD68_CODPROG");
  EXPECT_EQ(f.Report(), " (NOT (T.PD68_CODPROG IN [\"P1\",\"P2\"]))");
  // The SQL form names the project column, not the field the host gave.
  EXPECT_EQ(f.Sql(), kRossiProjectCondition);
  f.Filter("PD0C_CODNODO", Variant("{PD0C.CODNODO}"));
  EXPECT_EQ(f.Outcome(),
            NodeCondition(5, Variant(int32_t{1}), "PD0C_CODNODO", "PD0C_CODPROG_PD68") + "|(1=1)|");
  f.Filter("X.PD0C_CODNODO", Variant(""));
  EXPECT_EQ(f.Report(), "");
  EXPECT_NE(f.Sql(), "");
  f.Filter("X.PD0C_CODNODO");
  EXPECT_EQ(f.Report(), "(1=1)");
}

}  // namespace
}  // namespace zarvik::filtroquery
