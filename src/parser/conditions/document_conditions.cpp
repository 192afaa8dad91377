// Document conditions of CLSFW_PARSER: document types (kind 7), documents of
// the user's agent, and the combined condition on document headers (DO11).
#include <string>

#include "frame/sql_text.h"
#include "parser/clsfw_parser.h"
#include "parser/conditions/condition_text.h"

namespace zarvik {
namespace {

// A document type is hidden when, in the current company, its print-status
// grouping (MG3G_INDSTAPER_MG36) carries a revocation of the type.
std::string DocumentTypeCondition(const std::string& nome_campo, int32_t user_id,
                                  const Variant& company) {
  std::string text;
  text += " NOT EXISTS (SELECT MG3G_CODDOCUM_MG36 ";
  text += "         FROM MG3G_DOCDITTA WITH (NOLOCK) ";
  text += "         INNER JOIN VFW31_RVKPARAMETRI WITH (NOLOCK) ON ";
  text += "                 FW31_ID_FW07 = " + sql::Number(user_id) + " AND ";
  text += "                 FW31_INDTIPO = 7  AND ";
  text += "                 FW31_FLGABILITATO = 0 AND  ";
  text += "                 FW31_DITTARAGG = MG3G_INDSTAPER_MG36 AND ";
  text += "                 FW31_CODTIPO = MG3G_CODDOCUM_MG36 ";
  text += "         WHERE MG3G_DITTA_CG18 = " + sql::Unquoted(company) + " AND ";
  text += "             MG3G_CODDOCUM_MG36 = " + sql::Column(nome_campo) + ") ";
  return text;
}

}  // namespace

std::string CLSFW_PARSER::AgentRule() const {
  if (RevocationFrame::IsBlank(frame_.ctx.CodiceAgente)) return "";
  // The agents table's condition in a rewritten statement ends with a blank
  // after the closing quote, like the other table conditions it is joined to.
  return " MG17_IDAGENTE = '" + sql::Unquoted(frame_.ctx.CodiceAgente) + "' ";
}

std::string CLSFW_PARSER::SQLConditionDocMG36(const std::string& nome_campo, bool inserire_and) {
  std::string result;
  frame_.Trap("SQLConditionDocMG36", [&] {
    if (RevocationFrame::IsPrivileged(frame_.ctx.CodiceUtenteCLIFOR)) return;
    ConnectForCondition();
    result = conditions::WithAnd(
        DocumentTypeCondition(nome_campo, frame_.UserId(), frame_.ctx.DittaCorrente), inserire_and);
  });
  return result;
}

std::string CLSFW_PARSER::SQLConditionAgentiDoc(const std::string& nome_campo_ditta,
                                                const std::string& nome_campo_num_reg,
                                                bool inserire_and) {
  // Needs neither the connection nor the user id: only the agent code.
  std::string result;
  frame_.Trap("SQLConditionAgentiDoc", [&] {
    if (RevocationFrame::IsPrivileged(frame_.ctx.CodiceUtenteCLIFOR)) return;
    if (RevocationFrame::IsBlank(frame_.ctx.CodiceAgente)) return;
    std::string text;
    text += " EXISTS (SELECT 1 FROM DO29_DOCTESAGENTI WITH (NOLOCK) WHERE DO29_DITTA_CG18 = " +
            sql::Column(nome_campo_ditta);
    text += " AND DO29_NUMREG_CO99 = " + sql::Column(nome_campo_num_reg);
    text += " AND DO29_IDAGENTE_MG17 = '" + sql::Unquoted(frame_.ctx.CodiceAgente) + "')";
    result = conditions::WithAnd(text, inserire_and);
  });
  return result;
}

std::string CLSFW_PARSER::SQLConditionDO11(bool inserire_and) {
  // The pieces are appended to the result one by one, so that a failing
  // list query leaves the pieces already built in the answer.
  std::string result;
  frame_.Trap("SQLConditionDO11", [&] {
    if (RevocationFrame::IsPrivileged(frame_.ctx.CodiceUtenteCLIFOR)) return;
    ConnectForCondition();
    // Only the first piece follows the caller's inserire_and; every later
    // piece brings its own " AND ".
    result += conditions::WithAnd(
        DocumentTypeCondition("DO11_DOCUM_MG36", frame_.UserId(), frame_.ctx.DittaCorrente),
        inserire_and);
    result += SQLConditionCliFor("DO11", true);
    result += OfficeListCondition("DO11_CODSEDE_CG31", true, true);
    result += WarehouseListCondition("DO11_CODDEP", true, true);
    result += SQLConditionAgentiDoc("DO11_DITTA_CG18", "DO11_NUMREG_CO99", true);
  });
  return result;
}

}  // namespace zarvik
