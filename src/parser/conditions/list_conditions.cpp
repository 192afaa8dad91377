// List conditions of CLSFW_PARSER: warehouses (kind 6) and offices (kind 4).
// They read the user's revoked codes of the current company first and
// return the column followed by NOT IN and the list.
#include <memory>
#include <string>

#include "frame/sql_text.h"
#include "parser/clsfw_parser.h"
#include "parser/conditions/condition_text.h"

namespace zarvik {
namespace {

// column NOT IN (list), with the IS NULL alternative when allow_null, and
// " AND " in front when inserire_and. `list` is "" when nothing is revoked;
// otherwise it still ends with the separator " , " of its last item, of
// which the last two characters are dropped.
std::string NotInCondition(const std::string& nome_campo, std::string list, bool inserire_and,
                           bool allow_null) {
  if (list.empty()) return "";
  list.erase(list.size() - 2);
  const std::string column = sql::Column(nome_campo);
  std::string text = column + " NOT IN (" + list + ")";
  if (allow_null) text = " (" + text + " OR " + column + " IS NULL )";
  return conditions::WithAnd(text, inserire_and);
}

}  // namespace

void CLSFW_PARSER::ConnectForCondition() {
  frame_.OpenConnection();
  frame_.ResolveUser();
}

std::string CLSFW_PARSER::WarehouseListCondition(const std::string& nome_campo, bool inserire_and,
                                                 bool allow_null) {
  std::string query;
  query += "SELECT FW31_CODTIPO FROM VFW31_RVKPARAMETRI ";
  query += " WHERE FW31_ID_FW07 = " + sql::Number(frame_.UserId()) + " ";
  query += " AND FW31_FLGABILITATO = 0 ";
  query += " AND FW31_INDTIPO = 6 ";
  query += " AND FW31_DITTARAGG = " + sql::Unquoted(frame_.ctx.DittaCorrente);

  // Warehouse codes are quoted as they stand; they carry no quotes.
  std::string list;
  std::shared_ptr<db::Recordset> rows = frame_.Execute(query, db::kCmdText);
  while (!rows->EOF()) {
    list += "'" + rows->Fields("FW31_CODTIPO").ConcatText() + "' , ";
    rows->MoveNext();
  }
  return NotInCondition(nome_campo, list, inserire_and, allow_null);
}

std::string CLSFW_PARSER::OfficeListCondition(const std::string& nome_campo, bool inserire_and,
                                              bool allow_null) {
  std::string query;
  query += "SELECT FW31_CODTIPO FROM VFW31_RVKPARAMETRI ";
  query += " WHERE FW31_ID_FW07 = " + sql::Number(frame_.UserId()) + " ";
  query += " AND FW31_FLGABILITATO = 0 ";
  query += " AND FW31_INDTIPO = 4";
  query += " AND FW31_DITTARAGG = " + sql::Unquoted(frame_.ctx.DittaCorrente);

  // Office codes are numbers: written without quotes.
  std::string list;
  std::shared_ptr<db::Recordset> rows = frame_.Execute(query, db::kCmdText);
  while (!rows->EOF()) {
    list += rows->Fields("FW31_CODTIPO").ConcatText() + " , ";
    rows->MoveNext();
  }
  return NotInCondition(nome_campo, list, inserire_and, allow_null);
}

std::string CLSFW_PARSER::SQLConditionDepositi(const std::string& nome_campo, bool inserire_and,
                                               bool allow_null) {
  std::string result;
  frame_.Trap("SQLConditionDepositi", [&] {
    if (RevocationFrame::IsPrivileged(frame_.ctx.CodiceUtenteCLIFOR)) return;
    ConnectForCondition();
    result = WarehouseListCondition(nome_campo, inserire_and, allow_null);
  });
  return result;
}

std::string CLSFW_PARSER::SQLConditionSediMov(const std::string& nome_campo, bool inserire_and,
                                              bool allow_null) {
  std::string result;
  frame_.Trap("SQLConditionSediMov", [&] {
    if (RevocationFrame::IsPrivileged(frame_.ctx.CodiceUtenteCLIFOR)) return;
    ConnectForCondition();
    result = OfficeListCondition(nome_campo, inserire_and, allow_null);
  });
  return result;
}

}  // namespace zarvik
