// Connection over the embedded SQLite engine: states, Execute, errors and
// the statement log.
#include "db/connection.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/vb_error.h"

namespace zarvik::db {
namespace {

const char kMemory[] = "Provider=SQLite;Data Source=:memory:";

VbError CaughtError(const std::function<void()>& action) {
  try {
    action();
  } catch (const VbError& e) {
    return e;
  }
  return VbError(0, "no error");
}

int32_t ErrorOf(const std::function<void()>& action) { return CaughtError(action).Number(); }

std::shared_ptr<Connection> OpenMemory(int cursor_location = kUseClient) {
  auto connection = std::make_shared<Connection>();
  connection->SetConnectionString(kMemory);
  connection->SetCursorLocation(cursor_location);
  connection->Open();
  return connection;
}

TEST(ConnectionTest, StateFollowsOpenAndClose) {
  Connection connection;
  EXPECT_EQ(connection.State(), kStateClosed);
  connection.SetConnectionString(kMemory);
  connection.Open();
  EXPECT_EQ(connection.State(), kStateOpen);
  connection.Close();
  EXPECT_EQ(connection.State(), kStateClosed);
  connection.Open();  // a closed connection opens again
  EXPECT_EQ(connection.State(), kStateOpen);
}

TEST(ConnectionTest, StateErrors) {
  Connection connection;
  EXPECT_EQ(ErrorOf([&] { connection.Execute("SELECT 1"); }), vberr::kAdoConnectionUnusable);
  EXPECT_EQ(ErrorOf([&] { connection.OpenBackendOrThrow(); }), vberr::kAdoConnectionUnusable);
  EXPECT_EQ(ErrorOf([&] { connection.Close(); }), vberr::kAdoObjectClosed);
  EXPECT_EQ(ErrorOf([&] { connection.SetCursorLocation(1); }), vberr::kAdoArgumentsWrong);
  connection.SetConnectionString(kMemory);
  connection.Open();
  EXPECT_EQ(ErrorOf([&] { connection.Open(); }), vberr::kAdoObjectOpen);
  EXPECT_EQ(ErrorOf([&] { connection.SetConnectionString(kMemory); }), vberr::kAdoObjectOpen);
  EXPECT_EQ(ErrorOf([&] { connection.SetConnectionTimeout(5); }), vberr::kAdoObjectOpen);
  EXPECT_EQ(connection.State(), kStateOpen);
}

TEST(ConnectionTest, ConnectionStringKeysIgnoreCaseAndBlanks) {
  Connection connection;
  connection.SetConnectionString(" provider = sqlite ; DATA SOURCE = :memory: ;");
  connection.Open();
  EXPECT_EQ(connection.Execute("SELECT 7 AS N")->Fields("N").ToLong(), 7);
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

TEST(ConnectionTest, StatementsWithoutRowsGiveAClosedRecordset) {
  auto connection = OpenMemory();
  auto rs = connection->Execute("CREATE TABLE T (A INTEGER)");
  EXPECT_EQ(rs->State(), kStateClosed);
  EXPECT_EQ(ErrorOf([&] { rs->EOF(); }), vberr::kAdoObjectClosed);
  EXPECT_EQ(connection->Execute("INSERT INTO T VALUES (1)", kCmdText)->State(), kStateClosed);
  // A query without rows is still an open recordset.
  auto empty = connection->Execute("SELECT A FROM T WHERE A = 2");
  EXPECT_EQ(empty->State(), kStateOpen);
  EXPECT_TRUE(empty->EOF());
}

TEST(ConnectionTest, FieldValuesKeepTheirSqliteTypes) {
  auto connection = OpenMemory();
  auto rs = connection->Execute(
      "SELECT 42 AS I, 2147483647 AS MAXI, -2147483649 AS BIG, 1.5 AS R, 'txt' AS S, NULL AS "
      "N, X'414243' AS B");
  EXPECT_EQ(rs->Fields("I").Type(), VarType::kLong);
  EXPECT_EQ(rs->Fields("I").ToLong(), 42);
  EXPECT_EQ(rs->Fields("MAXI").Type(), VarType::kLong);
  EXPECT_EQ(rs->Fields("BIG").Type(), VarType::kDouble);
  EXPECT_EQ(rs->Fields("BIG").ToDouble(), -2147483649.0);
  EXPECT_EQ(rs->Fields("R").Type(), VarType::kDouble);
  EXPECT_EQ(rs->Fields("R").ToDouble(), 1.5);
  EXPECT_EQ(rs->Fields("S").Type(), VarType::kString);
  EXPECT_EQ(rs->Fields("S").ToString(), "txt");
  EXPECT_TRUE(rs->Fields("N").IsNull());
  EXPECT_EQ(rs->Fields("B").Type(), VarType::kString);
  EXPECT_EQ(rs->Fields("B").ToString(), "ABC");
}

TEST(ConnectionTest, RecordCountFollowsCursorLocation) {
  for (int location : {kUseClient, kUseServer}) {
    auto connection = OpenMemory(location);
    connection->Execute("CREATE TABLE T (A INTEGER); INSERT INTO T VALUES (1), (2), (3);");
    const int32_t expected = location == kUseClient ? 3 : -1;
    EXPECT_EQ(connection->Execute("SELECT A FROM T")->RecordCount(), expected);
  }
}

TEST(ConnectionTest, ScriptRunsEveryStatementAndAnswersTheFirstRows) {
  auto connection = OpenMemory();
  auto rs = connection->Execute(
      "CREATE TABLE T (A INTEGER, B TEXT);\n"
      "INSERT INTO T VALUES (1, 'x'); INSERT INTO T VALUES (2, 'y');\n"
      "SELECT B FROM T ORDER BY A;\n"
      "SELECT 99 AS OTHER;\n"
      "-- trailing comment\n");
  ASSERT_EQ(rs->FieldCount(), 1);
  EXPECT_EQ(rs->FieldName(0), "B");
  EXPECT_EQ(rs->RecordCount(), 2);
  EXPECT_EQ(rs->Fields("B").ToString(), "x");
}

TEST(ConnectionTest, TsqlIsTranslatedBeforeItRuns) {
  auto connection = OpenMemory();
  connection->Execute(
      "CREATE TABLE VFW31_RVKPARAMETRI (FW31_ID_FW07 INTEGER, FW31_CODTIPO TEXT, "
      "FW31_FLGABILITATO INTEGER);"
      "INSERT INTO VFW31_RVKPARAMETRI VALUES (5, 'A', 0), (5, 'C', NULL), (5, 'B', 1);");
  auto rs = connection->Execute(
      "SELECT TOP 2 [FW31_CODTIPO], ISNULL(FW31_FLGABILITATO, 1) AS F FROM "
      "[dbo].[VFW31_RVKPARAMETRI] WITH (NOLOCK) WHERE FW31_CODTIPO <> N'Z' ORDER BY "
      "FW31_CODTIPO DESC");
  EXPECT_EQ(rs->RecordCount(), 2);
  EXPECT_EQ(rs->Fields("FW31_CODTIPO").ToString(), "C");
  EXPECT_EQ(rs->Fields("F").ToLong(), 1);
}

TEST(ConnectionTest, ProviderErrorsCarryNumberMessageAndStatement) {
  auto connection = OpenMemory();
  VbError e = CaughtError([&] { connection->Execute("SELECT * FROM NOSUCH"); });
  EXPECT_EQ(e.Number(), vberr::kProviderError);
  EXPECT_NE(e.Description().find("SQLite error 1: no such table: NOSUCH"), std::string::npos)
      << e.Description();
  EXPECT_NE(e.Description().find("SELECT * FROM NOSUCH"), std::string::npos) << e.Description();

  connection->Execute("CREATE TABLE U (A INTEGER PRIMARY KEY); INSERT INTO U VALUES (1)");
  e = CaughtError(
      [&] { connection->Execute("INSERT INTO U VALUES (2); INSERT INTO U VALUES (1)"); });
  EXPECT_EQ(e.Number(), vberr::kProviderError);
  EXPECT_NE(e.Description().find("SQLite error 19: UNIQUE constraint failed"), std::string::npos)
      << e.Description();
  // Statements before the failing one of a script have run.
  EXPECT_EQ(connection->Execute("SELECT COUNT(*) AS N FROM U")->Fields("N").ToLong(), 2);
  // The connection stays usable.
  EXPECT_EQ(connection->State(), kStateOpen);
}

TEST(ConnectionTest, CommandTimeoutBoundsTheWaitForALock) {
  const std::string path = ::testing::TempDir() + "zarvik_lock_test.db";
  std::remove(path.c_str());
  auto holder = std::make_shared<Connection>();
  holder->SetConnectionString("Provider=SQLite;Data Source=" + path);
  holder->Open();
  holder->Execute("CREATE TABLE T (A INTEGER); BEGIN EXCLUSIVE; INSERT INTO T VALUES (1);");

  Connection waiter;
  waiter.SetConnectionString("Provider=SQLite;Data Source=" + path);
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
  holder->Close();
  waiter.Close();
  std::remove(path.c_str());
}

TEST(ConnectionTest, StatementLogRecordsTheTextAsSent) {
  auto log = std::make_shared<StatementLog>();
  Connection connection;
  connection.SetConnectionString(kMemory);
  connection.SetStatementLog(log);  // before Open
  connection.Open();
  connection.Execute("SELECT TOP 1 [A] FROM (SELECT 1 AS A) X WITH (NOLOCK)");
  EXPECT_EQ(ErrorOf([&] { connection.Execute("SELECT * FROM NOSUCH"); }), vberr::kProviderError);
  EXPECT_EQ(log->statements,
            (std::vector<std::string>{"SELECT TOP 1 [A] FROM (SELECT 1 AS A) X WITH (NOLOCK)",
                                      "SELECT * FROM NOSUCH"}));

  // A log set on an open connection replaces the previous one.
  auto second = std::make_shared<StatementLog>();
  connection.SetStatementLog(second);
  connection.Execute("SELECT 2");
  EXPECT_EQ(second->statements, std::vector<std::string>{"SELECT 2"});
  EXPECT_EQ(log->statements.size(), 2u);
  connection.SetStatementLog(nullptr);
  connection.Execute("SELECT 3");
  EXPECT_EQ(second->statements.size(), 1u);
}

TEST(ConnectionTest, StatementLogSetAfterOpen) {
  auto connection = OpenMemory();
  connection->Execute("SELECT 1");
  auto log = std::make_shared<StatementLog>();
  connection->SetStatementLog(log);
  connection->Execute("SELECT 2");
  connection->Close();
  connection->Open();  // the log stays with the connection
  connection->Execute("SELECT 3");
  EXPECT_EQ(log->statements, (std::vector<std::string>{"SELECT 2", "SELECT 3"}));
}

TEST(ConnectionTest, LateBoundMembers) {
  auto connection = std::make_shared<Connection>();
  Object& object = *connection;
  EXPECT_EQ(object.TypeName(), "Connection");
  object.PutProperty("CommandTimeout", Variant(int32_t{100}));
  object.PutProperty("ConnectionTimeout", Variant(int32_t{100}));
  object.PutProperty("IsolationLevel", Variant(int32_t{4096}));
  object.PutProperty("cursorlocation", Variant(int16_t{3}));
  EXPECT_EQ(object.GetProperty("CommandTimeout").ToLong(), 100);
  EXPECT_EQ(object.GetProperty("ConnectionTimeout").ToLong(), 100);
  EXPECT_EQ(object.GetProperty("IsolationLevel").ToLong(), 4096);
  EXPECT_EQ(object.GetProperty("CursorLocation").ToLong(), 3);
  EXPECT_EQ(object.GetProperty("State").ToLong(), 0);

  std::vector<Variant> open_args{Variant(kMemory), Variant(""), Variant(""), Variant(int32_t{-1})};
  object.CallMethod("Open", open_args);
  EXPECT_EQ(object.GetProperty("State").ToLong(), 1);
  EXPECT_EQ(object.GetProperty("ConnectionString").ToString(), kMemory);

  std::vector<Variant> exec_args{Variant("SELECT 5 AS N UNION ALL SELECT 6"), Variant(),
                                 Variant(int32_t{1})};
  const Variant result = object.CallMethod("Execute", exec_args);
  ASSERT_TRUE(result.IsObject());
  Object& rs = *result.ToObject();
  EXPECT_EQ(rs.TypeName(), "Recordset");
  EXPECT_EQ(rs.GetProperty("RecordCount").ToLong(), 2);

  std::vector<Variant> none;
  object.CallMethod("Close", none);
  EXPECT_EQ(object.GetProperty("State").ToLong(), 0);
  EXPECT_EQ(ErrorOf([&] { object.GetProperty("Nope"); }), vberr::kNotSupported);
  EXPECT_EQ(ErrorOf([&] { object.CallMethod("Execute", none); }), vberr::kWrongArgCount);
}

}  // namespace
}  // namespace zarvik::db
