// Facts of the seed data, checked through the statements the component
// sends: every revocation of the demo users visibly hides rows.
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include "demo_test_support.h"
#include "platform/vb_error.h"

namespace zarvik::demo {
namespace {

using testing::FirstColumn;
using testing::FreshDemo;
using testing::Scalar;

const std::string kCrLf = "\r\n";

std::set<std::string> AsSet(const std::vector<std::string>& values) {
  return std::set<std::string>(values.begin(), values.end());
}

// The VFW31 test of the statement rewriter for a table (kind, company or
// grouping column, code column), for user 5.
std::string Vfw31Test(int kind, const std::string& scope_column, const std::string& code_column,
                      const std::string& negation = " NOT EXISTS(SELECT * ") {
  return negation + " FROM VFW31_RVKPARAMETRI  WHERE FW31_ID_FW07 = 5  AND FW31_INDTIPO = " +
         std::to_string(kind) +
         "  AND FW31_FLGABILITATO = 0  AND FW31_DITTARAGG = " + scope_column +
         "  AND FW31_CODTIPO = " + code_column + ") ";
}

// The customer/supplier area test of the rewriter for one level.
std::string AreaTest(const std::string& kind_grouping, const std::string& company,
                     const std::string& tipocf, const std::string& macro, const std::string& middle,
                     const std::string& ragg) {
  return " NOT EXISTS  (SELECT * FROM VFW32_RVKCLIFOR  WHERE FW32_ID_FW07 = 5  AND FW32_DITTA = " +
         company + "  AND FW32_TIPOCF = " + tipocf +
         "  AND FW32_FLGABILITATO = 0  AND FW32_TIPORAGG = '" + kind_grouping +
         "' AND FW32_CODMACRO = " + macro + " AND FW32_CODMIDDLE = " + middle +
         " AND FW32_CODRAGG = " + ragg + ")";
}

std::string CliForTest(const std::string& company, const std::string& kind,
                       const std::string& code) {
  return " NOT EXISTS  (SELECT RVKCLIFOR   FROM VFW32_LISTACFREVOCATI   WHERE RVKDITTA = " +
         company + "     AND RVKTIPOCF = " + kind + "     AND RVKCLIFOR = " + code +
         "     AND RVKUTENTE = 5  )  ";
}

std::string DocumentTypeTest(const std::string& column) {
  return " NOT EXISTS (SELECT MG3G_CODDOCUM_MG36          FROM MG3G_DOCDITTA WITH (NOLOCK)    "
         "     INNER JOIN VFW31_RVKPARAMETRI WITH (NOLOCK) ON                  FW31_ID_FW07 = 5 "
         "AND                  FW31_INDTIPO = 7  AND                  FW31_FLGABILITATO = 0 AND "
         "                 FW31_DITTARAGG = MG3G_INDSTAPER_MG36 AND                  "
         "FW31_CODTIPO = MG3G_CODDOCUM_MG36          WHERE MG3G_DITTA_CG18 = 1 AND          "
         "   MG3G_CODDOCUM_MG36 = " +
         column + ") ";
}

struct HiddenCase {
  const char* what;
  std::string all;        // SELECT of one key column with a WHERE clause
  std::string condition;  // the revocation condition, appended with AND
  std::vector<std::string> hidden;
};

class RevocationHidesRowsTest : public ::testing::TestWithParam<HiddenCase> {};

TEST_P(RevocationHidesRowsTest, HidesExactlyTheRevokedRows) {
  const HiddenCase& c = GetParam();
  const auto db = FreshDemo();
  const std::set<std::string> all = AsSet(FirstColumn(*db, c.all));
  const std::set<std::string> visible = AsSet(FirstColumn(*db, c.all + " AND " + c.condition));
  std::set<std::string> hidden;
  std::set_difference(all.begin(), all.end(), visible.begin(), visible.end(),
                      std::inserter(hidden, hidden.end()));
  EXPECT_EQ(hidden, AsSet(c.hidden)) << c.what;
  EXPECT_FALSE(visible.empty()) << c.what << ": something must stay visible";
}

INSTANTIATE_TEST_SUITE_P(
    Rossi, RevocationHidesRowsTest,
    ::testing::Values(
        HiddenCase{"warehouses (kind 6)",
                   "SELECT MG58_CODDEP FROM MG58_DEPOSITI WHERE MG58_DITTA_CG18 = 1",
                   Vfw31Test(6, "MG58_DITTA_CG18", "MG58_CODDEP"),
                   {"A1", "B2"}},
        HiddenCase{"document types (kind 7, scope = print status)",
                   "SELECT MG36_CODDOCUM FROM MG36_DOCUMENTI WHERE 1 = 1",
                   Vfw31Test(7, "MG36_INDSTAPER", "MG36_CODDOCUM"),
                   {"NCV", "OFF", "FTVP"}},
        HiddenCase{"document transfer types (kind 9)",
                   "SELECT MG3N_CODTRASFDOC FROM MG3N_TRASFDOC WHERE 1 = 1",
                   Vfw31Test(9, "MG3N_INDSTAPER", "MG3N_CODTRASFDOC"),
                   {"DDT-FTV"}},
        HiddenCase{"projects (kind 8)",
                   "SELECT PD68_CODPROG FROM PD68_PROGETTI WHERE PD68_DITTA_CG18 = 1",
                   Vfw31Test(8, "PD68_DITTA_CG18", "PD68_CODPROG", " NOT  EXISTS(SELECT * "),
                   {"P1", "P2"}},
        HiddenCase{"project nodes",
                   "SELECT PD0C_CODPROG_PD68 || '/' || PD0C_CODNODO FROM VPD0C_NODIPROG "
                   "WHERE PD0C_DITTA_CG18 = 1",
                   " NOT  EXISTS(SELECT *  FROM VFW3N_RVKNODI  WHERE FW3N_ID_FW07 = 5  AND "
                   "FW3N_DITTA_CG18 = PD0C_DITTA_CG18  AND FW3N_CODNODO = PD0C_CODNODO  AND "
                   "FW3N_CODPROG_PD68 = PD0C_CODPROG_PD68) ",
                   {"P3/N2", "P4/N1"}},
        HiddenCase{"export data sources (kind 13, scope 0)",
                   "SELECT FW34_CODICEDS FROM FW34_VISSOURCE WHERE 1 = 1",
                   " NOT EXISTS (SELECT FW31_CODICE           FROM VFW31_RVKPARAMETRI          "
                   "WHERE FW31_ID_FW07 = 5              AND FW31_CODTIPO = FW34_CODICEDS        "
                   "     AND FW31_DITTARAGG = 0              AND FW31_INDTIPO = 13 )",
                   {"DS_VENDITE"}},
        HiddenCase{"office configurations (kind 13, scope 1)",
                   "SELECT FW36_CODICEMATR FROM FW36_VISMATRICI WHERE 1 = 1",
                   " NOT EXISTS (SELECT FW31_CODICE           FROM VFW31_RVKPARAMETRI          "
                   "WHERE FW31_ID_FW07 = 5              AND FW31_CODTIPO = FW36_CODICEMATR      "
                   "       AND FW31_DITTARAGG = 1              AND FW31_INDTIPO = 13 )",
                   {"MATR_ORD"}},
        HiddenCase{"free reports (kind 12)",
                   "SELECT FW57_CODICE FROM FW57_STPLIBERE WHERE 1 = 1",
                   " NOT EXISTS (SELECT FW31_CODICE           FROM VFW31_RVKPARAMETRI          "
                   "WHERE FW31_ID_FW07 = 5              AND FW31_CODTIPO = FW57_CODICE          "
                   "   AND FW31_INDTIPO = 12 )",
                   {"STP02"}},
        HiddenCase{
            "simulation codes (kind 15, codes trimmed)",
            "SELECT RTRIM(PD90_SIMULAZIONE) FROM PD90_SIMULAZIONI WHERE PD90_DITTA_CG18 = 1",
            " NOT EXISTS (SELECT FW31_CODTIPO " + kCrLf + "  FROM VFW31_RVKPARAMETRI  WHERE " +
                kCrLf + "   FW31_ID_FW07 = 5 AND    FW31_INDTIPO = 15  AND " + kCrLf +
                "   FW31_FLGABILITATO = 0 AND  " + kCrLf +
                "   FW31_CODTIPO = rtrim(PD90_SIMULAZIONE) AND " + kCrLf + "   FW31_DITTARAGG = 1)",
            {"SIM3"}},
        HiddenCase{"goods-blocking models (kind 30)",
                   "SELECT MG0F_CODPARAM FROM MG0F_BLMPARAM WHERE MG0F_DITTA_CG18 = 1",
                   Vfw31Test(30, "MG0F_DITTA_CG18", "MG0F_CODPARAM", " NOT  EXISTS(SELECT * "),
                   {"BLM2"}},
        HiddenCase{"article states (kind 14)",
                   "SELECT MG66_CODART FROM MG66_ARTICOLI WHERE MG66_DITTA_CG18 = 1",
                   " MG66_INDSTATO_MG6W IN (                   (SELECT MG6W_INDSTATO           "
                   "          FROM MG6W_STATIART                      WHERE NOT EXISTS (SELECT "
                   "TOP 1 1                                         FROM VFW31_RVKPARAMETRI     "
                   "                                 WHERE FW31_CODTIPO = CAST(MG6W_INDSTATO "
                   "AS NVARCHAR)                                              AND FW31_ID_FW07 "
                   "= 5                                             AND FW31_INDTIPO = 14       "
                   "                                      AND FW31_DITTARAGG = -1))) ",
                   {"ART006", "ART009"}},
        HiddenCase{"movement types (kind 1)",
                   "SELECT CGT0_CODICE FROM CGT0_TIPOMOV WHERE 1 = 1",
                   " NOT EXISTS (SELECT TOP 1 1  FROM VFW31_RVKPARAMETRI  WHERE FW31_ID_FW07 = 5 "
                   " AND FW31_INDTIPO = 1  AND FW31_FLGABILITATO = 0  AND FW31_DITTARAGG = -1  "
                   "AND FW31_CODTIPO = CGT0_CODICE)",
                   {"0", "3"}},
        HiddenCase{"accounts, not shown ones excluded (kind 26)",
                   "SELECT CG42_NUMREG_CG41 || '/' || CG42_RIGA FROM VCG42_MOVCONT WHERE 1 = 1",
                   " NOT  EXISTS (SELECT TOP 1 1          FROM VFW31_RVKPARAMETRI WITH (NOLOCK)  "
                   "       WHERE FW31_ID_FW07 = 5               AND FW31_INDTIPO = 26            "
                   "   AND (FW31_FLGABILITATO = 0                 OR FW31_FLGMODIFICA = 0        "
                   "            )                AND FW31_DITTARAGG = CG42_GRUPPOPDC             "
                   "  AND FW31_CODTIPO = CG42_CONTOPDC) ",
                   {"2/1", "3/1", "3/2", "5/1", "6/2"}},
        HiddenCase{"accounting reasons (kind 0: register type 3 and STORNO)",
                   "SELECT CG33_CODICE FROM CG33_TABCAU WHERE 1 = 1",
                   " CG33_INDTIPOREG NOT IN (3) AND  CG33_CODICE NOT IN ('STORNO' ) ",
                   {"CORR", "CORRV", "STORNO"}},
        HiddenCase{"offices (grouping rows SEDE)",
                   "SELECT CG31_CODICE FROM CG31_SEDI WHERE CG31_DITTA_CG18 = 1",
                   "CG31_CODICE NOT IN (3 , 12 )",
                   {"3", "12"}},
        HiddenCase{
            "customers and suppliers",
            "SELECT CG44_TIPOCF || ':' || CG44_CLIFOR FROM CG44_CLIFOR "
            "WHERE CG44_DITTA_CG18 = 1",
            CliForTest("CG44_DITTA_CG18", "CG44_TIPOCF", "CG44_CLIFOR"),
            {"0:2", "0:5", "0:6", "0:7", "0:8", "0:9", "0:10", "0:11", "1:102", "1:103", "1:104"}},
        HiddenCase{"macro-areas (level 1)",
                   "SELECT MG07_TIPOCF || ':' || MG07_MACROAREA FROM MG07_MACROAREE "
                   "WHERE MG07_DITTA_CG18 = 1",
                   AreaTest("AREA", "MG07_DITTA_CG18", "MG07_TIPOCF", "MG07_MACROAREA", "''", "''"),
                   {"0:SUD"}},
        HiddenCase{"areas (level 2)",
                   "SELECT MG08_TIPOCF_MG07 || ':' || MG08_MACROAREA_MG07 || '/' || MG08_AREA "
                   "FROM MG08_AREE WHERE MG08_DITTA_CG18 = 1",
                   AreaTest("AREA", "MG08_DITTA_CG18", "MG08_TIPOCF_MG07", "MG08_MACROAREA_MG07",
                            "''", "''") +
                       " AND" +
                       AreaTest("AREA", "MG08_DITTA_CG18", "MG08_TIPOCF_MG07",
                                "MG08_MACROAREA_MG07", "MG08_AREA", "''"),
                   {"0:SUD/SU", "1:SUD/SU"}},
        HiddenCase{"zones (level 3)",
                   "SELECT MG09_TIPOCF_MG08 || ':' || MG09_AREA_MG08 || '/' || MG09_ZONA "
                   "FROM MG09_ZONE WHERE MG09_DITTA_CG18 = 1",
                   AreaTest("AREA", "MG09_DITTA_CG18", "MG09_TIPOCF_MG08", "MG09_MACROAREA_MG08",
                            "''", "''") +
                       " AND" +
                       AreaTest("AREA", "MG09_DITTA_CG18", "MG09_TIPOCF_MG08",
                                "MG09_MACROAREA_MG08", "MG09_AREA_MG08", "''") +
                       " AND" +
                       AreaTest("AREA", "MG09_DITTA_CG18", "MG09_TIPOCF_MG08",
                                "MG09_MACROAREA_MG08", "MG09_AREA_MG08", "MG09_ZONA"),
                   {"0:SU/NA", "0:SU/BA", "0:NO/TO", "1:SU/NA"}},
        HiddenCase{"macro-categories",
                   "SELECT MG10_TIPOCF || ':' || MG10_MACROCAT FROM MG10_MACROCAT "
                   "WHERE MG10_DITTA_CG18 = 1",
                   AreaTest("CAT", "MG10_DITTA_CG18", "MG10_TIPOCF", "MG10_MACROCAT", "''", "''"),
                   {"0:PA", "1:EST"}},
        HiddenCase{
            "grouping 3 (code in FW32_CODMACRO)",
            "SELECT MG33_CODRAGGRCF3 FROM MG33_RAGGRCF3 WHERE MG33_DITTA_CG18 = 1",
            AreaTest("RAGG3", "MG33_DITTA_CG18", "MG33_TIPOCF", "MG33_CODRAGGRCF3", "''", "''"),
            {"X2"}},
        HiddenCase{"document headers: types, customers, offices, warehouses",
                   "SELECT DO11_NUMREG_CO99 FROM DO11_DOCTESTATA WHERE DO11_DITTA_CG18 = 1",
                   DocumentTypeTest("DO11_DOCUM_MG36") + " AND " +
                       CliForTest("DO11_DITTACF_CG44", "DO11_TIPOCF_CG44", "DO11_CLIFOR_CG44") +
                       " AND  (DO11_CODSEDE_CG31 NOT IN (3 , 12 ) OR DO11_CODSEDE_CG31 IS NULL )"
                       " AND  (DO11_CODDEP NOT IN ('A1' , 'B2' ) OR DO11_CODDEP IS NULL )",
                   {"1001", "1002", "1003", "1005", "1006", "1007", "1009", "1012", "1013", "1014",
                    "1016", "1017", "1018", "1019", "1020", "1021", "1022"}},
        HiddenCase{"destinations of agent 12 (others of agent 14 hidden)",
                   "SELECT MG22_CLIFOR_CG44 || '/' || MG22_CODDESTIN FROM MG22_DESTINAZIONI "
                   "WHERE MG22_DITTA_CG18 = 1",
                   "              (    EXISTS                              (SELECT     TOP 1 1  "
                   "                      FROM       MG2G_DESTAGEMUL MG2GRVK WITH (NOLOCK)      "
                   "                   WHERE      MG2GRVK.MG2G_DITTA_CG18 = MG22_DITTA_CG18 AND "
                   "MG2GRVK.MG2G_TIPOCF_CG44 = MG22_TIPOCF_CG44 AND                            "
                   "MG2GRVK.MG2G_CLIFOR_CG44 = MG22_CLIFOR_CG44 AND MG2G_CODDESTIN_MG22 = "
                   "MG22_CODDESTIN AND                            MG2GRVK.MG2G_IDAGENTE_MG17 = "
                   "12)          OR NOT EXISTS                                          (SELECT "
                   "    TOP 1 1                         FROM       MG2G_DESTAGEMUL MG2GRVK WITH "
                   "(NOLOCK)               WHERE      MG2GRVK.MG2G_DITTA_CG18 = MG22_DITTA_CG18 "
                   "AND MG2GRVK.MG2G_TIPOCF_CG44 = MG22_TIPOCF_CG44 AND                         "
                   "   MG2GRVK.MG2G_CLIFOR_CG44 = MG22_CLIFOR_CG44 AND MG2G_CODDESTIN_MG22 = "
                   "MG22_CODDESTIN)      ) ",
                   {"12/D2", "3/D1"}}));

TEST(DemoSeed, DemoUsersDescribeTheUsersTable) {
  const auto db = FreshDemo();
  const auto rows = QueryRows(*db,
                              "SELECT FW07_ID, FW07_CODICE, FW07_CODICE_FW06, FW07_USERNAME, "
                              "FW07_FLGGRP, FW07_FLGATTIVO, FW07_FLGREVOKE FROM FW07_APPUSER "
                              "ORDER BY FW07_ID");
  ASSERT_EQ(rows.size(), DemoUsers().size());
  for (size_t i = 0; i < rows.size(); ++i) {
    const DemoUser& u = DemoUsers()[i];
    EXPECT_EQ(rows[i][0].ToLong(), u.id);
    EXPECT_EQ(rows[i][1].ConcatText(), u.code);
    EXPECT_EQ(rows[i][2].ConcatText(), u.group);
    EXPECT_EQ(rows[i][3].ConcatText(), u.login);
    EXPECT_EQ(rows[i][4].ToLong() == 1, u.group_based) << u.code;
    EXPECT_EQ(rows[i][5].ToLong() == 1, u.active) << u.code;
    EXPECT_EQ(rows[i][6].ToLong() == 1, u.locked) << u.code;
    EXPECT_EQ(FindDemoUser(u.code), &u);
  }
  EXPECT_EQ(FindDemoUser("zentad"), nullptr);  // the privileged code is case-sensitive
  EXPECT_GT(FindDemoUser("ESTERNO")->id, 32767);
}

struct CustomerCase {
  const char* why;
  int32_t user;
  int32_t company;
  int32_t kind;
  int32_t code;
  bool revoked;
};

class ResolvedCustomerTest : public ::testing::TestWithParam<CustomerCase> {};

// Through the customer block check's statement.
TEST_P(ResolvedCustomerTest, ListOfRevokedCustomersResolvesEveryPath) {
  const CustomerCase& c = GetParam();
  const auto db = FreshDemo();
  const std::string sql =
      "SELECT COUNT(*) AS FLGRVK FROM VFW32_LISTACFREVOCATI  WHERE RVKDITTA = " +
      std::to_string(c.company) + " AND RVKCLIFOR = " + std::to_string(c.code) +
      " AND RVKTIPOCF = " + std::to_string(c.kind) + " AND RVKUTENTE = " + std::to_string(c.user);
  EXPECT_EQ(Scalar(*db, sql) > 0, c.revoked) << c.why;
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ResolvedCustomerTest,
    ::testing::Values(
        CustomerCase{"revoked one by one", user_id::kRossi, 1, 0, 7, true},
        CustomerCase{"one-by-one row enabled again", user_id::kRossi, 1, 0, 1, false},
        CustomerCase{"macro-area SUD", user_id::kRossi, 1, 0, 5, true},
        CustomerCase{"zone NORD/NO/TO", user_id::kRossi, 1, 0, 2, true},
        CustomerCase{"macro-area CENTRO row is enabled", user_id::kRossi, 1, 0, 4, false},
        CustomerCase{"macro-category PA", user_id::kRossi, 1, 0, 8, true},
        CustomerCase{"grouping 1 C, code in FW32_CODRAGG", user_id::kRossi, 1, 0, 9, true},
        CustomerCase{"grouping 2 VIP, code in FW32_CODRAGG", user_id::kRossi, 1, 0, 11, true},
        CustomerCase{"grouping 3 X2, code in FW32_CODMACRO", user_id::kRossi, 1, 0, 10, true},
        CustomerCase{"no classification at all", user_id::kRossi, 1, 0, 13, false},
        CustomerCase{"agent customer untouched", user_id::kRossi, 1, 0, 12, false},
        CustomerCase{"supplier one by one", user_id::kRossi, 1, 1, 103, true},
        CustomerCase{"supplier category EST", user_id::kRossi, 1, 1, 104, true},
        CustomerCase{"supplier area SUD/SU", user_id::kRossi, 1, 1, 102, true},
        CustomerCase{"supplier rows do not touch customers", user_id::kRossi, 1, 0, 3, false},
        CustomerCase{"other company, one by one", user_id::kBianchi, 2, 0, 2, true},
        CustomerCase{"same code, company 1", user_id::kBianchi, 1, 0, 2, false},
        CustomerCase{"inactive user, macro-area NORD", user_id::kNeri, 1, 0, 12, true},
        CustomerCase{"privileged user has none", user_id::kZentAd, 1, 0, 7, false}));

TEST(DemoSeed, GroupBasedUserGetsTheMostPermissiveMergeOfHisGroups) {
  const auto db = FreshDemo();
  struct Row {
    const char* why;
    int kind;
    const char* code;
    const char* flags;  // abilitato, modifica, elimina, inserisci
  };
  const Row rows[] = {
      {"B2 revoked by both groups", 6, "B2", "0,1,1,1"},
      {"D4 revoked by AMM only", 6, "D4", "1,1,1,1"},
      {"NCV: highest flag of each group", 7, "NCV", "1,1,1,1"},
      {"P5: his own row wins over the group row", 8, "P5", "0,1,1,1"},
  };
  for (const Row& r : rows) {
    EXPECT_EQ(FirstColumn(*db,
                          "SELECT FW31_FLGABILITATO || ',' || FW31_FLGMODIFICA || ',' || "
                          "FW31_FLGELIMINA || ',' || FW31_FLGINSERISCI FROM VFW31_RVKPARAMETRI "
                          "WHERE FW31_ID_FW07 = 7 AND FW31_INDTIPO = " +
                              std::to_string(r.kind) + " AND FW31_CODTIPO = '" + r.code + "'"),
              std::vector<std::string>{r.flags})
        << r.why;
  }
  // Group rows reach group-based users only.
  EXPECT_EQ(Scalar(*db, "SELECT COUNT(*) FROM VFW31_RVKPARAMETRI WHERE FW31_ID_FW07 = 10"), 0);
}

std::string GroupFunctionStatement(int function, int user) {
  const std::string f = std::to_string(function);
  return "          SELECT  *     FROM    (                    SELECT  FW00_ID_FW07, "
         "ISNULL(FW3G_CODICE_FW3F, " +
         f +
         ") AS FW3G_CODICE_FW3F, MAX(ISNULL(FW3G_FLGABILITATO, 1)) AS FW3G_FLGABILITATO   "
         "               FROM    FW00_GRPUSRASSOC                              LEFT JOIN "
         "FW3G_RVKFUNZIONI                      ON FW00_ID_FW06 = FW3G_ID_FW06 AND "
         "FW3G_CODICE_FW3F = " +
         f + "         WHERE   FW00_ID_FW07 = " + std::to_string(user) +
         "         GROUP BY FW00_ID_FW07, ISNULL(FW3G_CODICE_FW3F, " + f +
         ")                  ) TT    WHERE   TT.FW3G_FLGABILITATO = 0  ";
}

TEST(DemoSeed, FunctionsAreRevokedPerUserOrWhenEveryGroupRevokes) {
  const auto db = FreshDemo();
  EXPECT_EQ(QueryRows(*db, GroupFunctionStatement(101, user_id::kVerdi)).size(), 1u);
  EXPECT_TRUE(QueryRows(*db, GroupFunctionStatement(102, user_id::kVerdi)).empty());
  EXPECT_TRUE(QueryRows(*db, GroupFunctionStatement(103, user_id::kVerdi)).empty());
  const auto user_form = [&](int function) {
    return QueryRows(*db, "SELECT TOP 1 1 FROM FW3G_RVKFUNZIONI  WHERE FW3G_CODICE_FW3F = " +
                              std::to_string(function) +
                              " AND FW3G_ID_FW07 = 5  AND FW3G_FLGABILITATO = 0")
        .size();
  };
  EXPECT_EQ(user_form(104), 1u);
  EXPECT_EQ(user_form(102), 0u);  // his row is enabled
}

TEST(DemoSeed, ExcludedCompaniesPerUserAndPerGroup) {
  const auto db = FreshDemo();
  const auto blocked = [&](int company, int user) {
    return Scalar(*db,
                  "SELECT COUNT(*) AS FLGRVK FROM VFW05_DITTAESCLUSI  WHERE FW05_DITTA_CG18 = " +
                      std::to_string(company) + " AND FW05_ID_FW07 = " + std::to_string(user) +
                      " AND FW05_FLGVISIBLE = 0") > 0;
  };
  EXPECT_TRUE(blocked(2, user_id::kRossi));
  EXPECT_FALSE(blocked(1, user_id::kRossi));
  EXPECT_TRUE(blocked(2, user_id::kVerdi));   // through the group AMM
  EXPECT_FALSE(blocked(2, user_id::kBruno));  // in AMM too, but not group-based
  EXPECT_TRUE(blocked(2, user_id::kZentAd));  // read by the company check only
  EXPECT_FALSE(blocked(2, user_id::kBianchi));
  // The rewriter's two forms of the excluded-company list.
  const auto rs =
      db->Execute("SELECT * FROM FW05_DITTAESCLUSI  WHERE FW05_ID_FW07 = 5  AND FW05_FLGABIL = 0",
                  db::kCmdText);
  ASSERT_FALSE(rs->EOF());
  EXPECT_EQ(rs->Fields("FW05_DITTA_CG18").ToLong(), kOtherCompany);
  rs->MoveNext();
  EXPECT_TRUE(rs->EOF());
  EXPECT_TRUE(QueryRows(*db,
                        "SELECT * FROM FW05_DITTAESCLUSI  WHERE FW05_ID_FW07 = 1  AND "
                        "FW05_FLGABIL = 0")
                  .empty());
  EXPECT_EQ(FirstColumn(*db,
                        "SELECT DISTINCT FW05_DITTA_CG18 FROM VFW05_DITTAESCLUSI  WHERE "
                        "FW05_ID_FW07 = 7  AND FW05_FLGVISIBLE = 0 "),
            std::vector<std::string>{"2"});
}

TEST(DemoSeed, AgentSeesOnlyHisCustomersAndHisCodeCarriesTrailingBlanks) {
  const auto db = FreshDemo();
  const std::string visible =
      "SELECT CG44_TIPOCF, CG44_CLIFOR From CG44_CLIFOR  WHERE CG44_TIPOCF = 0 AND NOT EXISTS "
      " (SELECT *  From MG19_CLIFORVA  Where MG19_DITTA_CG18 = CG44_DITTA_CG18  AND "
      "MG19_TIPOCF_CG44 = CG44_TIPOCF  AND MG19_CLIFOR_CG44 = CG44_CLIFOR  AND (EXISTS (SELECT * "
      " From VFW32_RVKCLIFOR  Where FW32_DITTA = MG19_DITTA_CG18  AND FW32_TIPOCF = "
      "MG19_TIPOCF_CG44  AND FW32_ID_FW07 = 9  AND FW32_FLGABILITATO = 0  AND FW32_TIPORAGG = "
      "'AREA' ))) AND EXISTS ( SELECT * FROM MG1C_CLIFORAGEMUL   Where MG1C_DITTA_CG18 = "
      "CG44_DITTA_CG18  AND MG1C_TIPOCF_CG44 = CG44_TIPOCF  AND MG1C_CLIFOR_CG44 = CG44_CLIFOR  "
      "AND MG1C_IDAGENTE_MG17 = '12')";
  const auto rows = QueryRows(*db, visible);
  std::vector<std::string> codes;
  for (const auto& r : rows) codes.push_back(r.at(1).ConcatText());
  EXPECT_EQ(codes, (std::vector<std::string>{"12", "40"}));
  EXPECT_EQ(FirstColumn(*db, "SELECT MG17_AGENTE FROM MG17_AGENTI WHERE MG17_IDAGENTE = '12'"),
            std::vector<std::string>{"AG12   "});
  EXPECT_EQ(Scalar(*db,
                   "SELECT COUNT(*) FROM DO11_DOCTESTATA WHERE DO11_DITTA_CG18 = 1 AND  EXISTS "
                   "(SELECT 1 FROM DO29_DOCTESAGENTI WITH (NOLOCK) WHERE DO29_DITTA_CG18 = "
                   "DO11_DITTA_CG18 AND DO29_NUMREG_CO99 = DO11_NUMREG_CO99 AND "
                   "DO29_IDAGENTE_MG17 = '12')"),
            4);
  // The revoked-customer form with the agent clause is refused.
  EXPECT_THROW(db->Execute("SELECT CG44_CLIFOR FROM CG44_CLIFOR WHERE NOT EXISTS ( SELECT * FROM "
                           "MG1C_CLIFORAGEMUL   Where MG1C_AGENTE_IDMG17 = '12')",
                           db::kCmdText),
               VbError);
}

TEST(DemoSeed, LoginNamesCoverTheLockOutCases) {
  const auto db = FreshDemo();
  const auto lookup = [&](const std::string& name) {
    return QueryRows(
        *db, "SELECT FW07_ID, FW07_FLGREVOKE FROM FW07_APPUSER  WHERE FW07_USERNAME = '" + name +
                 "' AND FW07_FLGATTIVO = 1");
  };
  const auto bruno = lookup("lbruno");
  ASSERT_EQ(bruno.size(), 1u);
  EXPECT_EQ(bruno[0][0].ToLong(), user_id::kBruno);
  EXPECT_EQ(bruno[0][1].ToLong(), 0);
  const auto gallo = lookup("cgallo");
  ASSERT_EQ(gallo.size(), 1u);
  EXPECT_EQ(gallo[0][1].ToLong(), 1);
  EXPECT_TRUE(lookup("cneri").empty());  // inactive
  const auto esterno = lookup("esterno");
  ASSERT_EQ(esterno.size(), 1u);
  EXPECT_THROW(esterno[0][0].ToInteger(), VbError);  // does not fit 16 bits
  // BRUNO was enabled again at 08:30 after two failures that day.
  EXPECT_EQ(FirstColumn(*db,
                        "SELECT FW33_DATAORA FROM FW33_RVKUSER  WHERE FW33_ID_FW07 = 10 AND "
                        "FW33_DATA = '20240304' AND FW33_AZIONE = 10 ORDER BY FW33_DATAORA DESC"),
            std::vector<std::string>{"2024-03-04 08:30:00.000"});
  EXPECT_EQ(Scalar(*db,
                   "SELECT COUNT(FW33_ID_FW07) AS NUMPROVE FROM FW33_RVKUSER  WHERE FW33_ID_FW07 = "
                   "10  AND FW33_DATAORA > '2024-03-04 08:30:00' AND FW33_AZIONE = 0 AND "
                   "FW33_RISULTATO = 1"),
            0);
}

TEST(DemoSeed, RightsRowsDecideTheRecords) {
  const auto db = FreshDemo();
  const auto first_flags = [&](const std::string& sql) {
    const auto rows = QueryRows(*db, sql);
    std::string flags;
    if (rows.empty()) return flags;
    for (const Variant& v : rows[0]) flags += v.ConcatText();
    return flags;
  };
  // Bill-of-materials type 35: the '99' row (revoked) sorts first and wins.
  EXPECT_EQ(first_flags("SELECT TOP 1 FW31_FLGABILITATO, FW31_FLGMODIFICA, FW31_FLGELIMINA, "
                        "FW31_FLGINSERISCI FROM VFW31_RVKPARAMETRI " +
                        kCrLf + " WHERE FW31_ID_FW07 = 5 " + kCrLf + " AND FW31_INDTIPO = 19" +
                        kCrLf + " AND FW31_DITTARAGG = -1" + kCrLf +
                        " AND FW31_CODTIPO IN ('35', '99') ORDER BY FW31_CODTIPO DESC"),
            "0111");
  EXPECT_EQ(first_flags("SELECT TOP 1 FW31_FLGABILITATO, FW31_FLGMODIFICA, FW31_FLGELIMINA, "
                        "FW31_FLGINSERISCI FROM VFW31_RVKPARAMETRI  WHERE FW31_ID_FW07 = 5  AND "
                        "FW31_INDTIPO = 19 AND FW31_DITTARAGG = -1 AND FW31_CODTIPO = '5'" +
                        kCrLf + " ORDER BY FW31_CODTIPO DESC"),
            "1011");
  // Work-cycle type 35 has no '99' row: its own row, without update.
  EXPECT_EQ(first_flags("SELECT TOP 1  FW31_FLGABILITATO, FW31_FLGMODIFICA, FW31_FLGELIMINA, "
                        "FW31_FLGINSERISCI FROM  VFW31_RVKPARAMETRI WHERE  FW31_ID_FW07   = 5 AND "
                        " FW31_INDTIPO   = 33 AND  FW31_DITTARAGG = -1 AND FW31_CODTIPO IN ('35', "
                        "'99') ORDER BY FW31_CODTIPO DESC"),
            "1011");
  // Document types: OCL enabled without update, DDT without delete and insert.
  EXPECT_EQ(first_flags("SELECT FW31_FLGABILITATO, FW31_FLGMODIFICA, FW31_FLGELIMINA, "
                        "FW31_FLGINSERISCI FROM VFW31_RVKPARAMETRI  WHERE FW31_ID_FW07 = 5 AND "
                        "FW31_INDTIPO = 7 AND FW31_CODTIPO = 'OCL' AND FW31_DITTARAGG = 0"),
            "1011");
  EXPECT_EQ(first_flags("SELECT FW31_FLGABILITATO, FW31_FLGMODIFICA, FW31_FLGELIMINA, "
                        "FW31_FLGINSERISCI FROM VFW31_RVKPARAMETRI  WHERE FW31_ID_FW07 = 5 AND "
                        "FW31_INDTIPO = 7 AND FW31_CODTIPO = 'DDT' AND FW31_DITTARAGG = 0"),
            "1100");
  // Families: ELE without insert and delete, MEC with update flag 2.
  EXPECT_EQ(first_flags("SELECT FW3H_FLGELIMINA, FW3H_FLGINSERIMENTO, FW3H_FLGMODIFICA FROM "
                        "FW3H_RVKARTICOLI  WHERE FW3H_DITTA = 1 AND FW3H_CODMACRO = 'ELE' AND "
                        "FW3H_TIPORAGG = 'FAM'  AND FW3H_ID_FW07 = 5 "),
            "001");
  EXPECT_EQ(first_flags("SELECT FW3H_FLGELIMINA, FW3H_FLGINSERIMENTO, FW3H_FLGMODIFICA FROM "
                        "FW3H_RVKARTICOLI  WHERE FW3H_DITTA = 1 AND FW3H_CODMACRO = 'MEC' AND "
                        "FW3H_TIPORAGG = 'FAM'  AND FW3H_ID_FW07 = 5 "),
            "112");
  // Article states: only state 3 is disabled.
  EXPECT_EQ(FirstColumn(*db,
                        " SELECT MG6W_INDSTATO, MG6W_DESCR,   (CASE WHEN FW31_FLGABILITATO IS "
                        "NULL THEN 1 ELSE FW31_FLGABILITATO END) AS ENABLED  FROM MG6W_STATIART  "
                        "LEFT OUTER JOIN VFW31_RVKPARAMETRI ON FW31_CODTIPO = MG6W_INDSTATO     "
                        "                     AND FW31_ID_FW07 = 5                      AND "
                        "FW31_INDTIPO = 14  ORDER BY MG6W_INDSTATO "),
            (std::vector<std::string>{"0", "1", "2", "3", "4"}));
  EXPECT_EQ(Scalar(*db,
                   "SELECT COUNT(*) FROM MG6W_STATIART LEFT OUTER JOIN VFW31_RVKPARAMETRI ON "
                   "FW31_CODTIPO = MG6W_INDSTATO AND FW31_ID_FW07 = 5 AND FW31_INDTIPO = 14 "
                   "WHERE FW31_FLGABILITATO = 0"),
            1);
}

struct RowFoundCase {
  const char* what;
  std::string statement;
  bool found;
};

class RevocationRowTest : public ::testing::TestWithParam<RowFoundCase> {};

TEST_P(RevocationRowTest, BlockCheckStatementFindsTheRow) {
  const auto db = FreshDemo();
  EXPECT_EQ(!QueryRows(*db, GetParam().statement).empty(), GetParam().found) << GetParam().what;
}

std::string RevisionState(int kind, int code) {
  return "SELECT   FW31_FLGABILITATO FROM   VFW31_RVKPARAMETRI WITH (NOLOCK) WHERE   FW31_INDTIPO "
         "     = " +
         std::to_string(kind) + " AND   FW31_CODTIPO      = '" + std::to_string(code) +
         "' AND   FW31_ID_FW07      = 5 AND   FW31_FLGABILITATO = 0";
}

std::string BillChoice(int kind, const std::string& document) {
  return "SELECT   FW31_FLGABILITATO FROM   VFW31_RVKPARAMETRI WITH (NOLOCK) INNER JOIN   "
         "MG36_DOCUMENTI WITH (NOLOCK) ON   MG36_DOCUMENTI.MG36_CODDOCUM  = "
         "VFW31_RVKPARAMETRI.FW31_CODTIPO AND   MG36_DOCUMENTI.MG36_INDSTAPER = "
         "VFW31_RVKPARAMETRI.FW31_DITTARAGG INNER JOIN   MG3G_DOCDITTA WITH (NOLOCK) ON   "
         "MG3G_DOCDITTA.MG3G_CODDOCUM_MG36  = MG36_DOCUMENTI.MG36_CODDOCUM AND   "
         "MG3G_DOCDITTA.MG3G_INDSTAPER_MG36 = MG36_DOCUMENTI.MG36_INDSTAPER WHERE       "
         "VFW31_RVKPARAMETRI.FW31_INDTIPO      = " +
         std::to_string(kind) +
         "   AND VFW31_RVKPARAMETRI.FW31_ID_FW07      = 5   AND "
         "VFW31_RVKPARAMETRI.FW31_FLGABILITATO = 0   AND MG3G_DOCDITTA.MG3G_DITTA_CG18        = "
         "1   AND MG36_DOCUMENTI.MG36_CODDOCUM         = '" +
         document + "'";
}

std::string Activity(int index, const std::string& code) {
  return "SELECT   FW31_FLGABILITATO FROM   VFW31_RVKPARAMETRI WITH (NOLOCK) WHERE       "
         "VFW31_RVKPARAMETRI.FW31_INDTIPO      = 38   AND VFW31_RVKPARAMETRI.FW31_ID_FW07      "
         "=   5   AND VFW31_RVKPARAMETRI.FW31_FLGABILITATO =  0   AND "
         "VFW31_RVKPARAMETRI.FW31_DITTARAGG    =   " +
         std::to_string(index) + "   AND VFW31_RVKPARAMETRI.FW31_CODTIPO      =  '" + code + "' ";
}

std::string Param(int kind, const std::string& code, const std::string& scope_test) {
  return "SELECT FW31_FLGABILITATO FROM VFW31_RVKPARAMETRI  WHERE FW31_INDTIPO = " +
         std::to_string(kind) + "  AND FW31_CODTIPO = '" + code + "' " + scope_test +
         " AND FW31_ID_FW07 = 5  AND FW31_FLGABILITATO = 0";
}

INSTANTIATE_TEST_SUITE_P(
    Rossi, RevocationRowTest,
    ::testing::Values(
        RowFoundCase{"bill revision state 2", RevisionState(34, 2), true},
        RowFoundCase{"bill revision state 1", RevisionState(34, 1), false},
        RowFoundCase{"cycle revision state 3", RevisionState(35, 3), true},
        RowFoundCase{"cycle revision state 2", RevisionState(35, 2), false},
        RowFoundCase{"revised bill for OCL", BillChoice(36, "OCL"), true},
        RowFoundCase{"revised bill for FTV", BillChoice(36, "FTV"), false},
        RowFoundCase{"manual bill for DDT", BillChoice(37, "DDT"), true},
        RowFoundCase{"manual bill for OCL", BillChoice(37, "OCL"), false},
        RowFoundCase{"activity 01 on index 1", Activity(1, "01"), true},
        RowFoundCase{"activity 01 on index 15", Activity(15, "01"), false},
        RowFoundCase{"order-line state 3", Param(10, "3", ""), true},
        RowFoundCase{"order-line state 2", Param(10, "2", ""), false},
        RowFoundCase{"simulation SIM3 in company 1", Param(15, "SIM3", " AND FW31_DITTARAGG = 1"),
                     true},
        RowFoundCase{"simulation SIM3 in company 2", Param(15, "SIM3", " AND FW31_DITTARAGG = 2"),
                     false},
        RowFoundCase{"journal transfer 1", Param(11, "1", ""), true},
        RowFoundCase{"context CTX_CONT", Param(20, "CTX_CONT", " AND FW31_DITTARAGG = -1"), true},
        RowFoundCase{"set INS01", Param(29, "INS01", " AND FW31_DITTARAGG = -1"), true},
        RowFoundCase{"import layout IMP01", Param(27, "IMP01", " AND FW31_DITTARAGG = 1"), true},
        RowFoundCase{"export layout EXP01", Param(28, "EXP01", " AND FW31_DITTARAGG = 1"), true},
        RowFoundCase{"customer wizard model", Param(16, "WZCLI", " AND FW31_DITTARAGG = 0"), true},
        RowFoundCase{"CERVED CRV1 may not be inserted",
                     "SELECT TOP 1 1  FROM VFW31_RVKPARAMETRI  WHERE FW31_ID_FW07 = 5  AND "
                     "FW31_FLGINSERISCI = 0  AND FW31_INDTIPO = 31  AND FW31_DITTARAGG = -1  AND "
                     "FW31_CODTIPO = 'CRV1'",
                     true},
        RowFoundCase{"CERVED CRV1 may be modified",
                     "SELECT TOP 1 1  FROM VFW31_RVKPARAMETRI  WHERE FW31_ID_FW07 = 5  AND "
                     "FW31_FLGMODIFICA = 0  AND FW31_INDTIPO = 31  AND FW31_DITTARAGG = -1  AND "
                     "FW31_CODTIPO = 'CRV1'",
                     false},
        RowFoundCase{"price-list type 5", Param(32, "5", ""), true},
        RowFoundCase{"price-list type 1", Param(32, "1", ""), false}));

}  // namespace
}  // namespace zarvik::demo
