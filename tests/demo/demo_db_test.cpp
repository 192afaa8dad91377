// The demo database: splitting its SQL files into statements, creating it
// once only, and opening only a file that init-db made.
#include "demo/demo_db.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

#include "platform/platform_test_support.h"
#include "platform/vb_error.h"

namespace zarvik::demo {
namespace {

TEST(SplitSqlScript, StatementsEndAtASemicolonOutsideLiteralsAndComments) {
  const std::vector<std::pair<std::string, std::vector<std::string>>> cases = {
      {"SELECT 1; SELECT 2", {"SELECT 1", "SELECT 2"}},
      {"INSERT INTO T VALUES ('it''s; ok'); SELECT '--x';",
       {"INSERT INTO T VALUES ('it''s; ok')", "SELECT '--x'"}},
      {"-- the user's table; see below\nCREATE TABLE T (A INT);", {"CREATE TABLE T (A INT)"}},
      {"INSERT INTO T VALUES\n  -- first row\n  (1);", {"INSERT INTO T VALUES\n  \n  (1)"}},
      {"SELECT/* a;b */1;", {"SELECT 1"}},
      {"SELECT \"a;b\", [c;d] FROM T; SELECT 4", {"SELECT \"a;b\", [c;d] FROM T", "SELECT 4"}},
      {";;\n  -- nothing\n;SELECT 5;  \n", {"SELECT 5"}},
      {"", {}},
      {"SELECT 'abc;", {"SELECT 'abc;"}},  // an open literal runs to the end
  };
  for (const auto& [script, statements] : cases) EXPECT_EQ(SplitSqlScript(script), statements);
}

TEST(DemoDatabase, CreatedOnceAndOpenedOnlyFromAFileInitDbMade) {
  auto memory = OpenDemoDatabase(":memory:");
  EXPECT_EQ(memory->CursorLocation(), db::kUseClient);
  // A second creation fails naming the file.
  const VbError again = test::CaughtError([&] { CreateDemoDatabase(*memory); });
  EXPECT_EQ(again.Number(), vberr::kProviderError);
  EXPECT_NE(again.Description().find("demo/schema.sql"), std::string::npos);

  const std::string path = ::testing::TempDir() + "zarvik_demo_" + std::to_string(getpid());
  std::remove(path.c_str());
  EXPECT_NE(test::CaughtError([&] { OpenDemoDatabase(path); }).Description().find("zarvik init-db"),
            std::string::npos);
  EXPECT_FALSE(std::ifstream(path).good());  // not created by the attempt
  InitDemoDatabase(path);
  OpenDemoDatabase(path)->Execute("UPDATE CG18_DITTE SET CG18_RAGSOC = 'x' WHERE CG18_DITTA = 2");
  EXPECT_EQ(test::ErrorOf([&] { InitDemoDatabase(path); }), vberr::kInvalidProcedureCall);
  EXPECT_EQ(QueryRows(*OpenDemoDatabase(path),
                      "SELECT CG18_RAGSOC FROM CG18_DITTE WHERE CG18_DITTA = 2")[0][0]
                .ToString(),
            "x");
  std::ofstream(path, std::ios::trunc).close();  // an empty file is no demo database
  EXPECT_NE(test::CaughtError([&] { OpenDemoDatabase(path); }).Description().find("no tables"),
            std::string::npos);
  std::remove(path.c_str());
}

}  // namespace
}  // namespace zarvik::demo
