// The dispatch of a filter field by name and kind, and the entry steps of FiltroCondizione.
#include "filtroquery/filter_dispatch.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "filtroquery/clsfw_filtroquery.h"
#include "filtroquery/filtroquery_test_support.h"
#include "platform/vb_error.h"

namespace zarvik::filtroquery {
namespace {

using testing::FilterOnDemo;

TEST(ClassifyDataField, PicksTheBuilderByNameAndKind) {
  using K = FilterKind;
  const std::tuple<FilterKind, int32_t, std::vector<std::string>> cases[] = {
      // "CLIFOR" in any case, first of all tests; only customers and suppliers.
      {K::kCustomers, tsCliente, {"CG44_CLIFOR", "do11_clifor_cg44"}},
      {K::kSuppliers, tsFornitore, {"CG44_CLIFOR"}},
      {K::kNone, tsGenerico, {"CG44_CLIFOR", "MG07_CLIFOR"}},
      // Table prefixes (exact case, any kind) win over the same codes at the end.
      {K::kMacroArea, tsCliente, {"MG07_MACROAREA", "CG44_MACROAREA_MG07", "MG07_X_MG17"}},
      {K::kMiddleArea, 0, {"MG08_AREA"}},
      {K::kArea, 0, {"MG09_ZONA"}},
      {K::kGrouping1, 0, {"MG31_CODRAGGRCF1"}},
      {K::kGrouping2, 0, {"MG32_CODRAGGRCF2"}},
      {K::kGrouping3, 0, {"MG33", "CG44_RAGGR_MG33"}},
      // Agents: at the front only the exact name, at the end any field.
      {K::kAgent, 0, {"MG17_AGENTE   ", "DO29_IDAGENTE_MG17"}},
      // Projects and nodes anywhere in the field, exact case.
      {K::kProjects, tsCliente, {"T.PD68_CODPROG", "PD68_CODPROG + PD0C_CODNODO"}},
      {K::kNodes, 0, {"N.PD0C_CODNODO"}},
      {K::kNone,
       0,
       {"CG44_CLIFOR", "mg07_macroarea", "Mg09_ZONA", "CG44_MACROAREA_mg07", "MG17_AGENTE_MG17",
        "MG17_IDAGENTE", " MG17_AGENTE", "pd68_codprog", "PD0C_CODPROG_PD68", "", "MG3",
        "DO11_NUMDOC"}},
  };
  for (const auto& [expected, kind, fields] : cases) {
    for (const std::string& field : fields) {
      EXPECT_EQ(ClassifyDataField(field, kind), expected) << field << " kind " << kind;
    }
  }
}

// The privileged code is compared after the customer/supplier code took over;
// RevokeDisabilitata is not consulted.
TEST(FiltroCondizione, PrivilegedCodeIsComparedAfterHarmonising) {
  const std::vector<std::tuple<std::string, std::string, bool>> cases = {
      // CodiceUtente, CodiceUtenteCLIFOR, restricted as ROSSI
      {"ZentAd", "", false},
      {"ROSSI", "ZentAd", false},
      {"ZentAd", "ROSSI", true},
      {"", "ROSSI", true}};
  for (const auto& [user, user_clifor, restricted] : cases) {
    FilterOnDemo f(user);
    f.filter->SetCodiceUtenteCLIFOR(user_clifor);
    f.filter->SetRevokeDisabilitata(true);
    f.Filter("MG07_MACROAREA");
    EXPECT_EQ(f.Sql(), restricted ? "MG07_MACROAREA NOT IN (SUD')" : "") << user << user_clifor;
    EXPECT_EQ(f.Sent().empty(), !restricted);
    EXPECT_EQ(f.filter->CodiceUtente() + "|" + f.filter->CodiceUtenteCLIFOR(),
              restricted ? "ROSSI|ROSSI" : "ZentAd|ZentAd");
  }
}

TEST(FiltroCondizione, EachCallDescribesOnlyItsOwnField) {
  FilterOnDemo f;
  f.Filter("MG07_MACROAREA", Variant("R"));
  ASSERT_NE(f.Report(), "");
  f.Filter("DO11_NUMDOC", Variant("R"));
  EXPECT_EQ(f.Sql() + f.Report(), "");
}

TEST(FiltroCondizione, NoConnectionAClosedOneAndUnusableFields) {
  FilterOnDemo f;
  f.filter->SetConnectionADO(nullptr);
  f.Filter("MG07_MACROAREA", Variant("R"));
  EXPECT_EQ(f.Outcome(), "||");
  EXPECT_TRUE(f.Sent().empty());
  EXPECT_FALSE(f.filter->Frame().UserResolved());
  // A closed connection: the lookup fails silently, the list query into the box.
  f.filter->SetConnectionADO(std::make_shared<db::Connection>());
  f.Filter("MG07_MACROAREA", Variant("R"));
  ASSERT_EQ(f.Outcome(), "||FiltroCondizione ");
  EXPECT_EQ(f.Boxes()[0].text.rfind(std::to_string(vberr::kAdoConnectionUnusable) + " - ", 0), 0u)
      << f.Boxes()[0].text;
  f.filter->SetConnectionADO(f.db);
  f.rec.sink->messages.clear();
  f.Filter(Variant::Null(), Variant("R"), tsCliente);
  EXPECT_EQ(f.Outcome(), "||");
  f.Filter(Variant(ObjectRef(f.db)), Variant("R"), tsCliente);
  EXPECT_EQ(f.Outcome(), "||FiltroCondizione ");
}

}  // namespace
}  // namespace zarvik::filtroquery
