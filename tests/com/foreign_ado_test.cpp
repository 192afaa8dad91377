// The component on a foreign ADO (the tests' own, ado_objects.h): the
// connection it opens, the one the host hands in, the recordsets it hands
// back and the stored-procedure command all go through the ADO objects, and
// every answer is the one the component's own engine gives.
#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "com/ado_objects.h"
#include "frame/frame_test_support.h"
#include "frame/host_object.h"
#include "parser/clsfw_parser.h"
#include "rvkusers/clsfw_rvkusers.h"

namespace zarvik::testing {
namespace {

auto Ask(CLSFW_PARSER& p) {
  std::string statement = "SELECT * FROM DO11_DOCTESTATA";
  int16_t can_abilitato = 7;
  int16_t can_visualizza = 7;
  const bool blocked = p.ContoPDCBloccato(10, "1002", can_abilitato, can_visualizza);
  auto states = p.StatiArticoloMaga();
  return std::make_tuple(p.ElaboraStrSQL(statement), p.SQLConditionCliFor("CG44", true),
                         p.StatiArticoloMagaArray().ToArray()->UBound(1), blocked, can_abilitato,
                         can_visualizza, p.InitRevokeFamiglia("MEC").CanUpdate,
                         states->Fields("MG6W_INDSTATO").ToString());
}

void SetRossi(CLSFW_PARSER& p) {
  p.SetCodiceGruppo("VEN");
  p.SetCodiceUtente("ROSSI");
  p.SetDittaCorrente(Variant(int32_t{1}));
}

TEST(ForeignAdo, OwnConnectionIsAnAdoConnectionAndAnswersAsTheEngine) {
  DemoDatabaseFile file("foreign_ado_own");
  RecordingEnv native;
  RecordingEnv foreign;
  auto ado = std::make_shared<AdoFactory>();
  foreign.env.data_access = ado;
  CLSFW_PARSER engine(native.env);
  CLSFW_PARSER parser(foreign.env);
  auto engine_sent = std::make_shared<db::StatementLog>();
  auto parser_sent = std::make_shared<db::StatementLog>();
  engine.SetStatementLog(engine_sent);
  parser.SetStatementLog(parser_sent);
  for (CLSFW_PARSER* p : {&engine, &parser}) {
    p->SetConnectionStringADO(file.ConnectionString());
    SetRossi(*p);
  }
  EXPECT_EQ(Ask(parser), Ask(engine));
  EXPECT_EQ(parser_sent->statements, engine_sent->statements);  // procedure calls included
  EXPECT_TRUE(native.sink->messages.empty());
  EXPECT_TRUE(foreign.sink->messages.empty());
  EXPECT_EQ(std::vector<std::string>(ado->calls->begin(), ado->calls->begin() + 7),
            (std::vector<std::string>{
                "CommandTimeout=100", "ConnectionString=" + file.ConnectionString(),
                "ConnectionTimeout=100", "IsolationLevel=4096", "CursorLocation=3", "Open(,,,-1)",
                "Execute(" + parser.Frame().ResolveUserStatement() + ",,1)"}));
  // The recordset handed to the host is the ADO recordset itself.
  auto states = parser.StatiArticoloMaga();
  ASSERT_TRUE(states && states->Peer());
  EXPECT_EQ(states->Peer()->TypeName(), "Recordset");
}

TEST(ForeignAdo, HostsConnectionIsUsedAndLeftOpen) {
  DemoDatabaseFile file("foreign_ado_host");
  RecordingEnv foreign;
  auto ado = std::make_shared<AdoFactory>();
  foreign.env.data_access = ado;
  ObjectRef connection = ado->CreateObject("ADODB.Connection");
  connection->PutProperty("ConnectionString", Variant(file.ConnectionString()));
  std::vector<Variant> none;
  connection->CallMethod("Open", none);
  {
    CLSFW_PARSER parser(foreign.env);
    SetRossi(parser);
    parser.SetActiveInterface(MakeHostObject({{"Connection", Variant(connection)}}));
    ASSERT_TRUE(parser.ConnectionADO());
    EXPECT_EQ(parser.ConnectionADO()->Peer(), connection);
    EXPECT_TRUE(parser.DittaBloccata(Variant(int32_t{2})));
  }
  EXPECT_EQ(connection->GetProperty("State").ToLong(), 1);

  // rs(0) of SELECT COUNT(*), as a host reads it.
  auto log_rows = [&] {
    std::vector<Variant> args{Variant("SELECT COUNT(*) FROM FW33_RVKUSER")};
    ObjectRef rs = connection->CallMethod("Execute", args).ToObject();
    args = {Variant(int32_t{0})};
    return rs->CallMethod("", args).ToObject()->GetProperty("Value").ToLong();
  };
  const int32_t before = log_rows();
  CLSFW_RVKUSERS rvk(foreign.env);
  rvk.SetConnectionStringADO(file.ConnectionString());
  int16_t outcome = 1;
  std::string win_user = "PC-TEST";
  std::optional<std::string> group;
  std::optional<std::string> login = std::string("mrossi");
  rvk.LoginRvk(outcome, win_user, group, login);
  EXPECT_EQ(log_rows(), before + 1);
  EXPECT_TRUE(foreign.sink->messages.empty());
}

}  // namespace
}  // namespace zarvik::testing
