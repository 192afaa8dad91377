#include "rvkusers/clsfw_rvkusers.h"

#include "db/recordset.h"
#include "frame/revocation_frame.h"
#include "frame/sql_text.h"
#include "platform/message_sink.h"
#include "platform/vb_error.h"
#include "rvkusers/resume_next.h"

namespace zarvik {
namespace {

using rvkusers::ResumeNext;

// The recordset a step reads, or error 91 when the statement that should
// have produced it failed.
db::Recordset& Required(const std::shared_ptr<db::Recordset>& rs) {
  if (!rs) throw VbError(vberr::kObjectNotSet);
  return *rs;
}

}  // namespace

CLSFW_RVKUSERS::CLSFW_RVKUSERS(Env env) : env_(std::move(env)) {}

CLSFW_RVKUSERS::~CLSFW_RVKUSERS() { TerminateConnection(); }

void CLSFW_RVKUSERS::TerminateConnection() {
  if (!connection_) return;
  if (connection_owned_) ResumeNext([&] { connection_->Close(); });
  connection_.reset();
}

db::Connection& CLSFW_RVKUSERS::Connection() const {
  if (!connection_) throw VbError(vberr::kObjectNotSet);
  return *connection_;
}

Variant CLSFW_RVKUSERS::Today() const {
  const double now = env_.clock ? env_.clock->Now() : SystemClock().Now();
  int year = 0;
  int month = 0;
  int day = 0;
  YmdFromOleDate(now, &year, &month, &day);
  return Variant::Date(OleDateFromYmd(year, month, day));
}

bool CLSFW_RVKUSERS::OpenConnection() {
  if (connection_string_.empty()) return true;
  auto connection = NewOwnConnection(env_, statement_log_, connection_string_);
  connection->Open();
  connection_ = std::move(connection);
  connection_owned_ = true;
  return false;
}

void CLSFW_RVKUSERS::WriteLoginLog(int16_t id_utente, const std::string& win_user, int16_t azione,
                                   int16_t risultato) {
  Connection().Execute(
      std::string(" INSERT INTO FW33_RVKUSER ") +
          " (FW33_ID_FW07, FW33_DATA, FW33_AZIONE, FW33_RISULTATO, FW33_WINUSER, FW33_DATAORA) " +
          " VALUES " + " (" + sql::Number(id_utente) + ", " +
          FormatSqlValue(Today(), sql_value_kind::kDate, false) + ", " + sql::Number(azione) +
          ", " + sql::Number(risultato) + "," + sql::QuotedEscaped(win_user) +
          ", [dbo].[KVL_GETDATE]()) ",
      db::kCmdText);
}

std::string CLSFW_RVKUSERS::FormatSqlValue(const Variant& valore, int16_t tipo, bool ammetti_null) {
  try {
    const std::string text = valore.ConcatText();
    if (!text.empty()) {
      switch (tipo) {
        case sql_value_kind::kText:
          return sql::Quoted(text);
        case sql_value_kind::kDecimal:
          return number_formatter_.Format(Variant(valore.ToDouble()));
        case sql_value_kind::kNumber:
          return number_formatter_.Format(valore);
        case sql_value_kind::kDate: {
          const std::optional<std::string> literal = date_formatter_.Format(valore);
          return literal ? sql::Quoted(*literal) : std::string();
        }
        default:
          return std::string();
      }
    }
    if (ammetti_null) return "null";
    const char* message = nullptr;
    switch (tipo) {
      case sql_value_kind::kText:
        return sql::Quoted("");
      case sql_value_kind::kDecimal:
      case sql_value_kind::kNumber:
        message = kNullNumberMessage;
        break;
      case sql_value_kind::kDate:
        message = kNullDateMessage;
        break;
      default:
        return std::string();
    }
    const std::shared_ptr<MessageSink> sink = env_.sink ? env_.sink : DefaultMessageSink();
    sink->Show(Message{message, "", msgstyle::kOkOnly});
  } catch (...) {
    // The result of a value that cannot be written is "".
  }
  return std::string();
}

// Every statement below is one ResumeNext step: when it fails, the method
// goes on with the next one. A failing If condition skips the whole If.
void CLSFW_RVKUSERS::LoginRvk(int16_t& risultato, std::string& win_user,
                              std::optional<std::string>& /*gruppo*/,
                              std::optional<std::string>& utente) {
  std::shared_ptr<db::Recordset> rs;
  int32_t user_id = 0;
  std::string name;
  Variant today;

  // A connection of this object's own when the host gave none; without one
  // every statement below fails and is skipped.
  if (!connection_) ResumeNext([&] { OpenConnection(); });
  name = utente.value_or("");
  // The login name is typed by a person not yet authenticated and goes into
  // the lookup as it stands: a name that would end the literal is no login
  // name and is never sent. The call answers as for an unknown login.
  if (!sql::FitsInQuotes(name)) {
    status_ = NoRevoke;
    return;
  }
  ResumeNext([&] { today = Today(); });

  // The active user with this login name.
  ResumeNext([&] {
    rs = Connection().Execute(std::string("SELECT FW07_ID, FW07_FLGREVOKE FROM FW07_APPUSER ") +
                                  " WHERE FW07_USERNAME = " + sql::Quoted(name) +
                                  " AND FW07_FLGATTIVO = 1",
                              db::kCmdText);
  });
  ResumeNext([&] {
    if (!Required(rs).EOF()) {
      ResumeNext([&] { user_id = rs->Fields("FW07_ID").ToLong(); });
      ResumeNext([&] {
        if (VbEquals(rs->Fields("FW07_FLGREVOKE"), Variant(int32_t{1}))) {
          status_ = RevokeVantor;
          risultato = login_outcome::kAlreadyRevoked;
        } else {
          status_ = NoRevoke;
        }
      });
    } else {
      user_id = 0;
    }
  });
  rs.reset();

  // Outcome 3 and unknown or inactive logins leave no trace.
  if (risultato == login_outcome::kNotLogged || user_id == 0) {
    status_ = NoRevoke;
    return;
  }

  // The log takes a 16-bit id: above 32767 the conversion overflows and
  // the row is not written.
  ResumeNext([&] {
    WriteLoginLog(Variant(user_id).ToInteger(), win_user, login_action::kAttempt, risultato);
  });

  // Everything but a success and an already locked user starts a count; the
  // privileged login is logged and never counted.
  if (risultato != login_outcome::kSuccess && risultato != login_outcome::kAlreadyRevoked &&
      name != kPrivilegedUserCode) {
    // The latest re-enabling of the user today, as style-120 text.
    ResumeNext([&] {
      rs = Connection().Execute(
          std::string("SELECT  convert(varchar(25), FW33_DATAORA, 120) AS FW33_DATAORA  FROM "
                      "FW33_RVKUSER ") +
              " WHERE FW33_ID_FW07 = " + sql::Number(user_id) + " " +
              "AND FW33_DATA = " + FormatSqlValue(today, sql_value_kind::kDate, false) + " " +
              "AND FW33_AZIONE = 10 order by FW33_DATAORA desc ",
          db::kCmdUnspecified);
    });
    // Failures count from that moment on, or over the whole day when the
    // user was not re-enabled today (or the query could not tell).
    std::string period;
    bool re_enabled = false;
    ResumeNext([&] { re_enabled = !Required(rs).EOF(); });
    if (re_enabled) {
      ResumeNext([&] {
        period = " AND FW33_DATAORA > convert(datetime, " +
                 sql::Quoted(rs->Fields("FW33_DATAORA").ConcatText()) + ", 120)";
      });
    } else {
      period = " AND FW33_DATA = " + FormatSqlValue(today, sql_value_kind::kDate, false);
    }
    ResumeNext([&] {
      rs = Connection().Execute(
          std::string("SELECT COUNT(FW33_ID_FW07) AS NUMPROVE FROM FW33_RVKUSER ") +
              " WHERE FW33_ID_FW07 = " + sql::Number(user_id) + " " + period + " " +
              "AND FW33_AZIONE = 0 " + "AND FW33_RISULTATO = " + "1",
          db::kCmdText);
    });
    // At MaxNumTry counted failures the user is locked. Risultato stays as
    // the host gave it on the attempt that locks.
    ResumeNext([&] {
      const std::optional<int> order =
          VbCompare(Required(rs).Fields("NUMPROVE"), Variant(max_num_try_));
      if (order && *order >= 0) {
        ResumeNext([&] {
          Connection().Execute(std::string("UPDATE FW07_APPUSER ") + "SET FW07_FLGREVOKE = 1 " +
                                   "WHERE FW07_ID = " + sql::Number(user_id) + " " +
                                   " AND FW07_FLGATTIVO = 1",
                               db::kCmdText);
        });
        status_ = RevokeVantor;
      }
    });
    rs.reset();
  }

  ResumeNext([&] { Required(rs).Close(); });
  rs.reset();
}

}  // namespace zarvik
