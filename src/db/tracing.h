// A Backend decorator that records every statement exactly as the component
// sent it, before any dialect translation the backend below may apply.
#ifndef ZARVIK_DB_TRACING_H_
#define ZARVIK_DB_TRACING_H_

#include <memory>
#include <string>
#include <vector>

#include "db/backend.h"

namespace zarvik::db {

// The shared list the decorator writes to; stored procedure calls are
// recorded as "{call NAME}".
struct StatementLog {
  std::vector<std::string> statements;
};

// How the log shows a call of the stored procedure `name`.
inline std::string ProcedureCallText(const std::string& name) { return "{call " + name + "}"; }

class TracingBackend : public Backend {
 public:
  TracingBackend(std::unique_ptr<Backend> inner, std::shared_ptr<StatementLog> log);
  // Switches to another log (nullptr: record nothing).
  void SetLog(std::shared_ptr<StatementLog> log);
  RowSet Execute(const std::string& sql) override;
  RowSet ExecuteScript(const std::string& sql) override;
  std::vector<ParameterInfo> DescribeProcedure(const std::string& name) override;
  RowSet CallProcedure(const std::string& name, std::vector<ParameterInfo>& params) override;
  void SetCommandTimeout(int seconds) override;

 private:
  std::unique_ptr<Backend> inner_;
  std::shared_ptr<StatementLog> log_;
};

}  // namespace zarvik::db

#endif  // ZARVIK_DB_TRACING_H_
