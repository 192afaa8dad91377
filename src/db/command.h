// ADO-like Command, used for the one stored procedure the component calls.
#ifndef ZARVIK_DB_COMMAND_H_
#define ZARVIK_DB_COMMAND_H_

#include <memory>
#include <string>
#include <vector>

#include "db/backend.h"
#include "db/connection.h"
#include "db/recordset.h"

namespace zarvik::db {

class Parameter {
 public:
  explicit Parameter(ParameterInfo info) : info_(std::move(info)) {}
  // A parameter of a foreign ADODB.Command: Value reads and writes its
  // late-bound Value.
  Parameter(std::string name, ObjectRef peer);
  const std::string& Name() const { return info_.name; }
  ParameterDirection Direction() const { return info_.direction; }
  Variant Value() const;
  void SetValue(const Variant& value);
  ParameterInfo& Info() { return info_; }

 private:
  ParameterInfo info_;
  ObjectRef peer_;
};

class Command {
 public:
  int CommandType() const { return command_type_; }
  void SetCommandType(int value);
  const std::string& CommandText() const { return command_text_; }
  void SetCommandText(const std::string& value);
  std::shared_ptr<Connection> ActiveConnection() const { return connection_; }
  // On a foreign connection (Connection::Peer) the command from then on
  // drives an ADODB.Command the connection's factory creates: CommandType,
  // CommandText, ActiveConnection are set on it in this order, parameters
  // are read and written on its Parameters collection, Execute is its own.
  void SetActiveConnection(std::shared_ptr<Connection> connection);

  // The named parameter. On first use of the collection of a stored
  // procedure the provider is asked to describe the procedure's parameters
  // (no active connection: 3709). Unknown name: 3265.
  Parameter& Parameters(const std::string& name);
  // Parameters.Count: the size of the collection, described first in the
  // same way.
  int ParameterCount();
  // Declares a parameter explicitly (for providers that cannot describe);
  // on a foreign connection with CreateParameter and Parameters.Append.
  void AppendParameter(ParameterInfo info);

  // Runs the command; for a stored procedure the output parameters are
  // filled afterwards. Returns the result rows (a closed Recordset if none).
  std::shared_ptr<Recordset> Execute(long options = kCmdUnspecified);

 private:
  void Describe();

  int command_type_ = static_cast<int>(kCmdUnspecified);
  std::string command_text_;
  std::shared_ptr<Connection> connection_;
  std::vector<Parameter> parameters_;
  bool described_ = false;
  // The ADODB.Command behind a command on a foreign connection.
  ObjectRef peer_;
};

}  // namespace zarvik::db

#endif  // ZARVIK_DB_COMMAND_H_
