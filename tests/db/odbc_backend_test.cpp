// The ODBC backend against the SQLite ODBC driver, each test on a database
// file of its own: the backend alone, then the demo database built and
// queried through it with the ADO-like classes and checked against the same
// database in the embedded engine.
#include "db/odbc_backend.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "db/backend.h"
#include "db/db_test_support.h"
#include "db/odbc_support.h"
#include "demo/demo_db.h"
#include "platform/env.h"
#include "platform/variant.h"
#include "platform/vb_error.h"

namespace zarvik::db {
namespace {

using D = ParameterDirection;

const char kNoDriver[] =
    "the SQLite3 ODBC driver is not registered (odbcinst -q -d); install libsqliteodbc";

class OdbcBackendTest : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!OdbcDriverInstalled()) GTEST_SKIP() << kNoDriver;
    backend_ =
        OpenOdbcBackend(std::string("Driver=") + kOdbcDriver + ";Database=" + file_.path(), 0);
  }
  void TearDown() override { backend_.reset(); }

  void CreateRoutines() {
    for (const char* sql :
         {"CREATE TABLE ZARVIK_ROUTINES (ROUTINE_NAME TEXT PRIMARY KEY, ROUTINE_BODY TEXT NOT "
          "NULL)",
          "CREATE TABLE RIGHTS (ID INTEGER, CODE VARCHAR(20), GRANTED SMALLINT)",
          "INSERT INTO RIGHTS VALUES (7, 'O''Brien', 0)",
          "INSERT INTO RIGHTS VALUES (8, 'O''Brien', 1)",
          "INSERT INTO ZARVIK_ROUTINES VALUES ('SPTEST_Rights', "
          "'SELECT COALESCE((SELECT GRANTED FROM RIGHTS WHERE ID = :Id AND CODE = :Code), 1) "
          "AS Granted, :Code || ''/'' || :Id AS echo')",
          "INSERT INTO ZARVIK_ROUTINES VALUES ('SPTEST_List', "
          "'SELECT ID FROM RIGHTS WHERE ID >= :Min ORDER BY ID')",
          "INSERT INTO ZARVIK_ROUTINES VALUES ('SPTEST_Echo', 'SELECT :When AS Text')"}) {
      backend_->Execute(sql);
    }
  }

  const TempDbFile file_{"odbc"};
  std::unique_ptr<Backend> backend_;
};

TEST_F(OdbcBackendTest, ReadsTypedValuesAndNull) {
  backend_->Execute(
      "CREATE TABLE T (I INTEGER, B BIGINT, S SMALLINT, F FLOAT, D DECIMAL(10,2), "
      "V VARCHAR(50), W DATETIME, Y DATE, K BIT)");
  backend_->Execute(
      "INSERT INTO T VALUES (-42, 5000000000, 3, 1.25, 12.5, '\xc3\xa0"
      "b\xe2\x82\xac', '2024-03-05 10:11:12', '2024-03-05', 1)");
  backend_->Execute("INSERT INTO T VALUES (NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL)");
  const RowSet rs = backend_->Execute("SELECT I, B, S, F, D, V, W, Y, K FROM T ORDER BY I DESC");
  ASSERT_EQ(rs.columns, (std::vector<std::string>{"I", "B", "S", "F", "D", "V", "W", "Y", "K"}));
  ASSERT_EQ(rs.rows.size(), 2u);
  const std::vector<Variant>& row = rs.rows[0];
  // BIGINT beyond 32 bits is a Double; a SQLite BIT column is an integer column.
  const std::vector<VarType> types = {VarType::kLong,   VarType::kDouble, VarType::kLong,
                                      VarType::kDouble, VarType::kDouble, VarType::kString,
                                      VarType::kDate,   VarType::kDate,   VarType::kLong};
  for (size_t i = 0; i < types.size(); ++i) EXPECT_EQ(row[i].Type(), types[i]) << rs.columns[i];
  EXPECT_EQ(row[0].ToLong(), -42);
  EXPECT_EQ(row[1].ToDouble(), 5000000000.0);
  EXPECT_EQ(row[4].ToDouble(), 12.5);
  EXPECT_EQ(row[5].RawString(),
            "\xc3\xa0"
            "b\xe2\x82\xac");
  EXPECT_NEAR(row[6].RawNumber(), OleDateFromYmd(2024, 3, 5) + (10 * 3600 + 11 * 60 + 12) / 86400.0,
              1e-9);
  EXPECT_EQ(row[7].RawNumber(), OleDateFromYmd(2024, 3, 5));
  EXPECT_EQ(row[8].ToLong(), 1);
  for (const Variant& value : rs.rows[1]) EXPECT_TRUE(value.IsNull());
}

TEST_F(OdbcBackendTest, StatementsWithoutRowsAndLongText) {
  EXPECT_TRUE(backend_->Execute("CREATE TABLE T (X TEXT, V VARCHAR(10))").columns.empty());
  // An UPDATE that touches nothing answers SQL_NO_DATA, which is no error.
  EXPECT_TRUE(backend_->Execute("UPDATE T SET X = 'a' WHERE V = 'b'").columns.empty());
  // A query without rows still names its columns.
  const RowSet empty = backend_->Execute("SELECT X FROM T");
  EXPECT_EQ(empty.columns, std::vector<std::string>{"X"});
  EXPECT_TRUE(empty.rows.empty());
  // Several fetch pieces long, with two-byte characters across piece ends.
  std::string text;
  for (int i = 0; i < 7001; ++i) text += i % 3 == 0 ? "\xc3\xa9" : "x";
  text += "END";
  backend_->Execute("INSERT INTO T VALUES ('" + text + "', '" + text + "')");
  const RowSet rs = backend_->Execute("SELECT X, V FROM T");
  ASSERT_EQ(rs.rows.size(), 1u);
  EXPECT_EQ(rs.rows[0][0].RawString(), text);
  EXPECT_EQ(rs.rows[0][1].RawString(), text);
}

TEST_F(OdbcBackendTest, TranslatesTsqlForASqliteDatabase) {
  backend_->Execute("CREATE TABLE T (N INTEGER, S VARCHAR(10))");
  backend_->Execute("INSERT INTO T VALUES (3, NULL), (1, NULL), (2, 'x')");
  backend_->SetCommandTimeout(30);
  const RowSet top =
      backend_->Execute("SELECT TOP 2 ISNULL(S, 'none') FROM [dbo].[T] WITH (NOLOCK) ORDER BY N");
  ASSERT_EQ(top.rows.size(), 2u);
  EXPECT_EQ(top.rows[0][0].RawString(), "none");
  EXPECT_EQ(top.rows[1][0].RawString(), "x");
}

TEST_F(OdbcBackendTest, ErrorsCarrySqlstateNativeErrorAndText) {
  for (const char* sql : {"SELEC 1", "SELECT * FROM NO_SUCH_TABLE"}) {
    SCOPED_TRACE(sql);
    const VbError error = CaughtError([&] { backend_->Execute(sql); });
    EXPECT_EQ(error.Number(), vberr::kProviderError);
    EXPECT_EQ(error.Description().rfind("[HY000] (native 1) ", 0), 0u) << error.Description();
  }
  EXPECT_NE(CaughtError([&] { backend_->Execute("SELECT * FROM NO_SUCH_TABLE"); })
                .Description()
                .find("no such table: NO_SUCH_TABLE"),
            std::string::npos);
  // The backend stays usable after a failed statement.
  EXPECT_EQ(backend_->Execute("SELECT 5").rows[0][0].ToLong(), 5);

  const std::vector<std::pair<std::string, const char*>> bad_connections = {
      {"Driver=NoSuchDriverZarvik;Database=/tmp/x.db", "[01000] (native 0) "},
      // Mapped to an SQL Server ODBC driver, which this machine lacks.
      {"Provider=SQLOLEDB;Data Source=server;Initial Catalog=erp", "[01000] (native 0) "},
      {std::string("Driver=") + kOdbcDriver + ";Database=/nonexistent-zarvik-dir/x.db",
       "[HY000] (native "}};
  for (const auto& [connection, prefix] : bad_connections) {
    SCOPED_TRACE(connection);
    const VbError error = CaughtError([&] { OpenBackend(connection, 2); });
    EXPECT_EQ(error.Number(), vberr::kProviderConnectFailed);
    EXPECT_EQ(error.Description().rfind(prefix, 0), 0u) << error.Description();
  }
}

TEST_F(OdbcBackendTest, EmulatedProcedureBindsInputsAndFillsOutputs) {
  CreateRoutines();
  // SQLite describes no parameters: the caller declares them.
  EXPECT_TRUE(backend_->DescribeProcedure("SPTEST_Rights").empty());
  for (const auto& [id, granted] :
       std::vector<std::pair<int32_t, int16_t>>{{7, 0}, {8, 1}, {9, 1}}) {
    SCOPED_TRACE(id);
    std::vector<ParameterInfo> params = {
        {"@Id", adtype::kInteger, D::kInput, Variant(id)},
        {"@Code", adtype::kVarChar, D::kInput, Variant("O'Brien")},
        {"@Granted", adtype::kSmallInt, D::kOutput, Variant()},
        {"@Echo", adtype::kVarChar, D::kInputOutput, Variant("ignored")},
        {"@Missing", adtype::kInteger, D::kOutput, Variant(int32_t{5})}};
    EXPECT_TRUE(backend_->CallProcedure("dbo.SPTEST_Rights", params).columns.empty());
    EXPECT_EQ(params[2].value.Type(), VarType::kInteger);  // as declared: 16-bit
    EXPECT_EQ(params[2].value.ToInteger(), granted);
    EXPECT_EQ(params[3].value.RawString(), "O'Brien/" + std::to_string(id));
    EXPECT_TRUE(params[4].value.IsNull());    // no such column in the body's row
    EXPECT_EQ(params[0].value.ToLong(), id);  // inputs stay as they were
  }
  // Without outputs the body's rows come back.
  std::vector<ParameterInfo> list = {{"@Min", adtype::kInteger, D::kInput, Variant(int32_t{8})}};
  const RowSet rows = backend_->CallProcedure("SPTEST_List", list);
  EXPECT_EQ(rows.columns, std::vector<std::string>{"ID"});
  ASSERT_EQ(rows.rows.size(), 1u);
  EXPECT_EQ(rows.rows[0][0].ToLong(), 8);
  // Dates are bound as SQLite text.
  const double when = OleDateFromYmd(2024, 3, 5);
  for (const auto& [value, text] : std::vector<std::pair<double, std::string>>{
           {when, "2024-03-05"}, {when + 0.5, "2024-03-05 12:00:00"}}) {
    std::vector<ParameterInfo> echo = {{"@When", adtype::kDate, D::kInput, Variant::Date(value)},
                                       {"@Text", adtype::kVarChar, D::kOutput, Variant()}};
    backend_->CallProcedure("SPTEST_Echo", echo);
    EXPECT_EQ(echo[1].value.RawString(), text);
  }
}

TEST_F(OdbcBackendTest, UnknownProceduresAreReported) {
  std::vector<ParameterInfo> params = {{"@A", adtype::kInteger, D::kInput, Variant(int32_t{1})},
                                       {"@B", adtype::kInteger, D::kOutput, Variant()}};
  // Without the routine table the {call} goes to the driver, which cannot run it.
  const VbError error = CaughtError([&] { backend_->CallProcedure("SPTEST_Rights", params); });
  EXPECT_EQ(error.Number(), vberr::kProviderError);
  EXPECT_EQ(error.Description().rfind("[", 0), 0u) << error.Description();
  EXPECT_NE(error.Description().find("(native "), std::string::npos) << error.Description();
  CreateRoutines();
  std::vector<ParameterInfo> none;
  const VbError e = CaughtError([&] { backend_->CallProcedure("SPTEST_Nope", none); });
  EXPECT_EQ(e.Number(), vberr::kProviderError);
  EXPECT_NE(e.Description().find("Could not find stored procedure 'SPTEST_Nope'."),
            std::string::npos)
      << e.Description();
}

// Closing disconnects: nothing runs on a closed connection, and opening it
// again finds what was written before.
TEST_F(OdbcBackendTest, ClosedConnectionRefusesWorkAndReopens) {
  backend_.reset();
  auto connection =
      OpenConnection(std::string("Driver=") + kOdbcDriver + ";Database=" + file_.path(),
                     "CREATE TABLE T (A INTEGER); INSERT INTO T VALUES (4)");
  connection->Close();
  EXPECT_EQ(connection->State(), kStateClosed);
  EXPECT_EQ(ErrorOf([&] { connection->Execute("SELECT A FROM T"); }),
            vberr::kAdoConnectionUnusable);
  EXPECT_EQ(ErrorOf([&] { StoredProc("SPTEST_List", connection).Execute(); }),
            vberr::kAdoConnectionUnusable);
  EXPECT_EQ(ErrorOf([&] { connection->Close(); }), vberr::kAdoObjectClosed);
  connection->Open();
  EXPECT_EQ(connection->Execute("SELECT A FROM T")->Fields("A").ToLong(), 4);
}

// A value as text for comparing the two engines: the embedded engine hands
// dates out as the stored text, ODBC as Date.
std::string Comparable(const Variant& value) {
  if (value.IsNull()) return "<NULL>";
  if (value.Type() == VarType::kDate) {
    return odbc::DateText(odbc::FieldsFromOleDate(value.RawNumber()));
  }
  return value.ConcatText();
}

class OdbcDemoDatabaseTest : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!OdbcDriverInstalled()) GTEST_SKIP() << kNoDriver;
    odbc_ = OpenConnection(std::string("Driver=") + kOdbcDriver + ";Database=" + file_.path());
    demo::CreateDemoDatabase(*odbc_);
    embedded_ = demo::OpenDemoDatabase(":memory:");
  }
  void TearDown() override { odbc_.reset(); }

  const TempDbFile file_{"odbc_demo"};
  std::shared_ptr<Connection> odbc_;
  std::shared_ptr<Connection> embedded_;
};

TEST_F(OdbcDemoDatabaseTest, EveryTableReadsAsInTheEmbeddedEngine) {
  std::vector<std::string> tables;
  for (auto rs = embedded_->Execute(
           "SELECT name FROM sqlite_master WHERE type IN ('table', 'view') ORDER BY name");
       !rs->EOF(); rs->MoveNext()) {
    tables.push_back(rs->Fields(0).ToString());
  }
  ASSERT_GT(tables.size(), 20u);
  for (const std::string& table : tables) {
    SCOPED_TRACE(table);
    const std::string sql = "SELECT * FROM " + table + " ORDER BY 1, 2";
    auto expected = embedded_->Execute(sql);
    auto actual = odbc_->Execute(sql);
    ASSERT_EQ(actual->FieldCount(), expected->FieldCount());
    for (int row = 0; !expected->EOF() && !actual->EOF();
         expected->MoveNext(), actual->MoveNext(), ++row) {
      for (int i = 0; i < expected->FieldCount(); ++i) {
        EXPECT_EQ(actual->FieldName(i), expected->FieldName(i));
        EXPECT_EQ(Comparable(actual->Fields(i)), Comparable(expected->Fields(i)))
            << "row " << row << " column " << expected->FieldName(i);
      }
    }
    EXPECT_TRUE(expected->EOF());
    EXPECT_TRUE(actual->EOF());
  }
}

}  // namespace
}  // namespace zarvik::db
