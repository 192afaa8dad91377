#include "filtroquery/project_statements.h"

#include "frame/sql_text.h"

namespace zarvik::filtroquery {

std::string ProjectProbeStatement(int32_t user_id, const Variant& ditta) {
  return std::string(" SELECT TOP 1 1 ") + " FROM VFW31_RVKPARAMETRI  " +
         " WHERE FW31_ID_FW07 = " + sql::Number(user_id) + " " + "     AND FW31_INDTIPO = 8  " +
         "     AND FW31_FLGABILITATO = 0  " + "     AND FW31_DITTARAGG = " + sql::Unquoted(ditta);
}

std::string ProjectCountStatement(int32_t user_id, const Variant& ditta) {
  return std::string(" SELECT COUNT(*) AS NUMPROG, (SELECT COUNT(FW31_CODTIPO)  ") +
         " FROM VFW31_RVKPARAMETRI  " + " WHERE FW31_ID_FW07 = " + sql::Number(user_id) + " " +
         "     AND FW31_INDTIPO = 8  " + "     AND FW31_FLGABILITATO = 0  " +
         "     AND FW31_DITTARAGG = " + sql::Unquoted(ditta) + ") AS NUMREVOKE " +
         " FROM PD68_PROGETTI ";
}

bool ListRevokedProjects(double num_revoke, double num_prog) {
  return num_revoke < num_prog - num_revoke;
}

std::string RevokedProjectsStatement(int32_t user_id, const Variant& ditta) {
  return std::string(" SELECT FW31_CODTIPO ") + " FROM VFW31_RVKPARAMETRI " +
         " WHERE FW31_ID_FW07 = " + sql::Number(user_id) + " " + " AND FW31_INDTIPO = 8 " +
         " AND FW31_FLGABILITATO = 0 " + " AND FW31_DITTARAGG = " + sql::Unquoted(ditta);
}

std::string AllowedProjectsStatement(int32_t user_id, const Variant& ditta) {
  return std::string(" SELECT PD68_CODPROG as FW31_CODTIPO ") + " FROM PD68_PROGETTI " +
         " WHERE PD68_DITTA_CG18 = " + sql::Unquoted(ditta) +
         "     AND NOT EXISTS (SELECT TOP 1 1  " +
         "                       FROM VFW31_RVKPARAMETRI  " +
         "                       WHERE FW31_ID_FW07 = " + sql::Number(user_id) + " " +
         "                         AND FW31_INDTIPO = 8  " +
         "                         AND FW31_FLGABILITATO = 0  " +
         "                         AND FW31_DITTARAGG = " + sql::Unquoted(ditta) +
         "                         AND PD68_CODPROG = FW31_CODTIPO)";
}

std::string ProjectCondition(int32_t user_id, const Variant& ditta,
                             const std::string& project_column) {
  return std::string(" NOT EXISTS (SELECT TOP 1 1 ") + " FROM VFW31_RVKPARAMETRI " +
         " WHERE FW31_ID_FW07 = " + sql::Number(user_id) + " " + " AND FW31_INDTIPO = 8 " +
         " AND FW31_FLGABILITATO = 0 " + " AND FW31_DITTARAGG = " + sql::Unquoted(ditta) +
         " AND FW31_CODTIPO = " + sql::Column(project_column) + ") ";
}

std::string NodeProbeStatement(int32_t user_id, const Variant& ditta) {
  return std::string(" SELECT TOP 1 1 ") + " FROM VFW3N_RVKNODI  " +
         " WHERE FW3N_ID_FW07 = " + sql::Number(user_id) + " " +
         " AND FW3N_DITTA_CG18 = " + sql::Unquoted(ditta);
}

std::string NodeCondition(int32_t user_id, const Variant& ditta, const std::string& node_column,
                          const std::string& project_column) {
  return std::string(" NOT EXISTS (SELECT TOP 1 1 ") + " FROM VFW3N_RVKNODI " +
         " WHERE FW3N_ID_FW07 = " + sql::Number(user_id) + " " +
         " AND FW3N_DITTA_CG18 = " + sql::Unquoted(ditta) +
         " AND FW3N_CODPROG_PD68 = " + sql::Column(project_column) +
         " AND FW3N_CODNODO = " + sql::Column(node_column) + ") ";
}

}  // namespace zarvik::filtroquery
