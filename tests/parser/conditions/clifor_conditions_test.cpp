// Customer/supplier conditions: the exact texts of SQLConditionCliFor,
// CLIFORCondition, SQLConditionDestinazioni and CliForRevocati, their
// neutral answers, and the rows they let through on the demo database.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "../parser_test_support.h"
#include "frame/host_object.h"

namespace zarvik {
namespace {

// The condition for user 12 with its three columns.
std::string CliFor12(const std::string& ditta, const std::string& tipo, const std::string& clifor) {
  return " NOT EXISTS  (SELECT RVKCLIFOR   FROM VFW32_LISTACFREVOCATI   WHERE RVKDITTA = " + ditta +
         "     AND RVKTIPOCF = " + tipo + "     AND RVKCLIFOR = " + clifor +
         "     AND RVKUTENTE = 12  )  ";
}

class CliForTest : public testing::ParserTest {};

TEST_F(CliForTest, OrdinaryUserOnCg44) {
  AsUnknownUserWithId(12);
  const std::string expected =
      " NOT EXISTS  (SELECT RVKCLIFOR   FROM VFW32_LISTACFREVOCATI   WHERE RVKDITTA = "
      "CG44_DITTA_CG18     AND RVKTIPOCF = CG44_TIPOCF     AND RVKCLIFOR = CG44_CLIFOR     AND "
      "RVKUTENTE = 12  )  ";
  EXPECT_EQ(parser.SQLConditionCliFor("CG44", false), expected);
  EXPECT_EQ(parser.SQLConditionCliFor("CG44", true), " AND " + expected);
  // AllowNull and the disabled flag change nothing.
  EXPECT_EQ(parser.SQLConditionCliFor("CG44", false, "", "", "", false), expected);
  parser.SetRevokeDisabilitata(true);
  EXPECT_EQ(parser.SQLConditionCliFor("CG44", false), expected);
  // The older entry point forwards with empty columns.
  std::string pref = "cg44";
  bool inserire_and = true;
  EXPECT_EQ(parser.CLIFORCondition(pref, inserire_and), " AND " + expected);
  EXPECT_EQ(pref, "cg44");
  EXPECT_TRUE(inserire_and);
  EXPECT_TRUE(Boxes().empty());
}

TEST_F(CliForTest, ColumnsFollowThePrefixTheScannerStateAndTheArguments) {
  const struct {
    const char *pref_tabella, *current_alias;
    bool from_rewriter;
    const char* tipo_cf;              // the kind column given ("" for the default)
    std::string ditta, tipo, clifor;  // the columns used
  } cases[] = {
      {"CG44", "", true, "", "CG44_CLIFOR.CG44_DITTA_CG18", "CG44_CLIFOR.CG44_TIPOCF",
       "CG44_CLIFOR.CG44_CLIFOR"},
      // The alias wins over the rewriter, even the from-list blank.
      {"Cg44", "C.", true, "", "C.CG44_DITTA_CG18", "C.CG44_TIPOCF", "C.CG44_CLIFOR"},
      {"CG44", " ", true, "", " CG44_DITTA_CG18", " CG44_TIPOCF", " CG44_CLIFOR"},
      {"do11", "X.", true, "", "DO11_DITTACF_CG44", "DO11_TIPOCF_CG44", "DO11_CLIFOR_CG44"},
      // Any other prefix keeps its case, with the default names' trailing
      // blanks; a column given replaces its default only.
      {"Mg36", "", false, "", "Mg36_DITTA_CG18  ", "Mg36_TIPOCF_CG44 ", "Mg36_CLIFOR_CG44 "},
      {"MG36", "", false, "T.TIPOCF", "MG36_DITTA_CG18  ", "T.TIPOCF", "MG36_CLIFOR_CG44 "},
  };
  AsUnknownUserWithId(12);
  for (const auto& c : cases) {
    RewriterProbe::SetCurrentAlias(parser, c.current_alias);
    RewriterProbe::SetFromRewriter(parser, c.from_rewriter);
    EXPECT_EQ(parser.SQLConditionCliFor(c.pref_tabella, false, "", c.tipo_cf, ""),
              CliFor12(c.ditta, c.tipo, c.clifor))
        << c.pref_tabella << " alias '" << c.current_alias << "'";
  }
  // All three given: used as they are, whatever the alias.
  RewriterProbe::SetCurrentAlias(parser, "C.");
  RewriterProbe::SetFromRewriter(parser, true);
  EXPECT_EQ(parser.SQLConditionCliFor("CG44", false, "D.DITTA", "D.TIPO", "D.CODICE"),
            CliFor12("D.DITTA", "D.TIPO", "D.CODICE"));
}

TEST_F(CliForTest, PrivilegedCustomerSupplierCodeGivesNothingWithoutQuery) {
  AsUser("ZentAd");
  EXPECT_EQ(parser.SQLConditionCliFor("CG44", true), "");
  std::string pref = "MG36";
  bool inserire_and = false;
  EXPECT_EQ(parser.CLIFORCondition(pref, inserire_and), "");
  EXPECT_TRUE(Statements().empty());
  // The customer/supplier code is the one compared; another case is an
  // ordinary user.
  parser.SetCodiceUtenteCLIFOR("ROSSI");
  EXPECT_NE(parser.SQLConditionCliFor("CG44", false), "");
  AsUser("zentad");
  EXPECT_NE(parser.SQLConditionCliFor("CG44", false), "");
}

TEST_F(CliForTest, WithoutConnectionTheLookupFailsUnderTheMethodsTag) {
  // The customer/supplier condition does not open a connection itself.
  auto lonely = Other("ROSSI", Variant(int32_t{1}), false);
  lonely->SetConnectionStringADO(demo::DemoConnectionString(":memory:"));
  EXPECT_EQ(lonely->SQLConditionCliFor("CG44", true), "");
  EXPECT_EQ(BoxTags(), std::vector<std::string>{"SQLConditionCliFor"});
  EXPECT_EQ(Boxes()[0].text.rfind("91 - ", 0), 0U);
}

TEST_F(CliForTest, RossiSeesOnlyTheCustomersSuppliersAndDocumentsNotRevoked) {
  AsUser("ROSSI");
  const std::string cg44 = parser.SQLConditionCliFor("CG44", true);
  const std::string do11 = parser.SQLConditionCliFor("DO11", true);
  ASSERT_EQ(Statements().size(), 1U);  // only the user lookup
  EXPECT_NE(Statements()[0].find("FROM FW07_APPUSER"), std::string::npos);
  const std::string head = "SELECT CG44_CLIFOR FROM CG44_CLIFOR WHERE CG44_DITTA_CG18 = 1 AND ";
  EXPECT_EQ(Rows(head + "CG44_TIPOCF = 0" + cg44 + " ORDER BY 1"), "1 3 4 12 13 40");
  EXPECT_EQ(Rows(head + "CG44_TIPOCF = 1" + cg44 + " ORDER BY 1"), "101 105");
  EXPECT_EQ(Rows("SELECT DO11_NUMREG_CO99 FROM DO11_DOCTESTATA WHERE DO11_DITTA_CG18 = 1 "
                 "AND DO11_CLIFOR_CG44 IN (1, 2, 101, 103)" +
                 do11 + " ORDER BY 1"),
            "1001 1005 1016");
}

class DestinazioniTest : public testing::ParserTest {
 protected:
  // The host's application object with the current user acting as `agent`.
  void HostWithAgent(const Variant& agent) {
    auto user = MakeHostObject({{"idutente", Variant(int32_t{9})},
                                {"codice", Variant("GIALLI")},
                                {"Gruppo", Variant("VEN")},
                                {"IdAgente", agent}});
    auto company = MakeHostObject({{"CodDitta", Variant(int32_t{1})}});
    auto global = MakeHostObject({{"Gcls_UtenteCorrente", Variant(ObjectRef(user))},
                                  {"Gcls_DittaCorrente", Variant(ObjectRef(company))}});
    parser.SetActiveInterface(MakeHostObject({{"ClsGlobal", Variant(ObjectRef(global))}}));
  }
  std::string Destinations(bool inserire_and) {
    return parser.SQLConditionDestinazioni("MG22_CODDESTIN", "MG22_DITTA_CG18", "MG22_TIPOCF_CG44",
                                           "MG22_CLIFOR_CG44", inserire_and);
  }
};

TEST_F(DestinazioniTest, AgentOfTheHostsCurrentUser) {
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
  EXPECT_EQ(Destinations(false), expected);
  EXPECT_EQ(Destinations(true), " AND " + expected);
  // Another alias is used in every place but the destination column.
  const std::string aliased = parser.SQLConditionDestinazioni("N", "D", "T", "C", false, "Q");
  EXPECT_NE(aliased.find("FROM       MG2G_DESTAGEMUL Q WITH (NOLOCK)           "),
            std::string::npos);
  EXPECT_NE(aliased.find("Q.MG2G_CLIFOR_CG44 = C AND MG2G_CODDESTIN_MG22 = N) "),
            std::string::npos);
  EXPECT_EQ(aliased.find("MG2GRVK"), std::string::npos);
  EXPECT_TRUE(Boxes().empty());
}

TEST_F(DestinazioniTest, NoAgentOrNoRestrictionGivesNothing) {
  for (const Variant& agent : {Variant::Null(), Variant(int16_t{0}), Variant(), Variant("0")}) {
    HostWithAgent(agent);
    EXPECT_EQ(Destinations(true), "");
  }
  HostWithAgent(Variant(int32_t{12}));
  parser.SetRevokeDisabilitata(true);
  EXPECT_EQ(Destinations(true), "");
  parser.SetRevokeDisabilitata(false);
  parser.SetCodiceUtente("ZentAd");
  EXPECT_EQ(Destinations(true), "");
  parser.SetCodiceUtente("GIALLI");
  parser.SetActiveInterface(nullptr);
  EXPECT_EQ(Destinations(true), "");
  EXPECT_TRUE(Boxes().empty());
  // A host without the agent member is reported.
  auto global = MakeHostObject({{"Gcls_UtenteCorrente", Variant(ObjectRef(MakeHostObject()))}});
  parser.SetActiveInterface(MakeHostObject({{"ClsGlobal", Variant(ObjectRef(global))}}));
  EXPECT_EQ(Destinations(true), "");
  EXPECT_EQ(BoxTags(), std::vector<std::string>{"SQLConditionDestinazioni"});
}

// "company/code" of every row, sorted.
std::vector<std::string> Codes(const std::shared_ptr<db::Recordset>& rows) {
  std::vector<std::string> codes;
  for (; !rows->EOF(); rows->MoveNext()) {
    codes.push_back(rows->Fields("CG44_DITTA_CG18").ConcatText() + "/" +
                    rows->Fields("CG44_CLIFOR").ConcatText());
  }
  std::sort(codes.begin(), codes.end());
  return codes;
}

TEST_F(CliForTest, CliForRevocatiComparesTheKindWithTheAgent) {
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
  EXPECT_EQ(Codes(rows),
            (std::vector<std::string>{"1/10", "1/11", "1/2", "1/5", "1/6", "1/7", "1/8", "1/9"}));
  // The blank agent stays normalised to the number 0.
  EXPECT_EQ(parser.IdAgente().Type(), VarType::kInteger);
  // Agent id 1 happens to select the supplier kind.
  parser.SetIdAgente(Variant(int32_t{1}));
  EXPECT_EQ(Codes(parser.CliForRevocati()), (std::vector<std::string>{"1/102", "1/103", "1/104"}));
  EXPECT_TRUE(Boxes().empty());
}

TEST_F(CliForTest, CliForRevocatiForZentAdWithoutConnectionAndOnFailure) {
  // ZentAd still queries (and finds nothing revoked).
  auto rows = Other("ZentAd")->CliForRevocati();
  ASSERT_NE(rows, nullptr);
  EXPECT_TRUE(rows->EOF());
  EXPECT_EQ(Statements().size(), 2U);
  EXPECT_EQ(Other("ROSSI", Variant(int32_t{1}), false)->CliForRevocati(), nullptr);
  EXPECT_TRUE(Boxes().empty());
  AsUser("ROSSI");
  db->Execute("DROP VIEW VFW32_LISTACFREVOCATI");
  EXPECT_EQ(parser.CliForRevocati(), nullptr);
  EXPECT_EQ(BoxTags(), std::vector<std::string>{"CliForRevocati"});
}

}  // namespace
}  // namespace zarvik
