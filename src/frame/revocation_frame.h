// The frame every querying class of the component is built on: the user
// context, the binding to the host's application object, the lazily opened
// connection, the once-per-object user resolution, the guard steps, the
// error reporter and termination.
//
// CLSFW_PARSER and CLSFW_FILTROQUERY each own one RevocationFrame. Where the
// two classes behave differently (termination, the state test of a handed-in
// connection, the active-user filter and the silent failure of the user
// lookup) the difference is a FrameSettings value, not a second copy.
//
// Error model: code below the component boundary throws zarvik::VbError.
// Every public method of a class runs its body under Trap(tag, ...), which
// catches the error, shows the message box through the Env's sink and lets
// the method return whatever its result held (its neutral answer unless it
// had already built part of it). Nothing is ever thrown to the host.
#ifndef ZARVIK_FRAME_REVOCATION_FRAME_H_
#define ZARVIK_FRAME_REVOCATION_FRAME_H_

#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <new>
#include <string>
#include <utility>

#include "db/connection.h"
#include "db/recordset.h"
#include "db/tracing.h"
#include "frame/user_context.h"
#include "platform/env.h"
#include "platform/object.h"
#include "platform/variant.h"
#include "platform/vb_error.h"

namespace zarvik {

// The privileged user code: every revocation is off for it, without a query.
inline constexpr const char* kPrivilegedUserCode = "ZentAd";

// Error number the reporter shows for a failure that is not a VbError
// (a C++ exception escaping a lower layer): VB's "Internal error".
inline constexpr int32_t kInternalErrorNumber = 51;
// ... and for memory exhaustion: VB's "Out of memory".
inline constexpr int32_t kOutOfMemoryNumber = 7;

struct FrameSettings {
  // Shown in the reporter's text: "in ZARVIK: " + class_name + " - " + tag.
  std::string class_name;
  // OpenConnection answers True (no usable connection) for a connection the
  // host handed in closed. Off: any connection object counts as available.
  bool open_checks_state = true;
  // Termination closes a connection this object opened itself and drops
  // ConnectionADO. Off: termination only drops the host binding.
  bool terminate_closes_connection = true;
  // The user lookup also requires " AND FW07_FLGATTIVO = 1 ".
  bool resolve_requires_active = false;
  // The user lookup swallows its own errors without a box (they leave the
  // lookup early). Off: they reach the calling method's trap.
  bool resolve_errors_silent = false;
};

// CLSFW_PARSER: the frame as described above.
FrameSettings ParserFrameSettings();
// CLSFW_FILTROQUERY: no state test, termination only drops the binding,
// only active users are found, the lookup fails silently.
FrameSettings FiltroQueryFrameSettings();

// A connection the component opens for itself, not yet open: the statement
// log, then CommandTimeout 100, the connection string, ConnectionTimeout 100,
// read committed and client cursors, in the order the host's ADO sees them.
std::shared_ptr<db::Connection> NewOwnConnection(const Env& env,
                                                 const std::shared_ptr<db::StatementLog>& log,
                                                 const std::string& connection_string);

class RevocationFrame {
 public:
  explicit RevocationFrame(FrameSettings settings, Env env = DefaultEnv());
  RevocationFrame(const RevocationFrame&) = delete;
  RevocationFrame& operator=(const RevocationFrame&) = delete;

  // The public user-context fields; the owning class exposes them as
  // properties.
  UserContext ctx;

  const FrameSettings& Settings() const { return settings_; }
  const Env& GetEnv() const { return env_; }

  // Every connection this frame opens itself records its statements here
  // (connections the host hands in carry their own log, if any).
  void SetStatementLog(std::shared_ptr<db::StatementLog> log) { statement_log_ = std::move(log); }

  // --- Host binding -------------------------------------------------------
  // Stores the reference and, unless it is Nothing, pulls from the host's
  // application object, each step with its errors ignored:
  //   ClsGlobal.Gcls_DittaCorrente.CodDitta  -> DittaCorrente (as received)
  //   ClsGlobal.Gcls_UtenteCorrente.idutente -> user id (CLng)
  //                                .codice   -> CodiceUtente (CStr)
  //                                .Gruppo   -> CodiceGruppo (CStr)
  //   Connection -> ConnectionADO, only while ConnectionADO is Nothing.
  // A member the host lacks leaves its field unchanged; nothing surfaces.
  void SetActiveInterface(ObjectRef host);
  ObjectRef ActiveInterface() const { return active_interface_; }

  // The objects the frame holds (the host binding, the connection and any
  // object a Variant field was Set to), and dropping all but the
  // connection, which holds no object and is closed by termination (see
  // Object::ForEachReference).
  void ForEachReference(const std::function<void(const ObjectRef&)>& visit) const;
  void ReleaseReferences();

  // --- Private state --------------------------------------------------------
  // IdUser Let: stores the id; a later resolution overwrites it when the user
  // is found (it does not mark the user as resolved).
  void SetIdUser(int32_t id) { user_id_ = id; }
  int32_t UserId() const { return user_id_; }
  int16_t FlgGrpRevoke() const { return flg_grp_revoke_; }
  void SetFlgGrpRevoke(int16_t value) { flg_grp_revoke_ = value; }
  bool ConnectionOwned() const { return connection_owned_; }
  bool UserResolved() const { return user_resolved_; }

  // --- Connection -----------------------------------------------------------
  // True when no usable connection exists. With ConnectionADO Nothing: an
  // empty ConnectionStringADO answers True; otherwise a new Connection gets
  // CommandTimeout 100, ConnectionString, ConnectionTimeout 100,
  // IsolationLevel 4096, CursorLocation 3 (in this order), is opened with
  // Open("", "", -1) and becomes owned; answers False. With a connection:
  // answers True when it is closed (only with open_checks_state), else False;
  // a closed connection is never reopened. Failures are reported with the tag
  // "OpenConnection" and the answer is then False.
  bool OpenConnection();

  // ConnectionADO, or error 91 when it is Nothing.
  db::Connection& Connection();

  // Runs statement text on ConnectionADO (error 91 when Nothing).
  std::shared_ptr<db::Recordset> Execute(const std::string& sql, long options = db::kCmdText);

  // --- User resolution --------------------------------------------------------
  // The lookup statement for the current CodiceGruppo and CodiceUtente.
  std::string ResolveUserStatement() const;
  // Once per object: runs ResolveUserStatement(); with a row, FlgGrpRevoke =
  // FW07_FLGGRP (CInt) then the user id = FW07_ID (CLng); without, FlgGrpRevoke
  // = 1 and the id is kept. Then UserResolved = True. Errors propagate to the
  // caller's trap, or are swallowed when resolve_errors_silent.
  void ResolveUser();

  // --- Nz and blank -----------------------------------------------------------
  // The value when it is neither Empty nor Null and its text, trimmed of
  // blanks, is not ""; otherwise the default. Errors inside give the default.
  static Variant Nz(const Variant& value, const Variant& default_value);
  // Nz(value, "") gives "".
  static bool IsBlank(const Variant& value);
  static bool IsBlank(const std::string& value);

  // --- Guard ------------------------------------------------------------------
  // Steps 2 to 8 of the guard, in order: disabled; no user known; harmonise
  // the user codes; privileged CodiceUtente; OpenConnection; normalise the
  // agent; resolve the user. True when the method must give its neutral
  // answer. Methods that run only a subset call the steps below themselves.
  bool GuardFull();
  // Both user codes blank.
  bool NoUserKnown() const;
  // A blank CodiceUtenteCLIFOR takes CodiceUtente; otherwise CodiceUtente
  // takes CodiceUtenteCLIFOR (the customer/supplier code wins).
  void HarmoniseUserCodes();
  // Where a method does not harmonise: a blank CodiceUtente takes
  // CodiceUtenteCLIFOR.
  void FillUserCodeFromClifor();
  // Exact, case-sensitive comparison of the whole code with "ZentAd".
  static bool IsPrivileged(const std::string& user_code);
  // A blank IdAgente becomes the Integer 0.
  void NormaliseAgent();

  // --- Errors -------------------------------------------------------------------
  // Shows the modal OK-only box with the default title:
  //   number + " - " + description + "\r\n" + "in ZARVIK: " + class + " - " + tag
  void Report(int32_t number, const std::string& description, const std::string& tag);

  // Runs `body`; a VbError (or any other exception) is reported under `tag`.
  // Returns true when the body finished without an error.
  template <class F>
  bool Trap(const std::string& tag, F&& body);
  // Runs `body`; errors are cleared without a report.
  template <class F>
  static bool TrapSilently(F&& body);

  // --- Termination ----------------------------------------------------------------
  // With terminate_closes_connection: closes ConnectionADO when this object
  // opened it, then drops it. Always: drops the host binding. Errors ignored.
  // Called by the owning class's destructor; running it twice is harmless.
  void Terminate();

 private:
  FrameSettings settings_;
  Env env_;
  std::shared_ptr<db::StatementLog> statement_log_;
  ObjectRef active_interface_;
  int32_t user_id_ = 0;
  int16_t flg_grp_revoke_ = 0;
  bool connection_owned_ = false;
  bool user_resolved_ = false;
};

template <class F>
bool RevocationFrame::Trap(const std::string& tag, F&& body) {
  try {
    std::forward<F>(body)();
    return true;
  } catch (const VbError& e) {
    Report(e.Number(), e.Description(), tag);
  } catch (const std::bad_alloc&) {
    Report(kOutOfMemoryNumber, VbErrorText(kOutOfMemoryNumber), tag);
  } catch (const std::exception& e) {
    Report(kInternalErrorNumber, e.what(), tag);
  }
  return false;
}

template <class F>
bool RevocationFrame::TrapSilently(F&& body) {
  try {
    std::forward<F>(body)();
    return true;
  } catch (const std::exception&) {
    return false;
  }
}

}  // namespace zarvik

#endif  // ZARVIK_FRAME_REVOCATION_FRAME_H_
