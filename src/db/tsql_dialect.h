// Rewrites the T-SQL the component sends into SQLite's dialect, for the
// embedded engine (and for an ODBC driver whose database is SQLite).
//
// Only the constructs the component and its test database use are handled:
// TOP n, table hints WITH (NOLOCK), ISNULL, GETDATE(), CONVERT/CAST to character and
// decimal types, convert(varchar, x, 120) and convert(datetime, s, 120),
// N'...' literals, [bracketed] names, dbo. / [dbo]. qualifiers, the ODBC
// outer-join escape {oj ...}, and x IN ((SELECT ...)), whose inner
// parentheses SQLite would read as a one-value list. String literals and
// comments are never touched; everything else is kept byte for byte.
#ifndef ZARVIK_DB_TSQL_DIALECT_H_
#define ZARVIK_DB_TSQL_DIALECT_H_

#include <cstddef>
#include <string>

#include "db/lru_cache.h"

namespace zarvik::db {

std::string TranslateTsqlToSqlite(const std::string& tsql);

// The translations of one connection, kept by statement text: the component
// sends the same few texts again and again. Holds at most `max_bytes` of
// texts (both sides counted), the least recently used leaving first.
class TsqlTranslationCache {
 public:
  static constexpr size_t kDefaultMaxBytes = size_t{8} << 20;

  explicit TsqlTranslationCache(size_t max_bytes = kDefaultMaxBytes) : translations_(max_bytes) {}
  std::string Translate(const std::string& tsql);
  size_t size() const { return translations_.Size(); }
  size_t bytes() const { return translations_.Bytes(); }

 private:
  LruCache<std::string> translations_;
};

}  // namespace zarvik::db

#endif  // ZARVIK_DB_TSQL_DIALECT_H_
