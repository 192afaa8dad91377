// Warehouse and office list conditions: the list query sent, the predicate
// built from its rows, the empty answer, and the rows kept on the demo
// database; a failing list query gives one box under the method's tag.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "condition_test_support.h"

namespace zarvik {
namespace {

using testing::ConditionTest;

const char* const kWarehouseQueryRossi =
    "SELECT FW31_CODTIPO FROM VFW31_RVKPARAMETRI  WHERE FW31_ID_FW07 = 5  AND FW31_FLGABILITATO "
    "= 0  AND FW31_INDTIPO = 6  AND FW31_DITTARAGG = 1";
const char* const kOfficeQueryRossi =
    "SELECT FW31_CODTIPO FROM VFW31_RVKPARAMETRI  WHERE FW31_ID_FW07 = 5  AND FW31_FLGABILITATO "
    "= 0  AND FW31_INDTIPO = 4 AND FW31_DITTARAGG = 1";

class ListConditionTest : public ConditionTest {};

TEST_F(ListConditionTest, WarehousesOfAnOrdinaryUser) {
  AsRossi();
  EXPECT_EQ(parser.SQLConditionDepositi("DO11_CODDEP", false),
            " (DO11_CODDEP NOT IN ('A1' , 'B2' ) OR DO11_CODDEP IS NULL )");
  EXPECT_EQ(parser.SQLConditionDepositi("DO11_CODDEP", true),
            " AND  (DO11_CODDEP NOT IN ('A1' , 'B2' ) OR DO11_CODDEP IS NULL )");
  EXPECT_EQ(parser.SQLConditionDepositi("M.MG58_CODDEP", false, false),
            "M.MG58_CODDEP NOT IN ('A1' , 'B2' )");
  EXPECT_EQ(parser.SQLConditionDepositi("M.MG58_CODDEP", true, false),
            " AND M.MG58_CODDEP NOT IN ('A1' , 'B2' )");
  ASSERT_EQ(log->statements.size(), 5u);  // the user lookup, then one list query per call
  EXPECT_EQ(log->statements[1], kWarehouseQueryRossi);
  EXPECT_TRUE(Boxes().empty());
}

TEST_F(ListConditionTest, OfficesAreNumbersWithoutQuotes) {
  AsRossi();
  EXPECT_EQ(parser.SQLConditionSediMov("DO11_CODSEDE_CG31", false, false),
            "DO11_CODSEDE_CG31 NOT IN (3 , 12 )");
  EXPECT_EQ(parser.SQLConditionSediMov("DO11_CODSEDE_CG31", false),
            " (DO11_CODSEDE_CG31 NOT IN (3 , 12 ) OR DO11_CODSEDE_CG31 IS NULL )");
  EXPECT_EQ(parser.SQLConditionSediMov("DO11_CODSEDE_CG31", true),
            " AND  (DO11_CODSEDE_CG31 NOT IN (3 , 12 ) OR DO11_CODSEDE_CG31 IS NULL )");
  EXPECT_EQ(log->statements.at(1), kOfficeQueryRossi);
}

TEST_F(ListConditionTest, NothingRevokedGivesNothingEvenWithAnd) {
  AsUser("GIALLI");
  EXPECT_EQ(parser.SQLConditionDepositi("DO11_CODDEP", true), "");
  EXPECT_EQ(parser.SQLConditionSediMov("DO11_CODSEDE_CG31", true), "");
  // ROSSI has nothing revoked in company 2.
  AsRossi();
  CLSFW_PARSER other(Env{sink, std::make_shared<SystemClock>()});
  other.SetConnectionADO(db);
  other.SetCodiceGruppo("VEN");
  other.SetCodiceUtente("ROSSI");
  other.SetCodiceUtenteCLIFOR("ROSSI");
  other.SetDittaCorrente(Variant("2"));
  EXPECT_EQ(other.SQLConditionDepositi("DO11_CODDEP", true), "");
  EXPECT_EQ(other.SQLConditionSediMov("DO11_CODSEDE_CG31", true, false), "");
}

TEST_F(ListConditionTest, PrivilegedCodeShortCutsButTheDisabledFlagDoesNot) {
  AsUser("ZentAd", "SYS");
  EXPECT_EQ(parser.SQLConditionDepositi("DO11_CODDEP", true), "");
  EXPECT_EQ(parser.SQLConditionSediMov("DO11_CODSEDE_CG31", true), "");
  EXPECT_TRUE(log->statements.empty());

  AsRossi();
  parser.SetRevokeDisabilitata(true);
  EXPECT_EQ(parser.SQLConditionDepositi("D", false, false), "D NOT IN ('A1' , 'B2' )");
  EXPECT_EQ(parser.SQLConditionSediMov("S", false, false), "S NOT IN (3 , 12 )");
}

TEST_F(ListConditionTest, WorkersServeFixedArguments) {
  AsRossi();
  parser.Frame().ResolveUser();
  EXPECT_EQ(ConditionScannerStateForTest::WarehouseList(parser, "DO11_CODDEP", true, true),
            parser.SQLConditionDepositi("DO11_CODDEP", true, true));
  EXPECT_EQ(ConditionScannerStateForTest::OfficeList(parser, "DO11_CODSEDE_CG31", true, true),
            parser.SQLConditionSediMov("DO11_CODSEDE_CG31", true, true));
}

TEST_F(ListConditionTest, GroupBasedUserSeesWhatOneOfHisGroupsAllows) {
  // VERDI: B2 is revoked by both of his groups, D4 by one only.
  AsUser("VERDI", "AMM");
  EXPECT_EQ(parser.SQLConditionDepositi("C", false, false), "C NOT IN ('B2' )");
}

TEST_F(ListConditionTest, WarehousesAndOfficesKeptOnTheDemoDatabase) {
  AsRossi();
  EXPECT_EQ(Rows("SELECT MG58_CODDEP FROM MG58_DEPOSITI WHERE MG58_DITTA_CG18 = 1" +
                 parser.SQLConditionDepositi("MG58_CODDEP", true) + " ORDER BY 1"),
            (std::vector<std::string>{"C3", "D4"}));
  EXPECT_EQ(Rows("SELECT DISTINCT MG97_CODART_MG66 FROM MG97_GIACENZE WHERE " +
                 parser.SQLConditionDepositi("MG97_CODDEP_MG58", false, false) + " ORDER BY 1"),
            (std::vector<std::string>{"ART005", "ART006", "ART008", "ART011"}));
  EXPECT_EQ(Rows("SELECT CG31_CODICE FROM CG31_SEDI WHERE CG31_DITTA_CG18 = 1" +
                 parser.SQLConditionSediMov("CG31_CODICE", true, false) + " ORDER BY 1"),
            (std::vector<std::string>{"1", "7"}));
}

TEST_F(ListConditionTest, AllowNullKeepsRowsWithoutOfficeOrWarehouse) {
  AsRossi();
  const std::string docs =
      "SELECT DO11_NUMREG_CO99 FROM DO11_DOCTESTATA WHERE DO11_NUMREG_CO99 IN (1001, 1002, 1011, "
      "1022)";
  EXPECT_EQ(Rows(docs + parser.SQLConditionSediMov("DO11_CODSEDE_CG31", true) + " ORDER BY 1"),
            (std::vector<std::string>{"1001", "1011", "1022"}));
  EXPECT_EQ(
      Rows(docs + parser.SQLConditionSediMov("DO11_CODSEDE_CG31", true, false) + " ORDER BY 1"),
      (std::vector<std::string>{"1001"}));
  EXPECT_EQ(Rows(docs + parser.SQLConditionDepositi("DO11_CODDEP", true) + " ORDER BY 1"),
            (std::vector<std::string>{"1011", "1022"}));
}

TEST_F(ListConditionTest, ClosedConnectionGivesOneBoxUnderTheMethodsTag) {
  AsRossi();
  db->Close();
  EXPECT_EQ(parser.SQLConditionDepositi("DO11_CODDEP", true), "");
  ASSERT_EQ(Boxes().size(), 1u);
  EXPECT_TRUE(EndsWith(Boxes()[0].text, TagLine("SQLConditionDepositi")));
}

TEST_F(ListConditionTest, MissingViewGivesOneBoxUnderTheMethodsTag) {
  AsRossi();
  parser.Frame().ResolveUser();
  db->Execute("DROP VIEW VFW31_RVKPARAMETRI");
  EXPECT_EQ(parser.SQLConditionSediMov("DO11_CODSEDE_CG31", true), "");
  ASSERT_EQ(Boxes().size(), 1u);
  EXPECT_TRUE(EndsWith(Boxes()[0].text, TagLine("SQLConditionSediMov")));
  EXPECT_EQ(parser.SQLConditionDepositi("DO11_CODDEP", true), "");
  ASSERT_EQ(Boxes().size(), 2u);
  EXPECT_TRUE(EndsWith(Boxes()[1].text, TagLine("SQLConditionDepositi")));
}

}  // namespace
}  // namespace zarvik
