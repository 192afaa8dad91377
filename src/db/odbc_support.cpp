#include "db/odbc_support.h"

#ifdef _WIN32
#include <windows.h>  // mingw's sql.h needs the Windows types first
#endif
#include <sql.h>
#include <sqlext.h>

#include <cctype>
#include <cmath>
#include <cstdint>
#include <cstdio>

#include "platform/env.h"

namespace zarvik::db::odbc {
namespace {

// SQL Server's own type codes, reported for its newer column types.
constexpr int kSqlSsVariant = -150;
constexpr int kSqlSsXml = -152;
constexpr int kSqlSsTime2 = -154;
constexpr int kSqlSsTimestampOffset = -155;

std::string Upper(const std::string& text) {
  std::string out = text;
  for (char& c : out) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return out;
}

bool StartsWith(const std::string& text, const std::string& prefix) {
  return text.compare(0, prefix.size(), prefix) == 0;
}

bool IsIdentifierStart(char c) { return std::isalpha(static_cast<unsigned char>(c)) || c == '_'; }

bool IsIdentifierChar(char c) { return std::isalnum(static_cast<unsigned char>(c)) || c == '_'; }

std::string StripBrackets(const std::string& part) {
  if (part.size() >= 2 && ((part.front() == '[' && part.back() == ']') ||
                           (part.front() == '"' && part.back() == '"'))) {
    return part.substr(1, part.size() - 2);
  }
  return part;
}

// Copies a quoted run (string literal or quoted identifier) starting at
// `i`; a doubled closing character stays inside the run.
size_t CopyQuoted(const std::string& body, size_t i, char close, std::string& out) {
  out += body[i++];
  while (i < body.size()) {
    out += body[i];
    if (body[i] == close) {
      if (i + 1 < body.size() && body[i + 1] == close && close != ']') {
        out += body[i + 1];
        i += 2;
        continue;
      }
      return i + 1;
    }
    ++i;
  }
  return i;
}

}  // namespace

ColumnKind ClassifyColumn(int sql_type, const std::string& type_name, bool bit_is_integer) {
  switch (sql_type) {
    case SQL_TINYINT:
    case SQL_SMALLINT:
    case SQL_INTEGER:
    case SQL_BIGINT:
      return ColumnKind::kInteger;
    case SQL_BIT:
      return bit_is_integer ? ColumnKind::kInteger : ColumnKind::kBoolean;
    case SQL_DECIMAL:
    case SQL_NUMERIC:
    case SQL_REAL:
    case SQL_FLOAT:
    case SQL_DOUBLE:
      return ColumnKind::kFloat;
    case SQL_CHAR:
    case SQL_VARCHAR:
    case SQL_LONGVARCHAR: {
      const std::string upper = Upper(type_name);
      if (StartsWith(upper, "DECIMAL") || StartsWith(upper, "NUMERIC") ||
          StartsWith(upper, "MONEY") || StartsWith(upper, "SMALLMONEY")) {
        return ColumnKind::kFloat;
      }
      return ColumnKind::kText;
    }
    case SQL_WCHAR:
    case SQL_WVARCHAR:
    case SQL_WLONGVARCHAR:
    case kSqlSsXml:
      return ColumnKind::kWideText;
    case SQL_BINARY:
    case SQL_VARBINARY:
    case SQL_LONGVARBINARY:
      return ColumnKind::kBinary;
    case SQL_TYPE_DATE:
    case SQL_TYPE_TIMESTAMP:
    case SQL_DATE:
    case SQL_TIMESTAMP:
    case kSqlSsTimestampOffset:
      return ColumnKind::kDateTime;
    case SQL_TYPE_TIME:
    case SQL_TIME:
    case kSqlSsTime2:
      return ColumnKind::kTime;
    case kSqlSsVariant:
    default:
      return ColumnKind::kText;
  }
}

int AdTypeFromSqlType(int sql_type) {
  switch (sql_type) {
    case SQL_TINYINT:
    case SQL_SMALLINT:
      return adtype::kSmallInt;
    case SQL_INTEGER:
      return adtype::kInteger;
    case SQL_BIGINT:
    case SQL_DECIMAL:
    case SQL_NUMERIC:
    case SQL_REAL:
    case SQL_FLOAT:
    case SQL_DOUBLE:
      return adtype::kDouble;
    case SQL_BIT:
      return adtype::kBoolean;
    case SQL_TYPE_DATE:
    case SQL_TYPE_TIMESTAMP:
    case SQL_TYPE_TIME:
    case SQL_DATE:
    case SQL_TIMESTAMP:
    case SQL_TIME:
    case kSqlSsTime2:
    case kSqlSsTimestampOffset:
      return adtype::kDate;
    default:
      return adtype::kVarChar;
  }
}

std::optional<ParameterDirection> DirectionFromColumnType(int column_type) {
  switch (column_type) {
    case SQL_PARAM_INPUT:
      return ParameterDirection::kInput;
    case SQL_PARAM_INPUT_OUTPUT:
      return ParameterDirection::kInputOutput;
    case SQL_PARAM_OUTPUT:
      return ParameterDirection::kOutput;
    case SQL_RETURN_VALUE:
      return ParameterDirection::kReturnValue;
    default:  // SQL_RESULT_COL, SQL_PARAM_TYPE_UNKNOWN
      return std::nullopt;
  }
}

std::string ParameterName(const std::string& reported_name) {
  if (!reported_name.empty() && reported_name.front() == '@') return reported_name;
  return "@" + reported_name;
}

std::string BuildProcedureCall(const std::string& name, const std::vector<ParameterInfo>& params) {
  size_t first = 0;
  std::string text = "{";
  if (!params.empty() && params.front().direction == ParameterDirection::kReturnValue) {
    text += "? = ";
    first = 1;
  }
  text += "call " + name;
  if (first < params.size()) {
    text += "(";
    for (size_t i = first; i < params.size(); ++i) text += i == first ? "?" : ", ?";
    text += ")";
  }
  return text + "}";
}

QualifiedName SplitProcedureName(const std::string& name) {
  // Parts are separated by dots outside brackets; a three-part name carries
  // the database first, which the catalog call does not need.
  std::vector<std::string> parts(1);
  bool in_bracket = false;
  for (char c : name) {
    if (c == '[') in_bracket = true;
    if (c == ']') in_bracket = false;
    if (c == '.' && !in_bracket) {
      parts.emplace_back();
    } else {
      parts.back() += c;
    }
  }
  QualifiedName out;
  out.name = StripBrackets(parts.back());
  if (parts.size() >= 2) out.schema = StripBrackets(parts[parts.size() - 2]);
  return out;
}

std::string EscapeSearchPattern(const std::string& text, const std::string& escape) {
  if (escape.empty()) return text;
  std::string out;
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '_' || text[i] == '%' || text.compare(i, escape.size(), escape) == 0) {
      out += escape;
    }
    out += text[i];
  }
  return out;
}

double OleDateFromFields(const DateTimeFields& f) {
  const double days = OleDateFromYmd(f.year, f.month, f.day);
  const double seconds = f.hour * 3600.0 + f.minute * 60.0 + f.second + f.fraction_ns / 1e9;
  const double time = seconds / 86400.0;
  return days >= 0 ? days + time : days - time;
}

DateTimeFields FieldsFromOleDate(double oa_date) {
  DateTimeFields f;
  const double whole = std::trunc(oa_date);
  YmdFromOleDate(whole, &f.year, &f.month, &f.day);
  int64_t ms = std::llround(std::fabs(oa_date - whole) * 86400000.0);
  if (ms >= 86400000) ms = 86399999;  // rounding must not spill into the next day
  f.hour = static_cast<int>(ms / 3600000);
  f.minute = static_cast<int>(ms / 60000 % 60);
  f.second = static_cast<int>(ms / 1000 % 60);
  f.fraction_ns = static_cast<unsigned>(ms % 1000) * 1000000u;
  return f;
}

std::string DateText(const DateTimeFields& f) {
  char text[96];
  if (f.hour == 0 && f.minute == 0 && f.second == 0) {
    std::snprintf(text, sizeof text, "%04d-%02d-%02d", f.year, f.month, f.day);
  } else {
    std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d", f.year, f.month, f.day,
                  f.hour, f.minute, f.second);
  }
  return text;
}

MarkedSql ReplaceNamedParameters(const std::string& body) {
  MarkedSql out;
  size_t i = 0;
  while (i < body.size()) {
    const char c = body[i];
    if (c == '\'' || c == '"' || c == '`') {
      i = CopyQuoted(body, i, c, out.sql);
    } else if (c == '[') {
      i = CopyQuoted(body, i, ']', out.sql);
    } else if (c == '-' && i + 1 < body.size() && body[i + 1] == '-') {
      const size_t end = body.find('\n', i);
      const size_t stop = end == std::string::npos ? body.size() : end;
      out.sql.append(body, i, stop - i);
      i = stop;
    } else if (c == '/' && i + 1 < body.size() && body[i + 1] == '*') {
      const size_t end = body.find("*/", i + 2);
      const size_t stop = end == std::string::npos ? body.size() : end + 2;
      out.sql.append(body, i, stop - i);
      i = stop;
    } else if (c == ':' && i + 1 < body.size() && IsIdentifierStart(body[i + 1])) {
      size_t end = i + 1;
      while (end < body.size() && IsIdentifierChar(body[end])) ++end;
      out.names.push_back(body.substr(i + 1, end - i - 1));
      out.sql += '?';
      i = end;
    } else {
      out.sql += c;
      ++i;
    }
  }
  return out;
}

std::string FormatDiagnostics(const std::vector<DiagRecord>& records, const std::string& fallback) {
  if (records.empty()) return fallback;
  std::string text;
  for (const DiagRecord& record : records) {
    if (!text.empty()) text += "\n";
    text += "[" + record.sqlstate + "] (native " + std::to_string(record.native_error) + ") " +
            record.message;
  }
  return text;
}

}  // namespace zarvik::db::odbc
