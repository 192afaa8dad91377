// Splitting the demo SQL files into statements.
#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

#include "demo/demo_db.h"

namespace zarvik::demo {
namespace {

struct SplitCase {
  const char* what;
  std::string script;
  std::vector<std::string> statements;
};

void PrintTo(const SplitCase& c, std::ostream* out) { *out << c.what; }

class SplitSqlScriptTest : public ::testing::TestWithParam<SplitCase> {};

TEST_P(SplitSqlScriptTest, Splits) {
  EXPECT_EQ(SplitSqlScript(GetParam().script), GetParam().statements) << GetParam().what;
}

INSTANTIATE_TEST_SUITE_P(
    Cases, SplitSqlScriptTest,
    ::testing::Values(
        SplitCase{
            "two statements, the last without ';'", "SELECT 1; SELECT 2", {"SELECT 1", "SELECT 2"}},
        SplitCase{"';' inside a literal",
                  "INSERT INTO T VALUES ('a;b'); SELECT 1;",
                  {"INSERT INTO T VALUES ('a;b')", "SELECT 1"}},
        SplitCase{"doubled quote inside a literal",
                  "INSERT INTO T VALUES ('it''s; ok'); SELECT 2",
                  {"INSERT INTO T VALUES ('it''s; ok')", "SELECT 2"}},
        SplitCase{"line comment with an apostrophe and a ';'",
                  "-- the user's table; see below\nCREATE TABLE T (A INT);",
                  {"CREATE TABLE T (A INT)"}},
        SplitCase{"comment inside a statement keeps the line break",
                  "INSERT INTO T VALUES\n  -- first row\n  (1);",
                  {"INSERT INTO T VALUES\n  \n  (1)"}},
        SplitCase{"block comment becomes a blank", "SELECT/* a;b */1;", {"SELECT 1"}},
        SplitCase{"'--' inside a literal is not a comment",
                  "SELECT '--x'; SELECT 3",
                  {"SELECT '--x'", "SELECT 3"}},
        SplitCase{"quoted and bracketed identifiers",
                  "SELECT \"a;b\", [c;d] FROM T; SELECT 4",
                  {"SELECT \"a;b\", [c;d] FROM T", "SELECT 4"}},
        SplitCase{"blank and comment-only statements are skipped",
                  ";;\n  -- nothing\n;SELECT 5;  \n",
                  {"SELECT 5"}},
        SplitCase{"empty script", "", {}},
        SplitCase{"unterminated literal runs to the end", "SELECT 'abc;", {"SELECT 'abc;"}}));

}  // namespace
}  // namespace zarvik::demo
