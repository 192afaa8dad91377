// Connection over the embedded SQLite engine: states, Execute, errors and
// the statement log.
#include "db/connection.h"

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "db/db_test_support.h"
#include "platform/vb_error.h"

namespace zarvik::db {
namespace {

TEST(ConnectionTest, StatesAndTheirErrors) {
  Connection connection;
  EXPECT_EQ(connection.State(), kStateClosed);
  EXPECT_EQ(ErrorOf([&] { connection.Execute("SELECT 1"); }), vberr::kAdoConnectionUnusable);
  EXPECT_EQ(ErrorOf([&] { connection.Close(); }), vberr::kAdoObjectClosed);
  EXPECT_EQ(ErrorOf([&] { connection.SetCursorLocation(1); }), vberr::kAdoArgumentsWrong);
  // Keys ignore case and blanks.
  connection.SetConnectionString(" provider = sqlite ; DATA SOURCE = :memory: ;");
  connection.Open();
  EXPECT_EQ(connection.State(), kStateOpen);
  EXPECT_EQ(connection.Execute("SELECT 7 AS N")->Fields("N").ToLong(), 7);
  EXPECT_EQ(ErrorOf([&] { connection.Open(); }), vberr::kAdoObjectOpen);
  EXPECT_EQ(ErrorOf([&] { connection.SetConnectionString(kMemory); }), vberr::kAdoObjectOpen);
  EXPECT_EQ(ErrorOf([&] { connection.SetConnectionTimeout(5); }), vberr::kAdoObjectOpen);
  connection.Close();
  EXPECT_EQ(connection.State(), kStateClosed);
  connection.Open();  // a closed connection opens again
  EXPECT_EQ(connection.State(), kStateOpen);
}

TEST(ConnectionTest, OpenFailuresAreConnectErrors) {
  Connection bad_path;
  bad_path.SetConnectionString("Provider=SQLite;Data Source=/nonexistent-dir/x/y.db");
  const VbError e = CaughtError([&] { bad_path.Open(); });
  EXPECT_EQ(e.Number(), vberr::kProviderConnectFailed);
  EXPECT_NE(e.Description().find("SQLite error 14"), std::string::npos) << e.Description();
  EXPECT_EQ(bad_path.State(), kStateClosed);
  Connection no_source;
  no_source.SetConnectionString("Provider=SQLite");
  EXPECT_EQ(ErrorOf([&] { no_source.Open(); }), vberr::kProviderConnectFailed);
}

TEST(ConnectionTest, ScriptsRunWholeAndAnswerTheFirstRows) {
  auto connection = OpenConnection();
  auto rs = connection->ExecuteScript(
      "CREATE TABLE T (A INTEGER, B TEXT);\n"
      "INSERT INTO T VALUES (1, 'x'); INSERT INTO T VALUES (2, 'y');\n"
      "SELECT B FROM T ORDER BY A;\n"
      "SELECT 99 AS OTHER;\n"
      "-- trailing comment\n");
  ASSERT_EQ(rs->FieldCount(), 1);
  EXPECT_EQ(rs->FieldName(0), "B");
  EXPECT_EQ(rs->RecordCount(), 2);
  EXPECT_EQ(rs->Fields("B").ToString(), "x");
  // Statements without rows give a closed recordset, a query without rows an open one.
  auto closed = connection->Execute("INSERT INTO T VALUES (3, 'z')", kCmdText);
  EXPECT_EQ(closed->State(), kStateClosed);
  EXPECT_EQ(ErrorOf([&] { closed->EOF(); }), vberr::kAdoObjectClosed);
  auto empty = connection->Execute("SELECT A FROM T WHERE A = 9");
  EXPECT_EQ(empty->State(), kStateOpen);
  EXPECT_TRUE(empty->EOF());
  // RecordCount follows the cursor location.
  EXPECT_EQ(OpenConnection(kMemory, "", kUseServer)->Execute("SELECT 1")->RecordCount(), -1);
}

TEST(ConnectionTest, FieldValuesKeepTheirSqliteTypes) {
  auto rs = OpenConnection()->Execute(
      "SELECT 2147483647 AS MAXI, -2147483649 AS BIG, 1.5 AS R, 'txt' AS S, NULL AS N, "
      "X'414243' AS B");
  EXPECT_EQ(rs->Fields("MAXI").Type(), VarType::kLong);
  EXPECT_EQ(rs->Fields("MAXI").ToLong(), 2147483647);
  EXPECT_EQ(rs->Fields("BIG").Type(), VarType::kDouble);
  EXPECT_EQ(rs->Fields("BIG").ToDouble(), -2147483649.0);
  EXPECT_EQ(rs->Fields("R").Type(), VarType::kDouble);
  EXPECT_EQ(rs->Fields("S").Type(), VarType::kString);
  EXPECT_TRUE(rs->Fields("N").IsNull());
  EXPECT_EQ(rs->Fields("B").Type(), VarType::kString);
  EXPECT_EQ(rs->Fields("B").ToString(), "ABC");
}

TEST(ConnectionTest, ProviderErrorsCarryNumberMessageAndStatement) {
  auto connection = OpenConnection();
  VbError e = CaughtError([&] { connection->Execute("SELECT * FROM NOSUCH"); });
  EXPECT_EQ(e.Number(), vberr::kProviderError);
  EXPECT_NE(e.Description().find("SQLite error 1: no such table: NOSUCH"), std::string::npos)
      << e.Description();
  EXPECT_NE(e.Description().find("SELECT * FROM NOSUCH"), std::string::npos) << e.Description();
  connection->ExecuteScript("CREATE TABLE U (A INTEGER PRIMARY KEY); INSERT INTO U VALUES (1)");
  e = CaughtError(
      [&] { connection->ExecuteScript("INSERT INTO U VALUES (2); INSERT INTO U VALUES (1)"); });
  EXPECT_EQ(e.Number(), vberr::kProviderError);
  EXPECT_NE(e.Description().find("SQLite error 19: UNIQUE constraint failed"), std::string::npos)
      << e.Description();
  // Statements before the failing one of a script have run; the connection stays usable.
  EXPECT_EQ(connection->Execute("SELECT COUNT(*) AS N FROM U")->Fields("N").ToLong(), 2);
}

TEST(ConnectionTest, CommandTimeoutBoundsTheWaitForALock) {
  const TempDbFile file("lock");
  const std::string source = "Provider=SQLite;Mode=ReadWriteCreate;Data Source=" + file.path();
  auto holder = OpenConnection(source);
  holder->ExecuteScript("CREATE TABLE T (A INTEGER); BEGIN EXCLUSIVE; INSERT INTO T VALUES (1);");
  Connection waiter;
  waiter.SetConnectionString(source);
  waiter.SetCommandTimeout(1);
  waiter.Open();
  const auto start = std::chrono::steady_clock::now();
  const VbError e = CaughtError([&] { waiter.Execute("SELECT A FROM T"); });
  const auto waited = std::chrono::steady_clock::now() - start;
  EXPECT_EQ(e.Number(), vberr::kProviderError);
  EXPECT_NE(e.Description().find("SQLite error 5"), std::string::npos) << e.Description();
  EXPECT_GE(waited, std::chrono::milliseconds(900));
  EXPECT_LT(waited, std::chrono::seconds(10));
  holder->Execute("COMMIT");
  EXPECT_EQ(waiter.Execute("SELECT A FROM T")->Fields("A").ToLong(), 1);
}

TEST(ConnectionTest, StatementLogRecordsTheTextAsSent) {
  auto log = std::make_shared<StatementLog>();
  Connection connection;
  connection.SetConnectionString(kMemory);
  connection.SetStatementLog(log);  // before Open
  connection.Open();
  connection.Execute("SELECT TOP 1 [A] FROM (SELECT 1 AS A) X WITH (NOLOCK)");
  EXPECT_EQ(ErrorOf([&] { connection.Execute("SELECT * FROM NOSUCH"); }), vberr::kProviderError);
  connection.Close();
  connection.Open();  // the log stays with the connection
  connection.Execute("SELECT 2");
  EXPECT_EQ(log->statements,
            (std::vector<std::string>{"SELECT TOP 1 [A] FROM (SELECT 1 AS A) X WITH (NOLOCK)",
                                      "SELECT * FROM NOSUCH", "SELECT 2"}));
  // A log set on an open connection replaces the previous one; nullptr stops logging.
  auto second = std::make_shared<StatementLog>();
  connection.SetStatementLog(second);
  connection.Execute("SELECT 3");
  connection.SetStatementLog(nullptr);
  connection.Execute("SELECT 4");
  EXPECT_EQ(second->statements, std::vector<std::string>{"SELECT 3"});
  EXPECT_EQ(log->statements.size(), 3u);
}

// Text columns declared with the TSQL collation compare as on SQL Server:
// case and trailing blanks do not count, in '=', ORDER BY, GROUP BY and
// indexes alike.
TEST(ConnectionTest, TsqlCollationIgnoresCaseAndTrailingBlanks) {
  auto connection =
      OpenConnection(kMemory,
                     "CREATE TABLE T (C TEXT COLLATE TSQL PRIMARY KEY, N INTEGER);"
                     "INSERT INTO T VALUES ('AG12   ', 1), ('b', 2), ('Abc', 3), ('\xc3\xa0', 4);");
  struct Case {
    const char* where;
    int32_t count;
  };
  for (const Case& c :
       {Case{"C = 'ag12'", 1}, Case{"C = 'AG12 '", 1}, Case{"C = ' AG12'", 0}, Case{"C = 'B  '", 1},
        Case{"C > 'ab'", 4}, Case{"C = 'ABC'", 1}, Case{"C = '\xc3\x80'", 0}}) {
    EXPECT_EQ(connection->Execute(std::string("SELECT COUNT(*) FROM T WHERE ") + c.where)
                  ->Fields(0)
                  .ToLong(),
              c.count)
        << c.where;
  }
  EXPECT_EQ(connection->Execute("SELECT GROUP_CONCAT(N) FROM (SELECT N FROM T ORDER BY C)")
                ->Fields(0)
                .ToString(),
            "3,1,2,4");
  // The key is unique without regard to case and trailing blanks.
  EXPECT_EQ(ErrorOf([&] { connection->Execute("INSERT INTO T VALUES ('ag12', 5)"); }),
            vberr::kProviderError);
}

// The late-bound members a host calls beyond those the host protocol shows.
TEST(ConnectionTest, LateBoundMembers) {
  auto connection = std::make_shared<Connection>();
  Object& object = *connection;
  object.PutProperty("commandtimeout", Variant(int16_t{100}));  // names ignore case
  EXPECT_EQ(connection->CommandTimeout(), 100);
  std::vector<Variant> open_args{Variant(kMemory), Variant(""), Variant(""), Variant(int32_t{-1})};
  object.CallMethod("Open", open_args);
  std::vector<Variant> exec_args{Variant("SELECT 5 AS N"), Variant(), Variant(int32_t{1})};
  EXPECT_EQ(object.CallMethod("Execute", exec_args).ToObject()->GetProperty("RecordCount").ToLong(),
            -1);  // server-side
  std::vector<Variant> none;
  EXPECT_EQ(ErrorOf([&] { object.CallMethod("Execute", none); }), vberr::kWrongArgCount);
  EXPECT_EQ(ErrorOf([&] { object.GetProperty("Nope"); }), vberr::kNotSupported);
  object.CallMethod("Close", none);
  EXPECT_EQ(object.GetProperty("State").ToLong(), 0);
}

}  // namespace
}  // namespace zarvik::db
