// The demo database built and queried through the ODBC backend (SQLite3
// ODBC driver) with the ADO-like classes, checked against the same database
// in the embedded engine.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "db/command.h"
#include "db/connection.h"
#include "db/db_test_support.h"
#include "db/odbc_support.h"
#include "db/recordset.h"
#include "demo/demo_db.h"
#include "platform/variant.h"
#include "platform/vb_error.h"

namespace zarvik::db {
namespace {

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
    if (!OdbcDriverInstalled()) {
      GTEST_SKIP() << "the SQLite3 ODBC driver is not registered (odbcinst -q -d); "
                      "install libsqliteodbc";
    }
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

TEST_F(OdbcDemoDatabaseTest, AccountRightsProcedureAnswersAsInTheEmbeddedEngine) {
  struct Case {
    int16_t group;
    const char* account;
    int32_t user;
    int16_t can_enable, can_view;
  };
  const std::vector<Case> cases = {{10, "1001", demo::user_id::kRossi, 0, 0},
                                   {10, "1002", demo::user_id::kRossi, 1, 0},
                                   {10, "1003", demo::user_id::kRossi, 1, 1},
                                   {10, "1001", demo::user_id::kBianchi, 1, 1}};
  const char* kProcedure = "SPFW_GetInfoRevokeContoPDC";
  // Through ODBC on SQLite nothing is described: a parameter is unknown by
  // name until it is declared.
  EXPECT_EQ(ErrorOf([&] { StoredProc(kProcedure, odbc_).Parameters("@GruppoPDC"); }),
            vberr::kAdoItemNotFound);
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.account) + " user " + std::to_string(c.user));
    // The embedded engine describes the procedure's parameters itself.
    Command described = StoredProc(kProcedure, embedded_);
    Command declared = StoredProc(kProcedure, odbc_);
    const std::vector<std::pair<const char*, int>> inputs = {
        {"@IdUtente", adtype::kInteger},
        {"@GruppoPDC", adtype::kSmallInt},
        {"@ContoPDC", adtype::kVarChar}};  // in the procedure's order
    for (const auto& [name, type] : inputs) {
      declared.AppendParameter({name, type, ParameterDirection::kInput, Variant()});
    }
    for (const char* name : {"@canAbilitato", "@canVisualizza"}) {
      declared.AppendParameter({name, adtype::kInteger, ParameterDirection::kOutput, Variant()});
    }
    for (Command* command : {&described, &declared}) {
      command->Parameters("@GruppoPDC").SetValue(Variant(c.group));
      command->Parameters("@ContoPDC").SetValue(Variant(c.account));
      command->Parameters("@IdUtente").SetValue(Variant(c.user));
      EXPECT_EQ(command->Execute()->State(), kStateClosed);
      EXPECT_EQ(command->Parameters("@canAbilitato").Value().ToInteger(), c.can_enable);
      EXPECT_EQ(command->Parameters("@canVisualizza").Value().ToInteger(), c.can_view);
    }
  }
}

TEST_F(OdbcDemoDatabaseTest, ProviderErrorsReachTheConnectionUnchanged) {
  const VbError error =
      CaughtError([&] { odbc_->Execute("SELECT NO_SUCH_COLUMN FROM FW07_APPUSER"); });
  EXPECT_EQ(error.Number(), vberr::kProviderError);
  EXPECT_EQ(error.Description().rfind("[HY000] (native 1) ", 0), 0u) << error.Description();
  EXPECT_NE(error.Description().find("no such column: NO_SUCH_COLUMN"), std::string::npos)
      << error.Description();
}

}  // namespace
}  // namespace zarvik::db
