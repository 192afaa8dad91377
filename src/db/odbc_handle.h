// Owning wrappers of ODBC handles and the translation of a failed ODBC call
// into a VbError carrying the driver's diagnostic records.
#ifndef ZARVIK_DB_ODBC_HANDLE_H_
#define ZARVIK_DB_ODBC_HANDLE_H_

#ifdef _WIN32
#include <windows.h>  // mingw's sql.h needs the Windows types first
#endif
#include <sql.h>
#include <sqlext.h>

#include <cstdint>
#include <string>
#include <vector>

#include "db/odbc_support.h"

namespace zarvik::db::odbc {

// One ODBC handle of type `kType`, freed on destruction. Allocation
// failures raise VbError(`error_number`).
template <SQLSMALLINT kType>
class Handle {
 public:
  Handle(SQLHANDLE parent, int32_t error_number);
  ~Handle() {
    if (handle_ != SQL_NULL_HANDLE) SQLFreeHandle(kType, handle_);
  }
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;

  SQLHANDLE get() const { return handle_; }

 private:
  SQLHANDLE handle_ = SQL_NULL_HANDLE;
};

using EnvHandle = Handle<SQL_HANDLE_ENV>;
using DbcHandle = Handle<SQL_HANDLE_DBC>;
using StmtHandle = Handle<SQL_HANDLE_STMT>;

// All diagnostic records the last call left on the handle.
std::vector<DiagRecord> ReadDiagnostics(SQLSMALLINT handle_type, SQLHANDLE handle);

// Raises VbError(`error_number`) with the handle's diagnostics; `what`
// names the call for the case where the driver left none.
[[noreturn]] void RaiseDiagnostics(int32_t error_number, SQLSMALLINT handle_type, SQLHANDLE handle,
                                   const std::string& what, SQLRETURN rc);

// Raises as above unless `rc` is SQL_SUCCESS or SQL_SUCCESS_WITH_INFO.
inline void Check(SQLRETURN rc, int32_t error_number, SQLSMALLINT handle_type, SQLHANDLE handle,
                  const char* what) {
  if (!SQL_SUCCEEDED(rc)) RaiseDiagnostics(error_number, handle_type, handle, what, rc);
}

}  // namespace zarvik::db::odbc

#endif  // ZARVIK_DB_ODBC_HANDLE_H_
