// Which builder of the query filter a filter field reaches, by the field's
// name (its SQL column expression) and the kind the host gave.
#ifndef ZARVIK_FILTROQUERY_FILTER_DISPATCH_H_
#define ZARVIK_FILTROQUERY_FILTER_DISPATCH_H_

#include <cstdint>
#include <string>

namespace zarvik::filtroquery {

enum class FilterKind {
  kNone,        // no restriction for this field
  kCustomers,   // customer/supplier condition, customers (CG44_TIPOCF 0)
  kSuppliers,   // customer/supplier condition, suppliers (CG44_TIPOCF 1)
  kMacroArea,   // MG07
  kMiddleArea,  // MG08
  kArea,        // MG09
  kGrouping1,   // MG31
  kGrouping2,   // MG32
  kGrouping3,   // MG33
  kAgent,       // MG17
  kProjects,    // PD68_CODPROG
  kNodes,       // PD0C_CODNODO
};

// First match wins:
//   1. "CLIFOR" anywhere, in any case: customers for tsCliente (2),
//      suppliers for tsFornitore (3), nothing for any other kind;
//   2. the first four characters in the table of prefixes (exact case);
//      "MG17" only when the whole field, trimmed, is "MG17_AGENTE", else
//      nothing;
//   3. the last four characters in the same table ("MG17" without the
//      name test);
//   4. "PD68_CODPROG", then "PD0C_CODNODO" anywhere (exact case).
FilterKind ClassifyDataField(const std::string& data_field, int32_t tipologia);

}  // namespace zarvik::filtroquery

#endif  // ZARVIK_FILTROQUERY_FILTER_DISPATCH_H_
