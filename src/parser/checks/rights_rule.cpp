#include "parser/checks/rights_rule.h"

#include <optional>

#include "platform/vb_error.h"

namespace zarvik::checks {
namespace {

int16_t AssignCompared(const Variant& value, int32_t number, bool equal) {
  const std::optional<int> order = VbCompare(value, Variant(number));
  if (!order) throw VbError(vberr::kInvalidUseOfNull);
  return VbBool((*order == 0) == equal);
}

// The rule on the record's fields; `exists` is the rvkExists field or null,
// `enabled` the Abilitato field or null.
void ApplyRule(const RightsRow& row, int16_t* exists, int16_t* enabled, int16_t& can_delete,
               int16_t& can_update, int16_t& can_insert) {
  if (exists != nullptr) *exists = kVbTrue;
  if (IfEquals(row.abilitato, 0)) {
    if (enabled != nullptr) *enabled = kVbFalse;
    can_delete = kVbFalse;
    can_update = kVbFalse;
    can_insert = kVbFalse;
    return;
  }
  if (enabled != nullptr) *enabled = kVbTrue;
  if (IfEquals(row.modifica, 0)) {
    // Modify gates insert: the insert flag is not read.
    can_update = kVbFalse;
    can_insert = kVbFalse;
  } else {
    can_update = kVbTrue;
    can_insert = AssignNotEquals(row.inserisci, 0);
  }
  can_delete = AssignNotEquals(row.elimina, 0);
}

}  // namespace

RightsRow ReadRightsRow(const db::Recordset& rows) {
  RightsRow row;
  row.abilitato = rows.Fields("FW31_FLGABILITATO");
  row.modifica = rows.Fields("FW31_FLGMODIFICA");
  row.elimina = rows.Fields("FW31_FLGELIMINA");
  row.inserisci = rows.Fields("FW31_FLGINSERISCI");
  return row;
}

void ApplyRightsRule(const RightsRow& row, tsRvkDocumenti& record) {
  ApplyRule(row, &record.rvkExists, nullptr, record.CanDelete, record.CanUpdate, record.CanInsert);
}

void ApplyRightsRule(const RightsRow& row, tsRvkConfig& record) {
  ApplyRule(row, nullptr, &record.Abilitato, record.CanDelete, record.CanUpdate, record.CanInsert);
}

bool IfEquals(const Variant& value, int32_t number) { return VbEquals(value, Variant(number)); }

int16_t AssignEquals(const Variant& value, int32_t number) {
  return AssignCompared(value, number, true);
}

int16_t AssignNotEquals(const Variant& value, int32_t number) {
  return AssignCompared(value, number, false);
}

}  // namespace zarvik::checks
