// Agent fields of the query filter: a user acting as an agent of the
// current company sees only that agent.
#include "filtroquery/agent_filter.h"

#include "filtroquery/clsfw_filtroquery.h"
#include "frame/sql_text.h"
#include "platform/vb_string.h"

namespace zarvik::filtroquery {

namespace {
constexpr char kQuote[] = "\"";  // string delimiter of the report syntax
}  // namespace

std::string AgentLookupStatement(const Variant& id_agente) {
  return "SELECT MG17_AGENTE FROM MG17_AGENTI WHERE MG17_IDAGENTE = " +
         sql::Quoted(sql::Unquoted(id_agente));
}

std::string AgentSqlCondition(const std::string& data_field, const std::string& agent_code) {
  return sql::Column(data_field) + " = N'" + agent_code + "' ";
}

std::string AgentReportCondition(const std::string& report_field, const std::string& agent_code) {
  if (vb::InStr(1, report_field, "{") == 0) {
    return " ({" + report_field + "} = " + kQuote + agent_code + kQuote + ")";
  }
  return " (" + report_field + " = " + kQuote + agent_code + kQuote + ")";
}

}  // namespace zarvik::filtroquery

namespace zarvik {

// Every error is ignored: the first failing step ends the filter and the
// conditions keep what had been set before it.
void CLSFW_FILTROQUERY::CondAgente() {
  RevocationFrame::TrapSilently([&] {
    if (RevocationFrame::IsBlank(frame_.ctx.CodiceAgente) || !AgentApplies()) return;
    std::shared_ptr<db::Recordset> rows = frame_.Execute(
        filtroquery::AgentLookupStatement(frame_.ctx.CodiceAgente), db::kCmdUnspecified);
    if (rows->EOF()) return;
    const std::string agent_code = vb::Trim(rows->Fields("MG17_AGENTE").ConcatText());
    cond_revoke_ = filtroquery::AgentSqlCondition(sql::Unquoted(data_field_), agent_code);
    if (!ReportFieldBlank()) {
      cond_revoke_crystal_ =
          filtroquery::AgentReportCondition(sql::Unquoted(data_field_crystal_), agent_code);
    }
  });
}

}  // namespace zarvik
