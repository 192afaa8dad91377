#include "filtroquery/clifor_statements.h"

#include "frame/revocation_frame.h"
#include "frame/sql_text.h"

namespace zarvik::filtroquery {
namespace {

// The head shared by the five EXISTS tests: revoked rows of the user for the
// company and kind of the classification row.
std::string RevokedGroupings(int32_t user_id) {
  return std::string(" From VFW32_RVKCLIFOR ") + " Where FW32_DITTA = MG19_DITTA_CG18 " +
         " AND FW32_TIPOCF = MG19_TIPOCF_CG44 " + " AND FW32_ID_FW07 = " + sql::Number(user_id) +
         " " + " AND FW32_FLGABILITATO = 0 ";
}

// Customers only, and only when the host gave an agent.
bool WithAgentClause(int16_t tipo_cf, const Variant& codice_agente) {
  return tipo_cf == 0 && !RevocationFrame::IsBlank(codice_agente);
}

std::string CliForHead(int16_t tipo_cf) {
  return std::string("SELECT CG44_TIPOCF, CG44_CLIFOR") + " From CG44_CLIFOR " +
         " WHERE CG44_TIPOCF = " + sql::Number(tipo_cf);
}

}  // namespace

std::string ExistsRvkCliForVa(int32_t user_id) {
  const std::string h = RevokedGroupings(user_id);
  std::string text;
  // The classification row of the outer customer/supplier.
  text += std::string(" (SELECT * ") + " From MG19_CLIFORVA " +
          " Where MG19_DITTA_CG18 = CG44_DITTA_CG18 " + " AND MG19_TIPOCF_CG44 = CG44_TIPOCF " +
          " AND MG19_CLIFOR_CG44 = CG44_CLIFOR ";
  // Its macro-area (macro level rows only).
  text += " AND (EXISTS (SELECT * " + h + " AND FW32_TIPORAGG = 'AREA' " +
          " AND ((FW32_CODMACRO = CASE WHEN MG19_MACROAREA IS NULL THEN ''         ELSE "
          "MG19_MACROAREA END " +
          " AND FW32_CODMIDDLE = '' " + " AND FW32_CODRAGG = ''))) ";
  // Its macro-category (macro level rows only).
  text += " OR EXISTS (SELECT * " + h + " AND FW32_TIPORAGG = 'CAT' " +
          " AND ((FW32_CODMACRO = CASE WHEN MG19_MACROCAT IS NULL THEN ''         ELSE "
          "MG19_MACROCAT END " +
          " AND FW32_CODMIDDLE = '' " + " AND FW32_CODRAGG = ''))) ";
  // Its groupings 1 to 3, the code in FW32_CODRAGG (the third grouping
  // column of MG19 is MG19_RAGGCRF3).
  text += " OR EXISTS (SELECT * " + h + " AND FW32_TIPORAGG = 'RAGG1' " +
          " AND FW32_CODMACRO = '' " + " AND FW32_CODMIDDLE = '' " +
          " AND FW32_CODRAGG = CASE WHEN MG19_RAGGRCF1 IS NULL THEN '' " +
          "        ELSE MG19_RAGGRCF1 END) ";
  text += " OR EXISTS (SELECT * " + h + " AND FW32_TIPORAGG = 'RAGG2' " +
          " AND FW32_CODMACRO = '' " + " AND FW32_CODMIDDLE = '' " +
          " AND FW32_CODRAGG = CASE WHEN MG19_RAGGRCF2 IS NULL THEN '' " +
          "        ELSE MG19_RAGGRCF2 END) ";
  text += " OR EXISTS (SELECT * " + h + " AND FW32_TIPORAGG = 'RAGG3' " +
          " AND FW32_CODMACRO = '' " + " AND FW32_CODMIDDLE = '' " +
          " AND FW32_CODRAGG = CASE WHEN MG19_RAGGCRF3 IS NULL THEN '' " +
          "        ELSE MG19_RAGGCRF3 END))) ";
  return text;
}

std::string CliForNONrevocatiStatement(int16_t tipo_cf, int32_t user_id,
                                       const Variant& codice_agente) {
  std::string s = CliForHead(tipo_cf) + " AND NOT EXISTS " + ExistsRvkCliForVa(user_id) + " ";
  if (WithAgentClause(tipo_cf, codice_agente)) {
    s += std::string(" AND EXISTS (") + " SELECT * FROM MG1C_CLIFORAGEMUL  " +
         " Where MG1C_DITTA_CG18 = CG44_DITTA_CG18 " + " AND MG1C_TIPOCF_CG44 = CG44_TIPOCF " +
         " AND MG1C_CLIFOR_CG44 = CG44_CLIFOR " +
         " AND MG1C_IDAGENTE_MG17 = " + sql::Quoted(sql::Unquoted(codice_agente)) + ")";
  }
  return s;
}

std::string CliForRevocatiStatement(int16_t tipo_cf, int32_t user_id,
                                    const Variant& codice_agente) {
  std::string s = CliForHead(tipo_cf) + " AND (EXISTS " + ExistsRvkCliForVa(user_id) + " ";
  if (WithAgentClause(tipo_cf, codice_agente)) {
    s += std::string(" OR NOT EXISTS (") + " SELECT * FROM MG1C_CLIFORAGEMUL  " +
         " Where MG1C_DITTA_CG18 = CG44_DITTA_CG18 " + " AND MG1C_TIPOCF_CG44 = CG44_TIPOCF " +
         " AND MG1C_CLIFOR_CG44 = CG44_CLIFOR " +
         " AND MG1C_AGENTE_IDMG17 = " + sql::Quoted(sql::Unquoted(codice_agente)) + ")" + " ) ";
  }
  s += ")";
  return s;
}

}  // namespace zarvik::filtroquery
