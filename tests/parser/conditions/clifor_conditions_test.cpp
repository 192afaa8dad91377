// Customer/supplier conditions: the exact texts of SQLConditionCliFor,
// CLIFORCondition, SQLConditionDestinazioni and CliForRevocati, their
// neutral answers, and the rows they let through on the demo database.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "condition_test_support.h"
#include "frame/host_object.h"

namespace zarvik {
namespace {

using testing::ConditionTest;

const char* const kCliForCg44User12 =
    " NOT EXISTS  (SELECT RVKCLIFOR   FROM VFW32_LISTACFREVOCATI   WHERE RVKDITTA = "
    "CG44_DITTA_CG18     AND RVKTIPOCF = CG44_TIPOCF     AND RVKCLIFOR = CG44_CLIFOR     AND "
    "RVKUTENTE = 12  )  ";

const char* const kDestinazioniAgent12 =
    "              (    EXISTS                              (SELECT     TOP 1 1                 "
    "        "
    "FROM       MG2G_DESTAGEMUL MG2GRVK WITH (NOLOCK)                         WHERE      "
    "MG2GRVK.MG2G_DITTA_CG18 = MG22_DITTA_CG18 AND MG2GRVK.MG2G_TIPOCF_CG44 = MG22_TIPOCF_CG44 "
    "AND                           MG2GRVK.MG2G_CLIFOR_CG44 = MG22_CLIFOR_CG44 AND "
    "MG2G_CODDESTIN_MG22 = MG22_CODDESTIN AND                           "
    "MG2GRVK.MG2G_IDAGENTE_MG17 = 12)          OR NOT EXISTS                                    "
    "      "
    "(SELECT     TOP 1 1                         FROM       MG2G_DESTAGEMUL MG2GRVK WITH "
    "(NOLOCK)               WHERE      MG2GRVK.MG2G_DITTA_CG18 = MG22_DITTA_CG18 AND "
    "MG2GRVK.MG2G_TIPOCF_CG44 = MG22_TIPOCF_CG44 AND                           "
    "MG2GRVK.MG2G_CLIFOR_CG44 = MG22_CLIFOR_CG44 AND MG2G_CODDESTIN_MG22 = MG22_CODDESTIN)      "
    ") ";

const char* const kCliForRevocatiRossi =
    " SELECT CG44_CLIFOR.*  FROM VFW32_LISTACFREVOCATI  INNER JOIN CG44_CLIFOR ON RVKDITTA = "
    "CG44_DITTA_CG18       AND RVKTIPOCF = CG44_TIPOCF      AND RVKCLIFOR = CG44_CLIFOR  WHERE "
    "RVKUTENTE = 5       AND CG44_TIPOCF = 0";

// The customer/supplier predicate assembled from its pieces.
std::string CliForText(const std::string& ditta, const std::string& tipo_cf,
                       const std::string& cli_for, const std::string& user_id) {
  return std::string(" NOT EXISTS ") + " (SELECT RVKCLIFOR " + "  FROM VFW32_LISTACFREVOCATI " +
         "  WHERE RVKDITTA = " + ditta + "     AND RVKTIPOCF = " + tipo_cf +
         "     AND RVKCLIFOR = " + cli_for + "     AND RVKUTENTE = " + user_id + " " + " )  ";
}

// ---------------------------------------------------------------------------
// SQLConditionCliFor

class CliForTest : public ConditionTest {};

TEST_F(CliForTest, OrdinaryUserOnCg44) {
  AsUnknownUserWithId(12);
  EXPECT_EQ(parser.SQLConditionCliFor("CG44", false), kCliForCg44User12);
  EXPECT_EQ(parser.SQLConditionCliFor("CG44", true), std::string(" AND ") + kCliForCg44User12);
  EXPECT_EQ(parser.SQLConditionCliFor("CG44", true).rfind(" AND  NOT EXISTS ", 0), 0u);
  EXPECT_TRUE(Boxes().empty());
}

struct ColumnCase {
  const char* label;
  const char* pref_tabella;
  const char* current_alias;
  bool from_rewriter;
  const char* ditta_arg;
  const char* tipo_cf_arg;
  const char* cli_for_arg;
  const char* ditta;
  const char* tipo_cf;
  const char* cli_for;
};

TEST_F(CliForTest, ColumnsFollowThePrefixTheScannerStateAndTheArguments) {
  const ColumnCase cases[] = {
      {"cg44 plain", "CG44", "", false, "", "", "", "CG44_DITTA_CG18", "CG44_TIPOCF",
       "CG44_CLIFOR"},
      {"lower case", "cg44", "", false, "", "", "", "CG44_DITTA_CG18", "CG44_TIPOCF",
       "CG44_CLIFOR"},
      {"rewriter, no alias", "CG44", "", true, "", "", "", "CG44_CLIFOR.CG44_DITTA_CG18",
       "CG44_CLIFOR.CG44_TIPOCF", "CG44_CLIFOR.CG44_CLIFOR"},
      {"alias", "CG44", "C.", false, "", "", "", "C.CG44_DITTA_CG18", "C.CG44_TIPOCF",
       "C.CG44_CLIFOR"},
      {"alias wins over rewriter", "Cg44", "C.", true, "", "", "", "C.CG44_DITTA_CG18",
       "C.CG44_TIPOCF", "C.CG44_CLIFOR"},
      {"from-list blank", "CG44", " ", true, "", "", "", " CG44_DITTA_CG18", " CG44_TIPOCF",
       " CG44_CLIFOR"},
      {"do11", "do11", "X.", true, "", "", "", "DO11_DITTACF_CG44", "DO11_TIPOCF_CG44",
       "DO11_CLIFOR_CG44"},
      {"other prefix keeps its case and trailing blanks", "Mg36", "", false, "", "", "",
       "Mg36_DITTA_CG18  ", "Mg36_TIPOCF_CG44 ", "Mg36_CLIFOR_CG44 "},
      {"explicit columns win", "CG44", "C.", true, "D.DITTA", "D.TIPO", "D.CODICE", "D.DITTA",
       "D.TIPO", "D.CODICE"},
      {"one explicit column", "MG36", "", false, "", "T.TIPOCF", "", "MG36_DITTA_CG18  ",
       "T.TIPOCF", "MG36_CLIFOR_CG44 "},
  };
  AsUnknownUserWithId(12);
  for (const ColumnCase& c : cases) {
    SCOPED_TRACE(c.label);
    ConditionScannerStateForTest::SetCurrentAlias(parser, c.current_alias);
    ConditionScannerStateForTest::SetFromRewriter(parser, c.from_rewriter);
    EXPECT_EQ(
        parser.SQLConditionCliFor(c.pref_tabella, false, c.ditta_arg, c.tipo_cf_arg, c.cli_for_arg),
        CliForText(c.ditta, c.tipo_cf, c.cli_for, "12"));
  }
}

TEST_F(CliForTest, AllowNullAndTheDisabledFlagChangeNothing) {
  AsUnknownUserWithId(12);
  const std::string text = parser.SQLConditionCliFor("CG44", false);
  EXPECT_EQ(parser.SQLConditionCliFor("CG44", false, "", "", "", false), text);
  parser.SetRevokeDisabilitata(true);
  EXPECT_EQ(parser.SQLConditionCliFor("CG44", false), text);
}

TEST_F(CliForTest, PrivilegedCustomerSupplierCodeGivesNothingWithoutQuery) {
  AsUser("ZentAd", "SYS");
  EXPECT_EQ(parser.SQLConditionCliFor("CG44", true), "");
  EXPECT_TRUE(log->statements.empty());
  // The customer/supplier code is the one compared.
  parser.SetCodiceUtenteCLIFOR("ROSSI");
  EXPECT_NE(parser.SQLConditionCliFor("CG44", false), "");
  // Another case is an ordinary user.
  AsUser("zentad", "SYS");
  EXPECT_NE(parser.SQLConditionCliFor("CG44", false), "");
}

TEST_F(CliForTest, OnlyTheUserLookupTouchesTheDatabase) {
  AsRossi();
  EXPECT_EQ(parser.SQLConditionCliFor("CG44", false),
            CliForText("CG44_DITTA_CG18", "CG44_TIPOCF", "CG44_CLIFOR", "5"));
  parser.SQLConditionCliFor("DO11", true);
  ASSERT_EQ(log->statements.size(), 1u);
  EXPECT_NE(log->statements[0].find("FROM FW07_APPUSER"), std::string::npos);
}

TEST_F(CliForTest, WithoutConnectionTheLookupFailsUnderTheMethodsTag) {
  // The customer/supplier condition does not open a connection itself.
  CLSFW_PARSER lonely(Env{sink, std::make_shared<SystemClock>()});
  lonely.SetCodiceUtente("ROSSI");
  lonely.SetCodiceUtenteCLIFOR("ROSSI");
  lonely.SetConnectionStringADO(demo::DemoConnectionString(":memory:"));
  EXPECT_EQ(lonely.SQLConditionCliFor("CG44", true), "");
  ASSERT_EQ(Boxes().size(), 1u);
  EXPECT_EQ(Boxes()[0].text.rfind("91 - ", 0), 0u);
  EXPECT_TRUE(EndsWith(Boxes()[0].text, TagLine("SQLConditionCliFor")));
}

TEST_F(CliForTest, RossiSeesOnlyTheCustomersAndSuppliersNotRevoked) {
  AsRossi();
  const std::string customers =
      "SELECT CG44_CLIFOR FROM CG44_CLIFOR WHERE CG44_DITTA_CG18 = 1 AND CG44_TIPOCF = 0";
  EXPECT_EQ(Rows(customers + parser.SQLConditionCliFor("CG44", true) + " ORDER BY 1"),
            (std::vector<std::string>{"1", "3", "4", "12", "13", "40"}));
  const std::string suppliers =
      "SELECT CG44_CLIFOR FROM CG44_CLIFOR WHERE CG44_DITTA_CG18 = 1 AND CG44_TIPOCF = 1";
  EXPECT_EQ(Rows(suppliers + parser.SQLConditionCliFor("CG44", true) + " ORDER BY 1"),
            (std::vector<std::string>{"101", "105"}));
  // Company 2 revokes nothing for ROSSI; an aliased table through explicit
  // columns.
  EXPECT_EQ(Rows("SELECT X.CG44_CLIFOR FROM CG44_CLIFOR X WHERE X.CG44_DITTA_CG18 = 2 AND " +
                 parser.SQLConditionCliFor("CG44", false, "X.CG44_DITTA_CG18", "X.CG44_TIPOCF",
                                           "X.CG44_CLIFOR") +
                 " ORDER BY 1"),
            (std::vector<std::string>{"1", "2", "3", "101"}));
}

TEST_F(CliForTest, DocumentColumnsRestrictDocumentHeaders) {
  AsRossi();
  // Documents of company 1 whose customer/supplier ROSSI may see.
  EXPECT_EQ(Rows("SELECT DO11_NUMREG_CO99 FROM DO11_DOCTESTATA WHERE DO11_DITTA_CG18 = 1 "
                 "AND DO11_CLIFOR_CG44 IN (1, 2, 101, 103)" +
                 parser.SQLConditionCliFor("DO11", true) + " ORDER BY 1"),
            (std::vector<std::string>{"1001", "1005", "1016"}));
}

// ---------------------------------------------------------------------------
// CLIFORCondition

TEST_F(CliForTest, OlderEntryPointForwardsWithEmptyColumns) {
  AsUnknownUserWithId(12);
  std::string pref = "cg44";
  bool inserire_and = true;
  EXPECT_EQ(parser.CLIFORCondition(pref, inserire_and), std::string(" AND ") + kCliForCg44User12);
  EXPECT_EQ(pref, "cg44");
  EXPECT_TRUE(inserire_and);
  pref = "MG36";
  inserire_and = false;
  EXPECT_EQ(parser.CLIFORCondition(pref, inserire_and), parser.SQLConditionCliFor("MG36", false));
  AsUser("ZentAd");
  EXPECT_EQ(parser.CLIFORCondition(pref, inserire_and), "");
}

// ---------------------------------------------------------------------------
// SQLConditionDestinazioni

class DestinazioniTest : public ConditionTest {
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
  std::vector<std::string> VisibleDestinations() {
    return Rows(
        "SELECT MG22_CLIFOR_CG44 || '/' || MG22_CODDESTIN FROM MG22_DESTINAZIONI "
        "WHERE MG22_DITTA_CG18 = 1" +
        Destinations(true) + " ORDER BY 1");
  }
};

TEST_F(DestinazioniTest, AgentOfTheHostsCurrentUser) {
  HostWithAgent(Variant(int32_t{12}));
  EXPECT_EQ(Destinations(false), kDestinazioniAgent12);
  EXPECT_EQ(Destinations(true), std::string(" AND ") + kDestinazioniAgent12);
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
}

TEST_F(DestinazioniTest, HostWithoutTheAgentMemberIsReported) {
  auto global = MakeHostObject({{"Gcls_UtenteCorrente", Variant(ObjectRef(MakeHostObject()))}});
  parser.SetActiveInterface(MakeHostObject({{"ClsGlobal", Variant(ObjectRef(global))}}));
  EXPECT_EQ(Destinations(true), "");
  ASSERT_EQ(Boxes().size(), 1u);
  EXPECT_TRUE(EndsWith(Boxes()[0].text, TagLine("SQLConditionDestinazioni")));
}

TEST_F(DestinazioniTest, AnAgentSeesHisDestinationsAndTheUnassignedOnes) {
  HostWithAgent(Variant(int32_t{12}));
  EXPECT_EQ(VisibleDestinations(), (std::vector<std::string>{"12/D1", "12/D3", "40/D1"}));
  HostWithAgent(Variant(int32_t{14}));
  EXPECT_EQ(VisibleDestinations(), (std::vector<std::string>{"12/D2", "12/D3", "3/D1"}));
}

// ---------------------------------------------------------------------------
// CliForRevocati

class CliForRevocatiTest : public ConditionTest {
 protected:
  std::vector<std::string> Codes(const std::shared_ptr<db::Recordset>& rows) {
    std::vector<std::string> codes;
    while (!rows->EOF()) {
      codes.push_back(rows->Fields("CG44_DITTA_CG18").ConcatText() + "/" +
                      rows->Fields("CG44_CLIFOR").ConcatText());
      rows->MoveNext();
    }
    std::sort(codes.begin(), codes.end());
    return codes;
  }
};

TEST_F(CliForRevocatiTest, RevokedCustomersOfTheUserWithTheKindComparedWithTheAgent) {
  AsRossi();
  auto rows = parser.CliForRevocati();
  ASSERT_NE(rows, nullptr);
  ASSERT_EQ(log->statements.size(), 2u);
  EXPECT_EQ(log->statements[1], kCliForRevocatiRossi);
  EXPECT_EQ(Codes(rows),
            (std::vector<std::string>{"1/10", "1/11", "1/2", "1/5", "1/6", "1/7", "1/8", "1/9"}));
  // The blank agent stays normalised to the number 0.
  EXPECT_EQ(parser.IdAgente().Type(), VarType::kInteger);
  // Agent id 1 happens to select the supplier kind.
  parser.SetIdAgente(Variant(int32_t{1}));
  EXPECT_EQ(Codes(parser.CliForRevocati()), (std::vector<std::string>{"1/102", "1/103", "1/104"}));
  EXPECT_TRUE(Boxes().empty());
}

TEST_F(CliForRevocatiTest, UserCodeComesFromTheCustomerSupplierCodeAndZentAdStillQueries) {
  parser.SetCodiceGruppo("VEN");
  parser.SetCodiceUtenteCLIFOR("ROSSI");
  EXPECT_EQ(Codes(parser.CliForRevocati()).size(), 8u);
  EXPECT_EQ(parser.CodiceUtente(), "ROSSI");

  CLSFW_PARSER admin(Env{sink, std::make_shared<SystemClock>()});
  admin.SetConnectionADO(db);
  admin.SetCodiceGruppo("SYS");
  admin.SetCodiceUtente("ZentAd");
  admin.SetCodiceUtenteCLIFOR("ZentAd");
  log->statements.clear();
  auto rows = admin.CliForRevocati();
  ASSERT_NE(rows, nullptr);
  EXPECT_TRUE(rows->EOF());
  EXPECT_EQ(log->statements.size(), 2u);
}

TEST_F(CliForRevocatiTest, NothingWithoutConnectionAndOneBoxOnFailure) {
  CLSFW_PARSER lonely(Env{sink, std::make_shared<SystemClock>()});
  lonely.SetCodiceUtente("ROSSI");
  EXPECT_EQ(lonely.CliForRevocati(), nullptr);
  EXPECT_TRUE(Boxes().empty());

  AsRossi();
  db->Execute("DROP VIEW VFW32_LISTACFREVOCATI");
  EXPECT_EQ(parser.CliForRevocati(), nullptr);
  ASSERT_EQ(Boxes().size(), 1u);
  EXPECT_TRUE(EndsWith(Boxes()[0].text, TagLine("CliForRevocati")));
}

}  // namespace
}  // namespace zarvik
