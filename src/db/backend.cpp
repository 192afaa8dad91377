// Choosing the backend a connection string names.
#include "db/backend.h"

#include <string>

#include "db/odbc_backend.h"
#include "db/sqlite_backend.h"
#include "platform/vb_error.h"
#include "platform/vb_string.h"

namespace zarvik::db {
namespace {

std::string TrimBlanks(const std::string& text) {
  const char* blanks = " \t\r\n";
  const size_t b = text.find_first_not_of(blanks);
  if (b == std::string::npos) return "";
  return text.substr(b, text.find_last_not_of(blanks) - b + 1);
}

// The value of `key` in an ADO connection string ("k=v;k=v"); keys compare
// without regard to case, a value may be enclosed in double or single
// quotes; "" when absent.
std::string ConnectionStringValue(const std::string& text, const std::string& key) {
  size_t pos = 0;
  std::string found;
  while (pos < text.size()) {
    size_t end = text.find(';', pos);
    if (end == std::string::npos) end = text.size();
    const std::string item = text.substr(pos, end - pos);
    const size_t eq = item.find('=');
    if (eq != std::string::npos && vb::UCase(TrimBlanks(item.substr(0, eq))) == vb::UCase(key)) {
      std::string value = TrimBlanks(item.substr(eq + 1));
      if (value.size() >= 2 && (value[0] == '"' || value[0] == '\'') && value.back() == value[0]) {
        value = value.substr(1, value.size() - 2);
      }
      found = value;
    }
    pos = end + 1;
  }
  return found;
}

}  // namespace

std::unique_ptr<Backend> OpenBackend(const std::string& connection_string, int connect_timeout) {
  if (vb::UCase(ConnectionStringValue(connection_string, "Provider")) == "SQLITE") {
    const std::string path = ConnectionStringValue(connection_string, "Data Source");
    if (path.empty()) {
      throw VbError(vberr::kProviderConnectFailed,
                    "SQLite: the connection string names no Data Source");
    }
    return OpenSqliteBackend(path);
  }
  return OpenOdbcBackend(connection_string, connect_timeout);
}

}  // namespace zarvik::db
