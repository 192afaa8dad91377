// CLSFW_FILTROQUERY: revocation conditions for the host's query-filter
// dialogs, one filter field at a time, in SQL and in report-formula form.
//
// The class is a RevocationFrame with FiltroQueryFrameSettings(), with the
// context properties of UserContextProperties. Its OpenConnection does not
// test the state of a connection handed in, its user lookup requires an
// active user and fails silently, and its termination only drops the host
// binding (it never closes the connection).
#ifndef ZARVIK_FILTROQUERY_CLSFW_FILTROQUERY_H_
#define ZARVIK_FILTROQUERY_CLSFW_FILTROQUERY_H_

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "db/connection.h"
#include "db/recordset.h"
#include "db/tracing.h"
#include "filtroquery/area_lists.h"
#include "frame/user_context_properties.h"
#include "platform/env.h"
#include "platform/object.h"
#include "platform/variant.h"

namespace zarvik {

// The kind of a filter field (32-bit automation enum).
enum tsEnumTipologie : int32_t {
  tsGenerico = 1,
  tsCliente = 2,
  tsFornitore = 3,
  tsDeposito = 4,
  tsCausale = 5,
};

// NOLINTNEXTLINE(readability-identifier-naming): the automation class name
class CLSFW_FILTROQUERY : public UserContextProperties {
 public:
  explicit CLSFW_FILTROQUERY(Env env = DefaultEnv());
  // Termination: drops the host binding only.
  ~CLSFW_FILTROQUERY();
  CLSFW_FILTROQUERY(const CLSFW_FILTROQUERY&) = delete;
  CLSFW_FILTROQUERY& operator=(const CLSFW_FILTROQUERY&) = delete;

  // --- User context: the shared properties, and this one -----------------
  // FW07_FLGGRP of the resolved user (1 when not found); published only.
  int16_t FlgGrpRevoke() const { return frame_.FlgGrpRevoke(); }
  void SetFlgGrpRevoke(int16_t value) { frame_.SetFlgGrpRevoke(value); }

  // --- Query filter (FiltroCondizione, CondRevoke, CondRevokeCrystal) -------
  // Computes both conditions for one filter field of the host's dialog and
  // returns Empty. `caption` is never read; the arguments are by reference
  // for the host's sake and are left as they came. data_field_crystal, when
  // omitted (nullopt), is taken from data_field. An omitted tipologia is 0.
  // The field is dispatched on its name: "CLIFOR" anywhere (any case) is a
  // customer field for tsCliente and a supplier field for tsFornitore; else
  // the first, then the last four characters pick an area list (MG07, MG08,
  // MG09), a grouping list (MG31..MG33) or the agent filter (MG17, at the
  // front only for exactly "MG17_AGENTE"); else PD68_CODPROG is a project
  // field and PD0C_CODNODO a node field. Failures are reported with the tag
  // "FiltroCondizione"; the conditions then keep what had been built.
  Variant FiltroCondizione(std::string& caption, Variant& data_field,
                           std::optional<Variant>& data_field_crystal, tsEnumTipologie tipologia);
  // Not part of the automation interface: the same call with arguments by
  // value, for C++ callers.
  void FiltroCondizione(const Variant& data_field,
                        const std::optional<Variant>& data_field_crystal = std::nullopt,
                        int32_t tipologia = 0);
  // The SQL predicate of the last call ("" = no restriction).
  std::string CondRevoke() const { return cond_revoke_; }
  // The same restriction in report-formula syntax ("" = no restriction).
  std::string CondRevokeCrystal() const { return cond_revoke_crystal_; }

 private:
  // State of the last FiltroCondizione call (every call starts by clearing it).
  std::string cond_revoke_;          // CondRevoke
  std::string cond_revoke_crystal_;  // CondRevokeCrystal
  Variant data_field_;               // DataField
  Variant data_field_crystal_;       // DataFieldCrystal, or DataField when omitted
  int32_t tipologia_ = tsGenerico;   // Tipologia
  bool unavailable_ = false;         // result of the last OpenConnection

  // --- Private operations of the query filter --------------------------------
  // The whole FiltroCondizione after its trap is installed.
  void Filter(const Variant& data_field, const std::optional<Variant>& data_field_crystal,
              int32_t tipologia);
  // Step 8: runs the builder the stored data field and kind select.
  void Dispatch();
  // True when the report data field is blank (no report form wanted).
  bool ReportFieldBlank() const;

  // Area and grouping lists (area_lists.cpp): data field NOT IN the codes
  // revoked for the user in DittaCorrente.
  void CondAreaList(filtroquery::AreaList list);

  // Customers and suppliers (clifor_filters.cpp); tipo_cf 0 = customers,
  // 1 = suppliers.
  // CodiceAgente is set and the agent's company is DittaCorrente (both
  // companies compared as numbers; a Null one raises 94).
  bool AgentApplies() const;
  void CondCliFor(int16_t tipo_cf);
  // The visible (NONrevocati) or hidden (Revocati) customers/suppliers;
  // nullptr (Nothing) after a failure, which is reported with the method's
  // name as tag.
  std::shared_ptr<db::Recordset> CliForNONrevocati(int16_t tipo_cf);
  std::shared_ptr<db::Recordset> CliForRevocati(int16_t tipo_cf);

  // Agent fields (agent_filter.cpp): the field equals the agent's code when
  // the agent applies. Every error is ignored.
  void CondAgente();

  // Project and node fields (project_filters.cpp). They report failures with
  // the tags "Progetti" and "CondNodi".
  void Progetti(const std::string& project_column);
  void CondNodi(const std::string& node_column, const std::string& project_column);
};

}  // namespace zarvik

#endif  // ZARVIK_FILTROQUERY_CLSFW_FILTROQUERY_H_
