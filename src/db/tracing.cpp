// Statement recording in front of another backend.
#include "db/tracing.h"

#include <utility>

namespace zarvik::db {

TracingBackend::TracingBackend(std::unique_ptr<Backend> inner, std::shared_ptr<StatementLog> log)
    : inner_(std::move(inner)), log_(std::move(log)) {}

void TracingBackend::SetLog(std::shared_ptr<StatementLog> log) { log_ = std::move(log); }

// Statements are recorded before they run, so a failing one is in the log too.
RowSet TracingBackend::Execute(const std::string& sql) {
  if (log_) log_->statements.push_back(sql);
  return inner_->Execute(sql);
}

RowSet TracingBackend::ExecuteScript(const std::string& sql) {
  if (log_) log_->statements.push_back(sql);
  return inner_->ExecuteScript(sql);
}

std::vector<ParameterInfo> TracingBackend::DescribeProcedure(const std::string& name) {
  return inner_->DescribeProcedure(name);
}

RowSet TracingBackend::CallProcedure(const std::string& name, std::vector<ParameterInfo>& params) {
  if (log_) log_->statements.push_back(ProcedureCallText(name));
  return inner_->CallProcedure(name, params);
}

void TracingBackend::SetCommandTimeout(int seconds) { inner_->SetCommandTimeout(seconds); }

}  // namespace zarvik::db
