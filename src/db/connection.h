// ADO-like Connection: properties, Open/Close/State and Execute.
#ifndef ZARVIK_DB_CONNECTION_H_
#define ZARVIK_DB_CONNECTION_H_

#include <memory>
#include <string>
#include <vector>

#include "db/backend.h"
#include "db/recordset.h"
#include "db/tracing.h"
#include "platform/object.h"

namespace zarvik::db {

// Object states (ADO's ObjectStateEnum).
constexpr int kStateClosed = 0;
constexpr int kStateOpen = 1;

// Command options of Execute (CommandTypeEnum / ExecuteOptionEnum).
constexpr long kCmdUnspecified = -1;
constexpr long kCmdText = 1;
constexpr long kCmdStoredProc = 4;

// The command type bits of Execute's options (adCmdText, adCmdTable,
// adCmdStoredProc); option flags such as adExecuteNoRecords lie above them.
constexpr long kCmdTypeMask = 0x7;

// Whether Execute's options or a command's type name a stored procedure.
constexpr bool IsStoredProc(long options) {
  return options != kCmdUnspecified && (options & kCmdTypeMask) == kCmdStoredProc;
}

// Isolation level adXactReadCommitted.
constexpr long kXactReadCommitted = 4096;

class Connection : public Object {
 public:
  Connection() = default;
  // A connection of a foreign ADO library (the host's, or one `factory`
  // made): its properties, Open, Close, State and Execute are late-bound
  // calls on `peer`, Execute answers Recordsets over the peer's recordsets,
  // and a Command on it drives an "ADODB.Command" that `factory` creates. The
  // host gets `peer` itself back.
  Connection(ObjectRef peer, std::shared_ptr<ObjectFactory> factory);
  const ObjectRef& Peer() const { return peer_; }
  const std::shared_ptr<ObjectFactory>& PeerFactory() const { return factory_; }
  ~Connection() override;
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  std::string ConnectionString() const;
  void SetConnectionString(const std::string& value);  // open: 3705
  int CommandTimeout() const;
  void SetCommandTimeout(int seconds);
  int ConnectionTimeout() const;
  void SetConnectionTimeout(int seconds);
  long IsolationLevel() const;
  void SetIsolationLevel(long value);
  int CursorLocation() const;
  void SetCursorLocation(int value);  // 2 or 3, else 3001

  // Open(ConnectionString, UserID, Password, Options). Already open: 3705.
  // Provider failures raise VbError with the provider's number and text.
  void Open(const std::string& user_id = "", const std::string& password = "", long options = -1);
  void Close();  // closed: 3704
  int State() const;

  // Runs statement text (options: kCmdText, kCmdUnspecified; kCmdStoredProc
  // calls the procedure named by `text` without parameters). A statement
  // without rows returns a closed Recordset, as ADO does. Closed: 3709.
  // On the embedded engine the text is one statement: a text that goes on
  // with a second one is refused before anything runs.
  std::shared_ptr<Recordset> Execute(const std::string& text, long options = kCmdUnspecified);
  // Runs a script of several statements (test set-ups, building a database)
  // and answers the rows of its first statement that has a result set. The
  // component never calls it. Closed: 3709.
  std::shared_ptr<Recordset> ExecuteScript(const std::string& script);

  // Records every statement sent from now on, including those of commands.
  // May be called before or after Open.
  void SetStatementLog(std::shared_ptr<StatementLog> log);

  // Records a statement sent past the backend (to the host's ADO) with the
  // command type of `options`, as the tracing backend records the ones it runs.
  void LogPeerStatement(const std::string& text, long options);

  // The backend of an open connection, for Command (closed: 3709).
  Backend& OpenBackendOrThrow();

  // Late-bound members: ConnectionString, State, CursorLocation,
  // CommandTimeout, ConnectionTimeout, IsolationLevel; Open(), Close(),
  // Execute(text[, options]).
  std::string TypeName() const override { return "Connection"; }
  Variant GetProperty(const std::string& name) override;
  void PutProperty(const std::string& name, const Variant& value) override;
  Variant CallMethod(const std::string& name, std::vector<Variant>& args) override;

 private:
  // Runs `run` on the backend and wraps its rows (a closed Recordset when
  // there are none); provider failures become VbErrors.
  template <class F>
  std::shared_ptr<Recordset> Run(F&& run);

  std::string connection_string_;
  int command_timeout_ = 30;
  int connection_timeout_ = 15;
  long isolation_level_ = kXactReadCommitted;
  int cursor_location_ = kUseServer;
  std::shared_ptr<StatementLog> log_;
  std::unique_ptr<Backend> backend_;
  TracingBackend* tracing_ = nullptr;  // the decorator inside backend_, if any
  ObjectRef peer_;
  std::shared_ptr<ObjectFactory> factory_;
};

// A new, closed connection: over a new "ADODB.Connection" of `data_access`,
// or the component's own when that is null.
std::shared_ptr<Connection> NewConnection(const std::shared_ptr<ObjectFactory>& data_access);

// `object` as a connection: itself when it is a Connection; with
// `data_access`, any other object, taken as that library's connection;
// otherwise nullptr.
std::shared_ptr<Connection> AsConnection(const ObjectRef& object,
                                         const std::shared_ptr<ObjectFactory>& data_access);

}  // namespace zarvik::db

#endif  // ZARVIK_DB_CONNECTION_H_
