// The statements and the counting rule behind the project and node filters
// of the query filter. Project revocations are the kind-8 rows of
// VFW31_RVKPARAMETRI; node revocations the rows of VFW3N_RVKNODI.
#ifndef ZARVIK_FILTROQUERY_PROJECT_STATEMENTS_H_
#define ZARVIK_FILTROQUERY_PROJECT_STATEMENTS_H_

#include <cstdint>
#include <string>

#include "platform/variant.h"

namespace zarvik::filtroquery {

// Is anything of kind 8 revoked for the user in the company? (TOP 1 probe.)
std::string ProjectProbeStatement(int32_t user_id, const Variant& ditta);

// NUMPROG (every project of every company) and NUMREVOKE (the user's
// project revocations in the company), in one row.
std::string ProjectCountStatement(int32_t user_id, const Variant& ditta);

// The counting rule of the report form: list the revoked codes only when
// they are strictly fewer than the rest; ties list the allowed codes.
bool ListRevokedProjects(double num_revoke, double num_prog);

// The revoked project codes of the user in the company, as FW31_CODTIPO.
std::string RevokedProjectsStatement(int32_t user_id, const Variant& ditta);
// The company's projects that are not revoked, as FW31_CODTIPO.
std::string AllowedProjectsStatement(int32_t user_id, const Variant& ditta);

// The SQL form: NOT EXISTS a kind-8 revocation whose code is project_column.
std::string ProjectCondition(int32_t user_id, const Variant& ditta,
                             const std::string& project_column);

// Is any node revoked for the user in the company? (TOP 1 probe.)
std::string NodeProbeStatement(int32_t user_id, const Variant& ditta);

// The SQL form: NOT EXISTS a node revocation for (project_column,
// node_column).
std::string NodeCondition(int32_t user_id, const Variant& ditta, const std::string& node_column,
                          const std::string& project_column);

}  // namespace zarvik::filtroquery

#endif  // ZARVIK_FILTROQUERY_PROJECT_STATEMENTS_H_
