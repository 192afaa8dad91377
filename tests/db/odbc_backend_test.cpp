// The ODBC backend against the SQLite ODBC driver ("SQLite3" as Debian's
// libsqliteodbc registers it), each test on a database file of its own.
#include "db/odbc_backend.h"

#include <gtest/gtest.h>
#include <sql.h>
#include <sqlext.h>
#include <unistd.h>

#include <cstdio>
#include <string>
#include <vector>

#include "platform/env.h"
#include "platform/variant.h"
#include "platform/vb_error.h"

namespace zarvik::db {
namespace {

constexpr const char* kDriver = "SQLite3";

// Whether the driver manager knows the SQLite3 driver.
bool DriverInstalled() {
  SQLHENV env = SQL_NULL_HENV;
  if (!SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &env))) return false;
  SQLSetEnvAttr(env, SQL_ATTR_ODBC_VERSION, reinterpret_cast<SQLPOINTER>(SQL_OV_ODBC3), 0);
  bool found = false;
  SQLCHAR name[256];
  SQLCHAR attributes[1024];
  SQLSMALLINT name_length = 0, attributes_length = 0;
  SQLUSMALLINT direction = SQL_FETCH_FIRST;
  while (SQL_SUCCEEDED(SQLDrivers(env, direction, name, sizeof name, &name_length, attributes,
                                  sizeof attributes, &attributes_length))) {
    if (std::string(reinterpret_cast<const char*>(name)) == kDriver) found = true;
    direction = SQL_FETCH_NEXT;
  }
  SQLFreeHandle(SQL_HANDLE_ENV, env);
  return found;
}

// Catches the VbError a call raises.
template <typename F>
VbError ErrorOf(F&& call) {
  try {
    call();
  } catch (const VbError& error) {
    return error;
  }
  ADD_FAILURE() << "no error raised";
  return VbError(0, "");
}

ParameterInfo Param(const char* name, int type, ParameterDirection direction,
                    Variant value = Variant()) {
  ParameterInfo info;
  info.name = name;
  info.type = type;
  info.direction = direction;
  info.value = std::move(value);
  return info;
}

class OdbcBackendTest : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!DriverInstalled()) {
      GTEST_SKIP() << "the SQLite3 ODBC driver is not registered (odbcinst -q -d); "
                      "install libsqliteodbc";
    }
    const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
    path_ = "/tmp/zarvik_odbc_" + std::to_string(getpid()) + "_" + info->name() + ".db";
    std::remove(path_.c_str());
    backend_ = OpenOdbcBackend(ConnectionString(), 0);
  }
  void TearDown() override {
    backend_.reset();
    if (!path_.empty()) std::remove(path_.c_str());
  }

  std::string ConnectionString() const {
    return std::string("Driver=") + kDriver + ";Database=" + path_;
  }

  void CreateRoutines() {
    backend_->Execute(
        "CREATE TABLE ZARVIK_ROUTINES (NAME TEXT PRIMARY KEY, KIND TEXT NOT NULL, "
        "PARAMS TEXT NOT NULL, BODY TEXT NOT NULL)");
    backend_->Execute("CREATE TABLE RIGHTS (ID INTEGER, CODE VARCHAR(20), GRANTED SMALLINT)");
    backend_->Execute("INSERT INTO RIGHTS VALUES (7, 'O''Brien', 0)");
    backend_->Execute("INSERT INTO RIGHTS VALUES (8, 'O''Brien', 1)");
    backend_->Execute(
        "INSERT INTO ZARVIK_ROUTINES VALUES ('SPTEST_Rights', 'PROCEDURE', "
        "'@Id INT IN, @Code VARCHAR IN, @Granted SMALLINT OUT, @Echo VARCHAR OUT', "
        "'SELECT COALESCE((SELECT GRANTED FROM RIGHTS WHERE ID = :Id AND CODE = :Code), 1) "
        "AS Granted, :Code || ''/'' || :Id AS echo')");
    backend_->Execute(
        "INSERT INTO ZARVIK_ROUTINES VALUES ('SPTEST_List', 'PROCEDURE', '@Min INT IN', "
        "'SELECT ID FROM RIGHTS WHERE ID >= :Min ORDER BY ID')");
    backend_->Execute(
        "INSERT INTO ZARVIK_ROUTINES VALUES ('SPTEST_Echo', 'PROCEDURE', "
        "'@When DATETIME IN, @Text VARCHAR OUT', 'SELECT :When AS Text')");
    backend_->Execute(
        "INSERT INTO ZARVIK_ROUTINES VALUES ('SPTEST_Fn', 'FUNCTION', '@A INT', 'SELECT :A')");
  }

  std::string path_;
  std::unique_ptr<Backend> backend_;
};

TEST_F(OdbcBackendTest, ReadsTypedValuesAndNull) {
  backend_->Execute(
      "CREATE TABLE T (I INTEGER, B BIGINT, S SMALLINT, F FLOAT, D DECIMAL(10,2), "
      "V VARCHAR(50), X TEXT, W DATETIME, Y DATE, K BIT)");
  backend_->Execute(
      "INSERT INTO T VALUES (-42, 5000000000, 3, 1.25, 12.5, '\xc3\xa0"
      "b\xe2\x82\xac', "
      "'plain', '2024-03-05 10:11:12', '2024-03-05', 1)");
  backend_->Execute(
      "INSERT INTO T VALUES (NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, "
      "NULL, NULL)");
  const RowSet rs = backend_->Execute("SELECT I, B, S, F, D, V, X, W, Y, K FROM T ORDER BY I DESC");
  ASSERT_EQ(rs.columns,
            (std::vector<std::string>{"I", "B", "S", "F", "D", "V", "X", "W", "Y", "K"}));
  ASSERT_EQ(rs.rows.size(), 2u);
  const std::vector<Variant>& row = rs.rows[0];
  EXPECT_EQ(row[0].Type(), VarType::kLong);
  EXPECT_EQ(row[0].ToLong(), -42);
  EXPECT_EQ(row[1].Type(), VarType::kDouble);  // beyond 32 bits
  EXPECT_EQ(row[1].ToDouble(), 5000000000.0);
  EXPECT_EQ(row[2].Type(), VarType::kLong);
  EXPECT_EQ(row[2].ToLong(), 3);
  EXPECT_EQ(row[3].Type(), VarType::kDouble);
  EXPECT_EQ(row[3].ToDouble(), 1.25);
  EXPECT_EQ(row[4].Type(), VarType::kDouble);
  EXPECT_EQ(row[4].ToDouble(), 12.5);
  EXPECT_EQ(row[5].Type(), VarType::kString);
  EXPECT_EQ(row[5].RawString(),
            "\xc3\xa0"
            "b\xe2\x82\xac");
  EXPECT_EQ(row[6].RawString(), "plain");
  EXPECT_EQ(row[7].Type(), VarType::kDate);
  EXPECT_NEAR(row[7].RawNumber(), OleDateFromYmd(2024, 3, 5) + (10 * 3600 + 11 * 60 + 12) / 86400.0,
              1e-9);
  EXPECT_EQ(row[8].Type(), VarType::kDate);
  EXPECT_EQ(row[8].RawNumber(), OleDateFromYmd(2024, 3, 5));
  // A SQLite BIT column is an integer column.
  EXPECT_EQ(row[9].Type(), VarType::kLong);
  EXPECT_EQ(row[9].ToLong(), 1);
  for (const Variant& value : rs.rows[1]) EXPECT_TRUE(value.IsNull());
}

TEST_F(OdbcBackendTest, StatementsWithoutRowsReturnNoColumns) {
  const RowSet created = backend_->Execute("CREATE TABLE T (N INTEGER)");
  EXPECT_TRUE(created.columns.empty());
  const RowSet inserted = backend_->Execute("INSERT INTO T VALUES (1)");
  EXPECT_TRUE(inserted.columns.empty());
  EXPECT_TRUE(inserted.rows.empty());
  // An UPDATE that touches nothing answers SQL_NO_DATA, which is no error.
  const RowSet updated = backend_->Execute("UPDATE T SET N = 2 WHERE N = 99");
  EXPECT_TRUE(updated.columns.empty());
  // A query without rows still names its columns.
  const RowSet empty = backend_->Execute("SELECT N FROM T WHERE N = 99");
  EXPECT_EQ(empty.columns, std::vector<std::string>{"N"});
  EXPECT_TRUE(empty.rows.empty());
}

TEST_F(OdbcBackendTest, LongTextIsReadWhole) {
  // Several fetch pieces long, with two-byte characters across piece ends.
  std::string text;
  for (int i = 0; i < 7001; ++i) text += i % 3 == 0 ? "\xc3\xa9" : "x";
  text += "END";
  backend_->Execute("CREATE TABLE T (X TEXT, V VARCHAR(10))");
  backend_->Execute("INSERT INTO T VALUES ('" + text + "', '" + text + "')");
  const RowSet rs = backend_->Execute("SELECT X, V FROM T");
  ASSERT_EQ(rs.rows.size(), 1u);
  EXPECT_EQ(rs.rows[0][0].RawString(), text);
  EXPECT_EQ(rs.rows[0][1].RawString(), text);
}

TEST_F(OdbcBackendTest, TranslatesTsqlForASqliteDatabase) {
  backend_->Execute("CREATE TABLE T (N INTEGER, S VARCHAR(10))");
  for (int n : {3, 1, 2}) {
    backend_->Execute("INSERT INTO T VALUES (" + std::to_string(n) + ", NULL)");
  }
  const RowSet top = backend_->Execute("SELECT TOP 2 N FROM [dbo].[T] WITH (NOLOCK) ORDER BY N");
  ASSERT_EQ(top.rows.size(), 2u);
  EXPECT_EQ(top.rows[0][0].ToLong(), 1);
  EXPECT_EQ(top.rows[1][0].ToLong(), 2);
  const RowSet isnull = backend_->Execute("SELECT ISNULL(S, 'none') AS S FROM T WHERE N = 1");
  ASSERT_EQ(isnull.rows.size(), 1u);
  EXPECT_EQ(isnull.rows[0][0].RawString(), "none");
}

TEST_F(OdbcBackendTest, StatementErrorsCarrySqlstateNativeErrorAndText) {
  struct Case {
    const char* sql;
    const char* prefix;
    const char* text;
  };
  const std::vector<Case> cases = {
      {"SELEC 1", "[HY000] (native 1) ", "syntax error"},
      {"SELECT * FROM NO_SUCH_TABLE", "[HY000] (native 1) ", "no such table: NO_SUCH_TABLE"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.sql);
    const VbError error = ErrorOf([&] { backend_->Execute(c.sql); });
    EXPECT_EQ(error.Number(), vberr::kProviderError);
    EXPECT_EQ(error.Description().rfind(c.prefix, 0), 0u) << error.Description();
    EXPECT_NE(error.Description().find(c.text), std::string::npos) << error.Description();
  }
  // The backend stays usable after a failed statement.
  EXPECT_EQ(backend_->Execute("SELECT 5").rows[0][0].ToLong(), 5);
}

TEST_F(OdbcBackendTest, BadConnectionStringsFailToConnect) {
  struct Case {
    std::string connection;
    const char* prefix;
  };
  const std::vector<Case> cases = {
      {"Driver=NoSuchDriverZarvik;Database=/tmp/x.db", "[01000] (native 0) "},
      {"Provider=SQLOLEDB;Data Source=server;Initial Catalog=erp", "[IM002] (native 0) "},
      {std::string("Driver=") + kDriver + ";Database=/nonexistent-zarvik-dir/x.db",
       "[HY000] (native "},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.connection);
    const VbError error = ErrorOf([&] { OpenOdbcBackend(c.connection, 2); });
    EXPECT_EQ(error.Number(), vberr::kProviderConnectFailed);
    EXPECT_EQ(error.Description().rfind(c.prefix, 0), 0u) << error.Description();
  }
}

TEST_F(OdbcBackendTest, TimeoutsAreAccepted) {
  auto with_login_timeout = OpenOdbcBackend(ConnectionString(), 5);
  with_login_timeout->SetCommandTimeout(7);
  EXPECT_EQ(with_login_timeout->Execute("SELECT 1").rows.size(), 1u);
  backend_->SetCommandTimeout(0);
  EXPECT_EQ(backend_->Execute("SELECT 2").rows[0][0].ToLong(), 2);
  backend_->SetCommandTimeout(30);
  EXPECT_EQ(backend_->Execute("SELECT 3").rows[0][0].ToLong(), 3);
}

TEST_F(OdbcBackendTest, SqliteDescribesNoProcedureParameters) {
  CreateRoutines();
  EXPECT_TRUE(backend_->DescribeProcedure("SPTEST_Rights").empty());
  EXPECT_TRUE(backend_->DescribeProcedure("dbo.SPFW_GetInfoRevokeContoPDC").empty());
}

TEST_F(OdbcBackendTest, EmulatedProcedureBindsInputsAndFillsOutputs) {
  CreateRoutines();
  using D = ParameterDirection;
  struct Case {
    int32_t id;
    int16_t granted;
  };
  for (const Case& c : {Case{7, 0}, Case{8, 1}, Case{9, 1}}) {
    SCOPED_TRACE(c.id);
    std::vector<ParameterInfo> params = {
        Param("@Id", adtype::kInteger, D::kInput, Variant(c.id)),
        Param("@Code", adtype::kVarChar, D::kInput, Variant("O'Brien")),
        Param("@Granted", adtype::kSmallInt, D::kOutput),
        Param("@Echo", adtype::kVarChar, D::kInputOutput, Variant("ignored")),
        Param("@Missing", adtype::kInteger, D::kOutput, Variant(int32_t{5})),
    };
    const RowSet rows = backend_->CallProcedure("dbo.SPTEST_Rights", params);
    EXPECT_TRUE(rows.columns.empty());
    EXPECT_EQ(params[2].value.Type(), VarType::kInteger);  // as declared: 16-bit
    EXPECT_EQ(params[2].value.ToInteger(), c.granted);
    EXPECT_EQ(params[3].value.RawString(), "O'Brien/" + std::to_string(c.id));
    EXPECT_TRUE(params[4].value.IsNull());      // no such column in the body's row
    EXPECT_EQ(params[0].value.ToLong(), c.id);  // inputs stay as they were
  }
}

TEST_F(OdbcBackendTest, EmulatedProcedureWithoutOutputsReturnsItsRows) {
  CreateRoutines();
  std::vector<ParameterInfo> params = {
      Param("@Min", adtype::kInteger, ParameterDirection::kInput, Variant(int32_t{8}))};
  const RowSet rows = backend_->CallProcedure("SPTEST_List", params);
  EXPECT_EQ(rows.columns, std::vector<std::string>{"ID"});
  ASSERT_EQ(rows.rows.size(), 1u);
  EXPECT_EQ(rows.rows[0][0].ToLong(), 8);
}

TEST_F(OdbcBackendTest, EmulatedProcedureBindsDatesAsSqliteText) {
  CreateRoutines();
  const double when = OleDateFromYmd(2024, 3, 5);
  struct Case {
    double value;
    const char* text;
  };
  for (const Case& c : {Case{when, "2024-03-05"}, Case{when + 0.5, "2024-03-05 12:00:00"}}) {
    std::vector<ParameterInfo> params = {
        Param("@When", adtype::kDate, ParameterDirection::kInput, Variant::Date(c.value)),
        Param("@Text", adtype::kVarChar, ParameterDirection::kOutput)};
    backend_->CallProcedure("SPTEST_Echo", params);
    EXPECT_EQ(params[1].value.RawString(), c.text);
  }
}

TEST_F(OdbcBackendTest, UnknownProceduresAreReported) {
  CreateRoutines();
  // A FUNCTION row is not a procedure.
  for (const char* name : {"SPTEST_Nope", "SPTEST_Fn"}) {
    std::vector<ParameterInfo> params;
    const VbError error = ErrorOf([&] { backend_->CallProcedure(name, params); });
    EXPECT_EQ(error.Number(), vberr::kProviderError);
    EXPECT_NE(
        error.Description().find(std::string("Could not find stored procedure '") + name + "'."),
        std::string::npos)
        << error.Description();
  }
}

TEST_F(OdbcBackendTest, WithoutTheRoutineTableTheCallGoesToTheDriver) {
  // SQLite cannot run a {call}: the driver's own error comes back.
  std::vector<ParameterInfo> params = {
      Param("@A", adtype::kInteger, ParameterDirection::kInput, Variant(int32_t{1})),
      Param("@B", adtype::kInteger, ParameterDirection::kOutput)};
  const VbError error = ErrorOf([&] { backend_->CallProcedure("SPTEST_Rights", params); });
  EXPECT_EQ(error.Number(), vberr::kProviderError);
  EXPECT_EQ(error.Description().rfind("[", 0), 0u) << error.Description();
  EXPECT_NE(error.Description().find("(native "), std::string::npos) << error.Description();
}

}  // namespace
}  // namespace zarvik::db
