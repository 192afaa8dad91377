// Chart-of-accounts conditions: visible accounts, blocked accounts and the
// join that keeps the blocked ones, as exact texts, as neutral answers and
// as the accounts they keep on the demo database.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "../parser_test_support.h"

namespace zarvik {
namespace {

const std::string kContiPDCUser12 =
    " NOT  EXISTS (SELECT TOP 1 1          FROM VFW31_RVKPARAMETRI WITH (NOLOCK)         WHERE "
    "FW31_ID_FW07 = 12               AND FW31_INDTIPO = 26                 AND "
    "(FW31_FLGABILITATO = 0                 OR FW31_FLGMODIFICA = 0                    )        "
    "        AND FW31_DITTARAGG = CG42_GRUPPOPDC               AND FW31_CODTIPO = CG42_CONTOPDC) ";
const std::string kContiPDCBloccatiUser12 =
    " EXISTS (SELECT TOP 1 1          FROM VFW31_RVKPARAMETRI WITH (NOLOCK)         WHERE "
    "FW31_ID_FW07 = 12               AND FW31_INDTIPO = 26                 AND "
    "(FW31_FLGABILITATO = 0                     )                AND FW31_DITTARAGG = "
    "CG42_GRUPPOPDC               AND FW31_CODTIPO = CG42_CONTOPDC) ";
const std::string kJoinUser12 =
    "     INNER JOIN VFW31_RVKPARAMETRI WITH (NOLOCK)\r\n         ON CONVERT(DECIMAL(2,0), "
    "FW31_DITTARAGG) = CG42_GRUPPOPDC\r\n         AND CONVERT(CHAR(10), FW31_CODTIPO) = "
    "CG42_CONTOPDC\r\n         AND FW31_INDTIPO = 26\r\n         AND FW31_ID_FW07 = 12\r\n     AND "
    "(FW31_FLGABILITATO = 0\r\n";
const char* const kNoBlockedAccountJoin = " INNER JOIN VFW31_RVKPARAMETRI WITH (NOLOCK) ON 1 = 0 ";

class AccountConditionTest : public testing::ParserTest {
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
  EXPECT_EQ(Visible(true), " AND " + kContiPDCUser12);
  EXPECT_EQ(parser.SQLConditionContiPDCBloccati("CG42_GRUPPOPDC", "CG42_CONTOPDC", false, false),
            kContiPDCBloccatiUser12);
  EXPECT_EQ(Blocked(false), " AND " + kContiPDCBloccatiUser12);
  // Blocked accounts default to counting the unchangeable ones too.
  EXPECT_EQ(parser.SQLConditionContiPDCBloccati("CG42_GRUPPOPDC", "CG42_CONTOPDC", false),
            kContiPDCUser12.substr(5));
  EXPECT_EQ(parser.SQLinnerjoinContiPDCBloccati("CG42_GRUPPOPDC", "CG42_CONTOPDC"),
            kJoinUser12 + "                    ) ");
  EXPECT_EQ(Join(true), kJoinUser12 + "    OR FW31_FLGMODIFICA = 0                    ) ");
  EXPECT_TRUE(Boxes().empty());
}

TEST_F(AccountConditionTest, NeutralAnswersForThePrivilegedUserAndTheDisabledContext) {
  // These compare CodiceUtente, not the customer/supplier code.
  AsUnknownUserWithId(12);
  parser.SetCodiceUtente("ZentAd");
  for (bool disabled : {false, true}) {
    if (disabled) {
      parser.SetCodiceUtente(testing::kUnknownUser);
      parser.SetRevokeDisabilitata(true);
    }
    EXPECT_EQ(Visible(true) + parser.SQLConditionContiPDC("G", "C", false), "") << disabled;
    EXPECT_EQ(Blocked(true), " AND 1=0 ");
    EXPECT_EQ(parser.SQLConditionContiPDCBloccati("G", "C", false), " 1=0 ");
    EXPECT_EQ(Join(false), kNoBlockedAccountJoin);
    EXPECT_EQ(Join(true), kNoBlockedAccountJoin);
  }
  EXPECT_TRUE(Statements().empty());
  // The privileged customer/supplier code alone does not short-cut.
  parser.SetRevokeDisabilitata(false);
  parser.SetCodiceUtenteCLIFOR("ZentAd");
  EXPECT_NE(Visible(true), "");
}

TEST_F(AccountConditionTest, AccountsKeptOnTheDemoDatabase) {
  AsUser("ROSSI");
  // 10/1001 is revoked, 10/1002 may not be changed.
  const std::string head =
      "SELECT DISTINCT CG42_GRUPPOPDC || '/' || CG42_CONTOPDC FROM CG42_MOVCONT";
  EXPECT_EQ(Rows(head + " WHERE 1=1" + Visible(true) + " ORDER BY 1"), "10/1003 20/2001 20/2002");
  EXPECT_EQ(Rows(head + " WHERE 1=1" + Blocked(true) + " ORDER BY 1"), "10/1001 10/1002");
  // The join keeps the blocked accounts; for the privileged user it matches
  // nothing.
  EXPECT_EQ(Rows(head + Join(true) + " ORDER BY 1"), "10/1001 10/1002");
  AsUser("ZentAd");
  EXPECT_EQ(Rows(head + Join(true)), "");
}

TEST_F(AccountConditionTest, FailureBeforeTheTextIsBuiltGivesEmptyTextAndOneBox) {
  AsUser("ROSSI");
  db->Close();
  EXPECT_EQ(Blocked(true), "");
  EXPECT_EQ(BoxTags(), std::vector<std::string>{"SQLConditionContiPDCBloccati"});
}

}  // namespace
}  // namespace zarvik
