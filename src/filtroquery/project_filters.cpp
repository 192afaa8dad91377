// Project and node fields of the query filter.
//
// The SQL form is a correlated NOT EXISTS on the revocation views, naming
// the project (and node) column, so it holds wherever that column is in
// scope. Only the project filter has a real report form: an explicit list,
// of the revoked codes or of the allowed ones, whichever is shorter.
#include "filtroquery/clsfw_filtroquery.h"
#include "filtroquery/project_statements.h"
#include "frame/sql_text.h"

namespace zarvik {

namespace {
constexpr char kQuote[] = "\"";  // string delimiter of the report syntax
}  // namespace

void CLSFW_FILTROQUERY::Progetti(const std::string& project_column) {
  frame_.Trap("Progetti", [&] {
    const int32_t user = frame_.UserId();
    const Variant& ditta = frame_.ctx.DittaCorrente;
    std::shared_ptr<db::Recordset> probe =
        frame_.Execute(filtroquery::ProjectProbeStatement(user, ditta), db::kCmdText);
    if (probe->EOF()) {
      cond_revoke_.clear();
      cond_revoke_crystal_.clear();
      return;
    }

    if (!ReportFieldBlank()) {
      const std::string field = sql::Unquoted(data_field_crystal_);
      std::shared_ptr<db::Recordset> counts =
          frame_.Execute(filtroquery::ProjectCountStatement(user, ditta), db::kCmdText);
      const double num_prog = counts->Fields("NUMPROG").ToDouble();
      const double num_revoke = counts->Fields("NUMREVOKE").ToDouble();
      std::string list;
      std::string prefix;
      if (filtroquery::ListRevokedProjects(num_revoke, num_prog)) {
        list = filtroquery::RevokedProjectsStatement(user, ditta);
        prefix = " (NOT (" + field + " IN [" + kQuote;
      } else {
        list = filtroquery::AllowedProjectsStatement(user, ditta);
        prefix = " ( (" + field + " IN [" + kQuote;
      }
      std::shared_ptr<db::Recordset> codes = frame_.Execute(list, db::kCmdText);
      if (!codes->EOF()) {
        cond_revoke_crystal_ = prefix + codes->Fields("FW31_CODTIPO").ConcatText() + kQuote;
        codes->MoveNext();
        for (; !codes->EOF(); codes->MoveNext()) {
          cond_revoke_crystal_ +=
              std::string(",") + kQuote + codes->Fields("FW31_CODTIPO").ConcatText() + kQuote;
        }
        cond_revoke_crystal_ += "]))";
      }
    }

    cond_revoke_ = filtroquery::ProjectCondition(user, ditta, project_column);
  });
}

void CLSFW_FILTROQUERY::CondNodi(const std::string& node_column,
                                 const std::string& project_column) {
  frame_.Trap("CondNodi", [&] {
    const int32_t user = frame_.UserId();
    const Variant& ditta = frame_.ctx.DittaCorrente;
    std::shared_ptr<db::Recordset> probe =
        frame_.Execute(filtroquery::NodeProbeStatement(user, ditta), db::kCmdText);
    if (probe->EOF()) {
      cond_revoke_.clear();
      cond_revoke_crystal_.clear();
      return;
    }
    // Nodes are not restricted in the report form.
    if (!ReportFieldBlank()) cond_revoke_crystal_ += "(1=1)";
    cond_revoke_ = filtroquery::NodeCondition(user, ditta, node_column, project_column);
  });
}

}  // namespace zarvik
