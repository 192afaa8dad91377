#include "db/connection.h"

#include <chrono>
#include <fstream>
#include <tuple>

#include "db/db_test_support.h"

namespace zarvik::db {
namespace {

TEST(ConnectionTest, StatesAndTheirErrors) {
  Connection connection;
  EXPECT_EQ(connection.State(), kStateClosed);
  EXPECT_EQ(ErrorsOf({[&] { connection.Execute("SELECT 1"); }, [&] { connection.Close(); },
                      [&] { connection.SetCursorLocation(1); },
                      [&] { connection.SetConnectionTimeout(-1); },
                      [&] { connection.SetConnectionTimeout(0); }}),
            (std::vector<int32_t>{vberr::kAdoConnectionUnusable, vberr::kAdoObjectClosed,
                                  vberr::kAdoArgumentsWrong, vberr::kAdoArgumentsWrong, 0}));
  connection.SetConnectionString(" provider = sqlite ; DATA SOURCE = :memory: ;");  // any case
  connection.Open();
  EXPECT_EQ(Answer(connection, "SELECT 7 AS N"), "7");
  EXPECT_EQ(ErrorsOf({[&] { connection.Open(); }, [&] { connection.SetConnectionString(kMemory); },
                      [&] { connection.SetConnectionTimeout(5); }}),
            std::vector<int32_t>(3, vberr::kAdoObjectOpen));
  connection.Close();
  EXPECT_EQ(connection.State(), kStateClosed);
  connection.Open();  // a closed connection opens again
  EXPECT_EQ(connection.State(), kStateOpen);
}

// A failed Open raises the number with a text that holds the one given, and stays closed.
TEST(ConnectionTest, OpenFailures) {
  const TempDbFile file("modes");
  const std::string missing = "Provider=SQLite;Data Source=" + file.path();
  const int32_t kConnect = vberr::kProviderConnectFailed;
  const std::vector<std::tuple<std::string, int32_t, std::string>> cases = {
      {"Provider=SQLite;Data Source=/nonexistent-dir/x/y.db", kConnect, "SQLite error 14"},
      {"Provider=SQLite", kConnect, "SQLite: the connection string names no Data Source"},
      {missing, kConnect, "zarvik init-db"},  // a missing file is not created
      {missing + ";Mode=Sometimes", kConnect,
       "SQLite: Mode must be ReadWrite, ReadWriteCreate or ReadOnly, not 'Sometimes'"},
      {"Provider=MSDASQL;DSN=zarvik_no_such_dsn", kConnect, "[IM002]"},
      {"Provider=Microsoft.Jet.OLEDB.4.0;Data Source=x.mdb", vberr::kAdoProviderNotFound,
       "Provider cannot be found. It may not be properly installed. (Provider="
       "Microsoft.Jet.OLEDB.4.0; known providers: SQLite, SQLOLEDB, SQLNCLI11, MSOLEDBSQL, "
       "MSDASQL)"}};
  for (const auto& [source, number, text] : cases) {
    Connection connection;
    connection.SetConnectionString(source);
    const VbError e = CaughtError([&] { connection.Open(); });
    EXPECT_EQ(e.Number(), number) << source;
    EXPECT_NE(e.Description().find(text), std::string::npos) << e.Description();
    EXPECT_EQ(connection.State(), kStateClosed);
  }
  EXPECT_FALSE(std::ifstream(file.path()).good());
}

TEST(ConnectionTest, ScriptsRunWholeAnswerTheFirstRowsAndStopAtAnError) {
  auto connection = OpenConnection();
  auto rs = connection->ExecuteScript(
      "CREATE TABLE T (A INTEGER, B TEXT);\n"
      "INSERT INTO T VALUES (1, 'x'); INSERT INTO T VALUES (2, 'y');\n"
      "SELECT B FROM T ORDER BY A;\nSELECT 99 AS OTHER;\n-- trailing comment\n");
  ASSERT_EQ(rs->FieldCount(), 1);
  EXPECT_EQ(rs->FieldName(0) + rs->Fields("B").ToString(), "Bx");
  EXPECT_EQ(rs->RecordCount(), 2);
  // Statements without rows give a closed recordset, a query without rows an open one.
  EXPECT_EQ(connection->Execute("INSERT INTO T VALUES (3, 'z')", kCmdText)->State(), kStateClosed);
  auto empty = connection->Execute("SELECT A FROM T WHERE A = 9");
  EXPECT_TRUE(empty->State() == kStateOpen && empty->EOF());
  EXPECT_EQ(OpenConnection(kMemory, "", kUseServer)->Execute("SELECT 1")->RecordCount(), -1);
  // A failing statement raises the provider error; those before it in a script have run.
  connection->Execute("CREATE TABLE U (A INTEGER PRIMARY KEY)");
  const std::string e = Failure(
      [&] { connection->ExecuteScript("INSERT INTO U VALUES (2); INSERT INTO U VALUES (2)"); });
  EXPECT_EQ(e.substr(0, 53), "-2147217900 SQLite error 19: UNIQUE constraint failed") << e;
  EXPECT_EQ(Answer(*connection, "SELECT COUNT(*) FROM U"), "1");
}

TEST(ConnectionTest, FieldValuesKeepTheirSqliteTypes) {
  auto rs = OpenConnection()->Execute(
      "SELECT 2147483647 AS MAXI, -2147483649 AS BIG, 1.5 AS R, 'txt' AS S, NULL AS N, "
      "X'414243' AS B");
  std::vector<VarType> types;
  std::string texts;
  for (int i = 0; i < rs->FieldCount(); ++i) {
    types.push_back(rs->Fields(i).Type());
    texts += rs->Fields(i).ConcatText() + "|";
  }
  using V = VarType;
  EXPECT_EQ(types,
            (std::vector<V>{V::kLong, V::kDouble, V::kDouble, V::kString, V::kNull, V::kString}));
  EXPECT_EQ(texts, "2147483647|-2147483649|1.5|txt||ABC|");
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
  const std::string answer = Answer(waiter, "SELECT A FROM T");
  const auto waited = std::chrono::steady_clock::now() - start;
  EXPECT_NE(answer.find("SQLite error 5"), std::string::npos) << answer;
  EXPECT_GE(waited, std::chrono::milliseconds(900));
  EXPECT_LT(waited, std::chrono::seconds(10));
  holder->Execute("COMMIT");
  EXPECT_EQ(Answer(waiter, "SELECT A FROM T"), "1");
  EXPECT_NE(Answer(*OpenConnection(source + ";Mode=ReadOnly"), "INSERT INTO T VALUES (2)")
                .find("attempt to write a readonly database"),
            std::string::npos);
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
}

// Execute refuses a text that goes on with a second statement, before running any.
TEST(ConnectionTest, ASecondStatementIsRefusedBeforeAnythingRuns) {
  const std::pair<const char*, bool> cases[] = {
      {"SELECT A FROM T", false},
      {"SELECT A FROM T ; ;\n\t", false},
      {"SELECT A FROM T; -- a note", false},
      {"SELECT A FROM T; /* a note */ -- and another\n;", false},
      {"SELECT A FROM T WHERE B = 'x; DELETE FROM T'", false},
      {"SELECT A FROM T; /* open", false},
      {"SELECT A FROM T; - 1", true},
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
    EXPECT_EQ(Answer(*connection, "SELECT COUNT(*) || SUM(A) FROM T"), "23") << text;
  }
}

// The TSQL collation ignores case and trailing blanks in '=', ORDER BY and keys.
TEST(ConnectionTest, TsqlCollationIgnoresCaseAndTrailingBlanks) {
  auto connection =
      OpenConnection(kMemory,
                     "CREATE TABLE T (C TEXT COLLATE TSQL PRIMARY KEY, N INTEGER);"
                     "INSERT INTO T VALUES ('AG12   ', 1), ('b', 2), ('Abc', 3), ('\xc3\xa0', 4);");
  const std::vector<std::pair<const char*, const char*>> cases = {
      {"C = 'ag12'", "1"}, {"C = 'AG12 '", "1"}, {"C = ' AG12'", "0"},   {"C = 'B  '", "1"},
      {"C > 'ab'", "4"},   {"C = 'ABC'", "1"},   {"C = '\xc3\x80'", "0"}};
  for (const auto& [where, count] : cases) {
    EXPECT_EQ(Answer(*connection, std::string("SELECT COUNT(*) FROM T WHERE ") + where), count);
  }
  EXPECT_EQ(Answer(*connection, "SELECT GROUP_CONCAT(N) FROM (SELECT N FROM T ORDER BY C)"),
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
  EXPECT_EQ(ErrorsOf({[&] { object.CallMethod("Execute", none); },
                      [&] { object.GetProperty("Nope"); }, [&] { object.CallMethod("Nope", none); },
                      [&] { object.PutProperty("Nope", Variant()); }}),
            (std::vector<int32_t>{vberr::kWrongArgCount, vberr::kNotSupported, vberr::kNotSupported,
                                  vberr::kNotSupported}));
  object.CallMethod("Close", none);
  EXPECT_EQ(connection->State(), kStateClosed);
}

}  // namespace
}  // namespace zarvik::db
