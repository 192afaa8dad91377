// Customer and supplier fields: the classification subquery, the two list
// statements, both forms of the condition with and without an agent, the
// malformed statement for an agent of another company, and the SQL form
// inside real statements.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "filtroquery/clifor_statements.h"
#include "filtroquery/clsfw_filtroquery.h"
#include "filtroquery/filtroquery_test_support.h"
#include "platform/vb_error.h"

namespace zarvik::filtroquery {
namespace {

using testing::BoxTags;
using testing::FilterOnDemo;

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
  // The hidden customers of an agent name another column and close once
  // more than they open.
  EXPECT_EQ(CliForRevocatiStatement(0, 5, Variant("21")),
            head + "0 AND (EXISTS " + kExistsForUser5 + "  OR NOT" + agents +
                "MG1C_AGENTE_IDMG17 = '21') ) )");
  // Suppliers, and customers without an agent (blank in any form), get no
  // agent clause.
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
    const char* sql;
    const char* report;  // with the report field "{R}"
    const char* report_field = "{R}";
  } cases[] = {
      // ROSSI: customers 5 and 6 (macro-area SUD), 8 (macro-category PA),
      // 9 (grouping 1 C), 11 (grouping 2 VIP) are hidden.
      {"hidden customers", "ROSSI", Variant(), Variant(), "CG44_CLIFOR", tsCliente,
       "CG44_CLIFOR NOT IN (5,6,8,9,11)", " (NOT ({R} IN [5,6,8,9,11]))"},
      // ... and supplier 104 (macro-category EST); the area row SUD/SU is
      // below macro level and does not count here.
      {"hidden suppliers", "ROSSI", Variant(), Variant(), "CG44_CLIFOR", tsFornitore,
       "CG44_CLIFOR NOT IN (104)", " (NOT ({R} IN [104]))"},
      // GIALLI as agent 12 of company 1 sees customers 12 and 40.
      {"agent's customers", "GIALLI", Variant(int32_t{12}), Variant(int32_t{1}), "DO11_CLIFOR_CG44",
       tsCliente, "DO11_CLIFOR_CG44 IN (12,40)", " (({R} IN [12,40]))"},
      // Company and agent given as text compare as numbers.
      {"agent as text", "GIALLI", Variant("12"), Variant("1"), "DO11_CLIFOR_CG44", tsCliente,
       "DO11_CLIFOR_CG44 IN (12,40)", " (({R} IN [12,40]))"},
      // Suppliers ignore the agent in the statement but keep IN and " ((".
      {"agent's suppliers", "GIALLI", Variant(int32_t{12}), Variant(int32_t{1}), "CG44_CLIFOR",
       tsFornitore, "CG44_CLIFOR IN (101,102,103,104,105,101)",
       " (({R} IN [101,102,103,104,105,101]))"},
      // Nobody hidden and no agent: no restriction.
      {"nobody hidden", "GIALLI", Variant(), Variant(), "CG44_CLIFOR", tsCliente, "", ""},
      // A blank report field: the SQL form only.
      {"blank report field", "ROSSI", Variant(), Variant(), "CG44_CLIFOR", tsFornitore,
       "CG44_CLIFOR NOT IN (104)", "", " "},
  };
  for (const auto& c : cases) {
    FilterOnDemo f(c.user);
    f.ActAsAgent(c.agent, c.agent_company);
    f.Filter(c.field, Variant(c.report_field), c.kind);
    EXPECT_EQ(f.Sql(), c.sql) << c.name;
    EXPECT_EQ(f.Report(), c.report) << c.name;
    EXPECT_TRUE(f.Boxes().empty()) << c.name;
  }
}

TEST(CondCliFor, AgentWithNoVisibleCustomerLeavesTheFieldUnrestricted) {
  FilterOnDemo f("ROSSI");
  f.Setup("INSERT INTO MG17_AGENTI VALUES (15, 1, 'AG15', 'Senza clienti')");
  f.ActAsAgent(Variant(int32_t{15}), Variant(int32_t{1}));
  f.Filter("CG44_CLIFOR", Variant("{R}"), tsCliente);
  EXPECT_EQ(f.Sql() + f.Report(), "");
  ASSERT_FALSE(f.Sent().empty());
  EXPECT_EQ(f.Sent().back(),
            CliForNONrevocatiStatement(0, demo::user_id::kRossi, Variant(int32_t{15})));
}

TEST(CondCliFor, AgentOfAnotherCompanyShowsTwoBoxesAndNoCondition) {
  FilterOnDemo f("GIALLI");
  f.Filter("MG09_ZONA", Variant("{R}"));  // a condition that must not survive
  f.ActAsAgent(Variant(int32_t{21}), Variant(int32_t{demo::kOtherCompany}));
  f.Filter("CG44_CLIFOR", Variant("{R}"), tsCliente);
  EXPECT_EQ(BoxTags(f.Boxes()), (std::vector<std::string>{"CliForRevocati", "FiltroCondizione"}));
  EXPECT_EQ(f.Boxes()[1].text.rfind(std::to_string(vberr::kObjectNotSet) + " - ", 0), 0u)
      << f.Boxes()[1].text;
  EXPECT_EQ(f.Sql(), "");
  EXPECT_EQ(f.Report(), "");
  ASSERT_FALSE(f.Sent().empty());
  EXPECT_EQ(f.Sent().back(),
            CliForRevocatiStatement(0, demo::user_id::kGialli, Variant(int32_t{21})));
}

TEST(CondCliFor, NullCompanyFailsIntoFiltroCondizione) {
  for (const Variant& agent : {Variant(int32_t{12}), Variant()}) {
    FilterOnDemo f("GIALLI");
    f.ActAsAgent(agent, Variant::Null());
    f.Filter("CG44_CLIFOR", Variant("{R}"), tsCliente);
    EXPECT_EQ(BoxTags(f.Boxes()), std::vector<std::string>{"FiltroCondizione"});
    EXPECT_EQ(f.Boxes()[0].text.rfind(std::to_string(vberr::kInvalidUseOfNull) + " - ", 0), 0u);
    for (const std::string& s : f.Sent()) EXPECT_EQ(s.find("CG44_CLIFOR"), std::string::npos);
    EXPECT_EQ(f.Sql(), "");
  }
}

}  // namespace
}  // namespace zarvik::filtroquery
