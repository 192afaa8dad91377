// CLSFW_PARSER: the revocation parser the host asks for rewritten statements,
// SQL predicates, block checks and rights records.
//
// The class is a RevocationFrame (user context, host binding, connection,
// user resolution, guard, reporter), with the context properties of
// UserContextProperties, plus the public methods. The methods live in
// separate files by subsystem:
//   src/parser/rewriter/    ElaboraStrSQL and the table condition dispatch
//   src/parser/conditions/  the SQLCondition* family and CliForRevocati
//   src/parser/checks/      the *Bloccato checks and the rights records
// Each subsystem declares its members in its own section below.
#ifndef ZARVIK_PARSER_CLSFW_PARSER_H_
#define ZARVIK_PARSER_CLSFW_PARSER_H_

#include <cstdint>
#include <memory>
#include <string>
#include <utility>

#include "db/connection.h"
#include "db/tracing.h"
#include "frame/user_context_properties.h"
#include "parser/checks/rights_records.h"
#include "parser/rewriter/scan_report.h"
#include "platform/env.h"
#include "platform/object.h"
#include "platform/variant.h"

namespace zarvik {

namespace rewriter {
class StatementText;
}  // namespace rewriter

// NOLINTNEXTLINE(readability-identifier-naming): the automation class name
class CLSFW_PARSER : public UserContextProperties {
 public:
  explicit CLSFW_PARSER(Env env = DefaultEnv());
  // Termination: closes only a connection this object opened itself.
  ~CLSFW_PARSER();
  CLSFW_PARSER(const CLSFW_PARSER&) = delete;
  CLSFW_PARSER& operator=(const CLSFW_PARSER&) = delete;

  // --- Statement rewriter (src/parser/rewriter/) ----------------------------
  // Rewrites a whole SELECT statement so that it returns only the rows the
  // user may see: the condition of every recognised table of the FROM list
  // and of the INNER/RIGHT joins is appended after the host's own WHERE,
  // which is kept in parentheses. n_str_sql is the working buffer: it is cut
  // during the call and does not keep the caller's text; use the result.
  // Never reports: a statement the scanner cannot follow ends the call
  // silently with the result it held.
  std::string ElaboraStrSQL(std::string& n_str_sql);
  // Not part of the automation interface: ElaboraStrSQL that also records
  // what the scanner found (zarvik rewrite --explain).
  std::string ElaboraStrSQLExplained(std::string& n_str_sql, rewriter::ScanReport& report);

  // --- Condition builders (src/parser/conditions/) --------------------------
  // Each returns one predicate the host pastes into its own WHERE clause:
  // "" when nothing is restricted, otherwise the predicate, with " AND " in
  // front when inserire_and is True. Failures are reported with the method's
  // name as tag; the method then returns the text built so far.
  //
  // Customers and suppliers: NOT EXISTS on VFW32_LISTACFREVOCATI. Empty
  // column arguments follow from the table prefix (CG44, DO11 or another).
  // allow_null is accepted for callers and changes nothing.
  std::string SQLConditionCliFor(const std::string& pref_tabella, bool inserire_and,
                                 const std::string& nome_campo_ditta = "",
                                 const std::string& nome_campo_tipo_cf = "",
                                 const std::string& nome_campo_cli_for = "",
                                 bool allow_null = true);
  // Document headers: document type, customer/supplier, office, warehouse
  // and agent conditions in this order.
  std::string SQLConditionDO11(bool inserire_and);
  // Simulation codes (kind 15), compared with the trimmed column.
  std::string SQLConditionCodSimPD90(const std::string& nome_campo, bool inserire_and);
  // The older entry point: SQLConditionCliFor(pref_tabella, inserire_and)
  // with empty columns and allow_null False. Both arguments are by reference.
  std::string CLIFORCondition(std::string& pref_tabella, bool& inserire_and);
  // Destinations visible to the host's current agent (read late-bound from
  // ActiveInterface.ClsGlobal.Gcls_UtenteCorrente.IdAgente).
  std::string SQLConditionDestinazioni(const std::string& nome_campo_destinatario,
                                       const std::string& nome_campo_ditta,
                                       const std::string& nome_campo_tipo_cf,
                                       const std::string& nome_campo_cli_for, bool inserire_and,
                                       const std::string& alias_mg2g = "MG2GRVK");
  // The revoked customers/suppliers as rows of CG44_CLIFOR; nullptr
  // (Nothing) without a connection or on failure.
  std::shared_ptr<db::Recordset> CliForRevocati();
  // Warehouses (kind 6) and offices (kind 4): column NOT IN (revoked list).
  std::string SQLConditionDepositi(const std::string& nome_campo, bool inserire_and,
                                   bool allow_null = true);
  std::string SQLConditionSediMov(const std::string& nome_campo, bool inserire_and,
                                  bool allow_null = true);
  // Document types (kind 7) through MG3G_DOCDITTA of the current company.
  std::string SQLConditionDocMG36(const std::string& nome_campo, bool inserire_and);
  // Documents of the agent CodiceAgente (DO29_DOCTESAGENTI); "" without one.
  std::string SQLConditionAgentiDoc(const std::string& nome_campo_ditta,
                                    const std::string& nome_campo_num_reg, bool inserire_and);
  // NOT EXISTS sub-queries on VFW31_RVKPARAMETRI / VFW3N_RVKNODI.
  std::string SQLConditionContesto(const std::string& nome_campo, bool inserire_and);
  std::string SQLConditionProgetto(const std::string& nome_campo, bool inserire_and);
  std::string SQLConditionNodo(const std::string& nome_campo,
                               const std::string& nome_campo_progetto, bool inserire_and);
  std::string SQLConditionWizAnag(int16_t tipo_wizard, const std::string& nome_campo_modello,
                                  const std::string& nome_campo_ind_sta_per, bool inserire_and);
  std::string SQLConditionTracciatiImport(const std::string& nome_campo_struttura,
                                          const Variant& nome_campo_tracciato, bool inserire_and);
  std::string SQLConditionTracciatiExport(const std::string& nome_campo_struttura,
                                          const std::string& nome_campo_tracciato,
                                          bool inserire_and);
  std::string SQLConditionInsiemi(const std::string& nome_campo, bool inserire_and);
  // Chart-of-accounts accounts (kind 26): visible accounts, blocked accounts
  // (" 1=0 " for the privileged user or a disabled context) and a join that
  // keeps only blocked accounts (matching nothing for the privileged user).
  std::string SQLConditionContiPDC(const std::string& nome_campo_gruppo_pdc,
                                   const std::string& nome_campo_conto_pdc, bool inserire_and,
                                   bool escludi_non_visualizzabili = true);
  std::string SQLConditionContiPDCBloccati(const std::string& nome_campo_gruppo_pdc,
                                           const std::string& nome_campo_conto_pdc,
                                           bool inserire_and,
                                           bool escludi_non_visualizzabili = true);
  std::string SQLinnerjoinContiPDCBloccati(const std::string& nome_campo_gruppo_pdc,
                                           const std::string& nome_campo_conto_pdc,
                                           bool escludi_non_visualizzabili = false);

  // -- Article state, price list, movement type and transfer conditions --
  // Article states (kind 14, all companies): "" when the user has no kind-14
  // row, else MG66_INDSTATO_MG6W IN (the states without a revocation row).
  std::string SQLConditionStatiArticolo(bool inserire_and);
  // Price-list types (kind 32): " AND " (or a single blank) + column +
  // " NOT IN (2, 5)"; "" for a blank column or when nothing is revoked.
  std::string SQLConditionTipiListiniP(const std::string& nome_campo_tipo_list, bool inserire_and);
  // The enabled article states as a (0 To 1, 0 To n - 1) array: row 0 the
  // state, row 1 its description. Empty (not an empty array) when no state
  // is enabled or the row count is unknown (server-side cursor).
  Variant StatiArticoloMagaArray();
  // dbo.FNFW_TRASFREVOCATI for the current company, the user id as it stands
  // and the two warehouses; 0 when the function gives no row. Opens nothing
  // and resolves nothing.
  int16_t TrasferimentoDepositi(std::string& deposito_origine, std::string& deposito_destinazione);
  // Movement types that can be revoked, with ABILITATO (1 = allowed); the
  // statement keeps the host's historical text (no '=' after FW31_ID_FW07),
  // so the database rejects it: the failure is reported with the tag
  // "InitRevokeTipiMov" and the answer is nullptr (Nothing).
  std::shared_ptr<db::Recordset> InitRevokeTipiMovimenti();
  // Movement types (kind 1) and CERVED operations (kind 31, tested on the
  // insert flag for tipo_operazione 0, on the update flag otherwise): NOT
  // EXISTS sub-queries on the caller's code column. Arguments by reference.
  std::string SQLConditionTipiMovimenti(std::string& nome_campo_mov, bool& inserire_and);
  std::string SQLConditionCerved(std::string& nome_campo_mov, bool& inserire_and,
                                 int16_t& tipo_operazione);

  // --- Block checks and rights records (src/parser/checks/) -----------------
  // Each check answers for one entity whether it is blocked (True) for the
  // user; AutorizzaAttivitaSuDocumentoProduzione answers whether the
  // activity is authorised. A blank code, and (unless noted) the privileged
  // user, answer False without a query. These checks neither consult
  // RevokeDisabilitata (only ContoPDCBloccato does) nor harmonise the user
  // codes. Failures are reported with the method's name as tag and the
  // answer is then False.
  //
  // The company given (not DittaCorrente) is excluded for the user; no
  // privileged short cut: ZentAd gets the answer of VFW05_DITTAESCLUSI.
  bool DittaBloccata(const Variant& v_cod_ditta);
  // Obsolete: shows "Metodo 'CliForBloccato' obsoleto, utilizzare
  // 'CliForBloccato_New'" (title "Sviluppo", exclamation) for a non-blank
  // code and answers False; never queries.
  bool CliForBloccato(const Variant& v_codice_cliente);
  // The customer/supplier is in VFW32_LISTACFREVOCATI. Privileged field
  // CodiceUtenteCLIFOR; a blank CodiceUtente is set to CodiceUtenteCLIFOR
  // (a lasting change) before the user is resolved.
  bool CliForBloccato_New(const std::string& v_codice_cliente, int16_t tipo_cf);
  // The document does not pass SQLConditionDO11 (also when it does not
  // exist). Privileged field CodiceUtenteCLIFOR.
  bool DocumentoTestataBloccato(const std::string& num_reg);
  // SPFW_GetInfoRevokeContoPDC: fills can_abilitato and can_visualizza (1 and
  // 1 for ZentAd or a disabled context; unchanged for a blank account);
  // blocked when can_abilitato is 0. Resolves the user only while the id is 0.
  bool ContoPDCBloccato(int16_t gruppo_pdc, const std::string& conto_pdc, int16_t& can_abilitato,
                        int16_t& can_visualizza);
  // A revocation row exists for the project, the node, the goods-blocking
  // model of the current company.
  bool ProgettoBloccato(const Variant& v_codice_progetto);
  bool NodoBloccato(const Variant& v_codice_progetto, const Variant& v_codice_nodo);
  bool ModelloBloccoMerceBloccato(const Variant& v_codice_modello);
  // Deliberately whole-table: the code is only tested for blank; the answer
  // is True when at least one row of the table is NOT revoked for the user,
  // whichever code was given.
  bool StampaGestionaleBloccata(const Variant& v_codice_stampa);
  bool DSExportDatiGestBloccata(const Variant& v_codice_ds);
  bool ConfigOfficeBloccata(const Variant& v_codice_config);
  // Revocation rows of kinds 10 (order-line state) and 15 (simulation code in
  // the current company); codice_sim is not changed.
  bool StatoRigaOrdineBloccato(int16_t v_codice_stato_riga_ordine);
  bool CodiceSimulazioneBloccato(std::string& codice_sim);
  // Warehouse (kind 6) of the current company, decided on RecordCount: a
  // server-side cursor (RecordCount -1) answers False. Privileged field
  // CodiceUtenteCLIFOR.
  bool DepositoBloccato(const std::string& codice_dep);
  // The application function is revoked: per user, or (FW07_FLGGRP = 1 or a
  // user not found) only when every group of the user revokes it.
  bool FunzioneApplicativaRevocata(int32_t id_funzione);
  // Revision states (kinds 34, 35): states other than 1, 2 and 3 are blocked
  // for everyone, the privileged user included, without a query.
  bool StatoRevisioneDistintaBloccato(int16_t v_cod_stato_rev_disba);
  bool StatoRevisioneCicloBloccato(int16_t v_cod_stato_rev_ciclo);
  // The document type may not choose a revised (kind 36) or manual (kind 37)
  // bill of materials in the current company. Trailing blanks are cut and
  // quotes doubled.
  bool SceltaDistintaRevisionataDocumentoBloccata(const std::string& p_codice_documento);
  bool SceltaDistintaManualeDocumentoBloccata(const std::string& p_codice_documento);
  // True (authorised) when no kind-38 row revokes the operation on the
  // production document; False for a negative type or subtype and for a
  // pair or operation without a code; True for the privileged user.
  bool AutorizzaAttivitaSuDocumentoProduzione(int16_t p_tipo_doc, int16_t p_sottotipo_doc,
                                              int16_t p_cod_oper_ext);

  // Rights records. None consults RevokeDisabilitata or tests its arguments
  // for blank; on a failure the record is returned as it stood.
  // Movement classes 0..3 (kind 1) and journal transfers 0..1 (kind 11)
  // revoked for the user (True = revoked).
  tsRvkTipiMov InitRevokeTipiMov();
  tsRvkConsMov InitRevokeTipoTrasPNota();
  // FW3H_RVKARTICOLI of the family in the current company (only 1 allows).
  tsRvkFamiglia InitRevokeFamiglia(const std::string& cod_famiglia);
  // Document type (kind 7) with its personalisation flag as scope; the
  // privileged user gets rvkExists True. Arguments are not changed.
  tsRvkDocumenti PermessiDocTipologie(std::string& codice_doc, int16_t& flag_pers);
  // Bill-of-materials (kind 19) and work-cycle (kind 33) types; for types 30
  // to 39 a '99' row stands for all of them and wins over the type's own.
  tsRvkConfig PermessiTipologieDistintaBase(int16_t tipo_distinta);
  tsRvkConfig PermessiTipologieCicliLavorazione(int16_t tipo_ciclo);
  // The article states with ENABLED (1 = enabled) in MG6W_INDSTATO order;
  // the caller owns the recordset. nullptr (Nothing) on failure.
  std::shared_ptr<db::Recordset> StatiArticoloMaga();

 private:
  // State the statement scanner shares with the table condition dispatch and
  // the customer/supplier condition (reset by the scanner):
  // CurrentAlias: the qualifier ("A." or "") of the table being restricted.
  std::string current_alias_;
  // CliForDone: a customer/supplier condition was emitted for this segment.
  bool clifor_done_ = false;
  // TipoCFHint: -1 when the statement's own WHERE does not fix the
  // customer/supplier kind, 0 for "CG44_TIPOCF = 0", 1 for "CG44_TIPOCF = 1".
  int16_t tipo_cf_hint_ = -1;
  // FromRewriter: True only while the dispatch calls SQLConditionCliFor.
  bool from_rewriter_ = false;

  // --- Private operations of the statement rewriter -------------------------
  // The rewriter's tests reach the dispatch, the builders and the shared
  // state through this class (tests/parser/rewriter/rewriter_probe.h).
  friend class RewriterProbe;
  // ElaboraStrSQL, with the recognised tables recorded in the report only
  // when `record_tables` (the plain call does without them).
  std::string Rewrite(std::string& n_str_sql, rewriter::ScanReport& report, bool record_tables);
  // One rewrite, segment by segment; `result` holds what the caller gets if
  // a run-time error ends the scan.
  void RewriteSegments(rewriter::StatementText& statement, std::string& result,
                       rewriter::ScanReport& report, bool record_tables);
  // The condition for one recognised table: " WHERE " (where_pos 0) or
  // " AND " + the table's text, "" when the table gives none. Reports with
  // the tag "FiltriStrSQL" and then answers "".
  void FiltriStrSQL(const std::string& table_prefix, int16_t& where_pos, bool is_from_list,
                    std::string& condition);
  // The table's text behind the connector (CG44 excluded), "" for none.
  std::string TableText(const std::string& table_prefix);
  // CG44: SQLConditionCliFor under the rewriter mark, qualified as the
  // scanner found the table.
  std::string CliForTableText(bool is_from_list);

  // The builders of the table texts (the user id is the resolved one).
  // Excluded companies: " CG18_DITTA NOT IN (1, 2) ", or "". Reports with
  // the tag "RvkDitte" and then answers "".
  std::string RvkDitte();
  // Branch offices revoked in DittaCorrente: "CG31_CODICE NOT IN (3 , 12 )"
  // (DO11_CODSEDE_CG31 for "DO11", T_CODSEDE_CG31 for another name T), or "".
  std::string Sedi(const std::string& tabella, bool inserire_and);
  // Accounting reasons: the revoked register types and reasons of CG33,
  // qualified with current_alias_, or "". Reports with "CausaliContabili".
  std::string CausaliContabili();
  // " NOT EXISTS(SELECT * " + the VFW31_RVKPARAMETRI test of one kind, with
  // the scope column and the code column of the outer table.
  std::string RvkParametri(int16_t kind, const std::string& scope_column,
                           const std::string& code_column);
  // Warehouses (kind 6) for a code column such as "MG58_CODDEP"; the company
  // column is its first four letters + "_DITTA_CG18".
  std::string RvkDepositi(const std::string& code_column);
  // Projects (PD68, kind 8), project nodes (PD0C/VPD0C, VFW3N_RVKNODI) and
  // goods-blocking models (MG0F, kind 30). negate True (the dispatch) gives
  // " NOT " + " EXISTS(SELECT * ...", False the positive EXISTS form that
  // the block checks use.
  std::string RvkProgetti(bool negate);
  std::string RvkNodi(bool negate);
  std::string RvkBlmParam(bool negate);
  // Export data sources for a code column ("FW34_CODICEDS"), office
  // configurations (FW36) and free reports (FW57): NOT EXISTS forms.
  std::string RvkVisSource(const std::string& code_column);
  std::string RvkVisMatrici();
  std::string RvkStpLibere();
  // Customer/supplier areas and categories (MG07..MG12, one NOT EXISTS per
  // level of the hierarchy) and groupings 1 to 3 (MG31..MG33); "" for any
  // other prefix.
  std::string RvkAreeCategorie(const std::string& table_prefix);

  // --- Private operations of the condition builders -------------------------
  // The agent rule of the statement rewriter: " MG17_IDAGENTE = '" +
  // CodiceAgente + "' ", or "" when CodiceAgente is blank. Runs no query.
  std::string AgentRule() const;
  // OpenConnection (its answer is not used: a missing or closed connection
  // makes the first query fail under the caller's tag), then ResolveUser.
  void ConnectForCondition();
  // The warehouse (kind 6) and office (kind 4) list conditions of the
  // current company, with " AND " when inserire_and and the IS NULL
  // alternative when allow_null; "" when nothing is revoked. Query failures
  // reach the caller's trap.
  std::string WarehouseListCondition(const std::string& nome_campo, bool inserire_and,
                                     bool allow_null);
  std::string OfficeListCondition(const std::string& nome_campo, bool inserire_and,
                                  bool allow_null);

  // --- Private operations of the block checks and rights records ------------
};

}  // namespace zarvik

#endif  // ZARVIK_PARSER_CLSFW_PARSER_H_
