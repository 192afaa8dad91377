// CLSFW_FILTROQUERY through its automation description, as a late-bound
// host calls it, and the query-filter scene of the demo tour.
#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "automation/automation_object.h"
#include "automation/dispatcher.h"
#include "automation/query_filter_scene.h"
#include "automation/type_library.h"
#include "demo/demo_db.h"
#include "filtroquery/clsfw_filtroquery.h"
#include "frame/frame_test_support.h"

namespace zarvik::automation {
namespace {

TEST(FiltroQueryAutomation, EnumAndMembersAreDescribed) {
  const TypeLibrary library = BuildTypeLibrary();
  const EnumDescription* kinds = library.FindEnum("tsEnumTipologie");
  ASSERT_NE(kinds, nullptr);
  const std::vector<std::pair<std::string, int32_t>> expected = {
      {"tsGenerico", 1}, {"tsCliente", 2}, {"tsFornitore", 3}, {"tsDeposito", 4}, {"tsCausale", 5}};
  EXPECT_EQ(kinds->values, expected);

  const auto cls = library.FindClass("CLSFW_FILTROQUERY");
  ASSERT_TRUE(cls);
  const MemberDescription* filter = cls->Find("FiltroCondizione", MemberKind::kMethod);
  ASSERT_NE(filter, nullptr);
  ASSERT_EQ(filter->params.size(), 4u);
  EXPECT_TRUE(filter->params[0].by_ref && filter->params[1].by_ref && filter->params[2].by_ref);
  EXPECT_TRUE(filter->params[2].optional);
  EXPECT_FALSE(filter->params[2].default_value.has_value());
  EXPECT_TRUE(filter->params[3].optional);
  EXPECT_EQ(filter->params[3].type.name, "tsEnumTipologie");
  // Read-only properties.
  for (const char* name : {"CondRevoke", "CondRevokeCrystal"}) {
    EXPECT_NE(cls->Find(name, MemberKind::kPropertyGet), nullptr) << name;
    EXPECT_EQ(cls->Find(name, MemberKind::kPropertyLet), nullptr) << name;
  }
}

TEST(FiltroQueryAutomation, LateBoundCalls) {
  const TypeLibrary library = BuildTypeLibrary();
  zarvik::testing::RecordingEnv rec;
  CreationContext context;
  context.env = rec.env;
  const auto object = CreateObject(library, "CLSFW_FILTROQUERY", context);
  object->Put("ConnectionADO", Variant(ObjectRef(demo::OpenDemoDatabase(":memory:"))));
  object->Put("CodiceUtente", Variant("ROSSI"));
  object->Put("CodiceGruppo", Variant("VEN"));
  object->Put("DittaCorrente", Variant(int32_t{1}));
  auto get = [&](const char* name) {
    std::vector<Argument> none;
    return object->Get(name, none).ToString();
  };
  // Customer field, report field omitted.
  std::vector<Argument> args = {Argument{Variant("Cliente"), false},
                                Argument{Variant("CG44_CLIFOR"), false}, Argument::Missing(),
                                Argument{Variant(int32_t{tsCliente}), false}};
  EXPECT_TRUE(object->Call("FiltroCondizione", args).IsEmpty());
  EXPECT_EQ(get("CondRevoke"), "CG44_CLIFOR NOT IN (5,6,8,9,11)");
  EXPECT_EQ(get("CondRevokeCrystal"), " (NOT (CG44_CLIFOR IN [5,6,8,9,11]))");
  // The by-reference arguments come back as they were.
  EXPECT_EQ(args[0].value.ToString(), "Cliente");
  EXPECT_EQ(args[1].value.ToString(), "CG44_CLIFOR");
  // The kind omitted arrives as zero: no customer condition.
  args = {Argument{Variant("Cliente"), false}, Argument{Variant("CG44_CLIFOR"), false},
          Argument{Variant("{CG44.CLIFOR}"), false}};
  object->Call("FiltroCondizione", args);
  EXPECT_EQ(get("CondRevoke") + get("CondRevokeCrystal"), "");
  args = {Argument{Variant("Macroarea"), false}, Argument{Variant("MG07_MACROAREA"), false},
          Argument{Variant("{MG07.MACROAREA}"), false}};
  object->Call("FiltroCondizione", args);
  EXPECT_EQ(get("CondRevoke"), "MG07_MACROAREA NOT IN (SUD')");
  EXPECT_EQ(get("CondRevokeCrystal"), " (NOT ({MG07.MACROAREA} IN [SUD]))");
  EXPECT_EQ(get("FlgGrpRevoke"), "0");
  EXPECT_TRUE(rec.sink->messages.empty());
}

TEST(QueryFilterScene, ShowsBothFormsAndTheBoxes) {
  const auto database = demo::OpenDemoDatabase(":memory:");
  std::ostringstream out;
  demo::TourContext tour{*database, out};
  cli::ShowQueryFilterScene(tour);
  const std::string text = out.str();
  // SQL and report form of one field on the same line.
  EXPECT_NE(text.find("\"MG09_ZONA NOT IN (TO')\"  " + std::string(38 - 24, ' ') +
                      "\" (NOT (MG09_ZONA IN [TO]))\""),
            std::string::npos)
      << text;
  for (const char* part :
       {"\"CG44_CLIFOR NOT IN (104)\"", "\"(1=1)\"", "CLSFW_FILTROQUERY - CliForRevocati",
        "CLSFW_FILTROQUERY - FiltroCondizione"}) {
    EXPECT_NE(text.find(part), std::string::npos) << part;
  }
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    EXPECT_LE(line.size(), 100u) << line;
    EXPECT_TRUE(line.empty() || line.back() != ' ') << line;
  }
}

}  // namespace
}  // namespace zarvik::automation
