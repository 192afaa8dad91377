#include "demo/frame_scene.h"

#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "db/tracing.h"
#include "demo/text_table.h"
#include "filtroquery/clsfw_filtroquery.h"
#include "parser/clsfw_parser.h"
#include "platform/message_sink.h"

namespace zarvik::demo {
namespace {

constexpr int kGuardRuns = 3;

struct Row {
  const char* code;
  const char* group;
  bool disabled;
  bool query_filter;
  const char* note;
};

const Row kRows[] = {
    {"ROSSI", "VEN", false, false, "ordinary user"},
    {"VERDI", "AMM", false, false, "group-based"},
    {"NERI", "MAG", false, false, "inactive, found"},
    {"NERI", "MAG", false, true, "inactive, not found"},
    {"ZentAd", "SYS", false, false, "privileged"},
    {"ROSSI", "VEN", true, false, "disabled"},
};

}  // namespace

void ShowUserContextScene(TourContext& tour) {
  // The tour's connection, lent to the objects (they never own it).
  std::shared_ptr<db::Connection> connection(&tour.db, [](db::Connection*) {});
  auto log = std::make_shared<db::StatementLog>();
  tour.db.SetStatementLog(log);
  Env env{std::make_shared<RecordingMessageSink>(), std::make_shared<SystemClock>()};

  tour.out << "  Each object resolves its user once: the guard ran " << kGuardRuns
           << " times per object and \"sent\" counts\n"
           << "  the statements. The privileged code ZentAd and a disabled context get the "
              "neutral answer\n"
           << "  without any query; the query filter finds only active users.\n\n";

}  // namespace zarvik::demo
