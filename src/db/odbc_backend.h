// ODBC through unixODBC: SQL Server through any ODBC driver, or any other
// database with an ODBC driver (the tests use the SQLite ODBC driver, in
// which case statements are translated from T-SQL as for the embedded engine).
//
// The connection string goes to SQLDriverConnect unchanged; `connect_timeout`
// is the login timeout in seconds (0 = the driver's default). The command
// timeout applies to every statement as SQL_ATTR_QUERY_TIMEOUT.
//
// Values: integers -> Long (Double beyond 32 bits), decimal and floating
// types -> Double, character types -> String (UTF-8), date and time ->
// Date, bit -> Boolean (Long on SQLite, where BIT is an integer column),
// NULL -> Null. Statement and result texts travel as UTF-8 (ANSI calls).
//
// Procedures: DescribeProcedure asks SQLProcedureColumns (names with their
// leading '@', the return value included when the driver lists it; an empty
// list when the driver knows no procedures, as SQLite's). CallProcedure sends
// "{call NAME(?, ...)}" with one bound marker per parameter. On a SQLite
// database holding ZARVIK_ROUTINES (see sqlite_backend.h) the routine's body
// is run instead, as the embedded engine runs it, through ODBC; the caller
// declares the parameters, since the SQLite driver describes none. The
// routines cannot be called as functions through ODBC: the driver offers no
// way to register them.
//
// Errors: VbError(kProviderConnectFailed) when the connection cannot be
// made, VbError(kProviderError) for everything after; the text holds each
// diagnostic record as "[SQLSTATE] (native N) message", one per line.
#ifndef ZARVIK_DB_ODBC_BACKEND_H_
#define ZARVIK_DB_ODBC_BACKEND_H_

#include <memory>
#include <string>
#include <vector>

#include "db/backend.h"

namespace zarvik::db {

std::unique_ptr<Backend> OpenOdbcBackend(const std::string& connection_string, int connect_timeout);

// The names of the drivers the driver manager knows (odbcinst.ini); empty
// when the driver manager cannot be asked.
std::vector<std::string> InstalledOdbcDrivers();

}  // namespace zarvik::db

#endif  // ZARVIK_DB_ODBC_BACKEND_H_
