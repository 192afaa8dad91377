// ContoPDCBloccato: the rights of the user on one chart-of-accounts account,
// asked of the database's stored procedure SPFW_GetInfoRevokeContoPDC.
#include <string>
#include <utility>

#include "db/backend.h"
#include "db/command.h"
#include "parser/clsfw_parser.h"

namespace zarvik {
namespace {

constexpr const char* kProcedure = "SPFW_GetInfoRevokeContoPDC";

// The procedure's parameters in its declared order, for a provider that
// cannot describe them (the call escape binds them by position).
void DeclareParameters(db::Command& command) {
  using db::ParameterDirection;
  namespace adtype = db::adtype;
  command.AppendParameter({"@IdUtente", adtype::kInteger, ParameterDirection::kInput, Variant()});
  command.AppendParameter({"@GruppoPDC", adtype::kSmallInt, ParameterDirection::kInput, Variant()});
  command.AppendParameter({"@ContoPDC", adtype::kVarChar, ParameterDirection::kInput, Variant()});
  command.AppendParameter(
      {"@canAbilitato", adtype::kInteger, ParameterDirection::kOutput, Variant()});
  command.AppendParameter(
      {"@canVisualizza", adtype::kInteger, ParameterDirection::kOutput, Variant()});
}

// The first parameter by name. The provider describes the procedure when
// the collection is first used; only when it describes nothing are the
// parameters declared here. A name missing from a described collection is
// error 3265, as ADO raises it: declaring all five next to the described
// ones would give two parameters of one name.
db::Parameter& FirstParameter(db::Command& command, const std::string& name) {
  if (command.ParameterCount() == 0) DeclareParameters(command);
  return command.Parameters(name);
}

}  // namespace

bool CLSFW_PARSER::ContoPDCBloccato(int16_t gruppo_pdc, const std::string& conto_pdc,
                                    int16_t& can_abilitato, int16_t& can_visualizza) {
  bool blocked = false;
  frame_.Trap("ContoPDCBloccato", [&] {
    // A number is never blank; a blank account leaves both flags unchanged.
    if (RevocationFrame::IsBlank(conto_pdc)) return;
    if (RevocationFrame::IsPrivileged(frame_.ctx.CodiceUtente) || frame_.ctx.RevokeDisabilitata) {
      can_abilitato = 1;
      can_visualizza = 1;
      return;
    }
    frame_.OpenConnection();
    if (frame_.UserId() == 0) frame_.ResolveUser();

    db::Command command;
    command.SetCommandType(static_cast<int>(db::kCmdStoredProc));
    command.SetCommandText(kProcedure);
    command.SetActiveConnection(frame_.ctx.ConnectionADO);
    FirstParameter(command, "@GruppoPDC").SetValue(Variant(gruppo_pdc));
    command.Parameters("@ContoPDC").SetValue(Variant(conto_pdc));
    command.Parameters("@IdUtente").SetValue(Variant(frame_.UserId()));
    command.Execute(db::kCmdUnspecified);

    // Written one after the other: a failure on the second keeps the first.
    can_abilitato = command.Parameters("@canAbilitato").Value().ToInteger();
    can_visualizza = command.Parameters("@canVisualizza").Value().ToInteger();
    blocked = can_abilitato == 0;
  });
  return blocked;
}

}  // namespace zarvik
