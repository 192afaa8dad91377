// The three classes through their automation description, as a late-bound
// host calls them: what the JSON protocol cannot show (a write-only
// property, the user id a binding filled, Set of a Variant property), and
// by-reference results and omitted optionals of the classes' own methods.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "automation/automation_object.h"
#include "automation/type_library.h"
#include "db/connection.h"
#include "demo/demo_db.h"
#include "filtroquery/clsfw_filtroquery.h"
#include "frame/frame_test_support.h"
#include "frame/host_object.h"
#include "parser/clsfw_parser.h"
#include "platform/vb_error.h"
#include "rvkusers/clsfw_rvkusers.h"

namespace zarvik::automation {
namespace {

std::vector<Argument> Args(std::vector<Variant> values) {
  std::vector<Argument> args;
  for (Variant& v : values) args.push_back(Argument{std::move(v), false});
  return args;
}

std::string GetText(AutomationObject& object, const char* name) {
  std::vector<Argument> none;
  return object.Get(name, none).ToString();
}

TEST(ComponentDispatch, ParserContextProperties) {
  auto parser = CreateObject(BuildTypeLibrary(), "CLSFW_PARSER", CreationContext{});
  parser->PutProperty("IdUser", Variant("17"));
  EXPECT_THROW(parser->GetProperty("IdUser"), VbError);
  auto& typed = *static_cast<CLSFW_PARSER*>(parser->Instance());

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
  EXPECT_EQ(typed.Frame().UserId(), 6);
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
  // Customer field, report field omitted: it stands in for the report field.
  std::vector<Argument> args = {Argument{Variant("Cliente"), false},
                                Argument{Variant("CG44_CLIFOR"), false}, Argument::Missing(),
                                Argument{Variant(int32_t{tsCliente}), false}};
  EXPECT_TRUE(object->Call("FiltroCondizione", args).IsEmpty());
  EXPECT_EQ(GetText(*object, "CondRevoke"), "CG44_CLIFOR NOT IN (5,6,8,9,11)");
  EXPECT_EQ(GetText(*object, "CondRevokeCrystal"), " (NOT (CG44_CLIFOR IN [5,6,8,9,11]))");
  // The by-reference arguments come back as they were.
  EXPECT_EQ(args[0].value.ToString(), "Cliente");
  EXPECT_EQ(args[1].value.ToString(), "CG44_CLIFOR");
  EXPECT_TRUE(args[2].missing);
  // The kind omitted arrives as zero: no customer condition.
  args = Args({Variant("Cliente"), Variant("CG44_CLIFOR"), Variant("{CG44.CLIFOR}")});
  object->Call("FiltroCondizione", args);
  EXPECT_EQ(GetText(*object, "CondRevoke") + GetText(*object, "CondRevokeCrystal"), "");
  EXPECT_EQ(GetText(*object, "FlgGrpRevoke"), "0");
  EXPECT_TRUE(rec.sink->messages.empty());
  // The result properties are read-only.
  EXPECT_THROW(object->Put("CondRevoke", Variant("x")), VbError);
}

TEST(ComponentDispatch, LoginOfALockedUser) {
  const auto connection = demo::OpenDemoDatabase(":memory:");
  auto rvk = CreateObject(BuildTypeLibrary(), "CLSFW_RVKUSERS", CreationContext{});
  rvk->PutProperty("ConnectionADO", Variant(ObjectRef(connection)));
  rvk->PutProperty("MaxNumTry", Variant("3"));
  EXPECT_EQ(rvk->GetProperty("MaxNumTry").Type(), VarType::kInteger);
  EXPECT_EQ(rvk->GetProperty("IsRevoked").ToLong(), NoRevoke);

  // GALLO is locked: Risultato comes back as 2, a 16-bit value. Gruppo is
  // omitted.
  std::vector<Argument> args = {Argument{Variant(int32_t{1})}, Argument{Variant("PC-GALLO")},
                                Argument::Missing(), Argument{Variant("cgallo")}};
  rvk->Call("LoginRvk", args);
  EXPECT_EQ(args[0].value.Type(), VarType::kInteger);
  EXPECT_EQ(args[0].value.ToLong(), 2);
  EXPECT_EQ(args[3].value.ToString(), "cgallo");
  const Variant status = rvk->GetProperty("IsRevoked");
  EXPECT_EQ(status.Type(), VarType::kLong);
  EXPECT_EQ(status.ToLong(), RevokeVantor);

  // Only the first two arguments: the login name is "", nobody is found.
  std::vector<Argument> two = Args({Variant(int32_t{1}), Variant("PC")});
  rvk->Call("LoginRvk", two);
  EXPECT_EQ(two[0].value.ToLong(), 1);
  EXPECT_EQ(rvk->GetProperty("IsRevoked").ToLong(), NoRevoke);

  // TerminateConnection releases the host's connection without closing it.
  std::vector<Argument> none;
  rvk->Call("TerminateConnection", none);
  EXPECT_TRUE(rvk->GetProperty("ConnectionADO").IsNothing());
  EXPECT_EQ(connection->State(), db::kStateOpen);
}

}  // namespace
}  // namespace zarvik::automation
