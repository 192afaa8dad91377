// The parts of the ODBC backend that need no driver: how column and
// parameter types map to values and ADO types, the text of a procedure
// call, date conversion, and the rewriting of a routine body's named
// parameters into ODBC markers.
#ifndef ZARVIK_DB_ODBC_SUPPORT_H_
#define ZARVIK_DB_ODBC_SUPPORT_H_

#include <optional>
#include <string>
#include <vector>

#include "db/backend.h"

namespace zarvik::db::odbc {

// How a result column is fetched and which Variant it becomes.
enum class ColumnKind {
  kInteger,   // SQL_C_SBIGINT: Long when it fits in 32 bits, else Double
  kFloat,     // SQL_C_DOUBLE: Double
  kBoolean,   // SQL_C_BIT: Boolean
  kText,      // SQL_C_CHAR in chunks: String
  kWideText,  // SQL_C_WCHAR in chunks, UTF-16 to UTF-8: String
  kBinary,    // SQL_C_BINARY in chunks: String of the raw bytes
  kDateTime,  // SQL_C_TYPE_TIMESTAMP: Date
  kTime,      // SQL_C_TYPE_TIME: Date on day 0
};

// `sql_type` is the column's SQL data type, `type_name` the driver's name
// for it (SQL_DESC_TYPE_NAME). A character column whose declared type is
// DECIMAL, NUMERIC or MONEY is numeric: the SQLite driver reports such
// declared columns as VARCHAR. BIT is Boolean unless `bit_is_integer` (a
// SQLite "BIT" column is just an integer column and can hold any integer).
ColumnKind ClassifyColumn(int sql_type, const std::string& type_name, bool bit_is_integer);

// The ADO type (adtype::k...) of a procedure parameter of this SQL type.
int AdTypeFromSqlType(int sql_type);

// The direction of a row of SQLProcedureColumns (its COLUMN_TYPE), or
// nothing for rows that are not parameters (result columns, unknown).
std::optional<ParameterDirection> DirectionFromColumnType(int column_type);

// A parameter name as the component addresses it: with one leading '@'.
std::string ParameterName(const std::string& reported_name);

// "{call NAME(?, ?)}", "{call NAME}" without parameters, and
// "{? = call NAME(?)}" when the first parameter is the return value.
std::string BuildProcedureCall(const std::string& name, const std::vector<ParameterInfo>& params);

// "dbo.NAME", "[dbo].[NAME]" -> schema "dbo" and name "NAME".
struct QualifiedName {
  std::string schema;  // "" when unqualified
  std::string name;
};
QualifiedName SplitProcedureName(const std::string& name);

// Escapes the catalog search-pattern characters '_' and '%' (and the
// escape itself) with `escape`; an empty escape leaves the text alone.
std::string EscapeSearchPattern(const std::string& text, const std::string& escape);

// ODBC date/time fields <-> OLE automation date (days since 1899-12-30,
// the time as the fraction; before 1899-12-30 the fraction counts forward
// from the negative whole day, as VB stores it).
struct DateTimeFields {
  int year = 1899, month = 12, day = 30;
  int hour = 0, minute = 0, second = 0;
  unsigned fraction_ns = 0;
};
double OleDateFromFields(const DateTimeFields& fields);
// Rounded to the millisecond.
DateTimeFields FieldsFromOleDate(double oa_date);

// "YYYY-MM-DD", or "YYYY-MM-DD HH:MM:SS" when there is a time of day: the
// text SQLite databases hold dates as.
std::string DateText(const DateTimeFields& fields);

// A routine body with its ":Name" parameters replaced by '?' markers, and
// the names in marker order (a name used twice appears twice). String
// literals, quoted identifiers and comments are left alone.
struct MarkedSql {
  std::string sql;
  std::vector<std::string> names;  // without the ':'
};
MarkedSql ReplaceNamedParameters(const std::string& body);

// One diagnostic record of a handle.
struct DiagRecord {
  std::string sqlstate;
  long native_error = 0;
  std::string message;
};

// The error text of a failed call: each record as
// "[SQLSTATE] (native N) message", one per line; `fallback` when the driver
// left no record.
std::string FormatDiagnostics(const std::vector<DiagRecord>& records, const std::string& fallback);

}  // namespace zarvik::db::odbc

#endif  // ZARVIK_DB_ODBC_SUPPORT_H_
