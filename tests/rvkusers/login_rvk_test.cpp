// LoginRvk on the demo database: what is logged, what is counted, when a
// user is locked, and that nothing ever escapes the method.
#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "demo/demo_db.h"
#include "rvkusers/clsfw_rvkusers.h"
#include "rvkusers_test_support.h"

namespace zarvik {
namespace {

using testing::LoginResult;
using testing::Moment;
using testing::RvkUsersOnDemo;
namespace uid = demo::user_id;

// 5 March 2024; BRUNO's failures in the demo data are of the 4th.
constexpr Moment kAt0900{2024, 3, 5, 9, 0, 0};
constexpr Moment kAt0901{2024, 3, 5, 9, 1, 0};
constexpr Moment kAt0902{2024, 3, 5, 9, 2, 0};
constexpr Moment kAt0903{2024, 3, 5, 9, 3, 0};
const std::string kToday = "20240305";

const std::string kLookupBruno =
    "SELECT FW07_ID, FW07_FLGREVOKE FROM FW07_APPUSER  WHERE FW07_USERNAME = 'lbruno' AND "
    "FW07_FLGATTIVO = 1";

bool SentOneLike(const LoginResult& r, const std::string& head) {
  int n = 0;
  for (const std::string& s : r.sent) n += s.compare(0, head.size(), head) == 0 ? 1 : 0;
  return n == 1;
}
const char kCountHead[] = "SELECT COUNT(FW33_ID_FW07) AS NUMPROVE FROM FW33_RVKUSER ";
bool Counted(const LoginResult& r) { return SentOneLike(r, kCountHead); }
// The count statement the call sent, or "".
std::string CountStatement(const LoginResult& r) {
  for (const std::string& s : r.sent) {
    if (s.rfind(kCountHead, 0) == 0) return s;
  }
  return "";
}
bool Logged(const LoginResult& r) { return SentOneLike(r, " INSERT INTO FW33_RVKUSER "); }

// ---------------------------------------------------------------------------
// The exact statements, once each.

TEST(LoginRvkStatements, TextsOfALockingAttemptAndOfTheCountAfterAReEnabling) {
  RvkUsersOnDemo t;
  t.rvk.SetMaxNumTry(1);
  t.At(kAt0900);
  const LoginResult first = t.Login("lbruno", 1, "PC-BRUNO");
  EXPECT_EQ(first.sent,
            (std::vector<std::string>{
                kLookupBruno,
                " INSERT INTO FW33_RVKUSER  (FW33_ID_FW07, FW33_DATA, FW33_AZIONE, FW33_RISULTATO, "
                "FW33_WINUSER, FW33_DATAORA)  VALUES  (10, '20240305', 0, 1,'PC-BRUNO', "
                "[dbo].[KVL_GETDATE]()) ",
                "SELECT  convert(varchar(25), FW33_DATAORA, 120) AS FW33_DATAORA  FROM "
                "FW33_RVKUSER  WHERE FW33_ID_FW07 = 10 AND FW33_DATA = '20240305' AND "
                "FW33_AZIONE = 10 order by FW33_DATAORA desc ",
                "SELECT COUNT(FW33_ID_FW07) AS NUMPROVE FROM FW33_RVKUSER  WHERE FW33_ID_FW07 = "
                "10  AND FW33_DATA = '20240305' AND FW33_AZIONE = 0 AND FW33_RISULTATO = 1",
                "UPDATE FW07_APPUSER SET FW07_FLGREVOKE = 1 WHERE FW07_ID = 10  AND "
                "FW07_FLGATTIVO = 1",
            }));

  // Re-enabled at 09:01:30; the count now runs from that moment.
  t.Run("UPDATE FW07_APPUSER SET FW07_FLGREVOKE = 0 WHERE FW07_ID = 10");
  t.ReEnable(uid::kBruno, Moment{2024, 3, 5, 9, 1, 30});
  t.rvk.SetMaxNumTry(5);
  t.At(kAt0902);
  const LoginResult after = t.Login("lbruno", 1, "PC-BRUNO");
  ASSERT_EQ(after.sent.size(), 4u);
  EXPECT_EQ(after.sent[3],
            "SELECT COUNT(FW33_ID_FW07) AS NUMPROVE FROM FW33_RVKUSER  WHERE FW33_ID_FW07 = 10  "
            "AND FW33_DATAORA > convert(datetime, '2024-03-05 09:01:30', 120) AND FW33_AZIONE = "
            "0 AND FW33_RISULTATO = 1");
}

TEST(LoginRvkStatements, ValuesArePastedAsTheyStand) {
  RvkUsersOnDemo t;
  t.At(kAt0900);
  // The login name and the Windows user are not escaped: a quote breaks
  // the statement, which is then skipped like any failing one.
  const LoginResult r = t.Login("o'neil", 0, "DOM\\o'neil");
  ASSERT_EQ(r.sent.size(), 1u);
  EXPECT_EQ(r.sent[0],
            "SELECT FW07_ID, FW07_FLGREVOKE FROM FW07_APPUSER  WHERE FW07_USERNAME = 'o'neil' AND "
            "FW07_FLGATTIVO = 1");
  EXPECT_EQ(r.status, NoRevoke);
  EXPECT_TRUE(t.sink->messages.empty());
}

// ---------------------------------------------------------------------------
// Who is logged

TEST(LoginRvk, UnknownOrInactiveLoginLeavesNoTrace) {
  const std::vector<std::optional<std::string>> logins = {
      "nobody",      // no such login
      "cneri",       // NERI is inactive
      std::nullopt,  // Utente omitted: the name is ""
  };
  for (const auto& login : logins) {
    SCOPED_TRACE(login.value_or("<omitted>"));
    RvkUsersOnDemo t;
    t.rvk.SetMaxNumTry(1);
    t.At(kAt0900);
    ASSERT_EQ(t.Login("cgallo", 0).status, RevokeVantor);  // a status to overwrite
    const int32_t rows = t.LogRowCount();
    const LoginResult r = t.Login(login, 1);
    EXPECT_EQ(r.risultato, 1);
    EXPECT_EQ(r.status, NoRevoke);
    EXPECT_EQ(r.sent.size(), 1u);  // the lookup only
    EXPECT_EQ(t.LogRowCount(), rows);
    EXPECT_EQ(t.Locked(uid::kNeri), 0);
  }
}

TEST(LoginRvk, AlreadyRevokedUserIsReportedAndLoggedWithOutcome2) {
  // GALLO is locked in the demo data. The lookup turns the outcome into 2
  // before the outcome-3 test, so even 3 is logged (as 2).
  const Moment later{2024, 3, 6, 11, 0, 0};
  for (int16_t outcome : {0, 1, 5, 3}) {
    SCOPED_TRACE(outcome);
    RvkUsersOnDemo t;
    t.rvk.SetMaxNumTry(1);
    t.At(later);
    const LoginResult r = t.Login("cgallo", outcome, "PC-GALLO");
    EXPECT_EQ(r.risultato, 2);
    EXPECT_EQ(r.status, RevokeVantor);
    EXPECT_TRUE(Logged(r));
    EXPECT_FALSE(Counted(r));
    EXPECT_EQ(r.sent.size(), 2u);
    const auto rows = t.LogOf(uid::kGallo, later.DateLiteral());
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(rows[0][1].ToLong(), 0);  // action: login attempt
    EXPECT_EQ(rows[0][2].ToLong(), 2);
    EXPECT_EQ(rows[0][3].ToString(), "PC-GALLO");
    EXPECT_EQ(rows[0][4].ToString(), later.Text());  // the server's clock
  }
}

TEST(LoginRvk, Outcome3WritesNothing) {
  RvkUsersOnDemo t;  // MaxNumTry 0: any counted attempt would lock
  t.At(kAt0900);
  const int32_t rows = t.LogRowCount();
  const LoginResult r = t.Login("lbruno", 3);
  EXPECT_EQ(r.risultato, 3);
  EXPECT_EQ(r.status, NoRevoke);
  EXPECT_EQ(r.sent, std::vector<std::string>{kLookupBruno});
  EXPECT_EQ(t.LogRowCount(), rows);
  EXPECT_EQ(t.Locked(uid::kBruno), 0);
}

TEST(LoginRvk, UserIdAbove32767IsNotLoggedButStillCounted) {
  RvkUsersOnDemo t;
  t.rvk.SetMaxNumTry(3);
  t.At(kAt0900);
  const int32_t rows = t.LogRowCount();
  const LoginResult r = t.Login("esterno", 1);
  EXPECT_EQ(t.LogRowCount(), rows);
  EXPECT_FALSE(Logged(r));
  // The id is 32-bit everywhere else: the count runs (and finds nothing).
  EXPECT_TRUE(Counted(r));
  EXPECT_NE(CountStatement(r).find("WHERE FW33_ID_FW07 = 40000 "), std::string::npos);
  EXPECT_EQ(r.status, NoRevoke);
  EXPECT_EQ(t.Locked(uid::kEsterno), 0);
}

TEST(LoginRvk, PrivilegedLoginIsLoggedButNeverCounted) {
  struct Case {
    const char* login;
    bool counted;
  };
  // The demo's ZentAd logs in as "zentad"; the privileged test compares the
  // login name with "ZentAd" exactly, so that login is an ordinary one.
  for (const Case& c : {Case{"ZentAd", false}, Case{"zentad", true}}) {
    SCOPED_TRACE(c.login);
    RvkUsersOnDemo t;
    t.Run("UPDATE FW07_APPUSER SET FW07_USERNAME = '" + std::string(c.login) +
          "' WHERE FW07_ID = 1");
    t.rvk.SetMaxNumTry(1);
    t.At(kAt0900);
    const LoginResult first = t.Login(c.login, 1);
    t.At(kAt0901);
    const LoginResult second = t.Login(c.login, 1);
    EXPECT_TRUE(Logged(first));
    EXPECT_EQ(Counted(first), c.counted);
    EXPECT_EQ(first.status, c.counted ? RevokeVantor : NoRevoke);
    EXPECT_EQ(t.Locked(uid::kZentAd), c.counted ? 1 : 0);
    // Once locked the second attempt is reported as revoked.
    EXPECT_EQ(second.risultato, c.counted ? 2 : 1);
    EXPECT_EQ(t.LogOf(uid::kZentAd, kToday).size(), 2u);
  }
}

// ---------------------------------------------------------------------------
// Counting and locking

TEST(LoginRvk, ThirdFailureOfTheDayLocksAndYesterdaysDoNotCount) {
  RvkUsersOnDemo t;
  t.rvk.SetMaxNumTry(3);
  // BRUNO failed twice on the 4th; those do not count on the 5th.
  ASSERT_EQ(t.Rows("SELECT COUNT(*) FROM FW33_RVKUSER WHERE FW33_ID_FW07 = 10 AND "
                   "FW33_RISULTATO = 1 AND FW33_DATA = '20240304'")
                .at(0)
                .at(0)
                .ToLong(),
            2);
  struct Step {
    Moment at;
    int16_t outcome;
    int16_t risultato_after;
    EnumRevokeStatus status;
    int32_t locked;
  };
  const Step steps[] = {
      {kAt0900, 1, 1, NoRevoke, 0},
      {kAt0901, 1, 1, NoRevoke, 0},
      {kAt0902, 1, 1, RevokeVantor, 1},  // the locking attempt keeps its outcome
      {kAt0903, 0, 2, RevokeVantor, 1},  // a later success is refused
  };
  for (const Step& s : steps) {
    SCOPED_TRACE(s.at.Text());
    t.At(s.at);
    const LoginResult r = t.Login("lbruno", s.outcome);
    EXPECT_EQ(r.risultato, s.risultato_after);
    EXPECT_EQ(r.status, s.status);
    EXPECT_EQ(t.Locked(uid::kBruno), s.locked);
  }
  const auto rows = t.LogOf(uid::kBruno, kToday);
  ASSERT_EQ(rows.size(), 4u);
  std::vector<int32_t> outcomes;
  for (const auto& row : rows) outcomes.push_back(row[2].ToLong());
  EXPECT_EQ(outcomes, (std::vector<int32_t>{1, 1, 1, 2}));
}

TEST(LoginRvk, OnlyOutcome1IsCountedButEveryOtherCodeStartsACount) {
  struct Step {
    int16_t outcome;
    bool counted;  // a count statement was sent
    int32_t locked;
  };
  RvkUsersOnDemo t;
  t.rvk.SetMaxNumTry(2);
  const Step steps[] = {{1, true, 0}, {0, false, 0}, {5, true, 0}, {-1, true, 0}, {1, true, 1}};
  int minute = 0;
  for (const Step& s : steps) {
    SCOPED_TRACE(s.outcome);
    t.At(Moment{2024, 3, 5, 9, minute++, 0});
    const LoginResult r = t.Login("lbruno", s.outcome);
    EXPECT_EQ(r.risultato, s.outcome);
    EXPECT_TRUE(Logged(r));
    EXPECT_EQ(Counted(r), s.counted);
    EXPECT_EQ(t.Locked(uid::kBruno), s.locked);
  }
}

TEST(LoginRvk, WithoutMaxNumTryTheFirstCountedAttemptLocks) {
  // MaxNumTry starts at 0 and any count is >= 0: even an outcome that is
  // not itself a failure locks.
  for (int16_t outcome : {1, 4}) {
    SCOPED_TRACE(outcome);
    RvkUsersOnDemo t;
    EXPECT_EQ(t.rvk.MaxNumTry(), 0);
    t.At(kAt0900);
    EXPECT_EQ(t.Login("lbianchi", outcome).status, RevokeVantor);
    EXPECT_EQ(t.Locked(uid::kBianchi), 1);
  }
}

TEST(LoginRvk, ReEnablingRowMakesOnlyLaterFailuresCount) {
  RvkUsersOnDemo t;
  t.rvk.SetMaxNumTry(3);
  t.At(kAt0900);
  t.Login("lbianchi", 1);
  t.At(Moment{2024, 3, 5, 9, 10, 0});
  t.Login("lbianchi", 1);
  // Re-enabled at 08:00 and again at 10:00 today, and late yesterday: only
  // the latest of today matters.
  t.ReEnable(uid::kBianchi, Moment{2024, 3, 4, 23, 0, 0});
  t.ReEnable(uid::kBianchi, Moment{2024, 3, 5, 8, 0, 0});
  t.ReEnable(uid::kBianchi, Moment{2024, 3, 5, 10, 0, 0});

  const EnumRevokeStatus expected[] = {NoRevoke, NoRevoke, RevokeVantor};
  for (int i = 0; i < 3; ++i) {
    SCOPED_TRACE(i);
    t.At(Moment{2024, 3, 5, 10, 5 + i, 0});
    const LoginResult r = t.Login("lbianchi", 1);
    ASSERT_TRUE(Counted(r));
    EXPECT_NE(
        CountStatement(r).find("FW33_DATAORA > convert(datetime, '2024-03-05 10:00:00', 120)"),
        std::string::npos);
    EXPECT_EQ(r.status, expected[i]);
  }
  EXPECT_EQ(t.Locked(uid::kBianchi), 1);
}

TEST(LoginRvk, FailuresBeforeTheDemoReEnablingDoNotCount) {
  // BRUNO failed twice on the 4th and was re-enabled at 08:30: a failure
  // later that day is the first one counted.
  RvkUsersOnDemo t;
  t.rvk.SetMaxNumTry(2);
  t.At(Moment{2024, 3, 4, 9, 0, 0});
  const LoginResult r = t.Login("lbruno", 1);
  EXPECT_NE(CountStatement(r).find("convert(datetime, '2024-03-04 08:30:00', 120)"),
            std::string::npos);
  EXPECT_EQ(r.status, NoRevoke);
  t.At(Moment{2024, 3, 4, 9, 1, 0});
  EXPECT_EQ(t.Login("lbruno", 1).status, RevokeVantor);
}

// ---------------------------------------------------------------------------
// Failures are skipped

TEST(LoginRvk, NoConnectionAtAllIsSilent) {
  struct Case {
    const char* what;
    std::string connection_string;
    bool closed_host_connection;
  };
  const Case cases[] = {
      {"no connection, no connection string", "", false},
      {"a connection string that cannot be opened",
       "Provider=SQLite;Data Source=/nonexistent-dir/zarvik/login.db", false},
      {"a closed connection from the host", "", true},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    auto sink = std::make_shared<RecordingMessageSink>();
    auto clock = std::make_shared<testing::FixedClock>();
    CLSFW_RVKUSERS rvk(Env{sink, clock});
    rvk.SetConnectionStringADO(c.connection_string);
    if (c.closed_host_connection) rvk.SetConnectionADO(std::make_shared<db::Connection>());
    rvk.SetMaxNumTry(1);
    for (int16_t outcome : {1, 0, 3}) {
      int16_t risultato = outcome;
      std::string win_user = "PC";
      std::optional<std::string> group;
      std::optional<std::string> login = std::string("lbruno");
      rvk.LoginRvk(risultato, win_user, group, login);
      EXPECT_EQ(risultato, outcome);
      EXPECT_EQ(rvk.IsRevoked(), NoRevoke);
    }
    EXPECT_EQ(rvk.ConnectionADO() != nullptr, c.closed_host_connection);
    EXPECT_FALSE(rvk.ConnectionOwned());
    EXPECT_TRUE(sink->messages.empty());
  }
}

TEST(LoginRvk, AFailingInsertIsSkippedAndTheCountStillLocks) {
  RvkUsersOnDemo t;
  t.rvk.SetMaxNumTry(2);
  t.At(kAt0900);
  t.Login("lbruno", 1);
  t.At(kAt0901);
  t.Login("lbruno", 1);
  t.Run("UPDATE FW07_APPUSER SET FW07_FLGREVOKE = 0 WHERE FW07_ID = 10");
  // A quote in the Windows user name breaks the insert.
  t.At(kAt0902);
  const LoginResult r = t.Login("lbruno", 1, "PC'BRUNO");
  EXPECT_TRUE(Logged(r));
  EXPECT_EQ(t.LogOf(uid::kBruno, kToday).size(), 2u);
  EXPECT_TRUE(Counted(r));
  EXPECT_EQ(r.status, RevokeVantor);
  EXPECT_EQ(t.Locked(uid::kBruno), 1);
  EXPECT_TRUE(t.sink->messages.empty());
}

TEST(LoginRvk, AFailingCountLocksNobody) {
  RvkUsersOnDemo t;  // MaxNumTry 0 would lock at any count
  t.At(kAt0900);
  t.Run("ALTER TABLE FW33_RVKUSER RENAME COLUMN FW33_RISULTATO TO FW33_ESITO");
  const LoginResult r = t.Login("lbruno", 1);
  EXPECT_TRUE(Counted(r));
  EXPECT_EQ(r.status, NoRevoke);
  EXPECT_EQ(t.Locked(uid::kBruno), 0);
}

}  // namespace
}  // namespace zarvik
