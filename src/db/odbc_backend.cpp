#include "db/odbc_backend.h"

#include "platform/vb_string.h"

#ifdef _WIN32
#include <windows.h>  // mingw's sql.h needs the Windows types first
#endif
#include <sql.h>
#include <sqlext.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <optional>
#include <utility>

#include "db/odbc_handle.h"
#include "db/odbc_support.h"
#include "db/tsql_dialect.h"
#include "platform/utf16.h"
#include "platform/vb_error.h"

namespace zarvik::db {
namespace {

using odbc::Check;
using odbc::ColumnKind;
using odbc::DbcHandle;
using odbc::EnvHandle;
using odbc::StmtHandle;

constexpr int32_t kFailed = vberr::kProviderError;
constexpr int32_t kConnectFailed = vberr::kProviderConnectFailed;

// Size of one SQLGetData piece for long values.
constexpr size_t kChunkBytes = 4096;
// Room for a character output parameter (SQL Server's longest varchar).
constexpr size_t kOutputTextBytes = 8001;

SQLCHAR* Chars(std::string& text) { return reinterpret_cast<SQLCHAR*>(text.data()); }

template <typename T>
SQLPOINTER IntegerAttribute(T value) {
  return reinterpret_cast<SQLPOINTER>(static_cast<SQLULEN>(value));
}

bool IsOutput(ParameterDirection direction) { return direction != ParameterDirection::kInput; }

bool TakesInput(ParameterDirection direction) {
  return direction == ParameterDirection::kInput || direction == ParameterDirection::kInputOutput;
}

std::string WithoutAt(const std::string& name) {
  return !name.empty() && name.front() == '@' ? name.substr(1) : name;
}

// A parameter's buffer and length/indicator; both must stay in place from
// SQLBindParameter until the statement has run.
struct BoundParameter {
  std::vector<char> buffer;
  SQLLEN indicator = 0;
};

template <typename T>
void Store(BoundParameter& bound, const T& value) {
  bound.buffer.resize(sizeof(T));
  std::memcpy(bound.buffer.data(), &value, sizeof(T));
}

template <typename T>
T Load(const BoundParameter& bound) {
  T value{};
  std::memcpy(&value, bound.buffer.data(), std::min(sizeof(T), bound.buffer.size()));
  return value;
}

// Binds one parameter from its declared ADO type. With `dates_as_text` a
// date input goes as text in the form SQLite databases store dates in.
void BindParameter(SQLHSTMT stmt, SQLUSMALLINT number, const ParameterInfo& param,
                   BoundParameter& bound, bool dates_as_text) {
  const bool has_input =
      TakesInput(param.direction) && !param.value.IsNull() && !param.value.IsEmpty();
  if (dates_as_text && has_input && param.type == adtype::kDate) {
    ParameterInfo text = param;
    text.type = adtype::kVarChar;
    text.value = Variant(odbc::DateText(odbc::FieldsFromOleDate(param.value.ToDate())));
    BindParameter(stmt, number, text, bound, false);
    return;
  }
  SQLSMALLINT c_type = SQL_C_CHAR;
  SQLSMALLINT sql_type = SQL_VARCHAR;
  SQLULEN column_size = 0;
  SQLSMALLINT digits = 0;
  switch (param.type) {
    case adtype::kSmallInt:
      c_type = SQL_C_SSHORT;
      sql_type = SQL_SMALLINT;
      Store<SQLSMALLINT>(bound, has_input ? param.value.ToInteger() : 0);
      break;
    case adtype::kInteger:
      c_type = SQL_C_SLONG;
      sql_type = SQL_INTEGER;
      Store<SQLINTEGER>(bound, has_input ? param.value.ToLong() : 0);
      break;
    case adtype::kDouble:
      c_type = SQL_C_DOUBLE;
      sql_type = SQL_DOUBLE;
      column_size = 15;
      Store<SQLDOUBLE>(bound, has_input ? param.value.ToDouble() : 0.0);
      break;
    case adtype::kBoolean:
      c_type = SQL_C_BIT;
      sql_type = SQL_BIT;
      Store<SQLCHAR>(bound, has_input && param.value.ToBool() ? 1 : 0);
      break;
    case adtype::kDate: {
      c_type = SQL_C_TYPE_TIMESTAMP;
      sql_type = SQL_TYPE_TIMESTAMP;
      column_size = 23;
      digits = 3;
      SQL_TIMESTAMP_STRUCT ts{};
      if (has_input) {
        const odbc::DateTimeFields f = odbc::FieldsFromOleDate(param.value.ToDate());
        ts.year = static_cast<SQLSMALLINT>(f.year);
        ts.month = static_cast<SQLUSMALLINT>(f.month);
        ts.day = static_cast<SQLUSMALLINT>(f.day);
        ts.hour = static_cast<SQLUSMALLINT>(f.hour);
        ts.minute = static_cast<SQLUSMALLINT>(f.minute);
        ts.second = static_cast<SQLUSMALLINT>(f.second);
        ts.fraction = f.fraction_ns;
      }
      Store(bound, ts);
      break;
    }
    default: {
      const std::string text = has_input ? param.value.ToString() : std::string();
      size_t room = text.size() + 1;
      column_size = std::max<size_t>(text.size(), 1);
      if (IsOutput(param.direction)) {
        room = std::max(room, kOutputTextBytes);
        column_size = std::max<SQLULEN>(column_size, kOutputTextBytes - 1);
      }
      bound.buffer.assign(room, '\0');
      std::memcpy(bound.buffer.data(), text.data(), text.size());
      break;
    }
  }
  if (!has_input) {
    bound.indicator = SQL_NULL_DATA;
  } else if (c_type == SQL_C_CHAR) {
    bound.indicator = static_cast<SQLLEN>(std::strlen(bound.buffer.data()));
  } else {
    bound.indicator = 0;
  }
  SQLSMALLINT io_type = SQL_PARAM_INPUT;
  if (param.direction == ParameterDirection::kInputOutput) io_type = SQL_PARAM_INPUT_OUTPUT;
  if (param.direction == ParameterDirection::kOutput ||
      param.direction == ParameterDirection::kReturnValue) {
    io_type = SQL_PARAM_OUTPUT;
  }
  const SQLRETURN rc = SQLBindParameter(stmt, number, io_type, c_type, sql_type, column_size,
                                        digits, bound.buffer.data(),
                                        static_cast<SQLLEN>(bound.buffer.size()), &bound.indicator);
  Check(rc, kFailed, SQL_HANDLE_STMT, stmt, "SQLBindParameter");
}

Variant DateFromTimestamp(const SQL_TIMESTAMP_STRUCT& ts) {
  odbc::DateTimeFields f;
  f.year = ts.year;
  f.month = ts.month;
  f.day = ts.day;
  f.hour = ts.hour;
  f.minute = ts.minute;
  f.second = ts.second;
  f.fraction_ns = ts.fraction;
  return Variant::Date(odbc::OleDateFromFields(f));
}

Variant ReadOutput(const ParameterInfo& param, const BoundParameter& bound) {
  if (bound.indicator == SQL_NULL_DATA) return Variant::Null();
  switch (param.type) {
    case adtype::kSmallInt:
      return Variant(static_cast<int16_t>(Load<SQLSMALLINT>(bound)));
    case adtype::kInteger:
      return Variant(static_cast<int32_t>(Load<SQLINTEGER>(bound)));
    case adtype::kDouble:
      return Variant(static_cast<double>(Load<SQLDOUBLE>(bound)));
    case adtype::kBoolean:
      return Variant::Boolean(Load<SQLCHAR>(bound) != 0);
    case adtype::kDate: {
      const auto ts = Load<SQL_TIMESTAMP_STRUCT>(bound);
      return DateFromTimestamp(ts);
    }
    default: {
      const size_t room = bound.buffer.size() - 1;
      size_t length = std::strlen(bound.buffer.data());
      if (bound.indicator >= 0) length = std::min(static_cast<size_t>(bound.indicator), room);
      return Variant(std::string(bound.buffer.data(), length));
    }
  }
}

// A value of an emulated routine's result row as the declared parameter
// type would have delivered it.
Variant CoerceToParameterType(const Variant& value, int type) {
  if (value.IsNull() || value.IsEmpty()) return Variant::Null();
  switch (type) {
    case adtype::kSmallInt:
      return Variant(value.ToInteger());
    case adtype::kInteger:
      return Variant(value.ToLong());
    case adtype::kDouble:
      return Variant(value.ToDouble());
    case adtype::kBoolean:
      return Variant::Boolean(value.ToBool());
    case adtype::kDate:
      return Variant::Date(value.ToDate());
    case adtype::kVariant:
      return value;
    default:
      return Variant(value.ToString());
  }
}

// Reads a character or binary value in pieces, so that no length limit
// applies. `terminator` is the size of the terminating zero the driver
// writes into each piece. Nothing for NULL.
std::optional<std::string> ReadPieces(SQLHSTMT stmt, SQLUSMALLINT column, SQLSMALLINT c_type,
                                      size_t terminator) {
  std::string value;
  std::vector<char> piece(kChunkBytes);
  const size_t room = piece.size() - terminator;
  for (;;) {
    SQLLEN indicator = 0;
    const SQLRETURN rc = SQLGetData(stmt, column, c_type, piece.data(),
                                    static_cast<SQLLEN>(piece.size()), &indicator);
    if (rc == SQL_NO_DATA) break;
    Check(rc, kFailed, SQL_HANDLE_STMT, stmt, "SQLGetData");
    if (indicator == SQL_NULL_DATA) return std::nullopt;
    const bool truncated = rc == SQL_SUCCESS_WITH_INFO &&
                           (indicator == SQL_NO_TOTAL || static_cast<size_t>(indicator) > room);
    if (truncated) {
      value.append(piece.data(), room);
      continue;
    }
    value.append(piece.data(), std::min(static_cast<size_t>(std::max<SQLLEN>(indicator, 0)), room));
    break;
  }
  return value;
}

Variant ReadValue(SQLHSTMT stmt, SQLUSMALLINT column, ColumnKind kind) {
  SQLLEN indicator = 0;
  auto get = [&](SQLSMALLINT c_type, SQLPOINTER target, SQLLEN size) {
    Check(SQLGetData(stmt, column, c_type, target, size, &indicator), kFailed, SQL_HANDLE_STMT,
          stmt, "SQLGetData");
    return indicator != SQL_NULL_DATA;
  };
  switch (kind) {
    case ColumnKind::kInteger: {
      SQLBIGINT value = 0;
      if (!get(SQL_C_SBIGINT, &value, sizeof value)) return Variant::Null();
      if (value >= std::numeric_limits<int32_t>::min() &&
          value <= std::numeric_limits<int32_t>::max()) {
        return Variant(static_cast<int32_t>(value));
      }
      return Variant(static_cast<double>(value));
    }
    case ColumnKind::kFloat: {
      SQLDOUBLE value = 0;
      if (!get(SQL_C_DOUBLE, &value, sizeof value)) return Variant::Null();
      return Variant(static_cast<double>(value));
    }
    case ColumnKind::kBoolean: {
      SQLCHAR value = 0;
      if (!get(SQL_C_BIT, &value, sizeof value)) return Variant::Null();
      return Variant::Boolean(value != 0);
    }
    case ColumnKind::kDateTime: {
      SQL_TIMESTAMP_STRUCT ts{};
      if (!get(SQL_C_TYPE_TIMESTAMP, &ts, sizeof ts)) return Variant::Null();
      return DateFromTimestamp(ts);
    }
    case ColumnKind::kTime: {
      SQL_TIME_STRUCT t{};
      if (!get(SQL_C_TYPE_TIME, &t, sizeof t)) return Variant::Null();
      odbc::DateTimeFields f;
      f.hour = t.hour;
      f.minute = t.minute;
      f.second = t.second;
      return Variant::Date(odbc::OleDateFromFields(f));
    }
    case ColumnKind::kWideText: {
      auto bytes = ReadPieces(stmt, column, SQL_C_WCHAR, sizeof(SQLWCHAR));
      if (!bytes) return Variant::Null();
      std::u16string units(bytes->size() / sizeof(char16_t), u'\0');
      std::memcpy(units.data(), bytes->data(), units.size() * sizeof(char16_t));
      // Host order, as SQL_C_WCHAR delivers it; nothing is lost on the way.
      return Variant(Utf8FromUtf16(units));
    }
    case ColumnKind::kBinary: {
      auto bytes = ReadPieces(stmt, column, SQL_C_BINARY, 0);
      return bytes ? Variant(std::move(*bytes)) : Variant::Null();
    }
    case ColumnKind::kText:
    default: {
      auto text = ReadPieces(stmt, column, SQL_C_CHAR, 1);
      return text ? Variant(std::move(*text)) : Variant::Null();
    }
  }
}

class OdbcBackend : public Backend {
 public:
  OdbcBackend(const std::string& connection_string, int connect_timeout);
  ~OdbcBackend() override;
  OdbcBackend(const OdbcBackend&) = delete;
  OdbcBackend& operator=(const OdbcBackend&) = delete;

  RowSet Execute(const std::string& sql) override;
  std::vector<ParameterInfo> DescribeProcedure(const std::string& name) override;
  RowSet CallProcedure(const std::string& name, std::vector<ParameterInfo>& params) override;
  void SetCommandTimeout(int seconds) override { command_timeout_ = std::max(seconds, 0); }

 private:
  std::string Info(SQLUSMALLINT info_type);
  // A statement handle with the command timeout applied.
  std::unique_ptr<StmtHandle> NewStatement();
  // Runs text with the given parameters bound in order (after binding
  // them); SQL_NO_DATA from the execution counts as success.
  void Run(SQLHSTMT stmt, std::string text);
  RowSet RunWithInputs(const std::string& text, const std::vector<ParameterInfo>& inputs);
  // Reads every result set, keeping the first that has columns; after
  // this the statement's output parameters are available.
  RowSet DrainResults(SQLHSTMT stmt);
  RowSet ReadRows(SQLHSTMT stmt, SQLSMALLINT column_count);

  RowSet CallWithCallEscape(const std::string& name, std::vector<ParameterInfo>& params);
  bool HasRoutineTable();
  RowSet CallEmulated(const std::string& name, std::vector<ParameterInfo>& params);

  std::unique_ptr<EnvHandle> env_;
  std::unique_ptr<DbcHandle> dbc_;
  bool connected_ = false;
  bool sqlite_ = false;
  TsqlTranslationCache translations_;
  int command_timeout_ = 0;
};

OdbcBackend::OdbcBackend(const std::string& connection_string, int connect_timeout) {
  env_ = std::make_unique<EnvHandle>(nullptr, kConnectFailed);
  Check(SQLSetEnvAttr(env_->get(), SQL_ATTR_ODBC_VERSION, IntegerAttribute(SQL_OV_ODBC3), 0),
        kConnectFailed, SQL_HANDLE_ENV, env_->get(), "SQLSetEnvAttr");
  dbc_ = std::make_unique<DbcHandle>(env_->get(), kConnectFailed);
  if (connect_timeout > 0) {
    Check(SQLSetConnectAttr(dbc_->get(), SQL_ATTR_LOGIN_TIMEOUT, IntegerAttribute(connect_timeout),
                            0),
          kConnectFailed, SQL_HANDLE_DBC, dbc_->get(), "SQLSetConnectAttr");
  }
  std::string text = connection_string;
  std::vector<SQLCHAR> completed(1024);
  SQLSMALLINT completed_length = 0;
  const SQLRETURN rc = SQLDriverConnect(
      dbc_->get(), nullptr, Chars(text), static_cast<SQLSMALLINT>(text.size()), completed.data(),
      static_cast<SQLSMALLINT>(completed.size()), &completed_length, SQL_DRIVER_NOPROMPT);
  Check(rc, kConnectFailed, SQL_HANDLE_DBC, dbc_->get(), "SQLDriverConnect");
  connected_ = true;
  // A database that is SQLite understands SQLite's dialect, not T-SQL.
  std::string dbms = Info(SQL_DBMS_NAME);
  std::transform(dbms.begin(), dbms.end(), dbms.begin(),
                 [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
  sqlite_ = dbms.find("SQLITE") != std::string::npos;
}

OdbcBackend::~OdbcBackend() {
  if (connected_) SQLDisconnect(dbc_->get());
}

std::string OdbcBackend::Info(SQLUSMALLINT info_type) {
  std::vector<char> value(256);
  SQLSMALLINT length = 0;
  SQLRETURN rc = SQLGetInfo(dbc_->get(), info_type, value.data(),
                            static_cast<SQLSMALLINT>(value.size()), &length);
  if (SQL_SUCCEEDED(rc) && static_cast<size_t>(length) >= value.size()) {
    value.resize(static_cast<size_t>(length) + 1);
    rc = SQLGetInfo(dbc_->get(), info_type, value.data(), static_cast<SQLSMALLINT>(value.size()),
                    &length);
  }
  Check(rc, kFailed, SQL_HANDLE_DBC, dbc_->get(), "SQLGetInfo");
  return std::string(value.data());
}

std::unique_ptr<StmtHandle> OdbcBackend::NewStatement() {
  auto stmt = std::make_unique<StmtHandle>(dbc_->get(), kFailed);
  Check(SQLSetStmtAttr(stmt->get(), SQL_ATTR_QUERY_TIMEOUT, IntegerAttribute(command_timeout_), 0),
        kFailed, SQL_HANDLE_STMT, stmt->get(), "SQLSetStmtAttr");
  return stmt;
}

void OdbcBackend::Run(SQLHSTMT stmt, std::string text) {
  const SQLRETURN rc = SQLExecDirect(stmt, Chars(text), static_cast<SQLINTEGER>(text.size()));
  if (rc != SQL_NO_DATA) Check(rc, kFailed, SQL_HANDLE_STMT, stmt, "SQLExecDirect");
}

RowSet OdbcBackend::RunWithInputs(const std::string& text,
                                  const std::vector<ParameterInfo>& inputs) {
  auto stmt = NewStatement();
  std::vector<BoundParameter> bound(inputs.size());
  for (size_t i = 0; i < inputs.size(); ++i) {
    BindParameter(stmt->get(), static_cast<SQLUSMALLINT>(i + 1), inputs[i], bound[i], sqlite_);
  }
  Run(stmt->get(), text);
  return DrainResults(stmt->get());
}

RowSet OdbcBackend::DrainResults(SQLHSTMT stmt) {
  RowSet first;
  bool have_first = false;
  for (;;) {
    SQLSMALLINT columns = 0;
    Check(SQLNumResultCols(stmt, &columns), kFailed, SQL_HANDLE_STMT, stmt, "SQLNumResultCols");
    if (columns > 0) {
      RowSet rows = ReadRows(stmt, columns);
      if (!have_first) {
        first = std::move(rows);
        have_first = true;
      }
    }
    const SQLRETURN rc = SQLMoreResults(stmt);
    if (rc == SQL_NO_DATA) break;
    Check(rc, kFailed, SQL_HANDLE_STMT, stmt, "SQLMoreResults");
  }
  return first;
}

RowSet OdbcBackend::ReadRows(SQLHSTMT stmt, SQLSMALLINT column_count) {
  RowSet result;
  std::vector<ColumnKind> kinds;
  for (SQLUSMALLINT column = 1; column <= column_count; ++column) {
    std::vector<SQLCHAR> name(256);
    SQLSMALLINT name_length = 0, sql_type = 0, digits = 0, nullable = 0;
    SQLULEN size = 0;
    SQLRETURN rc = SQLDescribeCol(stmt, column, name.data(), static_cast<SQLSMALLINT>(name.size()),
                                  &name_length, &sql_type, &size, &digits, &nullable);
    if (SQL_SUCCEEDED(rc) && static_cast<size_t>(name_length) >= name.size()) {
      name.resize(static_cast<size_t>(name_length) + 1);
      rc = SQLDescribeCol(stmt, column, name.data(), static_cast<SQLSMALLINT>(name.size()),
                          &name_length, &sql_type, &size, &digits, &nullable);
    }
    Check(rc, kFailed, SQL_HANDLE_STMT, stmt, "SQLDescribeCol");
    std::vector<char> type_name(128);
    SQLSMALLINT type_name_length = 0;
    if (!SQL_SUCCEEDED(SQLColAttribute(stmt, column, SQL_DESC_TYPE_NAME, type_name.data(),
                                       static_cast<SQLSMALLINT>(type_name.size()),
                                       &type_name_length, nullptr))) {
      type_name[0] = '\0';  // the name only refines the kind; its absence is harmless
    }
    result.columns.emplace_back(reinterpret_cast<const char*>(name.data()));
    kinds.push_back(odbc::ClassifyColumn(sql_type, type_name.data(), sqlite_));
  }
  for (;;) {
    const SQLRETURN rc = SQLFetch(stmt);
    if (rc == SQL_NO_DATA) break;
    Check(rc, kFailed, SQL_HANDLE_STMT, stmt, "SQLFetch");
    std::vector<Variant> row;
    row.reserve(kinds.size());
    for (size_t i = 0; i < kinds.size(); ++i) {
      row.push_back(ReadValue(stmt, static_cast<SQLUSMALLINT>(i + 1), kinds[i]));
    }
    result.rows.push_back(std::move(row));
  }
  return result;
}

RowSet OdbcBackend::Execute(const std::string& sql) {
  auto stmt = NewStatement();
  Run(stmt->get(), sqlite_ ? translations_.Translate(sql) : sql);
  return DrainResults(stmt->get());
}

std::vector<ParameterInfo> OdbcBackend::DescribeProcedure(const std::string& name) {
  const odbc::QualifiedName qualified = odbc::SplitProcedureName(name);
  // The catalog call takes search patterns: '_' in a name must match itself.
  const std::string escape = Info(SQL_SEARCH_PATTERN_ESCAPE);
  std::string schema = odbc::EscapeSearchPattern(qualified.schema, escape);
  std::string procedure = odbc::EscapeSearchPattern(qualified.name, escape);
  auto stmt = NewStatement();
  const SQLRETURN rc =
      SQLProcedureColumns(stmt->get(), nullptr, 0, schema.empty() ? nullptr : Chars(schema),
                          static_cast<SQLSMALLINT>(schema.size()), Chars(procedure),
                          static_cast<SQLSMALLINT>(procedure.size()), nullptr, 0);
  if (!SQL_SUCCEEDED(rc)) {
    // A driver without the catalog function describes nothing; the caller
    // then declares the parameters itself.
    for (const odbc::DiagRecord& record : odbc::ReadDiagnostics(SQL_HANDLE_STMT, stmt->get())) {
      if (record.sqlstate == "IM001" || record.sqlstate == "HYC00") return {};
    }
    odbc::RaiseDiagnostics(kFailed, SQL_HANDLE_STMT, stmt->get(), "SQLProcedureColumns", rc);
  }
  // Columns 4, 5 and 6 of the catalog result: COLUMN_NAME, COLUMN_TYPE,
  // DATA_TYPE.
  const RowSet rows = DrainResults(stmt->get());
  std::vector<ParameterInfo> params;
  if (rows.columns.size() < 6) return params;
  for (const std::vector<Variant>& row : rows.rows) {
    const std::optional<ParameterDirection> direction =
        odbc::DirectionFromColumnType(row[4].ToLong());
    if (!direction) continue;
    ParameterInfo info;
    info.name = odbc::ParameterName(row[3].ToString());
    info.type = odbc::AdTypeFromSqlType(row[5].ToLong());
    info.direction = *direction;
    params.push_back(std::move(info));
  }
  return params;
}

RowSet OdbcBackend::CallProcedure(const std::string& name, std::vector<ParameterInfo>& params) {
  if (sqlite_ && HasRoutineTable()) return CallEmulated(name, params);
  return CallWithCallEscape(name, params);
}

RowSet OdbcBackend::CallWithCallEscape(const std::string& name,
                                       std::vector<ParameterInfo>& params) {
  auto stmt = NewStatement();
  std::vector<BoundParameter> bound(params.size());
  for (size_t i = 0; i < params.size(); ++i) {
    BindParameter(stmt->get(), static_cast<SQLUSMALLINT>(i + 1), params[i], bound[i], false);
  }
  Run(stmt->get(), odbc::BuildProcedureCall(name, params));
  // Output parameters are written only once every result set was read.
  RowSet rows = DrainResults(stmt->get());
  for (size_t i = 0; i < params.size(); ++i) {
    if (IsOutput(params[i].direction)) params[i].value = ReadOutput(params[i], bound[i]);
  }
  return rows;
}

bool OdbcBackend::HasRoutineTable() {
  const RowSet rows = RunWithInputs(
      "SELECT COUNT(*) FROM sqlite_master WHERE type = 'table' AND UPPER(name) = "
      "'ZARVIK_ROUTINES'",
      {});
  return !rows.rows.empty() && rows.rows[0][0].ToLong() > 0;
}

// SQLite has no stored procedures: the routine table holds each
// procedure's body, a SELECT whose first row carries the output parameters
// as same-named columns and which refers to the inputs as ":Name". The body runs through ODBC with
// the inputs bound in order, as the embedded engine runs it; the procedure returns no rows of its
// own when it has output parameters, else the body's rows.
RowSet OdbcBackend::CallEmulated(const std::string& name, std::vector<ParameterInfo>& params) {
  ParameterInfo key;
  key.value = Variant(odbc::SplitProcedureName(name).name);
  const RowSet found = RunWithInputs(
      "SELECT ROUTINE_BODY FROM ZARVIK_ROUTINES WHERE UPPER(ROUTINE_NAME) = UPPER(?)", {key});
  if (found.rows.empty() || found.rows[0][0].IsNull()) {
    throw VbError(kFailed, "[42000] (native 2812) Could not find stored procedure '" + name + "'.");
  }
  const odbc::MarkedSql marked = odbc::ReplaceNamedParameters(found.rows[0][0].ToString());
  std::vector<ParameterInfo> inputs;
  for (const std::string& marker : marked.names) {
    ParameterInfo input;
    input.value = Variant::Null();  // a name the call does not supply reads as NULL
    for (const ParameterInfo& param : params) {
      if (TakesInput(param.direction) && vb::SameText(WithoutAt(param.name), marker)) {
        input = param;
        break;
      }
    }
    input.direction = ParameterDirection::kInput;
    inputs.push_back(std::move(input));
  }
  RowSet result = RunWithInputs(marked.sql, inputs);
  // Without output parameters the body's rows are the procedure's result.
  if (std::none_of(params.begin(), params.end(),
                   [](const ParameterInfo& p) { return IsOutput(p.direction); })) {
    return result;
  }
  for (ParameterInfo& param : params) {
    if (!IsOutput(param.direction)) continue;
    param.value = Variant::Null();
    if (result.rows.empty()) continue;
    for (size_t i = 0; i < result.columns.size(); ++i) {
      if (vb::SameText(result.columns[i], WithoutAt(param.name))) {
        param.value = CoerceToParameterType(result.rows[0][i], param.type);
        break;
      }
    }
  }
  return RowSet{};
}

}  // namespace

std::unique_ptr<Backend> OpenOdbcBackend(const std::string& connection_string,
                                         int connect_timeout) {
  return std::make_unique<OdbcBackend>(connection_string, connect_timeout);
}

std::vector<std::string> InstalledOdbcDrivers() {
  std::vector<std::string> names;
  std::unique_ptr<EnvHandle> env;
  try {
    env = std::make_unique<EnvHandle>(nullptr, kConnectFailed);
  } catch (const VbError&) {
    return names;
  }
  SQLSetEnvAttr(env->get(), SQL_ATTR_ODBC_VERSION, IntegerAttribute(SQL_OV_ODBC3), 0);
  SQLCHAR name[256];
  SQLCHAR attributes[1024];
  SQLSMALLINT name_length = 0;
  SQLSMALLINT attributes_length = 0;
  SQLUSMALLINT direction = SQL_FETCH_FIRST;
  while (SQL_SUCCEEDED(SQLDrivers(env->get(), direction, name, sizeof name, &name_length,
                                  attributes, sizeof attributes, &attributes_length))) {
    names.emplace_back(reinterpret_cast<const char*>(name));
    direction = SQL_FETCH_NEXT;
  }
  return names;
}

}  // namespace zarvik::db
