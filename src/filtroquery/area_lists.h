// The statements behind the area and grouping lists of the query filter:
// the revoked customer/supplier groupings of a user, read from
// VFW32_RVKCLIFOR one level at a time.
#ifndef ZARVIK_FILTROQUERY_AREA_LISTS_H_
#define ZARVIK_FILTROQUERY_AREA_LISTS_H_

#include <cstdint>
#include <string>

#include "platform/variant.h"

namespace zarvik::filtroquery {

// The six lists, one per family of filter fields.
enum class AreaList {
  kMacroArea,   // MG07: macro-area rows (middle area and area empty)
  kMiddleArea,  // MG08: middle-area rows (area empty)
  kArea,        // MG09: area rows
  kGrouping1,   // MG31: grouping 1, code in FW32_CODMACRO
  kGrouping2,   // MG32
  kGrouping3,   // MG33
};

// The list's own filter on VFW32_RVKCLIFOR, e.g. for the macro-areas
// " AND FW32_TIPORAGG = 'AREA'  AND FW32_CODMIDDLE = '' AND FW32_CODRAGG = ''".
std::string AreaListFilter(AreaList list);

// The column that holds the list's codes (FW32_CODMACRO, FW32_CODMIDDLE or
// FW32_CODRAGG).
const char* AreaListCodeColumn(AreaList list);

// The complete Extra of a list: its own filter, the revoked rows only, and
// the company (DittaCorrente as its text, unquoted).
std::string AreaListExtra(AreaList list, const Variant& ditta_corrente);

// "SELECT * FROM VFW32_RVKCLIFOR WHERE FW32_ID_FW07 = " + user + " " + extra
// + the fixed ORDER BY.
std::string QueryRvkCliFor(int32_t user_id, const std::string& extra);

}  // namespace zarvik::filtroquery

#endif  // ZARVIK_FILTROQUERY_AREA_LISTS_H_
