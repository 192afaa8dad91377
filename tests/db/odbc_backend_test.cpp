#include "db/odbc_backend.h"

#include "db/db_test_support.h"
#include "db/odbc_support.h"
#include "demo/demo_db.h"
#include "platform/env.h"

namespace zarvik::db {
namespace {

using D = ParameterDirection;

const char kNoDriver[] = "the SQLite3 ODBC driver is not registered; install libsqliteodbc";

// Column names, then each row: "A|B;1|x;2|<NULL>". Dates read as the embedded engine's text.
std::string Dump(const RowSet& rs) {
  std::string text;
  for (const std::string& column : rs.columns) text += (text.empty() ? "" : "|") + column;
  for (const std::vector<Variant>& row : rs.rows) {
    for (size_t i = 0; i < row.size(); ++i) {
      text += i == 0 ? ";" : "|";
      if (row[i].Type() == VarType::kDate) {
        text += odbc::DateText(odbc::FieldsFromOleDate(row[i].RawNumber()));
      } else {
        text += row[i].IsNull() ? "<NULL>" : row[i].ConcatText();
      }
    }
  }
  return text;
}

class OdbcBackendTest : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!OdbcDriverInstalled()) GTEST_SKIP() << kNoDriver;
    backend_ = OpenOdbcBackend(source_, 0);
  }

  const TempDbFile file_{"odbc"};
  const std::string source_ = std::string("Driver=") + kOdbcDriver + ";Database=" + file_.path();
  std::unique_ptr<Backend> backend_;
};

TEST_F(OdbcBackendTest, ReadsTypedValuesLongTextEmptyResultsAndTsqlOnSqlite) {
  backend_->Execute(
      "CREATE TABLE T (I INTEGER, B BIGINT, S SMALLINT, F FLOAT, D DECIMAL(10,2), "
      "V VARCHAR(50), W DATETIME, Y DATE, K BIT)");
  backend_->Execute(
      "INSERT INTO T VALUES (-2147483648, 5000000000, 2147483647, 1.25, 12.5, '\xc3\xa0z', "
      "'2024-03-05 10:11:12', "
      "'2024-03-05', 1), (NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL)");
  const RowSet rs = backend_->Execute("SELECT I, B, S, F, D, V, W, Y, K FROM T ORDER BY I DESC");
  EXPECT_EQ(Dump(rs),
            "I|B|S|F|D|V|W|Y|K;-2147483648|5000000000|2147483647|1.25|12.5|\xc3\xa0z|2024-03-05 "
            "10:11:12|2024-03-05|"
            "1;<NULL>|<NULL>|<NULL>|<NULL>|<NULL>|<NULL>|<NULL>|<NULL>|<NULL>");
  // An integer is a Long up to the 32-bit limits, a Double beyond; SQLite's BIT is an integer.
  using V = VarType;
  std::vector<VarType> types;
  for (const Variant& value : rs.rows.at(0)) types.push_back(value.Type());
  EXPECT_EQ(types, (std::vector<VarType>{V::kLong, V::kDouble, V::kLong, V::kDouble, V::kDouble,
                                         V::kString, V::kDate, V::kDate, V::kLong}));
  // Several fetch pieces long, with two-byte characters across piece ends.
  std::string text;
  for (int i = 0; i < 7001; ++i) text += i % 3 == 0 ? "\xc3\xa9" : "x";
  backend_->Execute("CREATE TABLE L (X TEXT, V VARCHAR(10))");
  backend_->Execute("INSERT INTO L VALUES ('" + text + "', '" + text + "')");
  EXPECT_EQ(Dump(backend_->Execute("SELECT X, V FROM L")), "X|V;" + text + "|" + text);
  backend_->Execute("CREATE TABLE E (N INTEGER, S VARCHAR(10))");
  // An UPDATE that touches nothing answers SQL_NO_DATA, which is no error.
  EXPECT_TRUE(backend_->Execute("UPDATE E SET S = 'a' WHERE N = 1").columns.empty());
  EXPECT_EQ(Dump(backend_->Execute("SELECT S FROM E")), "S");  // still names its columns
  backend_->Execute("INSERT INTO E VALUES (3, NULL), (1, NULL), (2, 'x')");
  backend_->SetCommandTimeout(30);
  EXPECT_EQ(Dump(backend_->Execute(
                "SELECT TOP 2 ISNULL(S, 'none') AS S FROM [dbo].[E] WITH (NOLOCK) ORDER BY N")),
            "S;none;x");
}

TEST_F(OdbcBackendTest, ErrorsCarrySqlstateNativeErrorAndText) {
  const std::string error = Failure([&] { backend_->Execute("SELECT * FROM NO_SUCH_TABLE"); });
  EXPECT_EQ(error.rfind(std::to_string(vberr::kProviderError) + " [HY000] (native 1) ", 0), 0u);
  EXPECT_NE(error.find("no such table: NO_SUCH_TABLE"), std::string::npos) << error;
  EXPECT_EQ(Dump(backend_->Execute("SELECT 5 AS N")), "N;5");  // still usable

  const std::vector<std::pair<std::string, const char*>> bad_connections = {
      {"Driver=NoSuchDriverZarvik;Database=/tmp/x.db", "[01000] (native 0) "},
      // Mapped to an SQL Server ODBC driver, which this machine lacks.
      {"Provider=SQLOLEDB;Data Source=server;Initial Catalog=erp", "[01000] (native 0) "}};
  for (const auto& [connection, prefix] : bad_connections) {
    const std::string e = Failure([&] { OpenBackend(connection, 2); });
    EXPECT_EQ(e.rfind(std::to_string(vberr::kProviderConnectFailed) + " " + prefix, 0), 0u) << e;
  }
}

TEST_F(OdbcBackendTest, EmulatedProcedureBindsInputsAndFillsOutputs) {
  std::vector<ParameterInfo> none;
  // Without the routine table the {call} goes to the driver, which cannot run it.
  const std::string driver = Failure([&] { backend_->CallProcedure("SPTEST_Rights", none); });
  EXPECT_EQ(driver.rfind(std::to_string(vberr::kProviderError) + " [", 0), 0u) << driver;
  for (const char* sql :
       {"CREATE TABLE ZARVIK_ROUTINES (ROUTINE_NAME TEXT PRIMARY KEY, ROUTINE_BODY TEXT)",
        "CREATE TABLE RIGHTS (ID INTEGER, CODE VARCHAR(20), GRANTED SMALLINT)",
        "INSERT INTO RIGHTS VALUES (7, 'O''Brien', 0), (8, 'O''Brien', 1)",
        "INSERT INTO ZARVIK_ROUTINES VALUES ('SPTEST_Rights', 'SELECT (SELECT GRANTED FROM "
        "RIGHTS WHERE ID = :Id AND CODE = :Code) AS Granted, :Code || ''/'' || :Id AS echo'), "
        "('SPTEST_List', 'SELECT ID FROM RIGHTS WHERE ID >= :Min ORDER BY ID'), "
        "('SPTEST_Echo', 'SELECT :When AS Text')"}) {
    backend_->Execute(sql);
  }
  EXPECT_EQ(CaughtError([&] { backend_->CallProcedure("SPTEST_Nope", none); }).Description(),
            "[42000] (native 2812) Could not find stored procedure 'SPTEST_Nope'.");
  std::vector<ParameterInfo> params = {
      {"@Id", adtype::kInteger, D::kInput, Variant(int32_t{7})},
      {"@Code", adtype::kVarChar, D::kInput, Variant("O'Brien")},
      {"@Granted", adtype::kSmallInt, D::kOutput, Variant()},
      {"@Echo", adtype::kVarChar, D::kInputOutput, Variant("ignored")},
      {"@Missing", adtype::kInteger, D::kOutput, Variant(int32_t{5})}};
  EXPECT_TRUE(backend_->CallProcedure("dbo.SPTEST_Rights", params).columns.empty());
  EXPECT_EQ(params[2].value.Type(), VarType::kInteger);  // as declared: 16-bit
  // No column of the body's row is called Missing: it comes back Null.
  EXPECT_EQ(Dump({{}, {{params[0].value, params[2].value, params[3].value, params[4].value}}}),
            ";7|0|O'Brien/7|<NULL>");
  // Without outputs the body's rows come back.
  std::vector<ParameterInfo> list = {{"@Min", adtype::kInteger, D::kInput, Variant(int32_t{8})}};
  EXPECT_EQ(Dump(backend_->CallProcedure("SPTEST_List", list)), "ID;8");
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

TEST(OdbcDemoDatabaseTest, EveryTableReadsAsInTheEmbeddedEngine) {
  if (!OdbcDriverInstalled()) GTEST_SKIP() << kNoDriver;
  const TempDbFile file("odbc_demo");
  auto odbc = OpenConnection(std::string("Driver=") + kOdbcDriver + ";Database=" + file.path());
  demo::CreateDemoDatabase(*odbc);
  auto embedded = demo::OpenDemoDatabase(":memory:");
  int tables = 0;
  for (auto rs = embedded->Execute(
           "SELECT name FROM sqlite_master WHERE type IN ('table', 'view') ORDER BY name");
       !rs->EOF(); rs->MoveNext(), ++tables) {
    const std::string sql = "SELECT * FROM " + rs->Fields(0).ToString() + " ORDER BY 1, 2";
    EXPECT_EQ(Dump(odbc->OpenBackendOrThrow().Execute(sql)),
              Dump(embedded->OpenBackendOrThrow().Execute(sql)));
  }
  EXPECT_GT(tables, 20);
}

}  // namespace
}  // namespace zarvik::db
