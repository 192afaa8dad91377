// The embedded SQLite backend: statement scripts, value mapping and the
// routines of the ZARVIK_ROUTINES table.
#include "db/sqlite_backend.h"

#include <sqlite3.h>

#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "db/tsql_dialect.h"
#include "platform/env.h"
#include "platform/vb_error.h"
#include "platform/vb_string.h"

namespace zarvik::db {
namespace {

struct DbCloser {
  void operator()(sqlite3* db) const { sqlite3_close_v2(db); }
};
struct StmtFinalizer {
  void operator()(sqlite3_stmt* stmt) const { sqlite3_finalize(stmt); }
};
using DbPtr = std::unique_ptr<sqlite3, DbCloser>;
using StmtPtr = std::unique_ptr<sqlite3_stmt, StmtFinalizer>;

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

int AdTypeOf(const std::string& type_name) {
  const std::string type = vb::UCase(type_name.substr(0, type_name.find('(')));
  if (type == "INT" || type == "INTEGER") return adtype::kInteger;
  if (type == "SMALLINT" || type == "TINYINT" || type == "BIT") return adtype::kSmallInt;
  if (type == "VARCHAR" || type == "NVARCHAR" || type == "CHAR" || type == "NCHAR" ||
      type == "TEXT") {
    return adtype::kVarChar;
  }
  if (type == "FLOAT" || type == "REAL" || type == "DECIMAL" || type == "NUMERIC") {
    return adtype::kDouble;
  }
  if (type == "DATETIME" || type == "DATE") return adtype::kDate;
  return 0;
}

// Parses the PARAMS text of a routine.
std::vector<ParameterInfo> ParseParams(const std::string& routine, const std::string& text) {
  std::vector<std::string> items;
  int depth = 0;
  std::string current;
  for (char c : text) {
    if (c == '(') ++depth;
    if (c == ')') --depth;
    if (c == ',' && depth == 0) {
      items.push_back(current);
      current.clear();
    } else {
      current += c;
    }
  }
  items.push_back(current);

  std::vector<ParameterInfo> params;
  for (const std::string& item : items) {
    std::vector<std::string> words;
    std::string word;
    for (char c : Trim(item) + " ") {
      if (c == ' ' || c == '\t' || c == '\r' || c == '\n') {
        if (!word.empty()) words.push_back(word);
        word.clear();
      } else {
        word += c;
      }
    }
    if (words.empty() && items.size() == 1) break;  // no parameters at all
    const auto bad = [&]() {
      return VbError(vberr::kProviderError,
                     "Bad parameter declaration '" + Trim(item) + "' of routine " + routine);
    };
    if (words.size() < 2 || words.size() > 3) throw bad();
    ParameterInfo info;
    info.name = words[0][0] == '@' ? words[0] : "@" + words[0];
    info.type = AdTypeOf(words[1]);
    if (info.type == 0) throw bad();
    if (words.size() == 3) {
      const std::string direction = vb::UCase(words[2]);
      if (direction == "IN" || direction == "INPUT") {
        info.direction = ParameterDirection::kInput;
      } else if (direction == "OUT" || direction == "OUTPUT") {
        info.direction = ParameterDirection::kOutput;
      } else if (direction == "INOUT") {
        info.direction = ParameterDirection::kInputOutput;
      } else {
        throw bad();
      }
    }
    params.push_back(info);
  }
  return params;
}

// A registered scalar function: its parameters and body, with the body's
// statement prepared once and reused.
struct ScalarFunction {
  sqlite3* db = nullptr;
  std::string name;
  std::vector<std::string> params;
  std::string body;
  StmtPtr cached;
  bool busy = false;
};

void CallScalarFunction(sqlite3_context* context, int argc, sqlite3_value** argv) {
  auto* fn = static_cast<ScalarFunction*>(sqlite3_user_data(context));
  StmtPtr nested;  // a recursive call cannot reuse the statement in use
  sqlite3_stmt* stmt = fn->busy ? nullptr : fn->cached.get();
  if (stmt == nullptr) {
    sqlite3_stmt* raw = nullptr;
    if (sqlite3_prepare_v2(fn->db, fn->body.c_str(), -1, &raw, nullptr) != SQLITE_OK ||
        raw == nullptr) {
      const std::string message = "function " + fn->name + ": " + sqlite3_errmsg(fn->db);
      sqlite3_finalize(raw);
      sqlite3_result_error(context, message.c_str(), -1);
      return;
    }
    if (fn->busy) {
      nested.reset(raw);
    } else {
      fn->cached.reset(raw);
    }
    stmt = raw;
  }
  const bool owner = !fn->busy;
  fn->busy = true;
  for (int i = 0; i < argc && i < static_cast<int>(fn->params.size()); ++i) {
    const int index = BindIndex(stmt, fn->params[i]);
    if (index > 0) sqlite3_bind_value(stmt, index, argv[i]);
  }
  const int rc = sqlite3_step(stmt);
  if (rc == SQLITE_ROW) {
    sqlite3_result_value(context, sqlite3_column_value(stmt, 0));
  } else if (rc == SQLITE_DONE) {
    sqlite3_result_null(context);
  } else {
    const std::string message = "function " + fn->name + ": " + sqlite3_errmsg(fn->db);
    sqlite3_result_error(context, message.c_str(), -1);
  }
  sqlite3_reset(stmt);
  sqlite3_clear_bindings(stmt);
  if (owner) fn->busy = false;
}

struct Routine {
  std::string name;
  std::string kind;
  std::string params;
  std::string body;
};

class SqliteBackend : public Backend {
 public:
  explicit SqliteBackend(DbPtr db) : db_(std::move(db)) {
    // Without waiting for a lock: a database locked now has its functions
    // registered at their first use instead.
    LoadFunctions();
    SetCommandTimeout(30);
  }

  ~SqliteBackend() override {
    functions_.clear();  // finalizes the bodies' statements before the close
  }

  RowSet Execute(const std::string& sql) override {
    const std::string translated = TranslateTsqlToSqlite(sql);
    RowSet rows = RunScript(translated, nullptr);
    if (vb::InStr(1, translated, "ZARVIK_ROUTINES", vb::Compare::kText) != 0) LoadFunctions();
    return rows;
  }

  std::vector<ParameterInfo> DescribeProcedure(const std::string& name) override {
    const Routine routine = FindProcedure(name);
    return ParseParams(routine.name, routine.params);
  }

  RowSet CallProcedure(const std::string& name, std::vector<ParameterInfo>& params) override {
    const Routine routine = FindProcedure(name);
    auto bind = [&params](sqlite3_stmt* stmt) {
      for (const ParameterInfo& p : params) {
        if (p.direction != ParameterDirection::kInput &&
            p.direction != ParameterDirection::kInputOutput) {
          continue;
        }
        const int index = BindIndex(stmt, p.name);
        if (index > 0) BindVariant(stmt, index, p.value);
      }
    };
    RowSet rows = RunScript(routine.body, bind);
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
  using Binder = std::function<void(sqlite3_stmt*)>;

  [[noreturn]] void Fail(int code, const std::string& statement) const {
    throw VbError(vberr::kProviderError, ErrorText(code, sqlite3_errmsg(db_.get()), statement));
  }

  // Runs every statement of `text`; answers the rows of the first statement
  // that has a result set.
  RowSet RunScript(const std::string& text, const Binder& bind) {
    RowSet result;
    bool have_result = false;
    const char* tail = text.c_str();
    const char* const end = tail + text.size();
    while (tail < end) {
      sqlite3_stmt* raw = nullptr;
      const char* next = nullptr;
      int rc = sqlite3_prepare_v2(db_.get(), tail, static_cast<int>(end - tail), &raw, &next);
      if (rc != SQLITE_OK && MissingFunction() && LoadFunctions()) {
        sqlite3_finalize(raw);
        raw = nullptr;
        rc = sqlite3_prepare_v2(db_.get(), tail, static_cast<int>(end - tail), &raw, &next);
      }
      StmtPtr stmt(raw);
      if (rc != SQLITE_OK) Fail(rc, std::string(tail, end));
      if (!stmt) break;  // only blanks or comments left
      if (bind) bind(stmt.get());
      const int columns = sqlite3_column_count(stmt.get());
      const bool keep = columns > 0 && !have_result;
      if (keep) {
        for (int c = 0; c < columns; ++c) {
          const char* name = sqlite3_column_name(stmt.get(), c);
          result.columns.emplace_back(name == nullptr ? "" : name);
        }
      }
      while ((rc = sqlite3_step(stmt.get())) == SQLITE_ROW) {
        if (!keep) continue;
        std::vector<Variant> row;
        row.reserve(columns);
        for (int c = 0; c < columns; ++c) row.push_back(ColumnValue(stmt.get(), c));
        result.rows.push_back(std::move(row));
      }
      if (rc != SQLITE_DONE) Fail(rc, sqlite3_sql(stmt.get()));
      have_result = have_result || keep;
      tail = next;
    }
    return result;
  }

  bool MissingFunction() const {
    return std::string(sqlite3_errmsg(db_.get())).rfind("no such function", 0) == 0;
  }

  std::optional<Routine> LookUp(const std::string& name) {
    sqlite3_stmt* raw = nullptr;
    const char* sql =
        "SELECT NAME, KIND, PARAMS, BODY FROM ZARVIK_ROUTINES WHERE UPPER(NAME) = UPPER(?1)";
    if (sqlite3_prepare_v2(db_.get(), sql, -1, &raw, nullptr) != SQLITE_OK) {
      sqlite3_finalize(raw);
      return std::nullopt;  // no routines table
    }
    StmtPtr stmt(raw);
    sqlite3_bind_text(raw, 1, name.c_str(), -1, SQLITE_TRANSIENT);
    if (sqlite3_step(raw) != SQLITE_ROW) return std::nullopt;
    auto text = [raw](int c) {
      const auto* p = reinterpret_cast<const char*>(sqlite3_column_text(raw, c));
      return p == nullptr ? std::string() : std::string(p);
    };
    return Routine{text(0), text(1), text(2), text(3)};
  }

  Routine FindProcedure(const std::string& name) {
    const std::string bare = BareRoutineName(name);
    std::optional<Routine> routine = LookUp(bare);
    if (!routine || vb::UCase(Trim(routine->kind)) != "PROCEDURE") {
      throw VbError(vberr::kProviderError, NotFoundText(name));
    }
    return *routine;
  }

  // Registers every FUNCTION of ZARVIK_ROUTINES; answers whether the table
  // held any function.
  bool LoadFunctions() {
    sqlite3_stmt* raw = nullptr;
    const char* sql =
        "SELECT NAME, PARAMS, BODY FROM ZARVIK_ROUTINES WHERE UPPER(KIND) = 'FUNCTION'";
    if (sqlite3_prepare_v2(db_.get(), sql, -1, &raw, nullptr) != SQLITE_OK) {
      sqlite3_finalize(raw);
      return false;
    }
    StmtPtr stmt(raw);
    std::vector<Routine> found;
    while (sqlite3_step(raw) == SQLITE_ROW) {
      auto text = [raw](int c) {
        const auto* p = reinterpret_cast<const char*>(sqlite3_column_text(raw, c));
        return p == nullptr ? std::string() : std::string(p);
      };
      found.push_back(Routine{BareRoutineName(text(0)), "FUNCTION", text(1), text(2)});
    }
    stmt.reset();
    for (const Routine& r : found) Register(r);
    return !found.empty();
  }

  void Register(const Routine& routine) {
    auto fn = std::make_unique<ScalarFunction>();
    fn->db = db_.get();
    fn->name = routine.name;
    fn->body = routine.body;
    for (const ParameterInfo& p : ParseParams(routine.name, routine.params)) {
      fn->params.push_back(p.name);
    }
    const int rc = sqlite3_create_function_v2(
        db_.get(), routine.name.c_str(), static_cast<int>(fn->params.size()), SQLITE_UTF8, fn.get(),
        CallScalarFunction, nullptr, nullptr, nullptr);
    if (rc != SQLITE_OK) Fail(rc, "");
    // The previous definition (if any) is no longer reachable from SQLite.
    functions_[vb::UCase(routine.name) + "/" + std::to_string(fn->params.size())] = std::move(fn);
  }

  DbPtr db_;
  std::map<std::string, std::unique_ptr<ScalarFunction>> functions_;
};

}  // namespace

std::unique_ptr<Backend> OpenSqliteBackend(const std::string& path) {
  sqlite3* raw = nullptr;
  const int rc = sqlite3_open_v2(
      path.c_str(), &raw, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_URI, nullptr);
  DbPtr db(raw);
  if (rc != SQLITE_OK) {
    const std::string message = raw == nullptr ? "out of memory" : sqlite3_errmsg(raw);
    throw VbError(vberr::kProviderConnectFailed, "SQLite error " + std::to_string(rc & 0xff) +
                                                     ": " + message + " (Data Source=" + path +
                                                     ")");
  }
  return std::make_unique<SqliteBackend>(std::move(db));
}

}  // namespace zarvik::db
