// Block checks of CLSFW_PARSER for the production module: revision states
// of bills of materials and work cycles, the choice of a revised or manual
// bill of materials on a document type, and activities on production
// documents. Their statements are written as the production module writes
// its own: pieces joined without separators, the blanks inside keeping the
// words apart.
#include <memory>
#include <optional>
#include <string>

#include "db/recordset.h"
#include "frame/sql_text.h"
#include "parser/checks/production_activity.h"
#include "parser/clsfw_parser.h"
#include "platform/vb_string.h"

namespace zarvik {
namespace {

bool RowFound(RevocationFrame& frame, const std::string& sql) {
  std::shared_ptr<db::Recordset> rows = frame.Execute(sql, db::kCmdText);
  return !rows->EOF();
}

// Connects (the answer is not used: a missing connection fails the query),
// resolves the user and starts the production module's flag statement:
// "SELECT", "   FW31_FLGABILITATO ", "FROM", "   VFW31_RVKPARAMETRI WITH (NOLOCK) ".
std::string FlagQueryHead(RevocationFrame& frame) {
  frame.OpenConnection();
  frame.ResolveUser();
  std::string sql;
  sql += "SELECT";
  sql += "   FW31_FLGABILITATO ";
  sql += "FROM";
  sql += "   VFW31_RVKPARAMETRI WITH (NOLOCK) ";
  return sql;
}

// The revision-state check of kind 34 (bills of materials) or 35 (work
// cycles); kind_piece is "   FW31_INDTIPO      = 34 AND" or its 35 twin.
bool RevisionStateBlocked(RevocationFrame& frame, int16_t state, const char* kind_piece) {
  // Only the states 1, 2 and 3 can be enabled; any other is blocked for
  // everyone, the privileged user included.
  if (state < 1 || state > 3) return true;
  const std::string quoted_state = sql::Quoted(sql::Number(state));
  if (RevocationFrame::IsPrivileged(frame.ctx.CodiceUtente)) return false;
  std::string sql = FlagQueryHead(frame);
  sql += "WHERE";
  sql += kind_piece;
  sql += "   FW31_CODTIPO      = " + quoted_state + " AND";
  sql += "   FW31_ID_FW07      = " + sql::Number(frame.UserId()) + " AND";
  sql += "   FW31_FLGABILITATO = 0";
  return RowFound(frame, sql);
}

// The bill-of-materials choice of a document type: kind_piece is
// "       VFW31_RVKPARAMETRI.FW31_INDTIPO      = 36" or its 37 twin.
bool BillChoiceBlocked(RevocationFrame& frame, const std::string& codice_documento,
                       const char* kind_piece) {
  const std::string code = vb::RTrim(codice_documento);
  if (code.empty() || RevocationFrame::IsPrivileged(frame.ctx.CodiceUtente)) return false;
  std::string sql = FlagQueryHead(frame);
  sql += "INNER JOIN";
  sql += "   MG36_DOCUMENTI WITH (NOLOCK) ";
  sql += "ON";
  sql += "   MG36_DOCUMENTI.MG36_CODDOCUM  = VFW31_RVKPARAMETRI.FW31_CODTIPO AND";
  sql += "   MG36_DOCUMENTI.MG36_INDSTAPER = VFW31_RVKPARAMETRI.FW31_DITTARAGG ";
  sql += "INNER JOIN";
  sql += "   MG3G_DOCDITTA WITH (NOLOCK) ";
  sql += "ON";
  sql += "   MG3G_DOCDITTA.MG3G_CODDOCUM_MG36  = MG36_DOCUMENTI.MG36_CODDOCUM AND";
  sql += "   MG3G_DOCDITTA.MG3G_INDSTAPER_MG36 = MG36_DOCUMENTI.MG36_INDSTAPER ";
  sql += "WHERE";
  sql += kind_piece;
  sql += "   AND VFW31_RVKPARAMETRI.FW31_ID_FW07      = " + sql::Number(frame.UserId());
  sql += "   AND VFW31_RVKPARAMETRI.FW31_FLGABILITATO = 0";
  sql += "   AND MG3G_DOCDITTA.MG3G_DITTA_CG18        = " + sql::Unquoted(frame.ctx.DittaCorrente);
  // The one place a code is written with its quotes doubled.
  sql += "   AND MG36_DOCUMENTI.MG36_CODDOCUM         = " + sql::QuotedEscaped(code);
  return RowFound(frame, sql);
}

}  // namespace

bool CLSFW_PARSER::StatoRevisioneDistintaBloccato(int16_t v_cod_stato_rev_disba) {
  bool blocked = false;
  frame_.Trap("StatoRevisioneDistintaBloccato", [&] {
    blocked = RevisionStateBlocked(frame_, v_cod_stato_rev_disba, "   FW31_INDTIPO      = 34 AND");
  });
  return blocked;
}

bool CLSFW_PARSER::StatoRevisioneCicloBloccato(int16_t v_cod_stato_rev_ciclo) {
  bool blocked = false;
  frame_.Trap("StatoRevisioneCicloBloccato", [&] {
    blocked = RevisionStateBlocked(frame_, v_cod_stato_rev_ciclo, "   FW31_INDTIPO      = 35 AND");
  });
  return blocked;
}

bool CLSFW_PARSER::SceltaDistintaRevisionataDocumentoBloccata(
    const std::string& p_codice_documento) {
  bool blocked = false;
  frame_.Trap("SceltaDistintaRevisionataDocumentoBloccata", [&] {
    blocked = BillChoiceBlocked(frame_, p_codice_documento,
                                "       VFW31_RVKPARAMETRI.FW31_INDTIPO      = 36");
  });
  return blocked;
}

bool CLSFW_PARSER::SceltaDistintaManualeDocumentoBloccata(const std::string& p_codice_documento) {
  bool blocked = false;
  frame_.Trap("SceltaDistintaManualeDocumentoBloccata", [&] {
    blocked = BillChoiceBlocked(frame_, p_codice_documento,
                                "       VFW31_RVKPARAMETRI.FW31_INDTIPO      = 37");
  });
  return blocked;
}

bool CLSFW_PARSER::AutorizzaAttivitaSuDocumentoProduzione(int16_t p_tipo_doc,
                                                          int16_t p_sottotipo_doc,
                                                          int16_t p_cod_oper_ext) {
  bool authorised = false;
  frame_.Trap("AutorizzaAttivitaSuDocumentoProduzione", [&] {
    if (p_tipo_doc < 0 || p_sottotipo_doc < 0) return;
    if (RevocationFrame::IsPrivileged(frame_.ctx.CodiceUtente)) {
      authorised = true;
      return;
    }
    const std::optional<int16_t> index =
        checks::ProductionDocumentIndex(p_tipo_doc, p_sottotipo_doc);
    const std::string code = checks::ProductionOperationCode(p_cod_oper_ext, index.value_or(-1));
    if (code.empty() || !index) return;
    std::string sql = FlagQueryHead(frame_);
    sql += "WHERE";
    sql += "       VFW31_RVKPARAMETRI.FW31_INDTIPO      = 38";
    sql += "   AND VFW31_RVKPARAMETRI.FW31_ID_FW07      =   " + sql::Number(frame_.UserId());
    sql += "   AND VFW31_RVKPARAMETRI.FW31_FLGABILITATO =  0";
    sql += "   AND VFW31_RVKPARAMETRI.FW31_DITTARAGG    =   " + sql::Number(*index);
    sql += "   AND VFW31_RVKPARAMETRI.FW31_CODTIPO      =  " + sql::Quoted(code) + " ";
    // Authorised when no row revokes the operation.
    authorised = !RowFound(frame_, sql);
  });
  return authorised;
}

}  // namespace zarvik
