// Block checks of CLSFW_PARSER: one statement per call, answered by a row
// found, a COUNT(*) or a RecordCount.
//
// The checks share one shape: blank code -> False; privileged user -> False
// without a query; OpenConnection (its answer is not used: a missing
// connection makes the query fail under the method's tag); ResolveUser;
// one statement on ConnectionADO. They do not run the rest of the guard
// (RevokeDisabilitata, harmonised user codes).
#include <memory>
#include <string>

#include "db/recordset.h"
#include "frame/sql_text.h"
#include "parser/clsfw_parser.h"
#include "platform/message_sink.h"

namespace zarvik {
namespace {

// A row came back.
bool RowFound(RevocationFrame& frame, const std::string& sql) {
  std::shared_ptr<db::Recordset> rows = frame.Execute(sql, db::kCmdText);
  return !rows->EOF();
}

// The FLGRVK column of a "SELECT COUNT(*) AS FLGRVK" statement.
int32_t RevocationCount(RevocationFrame& frame, const std::string& sql) {
  std::shared_ptr<db::Recordset> rows = frame.Execute(sql, db::kCmdText);
  return rows->Fields("FLGRVK").ToLong();
}

// OpenConnection with its answer ignored, then the user lookup.
void Connect(RevocationFrame& frame) {
  frame.OpenConnection();
  frame.ResolveUser();
}

}  // namespace

bool CLSFW_PARSER::DittaBloccata(const Variant& v_cod_ditta) {
  bool blocked = false;
  frame_.Trap("DittaBloccata", [&] {
    if (RevocationFrame::IsBlank(v_cod_ditta)) return;
    // No privileged short cut: the exclusions of ZentAd are read as well.
    Connect(frame_);
    std::string sql = "SELECT COUNT(*) AS FLGRVK FROM VFW05_DITTAESCLUSI ";
    sql += " WHERE FW05_DITTA_CG18 = " + sql::Unquoted(v_cod_ditta);
    sql += " AND FW05_ID_FW07 = " + sql::Number(frame_.UserId());
    sql += " AND FW05_FLGVISIBLE = 0";
    blocked = RevocationCount(frame_, sql) > 0;
  });
  return blocked;
}

bool CLSFW_PARSER::CliForBloccato(const Variant& v_codice_cliente) {
  frame_.Trap("CliForBloccato", [&] {
    if (RevocationFrame::IsBlank(v_codice_cliente)) return;
    Message box;
    box.text = "Metodo 'CliForBloccato' obsoleto, utilizzare 'CliForBloccato_New'";
    box.title = "Sviluppo";
    box.style = msgstyle::kExclamation;
    frame_.GetEnv().sink->Show(box);
  });
  return false;
}

bool CLSFW_PARSER::CliForBloccato_New(const std::string& v_codice_cliente, int16_t tipo_cf) {
  bool blocked = false;
  frame_.Trap("CliForBloccato_New", [&] {
    if (RevocationFrame::IsBlank(v_codice_cliente)) return;
    if (RevocationFrame::IsPrivileged(frame_.ctx.CodiceUtenteCLIFOR)) return;
    frame_.OpenConnection();
    // Lasting: the user is looked up under the customer/supplier code.
    frame_.FillUserCodeFromClifor();
    frame_.ResolveUser();
    std::string sql = "SELECT COUNT(*) AS FLGRVK FROM VFW32_LISTACFREVOCATI ";
    sql += " WHERE RVKDITTA = " + sql::Unquoted(frame_.ctx.DittaCorrente);
    sql += " AND RVKCLIFOR = " + sql::Unquoted(Variant(v_codice_cliente));
    sql += " AND RVKTIPOCF = " + sql::Number(tipo_cf);
    sql += " AND RVKUTENTE = " + sql::Number(frame_.UserId());
    blocked = RevocationCount(frame_, sql) > 0;
  });
  return blocked;
}

bool CLSFW_PARSER::DocumentoTestataBloccato(const std::string& num_reg) {
  bool blocked = false;
  frame_.Trap("DocumentoTestataBloccato", [&] {
    if (RevocationFrame::IsBlank(num_reg)) return;
    if (RevocationFrame::IsPrivileged(frame_.ctx.CodiceUtenteCLIFOR)) return;
    // The user is resolved by SQLConditionDO11, not here.
    frame_.OpenConnection();
    std::string sql = "SELECT COUNT(*) AS FLGRVK FROM DO11_DOCTESTATA ";
    sql += " WHERE DO11_DITTA_CG18 = " + sql::Unquoted(frame_.ctx.DittaCorrente);
    sql += " AND DO11_NUMREG_CO99 = " + sql::Quoted(num_reg) + " ";
    sql += " ";
    sql += SQLConditionDO11(true);
    // Blocked when the document does not pass the document condition (a
    // number that does not exist counts 0 too).
    blocked = RevocationCount(frame_, sql) == 0;
  });
  return blocked;
}

bool CLSFW_PARSER::ProgettoBloccato(const Variant& v_codice_progetto) {
  bool blocked = false;
  frame_.Trap("ProgettoBloccato", [&] {
    if (RevocationFrame::IsBlank(v_codice_progetto)) return;
    if (RevocationFrame::IsPrivileged(frame_.ctx.CodiceUtente)) return;
    Connect(frame_);
    std::string sql = "SELECT TOP 1 1 FROM PD68_PROGETTI ";
    sql += " WHERE PD68_DITTA_CG18 = " + sql::Unquoted(frame_.ctx.DittaCorrente);
    sql += " AND PD68_CODPROG = " + sql::Quoted(sql::Unquoted(v_codice_progetto)) + " ";
    sql += " AND ";
    sql += RvkProgetti(false);
    blocked = RowFound(frame_, sql);
  });
  return blocked;
}

bool CLSFW_PARSER::NodoBloccato(const Variant& v_codice_progetto, const Variant& v_codice_nodo) {
  bool blocked = false;
  frame_.Trap("NodoBloccato", [&] {
    if (RevocationFrame::IsBlank(v_codice_progetto) || RevocationFrame::IsBlank(v_codice_nodo)) {
      return;
    }
    if (RevocationFrame::IsPrivileged(frame_.ctx.CodiceUtente)) return;
    Connect(frame_);
    std::string sql = "SELECT TOP 1 1 FROM PD0C_NODO ";
    sql += " WHERE PD0C_DITTA_CG18 = " + sql::Unquoted(frame_.ctx.DittaCorrente);
    sql += " AND PD0C_CODPROG_PD68 = " + sql::Quoted(sql::Unquoted(v_codice_progetto)) + " ";
    sql += " AND PD0C_CODNODO = " + sql::Quoted(sql::Unquoted(v_codice_nodo)) + " ";
    sql += " AND ";
    sql += RvkNodi(false);
    blocked = RowFound(frame_, sql);
  });
  return blocked;
}

bool CLSFW_PARSER::ModelloBloccoMerceBloccato(const Variant& v_codice_modello) {
  bool blocked = false;
  frame_.Trap("ModelloBloccoMerceBloccato", [&] {
    if (RevocationFrame::IsBlank(v_codice_modello)) return;
    if (RevocationFrame::IsPrivileged(frame_.ctx.CodiceUtente)) return;
    Connect(frame_);
    std::string sql = "SELECT TOP 1 1 FROM MG0F_BLMPARAM ";
    sql += " WHERE MG0F_DITTA_CG18 = " + sql::Unquoted(frame_.ctx.DittaCorrente);
    sql += " AND MG0F_CODPARAM = " + sql::Quoted(sql::Unquoted(v_codice_modello)) + " ";
    sql += " AND ";
    sql += RvkBlmParam(false);
    blocked = RowFound(frame_, sql);
  });
  return blocked;
}

// The next three do not name the entity: they ask whether any row of the
// whole table passes the not-revoked condition, and answer True when one
// does. The host has always relied on this answer; it is kept as it is.

bool CLSFW_PARSER::StampaGestionaleBloccata(const Variant& v_codice_stampa) {
  bool blocked = false;
  frame_.Trap("StampaGestionaleBloccata", [&] {
    if (RevocationFrame::IsBlank(v_codice_stampa)) return;
    if (RevocationFrame::IsPrivileged(frame_.ctx.CodiceUtente)) return;
    Connect(frame_);
    std::string sql = "SELECT FW57_CODICE ";
    sql += " FROM FW57_STPLIBERE ";
    sql += " WHERE ";
    sql += RvkStpLibere();
    blocked = RowFound(frame_, sql);
  });
  return blocked;
}

bool CLSFW_PARSER::DSExportDatiGestBloccata(const Variant& v_codice_ds) {
  bool blocked = false;
  frame_.Trap("DSExportDatiGestBloccata", [&] {
    if (RevocationFrame::IsBlank(v_codice_ds)) return;
    if (RevocationFrame::IsPrivileged(frame_.ctx.CodiceUtente)) return;
    Connect(frame_);
    std::string sql = "SELECT FW34_CODICEDS ";
    sql += " FROM FW34_VISSOURCE ";
    sql += " WHERE ";
    sql += RvkVisSource("FW34_CODICEDS");
    blocked = RowFound(frame_, sql);
  });
  return blocked;
}

bool CLSFW_PARSER::ConfigOfficeBloccata(const Variant& v_codice_config) {
  bool blocked = false;
  frame_.Trap("ConfigOfficeBloccata", [&] {
    if (RevocationFrame::IsBlank(v_codice_config)) return;
    if (RevocationFrame::IsPrivileged(frame_.ctx.CodiceUtente)) return;
    Connect(frame_);
    std::string sql = "select  FW36_CODICEMATR  ";
    sql += " from FW36_VISMATRICI ";
    sql += " WHERE ";
    sql += RvkVisMatrici();
    blocked = RowFound(frame_, sql);
  });
  return blocked;
}

bool CLSFW_PARSER::StatoRigaOrdineBloccato(int16_t v_codice_stato_riga_ordine) {
  bool blocked = false;
  frame_.Trap("StatoRigaOrdineBloccato", [&] {
    // A number is never blank.
    if (RevocationFrame::IsPrivileged(frame_.ctx.CodiceUtente)) return;
    Connect(frame_);
    std::string sql = "SELECT FW31_FLGABILITATO FROM VFW31_RVKPARAMETRI ";
    sql += " WHERE FW31_INDTIPO = 10 ";
    sql += " AND FW31_CODTIPO = " + sql::Quoted(sql::Number(v_codice_stato_riga_ordine)) + " ";
    sql += " AND FW31_ID_FW07 = " + sql::Number(frame_.UserId()) + " ";
    sql += " AND FW31_FLGABILITATO = 0";
    blocked = RowFound(frame_, sql);
  });
  return blocked;
}

bool CLSFW_PARSER::CodiceSimulazioneBloccato(std::string& codice_sim) {
  bool blocked = false;
  frame_.Trap("CodiceSimulazioneBloccato", [&] {
    // No blank test: a blank code matches no row.
    if (RevocationFrame::IsPrivileged(frame_.ctx.CodiceUtente)) return;
    Connect(frame_);
    std::string sql = "SELECT FW31_FLGABILITATO FROM VFW31_RVKPARAMETRI ";
    sql += " WHERE FW31_INDTIPO = 15 ";
    sql += " AND FW31_CODTIPO = " + sql::Quoted(codice_sim) + " ";
    sql += " AND FW31_DITTARAGG = " + sql::Unquoted(frame_.ctx.DittaCorrente);
    sql += " AND FW31_ID_FW07 = " + sql::Number(frame_.UserId()) + " ";
    sql += " AND FW31_FLGABILITATO = 0";
    blocked = RowFound(frame_, sql);
  });
  return blocked;
}

bool CLSFW_PARSER::DepositoBloccato(const std::string& codice_dep) {
  bool blocked = false;
  frame_.Trap("DepositoBloccato", [&] {
    if (RevocationFrame::IsBlank(codice_dep)) return;
    if (RevocationFrame::IsPrivileged(frame_.ctx.CodiceUtenteCLIFOR)) return;
    Connect(frame_);
    std::string sql = "SELECT TOP 1 * FROM VFW31_RVKPARAMETRI ";
    sql += " WHERE FW31_ID_FW07 = " + sql::Number(frame_.UserId()) + " ";
    sql += " AND FW31_INDTIPO = 6 ";
    sql += " AND FW31_FLGABILITATO = 0 ";
    sql += " AND FW31_DITTARAGG = " + sql::Unquoted(frame_.ctx.DittaCorrente);
    sql += " AND FW31_CODTIPO = " + sql::Quoted(codice_dep);
    // Decided on RecordCount: -1 on a server-side cursor, hence False.
    std::shared_ptr<db::Recordset> rows = frame_.Execute(sql, db::kCmdUnspecified);
    blocked = rows->RecordCount() > 0;
  });
  return blocked;
}

bool CLSFW_PARSER::FunzioneApplicativaRevocata(int32_t id_funzione) {
  bool revoked = false;
  frame_.Trap("FunzioneApplicativaRevocata", [&] {
    if (RevocationFrame::IsPrivileged(frame_.ctx.CodiceUtente)) return;
    Connect(frame_);
    const std::string user_id = sql::Number(frame_.UserId());
    const std::string function = sql::Number(id_funzione);
    std::string sql;
    if (frame_.FlgGrpRevoke() != 1) {
      // Revocations held per user.
      sql += "SELECT TOP 1 1 FROM FW3G_RVKFUNZIONI ";
      sql += " WHERE FW3G_CODICE_FW3F = " + function;
      sql += " AND FW3G_ID_FW07 = " + user_id + " ";
      sql += " AND FW3G_FLGABILITATO = 0";
    } else {
      // Revocations held per group (also a user not found): a group without
      // a row counts as enabled and the most permissive group wins.
      sql += "          SELECT  *    ";
      sql += " FROM    (           ";
      sql += "         SELECT  FW00_ID_FW07, ISNULL(FW3G_CODICE_FW3F, " + function +
             ") AS FW3G_CODICE_FW3F, MAX(ISNULL(FW3G_FLGABILITATO, 1)) AS FW3G_FLGABILITATO"
             "         ";
      sql += "         FROM    FW00_GRPUSRASSOC             ";
      sql += "                 LEFT JOIN FW3G_RVKFUNZIONI ";
      sql +=
          "                     ON FW00_ID_FW06 = FW3G_ID_FW06 AND FW3G_CODICE_FW3F = " + function;
      sql += "         WHERE   FW00_ID_FW07 = " + user_id;
      sql += "         GROUP BY FW00_ID_FW07, ISNULL(FW3G_CODICE_FW3F, " + function + ")         ";
      sql += "         ) TT   ";
      sql += " WHERE   TT.FW3G_FLGABILITATO = 0  ";
    }
    revoked = RowFound(frame_, sql);
  });
  return revoked;
}

}  // namespace zarvik
