// Automation description of CLSFW_FILTROQUERY and its enum tsEnumTipologie.
#include <memory>

#include "automation/class_builder.h"
#include "automation/describe_user_context.h"
#include "automation/type_library.h"
#include "filtroquery/clsfw_filtroquery.h"

namespace zarvik::automation {
namespace {

using FiltroQuery = CLSFW_FILTROQUERY;

// FiltroCondizione, CondRevoke, CondRevokeCrystal.
void DescribeQueryFilterMembers(ClassBuilder<FiltroQuery>& /*b*/) {}

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
