// CLSFW_RVKUSERS on the demo database: LoginRvk and FormatSqlValue.
#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "demo/demo_db.h"
#include "frame/frame_test_support.h"
#include "frame/host_object.h"
#include "rvkusers/clsfw_rvkusers.h"

namespace zarvik {
namespace {

namespace uid = demo::user_id;
using Strings = std::vector<std::string>;

class FixedClock : public Clock {
 public:
  double Now() const override { return now; }
  double now = 0;
};

// A moment of 5 March 2024 (BRUNO's failures in the demo data are of the 4th).
struct Moment {
  int hour, minute, second = 0, day = 5;
  std::string Text() const {  // as FW33_DATAORA stores it
    char text[32];
    std::snprintf(text, sizeof text, "2024-03-%02d %02d:%02d:%02d.000", day, hour, minute, second);
    return text;
  }
};

struct LoginResult {
  int16_t risultato;  // as the call left it
  EnumRevokeStatus status;
  Strings sent;
  // The one statement sent that starts with `head`, or "" (none or several).
  std::string One(const std::string& head) const {
    std::string found;
    int n = 0;
    for (const std::string& s : sent) n += s.rfind(head, 0) == 0 ? (found = s, 1) : 0;
    return n == 1 ? found : "";
  }
  std::string Count() const { return One("SELECT COUNT(FW33_ID_FW07) AS NUMPROVE FROM "); }
  bool Logged() const { return !One(" INSERT INTO FW33_RVKUSER ").empty(); }
};

// On a private demo database, statements logged, both clocks fixed.
class RvkUsersOnDemo {
 public:
  explicit RvkUsersOnDemo(int16_t max_num_try = 0) {
    connection->SetStatementLog(log);
    rvk.SetConnectionADO(connection);
    if (max_num_try != 0) rvk.SetMaxNumTry(max_num_try);  // 0: the class's own default
    At({9, 0});
  }
  void At(const Moment& m) {
    clock->now = OleDateFromYmd(2024, 3, m.day) + (m.hour * 60 + m.minute) / 1440.0;
    Run("UPDATE ZARVIK_ROUTINES SET ROUTINE_BODY = 'SELECT ''" + m.Text() +
        "''' WHERE ROUTINE_NAME = 'KVL_GETDATE'");
  }
  LoginResult Login(std::optional<std::string> login, int16_t outcome,
                    std::string win_user = "PC-TEST") {
    std::optional<std::string> group = std::string("IGNORED");
    rvk.LoginRvk(outcome, win_user, group, login);
    LoginResult result{outcome, rvk.IsRevoked(), log->statements};
    log->statements.clear();
    return result;
  }
  void Run(const std::string& sql) {
    connection->Execute(sql, db::kCmdText);
    log->statements.clear();
  }
  // The first column of every row, blank-separated.
  std::string Rows(const std::string& sql) {
    std::string text;
    for (const auto& row : demo::QueryRows(*connection, sql)) {
      text += (text.empty() ? "" : " ") + row.at(0).ConcatText();
    }
    log->statements.clear();
    return text;
  }
  void ReEnable(int32_t user_id, const Moment& m) {  // as the administration writes it
    Run("INSERT INTO FW33_RVKUSER (FW33_ID_FW07, FW33_DATA, FW33_AZIONE, FW33_RISULTATO, "
        "FW33_WINUSER, FW33_DATAORA) VALUES (" +
        std::to_string(user_id) + ", '202403" + m.Text().substr(8, 2) + "', 10, 0, 'ADMIN', '" +
        m.Text() + "')");
  }
  std::string Locked(int32_t user_id) {
    return Rows("SELECT FW07_FLGREVOKE FROM FW07_APPUSER WHERE FW07_ID = " +
                std::to_string(user_id));
  }
  // RISULTATO of each of today's log rows of a user, in time order.
  std::string OutcomesToday(int32_t user_id) {
    return Rows(
        "SELECT FW33_RISULTATO FROM FW33_RVKUSER WHERE FW33_DATA = '20240305' AND "
        "FW33_ID_FW07 = " +
        std::to_string(user_id) + " ORDER BY FW33_DATAORA");
  }

  std::shared_ptr<RecordingMessageSink> sink = std::make_shared<RecordingMessageSink>();
  std::shared_ptr<FixedClock> clock = std::make_shared<FixedClock>();
  std::shared_ptr<db::Connection> connection = demo::OpenDemoDatabase(":memory:");
  std::shared_ptr<db::StatementLog> log = std::make_shared<db::StatementLog>();
  CLSFW_RVKUSERS rvk{Env{sink, clock}};
};

// The lookup LoginRvk sends for a login name.
std::string Lookup(const std::string& login) {
  return "SELECT FW07_ID, FW07_FLGREVOKE FROM FW07_APPUSER  WHERE FW07_USERNAME = '" + login +
         "' AND FW07_FLGATTIVO = 1";
}

TEST(LoginRvk, TextsOfALockingAttempt) {
  RvkUsersOnDemo t(1);
  EXPECT_EQ(t.Login("lbruno", 1, "PC-BRUNO").sent,
            (Strings{
                "SELECT FW07_ID, FW07_FLGREVOKE FROM FW07_APPUSER  WHERE FW07_USERNAME = 'lbruno' "
                "AND FW07_FLGATTIVO = 1",
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
}

TEST(LoginRvk, NothingIsWrittenForAnUnknownOrUnsafeLoginOutcome3OrAnIdAbove32767) {
  RvkUsersOnDemo t(1);
  const std::pair<std::optional<std::string>, bool> cases[] = {
      // login name, looked up (a name that would end the literal is never sent)
      {"nobody", true},
      {"cneri", true},  // inactive
      {std::nullopt, true},
      {"x; DELETE FROM FW07_APPUSER --", true},
      {"' OR '1'='1", false},
      {"lbruno'--", false},
      {std::string("lbruno\0' OR 1 = 1 --", 20), false}};
  for (const auto& [login, looked_up] : cases) {
    // GALLO is locked: even outcome 3 is logged (as 2), and not counted; a status to overwrite.
    const LoginResult gallo = t.Login("cgallo", 3);
    ASSERT_EQ(gallo.risultato * 10 + gallo.status, 20 + RevokeVantor);
    EXPECT_EQ(gallo.sent.size(), 2u);
    const LoginResult r = t.Login(login, 1);
    EXPECT_EQ(r.risultato * 10 + r.status, 10 + NoRevoke) << login.value_or("<omitted>");
    EXPECT_EQ(r.sent, looked_up ? Strings{Lookup(login.value_or(""))} : Strings{});
  }
  // Outcome 3 (not logged): the lookup only, even with MaxNumTry 0.
  RvkUsersOnDemo fresh;
  const LoginResult r = fresh.Login("lbruno", 3);
  EXPECT_EQ(r.risultato * 10 + r.status, 30 + NoRevoke);
  EXPECT_EQ(r.sent, Strings{Lookup("lbruno")});
  // An id above 32767 is not logged; the count still runs (and finds nothing).
  t.rvk.SetMaxNumTry(3);
  const LoginResult high = t.Login("esterno", 1);
  EXPECT_FALSE(high.Logged());
  EXPECT_NE(high.Count().find("WHERE FW33_ID_FW07 = 40000 "), std::string::npos);
  EXPECT_EQ(high.status, NoRevoke);
  EXPECT_EQ(t.Locked(uid::kEsterno) + fresh.Locked(uid::kBruno), "00");
  // The win user is stored as it stands, nothing deleted.
  const std::string win_user = "PC'; DELETE FROM FW07_APPUSER; --";
  t.Login("lbruno", 0, win_user);
  EXPECT_EQ(t.Rows("SELECT FW33_WINUSER FROM FW33_RVKUSER WHERE rowid = (SELECT MAX(rowid) FROM "
                   "FW33_RVKUSER)"),
            win_user);
  EXPECT_EQ(t.Rows("SELECT COUNT(*) FROM FW07_APPUSER"), "9");
}

TEST(LoginRvk, PrivilegedLoginIsLoggedButNeverCounted) {
  // The privileged test compares the login name with "ZentAd" exactly.
  for (const std::string login : {"ZentAd", "zentad"}) {
    const bool counted = login == "zentad";
    RvkUsersOnDemo t(1);
    t.Run("UPDATE FW07_APPUSER SET FW07_USERNAME = '" + login + "' WHERE FW07_ID = 1");
    const LoginResult first = t.Login(login, 1);
    t.At({9, 1});
    const LoginResult second = t.Login(login, 1);
    EXPECT_TRUE(first.Logged() && second.Logged()) << login;
    EXPECT_EQ(!first.Count().empty(), counted) << login;
    EXPECT_EQ(first.status, counted ? RevokeVantor : NoRevoke) << login;
    EXPECT_EQ(second.risultato, counted ? 2 : 1) << login;  // refused once locked
    EXPECT_EQ(t.Locked(uid::kZentAd), counted ? "1" : "0") << login;
  }
}

TEST(LoginRvk, FailuresOfTheDayLockAtMaxNumTryAndOnlyOutcome1IsCounted) {
  RvkUsersOnDemo t(3);
  // BRUNO's two failures of the 4th do not count on the 5th; outcome 0 sends no count.
  const std::tuple<int16_t, bool, int16_t, EnumRevokeStatus> steps[] = {
      // outcome, counted, Risultato after the call, status
      {1, true, 1, NoRevoke},
      {0, false, 0, NoRevoke},
      {5, true, 5, NoRevoke},
      {1, true, 1, NoRevoke},
      {-1, true, -1, NoRevoke},
      {1, true, 1, RevokeVantor},   // the locking attempt keeps its outcome
      {0, false, 2, RevokeVantor},  // a later success is refused
  };
  int minute = 0;
  for (const auto& [outcome, counted, risultato, status] : steps) {
    SCOPED_TRACE(minute);
    t.At({9, minute++});
    const LoginResult r = t.Login("lbruno", outcome);
    EXPECT_EQ(!r.Count().empty(), counted);
    EXPECT_EQ(r.risultato * 10 + r.status, risultato * 10 + status);
    EXPECT_EQ(t.Locked(uid::kBruno), status == RevokeVantor ? "1" : "0");
  }
  EXPECT_EQ(t.OutcomesToday(uid::kBruno), "1 0 5 1 -1 1 2");
  // MaxNumTry starts at 0: even an outcome that is not a failure locks.
  EXPECT_EQ(RvkUsersOnDemo().Login("lbianchi", 4).status, RevokeVantor);
}

TEST(LoginRvk, OnlyFailuresAfterTheLatestReEnablingOfTheDayCount) {
  RvkUsersOnDemo t(3);
  t.Login("lbianchi", 1);
  t.At({9, 10});
  t.Login("lbianchi", 1);
  t.ReEnable(uid::kBianchi, {23, 0, 0, 4});
  t.ReEnable(uid::kBianchi, {8, 0});
  t.ReEnable(uid::kBianchi, {10, 0, 30});
  const EnumRevokeStatus expected[] = {NoRevoke, NoRevoke, RevokeVantor};
  for (int i = 0; i < 3; ++i) {
    t.At({10, 5 + i});
    const LoginResult r = t.Login("lbianchi", 1);
    EXPECT_EQ(r.Count(),
              "SELECT COUNT(FW33_ID_FW07) AS NUMPROVE FROM FW33_RVKUSER  WHERE FW33_ID_FW07 = 6  "
              "AND FW33_DATAORA > convert(datetime, '2024-03-05 10:00:30', 120) AND FW33_AZIONE = "
              "0 AND FW33_RISULTATO = 1");
    EXPECT_EQ(r.status, expected[i]) << i;
  }
}

TEST(LoginRvk, AFailingInsertIsSkippedAndAFailingCountLocksNobody) {
  RvkUsersOnDemo t(2);
  t.Login("lbruno", 1);
  t.At({9, 1});
  t.Login("lbruno", 1);
  t.Run("UPDATE FW07_APPUSER SET FW07_FLGREVOKE = 0 WHERE FW07_ID = 10");
  // The log refuses the insert.
  t.Run("CREATE TRIGGER NOLOG BEFORE INSERT ON FW33_RVKUSER BEGIN SELECT RAISE(ABORT, 'no'); END");
  t.At({9, 2});
  const LoginResult r = t.Login("lbruno", 1);
  EXPECT_TRUE(r.Logged());
  EXPECT_EQ(t.OutcomesToday(uid::kBruno), "1 1");
  EXPECT_EQ(r.status, RevokeVantor);
  EXPECT_EQ(t.Locked(uid::kBruno), "1");
  RvkUsersOnDemo broken;  // MaxNumTry 0 would lock at any count
  broken.Run("ALTER TABLE FW33_RVKUSER RENAME COLUMN FW33_RISULTATO TO FW33_ESITO");
  const LoginResult uncounted = broken.Login("lbruno", 1);
  EXPECT_NE(uncounted.Count(), "");
  EXPECT_EQ(uncounted.status, NoRevoke);
  EXPECT_EQ(broken.Locked(uid::kBruno), "0");
  EXPECT_TRUE(t.sink->messages.empty() && broken.sink->messages.empty());
}

// LoginRvk with the arguments a host passes; Risultato as the call left it.
int16_t Login(CLSFW_RVKUSERS& rvk, const std::string& login, int16_t risultato = 0) {
  std::string win_user = "PC";
  std::optional<std::string> group, name = login;
  rvk.LoginRvk(risultato, win_user, group, name);
  return risultato;
}

TEST(LoginRvk, NoConnectionAtAllIsSilent) {
  const std::pair<std::string, bool> cases[] = {
      // connection string, closed host connection
      {"", false},
      {"Provider=SQLite;Data Source=/nonexistent-dir/zarvik/login.db", false},
      {"", true}};
  for (const auto& [connection_string, closed_host_connection] : cases) {
    testing::RecordingEnv rec;
    CLSFW_RVKUSERS rvk(rec.env);
    rvk.SetConnectionStringADO(connection_string);
    if (closed_host_connection) rvk.SetConnectionADO(std::make_shared<db::Connection>());
    rvk.SetMaxNumTry(1);
    for (int16_t outcome : {1, 0, 3}) {
      EXPECT_EQ(Login(rvk, "lbruno", outcome), outcome);
      EXPECT_EQ(rvk.IsRevoked(), NoRevoke);
    }
    EXPECT_EQ(rvk.ConnectionADO() != nullptr, closed_host_connection);
    EXPECT_FALSE(rvk.ConnectionOwned());
    EXPECT_TRUE(rec.sink->messages.empty());
  }
}

TEST(RvkUsersConnection, OpensItsOwnClosesItAndLeavesTheHostsOpen) {
  const testing::DemoDatabaseFile file("rvkusers_open");
  auto log = std::make_shared<db::StatementLog>();
  auto rvk = std::make_unique<CLSFW_RVKUSERS>();
  rvk->SetStatementLog(log);
  rvk->SetConnectionStringADO(file.ConnectionString());
  EXPECT_EQ(Login(*rvk, "cgallo"), 2);
  EXPECT_EQ(log->statements.size(), 2u);  // lookup and insert, on the new connection
  const auto own = rvk->ConnectionADO();
  ASSERT_TRUE(own && rvk->ConnectionOwned());
  Login(*rvk, "cgallo");  // the next login reuses it
  EXPECT_EQ(rvk->ConnectionADO(), own);
  rvk->TerminateConnection();
  EXPECT_EQ(rvk->ConnectionADO(), nullptr);
  EXPECT_EQ(own->State(), db::kStateClosed);
  // A login after that opens a new one, which destruction closes.
  Login(*rvk, "cgallo");
  const auto second = rvk->ConnectionADO();
  ASSERT_TRUE(second && second != own);
  rvk.reset();
  EXPECT_EQ(second->State(), db::kStateClosed);
  // An own connection closed elsewhere is released quietly.
  CLSFW_RVKUSERS closed;
  closed.SetConnectionStringADO(file.ConnectionString());
  Login(closed, "lbruno");
  closed.ConnectionADO()->Close();
  closed.TerminateConnection();
  EXPECT_EQ(closed.ConnectionADO(), nullptr);
  // The host's connection is used and never closed.
  const auto host = demo::OpenDemoDatabase(":memory:");
  {
    CLSFW_RVKUSERS rvk_on_host;
    rvk_on_host.SetConnectionStringADO("Provider=SQLite;Data Source=:memory:");  // not used
    rvk_on_host.SetConnectionADO(host);
    EXPECT_EQ(Login(rvk_on_host, "cgallo"), 2);
    EXPECT_FALSE(rvk_on_host.ConnectionOwned());
    rvk_on_host.TerminateConnection();
    EXPECT_EQ(rvk_on_host.ConnectionADO(), nullptr);
    rvk_on_host.SetConnectionADO(host);  // and once more, for the destructor
  }
  EXPECT_EQ(host->State(), db::kStateOpen);
}

TEST(FormatSqlValue, ValuesThatAreNotEmpty) {
  const Variant object(ObjectRef(std::make_shared<HostObject>()));
  const std::tuple<Variant, int16_t, const char*> cases[] = {
      // "": the value is refused
      {Variant("O'Hara"), 0, "'O'Hara'"},  // quotes are not doubled
      {Variant(" "), 0, "' '"},            // blank is not empty
      {object, 0, ""},
      {Variant("abc"), 4, ""},  // no such kind
      // Numbers: invariant point, no grouping, no exponent, 15 digits.
      {Variant("2.5"), 1, "2.5"},
      {Variant("abc"), 1, ""},
      {Variant(1234567.25), 2, "1234567.25"},
      {Variant(int16_t{-12}), 2, "-12"},
      {Variant(-0.0), 2, "0"},
      {Variant(1e20), 2, "100000000000000000000"},
      {Variant(1.5e-7), 2, "0.00000015"},
      {Variant(123456789012345678.0), 2, "123456789012346000"},
      {Variant::Boolean(true), 2, "-1"},
      {Variant("  3.50 "), 2, "3.5"},
      {Variant("1.234,5"), 2, ""},
      {Variant::Date(45356), 2, ""},
      {Variant::Date(45356), 1, "45356"},
      // Dates: the day as eight digits.
      {Variant::Date(OleDateFromYmd(2024, 12, 31) + 23.0 / 24 + 59.0 / 1440), 3, "'20241231'"},
      {Variant::Date(0), 3, "'18991230'"},
      {Variant::Date(-1.25), 3, "'18991229'"},  // before day 0, with a time
      {Variant::Date(OleDateFromYmd(100, 1, 1)), 3, "'01000101'"},
      {Variant::Date(OleDateFromYmd(9999, 12, 31)), 3, "'99991231'"},
      {Variant::Date(OleDateFromYmd(10000, 1, 1)), 3, ""},
      {Variant("2024-03-05 17:45:00"), 3, "'20240305'"},
      {Variant("05/03/2024x"), 3, ""},
      {Variant(int32_t{45356}), 3, ""},  // a number is no date
  };
  testing::RecordingEnv rec;
  CLSFW_RVKUSERS rvk{rec.env};
  for (const auto& [value, tipo, literal] : cases) {
    for (bool ammetti_null : {false, true}) {
      EXPECT_EQ(rvk.FormatSqlValue(value, tipo, ammetti_null), literal)
          << "tipo " << tipo << " " << value.ConcatText();
    }
  }
  EXPECT_TRUE(rec.sink->messages.empty());
}

TEST(FormatSqlValue, EmptyValues) {
  const std::string numeric =
      "Si sta tentando di assegnare il valore (numerico) null a un campo che non ammette "
      "null.||0\n";
  const std::string date =
      "Si sta tentando di assegnare il valore (data) null a un campo che non ammette null.||0\n";
  const std::tuple<int16_t, bool, const char*, std::string> cases[] = {
      // tipo, null allowed, literal, the boxes shown
      {0, true, "null", ""},   {3, true, "null", ""}, {0, false, "''", ""}, {1, false, "", numeric},
      {2, false, "", numeric}, {3, false, "", date},  {9, false, "", ""},
  };
  for (const Variant& empty : {Variant(), Variant::Null(), Variant("")}) {
    for (const auto& [tipo, ammetti_null, literal, boxes] : cases) {
      SCOPED_TRACE(std::to_string(tipo) + (ammetti_null ? " null allowed" : ""));
      testing::RecordingEnv rec;
      CLSFW_RVKUSERS rvk{rec.env};
      EXPECT_EQ(rvk.FormatSqlValue(empty, tipo, ammetti_null), literal);
      EXPECT_EQ(testing::BoxLines(*rec.sink), boxes);
    }
  }
}

}  // namespace
}  // namespace zarvik
