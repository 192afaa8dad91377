// Condition builders of CLSFW_PARSER for article states, price-list types,
// movement types and CERVED operations; the enabled article states as an
// array; the movement types with their permission; and the warehouse
// transfer question the database answers.
#include <memory>
#include <optional>
#include <string>

#include "db/recordset.h"
#include "frame/sql_text.h"
#include "parser/clsfw_parser.h"
#include "parser/conditions/condition_text.h"
#include "platform/vb_error.h"

namespace zarvik {

std::string CLSFW_PARSER::SQLConditionStatiArticolo(bool inserire_and) {
  std::string result;
  frame_.Trap("SQLConditionStatiArticolo", [&] {
    if (RevocationFrame::IsPrivileged(frame_.ctx.CodiceUtenteCLIFOR)) return;
    ConnectForCondition();
    const std::string user_id = sql::Number(frame_.UserId());
    // Any kind-14 row, enabled or not, makes the condition necessary.
    std::string probe = "SELECT TOP 1 1 FROM VFW31_RVKPARAMETRI  ";
    probe += " WHERE FW31_ID_FW07 = " + user_id + " AND FW31_INDTIPO = 14   ";
    probe += " AND FW31_DITTARAGG = -1 ";
    if (frame_.Execute(probe, db::kCmdText)->EOF()) return;
    std::string text;
    text += " MG66_INDSTATO_MG6W IN (  ";
    text += "                 (SELECT MG6W_INDSTATO  ";
    text += "                     FROM MG6W_STATIART ";
    text += "                     WHERE NOT EXISTS (SELECT TOP 1 1  ";
    text += "                                       FROM VFW31_RVKPARAMETRI ";
    text +=
        "                                       WHERE FW31_CODTIPO = CAST(MG6W_INDSTATO AS "
        "NVARCHAR) ";
    text += "                                             AND FW31_ID_FW07 = " + user_id;
    text += "                                             AND FW31_INDTIPO = 14   ";
    text += "                                             AND FW31_DITTARAGG = -1))) ";
    result = conditions::WithAnd(text, inserire_and);
  });
  return result;
}

std::string CLSFW_PARSER::SQLConditionTipiListiniP(const std::string& nome_campo_tipo_list,
                                                   bool inserire_and) {
  std::string result;
  frame_.Trap("SQLConditionTipiListiniP", [&] {
    if (RevocationFrame::IsPrivileged(frame_.ctx.CodiceUtenteCLIFOR)) return;
    if (RevocationFrame::IsBlank(nome_campo_tipo_list)) return;
    ConnectForCondition();
    // Every kind-32 row is a revoked type (no flag, no company).
    std::string sql = "SELECT FW31_CODTIPO  FROM VFW31_RVKPARAMETRI  ";
    sql += " WHERE FW31_ID_FW07 = " + sql::Number(frame_.UserId()) + " AND FW31_INDTIPO = 32 ";
    std::string list;
    for (std::shared_ptr<db::Recordset> rows = frame_.Execute(sql, db::kCmdText); !rows->EOF();
         rows->MoveNext()) {
      if (!list.empty()) list += ", ";
      list += sql::Unquoted(rows->Fields("FW31_CODTIPO"));
    }
    if (list.empty()) return;
    // Unlike the other builders, a blank leads the text without AND.
    result = (inserire_and ? conditions::kAndPrefix : " ") + sql::Column(nome_campo_tipo_list) +
             " NOT IN (" + list + ")";
  });
  return result;
}

Variant CLSFW_PARSER::StatiArticoloMagaArray() {
  Variant result;
  frame_.Trap("StatiArticoloMagaArray", [&] {
    std::shared_ptr<db::Recordset> states = StatiArticoloMaga();
    if (!states) throw VbError(vberr::kObjectNotSet);
    states->SetFilter(Variant("ENABLED = 1"));
    const int32_t count = states->RecordCount();
    // No enabled state (or a count the cursor does not know): Empty.
    if (count > 0) {
      auto array = std::make_shared<VariantArray>(0, 1, 0, count - 1);
      for (int32_t i = 0; !states->EOF(); states->MoveNext(), ++i) {
        array->At(0, i) = states->Fields("MG6W_INDSTATO");
        array->At(1, i) = states->Fields("MG6W_DESCR");
      }
      result = Variant(array);
    }
    states->SetFilter(Variant(static_cast<int16_t>(db::kFilterNone)));
    states->Close();
  });
  return result;
}

int16_t CLSFW_PARSER::TrasferimentoDepositi(std::string& deposito_origine,
                                            std::string& deposito_destinazione) {
  int16_t result = 0;
  frame_.Trap("TrasferimentoDepositi", [&] {
    // The connection and the user id are used as they stand.
    std::string sql = "SELECT dbo.FNFW_TRASFREVOCATI (";
    sql += sql::Unquoted(frame_.ctx.DittaCorrente) + ", ";
    sql += sql::Number(frame_.UserId()) + ", ";
    sql += sql::Quoted(deposito_origine) + ", " + sql::Quoted(deposito_destinazione) + ")";
    std::shared_ptr<db::Recordset> rows = frame_.Execute(sql, db::kCmdText);
    if (!rows->EOF()) result = rows->Fields(0).ToInteger();
  });
  return result;
}

std::shared_ptr<db::Recordset> CLSFW_PARSER::InitRevokeTipiMovimenti() {
  std::shared_ptr<db::Recordset> types;
  frame_.Trap("InitRevokeTipiMov", [&] {
    // Always resolved, also for the privileged user (who only changes the
    // permission column).
    ConnectForCondition();
    std::string sql;
    if (RevocationFrame::IsPrivileged(frame_.ctx.CodiceUtente)) {
      sql += " SELECT  CGT0_CODICE AS CODICE, 1 AS ABILITATO ";
    } else {
      sql +=
          " SELECT  CGT0_CODICE AS CODICE, CASE WHEN FW31_FLGABILITATO IS NULL THEN 1 ELSE 0 "
          "END AS ABILITATO ";
    }
    sql += " FROM CGT0_TIPOMOV";
    sql += " LEFT OUTER JOIN VFW31_RVKPARAMETRI ON CGT0_TIPOMOV.CGT0_CODICE = FW31_CODTIPO ";
    // The historical text: no equals sign between the column and the id.
    sql += " AND FW31_ID_FW07 " + sql::Number(frame_.UserId());
    sql += " AND FW31_INDTIPO = 1 WHERE CGT0_FLGCANREVOKE = 1";
    types = frame_.Execute(sql, db::kCmdText);
  });
  return types;
}

std::string CLSFW_PARSER::SQLConditionTipiMovimenti(std::string& nome_campo_mov,
                                                    bool& inserire_and) {
  std::string result;
  frame_.Trap("SQLConditionTipiMovimenti", [&] {
    if (RevocationFrame::IsPrivileged(frame_.ctx.CodiceUtente)) return;
    ConnectForCondition();
    std::string text;
    text += " NOT EXISTS (SELECT TOP 1 1 ";
    text += " FROM VFW31_RVKPARAMETRI ";
    text += " WHERE FW31_ID_FW07 = " + sql::Number(frame_.UserId()) + " ";
    text += " AND FW31_INDTIPO = 1 ";
    text += " AND FW31_FLGABILITATO = 0 ";
    text += " AND FW31_DITTARAGG = -1 ";
    text += " AND FW31_CODTIPO = " + sql::Column(nome_campo_mov) + ")";
    result = conditions::WithAnd(text, inserire_and);
  });
  return result;
}

std::string CLSFW_PARSER::SQLConditionCerved(std::string& nome_campo_mov, bool& inserire_and,
                                             int16_t& tipo_operazione) {
  std::string result;
  frame_.Trap("SQLConditionCerved", [&] {
    if (RevocationFrame::IsPrivileged(frame_.ctx.CodiceUtente)) return;
    ConnectForCondition();
    // Kind 31 is tested on the insert flag (operation 0) or the update flag
    // (any other operation), not on FW31_FLGABILITATO.
    const char* flag = tipo_operazione == 0 ? "INSERISCI" : "MODIFICA";
    std::string text;
    text += " NOT EXISTS (SELECT TOP 1 1 ";
    text += " FROM VFW31_RVKPARAMETRI ";
    text += " WHERE FW31_ID_FW07 = " + sql::Number(frame_.UserId()) + " ";
    text += std::string(" AND FW31_FLG") + flag + " = 0 ";
    text += " AND FW31_INDTIPO = 31 ";
    text += " AND FW31_DITTARAGG = -1 ";
    text += " AND FW31_CODTIPO = " + sql::Column(nome_campo_mov) + ") ";
    result = conditions::WithAnd(text, inserire_and);
  });
  return result;
}

}  // namespace zarvik
