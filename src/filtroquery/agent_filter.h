// The pieces of the agent filter of the query filter: the lookup of the
// agent's code and the report form of "the field is this agent".
#ifndef ZARVIK_FILTROQUERY_AGENT_FILTER_H_
#define ZARVIK_FILTROQUERY_AGENT_FILTER_H_

#include <string>

#include "platform/variant.h"

namespace zarvik::filtroquery {

// "SELECT MG17_AGENTE FROM MG17_AGENTI WHERE MG17_IDAGENTE = '" + id + "'".
std::string AgentLookupStatement(const Variant& id_agente);

// The SQL form: data field + " = N'" + agent code + "' ".
std::string AgentSqlCondition(const std::string& data_field, const std::string& agent_code);

// The report form, one blank first: a bare field name is wrapped in braces
// here (" ({F} = "A")"); a reference that already has a brace is taken as
// it is (" ({F} = "A")" for "{F}").
std::string AgentReportCondition(const std::string& report_field, const std::string& agent_code);

}  // namespace zarvik::filtroquery

#endif  // ZARVIK_FILTROQUERY_AGENT_FILTER_H_
