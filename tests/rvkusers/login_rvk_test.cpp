// LoginRvk on the demo database: what is logged, what is counted, when a
// user is locked, that nothing ever escapes the method, and the class's own
// connection (opened from ConnectionStringADO, closed only when it is its
// own).
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "db/connection.h"
#include "db/tracing.h"
#include "demo/demo_db.h"
#include "frame/frame_test_support.h"
#include "platform/env.h"
#include "platform/message_sink.h"
#include "rvkusers/clsfw_rvkusers.h"

namespace zarvik {
namespace {

namespace uid = demo::user_id;

class FixedClock : public Clock {
 public:
  double Now() const override { return now; }
  double now = OleDateFromYmd(2024, 3, 5);
};

// A moment of a day: "2024-03-05 09:00:00.000" as the log stores it.
struct Moment {
  int year, month, day, hour, minute, second;

  std::string Text() const {
    char text[32];
    std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d.000", year, month, day, hour,
                  minute, second);
    return text;
  }
  std::string DateLiteral() const {
    const std::string t = Text();
    return t.substr(0, 4) + t.substr(5, 2) + t.substr(8, 2);
  }
};

// 5 March 2024; BRUNO's failures in the demo data are of the 4th.
constexpr Moment kAt0900{2024, 3, 5, 9, 0, 0};
constexpr Moment kAt0901{2024, 3, 5, 9, 1, 0};
constexpr Moment kAt0902{2024, 3, 5, 9, 2, 0};
const char kToday[] = "20240305";

// What one LoginRvk call did.
struct LoginResult {
  int16_t risultato;              // as the call left it
  EnumRevokeStatus status;        // IsRevoked afterwards
  std::vector<std::string> sent;  // statements the call sent, in order

  // The one statement sent that starts with `head`, or "" (none or several).
  std::string One(const std::string& head) const {
    std::string found;
    int n = 0;
    for (const std::string& s : sent) {
      if (s.rfind(head, 0) == 0 && ++n == 1) found = s;
    }
    return n == 1 ? found : "";
  }
  std::string Count() const { return One("SELECT COUNT(FW33_ID_FW07) AS NUMPROVE FROM "); }
  bool Logged() const { return !One(" INSERT INTO FW33_RVKUSER ").empty(); }
};

// A CLSFW_RVKUSERS on a private demo database whose statements are logged,
// with the component's clock and the server's [dbo].[KVL_GETDATE]() fixed.
class RvkUsersOnDemo {
 public:
  explicit RvkUsersOnDemo(int16_t max_num_try = 0) {
    connection->SetStatementLog(log);
    rvk.SetConnectionADO(connection);
    rvk.SetMaxNumTry(max_num_try);
    At(kAt0900);
  }

  void At(const Moment& m) {
    clock->now = OleDateFromYmd(m.year, m.month, m.day) +
                 (m.hour * 3600 + m.minute * 60 + m.second) / 86400.0;
    Run("UPDATE ZARVIK_ROUTINES SET ROUTINE_BODY = 'SELECT ''" + m.Text() +
        "''' WHERE ROUTINE_NAME = 'KVL_GETDATE'");
  }

  // One login of `login` (nullopt: the argument omitted) with the outcome.
  LoginResult Login(std::optional<std::string> login, int16_t outcome,
                    std::string win_user = "PC-TEST") {
    log->statements.clear();
    std::optional<std::string> group = std::string("IGNORED");
    rvk.LoginRvk(outcome, win_user, group, login);
    LoginResult result{outcome, rvk.IsRevoked(), log->statements};
    log->statements.clear();
    return result;
  }

  // A statement of the test itself (not part of what a call sent).
  void Run(const std::string& sql) {
    connection->Execute(sql, db::kCmdText);
    log->statements.clear();
  }
  std::vector<std::vector<Variant>> Rows(const std::string& sql) {
    auto rows = demo::QueryRows(*connection, sql);
    log->statements.clear();
    return rows;
  }
  int32_t Scalar(const std::string& sql) { return Rows(sql).at(0).at(0).ToLong(); }

  // A re-enabling row (action 10) as the administration writes it.
  void ReEnable(int32_t user_id, const Moment& m) {
    Run("INSERT INTO FW33_RVKUSER (FW33_ID_FW07, FW33_DATA, FW33_AZIONE, FW33_RISULTATO, "
        "FW33_WINUSER, FW33_DATAORA) VALUES (" +
        std::to_string(user_id) + ", '" + m.DateLiteral() + "', 10, 0, 'ADMIN', '" + m.Text() +
        "')");
  }
  int32_t Locked(int32_t user_id) {
    return Scalar("SELECT FW07_FLGREVOKE FROM FW07_APPUSER WHERE FW07_ID = " +
                  std::to_string(user_id));
  }
  int32_t LogRowCount() { return Scalar("SELECT COUNT(*) FROM FW33_RVKUSER"); }
  // The log rows of a user on a day: DATA, AZIONE, RISULTATO, WINUSER,
  // DATAORA, in time order.
  std::vector<std::vector<Variant>> LogOf(int32_t user_id, const std::string& date_literal) {
    return Rows(
        "SELECT FW33_DATA, FW33_AZIONE, FW33_RISULTATO, FW33_WINUSER, FW33_DATAORA "
        "FROM FW33_RVKUSER WHERE FW33_ID_FW07 = " +
        std::to_string(user_id) + " AND FW33_DATA = '" + date_literal + "' ORDER BY FW33_DATAORA");
  }

  std::shared_ptr<RecordingMessageSink> sink = std::make_shared<RecordingMessageSink>();
  std::shared_ptr<FixedClock> clock = std::make_shared<FixedClock>();
  std::shared_ptr<db::Connection> connection = demo::OpenDemoDatabase(":memory:");
  std::shared_ptr<db::StatementLog> log = std::make_shared<db::StatementLog>();
  CLSFW_RVKUSERS rvk{Env{sink, clock}};
};

const char kLookupBruno[] =
    "SELECT FW07_ID, FW07_FLGREVOKE FROM FW07_APPUSER  WHERE FW07_USERNAME = 'lbruno' AND "
    "FW07_FLGATTIVO = 1";

TEST(LoginRvkStatements, TextsOfALockingAttemptAndOfTheCountAfterAReEnabling) {
  RvkUsersOnDemo t(1);
  EXPECT_EQ(t.Login("lbruno", 1, "PC-BRUNO").sent,
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
  EXPECT_EQ(t.Login("lbruno", 1, "PC-BRUNO").Count(),
            "SELECT COUNT(FW33_ID_FW07) AS NUMPROVE FROM FW33_RVKUSER  WHERE FW33_ID_FW07 = 10  "
            "AND FW33_DATAORA > convert(datetime, '2024-03-05 09:01:30', 120) AND FW33_AZIONE = "
            "0 AND FW33_RISULTATO = 1");
}

TEST(LoginRvk, UnknownOrInactiveLoginLeavesNoTrace) {
  // No such login, NERI is inactive, the name omitted ("").
  for (const auto& login : {std::optional<std::string>("nobody"),
                            std::optional<std::string>("cneri"), std::optional<std::string>()}) {
    SCOPED_TRACE(login.value_or("<omitted>"));
    RvkUsersOnDemo t(1);
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
  RvkUsersOnDemo t(1);
  t.At(later);
  const LoginResult r = t.Login("cgallo", 3, "PC-GALLO");
  EXPECT_EQ(r.risultato, 2);
  EXPECT_EQ(r.status, RevokeVantor);
  EXPECT_EQ(r.sent.size(), 2u);  // lookup and insert, no count
  const auto rows = t.LogOf(uid::kGallo, later.DateLiteral());
  ASSERT_EQ(rows.size(), 1u);
  EXPECT_EQ(rows[0][1].ToLong(), 0);  // action: login attempt
  EXPECT_EQ(rows[0][2].ToLong(), 2);
  EXPECT_EQ(rows[0][3].ToString(), "PC-GALLO");
  EXPECT_EQ(rows[0][4].ToString(), later.Text());  // the server's clock
}

TEST(LoginRvk, Outcome3WritesNothingAndAUserIdAbove32767IsNotLogged) {
  RvkUsersOnDemo t;  // MaxNumTry 0: any counted attempt would lock
  const int32_t rows = t.LogRowCount();
  const LoginResult r = t.Login("lbruno", 3);
  EXPECT_EQ(r.risultato, 3);
  EXPECT_EQ(r.status, NoRevoke);
  EXPECT_EQ(r.sent, std::vector<std::string>{kLookupBruno});
  EXPECT_EQ(t.Locked(uid::kBruno), 0);
  // The id is 32-bit everywhere but in the log call: the count still runs
  // (and finds nothing).
  t.rvk.SetMaxNumTry(3);
  const LoginResult high = t.Login("esterno", 1);
  EXPECT_FALSE(high.Logged());
  EXPECT_NE(high.Count().find("WHERE FW33_ID_FW07 = 40000 "), std::string::npos);
  EXPECT_EQ(high.status, NoRevoke);
  EXPECT_EQ(t.Locked(uid::kEsterno), 0);
  EXPECT_EQ(t.LogRowCount(), rows);
}

TEST(LoginRvk, PrivilegedLoginIsLoggedButNeverCounted) {
  // The demo's ZentAd logs in as "zentad"; the privileged test compares the
  // login name with "ZentAd" exactly, so that login is an ordinary one.
  for (const bool counted : {false, true}) {
    const std::string login = counted ? "zentad" : "ZentAd";
    SCOPED_TRACE(login);
    RvkUsersOnDemo t(1);
    t.Run("UPDATE FW07_APPUSER SET FW07_USERNAME = '" + login + "' WHERE FW07_ID = 1");
    const LoginResult first = t.Login(login, 1);
    t.At(kAt0901);
    const LoginResult second = t.Login(login, 1);
    EXPECT_TRUE(first.Logged());
    EXPECT_EQ(!first.Count().empty(), counted);
    EXPECT_EQ(first.status, counted ? RevokeVantor : NoRevoke);
    EXPECT_EQ(t.Locked(uid::kZentAd), counted ? 1 : 0);
    // Once locked the second attempt is reported as revoked.
    EXPECT_EQ(second.risultato, counted ? 2 : 1);
    EXPECT_EQ(t.LogOf(uid::kZentAd, kToday).size(), 2u);
  }
}

TEST(LoginRvk, ThirdFailureOfTheDayLocksAndYesterdaysDoNotCount) {
  RvkUsersOnDemo t(3);
  // BRUNO failed twice on the 4th; those do not count on the 5th.
  ASSERT_EQ(t.Scalar("SELECT COUNT(*) FROM FW33_RVKUSER WHERE FW33_ID_FW07 = 10 AND "
                     "FW33_RISULTATO = 1 AND FW33_DATA = '20240304'"),
            2);
  const struct {
    Moment at;
    int16_t outcome;
    int16_t risultato_after;
    EnumRevokeStatus status;
  } steps[] = {
      {kAt0900, 1, 1, NoRevoke},
      {kAt0901, 1, 1, NoRevoke},
      {kAt0902, 1, 1, RevokeVantor},                // the locking attempt keeps its outcome
      {{2024, 3, 5, 9, 3, 0}, 0, 2, RevokeVantor},  // a later success is refused
  };
  for (const auto& s : steps) {
    SCOPED_TRACE(s.at.Text());
    t.At(s.at);
    const LoginResult r = t.Login("lbruno", s.outcome);
    EXPECT_EQ(r.risultato, s.risultato_after);
    EXPECT_EQ(r.status, s.status);
    EXPECT_EQ(t.Locked(uid::kBruno), s.status == RevokeVantor ? 1 : 0);
  }
  std::vector<int32_t> outcomes;
  for (const auto& row : t.LogOf(uid::kBruno, kToday)) outcomes.push_back(row[2].ToLong());
  EXPECT_EQ(outcomes, (std::vector<int32_t>{1, 1, 1, 2}));
}

TEST(LoginRvk, OnlyOutcome1IsCountedButEveryOtherCodeStartsACount) {
  RvkUsersOnDemo t(2);
  const struct {
    int16_t outcome;
    bool counted;  // a count statement was sent
    int32_t locked;
  } steps[] = {{1, true, 0}, {0, false, 0}, {5, true, 0}, {-1, true, 0}, {1, true, 1}};
  int minute = 0;
  for (const auto& s : steps) {
    SCOPED_TRACE(s.outcome);
    t.At(Moment{2024, 3, 5, 9, minute++, 0});
    const LoginResult r = t.Login("lbruno", s.outcome);
    EXPECT_EQ(r.risultato, s.outcome);
    EXPECT_TRUE(r.Logged());
    EXPECT_EQ(!r.Count().empty(), s.counted);
    EXPECT_EQ(t.Locked(uid::kBruno), s.locked);
  }
  // MaxNumTry starts at 0 and any count is >= 0: even an outcome that is
  // not itself a failure locks.
  RvkUsersOnDemo fresh;
  EXPECT_EQ(fresh.rvk.MaxNumTry(), 0);
  EXPECT_EQ(fresh.Login("lbianchi", 4).status, RevokeVantor);
  EXPECT_EQ(fresh.Locked(uid::kBianchi), 1);
}

TEST(LoginRvk, ReEnablingRowMakesOnlyLaterFailuresCount) {
  RvkUsersOnDemo t(3);
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
    EXPECT_NE(r.Count().find("FW33_DATAORA > convert(datetime, '2024-03-05 10:00:00', 120)"),
              std::string::npos);
    EXPECT_EQ(r.status, expected[i]);
  }
  EXPECT_EQ(t.Locked(uid::kBianchi), 1);
}

TEST(LoginRvk, AFailingInsertIsSkippedAndAFailingCountLocksNobody) {
  RvkUsersOnDemo t(2);
  t.Login("lbruno", 1);
  t.At(kAt0901);
  t.Login("lbruno", 1);
  t.Run("UPDATE FW07_APPUSER SET FW07_FLGREVOKE = 0 WHERE FW07_ID = 10");
  // The log refuses the insert.
  t.Run("CREATE TRIGGER NOLOG BEFORE INSERT ON FW33_RVKUSER BEGIN SELECT RAISE(ABORT, 'no'); END");
  t.At(kAt0902);
  const LoginResult r = t.Login("lbruno", 1);
  EXPECT_TRUE(r.Logged());
  EXPECT_EQ(t.LogOf(uid::kBruno, kToday).size(), 2u);
  EXPECT_EQ(r.status, RevokeVantor);
  EXPECT_EQ(t.Locked(uid::kBruno), 1);

  RvkUsersOnDemo broken;  // MaxNumTry 0 would lock at any count
  broken.Run("ALTER TABLE FW33_RVKUSER RENAME COLUMN FW33_RISULTATO TO FW33_ESITO");
  const LoginResult uncounted = broken.Login("lbruno", 1);
  EXPECT_NE(uncounted.Count(), "");
  EXPECT_EQ(uncounted.status, NoRevoke);
  EXPECT_EQ(broken.Locked(uid::kBruno), 0);
  EXPECT_TRUE(t.sink->messages.empty() && broken.sink->messages.empty());
}

// LoginRvk with the arguments a host passes.
void Login(CLSFW_RVKUSERS& rvk, const std::string& login, int16_t& risultato) {
  std::string win_user = "PC";
  std::optional<std::string> group;
  std::optional<std::string> name = login;
  rvk.LoginRvk(risultato, win_user, group, name);
}

TEST(LoginRvk, NoConnectionAtAllIsSilent) {
  const struct {
    const char* what;
    std::string connection_string;
    bool closed_host_connection;
  } cases[] = {
      {"no connection, no connection string", "", false},
      {"a connection string that cannot be opened",
       "Provider=SQLite;Data Source=/nonexistent-dir/zarvik/login.db", false},
      {"a closed connection from the host", "", true},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    auto sink = std::make_shared<RecordingMessageSink>();
    CLSFW_RVKUSERS rvk(Env{sink, std::make_shared<FixedClock>()});
    rvk.SetConnectionStringADO(c.connection_string);
    if (c.closed_host_connection) rvk.SetConnectionADO(std::make_shared<db::Connection>());
    rvk.SetMaxNumTry(1);
    for (int16_t outcome : {1, 0, 3}) {
      int16_t risultato = outcome;
      Login(rvk, "lbruno", risultato);
      EXPECT_EQ(risultato, outcome);
      EXPECT_EQ(rvk.IsRevoked(), NoRevoke);
    }
    EXPECT_EQ(rvk.ConnectionADO() != nullptr, c.closed_host_connection);
    EXPECT_FALSE(rvk.ConnectionOwned());
    EXPECT_TRUE(sink->messages.empty());
  }
}

TEST(RvkUsersConnection, OpensItsOwnAndClosesIt) {
  const testing::DemoDatabaseFile file("rvkusers_open");
  auto log = std::make_shared<db::StatementLog>();
  auto rvk = std::make_unique<CLSFW_RVKUSERS>();
  rvk->SetStatementLog(log);
  rvk->SetConnectionStringADO(file.ConnectionString());
  int16_t risultato = 0;
  Login(*rvk, "cgallo", risultato);
  EXPECT_EQ(risultato, 2);
  EXPECT_EQ(rvk->IsRevoked(), RevokeVantor);
  EXPECT_EQ(log->statements.size(), 2u);  // lookup and insert, on the new connection
  const auto own = rvk->ConnectionADO();
  ASSERT_NE(own, nullptr);
  EXPECT_TRUE(rvk->ConnectionOwned());
  EXPECT_EQ(own->State(), db::kStateOpen);
  EXPECT_EQ(own->CommandTimeout(), 100);
  EXPECT_EQ(own->ConnectionTimeout(), 100);
  EXPECT_EQ(own->IsolationLevel(), db::kXactReadCommitted);
  EXPECT_EQ(own->CursorLocation(), db::kUseClient);
  Login(*rvk, "cgallo", risultato);  // the next login reuses it
  EXPECT_EQ(rvk->ConnectionADO(), own);
  rvk->TerminateConnection();
  EXPECT_EQ(rvk->ConnectionADO(), nullptr);
  EXPECT_EQ(own->State(), db::kStateClosed);
  // A login after that opens a new one, which destruction closes.
  Login(*rvk, "cgallo", risultato);
  const auto second = rvk->ConnectionADO();
  ASSERT_NE(second, nullptr);
  EXPECT_NE(second, own);
  rvk.reset();
  EXPECT_EQ(second->State(), db::kStateClosed);
  // An own connection closed elsewhere is released quietly (Close raises
  // 3704 inside; nothing escapes).
  CLSFW_RVKUSERS closed;
  closed.SetConnectionStringADO(file.ConnectionString());
  Login(closed, "lbruno", risultato);
  ASSERT_NE(closed.ConnectionADO(), nullptr);
  closed.ConnectionADO()->Close();
  closed.TerminateConnection();
  EXPECT_EQ(closed.ConnectionADO(), nullptr);
}

TEST(RvkUsersConnection, LeavesTheHostsConnectionOpen) {
  const auto host = demo::OpenDemoDatabase(":memory:");
  {
    CLSFW_RVKUSERS rvk;
    rvk.SetConnectionStringADO("Provider=SQLite;Data Source=:memory:");  // not used
    rvk.SetConnectionADO(host);
    int16_t risultato = 0;
    Login(rvk, "cgallo", risultato);
    EXPECT_EQ(risultato, 2);
    EXPECT_FALSE(rvk.ConnectionOwned());
    rvk.TerminateConnection();
    EXPECT_EQ(rvk.ConnectionADO(), nullptr);
    rvk.SetConnectionADO(host);  // and once more, for the destructor
  }
  EXPECT_EQ(host->State(), db::kStateOpen);
}

}  // namespace
}  // namespace zarvik
