// The condition builders through the automation boundary: every member is
// described, omitted optional arguments take their defaults, by-reference
// arguments come back, and the answers equal those of the typed calls.
#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "automation/automation_object.h"
#include "automation/dispatcher.h"
#include "automation/type_library.h"
#include "condition_test_support.h"

namespace zarvik {
namespace {

using automation::Argument;

class ConditionDispatchTest : public testing::ConditionTest {
 protected:
  ConditionDispatchTest() {
    automation::CreationContext context;
    context.env = Env{sink, std::make_shared<SystemClock>()};
    object = automation::CreateObject(library, "CLSFW_PARSER", context);
    object->PutProperty("ConnectionADO", Variant(ObjectRef(db)));
    object->PutProperty("DittaCorrente", Variant(int32_t{1}));
    object->PutProperty("CodiceGruppo", Variant("VEN"));
    object->PutProperty("CodiceUtente", Variant("ROSSI"));
    object->PutProperty("CodiceUtenteCLIFOR", Variant("ROSSI"));
    AsRossi();
  }

  Variant Call(const std::string& name, std::vector<Argument> args) {
    return object->Call(name, args);
  }
  static Argument Arg(const Variant& v) { return Argument{v, false}; }

  const automation::TypeLibrary library = automation::BuildTypeLibrary();
  std::shared_ptr<automation::AutomationObject> object;
};

TEST_F(ConditionDispatchTest, EveryConditionMemberIsDescribed) {
  const auto cls = library.FindClass("CLSFW_PARSER");
  ASSERT_NE(cls, nullptr);
  std::istringstream names(
      "SQLConditionCliFor CLIFORCondition SQLConditionDestinazioni CliForRevocati "
      "SQLConditionDepositi SQLConditionSediMov SQLConditionDocMG36 "
      "SQLConditionAgentiDoc SQLConditionDO11 SQLConditionContesto "
      "SQLConditionProgetto SQLConditionNodo SQLConditionWizAnag "
      "SQLConditionTracciatiImport SQLConditionTracciatiExport SQLConditionInsiemi "
      "SQLConditionContiPDC SQLConditionContiPDCBloccati SQLinnerjoinContiPDCBloccati "
      "SQLConditionCodSimPD90");
  for (std::string name; names >> name;) {
    EXPECT_NE(cls->Find(name, automation::MemberKind::kMethod), nullptr) << name;
  }
  // The agent rule is private to the class.
  EXPECT_FALSE(cls->HasMember("AgentRule"));
}

TEST_F(ConditionDispatchTest, OmittedOptionalArgumentsTakeTheirDefaults) {
  EXPECT_EQ(
      Call("SQLConditionDepositi", {Arg("DO11_CODDEP"), Arg(Variant::Boolean(true))}).ToString(),
      parser.SQLConditionDepositi("DO11_CODDEP", true, true));
  EXPECT_EQ(
      Call("SQLConditionSediMov", {Arg("S"), Arg(Variant::Boolean(false)), Argument::Missing()})
          .ToString(),
      " (S NOT IN (3 , 12 ) OR S IS NULL )");
  EXPECT_EQ(Call("SQLConditionCliFor", {Arg("CG44"), Arg(Variant(int32_t{1}))}).ToString(),
            parser.SQLConditionCliFor("CG44", true));
  EXPECT_EQ(
      Call("SQLConditionContiPDC", {Arg("G"), Arg("C"), Arg(Variant::Boolean(false))}).ToString(),
      parser.SQLConditionContiPDC("G", "C", false, true));
  EXPECT_EQ(Call("SQLinnerjoinContiPDCBloccati", {Arg("G"), Arg("C")}).ToString(),
            parser.SQLinnerjoinContiPDCBloccati("G", "C", false));
  // Numbers for a 16-bit wizard kind and a Variant layout column.
  EXPECT_EQ(Call("SQLConditionWizAnag",
                 {Arg(Variant(int32_t{4})), Arg("M"), Arg("I"), Arg(Variant::Boolean(false))})
                .ToString(),
            parser.SQLConditionWizAnag(4, "M", "I", false));
  EXPECT_EQ(Call("SQLConditionTracciatiImport",
                 {Arg("S"), Arg(Variant(int32_t{7})), Arg(Variant::Boolean(true))})
                .ToString(),
            parser.SQLConditionTracciatiImport("S", Variant(int32_t{7}), true));
  EXPECT_TRUE(Boxes().empty());
}

TEST_F(ConditionDispatchTest, OlderEntryPointTakesItsArgumentsByReference) {
  std::vector<Argument> args{Arg("cg44"), Arg(Variant(int32_t{1}))};
  const Variant text = object->Call("CLIFORCondition", args);
  EXPECT_EQ(text.ToString(), parser.SQLConditionCliFor("CG44", true, "", "", "", false));
  EXPECT_EQ(args[0].value.ToString(), "cg44");
  EXPECT_EQ(args[1].value.Type(), VarType::kBoolean);
  EXPECT_EQ(args[1].value.RawNumber(), -1);
}

TEST_F(ConditionDispatchTest, RecordsetOfRevokedCustomersAndAMissingArgument) {
  auto recordset = std::dynamic_pointer_cast<db::Recordset>(Call("CliForRevocati", {}).ToObject());
  ASSERT_NE(recordset, nullptr);
  EXPECT_EQ(recordset->GetProperty("RecordCount").ToLong(), 8);
  try {
    Call("SQLConditionDO11", {});
    FAIL() << "no error";
  } catch (const VbError& e) {
    EXPECT_EQ(e.Number(), vberr::kWrongArgCount);
  }
}

}  // namespace
}  // namespace zarvik
