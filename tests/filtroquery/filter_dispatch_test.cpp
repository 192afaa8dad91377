// The dispatch of a filter field by name and kind, and the entry steps of
// FiltroCondizione: connection, user codes, privileged code, stored
// arguments, user lookup, and nothing carried over between fields.
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

struct DispatchCase {
  const char* field;
  int32_t kind;
  FilterKind expected;
};

TEST(ClassifyDataField, PicksTheBuilderByNameAndKind) {
  const std::vector<DispatchCase> cases = {
      // "CLIFOR" in any case, first of all tests; only customers and suppliers.
      {"CG44_CLIFOR", tsCliente, FilterKind::kCustomers},
      {"CG44_CLIFOR", tsFornitore, FilterKind::kSuppliers},
      {"do11_clifor_cg44", tsCliente, FilterKind::kCustomers},
      {"CG44_CLIFOR", tsGenerico, FilterKind::kNone},
      {"CG44_CLIFOR", tsDeposito, FilterKind::kNone},
      {"CG44_CLIFOR", tsCausale, FilterKind::kNone},
      {"CG44_CLIFOR", 0, FilterKind::kNone},
      {"MG07_CLIFOR", tsGenerico, FilterKind::kNone},
      // Table prefixes, exact case; the kind does not matter.
      {"MG07_MACROAREA", tsCliente, FilterKind::kMacroArea},
      {"MG08_AREA", 0, FilterKind::kMiddleArea},
      {"MG09_ZONA", 0, FilterKind::kArea},
      {"MG31_CODRAGGRCF1", 0, FilterKind::kGrouping1},
      {"MG32_CODRAGGRCF2", 0, FilterKind::kGrouping2},
      {"MG33", 0, FilterKind::kGrouping3},
      {"mg07_macroarea", 0, FilterKind::kNone},
      {"Mg09_ZONA", 0, FilterKind::kNone},
      // The same codes at the end of the field.
      {"CG44_MACROAREA_MG07", 0, FilterKind::kMacroArea},
      {"X.ZONA_MG09", 0, FilterKind::kArea},
      {"CG44_RAGGR_MG33", 0, FilterKind::kGrouping3},
      {"CG44_MACROAREA_mg07", 0, FilterKind::kNone},
      // Agents: at the front only the exact name, at the end any field.
      {"MG17_AGENTE", 0, FilterKind::kAgent},
      {"MG17_AGENTE   ", 0, FilterKind::kAgent},
      {"MG17_AGENTE_MG17", 0, FilterKind::kNone},
      {"MG17_DESCR", 0, FilterKind::kNone},
      {"MG17_IDAGENTE", 0, FilterKind::kNone},
      {" MG17_AGENTE", 0, FilterKind::kNone},
      {"DO29_IDAGENTE_MG17", 0, FilterKind::kAgent},
      // A prefix that matches wins over a suffix that would.
      {"MG07_X_MG17", 0, FilterKind::kMacroArea},
      // Projects and nodes anywhere in the field, exact case.
      {"PD68_CODPROG", 0, FilterKind::kProjects},
      {"T.PD68_CODPROG", tsCliente, FilterKind::kProjects},
      {"pd68_codprog", 0, FilterKind::kNone},
      {"PD0C_CODNODO", 0, FilterKind::kNodes},
      {"N.PD0C_CODNODO", 0, FilterKind::kNodes},
      {"PD68_CODPROG + PD0C_CODNODO", 0, FilterKind::kProjects},
      {"PD0C_CODPROG_PD68", 0, FilterKind::kNone},
      // Nothing to go by.
      {"", 0, FilterKind::kNone},
      {"MG3", 0, FilterKind::kNone},
      {"DO11_NUMDOC", 0, FilterKind::kNone},
  };
  for (const DispatchCase& c : cases) {
    EXPECT_EQ(ClassifyDataField(c.field, c.kind), c.expected)
        << "field '" << c.field << "' kind " << c.kind;
  }
}

TEST(FiltroCondizione, WithoutConnectionOrConnectionStringGivesNothing) {
  FilterOnDemo f;
  f.filter->SetConnectionADO(nullptr);
  f.Filter("MG07_MACROAREA", Variant("R"));
  EXPECT_EQ(f.Sql(), "");
  EXPECT_EQ(f.Report(), "");
  EXPECT_TRUE(f.Sent().empty());
  EXPECT_TRUE(f.Boxes().empty());
  EXPECT_FALSE(f.filter->Frame().UserResolved());
}

TEST(FiltroCondizione, PrivilegedCodeIsComparedExactlyAfterHarmonising) {
  struct Case {
    const char* user;
    const char* user_clifor;
    bool restricted;
  };
  const std::vector<Case> cases = {
      {"ZentAd", "", false},       // the user code, the other one blank
      {"ROSSI", "ZentAd", false},  // the customer/supplier code wins
      {"ZentAd", "ROSSI", true},   // ... also against a privileged user code
      {"ZENTAD", "", true},        // other letter case: an ordinary code
  };
  for (const Case& c : cases) {
    FilterOnDemo f;
    // ROSSI's revocations under whatever id the lookup leaves.
    f.filter->SetIdUser(demo::user_id::kRossi);
    f.filter->SetCodiceUtente(c.user);
    f.filter->SetCodiceUtenteCLIFOR(c.user_clifor);
    f.Filter("MG07_MACROAREA");
    EXPECT_EQ(!f.Sql().empty(), c.restricted) << c.user << "/" << c.user_clifor;
    EXPECT_EQ(!f.Sent().empty(), c.restricted) << c.user << "/" << c.user_clifor;
    EXPECT_EQ(f.filter->CodiceUtente(), f.filter->CodiceUtenteCLIFOR());
  }
}

TEST(FiltroCondizione, UserCodeComesFromTheCustomerSupplierCode) {
  FilterOnDemo f("");
  f.filter->SetCodiceUtenteCLIFOR("ROSSI");
  f.Filter("MG07_MACROAREA");
  EXPECT_EQ(f.filter->CodiceUtente(), "ROSSI");
  EXPECT_EQ(f.filter->Frame().UserId(), demo::user_id::kRossi);
  EXPECT_EQ(f.Sql(), "MG07_MACROAREA NOT IN (SUD')");
}

TEST(FiltroCondizione, RevokeDisabilitataIsNotConsulted) {
  FilterOnDemo f;
  f.filter->SetRevokeDisabilitata(true);
  f.Filter("MG07_MACROAREA");
  EXPECT_EQ(f.Sql(), "MG07_MACROAREA NOT IN (SUD')");
}

TEST(FiltroCondizione, EachCallDescribesOnlyItsOwnField) {
  FilterOnDemo f;
  f.Filter("MG07_MACROAREA", Variant("R"));
  ASSERT_NE(f.Sql(), "");
  ASSERT_NE(f.Report(), "");
  f.Filter("DO11_NUMDOC", Variant("R"));
  EXPECT_EQ(f.Sql(), "");
  EXPECT_EQ(f.Report(), "");
  // A customer field without a kind after a field that had a condition.
  f.Filter("MG09_ZONA");
  ASSERT_NE(f.Sql(), "");
  f.Filter("CG44_CLIFOR", Variant("R"));
  EXPECT_EQ(f.Sql(), "");
  EXPECT_EQ(f.Report(), "");
}

TEST(FiltroCondizione, LooksTheUserUpOnceAmongActiveUsers) {
  FilterOnDemo f;
  f.Filter("MG07_MACROAREA");
  ASSERT_FALSE(f.Sent().empty());
  EXPECT_EQ(f.Sent().front(),
            "SELECT FW07_ID, FW07_FLGGRP FROM FW07_APPUSER  WHERE FW07_CODICE_FW06 = 'VEN'  AND "
            "FW07_CODICE = 'ROSSI' AND FW07_FLGATTIVO = 1 ");
  EXPECT_EQ(f.filter->FlgGrpRevoke(), 0);
  f.Filter("MG07_MACROAREA");
  for (const std::string& s : f.Sent()) EXPECT_EQ(s.find("FW07_APPUSER"), std::string::npos) << s;
}

TEST(FiltroCondizione, InactiveUserKeepsTheIdItHad) {
  // NERI (inactive, id 8) has the macro-area NORD revoked.
  FilterOnDemo without_id("NERI", "MAG");
  without_id.Filter("MG07_MACROAREA");
  EXPECT_EQ(without_id.filter->Frame().UserId(), 0);
  EXPECT_EQ(without_id.filter->FlgGrpRevoke(), 1);
  EXPECT_EQ(without_id.Sql(), "");
  ASSERT_FALSE(without_id.Sent().empty());
  EXPECT_NE(without_id.Sent().back().find("WHERE FW32_ID_FW07 = 0 "), std::string::npos);

  FilterOnDemo with_id("NERI", "MAG");
  with_id.filter->SetIdUser(demo::user_id::kNeri);
  with_id.Filter("MG07_MACROAREA");
  EXPECT_EQ(with_id.Sql(), "MG07_MACROAREA NOT IN (NORD')");
}

TEST(FiltroCondizione, FailedUserLookupIsSilentAndTriedAgain) {
  FilterOnDemo f;
  f.filter->SetCodiceGruppo("VEN'");  // the lookup statement breaks
  f.Filter("MG07_MACROAREA");
  EXPECT_TRUE(f.Boxes().empty());
  EXPECT_FALSE(f.filter->Frame().UserResolved());
  EXPECT_EQ(f.Sql(), "");  // user id 0 has nothing revoked
  f.filter->SetCodiceGruppo("VEN");
  f.Filter("MG07_MACROAREA");
  EXPECT_TRUE(f.filter->Frame().UserResolved());
  EXPECT_EQ(f.Sql(), "MG07_MACROAREA NOT IN (SUD')");
}

TEST(FiltroCondizione, ClosedConnectionFailsIntoItsOwnBox) {
  FilterOnDemo f;
  auto closed = std::make_shared<db::Connection>();
  f.filter->SetConnectionADO(closed);
  f.Filter("MG07_MACROAREA", Variant("R"));
  // The user lookup fails silently; the list query fails into the box.
  ASSERT_EQ(BoxTags(f.Boxes()), std::vector<std::string>{"FiltroCondizione"});
  EXPECT_EQ(f.Boxes()[0].text.rfind(std::to_string(vberr::kAdoConnectionUnusable) + " - ", 0), 0u)
      << f.Boxes()[0].text;
  EXPECT_EQ(f.Sql(), "");
  EXPECT_EQ(f.Report(), "");
}

TEST(FiltroCondizione, UnusableFieldValues) {
  FilterOnDemo f;
  f.Filter(Variant::Null(), Variant("R"), tsCliente);
  EXPECT_EQ(f.Sql(), "");
  EXPECT_TRUE(f.Boxes().empty());
  // An object has no text: the box of FiltroCondizione, nothing built.
  f.Filter(Variant(ObjectRef(f.db)), Variant("R"), tsCliente);
  EXPECT_EQ(BoxTags(f.Boxes()), std::vector<std::string>{"FiltroCondizione"});
  EXPECT_EQ(f.Sql(), "");
}

TEST(FiltroCondizione, TerminationNeverClosesTheConnection) {
  testing::DemoDatabaseFile file("filtroquery_terminate");
  std::shared_ptr<db::Connection> opened;
  {
    testing::RecordingEnv rec;
    CLSFW_FILTROQUERY filter(rec.env);
    filter.SetConnectionStringADO(file.ConnectionString());
    filter.SetCodiceUtente("ROSSI");
    filter.SetCodiceGruppo("VEN");
    filter.SetDittaCorrente(Variant(int32_t{1}));
    filter.FiltroCondizione(Variant("MG07_MACROAREA"));
    EXPECT_EQ(filter.CondRevoke(), "MG07_MACROAREA NOT IN (SUD')");
    EXPECT_TRUE(filter.Frame().ConnectionOwned());
    opened = filter.ConnectionADO();
  }
  ASSERT_TRUE(opened);
  EXPECT_EQ(opened->State(), db::kStateOpen);
}

TEST(FiltroCondizione, ByReferenceArgumentsAreLeftAsTheyCame) {
  FilterOnDemo f;
  std::string caption = "Macroarea";
  Variant field("MG07_MACROAREA");
  std::optional<Variant> report;  // omitted
  const Variant result = f.filter->FiltroCondizione(caption, field, report, tsGenerico);
  EXPECT_TRUE(result.IsEmpty());
  EXPECT_EQ(caption, "Macroarea");
  EXPECT_EQ(field.ToString(), "MG07_MACROAREA");
  EXPECT_FALSE(report.has_value());
  EXPECT_EQ(f.Report(), " (NOT (MG07_MACROAREA IN [SUD]))");
}

}  // namespace
}  // namespace zarvik::filtroquery
