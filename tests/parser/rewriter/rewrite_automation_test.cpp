// ElaboraStrSQL through the automation boundary: described with its
// by-reference argument, the answer equal to the typed call, the argument
// handed back consumed.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "automation/automation_object.h"
#include "automation/type_library.h"
#include "rewriter_probe.h"

namespace zarvik {
namespace {

TEST(RewriteAutomation, ElaboraStrSQLIsDescribedWithItsByReferenceArgument) {
  const automation::TypeLibrary library = automation::BuildTypeLibrary();
  const auto cls = library.FindClass("CLSFW_PARSER");
  ASSERT_NE(cls, nullptr);
  const auto* member = cls->Find("ElaboraStrSQL", automation::MemberKind::kMethod);
  ASSERT_NE(member, nullptr);
  ASSERT_EQ(member->params.size(), 1U);
  EXPECT_EQ(member->params[0].name, "nStrSQL");
  EXPECT_TRUE(member->params[0].by_ref);
  // The explained form is not part of the interface.
  EXPECT_FALSE(cls->HasMember("ElaboraStrSQLExplained"));
}

TEST(RewriteAutomation, CallThroughTheDispatcherEqualsTheTypedCall) {
  const automation::TypeLibrary library = automation::BuildTypeLibrary();
  testing::RewriterSession typed("ROSSI");
  auto sink = std::make_shared<RecordingMessageSink>();
  automation::CreationContext context;
  context.env = Env{sink, std::make_shared<SystemClock>()};
  const auto object = automation::CreateObject(library, "CLSFW_PARSER", context);
  object->PutProperty("ConnectionADO", Variant(ObjectRef(typed.db)));
  object->PutProperty("DittaCorrente", Variant(int32_t{1}));
  object->PutProperty("CodiceGruppo", Variant("VEN"));
  object->PutProperty("CodiceUtente", Variant("ROSSI"));

  const std::string statement =
      "SELECT A.MG36_NUMREG FROM MG36_DOCUMENTI A WHERE A.MG36_DITTA_CG18 = 1 ORDER BY "
      "A.MG36_NUMREG";
  std::vector<automation::Argument> args = {automation::Argument{Variant(statement), false}};
  const Variant answer = object->Call("ElaboraStrSQL", args);

  std::string buffer = statement;
  EXPECT_EQ(answer.ToString(), typed.parser.ElaboraStrSQL(buffer));
  // The by-reference argument comes back as the working buffer left it.
  EXPECT_EQ(args[0].value.ToString(), "SELECT A.MG36_NUMREG FROM MG36_DOCUMENTI A ");
  EXPECT_EQ(args[0].value.ToString(), buffer);
  EXPECT_TRUE(sink->messages.empty());
}

}  // namespace
}  // namespace zarvik
