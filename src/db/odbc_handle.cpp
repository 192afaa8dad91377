#include "db/odbc_handle.h"

#include "platform/vb_error.h"

namespace zarvik::db::odbc {
namespace {

const char* HandleKind(SQLSMALLINT type) {
  switch (type) {
    case SQL_HANDLE_ENV:
      return "environment";
    case SQL_HANDLE_DBC:
      return "connection";
    default:
      return "statement";
  }
}

}  // namespace

template <SQLSMALLINT kType>
Handle<kType>::Handle(SQLHANDLE parent, int32_t error_number) {
  const SQLRETURN rc = SQLAllocHandle(kType, parent, &handle_);
  if (SQL_SUCCEEDED(rc)) return;
  handle_ = SQL_NULL_HANDLE;
  const std::string what = std::string("allocation of an ODBC ") + HandleKind(kType) + " handle";
  // A failed allocation reports on the parent handle (none for the
  // environment).
  if (kType == SQL_HANDLE_ENV) {
    throw VbError(error_number, what + " failed (return code " + std::to_string(rc) + ")");
  }
  RaiseDiagnostics(error_number, kType == SQL_HANDLE_DBC ? SQL_HANDLE_ENV : SQL_HANDLE_DBC, parent,
                   what, rc);
}

template class Handle<SQL_HANDLE_ENV>;
template class Handle<SQL_HANDLE_DBC>;
template class Handle<SQL_HANDLE_STMT>;

std::vector<DiagRecord> ReadDiagnostics(SQLSMALLINT handle_type, SQLHANDLE handle) {
  std::vector<DiagRecord> records;
  if (handle == SQL_NULL_HANDLE) return records;
  for (SQLSMALLINT number = 1;; ++number) {
    SQLCHAR state[6] = {};
    SQLINTEGER native = 0;
    std::vector<SQLCHAR> message(512);
    SQLSMALLINT length = 0;
    SQLRETURN rc = SQLGetDiagRec(handle_type, handle, number, state, &native, message.data(),
                                 static_cast<SQLSMALLINT>(message.size()), &length);
    if (rc == SQL_SUCCESS_WITH_INFO && length >= static_cast<SQLSMALLINT>(message.size())) {
      // The message did not fit: ask again with room for all of it.
      message.resize(static_cast<size_t>(length) + 1);
      rc = SQLGetDiagRec(handle_type, handle, number, state, &native, message.data(),
                         static_cast<SQLSMALLINT>(message.size()), &length);
    }
    if (!SQL_SUCCEEDED(rc)) break;
    DiagRecord record;
    record.sqlstate = reinterpret_cast<const char*>(state);
    record.native_error = native;
    record.message = reinterpret_cast<const char*>(message.data());
    records.push_back(std::move(record));
  }
  return records;
}

void RaiseDiagnostics(int32_t error_number, SQLSMALLINT handle_type, SQLHANDLE handle,
                      const std::string& what, SQLRETURN rc) {
  const std::string fallback =
      "ODBC call " + what + " failed (return code " + std::to_string(rc) + ")";
  throw VbError(error_number, FormatDiagnostics(ReadDiagnostics(handle_type, handle), fallback));
}

}  // namespace zarvik::db::odbc
