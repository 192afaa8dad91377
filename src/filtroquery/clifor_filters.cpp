// Customer and supplier fields of the query filter.
//
// When the user acts as an agent of the current company the field is
// restricted to the customers the user may see (an IN list); otherwise to
// everything but the hidden ones (a NOT IN list). Codes are never quoted.
// With an agent of another company the hidden-customer statement is one the
// server refuses: its box, then the box of FiltroCondizione, and no
// condition at all.
#include "filtroquery/clifor_statements.h"
#include "filtroquery/clsfw_filtroquery.h"
#include "frame/sql_text.h"

namespace zarvik {

bool CLSFW_FILTROQUERY::AgentApplies() const {
  const UserContext& ctx = frame_.ctx;
  // Both companies are converted whether or not an agent is set, as the
  // host's And evaluates both sides: a Null company always fails here.
  const bool agent_set = !RevocationFrame::IsBlank(ctx.CodiceAgente);
  const bool same_company = ctx.DittaAgente.ToDouble() == ctx.DittaCorrente.ToDouble();
  return agent_set && same_company;
}

std::shared_ptr<db::Recordset> CLSFW_FILTROQUERY::CliForNONrevocati(int16_t tipo_cf) {
  std::shared_ptr<db::Recordset> rows;
  frame_.Trap("CliForNONrevocati", [&] {
    rows = frame_.Execute(
        filtroquery::CliForNONrevocatiStatement(tipo_cf, frame_.UserId(), frame_.ctx.CodiceAgente),
        db::kCmdText);
  });
  return rows;
}

std::shared_ptr<db::Recordset> CLSFW_FILTROQUERY::CliForRevocati(int16_t tipo_cf) {
  std::shared_ptr<db::Recordset> rows;
  frame_.Trap("CliForRevocati", [&] {
    rows = frame_.Execute(
        filtroquery::CliForRevocatiStatement(tipo_cf, frame_.UserId(), frame_.ctx.CodiceAgente),
        db::kCmdText);
  });
  return rows;
}

// No trap of its own: a missing recordset or a Null company ends in the trap
// of FiltroCondizione.
void CLSFW_FILTROQUERY::CondCliFor(int16_t tipo_cf) {
  std::shared_ptr<db::Recordset> rows;
  std::string sql_operator;
  std::string report_prefix;
  if (AgentApplies()) {
    rows = CliForNONrevocati(tipo_cf);
    sql_operator = " IN (";
    report_prefix = " ((";
  } else {
    rows = CliForRevocati(tipo_cf);
    sql_operator = " NOT IN (";
    report_prefix = " (NOT (";
  }
  if (!rows) throw VbError(vberr::kObjectNotSet);
  if (rows->EOF()) {
    cond_revoke_.clear();
    cond_revoke_crystal_.clear();
    return;
  }

  const bool report = !ReportFieldBlank();
  const std::string first = rows->Fields("CG44_CLIFOR").ConcatText();
  cond_revoke_ = sql::Unquoted(data_field_) + sql_operator + first;
  if (report) {
    cond_revoke_crystal_ = report_prefix + sql::Unquoted(data_field_crystal_) + " IN [" + first;
  }
  rows->MoveNext();
  for (; !rows->EOF(); rows->MoveNext()) {
    const std::string code = rows->Fields("CG44_CLIFOR").ConcatText();
    cond_revoke_ += "," + code;
    if (report) cond_revoke_crystal_ += "," + code;
  }
  cond_revoke_ += ")";
  if (report) cond_revoke_crystal_ += "]))";
}

}  // namespace zarvik
