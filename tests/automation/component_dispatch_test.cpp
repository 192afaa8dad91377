// The three classes through their automation description, as a late-bound
// host calls them: what the JSON protocol cannot show (a write-only
// property, the user id a binding filled, Set of a Variant property),
// by-reference results, omitted optionals and record results.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "automation/automation_object.h"
#include "automation/record_object.h"
#include "automation/type_library.h"
#include "db/recordset.h"
#include "demo/demo_db.h"
#include "filtroquery/clsfw_filtroquery.h"
#include "frame/frame_test_support.h"
#include "frame/host_object.h"
#include "parser/parser_test_support.h"
#include "platform/platform_test_support.h"
#include "platform/vb_error.h"
#include "rvkusers/clsfw_rvkusers.h"

namespace zarvik::automation {
namespace {

std::vector<Argument> Args(std::vector<Variant> values) {
  std::vector<Argument> args;
  for (Variant& v : values) args.push_back(Argument{std::move(v), false});
  return args;
}

Variant Call(AutomationObject& object, const std::string& name, std::vector<Variant> values) {
  std::vector<Argument> args = Args(std::move(values));
  return object.Call(name, args);
}

TEST(ComponentDispatch, ParserContextProperties) {
  auto parser = CreateObject(BuildTypeLibrary(), "CLSFW_PARSER", CreationContext{});
  parser->PutProperty("IdUser", Variant("17"));
  EXPECT_THROW(parser->GetProperty("IdUser"), VbError);
  auto company = std::make_shared<HostObject>();
  parser->PutProperty("DittaCorrente", Variant(ObjectRef(company)));
  EXPECT_EQ(parser->GetProperty("DittaCorrente").ToObject(), company);
  auto user = MakeHostObject({{"idutente", Variant(int32_t{6})},
                              {"codice", Variant("BIANCHI")},
                              {"Gruppo", Variant("VEN")}});
  auto global = MakeHostObject({{"Gcls_UtenteCorrente", Variant(ObjectRef(user))}});
  parser->PutProperty(
      "ActiveInterface",
      Variant(ObjectRef(MakeHostObject({{"ClsGlobal", Variant(ObjectRef(global))}}))));
  EXPECT_EQ(parser->GetProperty("CodiceUtente").ToString(), "BIANCHI");
  EXPECT_EQ(static_cast<CLSFW_PARSER*>(parser->Instance())->Frame().UserId(), 6);
}

class ParserDispatch : public ::testing::Test, public zarvik::testing::ParserSession {
 protected:
  ParserDispatch() : ParserSession("ROSSI") {
    CreationContext context;
    context.env = Env{sink, std::make_shared<SystemClock>()};
    object = CreateObject(BuildTypeLibrary(), "CLSFW_PARSER", context);
    object->PutProperty("ConnectionADO", Variant(ObjectRef(db)));
    object->PutProperty("DittaCorrente", Variant(int32_t{1}));
    for (const char* name : {"CodiceUtente", "CodiceUtenteCLIFOR"}) {
      object->PutProperty(name, Variant("ROSSI"));
    }
    object->PutProperty("CodiceGruppo", Variant("VEN"));
  }
  std::shared_ptr<AutomationObject> object;
};

TEST_F(ParserDispatch, AnswersAsTheTypedCallsWithOmittedOptionalsDefaulted) {
  const Variant g("G"), c("C"), t = Variant::Boolean(true), f = Variant::Boolean(false);
  const std::vector<std::pair<Variant, std::string>> cases = {
      {Call(*object, "SQLConditionDepositi", {Variant("D"), t}),
       parser.SQLConditionDepositi("D", true, true)},
      {Call(*object, "SQLConditionCliFor", {Variant("CG44"), Variant(int32_t{1})}),
       parser.SQLConditionCliFor("CG44", true)},
      {Call(*object, "SQLConditionContiPDC", {g, c, f}),
       parser.SQLConditionContiPDC("G", "C", false, true)},
      {Call(*object, "SQLinnerjoinContiPDCBloccati", {g, c}),
       parser.SQLinnerjoinContiPDCBloccati("G", "C", false)},
      {Call(*object, "SQLConditionWizAnag", {Variant(int32_t{4}), g, c, f}),
       parser.SQLConditionWizAnag(4, "G", "C", false)},
      {Call(*object, "SQLConditionTracciatiImport", {g, Variant(int32_t{7}), t}),
       parser.SQLConditionTracciatiImport("G", Variant(int32_t{7}), true)},
  };
  for (const auto& [dispatched, typed] : cases) EXPECT_EQ(dispatched.ToString(), typed);
  std::vector<Argument> omitted = {Argument{Variant("S")}, Argument{f}, Argument::Missing()};
  EXPECT_EQ(object->Call("SQLConditionSediMov", omitted).ToString(),
            parser.SQLConditionSediMov("S", false, true));
  const Variant blocked = Call(*object, "AutorizzaAttivitaSuDocumentoProduzione",
                               {Variant(int32_t{25}), Variant(int32_t{1}), Variant(int32_t{2})});
  EXPECT_EQ(blocked.Type(), VarType::kBoolean);
  EXPECT_TRUE(blocked.ToBool());
  EXPECT_EQ(Call(*object, "StatiArticoloMagaArray", {}).ToArray()->UBound(2), 3);
  auto revoked =
      std::dynamic_pointer_cast<db::Recordset>(Call(*object, "CliForRevocati", {}).ToObject());
  ASSERT_NE(revoked, nullptr);
  EXPECT_EQ(revoked->RecordCount(), 8);
  EXPECT_TRUE(Boxes().empty());
  EXPECT_EQ(test::ErrorOf([&] { Call(*object, "SQLConditionDO11", {}); }), vberr::kWrongArgCount);
}

TEST_F(ParserDispatch, ByReferenceArgumentsAndRecordsComeBack) {
  const std::string statement = "SELECT A.X FROM MG36_DOCUMENTI A WHERE 1 = 1 ORDER BY A.X";
  std::vector<Argument> args = Args({Variant(statement)});
  std::string buffer = statement;
  EXPECT_EQ(object->Call("ElaboraStrSQL", args).ToString(), parser.ElaboraStrSQL(buffer));
  EXPECT_EQ(args[0].value.ToString(), "SELECT A.X FROM MG36_DOCUMENTI A ");
  args = Args({Variant("cg44"), Variant(int32_t{1})});
  object->Call("CLIFORCondition", args);
  EXPECT_EQ(args[1].value.Type(), VarType::kBoolean);
  EXPECT_EQ(args[1].value.RawNumber(), -1);
  args = Args({Variant(int32_t{10}), Variant("1002"), Variant(int16_t{9}), Variant(int16_t{9})});
  EXPECT_FALSE(object->Call("ContoPDCBloccato", args).ToBool());
  EXPECT_EQ(args[2].value.ToInteger() * 10 + args[3].value.ToInteger(), 10);

  const Variant rights =
      Call(*object, "PermessiDocTipologie", {Variant("OCL"), Variant(int16_t{0})});
  auto record = std::dynamic_pointer_cast<RecordObject>(rights.ToObject());
  ASSERT_NE(record, nullptr);
  EXPECT_EQ(record->TypeName(), "tsRvkDocumenti");
  std::string fields;
  for (const auto& [name, value] : record->Fields()) {
    fields += name + (value.Type() == VarType::kBoolean && value.ToBool() ? "=T " : "=F ");
  }
  EXPECT_EQ(fields, "rvkExists=T CanDelete=T CanUpdate=F CanInsert=F ");
  EXPECT_FALSE(Call(*object, "InitRevokeFamiglia", {Variant("MEC")})
                   .ToObject()
                   ->GetProperty("CanUpdate")
                   .ToBool());
}

TEST(ComponentDispatch, FiltroCondizioneByReferenceAndOmittedArguments) {
  zarvik::testing::RecordingEnv rec;
  CreationContext context;
  context.env = rec.env;
  const auto object = CreateObject(BuildTypeLibrary(), "CLSFW_FILTROQUERY", context);
  object->Put("ConnectionADO", Variant(ObjectRef(demo::OpenDemoDatabase(":memory:"))));
  object->Put("CodiceUtente", Variant("ROSSI"));
  object->Put("CodiceGruppo", Variant("VEN"));
  object->Put("DittaCorrente", Variant(int32_t{1}));
  // Report field omitted: the data field stands in for it.
  std::vector<Argument> args = {Argument{Variant("Cliente")}, Argument{Variant("CG44_CLIFOR")},
                                Argument::Missing(), Argument{Variant(int32_t{tsCliente})}};
  EXPECT_TRUE(object->Call("FiltroCondizione", args).IsEmpty());
  std::vector<Argument> none;
  EXPECT_EQ(object->Get("CondRevokeCrystal", none).ToString(),
            " (NOT (CG44_CLIFOR IN [5,6,8,9,11]))");
  EXPECT_EQ(args[1].value.ToString(), "CG44_CLIFOR");
  EXPECT_TRUE(args[2].missing);
  // The kind omitted arrives as zero: no customer condition.
  args = Args({Variant("Cliente"), Variant("CG44_CLIFOR"), Variant("{CG44.CLIFOR}")});
  object->Call("FiltroCondizione", args);
  EXPECT_EQ(object->Get("CondRevoke", none).ToString(), "");
  EXPECT_TRUE(rec.sink->messages.empty());
  EXPECT_THROW(object->Put("CondRevoke", Variant("x")), VbError);  // read-only
}

TEST(ComponentDispatch, LoginOfALockedUser) {
  const auto connection = demo::OpenDemoDatabase(":memory:");
  auto rvk = CreateObject(BuildTypeLibrary(), "CLSFW_RVKUSERS", CreationContext{});
  rvk->PutProperty("ConnectionADO", Variant(ObjectRef(connection)));
  rvk->PutProperty("MaxNumTry", Variant("3"));
  EXPECT_EQ(rvk->GetProperty("MaxNumTry").Type(), VarType::kInteger);
  // GALLO is locked: Risultato comes back as 2, a 16-bit value; Gruppo omitted.
  std::vector<Argument> args = {Argument{Variant(int32_t{1})}, Argument{Variant("PC-GALLO")},
                                Argument::Missing(), Argument{Variant("cgallo")}};
  rvk->Call("LoginRvk", args);
  EXPECT_EQ(args[0].value.Type(), VarType::kInteger);
  EXPECT_EQ(args[0].value.ToLong(), 2);
  const Variant status = rvk->GetProperty("IsRevoked");
  EXPECT_EQ(status.Type(), VarType::kLong);
  EXPECT_EQ(status.ToLong(), RevokeVantor);
  // Only the first two arguments: the login name is "", nobody is found.
  Call(*rvk, "LoginRvk", {Variant(int32_t{1}), Variant("PC")});
  EXPECT_EQ(rvk->GetProperty("IsRevoked").ToLong(), NoRevoke);
  // TerminateConnection releases the host's connection without closing it.
  Call(*rvk, "TerminateConnection", {});
  EXPECT_TRUE(rvk->GetProperty("ConnectionADO").IsNothing());
  EXPECT_EQ(connection->State(), db::kStateOpen);
}

}  // namespace
}  // namespace zarvik::automation
