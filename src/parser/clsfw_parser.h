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

  // --- Private operations of the block checks and rights records ------------
};

}  // namespace zarvik

#endif  // ZARVIK_PARSER_CLSFW_PARSER_H_
