// Rewrites the T-SQL the component sends into SQLite's dialect, for the
// embedded engine (and for an ODBC driver whose database is SQLite).
//
// Only the constructs the component and its test database use are handled:
// TOP n, table hints WITH (NOLOCK), ISNULL, CONVERT/CAST to character and
// decimal types, convert(varchar, x, 120) and convert(datetime, s, 120),
// N'...' literals, [bracketed] names, dbo. / [dbo]. qualifiers, the ODBC
// outer-join escape {oj ...}, and x IN ((SELECT ...)), whose inner
// parentheses SQLite would read as a one-value list. String literals and
// comments are never touched; everything else is kept byte for byte.
#ifndef ZARVIK_DB_TSQL_DIALECT_H_
#define ZARVIK_DB_TSQL_DIALECT_H_

#include <string>

namespace zarvik::db {

std::string TranslateTsqlToSqlite(const std::string& tsql);

}  // namespace zarvik::db

#endif  // ZARVIK_DB_TSQL_DIALECT_H_
