// Choosing the backend a connection string names.
#include "db/backend.h"

#include <string>
#include <vector>

#include "db/connection_string.h"
#include "db/odbc_backend.h"
#ifndef _WIN32
#include "db/sqlite_backend.h"
#endif
#include "platform/vb_error.h"
#include "platform/vb_string.h"

namespace zarvik::db {
namespace {

#ifdef _WIN32
constexpr const char* kKnownProviders = "SQLOLEDB, SQLNCLI11, MSOLEDBSQL, MSDASQL";
#else
constexpr const char* kKnownProviders = "SQLite, SQLOLEDB, SQLNCLI11, MSOLEDBSQL, MSDASQL";
#endif

#ifndef _WIN32
SqliteOpenMode SqliteMode(const std::string& connection_string) {
  const std::string mode = vb::UCase(ConnectionStringValue(connection_string, "Mode"));
  if (mode.empty() || mode == "READWRITE") return SqliteOpenMode::kReadWrite;
  if (mode == "READWRITECREATE") return SqliteOpenMode::kReadWriteCreate;
  if (mode == "READONLY") return SqliteOpenMode::kReadOnly;
  throw VbError(vberr::kProviderConnectFailed,
                "SQLite: Mode must be ReadWrite, ReadWriteCreate or ReadOnly, not '" +
                    ConnectionStringValue(connection_string, "Mode") + "'");
}
#endif

// The SQL Server ODBC driver an OLE DB connection string is given to: the
// newest of Microsoft's drivers that is installed, else FreeTDS, else the
// newest Microsoft driver's name (the driver manager then says it is
// missing).
std::string SqlServerOdbcDriver() {
  const std::vector<std::string> preferred = {"ODBC Driver 18 for SQL Server",
                                              "ODBC Driver 17 for SQL Server",
                                              "ODBC Driver 13 for SQL Server", "FreeTDS"};
  const std::vector<std::string> installed = InstalledOdbcDrivers();
  for (const std::string& name : preferred) {
    for (const std::string& have : installed) {
      if (vb::UCase(have) == vb::UCase(name)) return have;
    }
  }
  return preferred.front();
}

// The string without its Provider item, for MSDASQL (OLE DB over ODBC).
std::string WithoutProvider(const std::string& connection_string) {
  std::string odbc;
  for (const ConnectionStringItem& item : ParseConnectionString(connection_string)) {
    if (vb::UCase(item.key) == "PROVIDER") continue;
    if (!odbc.empty()) odbc += ";";
    odbc += item.key + "=" + OdbcValue(item.value);
  }
  return odbc;
}

}  // namespace

std::unique_ptr<Backend> OpenBackend(const std::string& connection_string, int connect_timeout) {
  const std::string provider = ConnectionStringValue(connection_string, "Provider");
  const std::string name = vb::UCase(provider);
  if (name.empty()) return OpenOdbcBackend(connection_string, connect_timeout);
#ifndef _WIN32
  // The embedded engine is not part of the Windows build: there, a host's
  // connections are its own ADO's, and SQLite is an unknown provider.
  if (name == "SQLITE") {
    const std::string path = ConnectionStringValue(connection_string, "Data Source");
    if (path.empty()) {
      throw VbError(vberr::kProviderConnectFailed,
                    "SQLite: the connection string names no Data Source");
    }
    return OpenSqliteBackend(path, SqliteMode(connection_string));
  }
#endif
  if (IsSqlServerOleDbProvider(provider)) {
    const std::string pinned = ConnectionStringValue(connection_string, "Driver");
    const std::string driver = pinned.empty() ? SqlServerOdbcDriver() : pinned;
    try {
      return OpenOdbcBackend(SqlServerOdbcFromOleDb(connection_string, driver), connect_timeout);
    } catch (const VbError& e) {
      throw VbError(e.Number(), e.Description() + "\n(the OLE DB provider " + provider +
                                    " is reached through the ODBC driver " + driver + ")");
    }
  }
  if (name == "MSDASQL" || name.rfind("MSDASQL.", 0) == 0) {
    return OpenOdbcBackend(WithoutProvider(connection_string), connect_timeout);
  }
  throw VbError(vberr::kAdoProviderNotFound, VbErrorText(vberr::kAdoProviderNotFound) +
                                                 " (Provider=" + provider +
                                                 "; known providers: " + kKnownProviders + ")");
}

}  // namespace zarvik::db
