// Article-state, price-list, movement-type and CERVED conditions, the
// enabled article states as an array, the movement types with their
// permission and the warehouse transfer question, on the demo database.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "../parser_test_support.h"

namespace zarvik {
namespace {

class ArticleConditionTest : public testing::ParserTest {};

const char* const kArticlesOfCompany1 =
    "SELECT MG66_CODART FROM MG66_ARTICOLI WHERE MG66_DITTA_CG18 = 1";

TEST_F(ArticleConditionTest, ArticleStatesWithoutTheRevokedState) {
  AsUser("ROSSI");
  EXPECT_EQ(parser.SQLConditionStatiArticolo(false),
            " MG66_INDSTATO_MG6W IN (                   (SELECT MG6W_INDSTATO                "
            "       FROM MG6W_STATIART                      WHERE NOT EXISTS (SELECT TOP 1 1 "
            "                                        FROM VFW31_RVKPARAMETRI                 "
            "                       WHERE FW31_CODTIPO = CAST(MG6W_INDSTATO AS NVARCHAR)     "
            "                                         AND FW31_ID_FW07 = 5                   "
            "                          AND FW31_INDTIPO = 14                                 "
            "               AND FW31_DITTARAGG = -1))) ");
  EXPECT_EQ(LastStatement(),
            "SELECT TOP 1 1 FROM VFW31_RVKPARAMETRI   WHERE FW31_ID_FW07 = 5 AND FW31_INDTIPO = 14 "
            "   AND FW31_DITTARAGG = -1 ");
  // ART006 and ART009 are obsolete (state 3, revoked).
  EXPECT_EQ(Rows(kArticlesOfCompany1 + parser.SQLConditionStatiArticolo(true) + " ORDER BY 1"),
            "ART001 ART002 ART003 ART004 ART005 ART007 ART008 ART010 ART011 ART012");
}

TEST_F(ArticleConditionTest, ArticleStatesNeedOnlyAKindFourteenRowWhateverItsFlag) {
  AsUser("GIALLI");
  EXPECT_EQ(parser.SQLConditionStatiArticolo(true) + parser.SQLConditionStatiArticolo(false), "");
  // An enabled row is enough to build the condition, and the sub-query
  // does not look at the flag either: the state of that row is hidden.
  AddParameterRows(", FW31_FLGABILITATO", "(9001, 9, 14, -1, '1', 1)");
  const std::string condition = parser.SQLConditionStatiArticolo(true);
  EXPECT_EQ(condition.rfind(" AND  MG66_INDSTATO_MG6W IN (", 0), 0U) << condition;
  EXPECT_EQ(Rows("SELECT DISTINCT MG66_INDSTATO_MG6W FROM MG66_ARTICOLI WHERE 1=1" + condition +
                 " ORDER BY 1"),
            "0 2 3 4");
}

TEST_F(ArticleConditionTest, PriceListTypesAsAList) {
  AsUser("ROSSI");
  EXPECT_EQ(parser.SQLConditionTipiListiniP("TL", false), " TL NOT IN (2, 5)");
  EXPECT_EQ(LastStatement(),
            "SELECT FW31_CODTIPO  FROM VFW31_RVKPARAMETRI   WHERE FW31_ID_FW07 = 5 AND "
            "FW31_INDTIPO = 32 ");
  const std::string condition = parser.SQLConditionTipiListiniP("MG66_TIPOLIST_MG4T", true);
  EXPECT_EQ(condition, " AND MG66_TIPOLIST_MG4T NOT IN (2, 5)");
  EXPECT_EQ(Rows(kArticlesOfCompany1 + condition + " ORDER BY 1"),
            "ART001 ART002 ART003 ART005 ART006 ART009 ART010 ART011");
  // A blank column: nothing sent; no revoked type: nothing.
  log->statements.clear();
  EXPECT_EQ(
      parser.SQLConditionTipiListiniP("", true) + parser.SQLConditionTipiListiniP("  ", false), "");
  EXPECT_TRUE(Statements().empty());
  EXPECT_EQ(Other("GIALLI")->SQLConditionTipiListiniP("TL", true), "");
}

TEST_F(ArticleConditionTest, MovementTypesCondition) {
  AsUser("ROSSI");
  std::string column = "CGT0_CODICE";
  bool with_and = false;
  EXPECT_EQ(parser.SQLConditionTipiMovimenti(column, with_and),
            " NOT EXISTS (SELECT TOP 1 1  FROM VFW31_RVKPARAMETRI  WHERE FW31_ID_FW07 = 5  AND "
            "FW31_INDTIPO = 1  AND FW31_FLGABILITATO = 0  AND FW31_DITTARAGG = -1  AND "
            "FW31_CODTIPO = CGT0_CODICE)");
  with_and = true;
  EXPECT_EQ(Rows("SELECT CGT0_CODICE FROM CGT0_TIPOMOV WHERE 1=1" +
                 parser.SQLConditionTipiMovimenti(column, with_and) + " ORDER BY 1"),
            "1 2 4");
  EXPECT_EQ(column, "CGT0_CODICE");
  EXPECT_TRUE(with_and);
}

TEST_F(ArticleConditionTest, CervedConditionTestsTheInsertOrTheUpdateFlag) {
  AsUser("ROSSI");
  std::string column = "C";
  bool with_and = false;
  int16_t operation = 0;
  EXPECT_EQ(parser.SQLConditionCerved(column, with_and, operation),
            " NOT EXISTS (SELECT TOP 1 1  FROM VFW31_RVKPARAMETRI  WHERE FW31_ID_FW07 = 5  AND "
            "FW31_FLGINSERISCI = 0  AND FW31_INDTIPO = 31  AND FW31_DITTARAGG = -1  AND "
            "FW31_CODTIPO = C) ");
  // CRV1 may not be inserted, CRV2 may not be modified; any operation but
  // 0 (insert) tests the update flag.
  with_and = true;
  for (const auto& [op, kept] : std::vector<std::pair<int16_t, std::string>>{
           {0, "CRV2 CRV3"}, {1, "CRV1 CRV3"}, {2, "CRV1 CRV3"}, {-1, "CRV1 CRV3"}}) {
    operation = op;
    EXPECT_EQ(Rows("SELECT C FROM (SELECT 'CRV1' AS C UNION ALL SELECT 'CRV2' UNION ALL SELECT "
                   "'CRV3') WHERE 1=1" +
                   parser.SQLConditionCerved(column, with_and, operation) + " ORDER BY 1"),
              kept)
        << op;
  }
}

TEST_F(ArticleConditionTest, PrivilegedUserGetsEmptyConditionsWithoutAStatement) {
  AsUser("ZentAd");
  std::string column = "CGT0_CODICE";
  bool with_and = true;
  int16_t operation = 1;
  EXPECT_EQ(parser.SQLConditionStatiArticolo(true) + parser.SQLConditionTipiListiniP("TL", true) +
                parser.SQLConditionTipiMovimenti(column, with_and) +
                parser.SQLConditionCerved(column, with_and, operation),
            "");
  EXPECT_TRUE(Statements().empty());
  // Which field is compared: CodiceUtenteCLIFOR for the first two,
  // CodiceUtente for the movement and CERVED conditions.
  parser.SetCodiceUtente("ROSSI");
  parser.SetCodiceGruppo("VEN");
  EXPECT_EQ(parser.SQLConditionStatiArticolo(true) + parser.SQLConditionTipiListiniP("TL", true),
            "");
  EXPECT_TRUE(Statements().empty());
  EXPECT_NE(parser.SQLConditionTipiMovimenti(column, with_and), "");
}

TEST_F(ArticleConditionTest, EnabledArticleStatesAsATwoRowArray) {
  AsUser("ROSSI");
  const Variant result = parser.StatiArticoloMagaArray();
  ASSERT_EQ(result.Type(), VarType::kArray);
  const auto array = result.ToArray();
  EXPECT_EQ(array->LBound(1), 0);
  EXPECT_EQ(array->UBound(1), 1);
  EXPECT_EQ(array->LBound(2), 0);
  ASSERT_EQ(array->UBound(2), 3);
  std::string states;
  for (int32_t i = 0; i < 4; ++i) {
    states += array->At(0, i).ConcatText() + "=" + array->At(1, i).ToString() + ";";
  }
  EXPECT_EQ(states, "0=Attivo;1=In esaurimento;2=Bloccato acquisti;4=Nuovo;");
  EXPECT_TRUE(Boxes().empty());
  // The privileged user gets every state.
  EXPECT_EQ(Other("ZentAd")->StatiArticoloMagaArray().ToArray()->UBound(2), 4);
}

TEST_F(ArticleConditionTest, NoEnabledStateGivesEmptyNotAnEmptyArray) {
  AsUser("ROSSI");
  AddParameterRows(", FW31_FLGABILITATO",
                   "(9001, 5, 14, -1, '0', 0), (9002, 5, 14, -1, '1', 0), "
                   "(9003, 5, 14, -1, '2', 0), (9004, 5, 14, -1, '4', 0)");
  EXPECT_TRUE(parser.StatiArticoloMagaArray().IsEmpty());
  EXPECT_TRUE(Boxes().empty());
  // On a server-side cursor (RecordCount -1) too, for a user without rows.
  db->SetCursorLocation(db::kUseServer);
  EXPECT_TRUE(Other("GIALLI")->StatiArticoloMagaArray().IsEmpty());
}

TEST_F(ArticleConditionTest, ArrayWithoutAConnectionIsReportedUnderBothTags) {
  AsUser("ROSSI");
  parser.SetConnectionADO(nullptr);
  EXPECT_TRUE(parser.StatiArticoloMagaArray().IsEmpty());
  EXPECT_EQ(BoxTags(), (std::vector<std::string>{"StatiArticoloMaga", "StatiArticoloMagaArray"}));
}

TEST_F(ArticleConditionTest, TransferUsesTheIdAsItStandsWithoutALookup) {
  AsUser("ROSSI");
  parser.SetIdUser(demo::user_id::kRossi);
  std::string origin = "A1";
  std::string destination = "C3";
  EXPECT_EQ(parser.TrasferimentoDepositi(origin, destination), 1);
  EXPECT_EQ(Statements(),
            std::vector<std::string>{"SELECT dbo.FNFW_TRASFREVOCATI (1, 5, 'A1', 'C3')"});
  origin = "C3";
  destination = "D4";
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
  EXPECT_EQ(BoxTags(), std::vector<std::string>{"TrasferimentoDepositi"});
}

TEST_F(ArticleConditionTest, MovementTypeListKeepsItsHistoricalTextAndFails) {
  // The missing '=' after FW31_ID_FW07 fails on every engine; the
  // privileged user is resolved too and gets every type enabled.
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
  EXPECT_EQ(Statements()[0].rfind("SELECT FW07_ID, FW07_FLGGRP FROM FW07_APPUSER", 0), 0U);
  EXPECT_EQ(Statements()[1], " SELECT  CGT0_CODICE AS CODICE, 1 AS ABILITATO" + join +
                                 "1 AND FW31_INDTIPO = 1 WHERE CGT0_FLGCANREVOKE = 1");
}

}  // namespace
}  // namespace zarvik
