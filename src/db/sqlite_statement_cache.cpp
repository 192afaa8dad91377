#include "db/sqlite_statement_cache.h"

#include <cctype>
#include <new>
#include <utility>

namespace zarvik::db {

bool HoldsNoStatement(std::string_view tail) {
  size_t at = 0;
  while (at < tail.size()) {
    const unsigned char c = static_cast<unsigned char>(tail[at]);
    if (c == ';' || std::isspace(c) != 0) {
      ++at;
    } else if (tail.compare(at, 2, "--") == 0) {
      const size_t line_end = tail.find('\n', at);
      if (line_end == std::string_view::npos) return true;
      at = line_end + 1;
    } else if (tail.compare(at, 2, "/*") == 0) {
      const size_t comment_end = tail.find("*/", at + 2);
      if (comment_end == std::string_view::npos) return true;
      at = comment_end + 2;
    } else {
      return false;
    }
  }
  return true;
}

SqliteStatementCache::SqliteStatementCache(sqlite3* db, size_t max_bytes)
    : db_(db), kept_(max_bytes) {
  sqlite3_set_authorizer(db_, Authorize, this);
}

SqliteStatementCache::~SqliteStatementCache() {
  kept_.Clear();
  sqlite3_set_authorizer(db_, nullptr, nullptr);
}

int SqliteStatementCache::Authorize(void* self, int action, const char*, const char*, const char*,
                                    const char*) {
  switch (action) {
    case SQLITE_CREATE_INDEX:
    case SQLITE_CREATE_TABLE:
    case SQLITE_CREATE_TEMP_INDEX:
    case SQLITE_CREATE_TEMP_TABLE:
    case SQLITE_CREATE_TEMP_TRIGGER:
    case SQLITE_CREATE_TEMP_VIEW:
    case SQLITE_CREATE_TRIGGER:
    case SQLITE_CREATE_VIEW:
    case SQLITE_CREATE_VTABLE:
    case SQLITE_DROP_INDEX:
    case SQLITE_DROP_TABLE:
    case SQLITE_DROP_TEMP_INDEX:
    case SQLITE_DROP_TEMP_TABLE:
    case SQLITE_DROP_TEMP_TRIGGER:
    case SQLITE_DROP_TEMP_VIEW:
    case SQLITE_DROP_TRIGGER:
    case SQLITE_DROP_VIEW:
    case SQLITE_DROP_VTABLE:
    case SQLITE_ALTER_TABLE:
    case SQLITE_ATTACH:
    case SQLITE_DETACH:
      static_cast<SqliteStatementCache*>(self)->schema_change_prepared_ = true;
      break;
    default:
      break;
  }
  return SQLITE_OK;
}

SqliteStatementCache::Lease SqliteStatementCache::Prepare(const std::string& text, size_t offset,
                                                          int& rc) {
  Lease lease;
  lease.owner_ = this;
  rc = SQLITE_OK;
  if (offset == 0 && kept_.Take(text, lease.text_, lease.stmt_)) {
    lease.keep_ = true;
    lease.tail_ = text.size();
    return lease;
  }
  schema_change_prepared_ = false;
  const char* const start = text.c_str() + offset;
  const char* const end = text.c_str() + text.size();
  sqlite3_stmt* raw = nullptr;
  const char* next = end;
  rc = sqlite3_prepare_v2(db_, start, static_cast<int>(end - start), &raw, &next);
  lease.stmt_.reset(raw);
  if (rc != SQLITE_OK || raw == nullptr) return lease;
  lease.tail_ = static_cast<size_t>(next - text.c_str());
  lease.changes_schema_ = schema_change_prepared_;
  if (offset == 0 && !lease.changes_schema_ &&
      HoldsNoStatement(std::string_view(next, static_cast<size_t>(end - next)))) {
    lease.keep_ = true;
    lease.text_ = text;
    lease.tail_ = text.size();
  }
  return lease;
}

void SqliteStatementCache::Keep(std::string text, SqliteStmtPtr stmt) {
  const int bytes = sqlite3_stmt_status(stmt.get(), SQLITE_STMTSTATUS_MEMUSED, 0);
  kept_.Insert(std::move(text), std::move(stmt), bytes > 0 ? static_cast<size_t>(bytes) : 0);
}

SqliteStatementCache::Lease& SqliteStatementCache::Lease::operator=(Lease&& other) noexcept {
  if (this != &other) {
    Return();
    owner_ = other.owner_;
    stmt_ = std::move(other.stmt_);
    tail_ = other.tail_;
    keep_ = other.keep_;
    text_ = std::move(other.text_);
    changes_schema_ = other.changes_schema_;
  }
  return *this;
}

SqliteStatementCache::Lease::~Lease() { Return(); }

void SqliteStatementCache::Lease::Return() {
  if (!stmt_) return;
  sqlite3_reset(stmt_.get());
  sqlite3_clear_bindings(stmt_.get());
  if (changes_schema_) {
    stmt_.reset();
    owner_->Clear();  // what was kept may name what the statement changed
  } else if (keep_) {
    try {
      owner_->Keep(std::move(text_), std::move(stmt_));
    } catch (const std::bad_alloc&) {
      // Not kept: it is prepared again next time.
    }
  }
  stmt_.reset();
}

}  // namespace zarvik::db
