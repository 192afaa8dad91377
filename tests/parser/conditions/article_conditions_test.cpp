// Article-state, price-list, movement-type and CERVED conditions, the
// enabled article states as an array, the movement types with their
// permission and the warehouse transfer question, on the demo database.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "../checks/check_test_support.h"
#include "demo/tour.h"
#include "platform/variant.h"

namespace zarvik {
namespace {

class ArticleConditionTest : public testing::CheckTest {
 protected:
  // The first column of every row, as text.
  std::vector<std::string> Rows(const std::string& statement) {
    std::vector<std::string> values;
    for (const auto& row : demo::QueryRows(*db, statement)) {
      values.push_back(row.at(0).ConcatText());
    }
    return values;
  }
  using Texts = std::vector<std::string>;

  // Three CERVED operation codes to apply the condition to.
  static constexpr const char* kOperations =
      "SELECT C FROM (SELECT 'CRV1' AS C UNION ALL SELECT 'CRV2' UNION ALL SELECT 'CRV3') "
      "WHERE 1=1";
};

TEST_F(ArticleConditionTest, ArticleStatesWithoutTheRevokedState) {
  AsRossi();
  const std::string condition = parser.SQLConditionStatiArticolo(false);
  EXPECT_EQ(condition,
            " MG66_INDSTATO_MG6W IN (                   (SELECT MG6W_INDSTATO                "
            "       FROM MG6W_STATIART                      WHERE NOT EXISTS (SELECT TOP 1 1 "
            "                                        FROM VFW31_RVKPARAMETRI                 "
            "                       WHERE FW31_CODTIPO = CAST(MG6W_INDSTATO AS NVARCHAR)     "
            "                                         AND FW31_ID_FW07 = 5                   "
            "                          AND FW31_INDTIPO = 14                                 "
            "               AND FW31_DITTARAGG = -1))) ");
  EXPECT_EQ(Statements().back(),
            "SELECT TOP 1 1 FROM VFW31_RVKPARAMETRI   WHERE FW31_ID_FW07 = 5 AND FW31_INDTIPO = 14 "
            "   AND FW31_DITTARAGG = -1 ");
  // ART006 and ART009 are obsolete (state 3, revoked).
  EXPECT_EQ(Rows("SELECT MG66_CODART FROM MG66_ARTICOLI WHERE MG66_DITTA_CG18 = 1" +
                 parser.SQLConditionStatiArticolo(true) + " ORDER BY 1"),
            (Texts{"ART001", "ART002", "ART003", "ART004", "ART005", "ART007", "ART008", "ART010",
                   "ART011", "ART012"}));
}

TEST_F(ArticleConditionTest, ArticleStatesNeedOnlyAKindFourteenRowWhateverItsFlag) {
  AsUser("GIALLI", "VEN");
  EXPECT_EQ(parser.SQLConditionStatiArticolo(true), "");
  EXPECT_EQ(parser.SQLConditionStatiArticolo(false), "");
  // An enabled row is enough to build the condition, and the sub-query
  // does not look at the flag either: the state of that row is hidden.
  Run("INSERT INTO FW31_RVKPARAMETRI (FW31_CODICE, FW31_ID_FW07, FW31_INDTIPO, FW31_DITTARAGG, "
      "FW31_CODTIPO, FW31_FLGABILITATO) VALUES (9001, 9, 14, -1, '1', 1)");
  const std::string condition = parser.SQLConditionStatiArticolo(true);
  EXPECT_EQ(condition.rfind(" AND  MG66_INDSTATO_MG6W IN (", 0), 0u) << condition;
  EXPECT_EQ(Rows("SELECT DISTINCT MG66_INDSTATO_MG6W FROM MG66_ARTICOLI WHERE 1=1" + condition +
                 " ORDER BY 1"),
            (Texts{"0", "2", "3", "4"}));
}

TEST_F(ArticleConditionTest, PriceListTypesAsAList) {
  AsRossi();
  EXPECT_EQ(parser.SQLConditionTipiListiniP("TL", false), " TL NOT IN (2, 5)");
  EXPECT_EQ(Statements().back(),
            "SELECT FW31_CODTIPO  FROM VFW31_RVKPARAMETRI   WHERE FW31_ID_FW07 = 5 AND "
            "FW31_INDTIPO = 32 ");
  const std::string condition = parser.SQLConditionTipiListiniP("MG66_TIPOLIST_MG4T", true);
  EXPECT_EQ(condition, " AND MG66_TIPOLIST_MG4T NOT IN (2, 5)");
  EXPECT_EQ(
      Rows("SELECT MG66_CODART FROM MG66_ARTICOLI WHERE MG66_DITTA_CG18 = 1" + condition +
           " ORDER BY 1"),
      (Texts{"ART001", "ART002", "ART003", "ART005", "ART006", "ART009", "ART010", "ART011"}));
}

TEST_F(ArticleConditionTest, PriceListTypesShortCuts) {
  AsRossi();
  // A blank column: nothing opened, nothing sent.
  EXPECT_EQ(parser.SQLConditionTipiListiniP("", true), "");
  EXPECT_EQ(parser.SQLConditionTipiListiniP("  ", false), "");
  EXPECT_TRUE(Statements().empty());
  // No revoked type.
  AsUser("GIALLI", "VEN");
  CLSFW_PARSER gialli(Env{sink, std::make_shared<SystemClock>()});
  gialli.SetConnectionADO(db);
  gialli.SetCodiceGruppo("VEN");
  gialli.SetCodiceUtente("GIALLI");
  gialli.SetCodiceUtenteCLIFOR("GIALLI");
  EXPECT_EQ(gialli.SQLConditionTipiListiniP("TL", true), "");
}

TEST_F(ArticleConditionTest, MovementTypesCondition) {
  AsRossi();
  std::string column = "CGT0_CODICE";
  bool with_and = false;
  const std::string condition = parser.SQLConditionTipiMovimenti(column, with_and);
  EXPECT_EQ(condition,
            " NOT EXISTS (SELECT TOP 1 1  FROM VFW31_RVKPARAMETRI  WHERE FW31_ID_FW07 = 5  AND "
            "FW31_INDTIPO = 1  AND FW31_FLGABILITATO = 0  AND FW31_DITTARAGG = -1  AND "
            "FW31_CODTIPO = CGT0_CODICE)");
  with_and = true;
  EXPECT_EQ(Rows("SELECT CGT0_CODICE FROM CGT0_TIPOMOV WHERE 1=1" +
                 parser.SQLConditionTipiMovimenti(column, with_and) + " ORDER BY 1"),
            (Texts{"1", "2", "4"}));
  EXPECT_EQ(column, "CGT0_CODICE");
  EXPECT_TRUE(with_and);
}

TEST_F(ArticleConditionTest, CervedConditionTestsTheInsertOrTheUpdateFlag) {
  AsRossi();
  std::string column = "C";
  bool with_and = false;
  int16_t operation = 0;
  EXPECT_EQ(parser.SQLConditionCerved(column, with_and, operation),
            " NOT EXISTS (SELECT TOP 1 1  FROM VFW31_RVKPARAMETRI  WHERE FW31_ID_FW07 = 5  AND "
            "FW31_FLGINSERISCI = 0  AND FW31_INDTIPO = 31  AND FW31_DITTARAGG = -1  AND "
            "FW31_CODTIPO = C) ");
  with_and = true;
  struct Case {
    int16_t operation;
    std::vector<std::string> kept;
  };
  // CRV1 may not be inserted, CRV2 may not be modified.
  const std::vector<Case> cases = {
      {0, {"CRV2", "CRV3"}}, {1, {"CRV1", "CRV3"}}, {2, {"CRV1", "CRV3"}}, {-1, {"CRV1", "CRV3"}}};
  for (const Case& c : cases) {
    operation = c.operation;
    const std::string condition = parser.SQLConditionCerved(column, with_and, operation);
    EXPECT_EQ(condition.find(c.operation == 0 ? "FW31_FLGINSERISCI" : "FW31_FLGMODIFICA") !=
                  std::string::npos,
              true)
        << condition;
    EXPECT_EQ(Rows(std::string(kOperations) + condition + " ORDER BY 1"), c.kept) << c.operation;
  }
}

TEST_F(ArticleConditionTest, PrivilegedUserGetsEmptyConditionsWithoutAStatement) {
  AsZentAd();
  std::string column = "CGT0_CODICE";
  bool with_and = true;
  int16_t operation = 1;
  EXPECT_EQ(parser.SQLConditionStatiArticolo(true), "");
  EXPECT_EQ(parser.SQLConditionTipiListiniP("TL", true), "");
  EXPECT_EQ(parser.SQLConditionTipiMovimenti(column, with_and), "");
  EXPECT_EQ(parser.SQLConditionCerved(column, with_and, operation), "");
  EXPECT_TRUE(Statements().empty());

  // Which field is compared: CodiceUtenteCLIFOR for the first two,
  // CodiceUtente for the movement and CERVED conditions.
  parser.SetCodiceUtente("ROSSI");
  parser.SetCodiceGruppo("VEN");
  EXPECT_EQ(parser.SQLConditionStatiArticolo(true), "");
  EXPECT_EQ(parser.SQLConditionTipiListiniP("TL", true), "");
  EXPECT_TRUE(Statements().empty());
  EXPECT_NE(parser.SQLConditionTipiMovimenti(column, with_and), "");
}

TEST_F(ArticleConditionTest, EnabledArticleStatesAsATwoRowArray) {
  AsRossi();
  const Variant result = parser.StatiArticoloMagaArray();
  ASSERT_EQ(result.Type(), VarType::kArray);
  const auto array = result.ToArray();
  EXPECT_EQ(array->LBound(1), 0);
  EXPECT_EQ(array->UBound(1), 1);
  EXPECT_EQ(array->LBound(2), 0);
  ASSERT_EQ(array->UBound(2), 3);
  const std::vector<std::pair<int32_t, std::string>> expected = {
      {0, "Attivo"}, {1, "In esaurimento"}, {2, "Bloccato acquisti"}, {4, "Nuovo"}};
  for (int32_t i = 0; i < 4; ++i) {
    EXPECT_EQ(array->At(0, i).ToLong(), expected[i].first);
    EXPECT_EQ(array->At(1, i).ToString(), expected[i].second);
  }
  EXPECT_TRUE(Boxes().empty());
}

TEST_F(ArticleConditionTest, NoEnabledStateGivesEmptyNotAnEmptyArray) {
  AsRossi();
  Run("INSERT INTO FW31_RVKPARAMETRI (FW31_CODICE, FW31_ID_FW07, FW31_INDTIPO, FW31_DITTARAGG, "
      "FW31_CODTIPO, FW31_FLGABILITATO) VALUES (9001, 5, 14, -1, '0', 0), (9002, 5, 14, -1, '1', "
      "0), (9003, 5, 14, -1, '2', 0), (9004, 5, 14, -1, '4', 0)");
  const Variant result = parser.StatiArticoloMagaArray();
  EXPECT_TRUE(result.IsEmpty());
  EXPECT_TRUE(Boxes().empty());
}

TEST_F(ArticleConditionTest, ServerSideCursorGivesEmptyToo) {
  AsRossi();
  db->SetCursorLocation(db::kUseServer);
  EXPECT_TRUE(parser.StatiArticoloMagaArray().IsEmpty());
}

TEST_F(ArticleConditionTest, PrivilegedUserGetsEveryState) {
  AsZentAd();
  const Variant result = parser.StatiArticoloMagaArray();
  ASSERT_EQ(result.Type(), VarType::kArray);
  EXPECT_EQ(result.ToArray()->UBound(2), 4);
}

TEST_F(ArticleConditionTest, ArrayWithoutAConnectionIsReportedUnderBothTags) {
  AsRossi();
  parser.SetConnectionADO(nullptr);
  EXPECT_TRUE(parser.StatiArticoloMagaArray().IsEmpty());
  ASSERT_EQ(Boxes().size(), 2u);
  EXPECT_TRUE(EndsWith(Boxes()[0].text, TagLine("StatiArticoloMaga")));
  EXPECT_TRUE(EndsWith(Boxes()[1].text, TagLine("StatiArticoloMagaArray")));
}

TEST_F(ArticleConditionTest, TransferUsesTheIdAsItStandsWithoutALookup) {
  AsRossi();
  parser.SetIdUser(demo::user_id::kRossi);
  std::string origin = "A1";
  std::string destination = "C3";
  EXPECT_EQ(parser.TrasferimentoDepositi(origin, destination), 1);
  EXPECT_EQ(Statements(),
            std::vector<std::string>{"SELECT dbo.FNFW_TRASFREVOCATI (1, 5, 'A1', 'C3')"});
  origin = "C3";
  destination = "D4";
  EXPECT_EQ(parser.TrasferimentoDepositi(origin, destination), 0);
  EXPECT_EQ(origin, "C3");
  // Unresolved, the id is 0 and nothing is revoked for user 0.
  CLSFW_PARSER fresh(Env{sink, std::make_shared<SystemClock>()});
  fresh.SetConnectionADO(db);
  fresh.SetDittaCorrente(Variant(int32_t{1}));
  fresh.SetCodiceUtente("ROSSI");
  origin = "A1";
  EXPECT_EQ(fresh.TrasferimentoDepositi(origin, destination), 0);
  EXPECT_EQ(Statements().back(), "SELECT dbo.FNFW_TRASFREVOCATI (1, 0, 'A1', 'D4')");
  EXPECT_FALSE(fresh.Frame().UserResolved());
}

TEST_F(ArticleConditionTest, TransferWithoutAConnectionIsReportedAndAnswersZero) {
  AsRossi();
  parser.SetConnectionADO(nullptr);
  parser.SetConnectionStringADO(demo::DemoConnectionString(":memory:"));
  std::string origin = "A1";
  std::string destination = "B2";
  EXPECT_EQ(parser.TrasferimentoDepositi(origin, destination), 0);
  // It does not open the connection itself.
  EXPECT_EQ(parser.ConnectionADO(), nullptr);
  ASSERT_EQ(Boxes().size(), 1u);
  EXPECT_TRUE(EndsWith(Boxes()[0].text, TagLine("TrasferimentoDepositi")));
}

TEST_F(ArticleConditionTest, MovementTypeListKeepsItsHistoricalTextAndFails) {
  AsRossi();
  EXPECT_EQ(parser.InitRevokeTipiMovimenti(), nullptr);
  EXPECT_EQ(Statements().back(),
            " SELECT  CGT0_CODICE AS CODICE, CASE WHEN FW31_FLGABILITATO IS NULL THEN 1 ELSE 0 END "
            "AS ABILITATO  FROM CGT0_TIPOMOV LEFT OUTER JOIN VFW31_RVKPARAMETRI ON "
            "CGT0_TIPOMOV.CGT0_CODICE = FW31_CODTIPO  AND FW31_ID_FW07 5 AND FW31_INDTIPO = 1 "
            "WHERE CGT0_FLGCANREVOKE = 1");
  ASSERT_EQ(Boxes().size(), 1u);
  EXPECT_TRUE(EndsWith(Boxes()[0].text, TagLine("InitRevokeTipiMov"))) << Boxes()[0].text;
}

TEST_F(ArticleConditionTest, MovementTypeListResolvesThePrivilegedUserToo) {
  AsZentAd();
  EXPECT_EQ(parser.InitRevokeTipiMovimenti(), nullptr);
  ASSERT_EQ(Statements().size(), 2u);
  EXPECT_EQ(Statements()[0].rfind("SELECT FW07_ID, FW07_FLGGRP FROM FW07_APPUSER", 0), 0u);
  EXPECT_EQ(Statements()[1],
            " SELECT  CGT0_CODICE AS CODICE, 1 AS ABILITATO  FROM CGT0_TIPOMOV LEFT OUTER JOIN "
            "VFW31_RVKPARAMETRI ON CGT0_TIPOMOV.CGT0_CODICE = FW31_CODTIPO  AND FW31_ID_FW07 1 AND "
            "FW31_INDTIPO = 1 WHERE CGT0_FLGCANREVOKE = 1");
}

}  // namespace
}  // namespace zarvik
