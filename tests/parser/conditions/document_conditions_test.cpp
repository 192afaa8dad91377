// Document conditions: document types, documents of the agent, the agent
// rule of the rewriter and the combined document-header condition, as exact
// texts and as the rows they keep on the demo database.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "../parser_test_support.h"
#include "platform/vb_error.h"

namespace zarvik {
namespace {

const char* const kDocMG36User12 =
    " NOT EXISTS (SELECT MG3G_CODDOCUM_MG36          FROM MG3G_DOCDITTA WITH (NOLOCK)          "
    "INNER JOIN VFW31_RVKPARAMETRI WITH (NOLOCK) ON                  FW31_ID_FW07 = 12 AND      "
    "            "
    "FW31_INDTIPO = 7  AND                  FW31_FLGABILITATO = 0 AND                   "
    "FW31_DITTARAGG = MG3G_INDSTAPER_MG36 AND                  FW31_CODTIPO = MG3G_CODDOCUM_MG36 "
    "         "
    "WHERE MG3G_DITTA_CG18 = 1 AND              MG3G_CODDOCUM_MG36 = MG36_CODDOCUM) ";

const char* const kDO11RossiAgent12 =
    " NOT EXISTS (SELECT MG3G_CODDOCUM_MG36          FROM MG3G_DOCDITTA WITH (NOLOCK)          "
    "INNER JOIN VFW31_RVKPARAMETRI WITH (NOLOCK) ON                  FW31_ID_FW07 = 5 AND       "
    "           "
    "FW31_INDTIPO = 7  AND                  FW31_FLGABILITATO = 0 AND                   "
    "FW31_DITTARAGG = MG3G_INDSTAPER_MG36 AND                  FW31_CODTIPO = MG3G_CODDOCUM_MG36 "
    "         "
    "WHERE MG3G_DITTA_CG18 = 1 AND              MG3G_CODDOCUM_MG36 = DO11_DOCUM_MG36)  AND  NOT "
    "EXISTS  (SELECT RVKCLIFOR   FROM VFW32_LISTACFREVOCATI   WHERE RVKDITTA = DO11_DITTACF_CG44 "
    "    "
    "AND RVKTIPOCF = DO11_TIPOCF_CG44     AND RVKCLIFOR = DO11_CLIFOR_CG44     AND RVKUTENTE = 5  "
    ")   AND  (DO11_CODSEDE_CG31 NOT IN (3 , 12 ) OR DO11_CODSEDE_CG31 IS NULL ) AND  "
    "(DO11_CODDEP NOT IN ('A1' , 'B2' ) OR DO11_CODDEP IS NULL ) AND  EXISTS (SELECT 1 FROM "
    "DO29_DOCTESAGENTI WITH (NOLOCK) WHERE DO29_DITTA_CG18 = DO11_DITTA_CG18 AND "
    "DO29_NUMREG_CO99 = DO11_NUMREG_CO99 AND DO29_IDAGENTE_MG17 = '12')";

const char* const kAgentiDocAgent12 =
    " EXISTS (SELECT 1 FROM DO29_DOCTESAGENTI WITH (NOLOCK) WHERE DO29_DITTA_CG18 = "
    "DO11_DITTA_CG18 AND DO29_NUMREG_CO99 = DO11_NUMREG_CO99 AND DO29_IDAGENTE_MG17 = '12')";

const char* const kDocumentsOfCompany1 =
    "SELECT DO11_NUMREG_CO99 FROM DO11_DOCTESTATA WHERE DO11_DITTA_CG18 = 1";

class DocumentConditionTest : public testing::ParserTest {};

TEST_F(DocumentConditionTest, DocumentTypesExactAndOnTheDemoDatabase) {
  AsUnknownUserWithId(12);
  EXPECT_EQ(parser.SQLConditionDocMG36("MG36_CODDOCUM", false), kDocMG36User12);
  EXPECT_EQ(parser.SQLConditionDocMG36("MG36_CODDOCUM", true),
            std::string(" AND ") + kDocMG36User12);
  AsUser("ZentAd");
  EXPECT_EQ(parser.SQLConditionDocMG36("MG36_CODDOCUM", true), "");
  const std::string types = "SELECT MG36_CODDOCUM FROM MG36_DOCUMENTI WHERE 1=1";
  // NCV and OFF revoked in grouping 0, the personalised FTVP in grouping 1;
  // OCL and DDT are enabled with limited changes, which does not hide them.
  EXPECT_EQ(
      Rows(types + Other("ROSSI")->SQLConditionDocMG36("MG36_CODDOCUM", true) + " ORDER BY 1"),
      "DDT FTA FTV OCL");
  // VERDI's groups disagree about NCV: it stays visible.
  EXPECT_EQ(
      Rows(types + Other("VERDI")->SQLConditionDocMG36("MG36_CODDOCUM", true) + " ORDER BY 1"),
      "DDT FTA FTV FTVP NCV OCL OFF");
}

TEST_F(DocumentConditionTest, DocumentsOfTheAgentWithoutConnectionOrUser) {
  auto lonely = Other("ROSSI", Variant(int32_t{1}), false);
  lonely->SetCodiceAgente(Variant(int32_t{12}));
  EXPECT_EQ(lonely->SQLConditionAgentiDoc("DO11_DITTA_CG18", "DO11_NUMREG_CO99", false),
            kAgentiDocAgent12);
  EXPECT_EQ(lonely->SQLConditionAgentiDoc("DO11_DITTA_CG18", "DO11_NUMREG_CO99", true),
            std::string(" AND ") + kAgentiDocAgent12);
  EXPECT_TRUE(Boxes().empty());
  EXPECT_FALSE(lonely->Frame().UserResolved());
}

TEST_F(DocumentConditionTest, NoAgentCodeOrPrivilegedUserGivesNothing) {
  AsUser("ROSSI");
  for (const Variant& agent : {Variant(), Variant::Null(), Variant("   ")}) {
    parser.SetCodiceAgente(agent);
    EXPECT_EQ(parser.SQLConditionAgentiDoc("D", "N", true), "");
    EXPECT_EQ(RewriterProbe::AgentRule(parser), "");
  }
  parser.SetCodiceAgente(Variant("AG12"));
  AsUser("ZentAd");
  EXPECT_EQ(parser.SQLConditionAgentiDoc("D", "N", true), "");
  parser.SetCodiceAgente(Variant(int32_t{12}));
  EXPECT_EQ(parser.SQLConditionDO11(true), "");
  EXPECT_TRUE(Statements().empty());
}

TEST_F(DocumentConditionTest, AgentRuleOfTheRewriter) {
  parser.SetCodiceAgente(Variant("AG12   "));
  EXPECT_EQ(RewriterProbe::AgentRule(parser), " MG17_IDAGENTE = 'AG12   ' ");
  parser.SetCodiceAgente(Variant(int32_t{14}));
  EXPECT_EQ(RewriterProbe::AgentRule(parser), " MG17_IDAGENTE = '14' ");
  EXPECT_TRUE(Statements().empty());
}

TEST_F(DocumentConditionTest, DocumentHeadersAreTheConcatenationOfTheirPieces) {
  AsUser("ROSSI");
  parser.SetCodiceAgente(Variant(int32_t{12}));
  EXPECT_EQ(parser.SQLConditionDO11(false), kDO11RossiAgent12);
  EXPECT_EQ(parser.SQLConditionDO11(true), std::string(" AND ") + kDO11RossiAgent12);
  // A user with nothing but sub-query conditions: two pieces, the second
  // with its own " AND " whatever the caller asked.
  auto unknown = Other(testing::kUnknownUser);
  unknown->SetIdUser(12);
  EXPECT_EQ(unknown->SQLConditionDO11(false),
            unknown->SQLConditionDocMG36("DO11_DOCUM_MG36", false) + std::string(" AND ") +
                unknown->SQLConditionCliFor("DO11", false));
}

TEST_F(DocumentConditionTest, DocumentHeadersKeptOnTheDemoDatabase) {
  AsUser("ROSSI");
  EXPECT_EQ(Rows(kDocumentsOfCompany1 + parser.SQLConditionDO11(true) + " ORDER BY 1"),
            "1004 1008 1010 1011 1015");
  // Agent 12 narrows them to his own documents.
  parser.SetCodiceAgente(Variant(int32_t{12}));
  EXPECT_EQ(Rows(kDocumentsOfCompany1 + parser.SQLConditionDO11(true) + " ORDER BY 1"),
            "1008 1010 1011");
}

TEST_F(DocumentConditionTest, FailingListQueryKeepsThePiecesBuiltSoFar) {
  AsUser("ROSSI");
  parser.Frame().ResolveUser();
  const std::string built_before_the_lists = parser.SQLConditionDocMG36("DO11_DOCUM_MG36", false) +
                                             parser.SQLConditionCliFor("DO11", true);
  db->Execute("DROP VIEW VFW31_RVKPARAMETRI");
  EXPECT_EQ(parser.SQLConditionDO11(false), built_before_the_lists);
  db->Close();
  EXPECT_EQ(parser.SQLConditionDO11(false), built_before_the_lists);
  EXPECT_EQ(BoxTags(), (std::vector<std::string>{"SQLConditionDO11", "SQLConditionDO11"}));
  EXPECT_EQ(Boxes()[1].text.rfind(std::to_string(vberr::kAdoConnectionUnusable) + " - ", 0), 0u)
      << Boxes()[1].text;
}

}  // namespace
}  // namespace zarvik
