// Facts of the seed data that the component's own tests do not reach,
// checked through the statements the component sends: the users table, the
// resolved customer list, the group merge of the parameter view, and the
// revocations no other test reads on the demo database.
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include "demo_test_support.h"

namespace zarvik::demo {
namespace {

using testing::FirstColumn;
using testing::FreshDemo;
using testing::Scalar;

std::set<std::string> AsSet(const std::vector<std::string>& values) {
  return std::set<std::string>(values.begin(), values.end());
}

// The customer/supplier area test of the rewriter for one level, for user 5.
std::string AreaTest(const std::string& kind_grouping, const std::string& company,
                     const std::string& tipocf, const std::string& macro, const std::string& middle,
                     const std::string& ragg) {
  return " NOT EXISTS  (SELECT * FROM VFW32_RVKCLIFOR  WHERE FW32_ID_FW07 = 5  AND FW32_DITTA = " +
         company + "  AND FW32_TIPOCF = " + tipocf +
         "  AND FW32_FLGABILITATO = 0  AND FW32_TIPORAGG = '" + kind_grouping +
         "' AND FW32_CODMACRO = " + macro + " AND FW32_CODMIDDLE = " + middle +
         " AND FW32_CODRAGG = " + ragg + ")";
}

TEST(DemoSeed, RevocationsOfRossiHideExactlyTheRevokedRows) {
  struct Case {
    const char* what;
    std::string all;        // SELECT of one key column with a WHERE clause
    std::string condition;  // the revocation condition, appended with AND
    std::set<std::string> hidden;
  };
  const Case cases[] = {
      {"document transfer types (kind 9)",
       "SELECT MG3N_CODTRASFDOC FROM MG3N_TRASFDOC WHERE 1 = 1",
       " NOT EXISTS(SELECT *  FROM VFW31_RVKPARAMETRI  WHERE FW31_ID_FW07 = 5  AND FW31_INDTIPO = "
       "9  AND FW31_FLGABILITATO = 0  AND FW31_DITTARAGG = MG3N_INDSTAPER  AND FW31_CODTIPO = "
       "MG3N_CODTRASFDOC) ",
       {"DDT-FTV"}},
      {"zones (level 3)",
       "SELECT MG09_TIPOCF_MG08 || ':' || MG09_AREA_MG08 || '/' || MG09_ZONA "
       "FROM MG09_ZONE WHERE MG09_DITTA_CG18 = 1",
       AreaTest("AREA", "MG09_DITTA_CG18", "MG09_TIPOCF_MG08", "MG09_MACROAREA_MG08", "''", "''") +
           " AND" +
           AreaTest("AREA", "MG09_DITTA_CG18", "MG09_TIPOCF_MG08", "MG09_MACROAREA_MG08",
                    "MG09_AREA_MG08", "''") +
           " AND" +
           AreaTest("AREA", "MG09_DITTA_CG18", "MG09_TIPOCF_MG08", "MG09_MACROAREA_MG08",
                    "MG09_AREA_MG08", "MG09_ZONA"),
       {"0:SU/NA", "0:SU/BA", "0:NO/TO", "1:SU/NA"}},
      {"macro-categories",
       "SELECT MG10_TIPOCF || ':' || MG10_MACROCAT FROM MG10_MACROCAT WHERE MG10_DITTA_CG18 = 1",
       AreaTest("CAT", "MG10_DITTA_CG18", "MG10_TIPOCF", "MG10_MACROCAT", "''", "''"),
       {"0:PA", "1:EST"}},
      {"destinations of agent 12 (others of agent 14 hidden)",
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
       {"12/D2", "3/D1"}},
  };
  const auto db = FreshDemo();
  for (const Case& c : cases) {
    const std::set<std::string> all = AsSet(FirstColumn(*db, c.all));
    const std::set<std::string> visible = AsSet(FirstColumn(*db, c.all + " AND " + c.condition));
    std::set<std::string> hidden;
    std::set_difference(all.begin(), all.end(), visible.begin(), visible.end(),
                        std::inserter(hidden, hidden.end()));
    EXPECT_EQ(hidden, c.hidden) << c.what;
    EXPECT_FALSE(visible.empty()) << c.what << ": something must stay visible";
  }
}

// Kinds whose rows for ROSSI no test of the component reads on the demo
// database.
TEST(DemoSeed, EveryOtherKindHasARevocationRow) {
  struct Case {
    int kind;
    const char* code;
    const char* scope_test;
  };
  const Case cases[] = {{11, "1", ""},
                        {20, "CTX_CONT", " AND FW31_DITTARAGG = -1"},
                        {27, "IMP01", " AND FW31_DITTARAGG = 1"},
                        {29, "INS01", " AND FW31_DITTARAGG = -1"},
                        {28, "EXP01", " AND FW31_DITTARAGG = 1"},
                        {16, "WZCLI", " AND FW31_DITTARAGG = 0"}};
  const auto db = FreshDemo();
  for (const Case& c : cases) {
    EXPECT_FALSE(QueryRows(*db,
                           "SELECT FW31_FLGABILITATO FROM VFW31_RVKPARAMETRI  WHERE "
                           "FW31_INDTIPO = " +
                               std::to_string(c.kind) + "  AND FW31_CODTIPO = '" + c.code + "' " +
                               c.scope_test + " AND FW31_ID_FW07 = 5  AND FW31_FLGABILITATO = 0")
                     .empty())
        << "kind " << c.kind;
  }
}

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

// Through the customer block check's statement.
TEST(DemoSeed, ListOfRevokedCustomersResolvesEveryPath) {
  struct Case {
    const char* why;
    int32_t user;
    int32_t company;
    int32_t kind;
    int32_t code;
    bool revoked;
  };
  const Case cases[] = {
      {"revoked one by one", user_id::kRossi, 1, 0, 7, true},
      {"one-by-one row enabled again", user_id::kRossi, 1, 0, 1, false},
      {"macro-area SUD", user_id::kRossi, 1, 0, 5, true},
      {"zone NORD/NO/TO", user_id::kRossi, 1, 0, 2, true},
      {"macro-area CENTRO row is enabled", user_id::kRossi, 1, 0, 4, false},
      {"macro-category PA", user_id::kRossi, 1, 0, 8, true},
      {"grouping 1 C, code in FW32_CODRAGG", user_id::kRossi, 1, 0, 9, true},
      {"grouping 3 X2, code in FW32_CODMACRO", user_id::kRossi, 1, 0, 10, true},
      {"no classification at all", user_id::kRossi, 1, 0, 13, false},
      {"supplier area SUD/SU", user_id::kRossi, 1, 1, 102, true},
      {"supplier rows do not touch customers", user_id::kRossi, 1, 0, 3, false},
      {"other company, one by one", user_id::kBianchi, 2, 0, 2, true},
      {"inactive user, macro-area NORD", user_id::kNeri, 1, 0, 12, true},
      {"privileged user has none", user_id::kZentAd, 1, 0, 7, false},
  };
  const auto db = FreshDemo();
  for (const Case& c : cases) {
    const std::string sql =
        "SELECT COUNT(*) AS FLGRVK FROM VFW32_LISTACFREVOCATI  WHERE RVKDITTA = " +
        std::to_string(c.company) + " AND RVKCLIFOR = " + std::to_string(c.code) +
        " AND RVKTIPOCF = " + std::to_string(c.kind) + " AND RVKUTENTE = " + std::to_string(c.user);
    EXPECT_EQ(Scalar(*db, sql) > 0, c.revoked) << c.why;
  }
}

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
}

}  // namespace
}  // namespace zarvik::demo
