// Destinations of the host's agent, revoked customers, movement types, the warehouse transfer.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "../parser_test_support.h"
#include "frame/host_object.h"

namespace zarvik {
namespace {

class ConditionAnswerTest : public testing::ParserTest {
 protected:
  // The host's application object with the current user acting as `agent`.
  void HostWithAgent(const Variant& agent) {
    auto user = MakeHostObject({{"IdAgente", agent}});
    auto global = MakeHostObject({{"Gcls_UtenteCorrente", Variant(ObjectRef(user))}});
    parser.SetActiveInterface(MakeHostObject({{"ClsGlobal", Variant(ObjectRef(global))}}));
  }
  std::string Destinations() {
    return parser.SQLConditionDestinazioni("MG22_CODDESTIN", "MG22_DITTA_CG18", "MG22_TIPOCF_CG44",
                                           "MG22_CLIFOR_CG44", false);
  }
};

TEST_F(ConditionAnswerTest, DestinationsOfTheHostsAgent) {
  AsUser("GIALLI");
  HostWithAgent(Variant(int32_t{12}));
  const std::string expected =
      "              (    EXISTS                              (SELECT     TOP 1 1                 "
      "        FROM       MG2G_DESTAGEMUL MG2GRVK WITH (NOLOCK)                         WHERE      "
      "MG2GRVK.MG2G_DITTA_CG18 = MG22_DITTA_CG18 AND MG2GRVK.MG2G_TIPOCF_CG44 = MG22_TIPOCF_CG44 "
      "AND                           MG2GRVK.MG2G_CLIFOR_CG44 = MG22_CLIFOR_CG44 AND "
      "MG2G_CODDESTIN_MG22 = MG22_CODDESTIN AND                           "
      "MG2GRVK.MG2G_IDAGENTE_MG17 = 12)          OR NOT EXISTS                                    "
      "      (SELECT     TOP 1 1                         FROM       MG2G_DESTAGEMUL MG2GRVK WITH "
      "(NOLOCK)               WHERE      MG2GRVK.MG2G_DITTA_CG18 = MG22_DITTA_CG18 AND "
      "MG2GRVK.MG2G_TIPOCF_CG44 = MG22_TIPOCF_CG44 AND                           "
      "MG2GRVK.MG2G_CLIFOR_CG44 = MG22_CLIFOR_CG44 AND MG2G_CODDESTIN_MG22 = MG22_CODDESTIN)      "
      ") ";
  EXPECT_EQ(Destinations(), expected);
  EXPECT_EQ(parser.SQLConditionDestinazioni("MG22_CODDESTIN", "MG22_DITTA_CG18", "MG22_TIPOCF_CG44",
                                            "MG22_CLIFOR_CG44", true),
            " AND " + expected);
  // Another alias is used in every place but the destination column.
  const std::string aliased = parser.SQLConditionDestinazioni("N", "D", "T", "C", false, "Q");
  EXPECT_NE(aliased.find("FROM       MG2G_DESTAGEMUL Q WITH (NOLOCK)           "), aliased.npos);
  EXPECT_NE(aliased.find("Q.MG2G_CLIFOR_CG44 = C AND MG2G_CODDESTIN_MG22 = N) "), aliased.npos);
  EXPECT_EQ(aliased.find("MG2GRVK"), aliased.npos);
  // No agent (any form), disabled, privileged or no host object: nothing.
  std::string none;
  for (const Variant& agent : {Variant::Null(), Variant(int16_t{0}), Variant(), Variant("0")}) {
    HostWithAgent(agent);
    none += Destinations();
  }
  HostWithAgent(Variant(int32_t{12}));
  parser.SetRevokeDisabilitata(true);
  none += Destinations();
  parser.SetRevokeDisabilitata(false);
  parser.SetCodiceUtente("ZentAd");
  none += Destinations();
  parser.SetCodiceUtente("GIALLI");
  parser.SetActiveInterface(nullptr);
  EXPECT_EQ(none + Destinations(), "");
  EXPECT_TRUE(Boxes().empty());
  // A host without the agent member is reported.
  auto global = MakeHostObject({{"Gcls_UtenteCorrente", Variant(ObjectRef(MakeHostObject()))}});
  parser.SetActiveInterface(MakeHostObject({{"ClsGlobal", Variant(ObjectRef(global))}}));
  EXPECT_EQ(Destinations(), "");
  EXPECT_EQ(BoxTags(), std::vector<std::string>{"SQLConditionDestinazioni"});
}

// "company/code" of every row, sorted.
std::string Codes(const std::shared_ptr<db::Recordset>& rows) {
  std::vector<std::string> codes;
  for (; !rows->EOF(); rows->MoveNext()) {
    codes.push_back(rows->Fields("CG44_DITTA_CG18").ConcatText() + "/" +
                    rows->Fields("CG44_CLIFOR").ConcatText());
  }
  std::sort(codes.begin(), codes.end());
  std::string text;
  for (const std::string& c : codes) text += c + " ";
  return text;
}

TEST_F(ConditionAnswerTest, RevokedCustomersWithTheKindTheAgentSelects) {
  // The user code comes from the customer/supplier code.
  parser.SetCodiceGruppo("VEN");
  parser.SetCodiceUtenteCLIFOR("ROSSI");
  auto rows = parser.CliForRevocati();
  ASSERT_NE(rows, nullptr);
  EXPECT_EQ(parser.CodiceUtente(), "ROSSI");
  EXPECT_EQ(LastStatement(),
            " SELECT CG44_CLIFOR.*  FROM VFW32_LISTACFREVOCATI  INNER JOIN CG44_CLIFOR ON RVKDITTA "
            "= CG44_DITTA_CG18       AND RVKTIPOCF = CG44_TIPOCF      AND RVKCLIFOR = CG44_CLIFOR  "
            "WHERE RVKUTENTE = 5       AND CG44_TIPOCF = 0");
  EXPECT_EQ(Codes(rows), "1/10 1/11 1/2 1/5 1/6 1/7 1/8 1/9 ");
  // The blank agent stays the number 0; agent id 1 selects the supplier kind.
  EXPECT_EQ(parser.IdAgente().Type(), VarType::kInteger);
  parser.SetIdAgente(Variant(int32_t{1}));
  EXPECT_EQ(Codes(parser.CliForRevocati()), "1/102 1/103 1/104 ");
  // ZentAd still queries (and finds nothing revoked); no connection: nothing.
  EXPECT_TRUE(Other("ZentAd")->CliForRevocati()->EOF());
  EXPECT_EQ(Other("ROSSI", Variant(int32_t{1}), false)->CliForRevocati(), nullptr);
  EXPECT_TRUE(Boxes().empty());
  db->Execute("DROP VIEW VFW32_LISTACFREVOCATI");
  EXPECT_EQ(parser.CliForRevocati(), nullptr);
  EXPECT_EQ(BoxTags(), std::vector<std::string>{"CliForRevocati"});
}

TEST_F(ConditionAnswerTest, MovementTypeListAndTheWarehouseTransfer) {
  // The missing '=' after FW31_ID_FW07 fails for everyone, ZentAd too.
  const std::string join =
      "  FROM CGT0_TIPOMOV LEFT OUTER JOIN VFW31_RVKPARAMETRI ON CGT0_TIPOMOV.CGT0_CODICE = "
      "FW31_CODTIPO  AND FW31_ID_FW07 ";
  AsUser("ROSSI");
  EXPECT_EQ(parser.InitRevokeTipiMovimenti(), nullptr);
  EXPECT_EQ(LastStatement(),
            " SELECT  CGT0_CODICE AS CODICE, CASE WHEN FW31_FLGABILITATO IS NULL THEN 1 ELSE 0 END "
            "AS ABILITATO" +
                join + "5 AND FW31_INDTIPO = 1 WHERE CGT0_FLGCANREVOKE = 1");
  EXPECT_EQ(BoxTags(), std::vector<std::string>{"InitRevokeTipiMov"});
  log->statements.clear();
  EXPECT_EQ(Other("ZentAd")->InitRevokeTipiMovimenti(), nullptr);
  ASSERT_EQ(Statements().size(), 2U);
  EXPECT_EQ(Statements()[1], " SELECT  CGT0_CODICE AS CODICE, 1 AS ABILITATO" + join +
                                 "1 AND FW31_INDTIPO = 1 WHERE CGT0_FLGCANREVOKE = 1");
  // The transfer uses the id as it stands, without a lookup.
  log->statements.clear();
  parser.SetIdUser(demo::user_id::kRossi);
  std::string origin = "A1", destination = "C3";
  EXPECT_EQ(parser.TrasferimentoDepositi(origin, destination), 1);
  EXPECT_EQ(Statements(),
            std::vector<std::string>{"SELECT dbo.FNFW_TRASFREVOCATI (1, 5, 'A1', 'C3')"});
  origin = "C3", destination = "D4";
  EXPECT_EQ(parser.TrasferimentoDepositi(origin, destination), 0);
  EXPECT_EQ(origin + destination, "C3D4");
  // Unresolved, the id is 0 and nothing is revoked for user 0.
  auto fresh = Other("ROSSI");
  origin = "A1";
  EXPECT_EQ(fresh->TrasferimentoDepositi(origin, destination), 0);
  EXPECT_EQ(LastStatement(), "SELECT dbo.FNFW_TRASFREVOCATI (1, 0, 'A1', 'D4')");
  EXPECT_FALSE(fresh->Frame().UserResolved());
  // Without a connection it reports and answers 0; it does not open one.
  parser.SetConnectionADO(nullptr);
  parser.SetConnectionStringADO(demo::DemoConnectionString(":memory:"));
  EXPECT_EQ(parser.TrasferimentoDepositi(origin, destination), 0);
  EXPECT_EQ(parser.ConnectionADO(), nullptr);
  EXPECT_EQ(BoxTags(), (std::vector<std::string>{"InitRevokeTipiMov", "InitRevokeTipiMov",
                                                 "TrasferimentoDepositi"}));
}

}  // namespace
}  // namespace zarvik
