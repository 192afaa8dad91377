// LoginRvk with login names that would end the SQL literal: nothing is sent,
// no row changes and the call answers as for an unknown login. The Windows
// user name is written with its quotes doubled.
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "db/connection.h"
#include "db/tracing.h"
#include "demo/demo_db.h"
#include "platform/env.h"
#include "platform/message_sink.h"
#include "rvkusers/clsfw_rvkusers.h"

namespace zarvik {
namespace {

struct HostileLogin : ::testing::Test {
  HostileLogin() {
    db->SetStatementLog(log);
    rvk.SetConnectionADO(db);
    rvk.SetMaxNumTry(1);
  }

  // Every row of the users table and of the login log, as one text.
  std::string Rows() {
    std::string text;
    for (const char* table : {"FW07_APPUSER", "FW33_RVKUSER"}) {
      for (const auto& row : demo::QueryRows(*db, std::string("SELECT * FROM ") + table)) {
        for (const Variant& value : row) text += value.ConcatText() + "|";
        text += "\n";
      }
    }
    return text;
  }

  // The statements one login sent; `risultato` is left as the call left it.
  std::vector<std::string> Login(const std::string& name, int16_t& risultato,
                                 std::string win_user = "PC") {
    log->statements.clear();
    std::optional<std::string> group;
    std::optional<std::string> login = name;
    rvk.LoginRvk(risultato, win_user, group, login);
    return log->statements;
  }

  std::shared_ptr<RecordingMessageSink> sink = std::make_shared<RecordingMessageSink>();
  std::shared_ptr<db::Connection> db = demo::OpenDemoDatabase(":memory:");
  std::shared_ptr<db::StatementLog> log = std::make_shared<db::StatementLog>();
  CLSFW_RVKUSERS rvk{Env{sink, std::make_shared<SystemClock>()}};
};

TEST_F(HostileLogin, ANameThatWouldEndTheLiteralIsNeverSent) {
  const std::vector<std::string> names = {
      "nobody' OR FW07_USERNAME = 'zentad' OR FW07_USERNAME = 'lbruno",
      "' OR '1'='1",
      "lbruno'--",
      "'; UPDATE FW07_APPUSER SET FW07_FLGREVOKE = 1; --",
      "'; DROP TABLE FW07_APPUSER; --",
      "'; DELETE FROM FW33_RVKUSER; --",
      "o'neil",
      std::string("lbruno\0' OR 1 = 1 --", 20),
  };
  for (const std::string& name : names) {
    SCOPED_TRACE(name);
    int16_t risultato = 0;
    Login("cgallo", risultato);  // a locked user: IsRevoked is RevokeVantor now
    ASSERT_EQ(rvk.IsRevoked(), RevokeVantor);
    const std::string before = Rows();
    risultato = 1;
    EXPECT_EQ(Login(name, risultato), std::vector<std::string>{});
    EXPECT_EQ(risultato, 1);
    EXPECT_EQ(rvk.IsRevoked(), NoRevoke);
    EXPECT_EQ(Rows(), before);
  }
  EXPECT_TRUE(sink->messages.empty());
}

TEST_F(HostileLogin, OtherNamesAreSentAsTheyStandAndWinUserHasItsQuotesDoubled) {
  const std::string before = Rows();
  int16_t risultato = 1;
  EXPECT_EQ(Login("x; DELETE FROM FW07_APPUSER --", risultato),
            std::vector<std::string>{"SELECT FW07_ID, FW07_FLGREVOKE FROM FW07_APPUSER  WHERE "
                                     "FW07_USERNAME = 'x; DELETE FROM FW07_APPUSER --' AND "
                                     "FW07_FLGATTIVO = 1"});
  EXPECT_EQ(Rows(), before);

  const std::string win_user = "PC'; DELETE FROM FW07_APPUSER; --";
  risultato = 0;
  const std::vector<std::string> sent = Login("lbruno", risultato, win_user);
  ASSERT_EQ(sent.size(), 2u);
  EXPECT_NE(sent[1].find(",'PC''; DELETE FROM FW07_APPUSER; --', [dbo].[KVL_GETDATE]()) "),
            std::string::npos)
      << sent[1];
  const auto stored = demo::QueryRows(*db,
                                      "SELECT FW33_WINUSER, FW33_ID_FW07 FROM FW33_RVKUSER WHERE "
                                      "rowid = (SELECT MAX(rowid) FROM FW33_RVKUSER)");
  EXPECT_EQ(stored.at(0).at(0).ToString(), win_user);
  EXPECT_EQ(stored.at(0).at(1).ToLong(), 10);
  EXPECT_EQ(demo::QueryRows(*db, "SELECT * FROM FW07_APPUSER").size(), 9u);
}

}  // namespace
}  // namespace zarvik
