// Connection strings as ADO hosts write them ("key=value;key=value"), and
// the OLE DB strings for SQL Server rewritten for an ODBC driver.
#ifndef ZARVIK_DB_CONNECTION_STRING_H_
#define ZARVIK_DB_CONNECTION_STRING_H_

#include <string>
#include <vector>

namespace zarvik::db {

struct ConnectionStringItem {
  std::string key;    // as written, blanks around it removed
  std::string value;  // blanks around it and enclosing quotes or braces removed
};

// The items in order; items without '=' and empty items are skipped. A value
// may be enclosed in double or single quotes, or in braces with '}}' for a
// closing brace, to hold ';'.
std::vector<ConnectionStringItem> ParseConnectionString(const std::string& text);

// The value of the last item named `key` (compared without regard to case);
// "" when there is none.
std::string ConnectionStringValue(const std::string& text, const std::string& key);

// True for the OLE DB providers of SQL Server: SQLOLEDB, SQLNCLI, SQLNCLI10,
// SQLNCLI11, MSOLEDBSQL and MSOLEDBSQL19, with or without a version suffix
// such as ".1".
bool IsSqlServerOleDbProvider(const std::string& provider);

// The ODBC connection string for an OLE DB connection string of SQL Server,
// naming `driver`: Data Source becomes Server, Initial Catalog Database,
// User ID UID, Password PWD, Integrated Security (SSPI, true or yes)
// Trusted_Connection=yes, Application Name APP, Workstation ID WSID;
// Encrypt and TrustServerCertificate stay as they are. Keywords only OLE
// DB understands (Provider, Persist Security Info, ...) are dropped, any
// other keyword is passed on unchanged. A "Driver" item in the text wins
// over `driver`.
std::string SqlServerOdbcFromOleDb(const std::string& text, const std::string& driver);

// A value written so that an ODBC driver reads it back unchanged: in
// braces when it holds ';', braces, '=' or blanks at either end.
std::string OdbcValue(const std::string& value);

}  // namespace zarvik::db

#endif  // ZARVIK_DB_CONNECTION_STRING_H_
