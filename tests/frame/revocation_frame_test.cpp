// The frame's connection handling, user resolution, guard, reporter and
// termination, on the demo database.
#include "frame/revocation_frame.h"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "db/connection.h"
#include "db/tracing.h"
#include "demo/demo_db.h"
#include "filtroquery/clsfw_filtroquery.h"
#include "frame/host_object.h"
#include "frame_test_support.h"
#include "parser/clsfw_parser.h"

namespace zarvik {
namespace {

using testing::DemoDatabaseFile;
using testing::RecordingEnv;

const char* const kRossiLookup =
    "SELECT FW07_ID, FW07_FLGGRP FROM FW07_APPUSER  WHERE FW07_CODICE_FW06 = 'VEN'  AND "
    "FW07_CODICE = 'ROSSI'";

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

// ---------------------------------------------------------------------------
// OpenConnection

class OpenConnectionTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() { db_ = new DemoDatabaseFile("frame_open"); }
  static void TearDownTestSuite() {
    delete db_;
    db_ = nullptr;
  }
  static DemoDatabaseFile* db_;
};
DemoDatabaseFile* OpenConnectionTest::db_ = nullptr;

TEST_F(OpenConnectionTest, OpensItsOwnConnectionWithTheFixedProperties) {
  RecordingEnv rec;
  auto log = std::make_shared<db::StatementLog>();
  RevocationFrame frame(ParserFrameSettings(), rec.env);
  frame.SetStatementLog(log);
  frame.ctx.ConnectionStringADO = db_->ConnectionString();

  EXPECT_FALSE(frame.OpenConnection());

  ASSERT_NE(frame.ctx.ConnectionADO, nullptr);
  const db::Connection& c = *frame.ctx.ConnectionADO;
  EXPECT_EQ(c.State(), db::kStateOpen);
  EXPECT_EQ(c.ConnectionString(), db_->ConnectionString());
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
  EXPECT_EQ(log->statements, std::vector<std::string>{kRossiLookup});
  EXPECT_EQ(frame.UserId(), demo::user_id::kRossi);

  // A second call keeps the connection.
  auto first = frame.ctx.ConnectionADO;
  EXPECT_FALSE(frame.OpenConnection());
  EXPECT_EQ(frame.ctx.ConnectionADO, first);
}

TEST_F(OpenConnectionTest, NoConnectionAndNoStringMeansUnavailable) {
  RecordingEnv rec;
  for (const FrameSettings& settings : {ParserFrameSettings(), FiltroQueryFrameSettings()}) {
    RevocationFrame frame(settings, rec.env);
    EXPECT_TRUE(frame.OpenConnection()) << settings.class_name;
    EXPECT_EQ(frame.ctx.ConnectionADO, nullptr);
    EXPECT_FALSE(frame.ConnectionOwned());
  }
  EXPECT_TRUE(rec.sink->messages.empty());
}

TEST_F(OpenConnectionTest, ClosedHostConnectionIsNotReopened) {
  auto host_connection = std::make_shared<db::Connection>();
  host_connection->SetConnectionString(db_->ConnectionString());
  {
    RecordingEnv rec;
    RevocationFrame frame(ParserFrameSettings(), rec.env);
    frame.ctx.ConnectionADO = host_connection;
    frame.ctx.ConnectionStringADO = db_->ConnectionString();
    EXPECT_TRUE(frame.OpenConnection());
    EXPECT_EQ(host_connection->State(), db::kStateClosed);
    EXPECT_EQ(frame.ctx.ConnectionADO, host_connection);
    EXPECT_FALSE(frame.ConnectionOwned());
    frame.Terminate();
    EXPECT_TRUE(rec.sink->messages.empty());
  }
  // The query filter counts any connection object as available.
  RevocationFrame filter(FiltroQueryFrameSettings(), RecordingEnv().env);
  filter.ctx.ConnectionADO = host_connection;
  EXPECT_FALSE(filter.OpenConnection());
  EXPECT_EQ(host_connection->State(), db::kStateClosed);
}

TEST_F(OpenConnectionTest, OpenHostConnectionIsAvailable) {
  FrameOnDemo f;
  EXPECT_FALSE(f.frame.OpenConnection());
  EXPECT_FALSE(f.frame.ConnectionOwned());
  EXPECT_TRUE(f.log->statements.empty());
}

TEST_F(OpenConnectionTest, BadConnectionStringIsReportedAndAnswersFalse) {
  const std::string bad = "Provider=SQLite;Data Source=/nonexistent-dir/zarvik/none.db";
  // The error the connection itself raises for this string.
  db::Connection probe;
  probe.SetConnectionString(bad);
  int32_t number = 0;
  std::string description;
  try {
    probe.Open();
    FAIL() << "the connection string should not open";
  } catch (const VbError& e) {
    number = e.Number();
    description = e.Description();
  }

  for (const FrameSettings& settings : {ParserFrameSettings(), FiltroQueryFrameSettings()}) {
    RecordingEnv rec;
    RevocationFrame frame(settings, rec.env);
    frame.ctx.ConnectionStringADO = bad;
    EXPECT_FALSE(frame.OpenConnection());
    EXPECT_FALSE(frame.ConnectionOwned());
    ASSERT_EQ(rec.sink->messages.size(), 1u);
    const Message& box = rec.sink->messages[0];
    EXPECT_EQ(box.text, std::to_string(number) + " - " + description +
                            "\r\nin ZARVIK: " + settings.class_name + " - OpenConnection");
    EXPECT_EQ(box.title, "");
    EXPECT_EQ(box.style, msgstyle::kOkOnly);
  }
}

// ---------------------------------------------------------------------------
// ResolveUser

TEST(ResolveUser, StatementTextOfEachClass) {
  RevocationFrame parser(ParserFrameSettings(), RecordingEnv().env);
  RevocationFrame filter(FiltroQueryFrameSettings(), RecordingEnv().env);
  for (RevocationFrame* f : {&parser, &filter}) {
    f->ctx.CodiceGruppo = "VEN";
    f->ctx.CodiceUtente = "O'Hara";
  }
  EXPECT_EQ(parser.ResolveUserStatement(),
            "SELECT FW07_ID, FW07_FLGGRP FROM FW07_APPUSER  WHERE FW07_CODICE_FW06 = 'VEN'  AND "
            "FW07_CODICE = 'O'Hara'");
  EXPECT_EQ(filter.ResolveUserStatement(),
            "SELECT FW07_ID, FW07_FLGGRP FROM FW07_APPUSER  WHERE FW07_CODICE_FW06 = 'VEN'  AND "
            "FW07_CODICE = 'O'Hara' AND FW07_FLGATTIVO = 1 ");
}

struct ResolveCase {
  const char* code;
  const char* group;
  bool query_filter;
  int32_t id_before;
  int32_t id_after;
  int16_t flg_after;
};

class ResolveUserTest : public ::testing::TestWithParam<ResolveCase> {};

TEST_P(ResolveUserTest, FindsTheUserOnce) {
  const ResolveCase& c = GetParam();
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

INSTANTIATE_TEST_SUITE_P(
    Users, ResolveUserTest,
    ::testing::Values(ResolveCase{"ROSSI", "VEN", false, 0, demo::user_id::kRossi, 0},
                      ResolveCase{"VERDI", "AMM", false, 0, demo::user_id::kVerdi, 1},
                      ResolveCase{"ESTERNO", "VEN", false, 0, demo::user_id::kEsterno, 0},
                      // The code exists, in another group: not found.
                      ResolveCase{"ROSSI", "AMM", false, 33, 33, 1},
                      // Unknown user: flag 1, the id the host set is kept.
                      ResolveCase{"NESSUNO", "VEN", false, 42, 42, 1},
                      // Inactive user: the parser finds it, the query filter does not.
                      ResolveCase{"NERI", "MAG", false, 0, demo::user_id::kNeri, 0},
                      ResolveCase{"NERI", "MAG", true, 12, 12, 1},
                      ResolveCase{"ROSSI", "VEN", true, 0, demo::user_id::kRossi, 0}));

TEST(ResolveUser, ParserLookupErrorsReachTheCaller) {
  FrameOnDemo f;
  f.frame.ctx.CodiceGruppo = "VEN";
  f.frame.ctx.CodiceUtente = "O'Hara";  // the quote is not doubled: bad SQL
  EXPECT_THROW(f.frame.ResolveUser(), VbError);
  EXPECT_FALSE(f.frame.UserResolved());
  // The caller's trap reports it under the caller's tag.
  EXPECT_FALSE(f.frame.Trap("SQLConditionDO11", [&] { f.frame.ResolveUser(); }));
  ASSERT_EQ(f.rec.sink->messages.size(), 1u);
  EXPECT_NE(f.rec.sink->messages[0].text.find("\r\nin ZARVIK: CLSFW_PARSER - SQLConditionDO11"),
            std::string::npos);
}

TEST(ResolveUser, QueryFilterLookupFailsSilently) {
  FrameOnDemo f(FiltroQueryFrameSettings());
  f.frame.ctx.CodiceGruppo = "VEN";
  f.frame.ctx.CodiceUtente = "O'Hara";
  EXPECT_NO_THROW(f.frame.ResolveUser());
  EXPECT_FALSE(f.frame.UserResolved());
  EXPECT_TRUE(f.rec.sink->messages.empty());
}

// ---------------------------------------------------------------------------
// The guard

TEST(Guard, ResolvesTheUserOnceHoweverOftenItRuns) {
  FrameOnDemo f;
  f.frame.ctx.CodiceUtente = "ROSSI";
  f.frame.ctx.CodiceGruppo = "VEN";
  for (int i = 0; i < 5; ++i) EXPECT_FALSE(f.frame.GuardFull());
  EXPECT_EQ(f.log->statements, std::vector<std::string>{kRossiLookup});
  EXPECT_EQ(f.frame.UserId(), demo::user_id::kRossi);
}

struct GuardCase {
  const char* name;
  bool disabled;
  const char* codice;
  const char* clifor;
  bool with_connection;  // an open demo connection; else none and no string
  bool neutral;          // the guard answers "return the neutral answer"
  const char* codice_after;
  const char* clifor_after;
  bool lookup_sent;
};

class GuardTest : public ::testing::TestWithParam<GuardCase> {};

TEST_P(GuardTest, StepsInOrder) {
  const GuardCase& c = GetParam();
  FrameOnDemo f;
  if (!c.with_connection) f.frame.ctx.ConnectionADO.reset();
  f.frame.ctx.RevokeDisabilitata = c.disabled;
  f.frame.ctx.CodiceUtente = c.codice;
  f.frame.ctx.CodiceUtenteCLIFOR = c.clifor;
  f.frame.ctx.CodiceGruppo = "VEN";
  f.frame.ctx.IdAgente = Variant::Null();

  EXPECT_EQ(f.frame.GuardFull(), c.neutral);
  EXPECT_EQ(f.frame.ctx.CodiceUtente, c.codice_after);
  EXPECT_EQ(f.frame.ctx.CodiceUtenteCLIFOR, c.clifor_after);
  EXPECT_EQ(f.log->statements.size(), c.lookup_sent ? 1u : 0u);
  // The agent is normalised only once the guard got past the connection.
  EXPECT_EQ(f.frame.ctx.IdAgente.IsNull(), c.neutral);
  EXPECT_TRUE(f.rec.sink->messages.empty());
}

INSTANTIATE_TEST_SUITE_P(
    Cases, GuardTest,
    ::testing::Values(
        GuardCase{"Disabled", true, "ROSSI", "", true, true, "ROSSI", "", false},
        GuardCase{"NoUser", false, "", "", true, true, "", "", false},
        GuardCase{"BlankUser", false, "  ", " ", true, true, "  ", " ", false},
        GuardCase{"CodeOnly", false, "ROSSI", "", true, false, "ROSSI", "ROSSI", true},
        GuardCase{"CliforOnly", false, "", "ROSSI", true, false, "ROSSI", "ROSSI", true},
        GuardCase{"CliforWins", false, "BIANCHI", "ROSSI", true, false, "ROSSI", "ROSSI", true},
        GuardCase{"BlankCliforTakesCode", false, "ROSSI", "   ", true, false, "ROSSI", "ROSSI",
                  true},
        GuardCase{"Privileged", false, "ZentAd", "", true, true, "ZentAd", "ZentAd", false},
        GuardCase{"PrivilegedThroughClifor", false, "ROSSI", "ZentAd", true, true, "ZentAd",
                  "ZentAd", false},
        GuardCase{"PrivilegedCodeIsCaseSensitive", false, "ZENTAD", "", true, false, "ZENTAD",
                  "ZENTAD", true},
        GuardCase{"PrivilegedCodeIsTheWholeField", false, "ZentAd ", "", true, false, "ZentAd ",
                  "ZentAd ", true},
        GuardCase{"NoConnection", false, "ROSSI", "", false, true, "ROSSI", "ROSSI", false}),
    [](const ::testing::TestParamInfo<GuardCase>& info) { return std::string(info.param.name); });

TEST(Guard, EmptyConnectionStringSendsNothing) {
  RecordingEnv rec;
  RevocationFrame frame(ParserFrameSettings(), rec.env);
  frame.ctx.CodiceUtente = "ROSSI";
  frame.ctx.ConnectionStringADO = "";
  EXPECT_TRUE(frame.GuardFull());
  EXPECT_EQ(frame.ctx.ConnectionADO, nullptr);
  EXPECT_FALSE(frame.UserResolved());
}

TEST(Guard, ClosedHostConnectionSendsNothing) {
  FrameOnDemo f;
  f.frame.ctx.CodiceUtente = "ROSSI";
  f.connection->Close();
  EXPECT_TRUE(f.frame.GuardFull());
  EXPECT_EQ(f.connection->State(), db::kStateClosed);
  EXPECT_FALSE(f.frame.UserResolved());
}

TEST(Guard, AgentNormalisation) {
  struct Case {
    Variant before;
    bool becomes_zero;
  };
  const std::vector<Case> cases = {
      {Variant(), true},
      {Variant::Null(), true},
      {Variant(""), true},
      {Variant("   "), true},
      {Variant("12"), false},
      {Variant(int32_t{0}), false},
      {Variant(int16_t{7}), false},
      {Variant(" 3 "), false},
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

TEST(Guard, FillUserCodeFromCliforLeavesCliforAlone) {
  RevocationFrame frame(ParserFrameSettings(), RecordingEnv().env);
  frame.ctx.CodiceUtente = " ";
  frame.ctx.CodiceUtenteCLIFOR = "ROSSI";
  frame.FillUserCodeFromClifor();
  EXPECT_EQ(frame.ctx.CodiceUtente, "ROSSI");
  frame.ctx.CodiceUtente = "BIANCHI";
  frame.FillUserCodeFromClifor();
  EXPECT_EQ(frame.ctx.CodiceUtente, "BIANCHI");
  EXPECT_EQ(frame.ctx.CodiceUtenteCLIFOR, "ROSSI");
}

TEST(Guard, ConnectionIsError91WhenNothing) {
  RevocationFrame frame(ParserFrameSettings(), RecordingEnv().env);
  try {
    frame.Connection();
    FAIL();
  } catch (const VbError& e) {
    EXPECT_EQ(e.Number(), vberr::kObjectNotSet);
  }
}

// ---------------------------------------------------------------------------
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
      {Variant(""), false},
      {Variant("    "), false},
      {Variant(" x "), true},
      {Variant(int32_t{0}), true},
      {Variant::Boolean(false), true},
      {Variant(0.5), true},
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

// ---------------------------------------------------------------------------
// Reporter and traps

TEST(Reporter, ExactBoxText) {
  RecordingEnv rec;
  RevocationFrame parser(ParserFrameSettings(), rec.env);
  RevocationFrame filter(FiltroQueryFrameSettings(), rec.env);
  parser.Report(13, "Type mismatch", "RvkDitte");
  filter.Report(-2147217900, "Incorrect syntax near 'X'.", "FiltroCondizione");
  ASSERT_EQ(rec.sink->messages.size(), 2u);
  EXPECT_EQ(rec.sink->messages[0].text, "13 - Type mismatch\r\nin ZARVIK: CLSFW_PARSER - RvkDitte");
  EXPECT_EQ(rec.sink->messages[1].text,
            "-2147217900 - Incorrect syntax near 'X'.\r\nin ZARVIK: CLSFW_FILTROQUERY - "
            "FiltroCondizione");
  for (const Message& m : rec.sink->messages) {
    EXPECT_EQ(m.title, "");
    EXPECT_EQ(m.style, msgstyle::kOkOnly);
  }
}

TEST(Reporter, TrapReportsAndKeepsThePartialResult) {
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
  ASSERT_EQ(rec.sink->messages.size(), 2u);
  EXPECT_EQ(rec.sink->messages[0].text,
            "13 - " + VbErrorText(13) + "\r\nin ZARVIK: CLSFW_PARSER - SQLConditionCliFor");
  EXPECT_EQ(rec.sink->messages[1].text, "51 - boom\r\nin ZARVIK: CLSFW_PARSER - Other");

  EXPECT_FALSE(RevocationFrame::TrapSilently([] { throw VbError(5); }));
  EXPECT_EQ(rec.sink->messages.size(), 2u);
}

// ---------------------------------------------------------------------------
// Termination, through the classes' destructors

class TerminationTest : public OpenConnectionTest {};

TEST_F(TerminationTest, ParserClosesOnlyTheConnectionItOpened) {
  std::shared_ptr<db::Connection> owned;
  {
    CLSFW_PARSER parser(RecordingEnv().env);
    parser.SetConnectionStringADO(db_->ConnectionString());
    parser.SetCodiceUtente("ROSSI");
    parser.SetCodiceGruppo("VEN");
    ASSERT_FALSE(parser.Frame().OpenConnection());
    owned = parser.ConnectionADO();
    ASSERT_EQ(owned->State(), db::kStateOpen);
  }
  EXPECT_EQ(owned->State(), db::kStateClosed);

  auto host = demo::OpenDemoDatabase(":memory:");
  {
    CLSFW_PARSER parser(RecordingEnv().env);
    parser.SetConnectionADO(host);
    parser.SetActiveInterface(MakeHostObject());
  }
  EXPECT_EQ(host->State(), db::kStateOpen);
}

TEST_F(TerminationTest, QueryFilterNeverClosesTheConnection) {
  std::shared_ptr<db::Connection> owned;
  auto app = MakeHostObject();
  {
    CLSFW_FILTROQUERY filter(RecordingEnv().env);
    filter.SetConnectionStringADO(db_->ConnectionString());
    ASSERT_FALSE(filter.Frame().OpenConnection());
    owned = filter.ConnectionADO();
    filter.SetActiveInterface(app);
  }
  EXPECT_EQ(owned->State(), db::kStateOpen);
  // The binding was dropped: the host object is referenced only here.
  EXPECT_EQ(app.use_count(), 1);
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
