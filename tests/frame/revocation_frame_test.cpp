// The frame's connection handling, user resolution, guard, reporter and
// termination, on the demo database.
#include "frame/revocation_frame.h"

#include <gtest/gtest.h>

#include <memory>
#include <ostream>
#include <stdexcept>
#include <string>
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

// OpenConnection

TEST(OpenConnection, OpensItsOwnConnectionWithTheFixedProperties) {
  const DemoDatabaseFile file("frame_open");
  RecordingEnv rec;
  auto log = std::make_shared<db::StatementLog>();
  RevocationFrame frame(ParserFrameSettings(), rec.env);
  frame.SetStatementLog(log);
  frame.ctx.ConnectionStringADO = file.ConnectionString();

  EXPECT_FALSE(frame.OpenConnection());

  ASSERT_NE(frame.ctx.ConnectionADO, nullptr);
  const db::Connection& c = *frame.ctx.ConnectionADO;
  EXPECT_EQ(c.State(), db::kStateOpen);
  EXPECT_EQ(c.ConnectionString(), file.ConnectionString());
  EXPECT_EQ(c.CommandTimeout(), 100);
  EXPECT_EQ(c.ConnectionTimeout(), 100);
  EXPECT_EQ(c.IsolationLevel(), 4096);
  EXPECT_EQ(c.CursorLocation(), db::kUseClient);
  EXPECT_TRUE(frame.ConnectionOwned());
  EXPECT_TRUE(rec.sink->messages.empty());

  // The statements on the connection it opened reach the frame's log.
  frame.ctx.CodiceUtente = "ROSSI";
  frame.ctx.CodiceGruppo = "VEN";
  frame.ResolveUser();
  EXPECT_EQ(log->statements,
            std::vector<std::string>{"SELECT FW07_ID, FW07_FLGGRP FROM FW07_APPUSER  WHERE "
                                     "FW07_CODICE_FW06 = 'VEN'  AND FW07_CODICE = 'ROSSI'"});
  EXPECT_EQ(frame.UserId(), demo::user_id::kRossi);

  // A second call keeps the connection.
  auto first = frame.ctx.ConnectionADO;
  EXPECT_FALSE(frame.OpenConnection());
  EXPECT_EQ(frame.ctx.ConnectionADO, first);
}

// A closed connection the host handed in is never reopened; the query
// filter counts it as available all the same.
TEST(OpenConnection, ClosedHostConnectionIsNotReopened) {
  const DemoDatabaseFile file("frame_closed");
  auto host_connection = std::make_shared<db::Connection>();
  host_connection->SetConnectionString(file.ConnectionString());
  const std::pair<FrameSettings, bool> unavailable[] = {{ParserFrameSettings(), true},
                                                        {FiltroQueryFrameSettings(), false}};
  for (const auto& [settings, answer] : unavailable) {
    RecordingEnv rec;
    RevocationFrame frame(settings, rec.env);
    frame.ctx.ConnectionADO = host_connection;
    frame.ctx.ConnectionStringADO = file.ConnectionString();
    EXPECT_EQ(frame.OpenConnection(), answer) << settings.class_name;
    EXPECT_EQ(host_connection->State(), db::kStateClosed);
    EXPECT_EQ(frame.ctx.ConnectionADO, host_connection);
    EXPECT_FALSE(frame.ConnectionOwned());
    EXPECT_TRUE(rec.sink->messages.empty());
  }
}

TEST(OpenConnection, BadConnectionStringIsReportedAndAnswersFalse) {
  const std::string bad = "Provider=SQLite;Data Source=/nonexistent-dir/zarvik/none.db";
  // The error the connection itself raises for this string.
  db::Connection probe;
  probe.SetConnectionString(bad);
  const VbError e = test::CaughtError([&] { probe.Open(); });
  ASSERT_NE(e.Number(), 0);
  for (const FrameSettings& settings : {ParserFrameSettings(), FiltroQueryFrameSettings()}) {
    RecordingEnv rec;
    RevocationFrame frame(settings, rec.env);
    frame.ctx.ConnectionStringADO = bad;
    EXPECT_FALSE(frame.OpenConnection());
    EXPECT_FALSE(frame.ConnectionOwned());
    ASSERT_EQ(rec.sink->messages.size(), 1u);
    const Message& box = rec.sink->messages[0];
    EXPECT_EQ(box.text, std::to_string(e.Number()) + " - " + e.Description() +
                            "\r\nin ZARVIK: " + settings.class_name + " - OpenConnection");
    EXPECT_EQ(box.title, "");
    EXPECT_EQ(box.style, msgstyle::kOkOnly);
  }
}

// ResolveUser

TEST(ResolveUser, FindsTheUserOnce) {
  const struct {
    const char* code;
    const char* group;
    bool query_filter;
    int32_t id_before;
    int32_t id_after;
    int16_t flg_after;
  } cases[] = {
      {"ROSSI", "VEN", false, 0, demo::user_id::kRossi, 0},
      {"VERDI", "AMM", false, 0, demo::user_id::kVerdi, 1},
      {"ESTERNO", "VEN", false, 0, demo::user_id::kEsterno, 0},
      // The code exists, in another group: not found, flag 1, the id the
      // host set is kept.
      {"ROSSI", "AMM", false, 33, 33, 1},
      // Inactive user: the parser finds it, the query filter does not.
      {"NERI", "MAG", false, 0, demo::user_id::kNeri, 0},
      {"NERI", "MAG", true, 12, 12, 1},
      {"ROSSI", "VEN", true, 0, demo::user_id::kRossi, 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.code) + "/" + c.group + (c.query_filter ? " query filter" : ""));
    FrameOnDemo f(c.query_filter ? FiltroQueryFrameSettings() : ParserFrameSettings());
    f.frame.ctx.CodiceUtente = c.code;
    f.frame.ctx.CodiceGruppo = c.group;
    f.frame.SetIdUser(c.id_before);
    for (int i = 0; i < 3; ++i) f.frame.ResolveUser();
    EXPECT_EQ(f.frame.UserId(), c.id_after);
    EXPECT_EQ(f.frame.FlgGrpRevoke(), c.flg_after);
    EXPECT_TRUE(f.frame.UserResolved());
    EXPECT_EQ(f.log->statements, std::vector<std::string>{f.frame.ResolveUserStatement()});
    EXPECT_TRUE(f.rec.sink->messages.empty());
  }
}

// The statement text of each class. The quote in the code is not doubled:
// the lookup is bad SQL, and its error reaches the parser's trap but is
// swallowed by the query filter.
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
  // The caller's trap reports it under the caller's tag.
  EXPECT_FALSE(parser.frame.Trap("SQLConditionDO11", [&] { parser.frame.ResolveUser(); }));
  ASSERT_EQ(parser.rec.sink->messages.size(), 1u);
  EXPECT_NE(
      parser.rec.sink->messages[0].text.find("\r\nin ZARVIK: CLSFW_PARSER - SQLConditionDO11"),
      std::string::npos);

  EXPECT_NO_THROW(filter.frame.ResolveUser());
  EXPECT_FALSE(filter.frame.UserResolved());
  EXPECT_TRUE(filter.rec.sink->messages.empty());
}

// The guard

struct GuardCase {
  const char* name;
  bool disabled;
  const char* codice;
  const char* clifor;
  enum { kOpen, kNone, kClosed } connection;  // kNone: no connection and no string
  bool neutral;                               // the guard answers "return the neutral answer"
  const char* codice_after;
  const char* clifor_after;
  bool lookup_sent;
};

void PrintTo(const GuardCase& c, std::ostream* out) { *out << c.name; }

class GuardTest : public ::testing::TestWithParam<GuardCase> {};

TEST_P(GuardTest, StepsInOrder) {
  const GuardCase& c = GetParam();
  FrameOnDemo f;
  if (c.connection == GuardCase::kNone) f.frame.ctx.ConnectionADO.reset();
  if (c.connection == GuardCase::kClosed) f.connection->Close();
  f.frame.ctx.RevokeDisabilitata = c.disabled;
  f.frame.ctx.CodiceUtente = c.codice;
  f.frame.ctx.CodiceUtenteCLIFOR = c.clifor;
  f.frame.ctx.CodiceGruppo = "VEN";
  f.frame.ctx.IdAgente = Variant::Null();

  // However often the guard runs, the user is looked up once at most.
  for (int i = 0; i < 3; ++i) EXPECT_EQ(f.frame.GuardFull(), c.neutral);
  EXPECT_EQ(f.frame.ctx.CodiceUtente, c.codice_after);
  EXPECT_EQ(f.frame.ctx.CodiceUtenteCLIFOR, c.clifor_after);
  EXPECT_EQ(f.log->statements.size(), c.lookup_sent ? 1u : 0u);
  // The agent is normalised only once the guard got past the connection.
  EXPECT_EQ(f.frame.ctx.IdAgente.IsNull(), c.neutral);
  EXPECT_TRUE(f.rec.sink->messages.empty());
  EXPECT_FALSE(f.frame.ConnectionOwned());
  if (c.connection == GuardCase::kNone) {
    EXPECT_EQ(f.frame.ctx.ConnectionADO, nullptr);
  }
  if (c.connection == GuardCase::kClosed) {
    EXPECT_EQ(f.connection->State(), db::kStateClosed);
  }
}

constexpr auto kOpen = GuardCase::kOpen;

INSTANTIATE_TEST_SUITE_P(
    Cases, GuardTest,
    ::testing::Values(
        GuardCase{"Disabled", true, "ROSSI", "", kOpen, true, "ROSSI", "", false},
        GuardCase{"NoUser", false, "", "", kOpen, true, "", "", false},
        GuardCase{"BlankUser", false, "  ", " ", kOpen, true, "  ", " ", false},
        GuardCase{"CodeOnly", false, "ROSSI", "", kOpen, false, "ROSSI", "ROSSI", true},
        GuardCase{"CliforOnly", false, "", "ROSSI", kOpen, false, "ROSSI", "ROSSI", true},
        GuardCase{"CliforWins", false, "BIANCHI", "ROSSI", kOpen, false, "ROSSI", "ROSSI", true},
        GuardCase{"BlankCliforTakesCode", false, "ROSSI", "   ", kOpen, false, "ROSSI", "ROSSI",
                  true},
        GuardCase{"Privileged", false, "ZentAd", "", kOpen, true, "ZentAd", "ZentAd", false},
        GuardCase{"PrivilegedThroughClifor", false, "ROSSI", "ZentAd", kOpen, true, "ZentAd",
                  "ZentAd", false},
        GuardCase{"PrivilegedCodeIsCaseSensitive", false, "ZENTAD", "", kOpen, false, "ZENTAD",
                  "ZENTAD", true},
        GuardCase{"PrivilegedCodeIsTheWholeField", false, "ZentAd ", "", kOpen, false, "ZentAd ",
                  "ZentAd ", true},
        GuardCase{"NoConnection", false, "ROSSI", "", GuardCase::kNone, true, "ROSSI", "ROSSI",
                  false},
        GuardCase{"ClosedHostConnection", false, "ROSSI", "", GuardCase::kClosed, true, "ROSSI",
                  "ROSSI", false}),
    [](const ::testing::TestParamInfo<GuardCase>& info) { return std::string(info.param.name); });

TEST(Guard, AgentNormalisation) {
  struct Case {
    Variant before;
    bool becomes_zero;
  };
  const std::vector<Case> cases = {
      {Variant(), true},      {Variant::Null(), true},      {Variant("   "), true},
      {Variant("12"), false}, {Variant(int32_t{0}), false}, {Variant(" 3 "), false},
  };
  for (const Case& c : cases) {
    RevocationFrame frame(ParserFrameSettings(), RecordingEnv().env);
    frame.ctx.IdAgente = c.before;
    frame.NormaliseAgent();
    if (c.becomes_zero) {
      EXPECT_EQ(frame.ctx.IdAgente.Type(), VarType::kInteger);
      EXPECT_EQ(frame.ctx.IdAgente.ToLong(), 0);
    } else {
      EXPECT_EQ(frame.ctx.IdAgente.Type(), c.before.Type());
      EXPECT_TRUE(VbEquals(frame.ctx.IdAgente, c.before));
    }
  }
}

// Nz

TEST(Nz, ValueUnlessEmptyNullOrBlank) {
  const Variant def("dflt");
  struct Case {
    Variant value;
    bool keeps_value;
  };
  const std::vector<Case> cases = {
      {Variant(), false},
      {Variant::Null(), false},
      {Variant("    "), false},
      {Variant(" x "), true},
      {Variant(int32_t{0}), true},
      {Variant::Nothing(), false},  // its text cannot be read: the default
      {Variant(ObjectRef(std::make_shared<HostObject>())), false},
  };
  for (size_t i = 0; i < cases.size(); ++i) {
    const Variant got = RevocationFrame::Nz(cases[i].value, def);
    const Variant& want = cases[i].keeps_value ? cases[i].value : def;
    EXPECT_EQ(got.Type(), want.Type()) << "case " << i;
    EXPECT_TRUE(VbEquals(got, want)) << "case " << i;
    EXPECT_EQ(RevocationFrame::IsBlank(cases[i].value), !cases[i].keeps_value) << "case " << i;
  }
}

// Reporter and traps

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
  ASSERT_EQ(rec.sink->messages.size(), 3u);
  EXPECT_EQ(rec.sink->messages[0].text,
            "13 - " + VbErrorText(13) + "\r\nin ZARVIK: CLSFW_PARSER - SQLConditionCliFor");
  EXPECT_EQ(rec.sink->messages[1].text, "51 - boom\r\nin ZARVIK: CLSFW_PARSER - Other");
  EXPECT_EQ(rec.sink->messages[2].text,
            "-2147217900 - Incorrect syntax near 'X'.\r\nin ZARVIK: CLSFW_FILTROQUERY - "
            "FiltroCondizione");
}

// Termination, through the classes' destructors

// Through the classes' destructors: the parser closes only a connection it
// opened itself; the query filter never closes one. Both drop the binding.
template <class Class>
void CheckTermination(bool closes_own) {
  const DemoDatabaseFile file("frame_end");
  std::shared_ptr<db::Connection> owned;
  auto app = MakeHostObject();
  {
    Class object(RecordingEnv().env);
    object.SetConnectionStringADO(file.ConnectionString());
    ASSERT_FALSE(object.Frame().OpenConnection());
    owned = object.ConnectionADO();
    ASSERT_EQ(owned->State(), db::kStateOpen);
    object.SetActiveInterface(app);
  }
  EXPECT_EQ(owned->State(), closes_own ? db::kStateClosed : db::kStateOpen);
  EXPECT_EQ(app.use_count(), 1);  // the binding was dropped

  auto host = demo::OpenDemoDatabase(":memory:");
  { Class(RecordingEnv().env).SetConnectionADO(host); }
  EXPECT_EQ(host->State(), db::kStateOpen);
}

TEST(Termination, ParserClosesOnlyTheConnectionItOpened) { CheckTermination<CLSFW_PARSER>(true); }
TEST(Termination, QueryFilterNeverClosesTheConnection) {
  CheckTermination<CLSFW_FILTROQUERY>(false);
}

TEST(Termination, FrameDropsConnectionAndBinding) {
  FrameOnDemo f;
  auto app = MakeHostObject();
  f.frame.SetActiveInterface(app);
  f.frame.Terminate();
  EXPECT_EQ(f.frame.ActiveInterface(), nullptr);
  EXPECT_EQ(f.frame.ctx.ConnectionADO, nullptr);
  EXPECT_EQ(f.connection->State(), db::kStateOpen);
  f.frame.Terminate();  // twice is harmless
}

}  // namespace
}  // namespace zarvik
