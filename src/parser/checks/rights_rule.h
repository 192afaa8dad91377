// The rule that turns one VFW31_RVKPARAMETRI row into rights, shared by
// PermessiDocTipologie, PermessiTipologieDistintaBase and
// PermessiTipologieCicliLavorazione, and the VB comparisons the rights
// methods use on flag columns.
#ifndef ZARVIK_PARSER_CHECKS_RIGHTS_RULE_H_
#define ZARVIK_PARSER_CHECKS_RIGHTS_RULE_H_

#include <cstdint>

#include "db/recordset.h"
#include "parser/checks/rights_records.h"
#include "platform/variant.h"

namespace zarvik::checks {

// The four flags of one revocation row, as the database gave them.
struct RightsRow {
  Variant abilitato;  // FW31_FLGABILITATO: 0 = revoked
  Variant modifica;   // FW31_FLGMODIFICA: 0 = no update (and so no insert)
  Variant elimina;    // FW31_FLGELIMINA: 0 = no delete
  Variant inserisci;  // FW31_FLGINSERISCI: 0 = no insert
};

// The flags of the recordset's current row (columns FW31_FLGABILITATO,
// FW31_FLGMODIFICA, FW31_FLGELIMINA, FW31_FLGINSERISCI).
RightsRow ReadRightsRow(const db::Recordset& rows);

// The rights rule. The first field is rvkExists (set True) or Abilitato
// (decided by the row). A revoked row (FW31_FLGABILITATO = 0) denies every
// right. Otherwise FW31_FLGMODIFICA = 0 denies update and insert, whatever
// the insert flag says; else update is allowed and insert follows
// FW31_FLGINSERISCI <> 0; delete follows FW31_FLGELIMINA <> 0 in both cases.
// Fields are written one by one: a flag VB cannot compare (Null in an
// assignment: 94, text that is not a number: 13) leaves the record as it
// stood at that point and raises.
void ApplyRightsRule(const RightsRow& row, tsRvkDocumenti& record);
void ApplyRightsRule(const RightsRow& row, tsRvkConfig& record);

// VB's "If value = number Then": Null compares as False.
bool IfEquals(const Variant& value, int32_t number);
// VB's "field = (value = number)" and "field = (value <> number)" into a
// Boolean: Null raises 94.
int16_t AssignEquals(const Variant& value, int32_t number);
int16_t AssignNotEquals(const Variant& value, int32_t number);

}  // namespace zarvik::checks

#endif  // ZARVIK_PARSER_CHECKS_RIGHTS_RULE_H_
