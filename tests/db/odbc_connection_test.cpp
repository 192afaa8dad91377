// The demo database built and queried through the ODBC backend (SQLite3
// ODBC driver) with the ADO-like classes, checked against the same database
// in the embedded engine.
#include <gtest/gtest.h>
#include <sql.h>
#include <sqlext.h>
#include <unistd.h>

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "db/command.h"
#include "db/connection.h"
#include "db/odbc_support.h"
#include "db/recordset.h"
#include "demo/demo_db.h"
#include "platform/variant.h"
#include "platform/vb_error.h"

namespace zarvik::db {
namespace {

bool SqliteOdbcDriverInstalled() {
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
    if (std::string(reinterpret_cast<const char*>(name)) == "SQLite3") found = true;
    direction = SQL_FETCH_NEXT;
  }
  SQLFreeHandle(SQL_HANDLE_ENV, env);
  return found;
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
    if (!SqliteOdbcDriverInstalled()) {
      GTEST_SKIP() << "the SQLite3 ODBC driver is not registered (odbcinst -q -d); "
                      "install libsqliteodbc";
    }
    const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
    path_ = "/tmp/zarvik_odbc_demo_" + std::to_string(getpid()) + "_" + info->name() + ".db";
    std::remove(path_.c_str());
    odbc_ = std::make_shared<Connection>();
    odbc_->SetConnectionString("Driver=SQLite3;Database=" + path_);
    odbc_->SetCursorLocation(kUseClient);
    odbc_->Open();
    demo::CreateDemoDatabase(*odbc_);
    embedded_ = demo::OpenDemoDatabase(":memory:");
  }
  void TearDown() override {
    odbc_.reset();
    embedded_.reset();
    if (!path_.empty()) std::remove(path_.c_str());
  }

  std::string path_;
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
    for (int i = 0; i < expected->FieldCount(); ++i) {
      EXPECT_EQ(actual->FieldName(i), expected->FieldName(i));
    }
    int row = 0;
    for (; !expected->EOF() && !actual->EOF(); expected->MoveNext(), actual->MoveNext(), ++row) {
      for (int i = 0; i < expected->FieldCount(); ++i) {
        EXPECT_EQ(Comparable(actual->Fields(i)), Comparable(expected->Fields(i)))
            << "row " << row << " column " << expected->FieldName(i);
      }
    }
    EXPECT_TRUE(expected->EOF());
    EXPECT_TRUE(actual->EOF());
  }
}

TEST_F(OdbcDemoDatabaseTest, AccountRightsProcedureAnswersAsInTheEmbeddedEngine) {
  struct Case {
    int16_t group;
    const char* account;
    int32_t user;
    int16_t can_enable;
    int16_t can_view;
  };
  const std::vector<Case> cases = {
      {10, "1001", demo::user_id::kRossi, 0, 0},
      {10, "1002", demo::user_id::kRossi, 1, 0},
      {10, "1003", demo::user_id::kRossi, 1, 1},
      {10, "1001", demo::user_id::kBianchi, 1, 1},
  };
  const char* kProcedure = "SPFW_GetInfoRevokeContoPDC";
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.account) + " user " + std::to_string(c.user));
    // The embedded engine describes the procedure's parameters itself.
    Command described;
    described.SetCommandType(static_cast<int>(kCmdStoredProc));
    described.SetCommandText(kProcedure);
    described.SetActiveConnection(embedded_);
    described.Parameters("@GruppoPDC").SetValue(Variant(c.group));
    described.Parameters("@ContoPDC").SetValue(Variant(c.account));
    described.Parameters("@IdUtente").SetValue(Variant(c.user));
    described.Execute();

    // Through ODBC on SQLite nothing is described: the parameters are
    // declared, in the procedure's order.
    Command declared;
    declared.SetCommandType(static_cast<int>(kCmdStoredProc));
    declared.SetCommandText(kProcedure);
    declared.SetActiveConnection(odbc_);
    const std::vector<std::pair<const char*, int>> inputs = {{"@IdUtente", adtype::kInteger},
                                                             {"@GruppoPDC", adtype::kSmallInt},
                                                             {"@ContoPDC", adtype::kVarChar}};
    for (const auto& [name, type] : inputs) {
      declared.AppendParameter({name, type, ParameterDirection::kInput, Variant()});
    }
    for (const char* name : {"@canAbilitato", "@canVisualizza"}) {
      declared.AppendParameter({name, adtype::kInteger, ParameterDirection::kOutput, Variant()});
    }
    declared.Parameters("@GruppoPDC").SetValue(Variant(c.group));
    declared.Parameters("@ContoPDC").SetValue(Variant(c.account));
    declared.Parameters("@IdUtente").SetValue(Variant(c.user));
    const auto rows = declared.Execute();
    EXPECT_EQ(rows->State(), kStateClosed);

    for (const char* name : {"@canAbilitato", "@canVisualizza"}) {
      EXPECT_EQ(declared.Parameters(name).Value().ToInteger(),
                described.Parameters(name).Value().ToInteger())
          << name;
    }
    EXPECT_EQ(declared.Parameters("@canAbilitato").Value().ToInteger(), c.can_enable);
    EXPECT_EQ(declared.Parameters("@canVisualizza").Value().ToInteger(), c.can_view);
  }
}

TEST_F(OdbcDemoDatabaseTest, UndescribedParametersAreUnknownByName) {
  Command command;
  command.SetCommandType(static_cast<int>(kCmdStoredProc));
  command.SetCommandText("SPFW_GetInfoRevokeContoPDC");
  command.SetActiveConnection(odbc_);
  try {
    command.Parameters("@GruppoPDC");
    FAIL() << "no error raised";
  } catch (const VbError& error) {
    EXPECT_EQ(error.Number(), vberr::kAdoItemNotFound);
  }
}

TEST_F(OdbcDemoDatabaseTest, ProviderErrorsReachTheConnectionUnchanged) {
  try {
    odbc_->Execute("SELECT NO_SUCH_COLUMN FROM FW07_APPUSER");
    FAIL() << "no error raised";
  } catch (const VbError& error) {
    EXPECT_EQ(error.Number(), vberr::kProviderError);
    EXPECT_EQ(error.Description().rfind("[HY000] (native 1) ", 0), 0u) << error.Description();
    EXPECT_NE(error.Description().find("no such column: NO_SUCH_COLUMN"), std::string::npos)
        << error.Description();
  }
}

}  // namespace
}  // namespace zarvik::db
