// CLSFW_RVKUSERS: the login log and the lock-out after too many failed
// attempts. It has its own connection fields and no other user context.
#ifndef ZARVIK_RVKUSERS_CLSFW_RVKUSERS_H_
#define ZARVIK_RVKUSERS_CLSFW_RVKUSERS_H_

#include <cstdint>
#include <memory>
#include <string>
#include <utility>

#include "db/connection.h"
#include "db/tracing.h"
#include "platform/env.h"

namespace zarvik {

// Outcome of the latest LoginRvk (32-bit automation enum).
enum EnumRevokeStatus : int32_t {
  NoRevoke = 0,
  RevokeVantor = 1,   // revoked by the application's own lock-out
  RevokeWindows = 2,  // reserved for callers
};

// NOLINTNEXTLINE(readability-identifier-naming): the automation class name
class CLSFW_RVKUSERS {
 public:
  explicit CLSFW_RVKUSERS(Env env = DefaultEnv());
  // Termination: closes ConnectionADO when this object opened it, then
  // releases it; errors ignored.
  ~CLSFW_RVKUSERS();
  CLSFW_RVKUSERS(const CLSFW_RVKUSERS&) = delete;
  CLSFW_RVKUSERS& operator=(const CLSFW_RVKUSERS&) = delete;

  // --- Automation properties ------------------------------------------------
  std::shared_ptr<db::Connection> ConnectionADO() const { return connection_; }
  void SetConnectionADO(std::shared_ptr<db::Connection> value) { connection_ = std::move(value); }
  std::string ConnectionStringADO() const { return connection_string_; }
  void SetConnectionStringADO(const std::string& value) { connection_string_ = value; }
  int16_t MaxNumTry() const { return max_num_try_; }
  void SetMaxNumTry(int16_t value) { max_num_try_ = value; }
  EnumRevokeStatus IsRevoked() const { return status_; }

  // --- Not part of the automation interface ---------------------------------
  // Statements on a connection this object opens itself are recorded here.
  void SetStatementLog(std::shared_ptr<db::StatementLog> log) { statement_log_ = std::move(log); }
  bool ConnectionOwned() const { return connection_owned_; }

  // --- Login log and lock-out (LoginRvk, TerminateConnection) ----------------

 private:
  Env env_;
  std::shared_ptr<db::StatementLog> statement_log_;
  std::shared_ptr<db::Connection> connection_;  // ConnectionADO
  std::string connection_string_;               // ConnectionStringADO
  int16_t max_num_try_ = 0;                     // MaxNumTry
  EnumRevokeStatus status_ = NoRevoke;          // behind IsRevoked
  bool connection_owned_ = false;               // ConnectionOwned

  // --- Private operations (OpenConnection, WriteLoginLog, FormatSqlValue) -----
};

}  // namespace zarvik

#endif  // ZARVIK_RVKUSERS_CLSFW_RVKUSERS_H_
