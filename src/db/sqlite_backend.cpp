// The embedded SQLite backend: statement scripts, value mapping and the
// routines of the ZARVIK_ROUTINES table.
#include "db/sqlite_backend.h"

#include <sqlite3.h>

#include <cctype>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "db/sqlite_statement_cache.h"
#include "db/tsql_dialect.h"
#include "platform/env.h"
#include "platform/vb_error.h"
#include "platform/vb_string.h"

namespace zarvik::db {
namespace {

struct DbCloser {
  void operator()(sqlite3* db) const { sqlite3_close_v2(db); }
};
using DbPtr = std::unique_ptr<sqlite3, DbCloser>;
using StmtPtr = SqliteStmtPtr;

std::string Trim(const std::string& text) {
  const char* blanks = " \t\r\n\f\v";
  const size_t b = text.find_first_not_of(blanks);
  if (b == std::string::npos) return "";
  return text.substr(b, text.find_last_not_of(blanks) - b + 1);
}

std::string ErrorText(int code, const std::string& message, const std::string& statement) {
  std::string text = "SQLite error " + std::to_string(code & 0xff) + ": " + message;
  if (!statement.empty()) text += " in statement: " + Trim(statement);
  return text;
}

std::string NotFoundText(const std::string& name) {
  return "Could not find stored procedure '" + name + "'.";
}

// The routine name without brackets and without a dbo. qualifier.
std::string BareRoutineName(std::string name) {
  name = Trim(name);
  std::string out;
  for (char c : name) {
    if (c != '[' && c != ']') out += c;
  }
  if (vb::UCase(out.substr(0, 4)) == "DBO.") out = out.substr(4);
  return out;
}

// Parameter names inside a body are written :Name (also accepted: @Name, $Name).
int BindIndex(sqlite3_stmt* stmt, const std::string& name) {
  const std::string bare = !name.empty() && name[0] == '@' ? name.substr(1) : name;
  for (const char* prefix : {":", "@", "$"}) {
    const int index = sqlite3_bind_parameter_index(stmt, (prefix + bare).c_str());
    if (index > 0) return index;
  }
  return 0;
}

std::string OleDateText(double oa_date) {
  int year = 0;
  int month = 0;
  int day = 0;
  YmdFromOleDate(oa_date, &year, &month, &day);
  long long seconds = std::llround(std::fabs(oa_date - std::trunc(oa_date)) * 86400.0);
  if (seconds > 86399) seconds = 86399;
  char buffer[32];
  if (seconds == 0) {
    std::snprintf(buffer, sizeof buffer, "%04d-%02d-%02d", year, month, day);
  } else {
    std::snprintf(buffer, sizeof buffer, "%04d-%02d-%02d %02lld:%02lld:%02lld", year, month, day,
                  seconds / 3600, seconds / 60 % 60, seconds % 60);
  }
  return buffer;
}

void BindVariant(sqlite3_stmt* stmt, int index, const Variant& value) {
  switch (value.Type()) {
    case VarType::kEmpty:
    case VarType::kNull:
      sqlite3_bind_null(stmt, index);
      break;
    case VarType::kBoolean:
    case VarType::kInteger:
    case VarType::kLong:
      sqlite3_bind_int64(stmt, index, std::llround(value.RawNumber()));
      break;
    case VarType::kDouble:
      sqlite3_bind_double(stmt, index, value.RawNumber());
      break;
    case VarType::kDate:
      sqlite3_bind_text(stmt, index, OleDateText(value.RawNumber()).c_str(), -1, SQLITE_TRANSIENT);
      break;
    case VarType::kString:
      sqlite3_bind_text(stmt, index, value.RawString().data(),
                        static_cast<int>(value.RawString().size()), SQLITE_TRANSIENT);
      break;
    default:
      throw VbError(vberr::kTypeMismatch);
  }
}

Variant ColumnValue(sqlite3_stmt* stmt, int column) {
  switch (sqlite3_column_type(stmt, column)) {
    case SQLITE_INTEGER: {
      const sqlite3_int64 value = sqlite3_column_int64(stmt, column);
      if (value >= INT32_MIN && value <= INT32_MAX) return Variant(static_cast<int32_t>(value));
      return Variant(static_cast<double>(value));
    }
    case SQLITE_FLOAT:
      return Variant(sqlite3_column_double(stmt, column));
    case SQLITE_NULL:
      return Variant::Null();
    default: {
      const auto* bytes = static_cast<const char*>(sqlite3_column_blob(stmt, column));
      const int size = sqlite3_column_bytes(stmt, column);
      return Variant(bytes == nullptr ? std::string() : std::string(bytes, size));
    }
  }
}

// The name a body gives a bound parameter, without its ':' (or '@', '$');
// "" for a positional ?N.
std::string BindName(sqlite3_stmt* stmt, int index) {
  const char* name = sqlite3_bind_parameter_name(stmt, index);
  if (name == nullptr || name[0] == '?') return "";
  return name + 1;
}

// A routine registered as a scalar function: its body's statement is
// prepared at the first call and reused.
struct ScalarFunction {
  sqlite3* db = nullptr;
  std::string name;
  std::string body;
  StmtPtr cached;
  bool busy = false;
};

void CallScalarFunction(sqlite3_context* context, int argc, sqlite3_value** argv) {
  auto* fn = static_cast<ScalarFunction*>(sqlite3_user_data(context));
  auto fail = [&](const std::string& what) {
    const std::string message = "function " + fn->name + ": " + what;
    sqlite3_result_error(context, message.c_str(), -1);
  };
  StmtPtr nested;  // a recursive call cannot reuse the statement in use
  sqlite3_stmt* stmt = fn->busy ? nullptr : fn->cached.get();
  if (stmt == nullptr) {
    sqlite3_stmt* raw = nullptr;
    if (sqlite3_prepare_v2(fn->db, fn->body.c_str(), -1, &raw, nullptr) != SQLITE_OK ||
        raw == nullptr) {
      sqlite3_finalize(raw);
      fail(sqlite3_errmsg(fn->db));
      return;
    }
    (fn->busy ? nested : fn->cached).reset(raw);
    stmt = raw;
  }
  // The body's ?1..?n take the first n arguments, n being the highest
  // number the body reads; further arguments are ignored, as a caller may
  // pass more than a body needs, but too few is an error.
  const int needed = sqlite3_bind_parameter_count(stmt);
  if (argc < needed) {
    fail("needs " + std::to_string(needed) + " argument(s), called with " + std::to_string(argc) +
         "; its body reads ?1 to ?" + std::to_string(needed));
    return;
  }
  const bool owner = !fn->busy;
  fn->busy = true;
  for (int i = 0; i < needed; ++i) sqlite3_bind_value(stmt, i + 1, argv[i]);
  const int rc = sqlite3_step(stmt);
  if (rc == SQLITE_ROW) {
    sqlite3_result_value(context, sqlite3_column_value(stmt, 0));
  } else if (rc == SQLITE_DONE) {
    sqlite3_result_null(context);
  } else {
    fail(sqlite3_errmsg(fn->db));
  }
  sqlite3_reset(stmt);
  sqlite3_clear_bindings(stmt);
  if (owner) fn->busy = false;
}

// SQL Server's default collation: letters compare without regard to case
// and trailing blanks do not count ('ab  ' = 'AB').
int CompareTsql(void* /*unused*/, int left_size, const void* left, int right_size,
                const void* right) {
  const auto* a = static_cast<const unsigned char*>(left);
  const auto* b = static_cast<const unsigned char*>(right);
  while (left_size > 0 && a[left_size - 1] == ' ') --left_size;
  while (right_size > 0 && b[right_size - 1] == ' ') --right_size;
  const int common = left_size < right_size ? left_size : right_size;
  for (int i = 0; i < common; ++i) {
    const int ca = a[i] < 0x80 ? std::toupper(a[i]) : a[i];
    const int cb = b[i] < 0x80 ? std::toupper(b[i]) : b[i];
    if (ca != cb) return ca < cb ? -1 : 1;
  }
  return left_size == right_size ? 0 : (left_size < right_size ? -1 : 1);
}

class SqliteBackend : public Backend {
 public:
  explicit SqliteBackend(DbPtr db) : db_(std::move(db)), statements_(db_.get()) {
    const int rc =
        sqlite3_create_collation_v2(db_.get(), "TSQL", SQLITE_UTF8, nullptr, CompareTsql, nullptr);
    if (rc != SQLITE_OK) Fail(rc, "");
    // Without waiting for a lock: a database locked now has its functions
    // registered at their first use instead.
    LoadFunctions();
    SetCommandTimeout(30);
  }

  ~SqliteBackend() override {
    functions_.clear();  // finalizes the bodies' statements before the close
    statements_.Clear();
  }

  RowSet Execute(const std::string& sql) override {
    const std::string translated = translations_.Translate(sql);
    RowSet rows = RunStatement(translated);
    if (vb::InStr(1, translated, "ZARVIK_ROUTINES", vb::Compare::kText) != 0) LoadFunctions();
    return rows;
  }

  RowSet ExecuteScript(const std::string& sql) override {
    const std::string translated = translations_.Translate(sql);
    RowSet rows = RunScript(translated);
    if (vb::InStr(1, translated, "ZARVIK_ROUTINES", vb::Compare::kText) != 0) LoadFunctions();
    return rows;
  }

  // Inputs are the body's :Name parameters, outputs the columns of its
  // result; a name that is both is an input-output parameter. The body
  // says nothing of types, so every parameter is a Variant.
  std::vector<ParameterInfo> DescribeProcedure(const std::string& name) override {
    const SqliteStatementCache::Lease stmt = PrepareBody(name);
    std::vector<ParameterInfo> params;
    for (int i = 1; i <= sqlite3_bind_parameter_count(stmt.get()); ++i) {
      const std::string bind = BindName(stmt.get(), i);
      if (bind.empty()) continue;
      ParameterInfo info;
      info.name = "@" + bind;
      info.type = adtype::kVariant;
      params.push_back(info);
    }
    for (int c = 0; c < sqlite3_column_count(stmt.get()); ++c) {
      const std::string column = sqlite3_column_name(stmt.get(), c);
      bool input = false;
      for (ParameterInfo& p : params) {
        if (vb::UCase(p.name.substr(1)) == vb::UCase(column)) {
          p.direction = ParameterDirection::kInputOutput;
          input = true;
        }
      }
      if (input) continue;
      ParameterInfo info;
      info.name = "@" + column;
      info.type = adtype::kVariant;
      info.direction = ParameterDirection::kOutput;
      params.push_back(info);
    }
    return params;
  }

  RowSet CallProcedure(const std::string& name, std::vector<ParameterInfo>& params) override {
    const SqliteStatementCache::Lease stmt = PrepareBody(name);
    for (const ParameterInfo& p : params) {
      if (p.direction != ParameterDirection::kInput &&
          p.direction != ParameterDirection::kInputOutput) {
        continue;
      }
      const int index = BindIndex(stmt.get(), p.name);
      if (index > 0) BindVariant(stmt.get(), index, p.value);
    }
    RowSet rows = ReadRows(stmt.get());
    bool has_outputs = false;
    for (ParameterInfo& p : params) {
      if (p.direction != ParameterDirection::kOutput &&
          p.direction != ParameterDirection::kInputOutput) {
        continue;
      }
      has_outputs = true;
      p.value = Variant::Null();
      const std::string bare = p.name.substr(!p.name.empty() && p.name[0] == '@' ? 1 : 0);
      for (size_t c = 0; c < rows.columns.size() && !rows.rows.empty(); ++c) {
        if (vb::UCase(rows.columns[c]) == vb::UCase(bare)) {
          p.value = rows.rows[0][c];
          break;
        }
      }
    }
    return has_outputs ? RowSet{} : rows;
  }

  void SetCommandTimeout(int seconds) override {
    // 0 means no limit, as for ADO's CommandTimeout.
    const int ms = seconds <= 0 || seconds > INT_MAX / 1000 ? INT_MAX : seconds * 1000;
    sqlite3_busy_timeout(db_.get(), ms);
  }

 private:
  [[noreturn]] void Fail(int code, const std::string& statement) const {
    throw VbError(vberr::kProviderError, ErrorText(code, sqlite3_errmsg(db_.get()), statement));
  }

  // Steps a prepared statement to its end; the rows when it has columns.
  RowSet ReadRows(sqlite3_stmt* stmt) {
    RowSet result;
    const int columns = sqlite3_column_count(stmt);
    for (int c = 0; c < columns; ++c) {
      const char* name = sqlite3_column_name(stmt, c);
      result.columns.emplace_back(name == nullptr ? "" : name);
    }
    int rc = SQLITE_OK;
    while ((rc = sqlite3_step(stmt)) == SQLITE_ROW) {
      std::vector<Variant> row;
      row.reserve(columns);
      for (int c = 0; c < columns; ++c) row.push_back(ColumnValue(stmt, c));
      result.rows.push_back(std::move(row));
    }
    if (rc != SQLITE_DONE) Fail(rc, sqlite3_sql(stmt));
    return result;
  }

  // Runs the one statement of `text` (the routines are registered first
  // when it names a function SQLite does not know yet). A text that goes on
  // with a second statement is refused before anything runs, so that a
  // value pasted into a statement can never add one of its own.
  RowSet RunStatement(const std::string& text) {
    int rc = SQLITE_OK;
    SqliteStatementCache::Lease stmt = statements_.Prepare(text, 0, rc);
    if (rc != SQLITE_OK && MissingFunction() && LoadFunctions()) {
      stmt = statements_.Prepare(text, 0, rc);
    }
    if (rc != SQLITE_OK) Fail(rc, text);
    const std::string_view rest = std::string_view(text).substr(stmt ? stmt.tail() : text.size());
    if (!HoldsNoStatement(rest)) {
      throw VbError(vberr::kProviderError,
                    "SQLite error 1: a command runs one statement; the text goes on after it "
                    "with \"" +
                        Trim(std::string(rest)) + "\" in statement: " + Trim(text));
    }
    return stmt ? ReadRows(stmt.get()) : RowSet{};
  }

  // Runs every statement of `text`; answers the rows of the first statement
  // that has a result set. A text of one statement runs the statement kept
  // from its last run.
  RowSet RunScript(const std::string& text) {
    RowSet result;
    bool have_result = false;
    size_t offset = 0;
    while (offset < text.size()) {
      int rc = SQLITE_OK;
      SqliteStatementCache::Lease stmt = statements_.Prepare(text, offset, rc);
      if (rc != SQLITE_OK && MissingFunction() && LoadFunctions()) {
        stmt = statements_.Prepare(text, offset, rc);
      }
      if (rc != SQLITE_OK) Fail(rc, text.substr(offset));
      if (!stmt) break;  // only blanks or comments left
      RowSet rows = ReadRows(stmt.get());
      if (!have_result && !rows.columns.empty()) {
        result = std::move(rows);
        have_result = true;
      }
      offset = stmt.tail();
    }
    return result;
  }

  bool MissingFunction() const {
    return std::string(sqlite3_errmsg(db_.get())).rfind("no such function", 0) == 0;
  }

  // The body of the routine `name` (brackets, a dbo. qualifier and case do
  // not matter) prepared; an unknown routine is SQL Server's error 2812.
  SqliteStatementCache::Lease PrepareBody(const std::string& name) {
    static const std::string kLookup =
        "SELECT ROUTINE_BODY FROM ZARVIK_ROUTINES WHERE UPPER(ROUTINE_NAME) = UPPER(?1)";
    std::optional<std::string> body;
    {
      int rc = SQLITE_OK;
      const SqliteStatementCache::Lease lookup = statements_.Prepare(kLookup, 0, rc);
      if (rc == SQLITE_OK && lookup) {  // else no routines table: no procedures
        const std::string bare = BareRoutineName(name);
        sqlite3_bind_text(lookup.get(), 1, bare.c_str(), -1, SQLITE_TRANSIENT);
        if (sqlite3_step(lookup.get()) == SQLITE_ROW &&
            sqlite3_column_type(lookup.get(), 0) != SQLITE_NULL) {
          body = reinterpret_cast<const char*>(sqlite3_column_text(lookup.get(), 0));
        }
      }
    }
    if (!body) throw VbError(vberr::kProviderError, NotFoundText(name));
    int rc = SQLITE_OK;
    SqliteStatementCache::Lease stmt = statements_.Prepare(*body, 0, rc);
    if (rc != SQLITE_OK) {
      throw VbError(vberr::kProviderError, "procedure " + BareRoutineName(name) + ": " +
                                               ErrorText(rc, sqlite3_errmsg(db_.get()), *body));
    }
    if (!stmt) throw VbError(vberr::kProviderError, "procedure " + name + " has an empty body");
    return stmt;
  }

  // Registers every row of ZARVIK_ROUTINES as a scalar function; answers
  // whether the table held any. The statements kept so far are finalised:
  // they may call the functions replaced.
  bool LoadFunctions() {
    statements_.Clear();
    sqlite3_stmt* raw = nullptr;
    const char* sql = "SELECT ROUTINE_NAME, ROUTINE_BODY FROM ZARVIK_ROUTINES";
    if (sqlite3_prepare_v2(db_.get(), sql, -1, &raw, nullptr) != SQLITE_OK) {
      sqlite3_finalize(raw);
      return false;
    }
    StmtPtr stmt(raw);
    std::vector<std::pair<std::string, std::string>> found;
    while (sqlite3_step(raw) == SQLITE_ROW) {
      auto text = [raw](int c) {
        const auto* p = reinterpret_cast<const char*>(sqlite3_column_text(raw, c));
        return p == nullptr ? std::string() : std::string(p);
      };
      found.emplace_back(BareRoutineName(text(0)), text(1));
    }
    stmt.reset();
    for (const auto& [name, body] : found) Register(name, body);
    return !found.empty();
  }

  void Register(const std::string& name, const std::string& body) {
    auto fn = std::make_unique<ScalarFunction>();
    fn->db = db_.get();
    fn->name = name;
    fn->body = body;
    // Any number of arguments: the call checks them against the body.
    const int rc = sqlite3_create_function_v2(db_.get(), name.c_str(), -1, SQLITE_UTF8, fn.get(),
                                              CallScalarFunction, nullptr, nullptr, nullptr);
    if (rc != SQLITE_OK) Fail(rc, "");
    // The previous definition (if any) is no longer reachable from SQLite.
    functions_[vb::UCase(name)] = std::move(fn);
  }

  DbPtr db_;
  TsqlTranslationCache translations_;
  SqliteStatementCache statements_;  // finalised before the connection closes
  std::map<std::string, std::unique_ptr<ScalarFunction>> functions_;
};

}  // namespace

std::unique_ptr<Backend> OpenSqliteBackend(const std::string& path, SqliteOpenMode mode) {
  int flags = SQLITE_OPEN_URI;
  switch (mode) {
    case SqliteOpenMode::kReadWrite:
      flags |= SQLITE_OPEN_READWRITE;
      break;
    case SqliteOpenMode::kReadWriteCreate:
      flags |= SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
      break;
    case SqliteOpenMode::kReadOnly:
      flags |= SQLITE_OPEN_READONLY;
      break;
  }
  sqlite3* raw = nullptr;
  const int rc = sqlite3_open_v2(path.c_str(), &raw, flags, nullptr);
  DbPtr db(raw);
  if (rc != SQLITE_OK) {
    std::string message = raw == nullptr ? "out of memory" : sqlite3_errmsg(raw);
    if ((rc & 0xff) == SQLITE_CANTOPEN && mode != SqliteOpenMode::kReadWriteCreate) {
      message += "; a database that does not exist yet is made with zarvik init-db";
    }
    throw VbError(vberr::kProviderConnectFailed, "SQLite error " + std::to_string(rc & 0xff) +
                                                     ": " + message + " (Data Source=" + path +
                                                     ")");
  }
  return std::make_unique<SqliteBackend>(std::move(db));
}

}  // namespace zarvik::db
