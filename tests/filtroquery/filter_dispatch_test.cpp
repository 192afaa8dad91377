// The dispatch of a filter field by name and kind, and the entry steps of
// FiltroCondizione: connection, user codes, privileged code, user lookup,
// failures, termination, and nothing carried over between fields.
#include "filtroquery/filter_dispatch.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "filtroquery/clsfw_filtroquery.h"
#include "filtroquery/filtroquery_test_support.h"
#include "platform/vb_error.h"

namespace zarvik::filtroquery {
namespace {

using testing::BoxTags;
using testing::FilterOnDemo;

TEST(ClassifyDataField, PicksTheBuilderByNameAndKind) {
  using K = FilterKind;
  const struct {
    FilterKind expected;
    int32_t kind;
    std::vector<std::string> fields;
  } cases[] = {
      // "CLIFOR" in any case, first of all tests; only customers and suppliers.
      {K::kCustomers, tsCliente, {"CG44_CLIFOR", "do11_clifor_cg44"}},
      {K::kSuppliers, tsFornitore, {"CG44_CLIFOR"}},
      {K::kNone, tsGenerico, {"CG44_CLIFOR", "MG07_CLIFOR"}},
      // Table prefixes (exact case, any kind), or the same codes at the end;
      // a prefix that matches wins over a suffix that would.
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
  for (const auto& c : cases) {
    for (const std::string& field : c.fields) {
      EXPECT_EQ(ClassifyDataField(field, c.kind), c.expected) << field << " kind " << c.kind;
    }
  }
}

TEST(FiltroCondizione, PrivilegedCodeIsComparedExactlyAfterHarmonising) {
  const struct {
    const char* user;
    const char* user_clifor;
    bool restricted;
  } cases[] = {
      {"ZentAd", "", false},       // the user code, the other one blank
      {"ROSSI", "ZentAd", false},  // the customer/supplier code wins
      {"ZentAd", "ROSSI", true},   // ... also against a privileged user code
  };
  for (const auto& c : cases) {
    FilterOnDemo f;
    f.filter->SetIdUser(demo::user_id::kRossi);  // ROSSI's revocations whatever the lookup
    f.filter->SetCodiceUtente(c.user);
    f.filter->SetCodiceUtenteCLIFOR(c.user_clifor);
    f.Filter("MG07_MACROAREA");
    EXPECT_EQ(!f.Sql().empty(), c.restricted) << c.user << "/" << c.user_clifor;
    EXPECT_EQ(!f.Sent().empty(), c.restricted) << c.user << "/" << c.user_clifor;
    EXPECT_EQ(f.filter->CodiceUtente(), f.filter->CodiceUtenteCLIFOR());
  }
}

TEST(FiltroCondizione, UserCodeFromTheCustomerSupplierCodeAndNoDisabledFlag) {
  FilterOnDemo f("");
  f.filter->SetCodiceUtenteCLIFOR("ROSSI");
  f.filter->SetRevokeDisabilitata(true);  // not consulted
  f.Filter("MG07_MACROAREA");
  EXPECT_EQ(f.filter->CodiceUtente(), "ROSSI");
  EXPECT_EQ(f.filter->Frame().UserId(), demo::user_id::kRossi);
  EXPECT_EQ(f.Sql(), "MG07_MACROAREA NOT IN (SUD')");
}

TEST(FiltroCondizione, EachCallDescribesOnlyItsOwnField) {
  FilterOnDemo f;
  f.Filter("MG07_MACROAREA", Variant("R"));
  ASSERT_NE(f.Report(), "");
  f.Filter("DO11_NUMDOC", Variant("R"));
  EXPECT_EQ(f.Sql() + f.Report(), "");
  // A customer field without a kind after a field that had a condition.
  f.Filter("MG09_ZONA", Variant("R"));
  ASSERT_NE(f.Sql(), "");
  f.Filter("CG44_CLIFOR", Variant("R"));
  EXPECT_EQ(f.Sql() + f.Report(), "");
}

// How the frame looks the user up is tested with the frame; here, that the
// filter does it once, silently, and reads the lists of user 0 without one.
TEST(FiltroCondizione, LooksTheUserUpOnceAndSilently) {
  FilterOnDemo f;
  f.filter->SetCodiceGruppo("VEN'");  // the lookup statement breaks
  f.Filter("MG07_MACROAREA");
  EXPECT_TRUE(f.Boxes().empty());
  EXPECT_EQ(f.Sql(), "");  // user id 0 has nothing revoked
  EXPECT_NE(f.Sent().back().find("WHERE FW32_ID_FW07 = 0 "), std::string::npos);
  f.filter->SetCodiceGruppo("VEN");
  f.Filter("MG07_MACROAREA");
  EXPECT_EQ(f.Sent().front(), f.filter->Frame().ResolveUserStatement());
  EXPECT_EQ(f.Sql(), "MG07_MACROAREA NOT IN (SUD')");
  f.Filter("MG07_MACROAREA");
  for (const std::string& s : f.Sent()) EXPECT_EQ(s.find("FW07_APPUSER"), std::string::npos) << s;
}

TEST(FiltroCondizione, NoConnectionAClosedOneAndUnusableFields) {
  FilterOnDemo f;
  // No connection and no connection string: nothing sent, nothing built.
  f.filter->SetConnectionADO(nullptr);
  f.Filter("MG07_MACROAREA", Variant("R"));
  EXPECT_EQ(f.Sql() + f.Report(), "");
  EXPECT_TRUE(f.Sent().empty() && f.Boxes().empty());
  EXPECT_FALSE(f.filter->Frame().UserResolved());
  // The user lookup fails silently; the list query fails into the box.
  f.filter->SetConnectionADO(std::make_shared<db::Connection>());
  f.Filter("MG07_MACROAREA", Variant("R"));
  ASSERT_EQ(BoxTags(f.Boxes()), std::vector<std::string>{"FiltroCondizione"});
  EXPECT_EQ(f.Boxes()[0].text.rfind(std::to_string(vberr::kAdoConnectionUnusable) + " - ", 0), 0u)
      << f.Boxes()[0].text;
  EXPECT_EQ(f.Sql() + f.Report(), "");
  f.filter->SetConnectionADO(f.db);
  f.rec.sink->messages.clear();
  f.Filter(Variant::Null(), Variant("R"), tsCliente);
  EXPECT_EQ(f.Sql(), "");
  EXPECT_TRUE(f.Boxes().empty());
  // An object has no text: the box of FiltroCondizione, nothing built.
  f.Filter(Variant(ObjectRef(f.db)), Variant("R"), tsCliente);
  EXPECT_EQ(BoxTags(f.Boxes()), std::vector<std::string>{"FiltroCondizione"});
  EXPECT_EQ(f.Sql(), "");
}

}  // namespace
}  // namespace zarvik::filtroquery
