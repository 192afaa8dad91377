// The user context every revocation class carries: the connection, the
// application user, the group, the company and the agent the host works as.
//
// The host fills these fields one by one (as automation properties) or lets
// the host binding (RevocationFrame::SetActiveInterface) pull most of them
// from its application object. Every later query reads them from here.
#ifndef ZARVIK_FRAME_USER_CONTEXT_H_
#define ZARVIK_FRAME_USER_CONTEXT_H_

#include <memory>
#include <string>

#include "db/connection.h"
#include "platform/variant.h"

namespace zarvik {

struct UserContext {
  // The database connection: handed in by the host, taken from its
  // application object, or opened by OpenConnection from the string below.
  std::shared_ptr<db::Connection> ConnectionADO;
  // Used to open ConnectionADO when the host gave no connection.
  std::string ConnectionStringADO;
  // True switches every revocation off: methods give their neutral answer.
  bool RevokeDisabilitata = false;
  // Group code of the user (FW07_APPUSER.FW07_CODICE_FW06).
  std::string CodiceGruppo;
  // Application user code (FW07_APPUSER.FW07_CODICE).
  std::string CodiceUtente;
  // User code for customer/supplier revocations; the guard keeps it equal
  // to CodiceUtente (this one wins when both are set).
  std::string CodiceUtenteCLIFOR;
  // Company of the agent.
  Variant DittaAgente;
  // Current company code, pasted into SQL in its text form, unquoted.
  Variant DittaCorrente;
  // Id of the agent the user acts as; blank is normalised to the number 0.
  Variant IdAgente;
  // Code (or, in the query filter, the id) of the agent.
  Variant CodiceAgente;
};

}  // namespace zarvik

#endif  // ZARVIK_FRAME_USER_CONTEXT_H_
