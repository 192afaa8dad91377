// Execute on the embedded engine runs one statement: a text that goes on
// with a second one is refused before anything runs.
#include <gtest/gtest.h>

#include <string>

#include "db/connection.h"
#include "db/db_test_support.h"
#include "platform/vb_error.h"

namespace zarvik::db {
namespace {

const char kTwoRows[] =
    "CREATE TABLE T (A INTEGER, B TEXT); INSERT INTO T VALUES (1, 'x'); "
    "INSERT INTO T VALUES (2, 'y')";

int32_t RowCount(Connection& connection) {
  return connection.Execute("SELECT COUNT(*) AS N FROM T")->Fields("N").ToLong();
}

TEST(SingleStatementTest, ASecondStatementIsRefusedBeforeAnythingRuns) {
  const struct {
    const char* text;
    bool refused;
  } cases[] = {
      {"SELECT A FROM T", false},
      {"SELECT A FROM T;", false},
      {"SELECT A FROM T ; ;\n\t", false},
      {"SELECT A FROM T -- a note", false},
      {"SELECT A FROM T; /* a note */ -- and another\n;", false},
      {"SELECT A FROM T WHERE B = 'x; DELETE FROM T'", false},
      {"DELETE FROM T WHERE A = 9; DELETE FROM T", true},
      {"SELECT A FROM T; DELETE FROM T", true},
      {"SELECT A FROM T WHERE B = 'x'; DELETE FROM T; --'", true},
      {"SELECT A FROM T /* ; */; DROP TABLE T", true},
      {"SELECT A FROM T;; DELETE FROM T", true},
      {"SELECT A FROM T;\n-- note\nUPDATE T SET A = 0", true},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    auto connection = OpenConnection();
    connection->ExecuteScript(kTwoRows);
    const int error = ErrorOf([&] { connection->Execute(c.text); });
    EXPECT_EQ(error, c.refused ? vberr::kProviderError : 0);
    EXPECT_EQ(RowCount(*connection), 2);
    EXPECT_EQ(connection->Execute("SELECT SUM(A) AS S FROM T")->Fields("S").ToLong(), 3);
  }
  auto connection = OpenConnection();
  connection->ExecuteScript(kTwoRows);
  const VbError e = CaughtError([&] { connection->Execute("DELETE FROM T; DELETE FROM T"); });
  EXPECT_NE(e.Description().find("one statement"), std::string::npos) << e.Description();
}

}  // namespace
}  // namespace zarvik::db
