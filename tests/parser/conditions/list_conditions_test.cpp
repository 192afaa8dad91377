// Warehouse and office list conditions: the list query sent, the predicate
// built from its rows, the empty answer, and the rows kept on the demo
// database; a failing list query gives one box under the method's tag.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "../parser_test_support.h"

namespace zarvik {
namespace {

class ListConditionTest : public testing::ParserTest {};

TEST_F(ListConditionTest, WarehousesAreQuotedOfficesAreNot) {
  AsUser("ROSSI");
  EXPECT_EQ(parser.SQLConditionDepositi("DO11_CODDEP", false),
            " (DO11_CODDEP NOT IN ('A1' , 'B2' ) OR DO11_CODDEP IS NULL )");
  EXPECT_EQ(LastStatement(),
            "SELECT FW31_CODTIPO FROM VFW31_RVKPARAMETRI  WHERE FW31_ID_FW07 = 5  AND "
            "FW31_FLGABILITATO = 0  AND FW31_INDTIPO = 6  AND FW31_DITTARAGG = 1");
  EXPECT_EQ(parser.SQLConditionDepositi("M.MG58_CODDEP", true, false),
            " AND M.MG58_CODDEP NOT IN ('A1' , 'B2' )");
  EXPECT_EQ(parser.SQLConditionSediMov("DO11_CODSEDE_CG31", false, false),
            "DO11_CODSEDE_CG31 NOT IN (3 , 12 )");
  EXPECT_EQ(LastStatement(),
            "SELECT FW31_CODTIPO FROM VFW31_RVKPARAMETRI  WHERE FW31_ID_FW07 = 5  AND "
            "FW31_FLGABILITATO = 0  AND FW31_INDTIPO = 4 AND FW31_DITTARAGG = 1");
  EXPECT_EQ(parser.SQLConditionSediMov("DO11_CODSEDE_CG31", true),
            " AND  (DO11_CODSEDE_CG31 NOT IN (3 , 12 ) OR DO11_CODSEDE_CG31 IS NULL )");
  EXPECT_EQ(Statements().size(), 5U);  // the user lookup, then one list query per call
  // VERDI: B2 is revoked by both of his groups, D4 by one only.
  EXPECT_EQ(Other("VERDI")->SQLConditionDepositi("C", false, false), "C NOT IN ('B2' )");
  EXPECT_TRUE(Boxes().empty());
}

TEST_F(ListConditionTest, NeutralAnswers) {
  // The privileged code short-cuts without a query.
  AsUser("ZentAd");
  EXPECT_EQ(parser.SQLConditionDepositi("DO11_CODDEP", true), "");
  EXPECT_EQ(parser.SQLConditionSediMov("DO11_CODSEDE_CG31", true), "");
  EXPECT_TRUE(Statements().empty());
  // Nothing revoked gives nothing even with " AND ": GIALLI, and ROSSI in
  // company 2.
  for (const auto& other : {Other("GIALLI"), Other("ROSSI", Variant("2"))}) {
    EXPECT_EQ(other->SQLConditionDepositi("DO11_CODDEP", true), "");
    EXPECT_EQ(other->SQLConditionSediMov("DO11_CODSEDE_CG31", true, false), "");
  }
  // The disabled flag is not honoured.
  auto rossi = Other("ROSSI");
  rossi->SetRevokeDisabilitata(true);
  EXPECT_EQ(rossi->SQLConditionDepositi("D", false, false), "D NOT IN ('A1' , 'B2' )");
  EXPECT_EQ(rossi->SQLConditionSediMov("S", false, false), "S NOT IN (3 , 12 )");
}

TEST_F(ListConditionTest, WarehousesAndOfficesKeptOnTheDemoDatabase) {
  AsUser("ROSSI");
  EXPECT_EQ(Rows("SELECT MG58_CODDEP FROM MG58_DEPOSITI WHERE MG58_DITTA_CG18 = 1" +
                 parser.SQLConditionDepositi("MG58_CODDEP", true) + " ORDER BY 1"),
            "C3 D4");
  EXPECT_EQ(Rows("SELECT CG31_CODICE FROM CG31_SEDI WHERE CG31_DITTA_CG18 = 1" +
                 parser.SQLConditionSediMov("CG31_CODICE", true, false) + " ORDER BY 1"),
            "1 7");
  // AllowNull keeps the rows without office or warehouse.
  const std::string docs =
      "SELECT DO11_NUMREG_CO99 FROM DO11_DOCTESTATA WHERE DO11_NUMREG_CO99 IN (1001, 1002, 1011, "
      "1022)";
  EXPECT_EQ(Rows(docs + parser.SQLConditionSediMov("DO11_CODSEDE_CG31", true) + " ORDER BY 1"),
            "1001 1011 1022");
  EXPECT_EQ(
      Rows(docs + parser.SQLConditionSediMov("DO11_CODSEDE_CG31", true, false) + " ORDER BY 1"),
      "1001");
  EXPECT_EQ(Rows(docs + parser.SQLConditionDepositi("DO11_CODDEP", true) + " ORDER BY 1"),
            "1011 1022");
}

TEST_F(ListConditionTest, FailingListQueryGivesOneBoxUnderTheMethodsTag) {
  AsUser("ROSSI");
  parser.Frame().ResolveUser();
  db->Execute("DROP VIEW VFW31_RVKPARAMETRI");
  EXPECT_EQ(parser.SQLConditionSediMov("DO11_CODSEDE_CG31", true), "");
  db->Close();
  EXPECT_EQ(parser.SQLConditionDepositi("DO11_CODDEP", true), "");
  EXPECT_EQ(BoxTags(), (std::vector<std::string>{"SQLConditionSediMov", "SQLConditionDepositi"}));
}

}  // namespace
}  // namespace zarvik
