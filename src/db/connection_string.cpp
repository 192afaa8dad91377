// Parsing ADO connection strings and mapping SQL Server's OLE DB keywords
// to ODBC ones.
#include "db/connection_string.h"

#include <string>
#include <vector>

#include "platform/vb_string.h"

namespace zarvik::db {
namespace {

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

std::string TrimBlanks(const std::string& text) {
  size_t b = 0;
  size_t e = text.size();
  while (b < e && IsBlank(text[b])) ++b;
  while (e > b && IsBlank(text[e - 1])) --e;
  return text.substr(b, e - b);
}

// Reads one value starting at `pos` (blanks already skipped) up to the ';'
// that ends it; `pos` is left on that ';' or at the end.
std::string ReadValue(const std::string& text, size_t& pos) {
  const char open = pos < text.size() ? text[pos] : '\0';
  if (open == '"' || open == '\'' || open == '{') {
    const char close = open == '{' ? '}' : open;
    std::string value;
    size_t i = pos + 1;
    bool closed = false;
    while (i < text.size()) {
      if (text[i] == close) {
        if (i + 1 < text.size() && text[i + 1] == close) {
          value += close;
          i += 2;
          continue;
        }
        closed = true;
        ++i;
        break;
      }
      value += text[i++];
    }
    size_t after = i;
    while (after < text.size() && IsBlank(text[after])) ++after;
    if (closed && (after == text.size() || text[after] == ';')) {
      pos = after;
      return value;
    }
    // Not a quoted value after all: read it as plain text.
  }
  size_t end = text.find(';', pos);
  if (end == std::string::npos) end = text.size();
  const std::string value = TrimBlanks(text.substr(pos, end - pos));
  pos = end;
  return value;
}

// The ODBC keyword for an OLE DB keyword of SQL Server: "" to drop it, the
// keyword itself to pass it on.
std::string OdbcKeyword(const std::string& key) {
  const std::string k = vb::UCase(key);
  struct Mapping {
    const char* oledb;
    const char* odbc;
  };
  static constexpr Mapping kMappings[] = {
      {"DATA SOURCE", "Server"},
      {"SERVER", "Server"},
      {"ADDRESS", "Server"},
      {"ADDR", "Server"},
      {"NETWORK ADDRESS", "Server"},
      {"INITIAL CATALOG", "Database"},
      {"DATABASE", "Database"},
      {"USER ID", "UID"},
      {"UID", "UID"},
      {"PASSWORD", "PWD"},
      {"PWD", "PWD"},
      {"APPLICATION NAME", "APP"},
      {"WORKSTATION ID", "WSID"},
      {"USE ENCRYPTION FOR DATA", "Encrypt"},
      {"TRUST SERVER CERTIFICATE", "TrustServerCertificate"},
      {"CURRENT LANGUAGE", "Language"},
      {"PROVIDER", ""},
      {"PERSIST SECURITY INFO", ""},
      {"AUTO TRANSLATE", ""},
      {"PACKET SIZE", ""},
      {"USE PROCEDURE FOR PREPARE", ""},
      {"DATATYPECOMPATIBILITY", ""},
      {"OLE DB SERVICES", ""},
      {"CONNECT TIMEOUT", ""},
      {"CONNECTION TIMEOUT", ""},
      {"GENERAL TIMEOUT", ""},
      {"DRIVER", ""},  // placed first by the caller
  };
  for (const Mapping& m : kMappings) {
    if (k == m.oledb) return m.odbc;
  }
  return key;
}

bool IsTrue(const std::string& value) {
  const std::string v = vb::UCase(TrimBlanks(value));
  return v == "SSPI" || v == "TRUE" || v == "YES";
}

}  // namespace

std::vector<ConnectionStringItem> ParseConnectionString(const std::string& text) {
  std::vector<ConnectionStringItem> items;
  size_t pos = 0;
  while (pos < text.size()) {
    const size_t eq = text.find('=', pos);
    const size_t semi = text.find(';', pos);
    if (eq == std::string::npos || (semi != std::string::npos && semi < eq)) {
      if (semi == std::string::npos) break;
      pos = semi + 1;  // an item without '='
      continue;
    }
    ConnectionStringItem item;
    item.key = TrimBlanks(text.substr(pos, eq - pos));
    pos = eq + 1;
    while (pos < text.size() && IsBlank(text[pos])) ++pos;
    item.value = ReadValue(text, pos);
    if (!item.key.empty()) items.push_back(std::move(item));
    ++pos;  // past the ';'
  }
  return items;
}

std::string ConnectionStringValue(const std::string& text, const std::string& key) {
  std::string found;
  const std::string wanted = vb::UCase(key);
  for (const ConnectionStringItem& item : ParseConnectionString(text)) {
    if (vb::UCase(item.key) == wanted) found = item.value;
  }
  return found;
}

bool IsSqlServerOleDbProvider(const std::string& provider) {
  std::string name = vb::UCase(TrimBlanks(provider));
  const size_t dot = name.find('.');
  if (dot != std::string::npos) name = name.substr(0, dot);
  for (const char* known :
       {"SQLOLEDB", "SQLNCLI", "SQLNCLI10", "SQLNCLI11", "MSOLEDBSQL", "MSOLEDBSQL19"}) {
    if (name == known) return true;
  }
  return false;
}

std::string OdbcValue(const std::string& value) {
  const bool plain = value.find_first_of(";{}=") == std::string::npos &&
                     (value.empty() || (!IsBlank(value.front()) && !IsBlank(value.back())));
  if (plain) return value;
  std::string braced = "{";
  for (char c : value) {
    braced += c;
    if (c == '}') braced += '}';
  }
  return braced + "}";
}

std::string SqlServerOdbcFromOleDb(const std::string& text, const std::string& driver) {
  const std::vector<ConnectionStringItem> items = ParseConnectionString(text);
  std::string chosen = driver;
  for (const ConnectionStringItem& item : items) {
    if (vb::UCase(item.key) == "DRIVER") chosen = item.value;
  }
  std::string odbc = "Driver={" + chosen + "}";
  for (const ConnectionStringItem& item : items) {
    const std::string upper = vb::UCase(item.key);
    if (upper == "INTEGRATED SECURITY" || upper == "TRUSTED_CONNECTION") {
      if (IsTrue(item.value)) odbc += ";Trusted_Connection=yes";
      continue;
    }
    const std::string keyword = OdbcKeyword(item.key);
    if (keyword.empty()) continue;
    odbc += ";" + keyword + "=" + OdbcValue(item.value);
  }
  return odbc;
}

}  // namespace zarvik::db
