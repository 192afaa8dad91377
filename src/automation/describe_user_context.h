// The automation members of the user context, shared by the description of
// every class built on RevocationFrame (CLSFW_PARSER, CLSFW_FILTROQUERY).
#ifndef ZARVIK_AUTOMATION_DESCRIBE_USER_CONTEXT_H_
#define ZARVIK_AUTOMATION_DESCRIBE_USER_CONTEXT_H_

#include "automation/class_builder.h"
#include "automation/type_library.h"

namespace zarvik::automation {

template <class T>
void DescribeUserContext(ClassBuilder<T>& b) {
  b.HoldsReferences();
  b.Get("ConnectionADO", types::Connection(), &T::ConnectionADO, "the database connection")
      .SetRef("ConnectionADO", types::Connection(), &T::SetConnectionADO)
      .Get("ConnectionStringADO", types::String(), &T::ConnectionStringADO,
           "connection string used when no connection is given")
      .Let("ConnectionStringADO", types::String(), &T::SetConnectionStringADO)
      .Get("RevokeDisabilitata", types::Boolean(), &T::RevokeDisabilitata,
           "True switches every revocation off")
      .Let("RevokeDisabilitata", types::Boolean(), &T::SetRevokeDisabilitata)
      .Get("CodiceGruppo", types::String(), &T::CodiceGruppo, "group code of the user")
      .Let("CodiceGruppo", types::String(), &T::SetCodiceGruppo)
      .Get("CodiceUtente", types::String(), &T::CodiceUtente, "application user code")
      .Let("CodiceUtente", types::String(), &T::SetCodiceUtente)
      .Get("CodiceUtenteCLIFOR", types::String(), &T::CodiceUtenteCLIFOR,
           "user code for customer/supplier revocations")
      .Let("CodiceUtenteCLIFOR", types::String(), &T::SetCodiceUtenteCLIFOR)
      .Get("DittaAgente", types::Variant(), &T::DittaAgente, "company of the agent")
      .Let("DittaAgente", types::Variant(), &T::SetDittaAgente)
      .SetRef("DittaAgente", types::Variant(), &T::SetDittaAgente)
      .Get("DittaCorrente", types::Variant(), &T::DittaCorrente, "current company code")
      .Let("DittaCorrente", types::Variant(), &T::SetDittaCorrente)
      .SetRef("DittaCorrente", types::Variant(), &T::SetDittaCorrente)
      .Get("IdAgente", types::Variant(), &T::IdAgente, "id of the agent the user acts as")
      .Let("IdAgente", types::Variant(), &T::SetIdAgente)
      .SetRef("IdAgente", types::Variant(), &T::SetIdAgente)
      .Get("CodiceAgente", types::Variant(), &T::CodiceAgente, "code of the agent")
      .Let("CodiceAgente", types::Variant(), &T::SetCodiceAgente)
      .SetRef("CodiceAgente", types::Variant(), &T::SetCodiceAgente)
      .Get("ActiveInterface", types::Object(), &T::ActiveInterface,
           "the host's application object; setting it pulls the user context")
      .SetRef("ActiveInterface", types::Object(), &T::SetActiveInterface)
      .Let("IdUser", types::Long(), &T::SetIdUser, "id of the application user (write only)");
}

}  // namespace zarvik::automation

#endif  // ZARVIK_AUTOMATION_DESCRIBE_USER_CONTEXT_H_
