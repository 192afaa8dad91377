// Connection: opens a backend from its connection string and runs text on it.
#include "db/connection.h"

#include <exception>
#include <utility>

#include "platform/vb_error.h"
#include "platform/vb_string.h"

namespace zarvik::db {
namespace {

// Command type bits of Execute's options (adCmdText, adCmdTable,
// adCmdStoredProc); option flags such as adExecuteNoRecords are ignored.
constexpr long kCmdTypeMask = 0x7;
constexpr long kCmdTable = 2;

bool IsStoredProc(long options) {
  return options != kCmdUnspecified && (options & kCmdTypeMask) == kCmdStoredProc;
}

long OptionsArgument(const Variant& value) {
  return value.IsEmpty() ? kCmdUnspecified : static_cast<long>(value.ToLong());
}

}  // namespace

Connection::~Connection() = default;

void Connection::SetConnectionString(const std::string& value) {
  if (backend_) throw VbError(vberr::kAdoObjectOpen);
  connection_string_ = value;
}

void Connection::SetCommandTimeout(int seconds) {
  if (seconds < 0) throw VbError(vberr::kAdoArgumentsWrong);
  command_timeout_ = seconds;
  if (backend_) backend_->SetCommandTimeout(seconds);
}

void Connection::SetConnectionTimeout(int seconds) {
  if (backend_) throw VbError(vberr::kAdoObjectOpen);
  if (seconds < 0) throw VbError(vberr::kAdoArgumentsWrong);
  connection_timeout_ = seconds;
}

void Connection::SetIsolationLevel(long value) { isolation_level_ = value; }

void Connection::SetCursorLocation(int value) {
  if (value != kUseServer && value != kUseClient) throw VbError(vberr::kAdoArgumentsWrong);
  cursor_location_ = value;
}

void Connection::Open(const std::string& user_id, const std::string& password, long /*options*/) {
  if (backend_) throw VbError(vberr::kAdoObjectOpen);
  std::string text = connection_string_;
  if (!user_id.empty()) text += ";UID=" + user_id + ";PWD=" + password;
  std::unique_ptr<Backend> backend;
  try {
    backend = OpenBackend(text, connection_timeout_);
  } catch (const VbError&) {
    throw;
  } catch (const std::exception& e) {
    throw VbError(vberr::kProviderConnectFailed, e.what());
  }
  backend->SetCommandTimeout(command_timeout_);
  if (log_) {
    auto tracing = std::make_unique<TracingBackend>(std::move(backend), log_);
    tracing_ = tracing.get();
    backend = std::move(tracing);
  }
  backend_ = std::move(backend);
}

void Connection::Close() {
  if (!backend_) throw VbError(vberr::kAdoObjectClosed);
  tracing_ = nullptr;
  backend_.reset();
}

int Connection::State() const { return backend_ ? kStateOpen : kStateClosed; }

Backend& Connection::OpenBackendOrThrow() {
  if (!backend_) throw VbError(vberr::kAdoConnectionUnusable);
  return *backend_;
}

template <class F>
std::shared_ptr<Recordset> Connection::Run(F&& run) {
  Backend& backend = OpenBackendOrThrow();
  RowSet rows;
  try {
    rows = run(backend);
  } catch (const VbError&) {
    throw;
  } catch (const std::exception& e) {
    throw VbError(vberr::kProviderError, e.what());
  }
  const bool has_rows = !rows.columns.empty();
  auto recordset = std::make_shared<Recordset>(std::move(rows), cursor_location_);
  if (!has_rows) recordset->Close();
  return recordset;
}

std::shared_ptr<Recordset> Connection::Execute(const std::string& text, long options) {
  return Run([&](Backend& backend) {
    if (IsStoredProc(options)) {
      std::vector<ParameterInfo> none;
      return backend.CallProcedure(text, none);
    }
    if (options != kCmdUnspecified && (options & kCmdTypeMask) == kCmdTable) {
      return backend.Execute("SELECT * FROM " + text);
    }
    return backend.Execute(text);
  });
}

std::shared_ptr<Recordset> Connection::ExecuteScript(const std::string& script) {
  return Run([&](Backend& backend) { return backend.ExecuteScript(script); });
}

void Connection::SetStatementLog(std::shared_ptr<StatementLog> log) {
  log_ = std::move(log);
  if (!backend_) return;
  if (tracing_ != nullptr) {
    tracing_->SetLog(log_);
  } else if (log_) {
    auto tracing = std::make_unique<TracingBackend>(std::move(backend_), log_);
    tracing_ = tracing.get();
    backend_ = std::move(tracing);
  }
}

Variant Connection::GetProperty(const std::string& name) {
  const std::string member = vb::UCase(name);
  if (member == "CONNECTIONSTRING") return Variant(ConnectionString());
  if (member == "STATE") return Variant(static_cast<int32_t>(State()));
  if (member == "CURSORLOCATION") return Variant(static_cast<int32_t>(CursorLocation()));
  if (member == "COMMANDTIMEOUT") return Variant(static_cast<int32_t>(CommandTimeout()));
  if (member == "CONNECTIONTIMEOUT") return Variant(static_cast<int32_t>(ConnectionTimeout()));
  if (member == "ISOLATIONLEVEL") return Variant(static_cast<int32_t>(IsolationLevel()));
  return Object::GetProperty(name);
}

void Connection::PutProperty(const std::string& name, const Variant& value) {
  const std::string member = vb::UCase(name);
  if (member == "CONNECTIONSTRING") {
    SetConnectionString(value.ToString());
  } else if (member == "CURSORLOCATION") {
    SetCursorLocation(value.ToLong());
  } else if (member == "COMMANDTIMEOUT") {
    SetCommandTimeout(value.ToLong());
  } else if (member == "CONNECTIONTIMEOUT") {
    SetConnectionTimeout(value.ToLong());
  } else if (member == "ISOLATIONLEVEL") {
    SetIsolationLevel(value.ToLong());
  } else {
    Object::PutProperty(name, value);
  }
}

// Open([ConnectionString[, UserID[, Password[, Options]]]]), Close(),
// Execute(text[, options]) and ADO's Execute(text, RecordsAffected, options).
Variant Connection::CallMethod(const std::string& name, std::vector<Variant>& args) {
  const std::string member = vb::UCase(name);
  auto text_arg = [&args](size_t i) {
    return i < args.size() && !args[i].IsEmpty() ? args[i].ToString() : std::string();
  };
  if (member == "OPEN") {
    if (args.size() > 4) throw VbError(vberr::kWrongArgCount);
    if (!text_arg(0).empty()) SetConnectionString(text_arg(0));
    Open(text_arg(1), text_arg(2), args.size() > 3 ? OptionsArgument(args[3]) : kCmdUnspecified);
    return Variant();
  }
  if (member == "CLOSE") {
    if (!args.empty()) throw VbError(vberr::kWrongArgCount);
    Close();
    return Variant();
  }
  if (member == "EXECUTE") {
    if (args.empty() || args.size() > 3) throw VbError(vberr::kWrongArgCount);
    long options = kCmdUnspecified;
    if (args.size() == 2) options = OptionsArgument(args[1]);
    if (args.size() == 3) options = OptionsArgument(args[2]);
    return Variant(ObjectRef(Execute(args[0].ToString(), options)));
  }
  return Object::CallMethod(name, args);
}

}  // namespace zarvik::db
