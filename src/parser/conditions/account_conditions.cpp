// Chart-of-accounts conditions of CLSFW_PARSER (kind 26): the accounts a
// user may see, the accounts blocked for him, and a join that keeps only the
// blocked ones. The account group is stored in FW31_DITTARAGG for this kind.
// These honour RevokeDisabilitata and compare CodiceUtente.
#include <cstdint>
#include <string>

#include "frame/sql_text.h"
#include "parser/clsfw_parser.h"
#include "parser/conditions/condition_text.h"

namespace zarvik {
namespace {

constexpr const char* kCrLf = "\r\n";

// [NOT] EXISTS a revocation of the account. With escludi_non_visualizzabili
// an account that may not be changed counts as revoked as well.
std::string AccountCondition(bool negated, int32_t user_id, const std::string& nome_campo_gruppo,
                             const std::string& nome_campo_conto, bool escludi_non_visualizzabili) {
  std::string text;
  if (negated) text += " NOT ";
  text += " EXISTS (SELECT TOP 1 1 ";
  text += "         FROM VFW31_RVKPARAMETRI WITH (NOLOCK)";
  text += "         WHERE FW31_ID_FW07 = " + sql::Number(user_id);
  text += "               AND FW31_INDTIPO = 26  ";
  text += "               AND (FW31_FLGABILITATO = 0 ";
  if (escludi_non_visualizzabili) text += "                OR FW31_FLGMODIFICA = 0";
  text += "                    ) ";
  text += "               AND FW31_DITTARAGG = " + sql::Column(nome_campo_gruppo);
  text += "               AND FW31_CODTIPO = " + sql::Column(nome_campo_conto) + ") ";
  return text;
}

}  // namespace

std::string CLSFW_PARSER::SQLConditionContiPDC(const std::string& nome_campo_gruppo_pdc,
                                               const std::string& nome_campo_conto_pdc,
                                               bool inserire_and, bool escludi_non_visualizzabili) {
  std::string result;
  frame_.Trap("SQLConditionContiPDC", [&] {
    if (RevocationFrame::IsPrivileged(frame_.ctx.CodiceUtente)) return;
    if (frame_.ctx.RevokeDisabilitata) return;
    ConnectForCondition();
    result = conditions::WithAnd(AccountCondition(true, frame_.UserId(), nome_campo_gruppo_pdc,
                                                  nome_campo_conto_pdc, escludi_non_visualizzabili),
                                 inserire_and);
  });
  return result;
}

std::string CLSFW_PARSER::SQLConditionContiPDCBloccati(const std::string& nome_campo_gruppo_pdc,
                                                       const std::string& nome_campo_conto_pdc,
                                                       bool inserire_and,
                                                       bool escludi_non_visualizzabili) {
  std::string result;
  frame_.Trap("SQLConditionContiPDCBloccati", [&] {
    // Nothing is blocked: a condition that selects no account.
    if (RevocationFrame::IsPrivileged(frame_.ctx.CodiceUtente) || frame_.ctx.RevokeDisabilitata) {
      result = inserire_and ? " AND 1=0 " : " 1=0 ";
      return;
    }
    ConnectForCondition();
    result = conditions::WithAnd(AccountCondition(false, frame_.UserId(), nome_campo_gruppo_pdc,
                                                  nome_campo_conto_pdc, escludi_non_visualizzabili),
                                 inserire_and);
  });
  return result;
}

std::string CLSFW_PARSER::SQLinnerjoinContiPDCBloccati(const std::string& nome_campo_gruppo_pdc,
                                                       const std::string& nome_campo_conto_pdc,
                                                       bool escludi_non_visualizzabili) {
  std::string result;
  frame_.Trap("SQLinnerjoinContiPDCBloccati", [&] {
    // Nothing is blocked: a join that matches no row.
    if (RevocationFrame::IsPrivileged(frame_.ctx.CodiceUtente) || frame_.ctx.RevokeDisabilitata) {
      result = " INNER JOIN VFW31_RVKPARAMETRI WITH (NOLOCK) ON 1 = 0 ";
      return;
    }
    ConnectForCondition();
    std::string text;
    text += "     INNER JOIN VFW31_RVKPARAMETRI WITH (NOLOCK)";
    text += kCrLf;
    text +=
        "         ON CONVERT(DECIMAL(2,0), FW31_DITTARAGG) = " + sql::Column(nome_campo_gruppo_pdc);
    text += kCrLf;
    text += "         AND CONVERT(CHAR(10), FW31_CODTIPO) = " + sql::Column(nome_campo_conto_pdc);
    text += kCrLf;
    text += "         AND FW31_INDTIPO = 26";
    text += kCrLf;
    text += "         AND FW31_ID_FW07 = " + sql::Number(frame_.UserId());
    text += kCrLf;
    text += "     AND (FW31_FLGABILITATO = 0";
    text += kCrLf;
    if (escludi_non_visualizzabili) text += "    OR FW31_FLGMODIFICA = 0";
    text += "                    ) ";
    result = text;
  });
  return result;
}

}  // namespace zarvik
