// The three classes called late-bound through their descriptions, as a host calls them.
#include "automation/dispatcher.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "automation/automation_object.h"
#include "automation/record_object.h"
#include "automation/type_library.h"
#include "filtroquery/clsfw_filtroquery.h"
#include "frame/frame_test_support.h"
#include "frame/host_object.h"
#include "parser/parser_test_support.h"
#include "platform/platform_test_support.h"
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

std::shared_ptr<AutomationObject> Make(const char* cls, const Env& env = Env{}) {
  CreationContext context;
  context.env = env;
  return CreateObject(BuildTypeLibrary(), cls, context);
}

TEST(Dispatch, PropertiesArriveInTheDeclaredTypeAndNamesIgnoreCase) {
  const auto rvk = Make("CLSFW_RVKUSERS");
  const auto filter = Make("CLSFW_FILTROQUERY");
  const std::tuple<AutomationObject*, const char*, Variant, VarType, Variant> cases[] = {
      {rvk.get(), "MaxNumTry", Variant(int32_t{1}), VarType::kInteger, Variant(int16_t{1})},
      {rvk.get(), "maxnumtry", Variant("12"), VarType::kInteger, Variant(int16_t{12})},
      {rvk.get(), "MaxNumTry", Variant(), VarType::kInteger, Variant(int16_t{0})},
      {filter.get(), "RevokeDisabilitata", Variant(int32_t{5}), VarType::kBoolean,
       Variant::Boolean(true)},
      {filter.get(), "CodiceUtente", Variant(int32_t{5}), VarType::kString, Variant("5")},
      {filter.get(), "DittaCorrente", Variant::Null(), VarType::kNull, Variant::Null()},
  };
  for (const auto& [object, name, in, type, out] : cases) {
    object->PutProperty(name, in);
    const Variant got = object->GetProperty(name);
    EXPECT_EQ(got.Type(), type) << name << "(" << in.ConcatText() << ")";
    EXPECT_TRUE(type == VarType::kNull || VbEquals(got, out))
        << name << "(" << in.ConcatText() << ")";
  }
  EXPECT_EQ(filter->GetProperty("REVOKEDISABILITATA").RawNumber(), -1);  // True crosses as -1
  EXPECT_EQ(Call(*rvk, "MaxNumTry", {}).ToLong(), 0);  // a property answers a call
}

TEST(Dispatch, CallsTheBoundaryCannotMakeAreErrors) {
  const auto rvk = Make("CLSFW_RVKUSERS");
  const auto filter = Make("CLSFW_FILTROQUERY");
  const auto parser = Make("CLSFW_PARSER");
  const Variant object(ObjectRef(std::make_shared<HostObject>()));
  const std::tuple<const char*, std::function<void()>, int32_t> cases[] = {
      {"overflow", [&] { rvk->Put("MaxNumTry", Variant(int32_t{40000})); }, vberr::kOverflow},
      {"text", [&] { rvk->Put("MaxNumTry", Variant("abc")); }, vberr::kTypeMismatch},
      {"Null", [&] { rvk->Put("MaxNumTry", Variant::Null()); }, vberr::kTypeMismatch},
      {"object as text", [&] { filter->Put("CodiceUtente", object); }, vberr::kTypeMismatch},
      {"not a connection", [&] { rvk->Put("ConnectionADO", object); }, vberr::kTypeMismatch},
      {"text for Set", [&] { rvk->Put("ConnectionADO", Variant("DSN=x")); }, vberr::kNotSupported},
      {"read-only", [&] { filter->Put("CondRevoke", Variant("x")); }, vberr::kNotSupported},
      {"write-only", [&] { parser->GetProperty("IdUser"); }, vberr::kNotSupported},
      {"no such member", [&] { Call(*rvk, "Nope", {}); }, vberr::kNotSupported},
      {"too few", [&] { Call(*rvk, "LoginRvk", {Variant(int32_t{1})}); }, vberr::kWrongArgCount},
      {"too many", [&] { Call(*rvk, "TerminateConnection", {Variant(int32_t{1})}); },
       vberr::kWrongArgCount},
      {"not optional",
       [&] {
         std::vector<Argument> args = {Argument::Missing(), Argument{Variant("PC")}};
         rvk->Call("LoginRvk", args);
       },
       kArgumentNotOptional},
      {"Nothing for Set", [&] { rvk->Put("ConnectionADO", Variant::Nothing()); }, 0},
  };
  for (const auto& [name, call, error] : cases) EXPECT_EQ(test::ErrorOf(call), error) << name;
}

class ParserDispatch : public ::testing::Test, public zarvik::testing::ParserSession {
 protected:
  ParserDispatch() : ParserSession("ROSSI") {
    object = Make("CLSFW_PARSER", Env{sink, std::make_shared<SystemClock>()});
    object->PutProperty("ConnectionADO", Variant(ObjectRef(db)));
    object->PutProperty("DittaCorrente", Variant(int32_t{1}));
    object->PutProperty("CodiceUtente", Variant("ROSSI"));
    object->PutProperty("CodiceUtenteCLIFOR", Variant("ROSSI"));
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
  EXPECT_TRUE(blocked.Type() == VarType::kBoolean && blocked.ToBool());
  std::vector<Argument> none;
  EXPECT_EQ(object->Get("StatiArticoloMagaArray", none).ToArray()->UBound(2), 3);
  auto revoked =
      std::dynamic_pointer_cast<db::Recordset>(Call(*object, "CliForRevocati", {}).ToObject());
  ASSERT_NE(revoked, nullptr);
  EXPECT_EQ(revoked->RecordCount(), 8);
  EXPECT_TRUE(Boxes().empty());
}

TEST_F(ParserDispatch, ByReferenceArgumentsAndRecordsComeBack) {
  const std::string statement = "SELECT A.X FROM MG36_DOCUMENTI A WHERE 1 = 1 ORDER BY A.X";
  std::vector<Argument> args = Args({Variant(statement)});
  std::string buffer = statement;
  EXPECT_EQ(object->Call("ElaboraStrSQL", args).ToString(), parser.ElaboraStrSQL(buffer));
  EXPECT_EQ(args[0].value.ToString(), "SELECT A.X FROM MG36_DOCUMENTI A ");
  args = Args({Variant("cg44"), Variant(int32_t{1})});
  object->Call("CLIFORCondition", args);
  EXPECT_TRUE(args[1].value.Type() == VarType::kBoolean && args[1].value.RawNumber() == -1);
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
                   ->GetProperty("canupdate")
                   .ToBool());
}

TEST(Dispatch, FiltroCondizioneByReferenceAndOmittedArguments) {
  zarvik::testing::RecordingEnv rec;
  const auto object = Make("CLSFW_FILTROQUERY", rec.env);
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
  EXPECT_TRUE(args[2].missing);
  EXPECT_EQ(args[3].value.Type(), VarType::kLong);  // a by-value argument is left as it was
  // The kind omitted arrives as zero: no customer condition.
  args = Args({Variant("Cliente"), Variant("CG44_CLIFOR"), Variant("{CG44.CLIFOR}")});
  object->Call("FiltroCondizione", args);
  EXPECT_EQ(object->Get("CondRevoke", none).ToString(), "");
  EXPECT_TRUE(rec.sink->messages.empty());
}

TEST(Dispatch, LoginOfALockedUser) {
  auto rvk = Make("CLSFW_RVKUSERS");
  rvk->PutProperty("ConnectionADO", Variant(ObjectRef(demo::OpenDemoDatabase(":memory:"))));
  // GALLO is locked: Risultato comes back as 2, a 16-bit value; Gruppo omitted.
  std::vector<Argument> args = {Argument{Variant(int32_t{1})}, Argument{Variant("PC-GALLO")},
                                Argument::Missing(), Argument{Variant("cgallo")}};
  rvk->Call("LoginRvk", args);
  EXPECT_TRUE(args[0].value.Type() == VarType::kInteger && args[0].value.ToLong() == 2);
  EXPECT_TRUE(args[2].missing);
  const Variant status = rvk->GetProperty("IsRevoked");  // an enum crosses as a Long
  EXPECT_TRUE(status.Type() == VarType::kLong && status.ToLong() == RevokeVantor);
  // Only the first two arguments: the login name is "", nobody is found.
  Call(*rvk, "LoginRvk", {Variant(int32_t{1}), Variant("PC")});
  EXPECT_EQ(rvk->GetProperty("IsRevoked").ToLong(), NoRevoke);
  Call(*rvk, "TerminateConnection", {});
  EXPECT_TRUE(rvk->GetProperty("ConnectionADO").IsNothing());
}

}  // namespace
}  // namespace zarvik::automation
