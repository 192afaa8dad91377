// `zarvik demo [--db PATH]`: tours the demo database.
#include <cstdio>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "cli/check_scene.h"
#include "cli/cli.h"
#include "cli/condition_scene.h"
#include "cli/frame_scene.h"
#include "cli/query_filter_scene.h"
#include "cli/rewrite_scene.h"
#include "cli/text_table.h"
#include "cli/tour.h"
#include "db/tracing.h"
#include "demo/demo_db.h"
#include "platform/env.h"
#include "platform/vb_error.h"
#include "rvkusers/clsfw_rvkusers.h"

namespace zarvik::cli {
namespace {

const char kUsage[] =
    "usage: zarvik demo [--db PATH]\n"
    "\n"
    "Builds the demo database in memory (or opens PATH, a demo database that\n"
    "zarvik init-db created) and prints what is in it: companies, users,\n"
    "agents, the revocations of every user and the business tables, then\n"
    "shows each class of the component at work on it.\n";

// --- Scene: login lock-out (CLSFW_RVKUSERS) ----------------------------------

// The component's clock, set by the scene.
class SceneClock : public Clock {
 public:
  double Now() const override { return now; }
  double now = 0;
};

// BRUNO fails three times on 5 March 2024 with MaxNumTry = 3 and is locked;
// the administrator re-enables him at 10:00 and the count starts again. The
// scene runs on a private in-memory copy of the demo database so that the
// tour (and a demo file given with --db) stays as it was; the component's
// clock and the database's KVL_GETDATE are set to each moment.
void ShowLockOutScene(TourContext& tour) {
  const auto database = demo::OpenDemoDatabase(":memory:");
  const auto log = std::make_shared<db::StatementLog>();
  database->SetStatementLog(log);
  const auto clock = std::make_shared<SceneClock>();
  CLSFW_RVKUSERS rvk(Env{DefaultMessageSink(), clock});
  rvk.SetConnectionADO(database);
  rvk.SetMaxNumTry(3);
  auto set_time = [&](int hour, int minute) {
    clock->now = OleDateFromYmd(2024, 3, 5) + (hour * 60 + minute) / 1440.0;
    char stamp[32];
    std::snprintf(stamp, sizeof stamp, "2024-03-05 %02d:%02d:00.000", hour, minute);
    database->Execute(std::string("UPDATE ZARVIK_ROUTINES SET ROUTINE_BODY = 'SELECT ''") + stamp +
                          "''' WHERE ROUTINE_NAME = 'KVL_GETDATE'",
                      db::kCmdText);
    return std::string(stamp).substr(11, 5);
  };
  // The first value of the first row, or "-" when the statement gave no row.
  auto first_value = [&](const std::string& sql) -> std::string {
    const auto rows = demo::QueryRows(*database, sql);
    return rows.empty() || rows.front().empty() ? "-" : rows.front().front().ConcatText();
  };
  auto locked = [&]() {
    return first_value("SELECT FW07_FLGREVOKE FROM FW07_APPUSER WHERE FW07_ID = 10");
  };
  TextTable table({"TIME", "RISULTATO", "AFTER", "ISREVOKED", "COUNTED", "LOCKED", "NOTE"});
  auto attempt = [&](int hour, int minute, int16_t outcome, const char* note) {
    const std::string time = set_time(hour, minute);
    log->statements.clear();
    int16_t risultato = outcome;
    std::string win_user = "PC-BRUNO";
    std::optional<std::string> group;
    std::optional<std::string> login = std::string("lbruno");
    rvk.LoginRvk(risultato, win_user, group, login);
    // The failures the class counted: its own count statement, run again.
    std::string counted = "-";
    // A copy: running the count again appends to the log being read.
    const std::vector<std::string> sent = log->statements;
    for (const std::string& sql : sent) {
      if (sql.rfind("SELECT COUNT(", 0) == 0) {
        counted = first_value(sql);
      }
    }
    table.AddRow({time, std::to_string(outcome), std::to_string(risultato),
                  rvk.IsRevoked() == RevokeVantor ? "RevokeVantor" : "NoRevoke", counted, locked(),
                  note});
  };
  tour.out << "  CLSFW_RVKUSERS on a private copy of the demo database, on 5 March 2024,\n"
              "  MaxNumTry = 3. BRUNO (login lbruno) failed twice on 4 March: those\n"
              "  attempts are not counted today. LOCKED is FW07_FLGREVOKE after the call.\n\n";
  attempt(9, 0, 1, "wrong password");
  attempt(9, 1, 1, "wrong password");
  attempt(9, 2, 1, "third failure today: locked");
  attempt(9, 5, 0, "right password: refused");
  set_time(10, 0);
  database->Execute("UPDATE FW07_APPUSER SET FW07_FLGREVOKE = 0 WHERE FW07_ID = 10", db::kCmdText);
  database->Execute(
      "INSERT INTO FW33_RVKUSER (FW33_ID_FW07, FW33_DATA, FW33_AZIONE, FW33_RISULTATO, "
      "FW33_WINUSER, FW33_DATAORA) VALUES (10, '20240305', 10, 0, 'ADMIN', KVL_GETDATE())",
      db::kCmdText);
  table.AddRow({"10:00", "", "", "", "", locked(), "re-enabled by ADMIN (action 10)"});
  attempt(10, 5, 1, "wrong password: counted from 1");
  attempt(10, 6, 0, "logged in");
  table.Print(tour.out, "  ");
  database->Close();
}

// Scenes of the component's classes, shown after the tour of the data.
const TourScene kClassScenes[] = {
    {"User context and guard", ShowUserContextScene},
    {"Login lock-out", ShowLockOutScene},
    {"Condition predicates", ShowConditionScene},
    {"Query filter dialog", ShowQueryFilterScene},
    {"Statement rewriter", ShowRewriteScene},
    {"Block checks and rights records", ShowCheckScene},
};

}  // namespace

int RunDemo(const Args& args, Streams io) {
  std::string path = ":memory:";
  bool file = false;
  for (size_t i = 0; i < args.size(); ++i) {
    const std::string& arg = args[i];
    if (arg == "--help" || arg == "-h") {
      io.out << kUsage;
      return 0;
    }
    if (arg == "--db" && i + 1 < args.size()) {
      path = args[++i];
      file = true;
    } else if (arg.rfind("--db=", 0) == 0 && arg.size() > 5) {
      path = arg.substr(5);
      file = true;
    } else {
      io.err << "zarvik demo: unexpected argument '" << arg << "'\n" << kUsage;
      return 2;
    }
  }
  try {
    const auto connection = demo::OpenDemoDatabase(path);
    io.out << "Demo database: " << (file ? path : "in memory") << "\n\n";
    TourContext tour{*connection, io.out};
    RunTour(tour);
    for (const TourScene& scene : kClassScenes) ShowScene(scene, tour);
    connection->Close();
  } catch (const VbError& e) {
    io.err << "zarvik demo: " << e.Number() << " - " << e.Description() << "\n";
    return 1;
  }
  return 0;
}

}  // namespace zarvik::cli
