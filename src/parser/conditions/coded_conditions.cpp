// Coded-entity conditions of CLSFW_PARSER that the database evaluates per
// row: a NOT EXISTS sub-query on the revocation parameters (contexts, sets,
// projects, import and export layouts, wizard models, simulation codes) or
// on the revoked project nodes. None of them runs a query of its own.
#include <cstdint>
#include <string>

#include "frame/sql_text.h"
#include "parser/clsfw_parser.h"
#include "parser/conditions/condition_text.h"

namespace zarvik {
namespace {

constexpr const char* kCrLf = "\r\n";

// The sub-query on VFW31_RVKPARAMETRI shared by contexts, sets, projects and
// layouts: kind_piece names the kind (" AND FW31_INDTIPO = n "), scope_piece
// compares FW31_DITTARAGG (" AND FW31_DITTARAGG = " and the scope).
std::string ParameterSubQuery(int32_t user_id, const char* kind_piece,
                              const std::string& scope_piece, const std::string& code) {
  std::string text;
  text += " NOT EXISTS (SELECT TOP 1 1 ";
  text += " FROM VFW31_RVKPARAMETRI ";
  text += " WHERE FW31_ID_FW07 = " + sql::Number(user_id) + " ";
  text += kind_piece;
  text += " AND FW31_FLGABILITATO = 0 ";
  text += scope_piece;
  text += " AND FW31_CODTIPO = " + code + ") ";
  return text;
}

// The kind code of a registry wizard's models: wizards 3, 4 and 5 have
// kinds 16, 17 and 18; any other wizard gets 0, which matches no row.
int32_t WizardKind(int16_t tipo_wizard) {
  switch (tipo_wizard) {
    case 3:
      return 16;
    case 4:
      return 17;
    case 5:
      return 18;
    default:
      return 0;
  }
}

}  // namespace

std::string CLSFW_PARSER::SQLConditionContesto(const std::string& nome_campo, bool inserire_and) {
  std::string result;
  frame_.Trap("SQLConditionContesto", [&] {
    if (RevocationFrame::IsPrivileged(frame_.ctx.CodiceUtenteCLIFOR)) return;
    ConnectForCondition();
    // Contexts hold for every company: scope -1.
    result =
        conditions::WithAnd(ParameterSubQuery(frame_.UserId(), " AND FW31_INDTIPO = 20 ",
                                              " AND FW31_DITTARAGG = -1 ", sql::Column(nome_campo)),
                            inserire_and);
  });
  return result;
}

std::string CLSFW_PARSER::SQLConditionInsiemi(const std::string& nome_campo, bool inserire_and) {
  std::string result;
  frame_.Trap("SQLConditionInsiemi", [&] {
    if (RevocationFrame::IsPrivileged(frame_.ctx.CodiceUtenteCLIFOR)) return;
    ConnectForCondition();
    // Sets hold for every company: scope -1.
    result =
        conditions::WithAnd(ParameterSubQuery(frame_.UserId(), " AND FW31_INDTIPO = 29 ",
                                              " AND FW31_DITTARAGG = -1 ", sql::Column(nome_campo)),
                            inserire_and);
  });
  return result;
}

std::string CLSFW_PARSER::SQLConditionProgetto(const std::string& nome_campo, bool inserire_and) {
  std::string result;
  frame_.Trap("SQLConditionProgetto", [&] {
    if (RevocationFrame::IsPrivileged(frame_.ctx.CodiceUtenteCLIFOR)) return;
    ConnectForCondition();
    // Projects are revoked per company: scope is the current company.
    result = conditions::WithAnd(
        ParameterSubQuery(frame_.UserId(), " AND FW31_INDTIPO = 8 ",
                          " AND FW31_DITTARAGG = " + sql::Unquoted(frame_.ctx.DittaCorrente),
                          sql::Column(nome_campo)),
        inserire_and);
  });
  return result;
}

std::string CLSFW_PARSER::SQLConditionTracciatiImport(const std::string& nome_campo_struttura,
                                                      const Variant& nome_campo_tracciato,
                                                      bool inserire_and) {
  std::string result;
  frame_.Trap("SQLConditionTracciatiImport", [&] {
    if (RevocationFrame::IsPrivileged(frame_.ctx.CodiceUtenteCLIFOR)) return;
    ConnectForCondition();
    // Layouts are scoped by the caller's structure column.
    result = conditions::WithAnd(
        ParameterSubQuery(frame_.UserId(), " AND FW31_INDTIPO = 27 ",
                          " AND FW31_DITTARAGG = " + sql::Column(nome_campo_struttura),
                          sql::Unquoted(nome_campo_tracciato)),
        inserire_and);
  });
  return result;
}

std::string CLSFW_PARSER::SQLConditionTracciatiExport(const std::string& nome_campo_struttura,
                                                      const std::string& nome_campo_tracciato,
                                                      bool inserire_and) {
  std::string result;
  frame_.Trap("SQLConditionTracciatiExport", [&] {
    if (RevocationFrame::IsPrivileged(frame_.ctx.CodiceUtenteCLIFOR)) return;
    ConnectForCondition();
    result = conditions::WithAnd(
        ParameterSubQuery(frame_.UserId(), " AND FW31_INDTIPO = 28 ",
                          " AND FW31_DITTARAGG = " + sql::Column(nome_campo_struttura),
                          sql::Column(nome_campo_tracciato)),
        inserire_and);
  });
  return result;
}

std::string CLSFW_PARSER::SQLConditionWizAnag(int16_t tipo_wizard,
                                              const std::string& nome_campo_modello,
                                              const std::string& nome_campo_ind_sta_per,
                                              bool inserire_and) {
  std::string result;
  frame_.Trap("SQLConditionWizAnag", [&] {
    if (RevocationFrame::IsPrivileged(frame_.ctx.CodiceUtenteCLIFOR)) return;
    ConnectForCondition();
    std::string text;
    text += " NOT EXISTS (SELECT TOP 1 1 ";
    text += "     FROM VFW31_RVKPARAMETRI ";
    text += "     WHERE FW31_ID_FW07 = " + sql::Number(frame_.UserId()) + " ";
    text += "         AND FW31_INDTIPO = " + sql::Number(WizardKind(tipo_wizard));
    text += "         AND FW31_FLGABILITATO = 0 ";
    text += "         AND FW31_DITTARAGG = " + sql::Column(nome_campo_ind_sta_per);
    text += "         AND FW31_CODTIPO = " + sql::Column(nome_campo_modello) + ") ";
    result = conditions::WithAnd(text, inserire_and);
  });
  return result;
}

std::string CLSFW_PARSER::SQLConditionNodo(const std::string& nome_campo,
                                           const std::string& nome_campo_progetto,
                                           bool inserire_and) {
  std::string result;
  frame_.Trap("SQLConditionNodo", [&] {
    if (RevocationFrame::IsPrivileged(frame_.ctx.CodiceUtenteCLIFOR)) return;
    ConnectForCondition();
    std::string text;
    text += " NOT EXISTS (SELECT TOP 1 1 ";
    text += " FROM VFW3N_RVKNODI ";
    text += " WHERE FW3N_ID_FW07 = " + sql::Number(frame_.UserId()) + " ";
    text += " AND FW3N_DITTA_CG18 = " + sql::Unquoted(frame_.ctx.DittaCorrente);
    text += " AND FW3N_CODPROG_PD68 = " + sql::Column(nome_campo_progetto);
    text += " AND FW3N_CODNODO = " + sql::Column(nome_campo) + ") ";
    result = conditions::WithAnd(text, inserire_and);
  });
  return result;
}

std::string CLSFW_PARSER::SQLConditionCodSimPD90(const std::string& nome_campo, bool inserire_and) {
  std::string result;
  frame_.Trap("SQLConditionCodSimPD90", [&] {
    // Either user code short-cuts: the rewriter calls this one too.
    if (RevocationFrame::IsPrivileged(frame_.ctx.CodiceUtente) ||
        RevocationFrame::IsPrivileged(frame_.ctx.CodiceUtenteCLIFOR)) {
      return;
    }
    ConnectForCondition();
    // Simulation codes are stored blank-padded: compared trimmed.
    std::string text;
    text += " NOT EXISTS (SELECT FW31_CODTIPO ";
    text += kCrLf;
    text += "  FROM VFW31_RVKPARAMETRI  WHERE ";
    text += kCrLf;
    text += "   FW31_ID_FW07 = " + sql::Number(frame_.UserId()) + " AND ";
    text += "   FW31_INDTIPO = 15  AND ";
    text += kCrLf;
    text += "   FW31_FLGABILITATO = 0 AND  ";
    text += kCrLf;
    text += "   FW31_CODTIPO = rtrim(" + sql::Column(nome_campo) + ") AND ";
    text += kCrLf;
    text += "   FW31_DITTARAGG = " + sql::Unquoted(frame_.ctx.DittaCorrente) + ")";
    result = conditions::WithAnd(text, inserire_and);
  });
  return result;
}

}  // namespace zarvik
