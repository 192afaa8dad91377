// Area and grouping lists of the query filter: the data field may not take
// any code revoked for the user at the list's level.
//
// The SQL form keeps the shape the host has always received: the first code
// has no opening quote (D NOT IN (N', 'S')). The report form lists the codes
// unquoted after one leading blank: (NOT (R IN [N,S])).
#include "filtroquery/area_lists.h"

#include "filtroquery/clsfw_filtroquery.h"
#include "frame/sql_text.h"

namespace zarvik::filtroquery {

std::string AreaListFilter(AreaList list) {
  switch (list) {
    case AreaList::kMacroArea:
      return std::string(" AND FW32_TIPORAGG = 'AREA' ") + " AND FW32_CODMIDDLE = ''" +
             " AND FW32_CODRAGG = ''";
    case AreaList::kMiddleArea:
      return std::string(" AND FW32_TIPORAGG = 'AREA' ") + " AND FW32_CODMIDDLE <> ''" +
             " AND FW32_CODRAGG = ''";
    case AreaList::kArea:
      return std::string(" AND FW32_TIPORAGG = 'AREA' ") + " AND FW32_CODRAGG <> ''";
    case AreaList::kGrouping1:
    case AreaList::kGrouping2:
    case AreaList::kGrouping3: {
      const int32_t n = list == AreaList::kGrouping1 ? 1 : list == AreaList::kGrouping2 ? 2 : 3;
      return std::string(" AND FW32_TIPORAGG = 'RAGG") + sql::Number(n) + "' " +
             " AND FW32_CODMIDDLE = ''" + " AND FW32_CODRAGG = ''";
    }
  }
  return std::string();
}

const char* AreaListCodeColumn(AreaList list) {
  switch (list) {
    case AreaList::kMiddleArea:
      return "FW32_CODMIDDLE";
    case AreaList::kArea:
      return "FW32_CODRAGG";
    case AreaList::kMacroArea:
    case AreaList::kGrouping1:
    case AreaList::kGrouping2:
    case AreaList::kGrouping3:
      break;
  }
  return "FW32_CODMACRO";
}

std::string AreaListExtra(AreaList list, const Variant& ditta_corrente) {
  return AreaListFilter(list) + " AND FW32_FLGABILITATO = 0" +
         " AND FW32_DITTA = " + sql::Unquoted(ditta_corrente);
}

std::string QueryRvkCliFor(int32_t user_id, const std::string& extra) {
  return std::string("SELECT * FROM VFW32_RVKCLIFOR") +
         " WHERE FW32_ID_FW07 = " + sql::Number(user_id) + " " + extra +
         " ORDER BY FW32_DITTA, FW32_TIPOCF , FW32_CODRAGG , FW32_CODMIDDLE , FW32_CODMACRO";
}

}  // namespace zarvik::filtroquery

namespace zarvik {

// No trap of its own: a failure ends in the trap of FiltroCondizione.
void CLSFW_FILTROQUERY::CondAreaList(filtroquery::AreaList list) {
  const std::string extra = filtroquery::AreaListExtra(list, frame_.ctx.DittaCorrente);
  const std::string statement = filtroquery::QueryRvkCliFor(frame_.UserId(), extra);
  std::shared_ptr<db::Recordset> rows = frame_.Execute(statement, db::kCmdText);
  if (rows->EOF()) return;

  const char* column = filtroquery::AreaListCodeColumn(list);
  const bool report = !ReportFieldBlank();
  const std::string first = rows->Fields(column).ConcatText();
  cond_revoke_ = sql::Unquoted(data_field_) + " NOT IN (" + first + "'";
  if (report)
    cond_revoke_crystal_ = " (NOT (" + sql::Unquoted(data_field_crystal_) + " IN [" + first;
  rows->MoveNext();
  for (; !rows->EOF(); rows->MoveNext()) {
    const std::string code = rows->Fields(column).ConcatText();
    cond_revoke_ += ", '" + code + "'";
    if (report) cond_revoke_crystal_ += "," + code;
  }
  cond_revoke_ += ")";
  if (report) cond_revoke_crystal_ += "]))";
}

}  // namespace zarvik
