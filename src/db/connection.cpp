// Connection: opens a backend from its connection string and runs text on it.
#include "db/connection.h"

#include <exception>
#include <utility>

#include "platform/vb_error.h"
#include "platform/vb_string.h"

namespace zarvik::db {
namespace {

constexpr long kCmdTable = 2;

long OptionsArgument(const Variant& value) {
  return value.IsEmpty() ? kCmdUnspecified : static_cast<long>(value.ToLong());
}

}  // namespace

Connection::Connection(ObjectRef peer, std::shared_ptr<ObjectFactory> factory)
    : peer_(std::move(peer)), factory_(std::move(factory)) {}

Connection::~Connection() = default;

std::shared_ptr<Connection> NewConnection(const std::shared_ptr<ObjectFactory>& data_access) {
  if (!data_access) return std::make_shared<Connection>();
  return std::make_shared<Connection>(data_access->CreateObject("ADODB.Connection"), data_access);
}

std::shared_ptr<Connection> AsConnection(const ObjectRef& object,
                                         const std::shared_ptr<ObjectFactory>& data_access) {
  if (auto connection = std::dynamic_pointer_cast<Connection>(object)) return connection;
  if (!object || !data_access) return nullptr;
  return std::make_shared<Connection>(object, data_access);
}

std::string Connection::ConnectionString() const {
  return peer_ ? peer_->GetProperty("ConnectionString").ToString() : connection_string_;
}

int Connection::CommandTimeout() const {
  return peer_ ? peer_->GetProperty("CommandTimeout").ToLong() : command_timeout_;
}

int Connection::ConnectionTimeout() const {
  return peer_ ? peer_->GetProperty("ConnectionTimeout").ToLong() : connection_timeout_;
}

long Connection::IsolationLevel() const {
  return peer_ ? peer_->GetProperty("IsolationLevel").ToLong() : isolation_level_;
}

int Connection::CursorLocation() const {
  return peer_ ? peer_->GetProperty("CursorLocation").ToLong() : cursor_location_;
}

void Connection::SetConnectionString(const std::string& value) {
  if (peer_) return peer_->PutProperty("ConnectionString", Variant(value));
  if (backend_) throw VbError(vberr::kAdoObjectOpen);
  connection_string_ = value;
}

void Connection::SetCommandTimeout(int seconds) {
  if (peer_) return peer_->PutProperty("CommandTimeout", Variant(static_cast<int32_t>(seconds)));
  if (seconds < 0) throw VbError(vberr::kAdoArgumentsWrong);
  command_timeout_ = seconds;
  if (backend_) backend_->SetCommandTimeout(seconds);
}

void Connection::SetConnectionTimeout(int seconds) {
  if (peer_) return peer_->PutProperty("ConnectionTimeout", Variant(static_cast<int32_t>(seconds)));
  if (backend_) throw VbError(vberr::kAdoObjectOpen);
  if (seconds < 0) throw VbError(vberr::kAdoArgumentsWrong);
  connection_timeout_ = seconds;
}

void Connection::SetIsolationLevel(long value) {
  if (peer_) return peer_->PutProperty("IsolationLevel", Variant(static_cast<int32_t>(value)));
  isolation_level_ = value;
}

void Connection::SetCursorLocation(int value) {
  if (peer_) return peer_->PutProperty("CursorLocation", Variant(static_cast<int32_t>(value)));
  if (value != kUseServer && value != kUseClient) throw VbError(vberr::kAdoArgumentsWrong);
  cursor_location_ = value;
}

void Connection::Open(const std::string& user_id, const std::string& password, long options) {
  if (peer_) {
    // Open(ConnectionString, UserID, Password, Options): an empty connection
    // string argument opens the ConnectionString property.
    std::vector<Variant> args{Variant(""), Variant(user_id), Variant(password),
                              Variant(static_cast<int32_t>(options))};
    peer_->CallMethod("Open", args);
    return;
  }
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
  if (peer_) {
    std::vector<Variant> none;
    peer_->CallMethod("Close", none);
    return;
  }
  if (!backend_) throw VbError(vberr::kAdoObjectClosed);
  tracing_ = nullptr;
  backend_.reset();
}

int Connection::State() const {
  if (peer_) return peer_->GetProperty("State").ToLong();
  return backend_ ? kStateOpen : kStateClosed;
}

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
  if (peer_) {
    // Execute(CommandText, RecordsAffected, Options).
    LogPeerStatement(text, options);
    std::vector<Variant> args{Variant(text), Variant(), Variant(static_cast<int32_t>(options))};
    return std::make_shared<Recordset>(peer_->CallMethod("Execute", args).ToObject());
  }
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
  // A foreign provider takes a script as one batch.
  if (peer_) return Execute(script, kCmdText);
  return Run([&](Backend& backend) { return backend.ExecuteScript(script); });
}

void Connection::LogPeerStatement(const std::string& text, long options) {
  if (log_) log_->statements.push_back(IsStoredProc(options) ? ProcedureCallText(text) : text);
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
  if (peer_) return peer_->GetProperty(name);
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
  if (peer_) return peer_->PutProperty(name, value);
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
  if (peer_) return peer_->CallMethod(name, args);
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
