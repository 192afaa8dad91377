// Connections, commands and the ODBC driver check shared by the db tests.
#ifndef ZARVIK_TESTS_DB_DB_TEST_SUPPORT_H_
#define ZARVIK_TESTS_DB_DB_TEST_SUPPORT_H_

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <string>
#include <utility>

#include "db/command.h"
#include "db/connection.h"
#include "db/odbc_backend.h"
#include "platform/platform_test_support.h"

namespace zarvik::db {

using test::CaughtError;
using test::ErrorOf;
using test::ErrorsOf;

inline const char kMemory[] = "Provider=SQLite;Data Source=:memory:";
// The SQLite ODBC driver under the name Debian's libsqliteodbc gives it.
inline const char kOdbcDriver[] = "SQLite3";

// An open connection to `connection_string`, optionally running `script`.
inline std::shared_ptr<Connection> OpenConnection(const std::string& connection_string = kMemory,
                                                  const std::string& script = "",
                                                  int cursor_location = kUseClient) {
  auto connection = std::make_shared<Connection>();
  connection->SetConnectionString(connection_string);
  connection->SetCursorLocation(cursor_location);
  connection->Open();
  if (!script.empty()) connection->ExecuteScript(script);
  return connection;
}

// "number description" of an error.
inline std::string FailureText(const VbError& e) {
  return std::to_string(e.Number()) + " " + e.Description();
}

// FailureText of the VbError `f` raised.
template <typename F>
std::string Failure(F&& f) {
  return FailureText(CaughtError(f));
}

// The first field's text of what `sql` answers, or "number description" of the error it raises.
inline std::string Answer(Connection& connection, const std::string& sql) {
  std::string answer;
  const VbError e = CaughtError([&] { answer = connection.Execute(sql)->Fields(0).ConcatText(); });
  return e.Number() == 0 ? answer : FailureText(e);
}

// A stored-procedure command on `connection`.
inline Command StoredProc(const std::string& name, std::shared_ptr<Connection> connection) {
  Command command;
  command.SetCommandType(static_cast<int>(kCmdStoredProc));
  command.SetCommandText(name);
  command.SetActiveConnection(std::move(connection));
  return command;
}

// Registers kOdbcDriver in an odbcinst.ini of the process's own (ODBCSYSINI), removed when
// the process ends, and answers whether the driver manager knows it; call before other ODBC.
inline bool OdbcDriverInstalled() {
#ifdef ZARVIK_SQLITE_ODBC_DRIVER
  static const struct OdbcInst {
    const std::string dir = ::testing::TempDir() + "zarvik_odbcinst_" + std::to_string(getpid());
    OdbcInst() {
      ::mkdir(dir.c_str(), 0700);
      std::ofstream(dir + "/odbcinst.ini", std::ios::trunc)
          << "[" << kOdbcDriver << "]\nDriver=" << ZARVIK_SQLITE_ODBC_DRIVER << "\n";
      ::setenv("ODBCSYSINI", dir.c_str(), 1);
    }
    ~OdbcInst() {
      std::remove((dir + "/odbcinst.ini").c_str());
      ::rmdir(dir.c_str());
    }
  } odbcinst;
#endif
  const std::vector<std::string> drivers = InstalledOdbcDrivers();
  return std::find(drivers.begin(), drivers.end(), kOdbcDriver) != drivers.end();
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
  TempDbFile(const TempDbFile&) = delete;  // one owner removes the file
  TempDbFile& operator=(const TempDbFile&) = delete;
  const std::string& path() const { return path_; }

 private:
  const std::string path_;
};

}  // namespace zarvik::db

#endif  // ZARVIK_TESTS_DB_DB_TEST_SUPPORT_H_
