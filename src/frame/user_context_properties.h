// The user-context properties of a class built on RevocationFrame, written
// once for CLSFW_PARSER and CLSFW_FILTROQUERY.
//
// A class derives from UserContextProperties, which owns its RevocationFrame
// (frame_, open to the class) and publishes the context fields as automation
// properties: a getter named as the property and a Set* setter for its Let
// (or Set, for object references). The automation description binds these
// members by name (src/automation/describe_user_context.h).
#ifndef ZARVIK_FRAME_USER_CONTEXT_PROPERTIES_H_
#define ZARVIK_FRAME_USER_CONTEXT_PROPERTIES_H_

#include <cstdint>
#include <functional>
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

class UserContextProperties {
 public:
  UserContextProperties(const UserContextProperties&) = delete;
  UserContextProperties& operator=(const UserContextProperties&) = delete;

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
  // The agent's code in the parser; its identifier (MG17_IDAGENTE) in the
  // query filter.
  Variant CodiceAgente() const { return frame_.ctx.CodiceAgente; }
  void SetCodiceAgente(const Variant& value) { frame_.ctx.CodiceAgente = value; }
  // Setting the host's application object pulls the context from it.
  ObjectRef ActiveInterface() const { return frame_.ActiveInterface(); }
  void SetActiveInterface(ObjectRef value) { frame_.SetActiveInterface(std::move(value)); }
  // Write-only: the application user id (normally resolved by the object).
  void SetIdUser(int32_t value) { frame_.SetIdUser(value); }

  // --- Cycles of references (see Object::ForEachReference) -------------------
  void ForEachReference(const std::function<void(const ObjectRef&)>& visit) const {
    frame_.ForEachReference(visit);
  }
  void ReleaseReferences() { frame_.ReleaseReferences(); }

  // --- Not part of the automation interface ---------------------------------
  // Statements on a connection this object opens itself are recorded here.
  void SetStatementLog(std::shared_ptr<db::StatementLog> log) {
    frame_.SetStatementLog(std::move(log));
  }
  // The frame itself (user id, group flag, OpenConnection, ...), for tests
  // and for code that composes the class.
  RevocationFrame& Frame() { return frame_; }
  const RevocationFrame& Frame() const { return frame_; }

 protected:
  UserContextProperties(FrameSettings settings, Env env)
      : frame_(std::move(settings), std::move(env)) {}
  // Not deleted through this base; the owning class runs termination.
  ~UserContextProperties() = default;

  RevocationFrame frame_;
};

}  // namespace zarvik

#endif  // ZARVIK_FRAME_USER_CONTEXT_PROPERTIES_H_
