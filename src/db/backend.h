// The seam between the ADO-like classes and a database engine.
//
// A Backend is one open session with a database. It runs statement text and
// answers with rows already read (the component's result sets are small), and
// it describes and calls stored procedures. Connection owns one Backend while
// it is open; TracingBackend decorates another Backend.
#ifndef ZARVIK_DB_BACKEND_H_
#define ZARVIK_DB_BACKEND_H_

#include <memory>
#include <string>
#include <vector>

#include "platform/variant.h"

namespace zarvik::db {

// Rows a statement returned; a statement without a result set (INSERT,
// UPDATE) returns no columns.
struct RowSet {
  std::vector<std::string> columns;
  std::vector<std::vector<Variant>> rows;
};

enum class ParameterDirection { kInput = 1, kOutput = 2, kInputOutput = 3, kReturnValue = 4 };

// ADO data types used to describe parameters (adSmallInt, adInteger, ...).
namespace adtype {
constexpr int kSmallInt = 2;
constexpr int kInteger = 3;
constexpr int kDouble = 5;
constexpr int kDate = 7;
constexpr int kVariant = 12;  // any type: the provider cannot say
constexpr int kBoolean = 11;
constexpr int kVarChar = 200;
}  // namespace adtype

struct ParameterInfo {
  std::string name;  // with its leading '@'
  int type = adtype::kVarChar;
  ParameterDirection direction = ParameterDirection::kInput;
  Variant value;
};

class Backend {
 public:
  virtual ~Backend() = default;
  // Runs statement text. Failures raise VbError(kProviderError, provider text).
  virtual RowSet Execute(const std::string& sql) = 0;
  // Runs a script of several statements (set-ups, building a database) and
  // answers the rows of its first statement that has a result set. The
  // component never sends scripts. By default the text goes to Execute, as
  // a server that takes a batch of statements runs it.
  virtual RowSet ExecuteScript(const std::string& sql) { return Execute(sql); }
  // The parameters of a stored procedure as the database declares them.
  virtual std::vector<ParameterInfo> DescribeProcedure(const std::string& name) = 0;
  // Calls a stored procedure; output parameters are written back into
  // `params`. Returns the procedure's result rows (often none).
  virtual RowSet CallProcedure(const std::string& name, std::vector<ParameterInfo>& params) = 0;
  virtual void SetCommandTimeout(int seconds) = 0;
};

// Opens the backend a connection string names:
//   "Provider=SQLite;Data Source=PATH"  the embedded SQLite engine
//                                        (":memory:" for a private in-memory
//                                        db; see sqlite_backend.h for Mode)
//   "Provider=SQLOLEDB;..." (SQLNCLI11, MSOLEDBSQL, ...)
//                                        SQL Server through its ODBC driver,
//                                        the OLE DB keywords mapped to ODBC
//                                        ones (connection_string.h)
//   "Provider=MSDASQL;..."               the rest as an ODBC string
//   no Provider ("Driver=...", "DSN=...") an ODBC connection string
//                                        (SQLDriverConnect through unixODBC)
// Any other provider raises VbError(kAdoProviderNotFound). `connect_timeout`
// is in seconds (0 = the driver's default). Raises VbError.
std::unique_ptr<Backend> OpenBackend(const std::string& connection_string, int connect_timeout);

}  // namespace zarvik::db

#endif  // ZARVIK_DB_BACKEND_H_
