// CLSFW_RVKUSERS: the login log and the lock-out after too many failed
// attempts. It has its own connection fields and no other user context.
//
// At every login the host reports the outcome through LoginRvk. The class
// writes one row of the login log FW33_RVKUSER, counts the failed attempts
// of the day (or those after the latest re-enabling of the user that day)
// and, when the count reaches MaxNumTry, sets FW07_APPUSER.FW07_FLGREVOKE.
//
// Error model: unlike the other classes nothing here is reported. Every
// statement of LoginRvk runs on its own (rvkusers::ResumeNext): a failing
// one is skipped and the method goes on. The only message boxes of the
// class are the two of FormatSqlValue.
#ifndef ZARVIK_RVKUSERS_CLSFW_RVKUSERS_H_
#define ZARVIK_RVKUSERS_CLSFW_RVKUSERS_H_

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "db/connection.h"
#include "db/tracing.h"
#include "platform/env.h"
#include "platform/variant.h"
#include "rvkusers/sql_date_formatter.h"
#include "rvkusers/sql_number_formatter.h"

namespace zarvik {

// Outcome of the latest LoginRvk (32-bit automation enum).
enum EnumRevokeStatus : int32_t {
  NoRevoke = 0,
  RevokeVantor = 1,   // revoked by the application's own lock-out
  RevokeWindows = 2,  // reserved for callers
};

// Outcome codes of LoginRvk's Risultato as the class treats them: 0 is a
// success, 1 the failure that is counted; 2 is what the class reports for a
// user who is locked already; 3 is neither logged nor counted. Any other
// code is logged and starts a count without being counted itself.
namespace login_outcome {
constexpr int16_t kSuccess = 0;
constexpr int16_t kFailure = 1;
constexpr int16_t kAlreadyRevoked = 2;
constexpr int16_t kNotLogged = 3;
}  // namespace login_outcome

// FW33_AZIONE of the login log: 0 a login attempt (written here), 10 the
// re-enabling of a locked user (written by the administration, read here).
namespace login_action {
constexpr int16_t kAttempt = 0;
constexpr int16_t kReEnabled = 10;
}  // namespace login_action

// Kinds of value for FormatSqlValue (its Tipo argument).
namespace sql_value_kind {
constexpr int16_t kText = 0;
constexpr int16_t kDecimal = 1;
constexpr int16_t kNumber = 2;
constexpr int16_t kDate = 3;
}  // namespace sql_value_kind

// The two messages of FormatSqlValue, shown for an empty value that is to
// go into a column that admits no NULL.
inline constexpr const char* kNullNumberMessage =
    "Si sta tentando di assegnare il valore (numerico) null a un campo che non ammette null.";
inline constexpr const char* kNullDateMessage =
    "Si sta tentando di assegnare il valore (data) null a un campo che non ammette null.";

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

  // --- Login log and lock-out -----------------------------------------------
  // Logs one login attempt of the user whose FW07_USERNAME is `utente`
  // (missing: "") and locks the user at the MaxNumTry-th counted failure.
  // The name is pasted into the lookup as it stands; a name holding a quote
  // or a NUL character sends nothing and is treated as an unknown login.
  //   risultato  in: the host's outcome code; out: 2 when the user is
  //              locked already, else unchanged.
  //   win_user   the operating-system user, written to the log with its
  //              quotes doubled (the log stores it as given).
  //   gruppo     accepted and not used.
  // Afterwards IsRevoked tells whether the user is locked (RevokeVantor).
  // Never raises; every failing statement is skipped.
  void LoginRvk(int16_t& risultato, std::string& win_user, std::optional<std::string>& gruppo,
                std::optional<std::string>& utente);

  // Closes ConnectionADO when this object opened it, and releases it in any
  // case. Never raises.
  void TerminateConnection();

  // --- Not part of the automation interface ---------------------------------
  // Statements on a connection this object opens itself are recorded here.
  void SetStatementLog(std::shared_ptr<db::StatementLog> log) { statement_log_ = std::move(log); }
  bool ConnectionOwned() const { return connection_owned_; }

  // The SQL literal of a value (a private operation of the class, public in
  // C++ so it can be checked on its own). A value whose text is "" is empty.
  //   not empty: tipo 0 "'" + text + "'" (quotes not doubled), 1 the value as
  //     a decimal number, 2 the number formatter's text, 3 "'" + the date
  //     formatter's text + "'" when it takes the value, else "".
  //   empty: "null" when ammetti_null; otherwise tipo 0 gives "''", tipo 1 or
  //     2 shows kNullNumberMessage and tipo 3 kNullDateMessage, and the
  //     result is "".
  // Any failure inside gives "" without a message.
  std::string FormatSqlValue(const Variant& valore, int16_t tipo, bool ammetti_null);

 private:
  // Opens a connection of this object's own from ConnectionStringADO:
  // CommandTimeout 100, ConnectionString, ConnectionTimeout 100,
  // IsolationLevel 4096, CursorLocation 3, Open(). Returns True (failure)
  // when the connection string is "". A failing Open raises and leaves
  // ConnectionADO as it was.
  bool OpenConnection();

  // INSERT of one login log row dated today, the time from the server's
  // [dbo].[KVL_GETDATE](); win_user is quoted with its quotes doubled. The
  // ids are 16-bit, as the log has always been written. Raises on failure.
  void WriteLoginLog(int16_t id_utente, const std::string& win_user, int16_t azione,
                     int16_t risultato);

  // Today's date without the time, from the Env's clock.
  Variant Today() const;
  // ConnectionADO, or error 91 when it is Nothing.
  db::Connection& Connection() const;

  Env env_;
  std::shared_ptr<db::StatementLog> statement_log_;
  std::shared_ptr<db::Connection> connection_;  // ConnectionADO
  std::string connection_string_;               // ConnectionStringADO
  int16_t max_num_try_ = 0;                     // MaxNumTry
  EnumRevokeStatus status_ = NoRevoke;          // behind IsRevoked
  bool connection_owned_ = false;               // ConnectionOwned
  // The literal writers of the log statements: the same date formatter for
  // the insert and both queries, so the equality tests on FW33_DATA match.
  rvkusers::SqlDateFormatter date_formatter_;
  rvkusers::SqlNumberFormatter number_formatter_;
};

}  // namespace zarvik

#endif  // ZARVIK_RVKUSERS_CLSFW_RVKUSERS_H_
