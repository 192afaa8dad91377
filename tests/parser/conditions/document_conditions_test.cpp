// Document conditions: document types, documents of the agent, the agent
// rule of the rewriter and the combined document-header condition, as exact
// texts and as the rows they keep on the demo database.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "condition_test_support.h"
#include "platform/vb_error.h"

namespace zarvik {
namespace {

using testing::ConditionTest;

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

class DocumentConditionTest : public ConditionTest {};

// ---------------------------------------------------------------------------
// SQLConditionDocMG36

TEST_F(DocumentConditionTest, DocumentTypesOfAnOrdinaryUser) {
  AsUnknownUserWithId(12);
  EXPECT_EQ(parser.SQLConditionDocMG36("MG36_CODDOCUM", false), kDocMG36User12);
  EXPECT_EQ(parser.SQLConditionDocMG36("MG36_CODDOCUM", true),
            std::string(" AND ") + kDocMG36User12);
  AsUser("ZentAd");
  EXPECT_EQ(parser.SQLConditionDocMG36("MG36_CODDOCUM", true), "");
}

TEST_F(DocumentConditionTest, DocumentTypesKeptOnTheDemoDatabase) {
  const std::string types = "SELECT MG36_CODDOCUM FROM MG36_DOCUMENTI WHERE 1=1";
  AsRossi();
  // NCV and OFF revoked in grouping 0, the personalised FTVP in grouping 1;
  // OCL and DDT are enabled with limited changes, which does not hide them.
  EXPECT_EQ(Rows(types + parser.SQLConditionDocMG36("MG36_CODDOCUM", true) + " ORDER BY 1"),
            (std::vector<std::string>{"DDT", "FTA", "FTV", "OCL"}));
  // VERDI's groups disagree about NCV: it stays visible.
  CLSFW_PARSER verdi(Env{sink, std::make_shared<SystemClock>()});
  verdi.SetConnectionADO(db);
  verdi.SetDittaCorrente(Variant(int32_t{1}));
  verdi.SetCodiceGruppo("AMM");
  verdi.SetCodiceUtente("VERDI");
  verdi.SetCodiceUtenteCLIFOR("VERDI");
  EXPECT_EQ(Rows(types + verdi.SQLConditionDocMG36("MG36_CODDOCUM", true) + " ORDER BY 1"),
            (std::vector<std::string>{"DDT", "FTA", "FTV", "FTVP", "NCV", "OCL", "OFF"}));
}

// ---------------------------------------------------------------------------
// SQLConditionAgentiDoc and the agent rule

TEST_F(DocumentConditionTest, DocumentsOfTheAgentWithoutConnectionOrUser) {
  // No connection and no user lookup are needed.
  CLSFW_PARSER lonely(Env{sink, std::make_shared<SystemClock>()});
  lonely.SetCodiceUtenteCLIFOR("ROSSI");
  lonely.SetCodiceAgente(Variant(int32_t{12}));
  EXPECT_EQ(lonely.SQLConditionAgentiDoc("DO11_DITTA_CG18", "DO11_NUMREG_CO99", false),
            kAgentiDocAgent12);
  EXPECT_EQ(lonely.SQLConditionAgentiDoc("DO11_DITTA_CG18", "DO11_NUMREG_CO99", true),
            std::string(" AND ") + kAgentiDocAgent12);
  EXPECT_TRUE(Boxes().empty());
  EXPECT_FALSE(lonely.Frame().UserResolved());
}

TEST_F(DocumentConditionTest, NoAgentCodeOrPrivilegedUserGivesNothing) {
  AsRossi();
  for (const Variant& agent : {Variant(), Variant::Null(), Variant("   ")}) {
    parser.SetCodiceAgente(agent);
    EXPECT_EQ(parser.SQLConditionAgentiDoc("D", "N", true), "");
    EXPECT_EQ(ConditionScannerStateForTest::AgentRule(parser), "");
  }
  parser.SetCodiceAgente(Variant("AG12"));
  AsUser("ZentAd");
  EXPECT_EQ(parser.SQLConditionAgentiDoc("D", "N", true), "");
  EXPECT_TRUE(log->statements.empty());
}

TEST_F(DocumentConditionTest, AgentRuleOfTheRewriter) {
  parser.SetCodiceAgente(Variant("AG12   "));
  EXPECT_EQ(ConditionScannerStateForTest::AgentRule(parser), " MG17_IDAGENTE = 'AG12   '");
  parser.SetCodiceAgente(Variant(int32_t{14}));
  EXPECT_EQ(ConditionScannerStateForTest::AgentRule(parser), " MG17_IDAGENTE = '14'");
  EXPECT_TRUE(log->statements.empty());
  // On the agents table the rule keeps that agent only.
  EXPECT_EQ(Rows("SELECT MG17_DESCR FROM MG17_AGENTI WHERE" +
                 ConditionScannerStateForTest::AgentRule(parser)),
            (std::vector<std::string>{"Anna Fontana"}));
}

TEST_F(DocumentConditionTest, DocumentsKeptForTheAgent) {
  AsRossi();
  parser.SetCodiceAgente(Variant(int32_t{14}));
  EXPECT_EQ(Rows(kDocumentsOfCompany1 +
                 parser.SQLConditionAgentiDoc("DO11_DITTA_CG18", "DO11_NUMREG_CO99", true) +
                 " ORDER BY 1"),
            (std::vector<std::string>{"1001", "1003", "1004", "1020"}));
}

// ---------------------------------------------------------------------------
// SQLConditionDO11

TEST_F(DocumentConditionTest, DocumentHeadersOfAnOrdinaryUserWithAgent) {
  AsRossi();
  parser.SetCodiceAgente(Variant(int32_t{12}));
  EXPECT_EQ(parser.SQLConditionDO11(false), kDO11RossiAgent12);
  EXPECT_EQ(parser.SQLConditionDO11(true), std::string(" AND ") + kDO11RossiAgent12);
}

TEST_F(DocumentConditionTest, DocumentHeadersAreTheConcatenationOfTheirPieces) {
  AsRossi();
  const std::string expected = parser.SQLConditionDocMG36("DO11_DOCUM_MG36", true) +
                               parser.SQLConditionCliFor("DO11", true) +
                               parser.SQLConditionSediMov("DO11_CODSEDE_CG31", true, true) +
                               parser.SQLConditionDepositi("DO11_CODDEP", true, true);
  EXPECT_EQ(parser.SQLConditionDO11(true), expected);
  // A user with nothing but sub-query conditions: two pieces, the second
  // with its own " AND " whatever the caller asked.
  CLSFW_PARSER unknown(Env{sink, std::make_shared<SystemClock>()});
  unknown.SetConnectionADO(db);
  unknown.SetDittaCorrente(Variant(int32_t{1}));
  unknown.SetCodiceUtente(testing::kUnknownUser);
  unknown.SetCodiceUtenteCLIFOR(testing::kUnknownUser);
  unknown.SetIdUser(12);
  EXPECT_EQ(unknown.SQLConditionDO11(false), unknown.SQLConditionDocMG36("DO11_DOCUM_MG36", false) +
                                                 std::string(" AND ") +
                                                 unknown.SQLConditionCliFor("DO11", false));
}

TEST_F(DocumentConditionTest, PrivilegedUserGetsNoDocumentCondition) {
  AsUser("ZentAd", "SYS");
  parser.SetCodiceAgente(Variant(int32_t{12}));
  EXPECT_EQ(parser.SQLConditionDO11(true), "");
  EXPECT_TRUE(log->statements.empty());
}

TEST_F(DocumentConditionTest, DocumentHeadersKeptOnTheDemoDatabase) {
  AsRossi();
  const std::string condition = parser.SQLConditionDO11(true);
  EXPECT_EQ(Rows(kDocumentsOfCompany1 + condition + " ORDER BY 1"),
            (std::vector<std::string>{"1004", "1008", "1010", "1011", "1015"}));
  // The lists and the document types are those of the current company; in
  // company 2 ROSSI has no customer revoked, so 2002 and 2004 pass too.
  EXPECT_EQ(
      Rows("SELECT DO11_NUMREG_CO99 FROM DO11_DOCTESTATA WHERE 1=1" + condition + " ORDER BY 1"),
      (std::vector<std::string>{"1004", "1008", "1010", "1011", "1015", "2002", "2004"}));
  // Agent 12 narrows them to his own documents.
  parser.SetCodiceAgente(Variant(int32_t{12}));
  EXPECT_EQ(Rows(kDocumentsOfCompany1 + parser.SQLConditionDO11(true) + " ORDER BY 1"),
            (std::vector<std::string>{"1008", "1010", "1011"}));
}

TEST_F(DocumentConditionTest, FailingListQueryKeepsThePiecesBuiltSoFar) {
  AsRossi();
  parser.Frame().ResolveUser();
  db->Execute("DROP VIEW VFW31_RVKPARAMETRI");
  const std::string built_before_the_lists = parser.SQLConditionDocMG36("DO11_DOCUM_MG36", false) +
                                             parser.SQLConditionCliFor("DO11", true);
  EXPECT_EQ(parser.SQLConditionDO11(false), built_before_the_lists);
  ASSERT_EQ(Boxes().size(), 1u);
  EXPECT_TRUE(EndsWith(Boxes()[0].text, TagLine("SQLConditionDO11")));
}

TEST_F(DocumentConditionTest, ClosedConnectionKeepsThePiecesBuiltSoFar) {
  AsRossi();
  parser.Frame().ResolveUser();
  const std::string built_before_the_lists =
      parser.SQLConditionDocMG36("DO11_DOCUM_MG36", true) + parser.SQLConditionCliFor("DO11", true);
  db->Close();
  EXPECT_EQ(parser.SQLConditionDO11(true), built_before_the_lists);
  ASSERT_EQ(Boxes().size(), 1u);
  EXPECT_EQ(Boxes()[0].text.rfind(std::to_string(vberr::kAdoConnectionUnusable) + " - ", 0), 0u)
      << Boxes()[0].text;
  EXPECT_TRUE(EndsWith(Boxes()[0].text, TagLine("SQLConditionDO11")));
}

}  // namespace
}  // namespace zarvik
