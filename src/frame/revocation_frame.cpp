#include "frame/revocation_frame.h"

#include "frame/sql_text.h"
#include "platform/message_sink.h"
#include "platform/vb_string.h"

namespace zarvik {

FrameSettings ParserFrameSettings() {
  FrameSettings s;
  s.class_name = "CLSFW_PARSER";
  s.open_checks_state = true;
  s.terminate_closes_connection = true;
  s.resolve_requires_active = false;
  s.resolve_errors_silent = false;
  return s;
}

FrameSettings FiltroQueryFrameSettings() {
  FrameSettings s;
  s.class_name = "CLSFW_FILTROQUERY";
  s.open_checks_state = false;
  s.terminate_closes_connection = false;
  s.resolve_requires_active = true;
  s.resolve_errors_silent = true;
  return s;
}

std::shared_ptr<db::Connection> NewOwnConnection(const Env& env,
                                                 const std::shared_ptr<db::StatementLog>& log,
                                                 const std::string& connection_string) {
  auto connection = db::NewConnection(env.data_access);
  if (log) connection->SetStatementLog(log);
  connection->SetCommandTimeout(100);
  connection->SetConnectionString(connection_string);
  connection->SetConnectionTimeout(100);
  connection->SetIsolationLevel(db::kXactReadCommitted);
  connection->SetCursorLocation(db::kUseClient);
  return connection;
}

RevocationFrame::RevocationFrame(FrameSettings settings, Env env)
    : settings_(std::move(settings)), env_(std::move(env)) {
  if (!env_.sink) env_.sink = DefaultMessageSink();
}

namespace {

// The member's value when it is an object that is not Nothing, else null.
// Errors (a member the host lacks) give null as well.
ObjectRef ObjectMember(const ObjectRef& owner, const char* name) {
  ObjectRef member;
  RevocationFrame::TrapSilently([&] {
    const Variant value = owner->GetProperty(name);
    if (value.IsObject()) member = value.ToObject();
  });
  return member;
}

}  // namespace

void RevocationFrame::SetActiveInterface(ObjectRef host) {
  active_interface_ = std::move(host);
  if (!active_interface_) return;
  const ObjectRef& app = active_interface_;

  if (ObjectRef global = ObjectMember(app, "ClsGlobal")) {
    if (ObjectRef company = ObjectMember(global, "Gcls_DittaCorrente")) {
      TrapSilently([&] { ctx.DittaCorrente = company->GetProperty("CodDitta"); });
    }
    if (ObjectRef user = ObjectMember(global, "Gcls_UtenteCorrente")) {
      TrapSilently([&] { user_id_ = user->GetProperty("idutente").ToLong(); });
      TrapSilently([&] { ctx.CodiceUtente = user->GetProperty("codice").ToString(); });
      TrapSilently([&] { ctx.CodiceGruppo = user->GetProperty("Gruppo").ToString(); });
    }
  }

  // A connection the host or the caller already set is never replaced.
  if (!ctx.ConnectionADO) {
    TrapSilently([&] {
      const Variant value = app->GetProperty("Connection");
      ObjectRef object = value.ToObject();  // not an object: 13, skipped
      if (!object) return;
      auto connection = db::AsConnection(object, env_.data_access);
      if (!connection) throw VbError(vberr::kTypeMismatch);
      ctx.ConnectionADO = std::move(connection);
    });
  }
}

void RevocationFrame::ForEachReference(const std::function<void(const ObjectRef&)>& visit) const {
  if (active_interface_) visit(active_interface_);
  if (ctx.ConnectionADO) visit(ctx.ConnectionADO);
  for (const Variant* field :
       {&ctx.DittaAgente, &ctx.DittaCorrente, &ctx.IdAgente, &ctx.CodiceAgente}) {
    ForEachObjectIn(*field, visit);
  }
}

void RevocationFrame::ReleaseReferences() {
  active_interface_.reset();
  for (Variant* field : {&ctx.DittaAgente, &ctx.DittaCorrente, &ctx.IdAgente, &ctx.CodiceAgente}) {
    if (field->Type() == VarType::kObject || field->Type() == VarType::kArray) *field = Variant();
  }
}

bool RevocationFrame::OpenConnection() {
  bool unavailable = false;
  Trap("OpenConnection", [&] {
    if (!ctx.ConnectionADO) {
      if (ctx.ConnectionStringADO.empty()) {
        unavailable = true;
        return;
      }
      auto connection = NewOwnConnection(env_, statement_log_, ctx.ConnectionStringADO);
      ctx.ConnectionADO = connection;
      connection->Open("", "", -1);
      connection_owned_ = true;
      return;
    }
    // A closed connection handed in by the host is not reopened.
    if (settings_.open_checks_state) {
      unavailable = ctx.ConnectionADO->State() == db::kStateClosed;
    }
  });
  return unavailable;
}

db::Connection& RevocationFrame::Connection() {
  if (!ctx.ConnectionADO) throw VbError(vberr::kObjectNotSet);
  return *ctx.ConnectionADO;
}

std::shared_ptr<db::Recordset> RevocationFrame::Execute(const std::string& sql, long options) {
  return Connection().Execute(sql, options);
}

std::string RevocationFrame::ResolveUserStatement() const {
  std::string text = "SELECT FW07_ID, FW07_FLGGRP FROM FW07_APPUSER ";
  text += " WHERE FW07_CODICE_FW06 = " + sql::Quoted(ctx.CodiceGruppo) + " ";
  text += " AND FW07_CODICE = " + sql::Quoted(ctx.CodiceUtente);
  if (settings_.resolve_requires_active) text += " AND FW07_FLGATTIVO = 1 ";
  return text;
}

void RevocationFrame::ResolveUser() {
  if (user_resolved_) return;
  auto lookup = [this] {
    std::shared_ptr<db::Recordset> rows = Execute(ResolveUserStatement(), db::kCmdText);
    if (!rows->EOF()) {
      flg_grp_revoke_ = rows->Fields("FW07_FLGGRP").ToInteger();
      user_id_ = rows->Fields("FW07_ID").ToLong();
    } else {
      flg_grp_revoke_ = 1;
    }
    rows.reset();
    user_resolved_ = true;
  };
  if (settings_.resolve_errors_silent) {
    TrapSilently(lookup);
  } else {
    lookup();
  }
}

Variant RevocationFrame::Nz(const Variant& value, const Variant& default_value) {
  Variant answer = default_value;
  TrapSilently([&] {
    if (value.IsEmpty() || value.IsNull()) return;
    if (vb::Trim(value.ToString()).empty()) return;
    answer = value;
  });
  return answer;
}

bool RevocationFrame::IsBlank(const Variant& value) {
  const Variant nz = Nz(value, Variant(""));
  return nz.Type() == VarType::kString && nz.RawString().empty();
}

bool RevocationFrame::IsBlank(const std::string& value) { return vb::Trim(value).empty(); }

bool RevocationFrame::GuardFull() {
  if (ctx.RevokeDisabilitata) return true;
  if (NoUserKnown()) return true;
  HarmoniseUserCodes();
  if (IsPrivileged(ctx.CodiceUtente)) return true;
  if (OpenConnection()) return true;
  NormaliseAgent();
  ResolveUser();
  return false;
}

bool RevocationFrame::NoUserKnown() const {
  return IsBlank(ctx.CodiceUtente) && IsBlank(ctx.CodiceUtenteCLIFOR);
}

void RevocationFrame::HarmoniseUserCodes() {
  if (IsBlank(ctx.CodiceUtenteCLIFOR)) {
    ctx.CodiceUtenteCLIFOR = ctx.CodiceUtente;
  } else {
    ctx.CodiceUtente = ctx.CodiceUtenteCLIFOR;
  }
}

void RevocationFrame::FillUserCodeFromClifor() {
  if (IsBlank(ctx.CodiceUtente)) ctx.CodiceUtente = ctx.CodiceUtenteCLIFOR;
}

bool RevocationFrame::IsPrivileged(const std::string& user_code) {
  return user_code == kPrivilegedUserCode;
}

void RevocationFrame::NormaliseAgent() {
  if (IsBlank(ctx.IdAgente)) ctx.IdAgente = Variant(int16_t{0});
}

void RevocationFrame::Report(int32_t number, const std::string& description,
                             const std::string& tag) {
  Message box;
  box.text = std::to_string(number) + " - " + description + "\r\n" +
             "in ZARVIK: " + settings_.class_name + " - " + tag;
  box.title = "";
  box.style = msgstyle::kOkOnly;
  env_.sink->Show(box);
}

void RevocationFrame::Terminate() {
  if (settings_.terminate_closes_connection) {
    if (connection_owned_ && ctx.ConnectionADO) {
      TrapSilently([&] { ctx.ConnectionADO->Close(); });
    }
    ctx.ConnectionADO.reset();
    connection_owned_ = false;
  }
  active_interface_.reset();
}

}  // namespace zarvik
