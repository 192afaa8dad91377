// Customer/supplier conditions of CLSFW_PARSER: the NOT EXISTS test on the
// list of revoked customers and suppliers, its older entry point, the
// destinations of the current agent and the revoked customers themselves.
#include <memory>
#include <string>

#include "frame/sql_text.h"
#include "parser/clsfw_parser.h"
#include "parser/conditions/condition_text.h"
#include "platform/vb_error.h"
#include "platform/vb_string.h"

namespace zarvik {
namespace {

// The three columns a customer/supplier condition compares.
struct CliForColumns {
  std::string ditta;
  std::string tipo_cf;
  std::string cli_for;
};

// The default columns of a table prefix. For CG44 the qualifier is the
// rewriter's current alias when it set one; while the rewriter's dispatch
// asks for an unaliased CG44 the columns carry the table name, so that they
// cannot bind to a same-named column of another table of the statement.
// Unknown prefixes follow the host's naming rule, with the trailing blanks
// its callers have always received.
CliForColumns DefaultCliForColumns(const std::string& pref_tabella, const std::string& alias,
                                   bool from_rewriter) {
  const std::string prefix = vb::UCase(pref_tabella);
  if (prefix == "CG44") {
    if (!alias.empty()) {
      return {alias + "CG44_DITTA_CG18", alias + "CG44_TIPOCF", alias + "CG44_CLIFOR"};
    }
    if (from_rewriter) {
      return {"CG44_CLIFOR.CG44_DITTA_CG18", "CG44_CLIFOR.CG44_TIPOCF", "CG44_CLIFOR.CG44_CLIFOR"};
    }
    return {"CG44_DITTA_CG18", "CG44_TIPOCF", "CG44_CLIFOR"};
  }
  if (prefix == "DO11") return {"DO11_DITTACF_CG44", "DO11_TIPOCF_CG44", "DO11_CLIFOR_CG44"};
  return {pref_tabella + "_DITTA_CG18  ", pref_tabella + "_TIPOCF_CG44 ",
          pref_tabella + "_CLIFOR_CG44 "};
}

// ActiveInterface.ClsGlobal.Gcls_UtenteCorrente.IdAgente, late-bound. A
// member the host lacks raises 438, a Nothing on the way 91.
Variant HostAgentId(const ObjectRef& host) {
  if (!host) throw VbError(vberr::kObjectNotSet);
  const ObjectRef global = host->GetProperty("ClsGlobal").ToObject();
  if (!global) throw VbError(vberr::kObjectNotSet);
  const ObjectRef user = global->GetProperty("Gcls_UtenteCorrente").ToObject();
  if (!user) throw VbError(vberr::kObjectNotSet);
  return user->GetProperty("IdAgente");
}

// No agent: Null (and Empty or blank) count as 0.
bool IsNoAgent(const Variant& agent_id) {
  return VbEquals(RevocationFrame::Nz(agent_id, Variant(int16_t{0})), Variant(int16_t{0}));
}

}  // namespace

std::string CLSFW_PARSER::SQLConditionCliFor(const std::string& pref_tabella, bool inserire_and,
                                             const std::string& nome_campo_ditta,
                                             const std::string& nome_campo_tipo_cf,
                                             const std::string& nome_campo_cli_for,
                                             bool /*allow_null*/) {
  // A NOT EXISTS test already keeps rows whose columns are NULL, so
  // allow_null needs no text of its own.
  std::string result;
  frame_.Trap("SQLConditionCliFor", [&] {
    if (RevocationFrame::IsPrivileged(frame_.ctx.CodiceUtenteCLIFOR)) return;
    frame_.ResolveUser();

    const CliForColumns defaults =
        DefaultCliForColumns(pref_tabella, current_alias_, from_rewriter_);
    const std::string ditta =
        nome_campo_ditta.empty() ? defaults.ditta : sql::Column(nome_campo_ditta);
    const std::string tipo_cf =
        nome_campo_tipo_cf.empty() ? defaults.tipo_cf : sql::Column(nome_campo_tipo_cf);
    const std::string cli_for =
        nome_campo_cli_for.empty() ? defaults.cli_for : sql::Column(nome_campo_cli_for);

    std::string text;
    text += " NOT EXISTS ";
    text += " (SELECT RVKCLIFOR ";
    text += "  FROM VFW32_LISTACFREVOCATI ";
    text += "  WHERE RVKDITTA = " + ditta;
    text += "     AND RVKTIPOCF = " + tipo_cf;
    text += "     AND RVKCLIFOR = " + cli_for;
    text += "     AND RVKUTENTE = " + sql::Number(frame_.UserId()) + " ";
    text += " )  ";
    result = conditions::WithAnd(text, inserire_and);
  });
  return result;
}

std::string CLSFW_PARSER::CLIFORCondition(std::string& pref_tabella, bool& inserire_and) {
  std::string result;
  frame_.Trap("CLIFORCondition",
              [&] { result = SQLConditionCliFor(pref_tabella, inserire_and, "", "", "", false); });
  return result;
}

std::string CLSFW_PARSER::SQLConditionDestinazioni(const std::string& nome_campo_destinatario,
                                                   const std::string& nome_campo_ditta,
                                                   const std::string& nome_campo_tipo_cf,
                                                   const std::string& nome_campo_cli_for,
                                                   bool inserire_and,
                                                   const std::string& alias_mg2g) {
  std::string result;
  frame_.Trap("SQLConditionDestinazioni", [&] {
    if (RevocationFrame::IsPrivileged(frame_.ctx.CodiceUtente)) return;
    if (frame_.ctx.RevokeDisabilitata) return;
    if (!frame_.ActiveInterface()) return;
    if (IsNoAgent(HostAgentId(frame_.ActiveInterface()))) return;
    ConnectForCondition();

    const std::string a = sql::Column(alias_mg2g);
    const std::string d = sql::Column(nome_campo_ditta);
    const std::string t = sql::Column(nome_campo_tipo_cf);
    const std::string c = sql::Column(nome_campo_cli_for);
    const std::string n = sql::Column(nome_campo_destinatario);
    const std::string g = sql::Unquoted(HostAgentId(frame_.ActiveInterface()));

    // Visible: assigned to this agent, or assigned to no agent at all. The
    // destination column is compared without the alias in both sub-queries.
    std::string text;
    text += "              (    EXISTS                 ";
    text += "             (SELECT     TOP 1 1           ";
    text += "              FROM       MG2G_DESTAGEMUL " + a + " WITH (NOLOCK)           ";
    text += "              WHERE      " + a + ".MG2G_DITTA_CG18 = " + d + " AND " + a +
            ".MG2G_TIPOCF_CG44 = " + t + " AND  ";
    text += "                         " + a + ".MG2G_CLIFOR_CG44 = " + c +
            " AND MG2G_CODDESTIN_MG22 = " + n + " AND  ";
    text += "                         " + a + ".MG2G_IDAGENTE_MG17 = " + g + ") ";
    text += "         OR NOT EXISTS                             ";
    text += "             (SELECT     TOP 1 1           ";
    text += "              FROM       MG2G_DESTAGEMUL " + a + " WITH (NOLOCK) ";
    text += "              WHERE      " + a + ".MG2G_DITTA_CG18 = " + d + " AND " + a +
            ".MG2G_TIPOCF_CG44 = " + t + " AND  ";
    text += "                         " + a + ".MG2G_CLIFOR_CG44 = " + c +
            " AND MG2G_CODDESTIN_MG22 = " + n + ") ";
    text += "     ) ";
    result = conditions::WithAnd(text, inserire_and);
  });
  return result;
}

std::shared_ptr<db::Recordset> CLSFW_PARSER::CliForRevocati() {
  std::shared_ptr<db::Recordset> rows;
  frame_.Trap("CliForRevocati", [&] {
    if (frame_.OpenConnection()) return;
    frame_.NormaliseAgent();
    frame_.FillUserCodeFromClifor();
    frame_.ResolveUser();

    // The customer/supplier kind is compared with the agent id: that is the
    // filter the host's callers rely on.
    std::string text;
    text += " SELECT CG44_CLIFOR.* ";
    text += " FROM VFW32_LISTACFREVOCATI ";
    text += " INNER JOIN CG44_CLIFOR ON RVKDITTA = CG44_DITTA_CG18  ";
    text += "     AND RVKTIPOCF = CG44_TIPOCF ";
    text += "     AND RVKCLIFOR = CG44_CLIFOR ";
    text += " WHERE RVKUTENTE = " + sql::Number(frame_.UserId()) + "  ";
    text += "     AND CG44_TIPOCF = " + sql::Unquoted(frame_.ctx.IdAgente);
    rows = frame_.Execute(text, db::kCmdText);
  });
  return rows;
}

}  // namespace zarvik
