// ODBC through unixODBC: SQL Server through any ODBC driver, or any other
// database with an ODBC driver (the tests use the SQLite ODBC driver, in
// which case statements are translated from T-SQL as for the embedded engine).
#ifndef ZARVIK_DB_ODBC_BACKEND_H_
#define ZARVIK_DB_ODBC_BACKEND_H_

#include <memory>
#include <string>

#include "db/backend.h"

namespace zarvik::db {

// Errors carry SQLSTATE, native error and the driver's text.
std::unique_ptr<Backend> OpenOdbcBackend(const std::string& connection_string, int connect_timeout);

}  // namespace zarvik::db

#endif  // ZARVIK_DB_ODBC_BACKEND_H_
