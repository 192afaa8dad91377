// The rights records of CLSFW_PARSER and the article-state list: each starts
// from a fixed default and is adjusted from at most one query.
//
// Every method: trap with its own name; privileged test on its user field;
// OpenConnection (answer not used); ResolveUser; one statement. None
// consults RevokeDisabilitata or tests its arguments for blank.
#include <memory>
#include <optional>
#include <string>

#include "db/recordset.h"
#include "frame/sql_text.h"
#include "parser/checks/rights_rule.h"
#include "parser/clsfw_parser.h"

namespace zarvik {
namespace {

constexpr const char* kCrLf = "\r\n";

void Connect(RevocationFrame& frame) {
  frame.OpenConnection();
  frame.ResolveUser();
}

// The codes of the user's revoked rows of one kind (kind_piece: " WHERE
// FW31_INDTIPO = n "), each handed to `mark`.
template <class Mark>
void ForEachRevokedCode(RevocationFrame& frame, const char* kind_piece, Mark mark) {
  std::string sql = "SELECT FW31_CODTIPO, FW31_FLGABILITATO FROM VFW31_RVKPARAMETRI ";
  sql += kind_piece;
  sql += " AND FW31_ID_FW07 = " + sql::Number(frame.UserId()) + " ";
  sql += " AND FW31_FLGABILITATO = 0";
  for (std::shared_ptr<db::Recordset> rows = frame.Execute(sql, db::kCmdText); !rows->EOF();
       rows->MoveNext()) {
    mark(rows->Fields("FW31_CODTIPO"));
  }
}

// VB's "Select Case code / Case n": a numeric comparison (text that is not a
// number raises 13; Null matches nothing).
bool CodeIs(const Variant& code, int32_t number) { return checks::IfEquals(code, number); }

// Bill-of-materials and work-cycle types 30 to 39 are also covered by a
// row with the code '99'.
bool CoversAllOfThirties(int16_t tipo) { return tipo >= 30 && tipo <= 39; }

}  // namespace

tsRvkTipiMov CLSFW_PARSER::InitRevokeTipiMov() {
  tsRvkTipiMov record;
  frame_.Trap("InitRevokeTipiMov", [&] {
    if (RevocationFrame::IsPrivileged(frame_.ctx.CodiceUtente)) return;
    Connect(frame_);
    ForEachRevokedCode(frame_, " WHERE FW31_INDTIPO = 1 ", [&](const Variant& code) {
      if (CodeIs(code, 0)) {
        record.Cons = kVbTrue;
      } else if (CodeIs(code, 1)) {
        record.DaCons = kVbTrue;
      } else if (CodeIs(code, 2)) {
        record.Prev = kVbTrue;
      } else if (CodeIs(code, 3)) {
        record.PrevSim = kVbTrue;
      }
    });
  });
  return record;
}

tsRvkConsMov CLSFW_PARSER::InitRevokeTipoTrasPNota() {
  tsRvkConsMov record;
  frame_.Trap("InitRevokeTipoTrasPNota", [&] {
    if (RevocationFrame::IsPrivileged(frame_.ctx.CodiceUtente)) return;
    Connect(frame_);
    ForEachRevokedCode(frame_, " WHERE FW31_INDTIPO = 11 ", [&](const Variant& code) {
      if (CodeIs(code, 0)) {
        record.DaCons_Cons = kVbTrue;
      } else if (CodeIs(code, 1)) {
        record.Prev_Cons = kVbTrue;
      }
    });
  });
  return record;
}

tsRvkFamiglia CLSFW_PARSER::InitRevokeFamiglia(const std::string& cod_famiglia) {
  tsRvkFamiglia record;
  frame_.Trap("InitRevokeFamiglia", [&] {
    if (RevocationFrame::IsPrivileged(frame_.ctx.CodiceUtente)) return;
    Connect(frame_);
    std::string sql =
        "SELECT FW3H_FLGELIMINA, FW3H_FLGINSERIMENTO, FW3H_FLGMODIFICA FROM FW3H_RVKARTICOLI ";
    sql += " WHERE FW3H_DITTA = " + sql::Unquoted(frame_.ctx.DittaCorrente);
    sql += " AND FW3H_CODMACRO = " + sql::Quoted(cod_famiglia);
    sql += " AND FW3H_TIPORAGG = 'FAM' ";
    sql += " AND FW3H_ID_FW07 = " + sql::Number(frame_.UserId()) + " ";
    std::shared_ptr<db::Recordset> rows = frame_.Execute(sql, db::kCmdText);
    if (rows->EOF()) return;
    // Only 1 allows; any other value forbids.
    record.CanDelete = checks::AssignEquals(rows->Fields("FW3H_FLGELIMINA"), 1);
    record.CanUpdate = checks::AssignEquals(rows->Fields("FW3H_FLGMODIFICA"), 1);
    record.CanInsert = checks::AssignEquals(rows->Fields("FW3H_FLGINSERIMENTO"), 1);
    record.rvkExists = kVbTrue;
  });
  return record;
}

tsRvkDocumenti CLSFW_PARSER::PermessiDocTipologie(std::string& codice_doc, int16_t& flag_pers) {
  tsRvkDocumenti record;
  frame_.Trap("PermessiDocTipologie", [&] {
    if (RevocationFrame::IsPrivileged(frame_.ctx.CodiceUtenteCLIFOR)) {
      // The privileged user is reported as having a row, with every right.
      record.rvkExists = kVbTrue;
      return;
    }
    Connect(frame_);
    std::string sql =
        "SELECT FW31_FLGABILITATO, FW31_FLGMODIFICA, FW31_FLGELIMINA, FW31_FLGINSERISCI FROM "
        "VFW31_RVKPARAMETRI ";
    sql += kCrLf;
    sql += " WHERE FW31_ID_FW07 = " + sql::Number(frame_.UserId()) + " ";
    sql += kCrLf;
    sql += " AND FW31_INDTIPO = 7";
    sql += kCrLf;
    sql += " AND FW31_CODTIPO = " + sql::Quoted(codice_doc);
    sql += kCrLf;
    sql += " AND FW31_DITTARAGG = " + sql::Number(flag_pers);
    std::shared_ptr<db::Recordset> rows = frame_.Execute(sql, db::kCmdUnspecified);
    if (!rows->EOF() && !rows->BOF()) checks::ApplyRightsRule(checks::ReadRightsRow(*rows), record);
  });
  return record;
}

tsRvkConfig CLSFW_PARSER::PermessiTipologieDistintaBase(int16_t tipo_distinta) {
  tsRvkConfig record;
  frame_.Trap("PermessiTipologieDistintaBase", [&] {
    if (RevocationFrame::IsPrivileged(frame_.ctx.CodiceUtenteCLIFOR)) return;
    Connect(frame_);
    const std::string code = sql::Number(tipo_distinta);
    std::string sql =
        "SELECT TOP 1 FW31_FLGABILITATO, FW31_FLGMODIFICA, FW31_FLGELIMINA, FW31_FLGINSERISCI "
        "FROM VFW31_RVKPARAMETRI ";
    sql += kCrLf;
    sql += " WHERE FW31_ID_FW07 = " + sql::Number(frame_.UserId()) + " ";
    sql += kCrLf;
    sql += " AND FW31_INDTIPO = 19";
    sql += kCrLf;
    sql += " AND FW31_DITTARAGG = -1";
    sql += kCrLf;
    if (CoversAllOfThirties(tipo_distinta)) {
      // '99' stands for all of 30..39 and sorts first.
      sql += " AND FW31_CODTIPO IN (" + sql::Quoted(code) + ", '99')";
    } else {
      sql += " AND FW31_CODTIPO = " + sql::Quoted(code);
      sql += kCrLf;
    }
    sql += " ORDER BY FW31_CODTIPO DESC";
    std::shared_ptr<db::Recordset> rows = frame_.Execute(sql, db::kCmdUnspecified);
    if (!rows->EOF() && !rows->BOF()) checks::ApplyRightsRule(checks::ReadRightsRow(*rows), record);
  });
  return record;
}

tsRvkConfig CLSFW_PARSER::PermessiTipologieCicliLavorazione(int16_t tipo_ciclo) {
  tsRvkConfig record;
  frame_.Trap("PermessiTipologieCicliLavorazione", [&] {
    if (RevocationFrame::IsPrivileged(frame_.ctx.CodiceUtenteCLIFOR)) return;
    Connect(frame_);
    const std::string code = sql::Number(tipo_ciclo);
    std::string sql;
    sql += "SELECT TOP 1";
    sql += "  FW31_FLGABILITATO, FW31_FLGMODIFICA, FW31_FLGELIMINA, FW31_FLGINSERISCI ";
    sql += "FROM";
    sql += "  VFW31_RVKPARAMETRI ";
    sql += "WHERE";
    sql += "  FW31_ID_FW07   = " + sql::Number(frame_.UserId()) + " AND";
    sql += "  FW31_INDTIPO   = 33 AND";
    sql += "  FW31_DITTARAGG = -1 AND ";
    if (CoversAllOfThirties(tipo_ciclo)) {
      sql += "FW31_CODTIPO IN (" + sql::Quoted(code) + ", '99')";
    } else {
      sql += "FW31_CODTIPO = " + sql::Quoted(code);
      sql += kCrLf;
    }
    sql += " ORDER BY FW31_CODTIPO DESC";
    std::shared_ptr<db::Recordset> rows = frame_.Execute(sql, db::kCmdText);
    if (!rows->EOF() && !rows->BOF()) checks::ApplyRightsRule(checks::ReadRightsRow(*rows), record);
  });
  return record;
}

std::shared_ptr<db::Recordset> CLSFW_PARSER::StatiArticoloMaga() {
  std::shared_ptr<db::Recordset> states;
  frame_.Trap("StatiArticoloMaga", [&] {
    frame_.OpenConnection();
    std::string sql;
    if (!RevocationFrame::IsPrivileged(frame_.ctx.CodiceUtente)) {
      frame_.ResolveUser();
      // A state without a revocation row is enabled (1).
      sql += " SELECT MG6W_INDSTATO, MG6W_DESCR,  ";
      sql += " (CASE WHEN FW31_FLGABILITATO IS NULL THEN 1 ELSE FW31_FLGABILITATO END) AS ENABLED ";
      sql += " FROM MG6W_STATIART ";
      sql += " LEFT OUTER JOIN VFW31_RVKPARAMETRI ON FW31_CODTIPO = MG6W_INDSTATO ";
      sql += "                         AND FW31_ID_FW07 = " + sql::Number(frame_.UserId()) + " ";
      sql += "                     AND FW31_INDTIPO = 14 ";
      sql += " ORDER BY MG6W_INDSTATO ";
    } else {
      sql += " SELECT MG6W_INDSTATO, MG6W_DESCR,  ";
      sql += " 1 AS ENABLED ";
      sql += " FROM MG6W_STATIART ";
      sql += " ORDER BY MG6W_INDSTATO ";
    }
    states = frame_.Execute(sql, db::kCmdText);
  });
  return states;
}

}  // namespace zarvik
