// FiltroCondizione: the entry point of the query filter and its dispatch by
// field name.
#include "filtroquery/filter_dispatch.h"

#include "filtroquery/clsfw_filtroquery.h"
#include "platform/vb_string.h"

namespace zarvik::filtroquery {
namespace {

struct PrefixEntry {
  const char* code;
  FilterKind kind;
};

constexpr PrefixEntry kTablePrefixes[] = {
    {"MG07", FilterKind::kMacroArea}, {"MG08", FilterKind::kMiddleArea},
    {"MG09", FilterKind::kArea},      {"MG17", FilterKind::kAgent},
    {"MG31", FilterKind::kGrouping1}, {"MG32", FilterKind::kGrouping2},
    {"MG33", FilterKind::kGrouping3},
};

// The builder of a four-character table code (exact case), or kNone.
FilterKind LookupTableCode(const std::string& code) {
  for (const PrefixEntry& entry : kTablePrefixes) {
    if (code == entry.code) return entry.kind;
  }
  return FilterKind::kNone;
}

}  // namespace

FilterKind ClassifyDataField(const std::string& data_field, int32_t tipologia) {
  if (vb::InStr(1, vb::UCase(data_field), "CLIFOR") > 0) {
    if (tipologia == tsCliente) return FilterKind::kCustomers;
    if (tipologia == tsFornitore) return FilterKind::kSuppliers;
    return FilterKind::kNone;
  }
  const FilterKind by_prefix = LookupTableCode(vb::Left(data_field, 4));
  if (by_prefix == FilterKind::kAgent) {
    return vb::Trim(data_field) == "MG17_AGENTE" ? FilterKind::kAgent : FilterKind::kNone;
  }
  if (by_prefix != FilterKind::kNone) return by_prefix;
  const FilterKind by_suffix = LookupTableCode(vb::Right(data_field, 4));
  if (by_suffix != FilterKind::kNone) return by_suffix;
  if (vb::InStr(1, data_field, "PD68_CODPROG") > 0) return FilterKind::kProjects;
  if (vb::InStr(1, data_field, "PD0C_CODNODO") > 0) return FilterKind::kNodes;
  return FilterKind::kNone;
}

}  // namespace zarvik::filtroquery

namespace zarvik {

Variant CLSFW_FILTROQUERY::FiltroCondizione(std::string& /*caption: never read*/,
                                            Variant& data_field,
                                            std::optional<Variant>& data_field_crystal,
                                            tsEnumTipologie tipologia) {
  Filter(data_field, data_field_crystal, tipologia);
  return Variant();
}

void CLSFW_FILTROQUERY::FiltroCondizione(const Variant& data_field,
                                         const std::optional<Variant>& data_field_crystal,
                                         int32_t tipologia) {
  Filter(data_field, data_field_crystal, tipologia);
}

void CLSFW_FILTROQUERY::Filter(const Variant& data_field,
                               const std::optional<Variant>& data_field_crystal,
                               int32_t tipologia) {
  frame_.Trap("FiltroCondizione", [&] {
    // Nothing is carried over from an earlier field.
    cond_revoke_.clear();
    cond_revoke_crystal_.clear();
    data_field_ = Variant("");
    data_field_crystal_ = Variant("");
    tipologia_ = tsGenerico;

    // Any connection object counts as available here; only the lack of both
    // a connection and a connection string stops the call.
    unavailable_ = frame_.OpenConnection();
    if (unavailable_) return;
    frame_.HarmoniseUserCodes();
    // RevokeDisabilitata is not consulted by the query filter.
    if (RevocationFrame::IsPrivileged(frame_.ctx.CodiceUtente)) return;

    data_field_ = data_field;
    data_field_crystal_ = data_field_crystal ? *data_field_crystal : data_field;
    tipologia_ = tipologia;
    frame_.ResolveUser();
    Dispatch();
  });
}

bool CLSFW_FILTROQUERY::ReportFieldBlank() const {
  return RevocationFrame::IsBlank(data_field_crystal_);
}

void CLSFW_FILTROQUERY::Dispatch() {
  // A Null field name matches none of the tests.
  if (data_field_.IsNull()) return;
  using filtroquery::AreaList;
  using filtroquery::FilterKind;
  switch (filtroquery::ClassifyDataField(data_field_.ToString(), tipologia_)) {
    case FilterKind::kNone:
      return;
    case FilterKind::kCustomers:
      return CondCliFor(0);
    case FilterKind::kSuppliers:
      return CondCliFor(1);
    case FilterKind::kMacroArea:
      return CondAreaList(AreaList::kMacroArea);
    case FilterKind::kMiddleArea:
      return CondAreaList(AreaList::kMiddleArea);
    case FilterKind::kArea:
      return CondAreaList(AreaList::kArea);
    case FilterKind::kGrouping1:
      return CondAreaList(AreaList::kGrouping1);
    case FilterKind::kGrouping2:
      return CondAreaList(AreaList::kGrouping2);
    case FilterKind::kGrouping3:
      return CondAreaList(AreaList::kGrouping3);
    case FilterKind::kAgent:
      return CondAgente();
    case FilterKind::kProjects:
      return Progetti("PD68_CODPROG");
    case FilterKind::kNodes:
      return CondNodi("PD0C_CODNODO", "PD0C_CODPROG_PD68");
  }
}

}  // namespace zarvik
