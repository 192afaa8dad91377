// Chart-of-accounts conditions: visible accounts, blocked accounts and the
// join that keeps the blocked ones, as exact texts, as neutral answers and
// as the accounts they keep on the demo database.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "condition_test_support.h"

namespace zarvik {
namespace {

using testing::ConditionTest;

const char* const kContiPDCUser12 =
    " NOT  EXISTS (SELECT TOP 1 1          FROM VFW31_RVKPARAMETRI WITH (NOLOCK)         WHERE "
    "FW31_ID_FW07 = 12               AND FW31_INDTIPO = 26                 AND "
    "(FW31_FLGABILITATO = 0                 OR FW31_FLGMODIFICA = 0                    )        "
    "        "
    "AND FW31_DITTARAGG = CG42_GRUPPOPDC               AND FW31_CODTIPO = CG42_CONTOPDC) ";
const char* const kContiPDCBloccatiUser12 =
    " EXISTS (SELECT TOP 1 1          FROM VFW31_RVKPARAMETRI WITH (NOLOCK)         WHERE "
    "FW31_ID_FW07 = 12               AND FW31_INDTIPO = 26                 AND "
    "(FW31_FLGABILITATO = 0                     )                AND FW31_DITTARAGG = "
    "CG42_GRUPPOPDC               AND FW31_CODTIPO = CG42_CONTOPDC) ";
const char* const kJoinUser12 =
    "     INNER JOIN VFW31_RVKPARAMETRI WITH (NOLOCK)\r\n         ON CONVERT(DECIMAL(2,0), "
    "FW31_DITTARAGG) = CG42_GRUPPOPDC\r\n         AND CONVERT(CHAR(10), FW31_CODTIPO) = "
    "CG42_CONTOPDC\r\n         AND FW31_INDTIPO = 26\r\n         AND FW31_ID_FW07 = 12\r\n     AND "
    "(FW31_FLGABILITATO = 0\r\n                    ) ";
const char* const kJoinUser12Escludi =
    "     INNER JOIN VFW31_RVKPARAMETRI WITH (NOLOCK)\r\n         ON CONVERT(DECIMAL(2,0), "
    "FW31_DITTARAGG) = CG42_GRUPPOPDC\r\n         AND CONVERT(CHAR(10), FW31_CODTIPO) = "
    "CG42_CONTOPDC\r\n         AND FW31_INDTIPO = 26\r\n         AND FW31_ID_FW07 = 12\r\n     AND "
    "(FW31_FLGABILITATO = 0\r\n    OR FW31_FLGMODIFICA = 0                    ) ";

const char* const kNoBlockedAccountJoin = " INNER JOIN VFW31_RVKPARAMETRI WITH (NOLOCK) ON 1 = 0 ";

// The accounts of the demo entries, "group/account".
const char* const kAccounts =
    "SELECT DISTINCT CG42_GRUPPOPDC || '/' || CG42_CONTOPDC FROM CG42_MOVCONT WHERE 1=1";

class AccountConditionTest : public ConditionTest {
 protected:
  std::string Visible(bool escludi) {
    return parser.SQLConditionContiPDC("CG42_GRUPPOPDC", "CG42_CONTOPDC", true, escludi);
  }
  std::string Blocked(bool escludi) {
    return parser.SQLConditionContiPDCBloccati("CG42_GRUPPOPDC", "CG42_CONTOPDC", true, escludi);
  }
  std::string Join(bool escludi) {
    return parser.SQLinnerjoinContiPDCBloccati("CG42_GRUPPOPDC", "CG42_CONTOPDC", escludi);
  }
};

TEST_F(AccountConditionTest, ExactTextsForAnOrdinaryUser) {
  AsUnknownUserWithId(12);
  EXPECT_EQ(parser.SQLConditionContiPDC("CG42_GRUPPOPDC", "CG42_CONTOPDC", false), kContiPDCUser12);
  EXPECT_EQ(Visible(true), std::string(" AND ") + kContiPDCUser12);
  EXPECT_EQ(parser.SQLConditionContiPDCBloccati("CG42_GRUPPOPDC", "CG42_CONTOPDC", false, false),
            kContiPDCBloccatiUser12);
  EXPECT_EQ(Blocked(false), std::string(" AND ") + kContiPDCBloccatiUser12);
  EXPECT_EQ(parser.SQLinnerjoinContiPDCBloccati("CG42_GRUPPOPDC", "CG42_CONTOPDC"), kJoinUser12);
  EXPECT_EQ(Join(true), kJoinUser12Escludi);
  EXPECT_TRUE(Boxes().empty());
}

TEST_F(AccountConditionTest, DefaultsAndTheNegation) {
  AsUnknownUserWithId(12);
  // Visible and blocked differ only by the leading " NOT " and default to
  // counting unchangeable accounts as blocked.
  const std::string visible = parser.SQLConditionContiPDC("G", "C", false);
  const std::string blocked = parser.SQLConditionContiPDCBloccati("G", "C", false);
  EXPECT_EQ(visible, " NOT " + blocked);
  EXPECT_NE(blocked.find("OR FW31_FLGMODIFICA = 0"), std::string::npos);
  EXPECT_EQ(parser.SQLConditionContiPDC("G", "C", false, false).find("FW31_FLGMODIFICA"),
            std::string::npos);
}

TEST_F(AccountConditionTest, NeutralAnswersForThePrivilegedUserAndTheDisabledContext) {
  // These compare CodiceUtente, not the customer/supplier code.
  AsUnknownUserWithId(12);
  parser.SetCodiceUtente("ZentAd");
  for (bool disabled : {false, true}) {
    SCOPED_TRACE(disabled);
    if (disabled) {
      parser.SetCodiceUtente(testing::kUnknownUser);
      parser.SetRevokeDisabilitata(true);
    }
    EXPECT_EQ(Visible(true), "");
    EXPECT_EQ(parser.SQLConditionContiPDC("G", "C", false), "");
    EXPECT_EQ(Blocked(true), " AND 1=0 ");
    EXPECT_EQ(parser.SQLConditionContiPDCBloccati("G", "C", false), " 1=0 ");
    EXPECT_EQ(Join(false), kNoBlockedAccountJoin);
    EXPECT_EQ(Join(true), kNoBlockedAccountJoin);
  }
  EXPECT_TRUE(log->statements.empty());
  // The privileged customer/supplier code alone does not short-cut.
  parser.SetRevokeDisabilitata(false);
  parser.SetCodiceUtenteCLIFOR("ZentAd");
  EXPECT_NE(Visible(true), "");
}

TEST_F(AccountConditionTest, AccountsKeptOnTheDemoDatabase) {
  AsRossi();
  // 10/1001 is revoked, 10/1002 may not be changed.
  EXPECT_EQ(Rows(kAccounts + Visible(true) + " ORDER BY 1"),
            (std::vector<std::string>{"10/1003", "20/2001", "20/2002"}));
  EXPECT_EQ(Rows(kAccounts + Visible(false) + " ORDER BY 1"),
            (std::vector<std::string>{"10/1002", "10/1003", "20/2001", "20/2002"}));
  EXPECT_EQ(Rows(kAccounts + Blocked(true) + " ORDER BY 1"),
            (std::vector<std::string>{"10/1001", "10/1002"}));
  EXPECT_EQ(Rows(kAccounts + Blocked(false) + " ORDER BY 1"),
            (std::vector<std::string>{"10/1001"}));
}

TEST_F(AccountConditionTest, JoinKeepsTheBlockedAccounts) {
  AsRossi();
  const std::string head =
      "SELECT DISTINCT CG42_GRUPPOPDC || '/' || CG42_CONTOPDC FROM CG42_MOVCONT";
  EXPECT_EQ(Rows(head + Join(false) + " ORDER BY 1"), (std::vector<std::string>{"10/1001"}));
  EXPECT_EQ(Rows(head + Join(true) + " ORDER BY 1"),
            (std::vector<std::string>{"10/1001", "10/1002"}));
  // For the privileged user the join matches nothing.
  AsUser("ZentAd", "SYS");
  EXPECT_TRUE(Rows(head + Join(true)).empty());
}

TEST_F(AccountConditionTest, FailureBeforeTheTextIsBuiltGivesEmptyTextAndOneBox) {
  AsRossi();
  db->Close();
  EXPECT_EQ(Blocked(true), "");
  ASSERT_EQ(Boxes().size(), 1u);
  EXPECT_TRUE(EndsWith(Boxes()[0].text, TagLine("SQLConditionContiPDCBloccati")));
}

}  // namespace
}  // namespace zarvik
