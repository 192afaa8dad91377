// The embedded SQLite engine behind "Provider=SQLite;Data Source=PATH".
//
// PATH is an existing database file or ":memory:" for a private in-memory
// database. A file that does not exist is an error, as a missing database is
// on a server; "Mode=ReadWriteCreate" in the connection string creates it
// ("Mode=ReadOnly" opens read-only; the default is "ReadWrite").
//
// Every statement text is translated from T-SQL first (TsqlTranslationCache).
// Execute runs exactly one statement: a text that goes on after its first
// statement with anything but blanks, ';' and comments is refused before
// anything runs, so a value pasted into a statement cannot add a statement
// of its own; the prepared statement of such a text is kept for the next
// time it is sent (SqliteStatementCache). ExecuteScript runs every statement
// of a script and returns the rows of its first statement that has a result
// set. Failures raise VbError(kProviderError, "SQLite error N: message in
// statement: TEXT"); a database that cannot be opened raises
// VbError(kProviderConnectFailed, ...).
//
// Field values: INTEGER -> Long when it fits 32 bits, else Double; REAL ->
// Double; TEXT and BLOB -> String; NULL -> Null. Values bound into
// statements: Empty and Null -> NULL, Boolean/Integer/Long -> INTEGER,
// Double -> REAL, String -> TEXT, Date -> TEXT 'YYYY-MM-DD' or
// 'YYYY-MM-DD HH:MM:SS' when it has a time part.
//
// Collation: every connection knows the collation TSQL, which compares text
// as SQL Server's default collation does (ASCII letters without regard to
// case, trailing blanks ignored), for columns declared "COLLATE TSQL". Other
// columns compare as SQLite does: '=' on text is case-sensitive.
//
// Routines. SQLite has no stored routines; the database keeps them as rows
// of
//
//   CREATE TABLE ZARVIK_ROUTINES (
//     ROUTINE_NAME TEXT PRIMARY KEY,  -- e.g. 'FNFW_TRASFREVOCATI', no 'dbo.'
//     ROUTINE_BODY TEXT NOT NULL);    -- one SQLite SELECT, not translated
//
// - Every row is a scalar function, registered when the connection opens
//   and again whenever a statement names a function SQLite does not know or
//   a script mentions ZARVIK_ROUTINES (so a script may create the table and
//   use the functions afterwards). It is called as NAME(...), dbo.NAME(...)
//   or [dbo].[NAME](...); the body's positional parameters ?1..?n take the
//   first n arguments, n being the highest ?n the body reads (further
//   arguments are ignored, fewer are an error naming the function), and
//   the first column of the body's first row is the value, NULL when there
//   is no row.
//   The server clock KVL_GETDATE, for instance, is the body
//   'SELECT strftime(''%Y-%m-%d %H:%M:%f'', ''now'', ''localtime'')'.
// - A stored procedure is the row of its name run with named parameters
//   :Name (the parameter's name without '@'). DescribeProcedure reads the
//   body: its :Name parameters are inputs, its result columns outputs (a
//   name that is both is input-output), all of type adVariant. CallProcedure
//   binds the inputs by name; each output parameter takes the value of the
//   same-named column of the first row, NULL when there is no row. A
//   procedure with output parameters returns no rows of its own; one
//   without returns the body's rows.
// An unknown procedure raises VbError(kProviderError, "Could not find stored
// procedure 'NAME'.").
#ifndef ZARVIK_DB_SQLITE_BACKEND_H_
#define ZARVIK_DB_SQLITE_BACKEND_H_

#include <memory>
#include <string>

#include "db/backend.h"

namespace zarvik::db {

enum class SqliteOpenMode { kReadWrite, kReadWriteCreate, kReadOnly };

std::unique_ptr<Backend> OpenSqliteBackend(const std::string& path,
                                           SqliteOpenMode mode = SqliteOpenMode::kReadWrite);

}  // namespace zarvik::db

#endif  // ZARVIK_DB_SQLITE_BACKEND_H_
