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

// Isolation level adXactReadCommitted.
constexpr long kXactReadCommitted = 4096;

class Connection : public Object {
 public:
  Connection() = default;
  ~Connection() override;
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  std::string ConnectionString() const { return connection_string_; }
  void SetConnectionString(const std::string& value);  // open: 3705
  int CommandTimeout() const { return command_timeout_; }
  void SetCommandTimeout(int seconds);
  int ConnectionTimeout() const { return connection_timeout_; }
  void SetConnectionTimeout(int seconds);
  long IsolationLevel() const { return isolation_level_; }
  void SetIsolationLevel(long value);
  int CursorLocation() const { return cursor_location_; }
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
};

}  // namespace zarvik::db

#endif  // ZARVIK_DB_CONNECTION_H_
