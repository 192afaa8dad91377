// CLSFW_PARSER: the revocation parser the host asks for rewritten statements,
// SQL predicates, block checks and rights records.
//
// The class is a RevocationFrame (user context, host binding, connection,
// user resolution, guard, reporter) plus the public methods. The methods live
// in separate files by subsystem:
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
#include "frame/revocation_frame.h"
#include "platform/env.h"
#include "platform/object.h"
#include "platform/variant.h"

namespace zarvik {

// NOLINTNEXTLINE(readability-identifier-naming): the automation class name
class CLSFW_PARSER {
 public:
  explicit CLSFW_PARSER(Env env = DefaultEnv());
  // Termination: closes only a connection this object opened itself.
  ~CLSFW_PARSER();
  CLSFW_PARSER(const CLSFW_PARSER&) = delete;
  CLSFW_PARSER& operator=(const CLSFW_PARSER&) = delete;

  // --- User context (automation properties) -------------------------------
  std::shared_ptr<db::Connection> ConnectionADO() const { return frame_.ctx.ConnectionADO; }
  void SetConnectionADO(std::shared_ptr<db::Connection> value) {
    frame_.ctx.ConnectionADO = std::move(value);
  }
  std::string ConnectionStringADO() const { return frame_.ctx.ConnectionStringADO; }
  void SetConnectionStringADO(const std::string& value) { frame_.ctx.ConnectionStringADO = value; }
  bool RevokeDisabilitata() const { return frame_.ctx.RevokeDisabilitata; }
  void SetRevokeDisabilitata(bool value) { frame_.ctx.RevokeDisabilitata = value; }
  std::string CodiceGruppo() const { return frame_.ctx.CodiceGruppo; }
  void SetCodiceGruppo(const std::string& value) { frame_.ctx.CodiceGruppo = value; }
  std::string CodiceUtente() const { return frame_.ctx.CodiceUtente; }
  void SetCodiceUtente(const std::string& value) { frame_.ctx.CodiceUtente = value; }
  std::string CodiceUtenteCLIFOR() const { return frame_.ctx.CodiceUtenteCLIFOR; }
  void SetCodiceUtenteCLIFOR(const std::string& value) { frame_.ctx.CodiceUtenteCLIFOR = value; }
  // Variant properties: Let and Set both store the value (Set an object).
  Variant DittaAgente() const { return frame_.ctx.DittaAgente; }
  void SetDittaAgente(const Variant& value) { frame_.ctx.DittaAgente = value; }
  Variant DittaCorrente() const { return frame_.ctx.DittaCorrente; }
  void SetDittaCorrente(const Variant& value) { frame_.ctx.DittaCorrente = value; }
  Variant IdAgente() const { return frame_.ctx.IdAgente; }
  void SetIdAgente(const Variant& value) { frame_.ctx.IdAgente = value; }
  Variant CodiceAgente() const { return frame_.ctx.CodiceAgente; }
  void SetCodiceAgente(const Variant& value) { frame_.ctx.CodiceAgente = value; }
  // Setting the host's application object pulls the context from it.
  ObjectRef ActiveInterface() const { return frame_.ActiveInterface(); }
  void SetActiveInterface(ObjectRef value) { frame_.SetActiveInterface(std::move(value)); }
  // Write-only: the application user id (normally resolved by the object).
  void SetIdUser(int32_t value) { frame_.SetIdUser(value); }

  // --- Not part of the automation interface ---------------------------------
  // Statements on a connection this object opens itself are recorded here.
  void SetStatementLog(std::shared_ptr<db::StatementLog> log) {
    frame_.SetStatementLog(std::move(log));
  }
  // The frame itself (user id, group flag, OpenConnection, ...), for tests
  // and for code that composes the class.
  RevocationFrame& Frame() { return frame_; }
  const RevocationFrame& Frame() const { return frame_; }

  // --- Statement rewriter (src/parser/rewriter/) ----------------------------

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

  // --- Block checks and rights records (src/parser/checks/) -----------------

 private:
  RevocationFrame frame_;

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

  // --- Private operations of the condition builders -------------------------
  // Tests of the condition builders set the scanner state (CurrentAlias,
  // FromRewriter) that the customer/supplier condition reads.
  friend class ConditionScannerStateForTest;
  // The agent rule of the statement rewriter: " MG17_IDAGENTE = '" +
  // CodiceAgente + "'", or "" when CodiceAgente is blank. Runs no query.
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
