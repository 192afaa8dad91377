// The embedded SQLite engine behind "Provider=SQLite;Data Source=PATH".
//
// PATH is a file name (created when missing) or ":memory:" for a private
// in-memory database. Every statement text is translated from T-SQL first
// (TranslateTsqlToSqlite) and may hold several statements separated by ';',
// so a whole script runs in one Execute; the rows of its first statement that
// has a result set are returned. Failures raise VbError(kProviderError,
// "SQLite error N: message in statement: TEXT"); a database that cannot be
// opened raises VbError(kProviderConnectFailed, ...).
//
// Field values: INTEGER -> Long when it fits 32 bits, else Double; REAL ->
// Double; TEXT and BLOB -> String; NULL -> Null. Values bound into
// statements: Empty and Null -> NULL, Boolean/Integer/Long -> INTEGER,
// Double -> REAL, String -> TEXT, Date -> TEXT 'YYYY-MM-DD' or
// 'YYYY-MM-DD HH:MM:SS' when it has a time part.
//
// Routines. The database's functions and stored procedures are described in
// the table
//
//   CREATE TABLE ZARVIK_ROUTINES (
//     NAME   TEXT PRIMARY KEY,  -- e.g. 'FNFW_TRASFREVOCATI' (no 'dbo.')
//     KIND   TEXT NOT NULL,     -- 'FUNCTION' or 'PROCEDURE'
//     PARAMS TEXT NOT NULL,     -- comma-separated '@Name TYPE [IN|OUT|INOUT]'
//     BODY   TEXT NOT NULL);    -- one SQLite SELECT; parameters as :Name
//
// PARAMS of a procedure, e.g. '@IdUtente INT IN, @GruppoPDC SMALLINT IN,
// @ContoPDC VARCHAR IN, @canAbilitato INT OUT, @canVisualizza INT OUT';
// of a function (inputs only), e.g. '@Ditta INT, @IdUtente INT, @DepOrig
// VARCHAR, @DepDest VARCHAR'; '' for none. Types: INT/INTEGER (adInteger),
// SMALLINT/TINYINT/BIT (adSmallInt), VARCHAR/NVARCHAR/CHAR/NCHAR/TEXT
// (adVarChar, a length such as VARCHAR(20) is allowed), FLOAT/REAL/DECIMAL/
// NUMERIC (adDouble), DATETIME/DATE (adDate). The direction defaults to IN.
//
// - A FUNCTION is registered as a SQLite scalar function of its name (names
//   are case-insensitive) when the connection opens, and again whenever a
//   statement names a function SQLite does not know or the text of a script
//   mentions ZARVIK_ROUTINES (so a script may create the table and use the
//   functions afterwards). Its value is the first column of the first row of
//   BODY with the arguments bound by declared position to :Name; NULL when
//   BODY returns no row. A function without parameters, such as the server
//   clock KVL_GETDATE ('SELECT datetime(''now'', ''localtime'')'), is called
//   as KVL_GETDATE().
// - A PROCEDURE is described by its PARAMS (DescribeProcedure) and called by
//   running BODY with the input parameters bound by name; each output
//   parameter takes the value of the same-named column (without '@') of the
//   first row, NULL when there is no row or no such column. A procedure with
//   output parameters returns no rows of its own; one without returns BODY's
//   rows. BODY is SQLite and is not translated.
// An unknown procedure raises VbError(kProviderError, "Could not find stored
// procedure 'NAME'.").
//
// Text comparison is SQLite's: '=' on text is case-sensitive unless the
// column is declared COLLATE NOCASE.
#ifndef ZARVIK_DB_SQLITE_BACKEND_H_
#define ZARVIK_DB_SQLITE_BACKEND_H_

#include <memory>
#include <string>

#include "db/backend.h"

namespace zarvik::db {

std::unique_ptr<Backend> OpenSqliteBackend(const std::string& path);

}  // namespace zarvik::db

#endif  // ZARVIK_DB_SQLITE_BACKEND_H_
