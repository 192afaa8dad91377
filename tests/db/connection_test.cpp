// Connection over the embedded SQLite engine.
#include "db/connection.h"

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>
#include <tuple>
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
  EXPECT_EQ(ErrorOf([&] { connection.SetConnectionTimeout(-1); }), vberr::kAdoArgumentsWrong);
  EXPECT_EQ(ErrorOf([&] { connection.SetConnectionTimeout(0); }), 0);
  connection.SetConnectionString(" provider = sqlite ; DATA SOURCE = :memory: ;");  // any case
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
  const VbError none = CaughtError([&] { no_source.Open(); });
  EXPECT_EQ(none.Number(), vberr::kProviderConnectFailed);
  EXPECT_EQ(none.Description(), "SQLite: the connection string names no Data Source");
}

TEST(ConnectionTest, ScriptsRunWholeAndAnswerTheFirstRows) {
  auto connection = OpenConnection();
  auto rs = connection->ExecuteScript(
      "CREATE TABLE T (A INTEGER, B TEXT);\n"
      "INSERT INTO T VALUES (1, 'x'); INSERT INTO T VALUES (2, 'y');\n"
      "SELECT B FROM T ORDER BY A;\nSELECT 99 AS OTHER;\n-- trailing comment\n");
  ASSERT_EQ(rs->FieldCount(), 1);
  EXPECT_EQ(rs->FieldName(0), "B");
  EXPECT_EQ(rs->RecordCount(), 2);
  EXPECT_EQ(rs->Fields("B").ToString(), "x");
  // Statements without rows give a closed recordset, a query without rows an open one.
  auto closed = connection->Execute("INSERT INTO T VALUES (3, 'z')", kCmdText);
  EXPECT_EQ(closed->State(), kStateClosed);
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
  const std::vector<std::tuple<const char*, VarType, const char*>> fields = {
      {"MAXI", VarType::kLong, "2147483647"},
      {"BIG", VarType::kDouble, "-2147483649"},
      {"R", VarType::kDouble, "1.5"},
      {"S", VarType::kString, "txt"},
      {"N", VarType::kNull, ""},
      {"B", VarType::kString, "ABC"}};
  for (const auto& [name, type, text] : fields) {
    EXPECT_EQ(rs->Fields(name).Type(), type) << name;
    EXPECT_EQ(rs->Fields(name).ConcatText(), text) << name;
  }
}

TEST(ConnectionTest, ProviderErrorsCarryNumberMessageAndStatement) {
  auto connection = OpenConnection(kMemory, "CREATE TABLE U (A INTEGER PRIMARY KEY)");
  const VbError e = CaughtError(
      [&] { connection->ExecuteScript("INSERT INTO U VALUES (2); INSERT INTO U VALUES (2)"); });
  EXPECT_EQ(e.Number(), vberr::kProviderError);
  EXPECT_NE(e.Description().find("SQLite error 19: UNIQUE constraint failed"), std::string::npos)
      << e.Description();
  // Statements before the failing one of a script have run; the connection stays usable.
  EXPECT_EQ(connection->Execute("SELECT COUNT(*) AS N FROM U")->Fields("N").ToLong(), 1);
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

// Execute refuses a text that goes on with a second statement, before running any.
TEST(ConnectionTest, ASecondStatementIsRefusedBeforeAnythingRuns) {
  const std::pair<const char*, bool> cases[] = {
      {"SELECT A FROM T", false},
      {"SELECT A FROM T ; ;\n\t", false},
      {"SELECT A FROM T -- a note", false},
      {"SELECT A FROM T; /* a note */ -- and another\n;", false},
      {"SELECT A FROM T WHERE B = 'x; DELETE FROM T'", false},
      {"DELETE FROM T WHERE A = 9; DELETE FROM T", true},
      {"SELECT A FROM T WHERE B = 'x'; DELETE FROM T; --'", true},
      {"SELECT A FROM T /* ; */; DROP TABLE T", true},
      {"SELECT A FROM T;; DELETE FROM T", true},
      {"SELECT A FROM T;\n-- note\nUPDATE T SET A = 0", true}};
  auto connection = OpenConnection(
      kMemory, "CREATE TABLE T (A INTEGER, B TEXT); INSERT INTO T VALUES (1, 'x'), (2, 'y')");
  for (const auto& [text, refused] : cases) {
    const VbError e = CaughtError([&] { connection->Execute(text); });
    EXPECT_EQ(e.Number(), refused ? vberr::kProviderError : 0) << text;
    EXPECT_EQ(e.Description().find("one statement") != std::string::npos, refused) << text;
    EXPECT_EQ(connection->Execute("SELECT COUNT(*) || SUM(A) FROM T")->Fields(0).ToString(), "23")
        << text;
  }
}

// The TSQL collation ignores case and trailing blanks in '=', ORDER BY and keys.
TEST(ConnectionTest, TsqlCollationIgnoresCaseAndTrailingBlanks) {
  auto connection =
      OpenConnection(kMemory,
                     "CREATE TABLE T (C TEXT COLLATE TSQL PRIMARY KEY, N INTEGER);"
                     "INSERT INTO T VALUES ('AG12   ', 1), ('b', 2), ('Abc', 3), ('\xc3\xa0', 4);");
  for (const auto& [where, count] :
       std::vector<std::pair<const char*, int32_t>>{{"C = 'ag12'", 1},
                                                    {"C = 'AG12 '", 1},
                                                    {"C = ' AG12'", 0},
                                                    {"C = 'B  '", 1},
                                                    {"C > 'ab'", 4},
                                                    {"C = 'ABC'", 1},
                                                    {"C = '\xc3\x80'", 0}}) {
    EXPECT_EQ(connection->Execute(std::string("SELECT COUNT(*) FROM T WHERE ") + where)
                  ->Fields(0)
                  .ToLong(),
              count)
        << where;
  }
  EXPECT_EQ(connection->Execute("SELECT GROUP_CONCAT(N) FROM (SELECT N FROM T ORDER BY C)")
                ->Fields(0)
                .ToString(),
            "3,1,2,4");
  EXPECT_EQ(ErrorOf([&] { connection->Execute("INSERT INTO T VALUES ('ag12', 5)"); }),
            vberr::kProviderError);  // the key is unique in the same terms
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
