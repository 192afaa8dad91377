// The embedded SQLite engine behind "Provider=SQLite;Data Source=PATH".
//
// Statements are translated from T-SQL first. The database's routines live
// in the table ZARVIK_ROUTINES (see demo/schema.sql): scalar functions are
// registered as SQLite functions when the connection opens, stored
// procedures run their body with the input parameters bound by name and
// return their output parameters as the columns of the body's single row.
#ifndef ZARVIK_DB_SQLITE_BACKEND_H_
#define ZARVIK_DB_SQLITE_BACKEND_H_

#include <memory>
#include <string>

#include "db/backend.h"

namespace zarvik::db {

std::unique_ptr<Backend> OpenSqliteBackend(const std::string& path);

}  // namespace zarvik::db

#endif  // ZARVIK_DB_SQLITE_BACKEND_H_
