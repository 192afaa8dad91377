#include <sqlite3.h>

#include "db/sqlite_statement_cache.h"
#include "db_test_support.h"

namespace zarvik::db {
namespace {

class StatementCacheTest : public ::testing::Test {
 protected:
  static constexpr size_t kBound = 300 * 1024;

  StatementCacheTest() {
    sqlite3* raw = nullptr;
    sqlite3_open(":memory:", &raw);
    db_.reset(raw);
    sqlite3_exec(raw, "CREATE TABLE T (X); INSERT INTO T VALUES (1), (2)", nullptr, nullptr,
                 nullptr);
    cache_ = std::make_unique<SqliteStatementCache>(raw, kBound);
  }
  SqliteStatementCache::Lease Prepare(const std::string& text, size_t offset = 0) {
    int rc = SQLITE_OK;
    auto lease = cache_->Prepare(text, offset, rc);
    EXPECT_EQ(rc, SQLITE_OK) << text;
    return lease;
  }

  std::unique_ptr<sqlite3, decltype(&sqlite3_close_v2)> db_{nullptr, sqlite3_close_v2};
  std::unique_ptr<SqliteStatementCache> cache_;
};

TEST_F(StatementCacheTest, AKeptStatementComesBackResetAndUnbound) {
  const std::string text = "SELECT X FROM T WHERE X >= ?1 ORDER BY X; -- the first rows";
  sqlite3_stmt* first = nullptr;
  {
    const auto lease = Prepare(text);
    first = lease.get();
    EXPECT_EQ(lease.tail(), text.size());
    sqlite3_bind_int(first, 1, 2);
    ASSERT_EQ(sqlite3_step(first), SQLITE_ROW);  // left in the middle of its rows
  }
  EXPECT_EQ(cache_->Size(), 1u);
  const auto again = Prepare(text);
  EXPECT_EQ(again.get(), first);
  EXPECT_EQ(cache_->Size(), 0u);                      // lent out
  EXPECT_EQ(sqlite3_step(again.get()), SQLITE_DONE);  // NULL bound: no row
}

TEST_F(StatementCacheTest, ScriptsAndSchemaChangesAreNotKept) {
  const std::string script = "SELECT 1; SELECT 2";
  const auto first = Prepare(script);
  EXPECT_EQ(script.substr(first.tail()), " SELECT 2");
  EXPECT_NE(Prepare(script, first.tail()).get(), nullptr);
  Prepare("SELECT X FROM T");
  EXPECT_EQ(cache_->Size(), 1u);  // the script's statements were finalised
  {
    const auto create = Prepare("CREATE TABLE U (Y)");
    EXPECT_EQ(sqlite3_step(create.get()), SQLITE_DONE);
  }
  EXPECT_EQ(cache_->Size(), 0u);
}

TEST_F(StatementCacheTest, TheLeastRecentlyUsedGoFirstBeyondTheBound) {
  // About 84 KB each (the text, its copy, the literal, the column name): three fit.
  const std::string pad(20 * 1024, 'x');
  auto text = [&](int i) { return "SELECT '" + pad + "', " + std::to_string(i); };
  for (int i : {0, 1, 2, 0, 3}) Prepare(text(i));  // 1 is then the least recently used
  EXPECT_EQ(cache_->Size(), 3u);
  EXPECT_LE(cache_->Bytes(), kBound);
  const auto kept = {Prepare(text(0)), Prepare(text(2)), Prepare(text(3))};
  EXPECT_EQ(cache_->Size(), 0u);  // all three were there to lend
}

}  // namespace
}  // namespace zarvik::db
