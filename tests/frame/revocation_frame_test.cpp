// The frame on the demo database.
#include "frame/revocation_frame.h"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "db/connection.h"
#include "db/tracing.h"
#include "demo/demo_db.h"
#include "filtroquery/clsfw_filtroquery.h"
#include "frame/host_object.h"
#include "frame_test_support.h"
#include "parser/clsfw_parser.h"
#include "platform/platform_test_support.h"

namespace zarvik {
namespace {

using testing::DemoDatabaseFile;
using testing::RecordingEnv;

// A frame on an open in-memory demo database whose statements are logged.
struct FrameOnDemo {
  explicit FrameOnDemo(FrameSettings settings = ParserFrameSettings())
      : frame(std::move(settings), rec.env) {
    connection->SetStatementLog(log);
    frame.ctx.ConnectionADO = connection;
  }
  RecordingEnv rec;
  std::shared_ptr<db::Connection> connection = demo::OpenDemoDatabase(":memory:");
  std::shared_ptr<db::StatementLog> log = std::make_shared<db::StatementLog>();
  RevocationFrame frame;
};

// A closed host connection is never reopened (the query filter counts it as available).
TEST(OpenConnection, ClosedHostConnectionAndBadString) {
  const DemoDatabaseFile file("frame_closed");
  auto host_connection = std::make_shared<db::Connection>();
  host_connection->SetConnectionString(file.ConnectionString());
  const std::string bad = "Provider=SQLite;Data Source=/nonexistent-dir/zarvik/none.db";
  db::Connection probe;  // the error the connection itself raises for this string
  probe.SetConnectionString(bad);
  const VbError e = test::CaughtError([&] { probe.Open(); });
  ASSERT_NE(e.Number(), 0);
  for (const auto& [settings, unavailable] : std::vector<std::pair<FrameSettings, bool>>{
           {ParserFrameSettings(), true}, {FiltroQueryFrameSettings(), false}}) {
    RecordingEnv rec;
    RevocationFrame frame(settings, rec.env);
    frame.ctx.ConnectionADO = host_connection;
    frame.ctx.ConnectionStringADO = file.ConnectionString();
    EXPECT_EQ(frame.OpenConnection(), unavailable) << settings.class_name;
    EXPECT_EQ(host_connection->State(), db::kStateClosed);
    EXPECT_EQ(frame.ctx.ConnectionADO, host_connection);
    EXPECT_FALSE(frame.ConnectionOwned());
    RevocationFrame bad_frame(settings, rec.env);
    bad_frame.ctx.ConnectionStringADO = bad;
    EXPECT_FALSE(bad_frame.OpenConnection());
    EXPECT_FALSE(bad_frame.ConnectionOwned());
    EXPECT_EQ(testing::BoxLines(*rec.sink), std::to_string(e.Number()) + " - " + e.Description() +
                                                "\r\nin ZARVIK: " + settings.class_name +
                                                " - OpenConnection||0\n");
  }
}

TEST(ResolveUser, FindsTheUserOnce) {
  const std::tuple<const char*, const char*, bool, int32_t, int32_t, int16_t> cases[] = {
      // code, group, query filter, user id before and after, FlgGrpRevoke after
      {"ROSSI", "VEN", false, 0, demo::user_id::kRossi, 0},
      {"VERDI", "AMM", false, 0, demo::user_id::kVerdi, 1},
      {"ROSSI", "AMM", false, 33, 33, 1},  // in another group: not found, the id kept
      // Inactive user: the parser finds it, the query filter does not.
      {"NERI", "MAG", false, 0, demo::user_id::kNeri, 0},
      {"NERI", "MAG", true, 12, 12, 1},
      {"ROSSI", "VEN", true, 0, demo::user_id::kRossi, 0},
  };
  for (const auto& [code, group, query_filter, id_before, id_after, flg_after] : cases) {
    SCOPED_TRACE(std::string(code) + "/" + group + (query_filter ? " query filter" : ""));
    FrameOnDemo f(query_filter ? FiltroQueryFrameSettings() : ParserFrameSettings());
    f.frame.ctx.CodiceUtente = code;
    f.frame.ctx.CodiceGruppo = group;
    f.frame.SetIdUser(id_before);
    for (int i = 0; i < 3; ++i) f.frame.ResolveUser();
    EXPECT_EQ(f.frame.UserId() * 10 + f.frame.FlgGrpRevoke(), id_after * 10 + flg_after);
    EXPECT_TRUE(f.frame.UserResolved());
    EXPECT_EQ(f.log->statements, std::vector<std::string>{f.frame.ResolveUserStatement()});
    EXPECT_TRUE(f.rec.sink->messages.empty());
  }
}

// The quote is not doubled: the parser raises the error, the query filter swallows it.
TEST(ResolveUser, StatementTextAndLookupErrorsOfEachClass) {
  FrameOnDemo parser;
  FrameOnDemo filter(FiltroQueryFrameSettings());
  for (FrameOnDemo* f : {&parser, &filter}) {
    f->frame.ctx.CodiceGruppo = "VEN";
    f->frame.ctx.CodiceUtente = "O'Hara";
  }
  EXPECT_EQ(parser.frame.ResolveUserStatement(),
            "SELECT FW07_ID, FW07_FLGGRP FROM FW07_APPUSER  WHERE FW07_CODICE_FW06 = 'VEN'  AND "
            "FW07_CODICE = 'O'Hara'");
  EXPECT_EQ(filter.frame.ResolveUserStatement(),
            "SELECT FW07_ID, FW07_FLGGRP FROM FW07_APPUSER  WHERE FW07_CODICE_FW06 = 'VEN'  AND "
            "FW07_CODICE = 'O'Hara' AND FW07_FLGATTIVO = 1 ");
  EXPECT_THROW(parser.frame.ResolveUser(), VbError);
  EXPECT_FALSE(parser.frame.UserResolved());

  EXPECT_NO_THROW(filter.frame.ResolveUser());
  EXPECT_FALSE(filter.frame.UserResolved());
  EXPECT_TRUE(filter.rec.sink->messages.empty());
}

// The guard reports nothing, owns no connection, looks the user up once at most.
TEST(Guard, StepsInOrder) {
  enum Connection { kOpen, kNone, kClosed };  // kNone: no connection and no string
  using C = const char*;  // name, disabled, both codes, connection, neutral answer, codes after
  const std::tuple<C, bool, C, C, Connection, bool, C> cases[] = {
      {"Disabled", true, "ROSSI", "", kOpen, true, "ROSSI|"},
      {"NoUser", false, "", "", kOpen, true, "|"},
      {"BlankUser", false, "  ", " ", kOpen, true, "  | "},
      {"CodeOnly", false, "ROSSI", "", kOpen, false, "ROSSI|ROSSI"},
      {"CliforOnly", false, "", "ROSSI", kOpen, false, "ROSSI|ROSSI"},
      {"CliforWins", false, "BIANCHI", "ROSSI", kOpen, false, "ROSSI|ROSSI"},
      {"BlankCliforTakesCode", false, "ROSSI", "   ", kOpen, false, "ROSSI|ROSSI"},
      {"Privileged", false, "ZentAd", "", kOpen, true, "ZentAd|ZentAd"},
      {"PrivilegedThroughClifor", false, "ROSSI", "ZentAd", kOpen, true, "ZentAd|ZentAd"},
      {"PrivilegedIsCaseSensitive", false, "ZENTAD", "", kOpen, false, "ZENTAD|ZENTAD"},
      {"PrivilegedIsTheWholeField", false, "ZentAd ", "", kOpen, false, "ZentAd |ZentAd "},
      {"NoConnection", false, "ROSSI", "", kNone, true, "ROSSI|ROSSI"},
      {"ClosedHostConnection", false, "ROSSI", "", kClosed, true, "ROSSI|ROSSI"}};
  for (const auto& [name, disabled, codice, clifor, connection, neutral, after] : cases) {
    SCOPED_TRACE(name);
    FrameOnDemo f;
    if (connection == kNone) f.frame.ctx.ConnectionADO.reset();
    if (connection == kClosed) f.connection->Close();
    f.frame.ctx.RevokeDisabilitata = disabled;
    f.frame.ctx.CodiceUtente = codice;
    f.frame.ctx.CodiceUtenteCLIFOR = clifor;
    f.frame.ctx.CodiceGruppo = "VEN";
    f.frame.ctx.IdAgente = Variant::Null();
    for (int i = 0; i < 3; ++i) EXPECT_EQ(f.frame.GuardFull(), neutral);
    EXPECT_EQ(f.frame.ctx.CodiceUtente + "|" + f.frame.ctx.CodiceUtenteCLIFOR, after);
    EXPECT_EQ(f.log->statements.size(), neutral ? 0u : 1u);
    // The agent is normalised only once the guard got past the connection.
    EXPECT_EQ(f.frame.ctx.IdAgente.IsNull(), neutral);
    EXPECT_TRUE(f.rec.sink->messages.empty() && !f.frame.ConnectionOwned());
    EXPECT_EQ(f.frame.ctx.ConnectionADO == nullptr, connection == kNone);
    EXPECT_EQ(f.connection->State(), connection == kClosed ? db::kStateClosed : db::kStateOpen);
  }
}

TEST(Reporter, TrapReportsTheExactTextAndKeepsThePartialResult) {
  RecordingEnv rec;
  RevocationFrame frame(ParserFrameSettings(), rec.env);
  std::string result = "neutral";
  EXPECT_FALSE(frame.Trap("SQLConditionCliFor", [&] {
    result += " partial";
    throw VbError(vberr::kTypeMismatch);
  }));
  EXPECT_EQ(result, "neutral partial");
  EXPECT_FALSE(frame.Trap("Other", [] { throw std::runtime_error("boom"); }));
  EXPECT_TRUE(frame.Trap("Fine", [&] { result = "done"; }));
  EXPECT_EQ(result, "done");
  RevocationFrame filter(FiltroQueryFrameSettings(), rec.env);
  filter.Report(-2147217900, "Incorrect syntax near 'X'.", "FiltroCondizione");
  EXPECT_FALSE(RevocationFrame::TrapSilently([] { throw VbError(5); }));
  EXPECT_EQ(testing::BoxLines(*rec.sink),
            "13 - " + VbErrorText(13) + "\r\nin ZARVIK: CLSFW_PARSER - SQLConditionCliFor||0\n" +
                "51 - boom\r\nin ZARVIK: CLSFW_PARSER - Other||0\n-2147217900 - Incorrect syntax "
                "near 'X'.\r\nin ZARVIK: CLSFW_FILTROQUERY - FiltroCondizione||0\n");
}

// A connection of its own: the fixed properties, the frame's log, kept by a
// second call; the parser closes it at the end, the query filter does not.
template <class Class>
void CheckOwnConnection(bool closes_own) {
  const DemoDatabaseFile file("frame_own");
  std::shared_ptr<db::Connection> owned;
  auto app = MakeHostObject();
  RecordingEnv rec;
  auto log = std::make_shared<db::StatementLog>();
  {
    Class object(rec.env);
    RevocationFrame& frame = object.Frame();
    frame.SetStatementLog(log);
    object.SetConnectionStringADO(file.ConnectionString());
    ASSERT_FALSE(frame.OpenConnection());
    owned = object.ConnectionADO();
    const db::Connection& c = *owned;
    EXPECT_EQ(std::vector<long>({c.State(), c.CommandTimeout(), c.ConnectionTimeout(),
                                 c.IsolationLevel(), c.CursorLocation(), frame.ConnectionOwned()}),
              std::vector<long>({db::kStateOpen, 100, 100, 4096, db::kUseClient, 1}));
    frame.ctx.CodiceUtente = "ROSSI";
    frame.ctx.CodiceGruppo = "VEN";
    frame.ResolveUser();
    EXPECT_EQ(log->statements, std::vector<std::string>{frame.ResolveUserStatement()});
    EXPECT_EQ(frame.UserId(), demo::user_id::kRossi);
    EXPECT_FALSE(frame.OpenConnection());
    EXPECT_EQ(object.ConnectionADO(), owned);
    object.SetActiveInterface(app);
  }
  EXPECT_TRUE(rec.sink->messages.empty());
  EXPECT_EQ(owned->State(), closes_own ? db::kStateClosed : db::kStateOpen);
  EXPECT_EQ(app.use_count(), 1);  // the binding was dropped
  auto host = demo::OpenDemoDatabase(":memory:");
  { Class(RecordingEnv().env).SetConnectionADO(host); }
  EXPECT_EQ(host->State(), db::kStateOpen);
}

TEST(OwnConnection, OpenedWithFixedPropertiesAndClosedOnlyByTheParser) {
  CheckOwnConnection<CLSFW_PARSER>(true);
  CheckOwnConnection<CLSFW_FILTROQUERY>(false);
}

}  // namespace
}  // namespace zarvik
