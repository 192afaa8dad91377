// Automation description of CLSFW_FILTROQUERY and its enum tsEnumTipologie.
#include <memory>
#include <optional>
#include <string>

#include "automation/class_builder.h"
#include "automation/describe_user_context.h"
#include "automation/type_library.h"
#include "filtroquery/clsfw_filtroquery.h"

namespace zarvik::automation {
namespace {

using FiltroQuery = CLSFW_FILTROQUERY;

// FiltroCondizione, CondRevoke, CondRevokeCrystal.
void DescribeQueryFilterMembers(ClassBuilder<FiltroQuery>& b) {
  using FiltroCondizioneCall =
      Variant (FiltroQuery::*)(std::string&, Variant&, std::optional<Variant>&, tsEnumTipologie);
  b.Method("FiltroCondizione",
           {ByRef("Caption", types::String()), ByRef("DataField", types::Variant()),
            ByRef("DataFieldCrystal", types::Variant()).Optional(),
            In("Tipologia", types::Enum("tsEnumTipologie")).Optional(Variant(int32_t{0}))},
           types::Variant(), static_cast<FiltroCondizioneCall>(&FiltroQuery::FiltroCondizione),
           "computes CondRevoke and CondRevokeCrystal for one filter field");
  b.Get("CondRevoke", types::String(), &FiltroQuery::CondRevoke,
        "SQL predicate of the last FiltroCondizione call; empty means no restriction");
  b.Get("CondRevokeCrystal", types::String(), &FiltroQuery::CondRevokeCrystal,
        "report-formula predicate of the last FiltroCondizione call; empty means no restriction");
}

}  // namespace

void DescribeFiltroQuery(TypeLibrary& library) {
  library.enums.push_back({"tsEnumTipologie",
                           {{"tsGenerico", tsGenerico},
                            {"tsCliente", tsCliente},
                            {"tsFornitore", tsFornitore},
                            {"tsDeposito", tsDeposito},
                            {"tsCausale", tsCausale}}});
  auto cls = std::make_shared<ClassDescription>();
  ClassBuilder<FiltroQuery> b(*cls, "CLSFW_FILTROQUERY",
                              "revocation conditions for query-filter fields, SQL and report form");
  DescribeUserContext(b);
  b.Get("FlgGrpRevoke", types::Integer(), &FiltroQuery::FlgGrpRevoke,
        "FW07_FLGGRP of the resolved user")
      .Let("FlgGrpRevoke", types::Integer(), &FiltroQuery::SetFlgGrpRevoke);
  DescribeQueryFilterMembers(b);
  library.classes.push_back(std::move(cls));
}

}  // namespace zarvik::automation
