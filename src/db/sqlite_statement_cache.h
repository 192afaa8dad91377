// The prepared statements of one SQLite connection, kept by the text they
// were prepared from, so that a text the component sends again is not
// compiled again: a kept statement is reset and its bindings cleared when it
// is handed back, and bound anew by its next user.
//
// Only a text that holds a single statement is kept (what follows the first
// statement is blanks, ';' and comments only); the rest of a script is
// prepared from its tail each time. A statement that changes the schema
// (CREATE, DROP, ALTER, ATTACH, DETACH) is never kept, and once it has run
// every kept statement is finalised. The cache is bounded by bytes (the
// text and the statement's own memory as SQLite reports it), the statements
// used least recently being finalised first, and finalises what it keeps
// when it is destroyed, which the connection's owner does before closing
// the connection.
#ifndef ZARVIK_DB_SQLITE_STATEMENT_CACHE_H_
#define ZARVIK_DB_SQLITE_STATEMENT_CACHE_H_

#include <sqlite3.h>

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "db/lru_cache.h"

namespace zarvik::db {

struct SqliteStmtFinalizer {
  void operator()(sqlite3_stmt* stmt) const { sqlite3_finalize(stmt); }
};
using SqliteStmtPtr = std::unique_ptr<sqlite3_stmt, SqliteStmtFinalizer>;

// True when `tail` holds no further statement: only blanks, ';' and
// comments ("-- ..." to the end of the line, "/* ... */").
bool HoldsNoStatement(std::string_view tail);

class SqliteStatementCache {
 public:
  static constexpr size_t kDefaultMaxBytes = size_t{8} << 20;

  // Watches the statements prepared on `db` for schema changes (the
  // connection's authorizer) from now on.
  explicit SqliteStatementCache(sqlite3* db, size_t max_bytes = kDefaultMaxBytes);
  ~SqliteStatementCache();
  SqliteStatementCache(const SqliteStatementCache&) = delete;
  SqliteStatementCache& operator=(const SqliteStatementCache&) = delete;

  // A statement lent by Prepare, ready to be bound and stepped. Handing it
  // back (destroying the lease) resets it and keeps it for the next Prepare
  // of the same text, when it may be kept.
  class Lease {
   public:
    Lease() = default;
    Lease(Lease&& other) noexcept = default;
    Lease& operator=(Lease&& other) noexcept;
    ~Lease();

    sqlite3_stmt* get() const { return stmt_.get(); }
    explicit operator bool() const { return stmt_ != nullptr; }
    // Where the rest of the text begins (its end for a kept statement).
    size_t tail() const { return tail_; }

   private:
    friend class SqliteStatementCache;
    void Return();

    SqliteStatementCache* owner_ = nullptr;
    SqliteStmtPtr stmt_;
    size_t tail_ = 0;
    bool keep_ = false;  // kept under `text_` when handed back
    std::string text_;
    bool changes_schema_ = false;
  };

  // The statement that starts at `offset` of `text`: the kept one for a
  // whole text prepared before, else a new one. `rc` is SQLite's result code
  // of the preparation; the lease is empty when it failed or when only
  // blanks and comments remain.
  Lease Prepare(const std::string& text, size_t offset, int& rc);

  // Finalises every kept statement.
  void Clear() { kept_.Clear(); }
  size_t Bytes() const { return kept_.Bytes(); }
  size_t Size() const { return kept_.Size(); }

 private:
  static int Authorize(void* self, int action, const char*, const char*, const char*, const char*);
  void Keep(std::string text, SqliteStmtPtr stmt);

  sqlite3* db_;
  LruCache<SqliteStmtPtr> kept_;
  bool schema_change_prepared_ = false;  // set by the authorizer
};

}  // namespace zarvik::db

#endif  // ZARVIK_DB_SQLITE_STATEMENT_CACHE_H_
