// CLSFW_RVKUSERS's own connection: opened from ConnectionStringADO at the
// first login, closed only when it is its own.
#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>

#include "db/connection.h"
#include "db/tracing.h"
#include "demo/demo_db.h"
#include "frame/frame_test_support.h"
#include "rvkusers/clsfw_rvkusers.h"

namespace zarvik {
namespace {

using testing::DemoDatabaseFile;

void Login(CLSFW_RVKUSERS& rvk, const std::string& login, int16_t& risultato) {
  std::string win_user = "PC";
  std::optional<std::string> group;
  std::optional<std::string> name = login;
  rvk.LoginRvk(risultato, win_user, group, name);
}

TEST(RvkUsersConnection, OpensItsOwnAndClosesIt) {
  const DemoDatabaseFile file("rvkusers_open");
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
  EXPECT_EQ(own->ConnectionString(), file.ConnectionString());
  EXPECT_EQ(own->CommandTimeout(), 100);
  EXPECT_EQ(own->ConnectionTimeout(), 100);
  EXPECT_EQ(own->IsolationLevel(), db::kXactReadCommitted);
  EXPECT_EQ(own->CursorLocation(), db::kUseClient);

  // The next login reuses it.
  Login(*rvk, "cgallo", risultato);
  EXPECT_EQ(rvk->ConnectionADO(), own);

  rvk->TerminateConnection();
  EXPECT_EQ(rvk->ConnectionADO(), nullptr);
  EXPECT_EQ(own->State(), db::kStateClosed);
  rvk->TerminateConnection();  // nothing left to do

  // A login after that opens a new one, which termination closes.
  Login(*rvk, "cgallo", risultato);
  const auto second = rvk->ConnectionADO();
  ASSERT_NE(second, nullptr);
  EXPECT_NE(second, own);
  rvk.reset();
  EXPECT_EQ(second->State(), db::kStateClosed);
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
    EXPECT_EQ(rvk.ConnectionADO(), host);
    rvk.TerminateConnection();
    EXPECT_EQ(rvk.ConnectionADO(), nullptr);
    EXPECT_EQ(host->State(), db::kStateOpen);
    rvk.SetConnectionADO(host);
  }
  EXPECT_EQ(host->State(), db::kStateOpen);
}

TEST(RvkUsersConnection, AnOwnConnectionClosedElsewhereIsReleasedQuietly) {
  const DemoDatabaseFile file("rvkusers_closed");
  CLSFW_RVKUSERS rvk;
  rvk.SetConnectionStringADO(file.ConnectionString());
  int16_t risultato = 0;
  Login(rvk, "lbruno", risultato);
  ASSERT_NE(rvk.ConnectionADO(), nullptr);
  rvk.ConnectionADO()->Close();
  rvk.TerminateConnection();  // Close raises 3704 inside; nothing escapes
  EXPECT_EQ(rvk.ConnectionADO(), nullptr);
}

}  // namespace
}  // namespace zarvik
