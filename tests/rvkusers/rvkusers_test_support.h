// Shared set-up of the login lock-out tests: a CLSFW_RVKUSERS on a private
// in-memory demo database whose statements are logged, with the date of the
// component's clock and the time the database's [dbo].[KVL_GETDATE]()
// answers both fixed by the test.
#ifndef ZARVIK_TESTS_RVKUSERS_RVKUSERS_TEST_SUPPORT_H_
#define ZARVIK_TESTS_RVKUSERS_RVKUSERS_TEST_SUPPORT_H_

#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "db/connection.h"
#include "db/tracing.h"
#include "demo/demo_db.h"
#include "demo/tour.h"
#include "platform/env.h"
#include "platform/message_sink.h"
#include "rvkusers/clsfw_rvkusers.h"

namespace zarvik::testing {

// A clock that says what the test tells it.
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
    char text[16];
    std::snprintf(text, sizeof text, "%04d%02d%02d", year, month, day);
    return text;
  }
  double OleDate() const {
    return OleDateFromYmd(year, month, day) + (hour * 3600 + minute * 60 + second) / 86400.0;
  }
};

// What one LoginRvk call did.
struct LoginResult {
  int16_t risultato;              // as the call left it
  EnumRevokeStatus status;        // IsRevoked afterwards
  std::vector<std::string> sent;  // statements the call sent, in order
};

class RvkUsersOnDemo {
 public:
  RvkUsersOnDemo() {
    connection->SetStatementLog(log);
    rvk.SetConnectionADO(connection);
  }

  // The component's clock and the server's clock both at `moment`.
  void At(const Moment& moment) {
    clock->now = moment.OleDate();
    Run("UPDATE ZARVIK_ROUTINES SET BODY = 'SELECT ''" + moment.Text() +
        "''' WHERE NAME = 'KVL_GETDATE'");
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

  // A re-enabling row (action 10) as the administration writes it.
  void ReEnable(int32_t user_id, const Moment& moment) {
    Run("INSERT INTO FW33_RVKUSER (FW33_ID_FW07, FW33_DATA, FW33_AZIONE, FW33_RISULTATO, "
        "FW33_WINUSER, FW33_DATAORA) VALUES (" +
        std::to_string(user_id) + ", '" + moment.DateLiteral() + "', 10, 0, 'ADMIN', '" +
        moment.Text() + "')");
  }

  int32_t Locked(int32_t user_id) {
    return Rows("SELECT FW07_FLGREVOKE FROM FW07_APPUSER WHERE FW07_ID = " +
                std::to_string(user_id))
        .at(0)
        .at(0)
        .ToLong();
  }
  int32_t LogRowCount() { return Rows("SELECT COUNT(*) FROM FW33_RVKUSER").at(0).at(0).ToLong(); }
  // The log rows of a user written on a day: DATA, AZIONE, RISULTATO,
  // WINUSER, DATAORA, in time order.
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

}  // namespace zarvik::testing

#endif  // ZARVIK_TESTS_RVKUSERS_RVKUSERS_TEST_SUPPORT_H_
