// Automation description of CLSFW_RVKUSERS and its enum EnumRevokeStatus.
#include <memory>

#include "automation/class_builder.h"
#include "automation/type_library.h"
#include "rvkusers/clsfw_rvkusers.h"

namespace zarvik::automation {
namespace {

using RvkUsers = CLSFW_RVKUSERS;

// LoginRvk, TerminateConnection.
void DescribeLoginMembers(ClassBuilder<RvkUsers>& b) {
  b.Method(
       "LoginRvk",
       {ByRef("Risultato", types::Integer()), ByRef("WinUser", types::String()),
        ByRef("Gruppo", types::String()).Optional(), ByRef("Utente", types::String()).Optional()},
       types::Void(), &RvkUsers::LoginRvk,
       "logs a login attempt and locks the user after MaxNumTry failures")
      .Method("TerminateConnection", {}, types::Void(), &RvkUsers::TerminateConnection,
              "closes a connection the object opened itself and releases ConnectionADO");
}

}  // namespace

void DescribeRvkUsers(TypeLibrary& library) {
  library.enums.push_back(
      {"EnumRevokeStatus",
       {{"NoRevoke", NoRevoke}, {"RevokeVantor", RevokeVantor}, {"RevokeWindows", RevokeWindows}}});
  auto cls = std::make_shared<ClassDescription>();
  ClassBuilder<RvkUsers> b(*cls, "CLSFW_RVKUSERS", "login attempts and lock-out");
  b.Get("ConnectionADO", types::Connection(), &RvkUsers::ConnectionADO, "the database connection")
      .SetRef("ConnectionADO", types::Connection(), &RvkUsers::SetConnectionADO)
      .Get("ConnectionStringADO", types::String(), &RvkUsers::ConnectionStringADO,
           "connection string used when no connection is given")
      .Let("ConnectionStringADO", types::String(), &RvkUsers::SetConnectionStringADO)
      .Get("MaxNumTry", types::Integer(), &RvkUsers::MaxNumTry,
           "failed attempts at which the user is revoked")
      .Let("MaxNumTry", types::Integer(), &RvkUsers::SetMaxNumTry)
      .Get("IsRevoked", types::Enum("EnumRevokeStatus"), &RvkUsers::IsRevoked,
           "outcome of the latest LoginRvk");
  DescribeLoginMembers(b);
  library.classes.push_back(std::move(cls));
}

}  // namespace zarvik::automation
