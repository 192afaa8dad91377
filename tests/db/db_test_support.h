// Connections, commands and the ODBC driver check shared by the db tests.
#ifndef ZARVIK_TESTS_DB_DB_TEST_SUPPORT_H_
#define ZARVIK_TESTS_DB_DB_TEST_SUPPORT_H_

#include <gtest/gtest.h>
#include <sql.h>
#include <sqlext.h>
#include <unistd.h>

#include <cstdio>
#include <memory>
#include <string>
#include <utility>

#include "db/command.h"
#include "db/connection.h"
#include "platform/platform_test_support.h"

namespace zarvik::db {

using test::CaughtError;
using test::ErrorOf;

inline const char kMemory[] = "Provider=SQLite;Data Source=:memory:";
// The SQLite ODBC driver as Debian's libsqliteodbc registers it.
inline const char kOdbcDriver[] = "SQLite3";

// An open connection to `connection_string`, optionally running `script`.
inline std::shared_ptr<Connection> OpenConnection(const std::string& connection_string = kMemory,
                                                  const std::string& script = "",
                                                  int cursor_location = kUseClient) {
  auto connection = std::make_shared<Connection>();
  connection->SetConnectionString(connection_string);
  connection->SetCursorLocation(cursor_location);
  connection->Open();
  if (!script.empty()) connection->Execute(script);
  return connection;
}

// A stored-procedure command on `connection`.
inline Command StoredProc(const std::string& name, std::shared_ptr<Connection> connection) {
  Command command;
  command.SetCommandType(static_cast<int>(kCmdStoredProc));
  command.SetCommandText(name);
  command.SetActiveConnection(std::move(connection));
  return command;
}

// Whether the driver manager knows kOdbcDriver.
inline bool OdbcDriverInstalled() {
  SQLHENV env = SQL_NULL_HENV;
  if (!SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &env))) return false;
  SQLSetEnvAttr(env, SQL_ATTR_ODBC_VERSION, reinterpret_cast<SQLPOINTER>(SQL_OV_ODBC3), 0);
  bool found = false;
  SQLCHAR name[256], attributes[1024];
  SQLSMALLINT name_length = 0, attributes_length = 0;
  SQLUSMALLINT direction = SQL_FETCH_FIRST;
  while (SQL_SUCCEEDED(SQLDrivers(env, direction, name, sizeof name, &name_length, attributes,
                                  sizeof attributes, &attributes_length))) {
    found = found || std::string(reinterpret_cast<const char*>(name)) == kOdbcDriver;
    direction = SQL_FETCH_NEXT;
  }
  SQLFreeHandle(SQL_HANDLE_ENV, env);
  return found;
}

// A database file of the running test's own, removed before and after.
class TempDbFile {
 public:
  explicit TempDbFile(const std::string& tag)
      : path_(::testing::TempDir() + "zarvik_" + tag + "_" + std::to_string(getpid()) + "_" +
              ::testing::UnitTest::GetInstance()->current_test_info()->name() + ".db") {
    std::remove(path_.c_str());
  }
  ~TempDbFile() { std::remove(path_.c_str()); }
  TempDbFile(const TempDbFile&) = delete;
  TempDbFile& operator=(const TempDbFile&) = delete;
  const std::string& path() const { return path_; }

 private:
  std::string path_;
};

}  // namespace zarvik::db

#endif  // ZARVIK_TESTS_DB_DB_TEST_SUPPORT_H_
