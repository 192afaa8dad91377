// The statements behind the customer/supplier filter of the query filter:
// which customers or suppliers a user may or may not see, judged by their
// classifications (MG19_CLIFORVA) against the revoked groupings
// (VFW32_RVKCLIFOR) and, for an agent, by the customers assigned to him.
#ifndef ZARVIK_FILTROQUERY_CLIFOR_STATEMENTS_H_
#define ZARVIK_FILTROQUERY_CLIFOR_STATEMENTS_H_

#include <cstdint>
#include <string>

#include "platform/variant.h"

namespace zarvik::filtroquery {

// The correlated subquery " (SELECT *  From MG19_CLIFORVA ...)" that finds
// the classification row of the outer CG44_CLIFOR row when its macro-area,
// macro-category or one of its three groupings is revoked for the user.
std::string ExistsRvkCliForVa(int32_t user_id);

// Customers/suppliers of kind tipo_cf that no revoked classification hides;
// for customers (0) with an agent, only those assigned to the agent
// (MG1C_IDAGENTE_MG17 = 'agent').
std::string CliForNONrevocatiStatement(int16_t tipo_cf, int32_t user_id,
                                       const Variant& codice_agente);

// Customers/suppliers of kind tipo_cf that a revoked classification hides;
// for customers (0) with an agent, also those not assigned to the agent. The
// agent clause names MG1C_AGENTE_IDMG17 and closes one parenthesis more than
// it opens: the server refuses that statement.
std::string CliForRevocatiStatement(int16_t tipo_cf, int32_t user_id, const Variant& codice_agente);

}  // namespace zarvik::filtroquery

#endif  // ZARVIK_FILTROQUERY_CLIFOR_STATEMENTS_H_
