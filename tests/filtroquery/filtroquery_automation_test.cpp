// CLSFW_FILTROQUERY through its automation description, as a late-bound
// host calls it.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "automation/automation_object.h"
#include "automation/dispatcher.h"
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
  EXPECT_TRUE(filter->params[0].by_ref);
  EXPECT_TRUE(filter->params[1].by_ref);
  EXPECT_TRUE(filter->params[2].by_ref);
  EXPECT_TRUE(filter->params[2].optional);
  EXPECT_FALSE(filter->params[2].default_value.has_value());
  EXPECT_TRUE(filter->params[3].optional);
  EXPECT_EQ(filter->params[3].type.name, "tsEnumTipologie");
  EXPECT_NE(cls->Find("CondRevoke", MemberKind::kPropertyGet), nullptr);
  EXPECT_NE(cls->Find("CondRevokeCrystal", MemberKind::kPropertyGet), nullptr);
  // Read-only properties.
  EXPECT_EQ(cls->Find("CondRevoke", MemberKind::kPropertyLet), nullptr);
  EXPECT_EQ(cls->Find("CondRevokeCrystal", MemberKind::kPropertyLet), nullptr);
}

class LateBoundFilter : public ::testing::Test {
 protected:
  void SetUp() override {
    CreationContext context;
    context.env = rec_.env;
    object_ = CreateObject(library_, "CLSFW_FILTROQUERY", context);
    object_->Put("ConnectionADO", Variant(ObjectRef(db_)));
    object_->Put("CodiceUtente", Variant("ROSSI"));
    object_->Put("CodiceGruppo", Variant("VEN"));
    object_->Put("DittaCorrente", Variant(int32_t{1}));
  }

  Variant Get(const std::string& name) {
    std::vector<Argument> none;
    return object_->Get(name, none);
  }

  TypeLibrary library_ = BuildTypeLibrary();
  zarvik::testing::RecordingEnv rec_;
  std::shared_ptr<db::Connection> db_ = demo::OpenDemoDatabase(":memory:");
  std::shared_ptr<AutomationObject> object_;
};

TEST_F(LateBoundFilter, CustomerFieldWithReportFieldOmitted) {
  std::vector<Argument> args = {Argument{Variant("Cliente"), false},
                                Argument{Variant("CG44_CLIFOR"), false}, Argument::Missing(),
                                Argument{Variant(int32_t{tsCliente}), false}};
  const Variant result = object_->Call("FiltroCondizione", args);
  EXPECT_TRUE(result.IsEmpty());
  EXPECT_EQ(Get("CondRevoke").ToString(), "CG44_CLIFOR NOT IN (5,6,8,9,11)");
  EXPECT_EQ(Get("CondRevokeCrystal").ToString(), " (NOT (CG44_CLIFOR IN [5,6,8,9,11]))");
  // The by-reference arguments come back as they were.
  EXPECT_EQ(args[0].value.ToString(), "Cliente");
  EXPECT_EQ(args[1].value.ToString(), "CG44_CLIFOR");
  EXPECT_TRUE(rec_.sink->messages.empty());
}

TEST_F(LateBoundFilter, KindOmittedArrivesAsZero) {
  std::vector<Argument> args = {Argument{Variant("Cliente"), false},
                                Argument{Variant("CG44_CLIFOR"), false},
                                Argument{Variant("{CG44.CLIFOR}"), false}};
  object_->Call("FiltroCondizione", args);
  EXPECT_EQ(Get("CondRevoke").ToString(), "");
  EXPECT_EQ(Get("CondRevokeCrystal").ToString(), "");
}

TEST_F(LateBoundFilter, AreaFieldWithReportField) {
  std::vector<Argument> args = {Argument{Variant("Macroarea"), false},
                                Argument{Variant("MG07_MACROAREA"), false},
                                Argument{Variant("{MG07.MACROAREA}"), false}};
  object_->Call("FiltroCondizione", args);
  EXPECT_EQ(Get("CondRevoke").ToString(), "MG07_MACROAREA NOT IN (SUD')");
  EXPECT_EQ(Get("CondRevokeCrystal").ToString(), " (NOT ({MG07.MACROAREA} IN [SUD]))");
  EXPECT_EQ(Get("FlgGrpRevoke").ToLong(), 0);
}

}  // namespace
}  // namespace zarvik::automation
