#include "cli/frame_scene.h"

#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "cli/text_table.h"
#include "db/tracing.h"
#include "filtroquery/clsfw_filtroquery.h"
#include "parser/clsfw_parser.h"
#include "platform/message_sink.h"

namespace zarvik::cli {
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
  TextTable table({"object", "user", "group", "guard", "id", "FLGGRP", "sent", "case"});
  for (size_t c : {4u, 5u, 6u}) table.AlignRight(c);
  std::string lookup;
  for (const Row& row : kRows) {
    log->statements.clear();
    std::string guard;
    int32_t id = 0;
    int16_t flag = 0;
    if (row.query_filter) {
      CLSFW_FILTROQUERY filter(env);
      filter.SetConnectionADO(connection);
      filter.SetCodiceUtente(row.code);
      filter.SetCodiceGruppo(row.group);
      for (int i = 0; i < kGuardRuns; ++i) filter.Frame().ResolveUser();
      guard = "user lookup";
      id = filter.Frame().UserId();
      flag = filter.Frame().FlgGrpRevoke();
    } else {
      CLSFW_PARSER parser(env);
      parser.SetConnectionADO(connection);
      parser.SetCodiceUtente(row.code);
      parser.SetCodiceGruppo(row.group);
      parser.SetRevokeDisabilitata(row.disabled);
      bool neutral = false;
      for (int i = 0; i < kGuardRuns; ++i) neutral = parser.Frame().GuardFull();
      guard = neutral ? "neutral" : "goes on";
      id = parser.Frame().UserId();
      flag = parser.Frame().FlgGrpRevoke();
      if (lookup.empty() && !log->statements.empty()) lookup = log->statements.front();
    }
    table.AddRow({row.query_filter ? "CLSFW_FILTROQUERY" : "CLSFW_PARSER", row.code, row.group,
                  guard, std::to_string(id), std::to_string(flag),
                  std::to_string(log->statements.size()), row.note});
  }
  tour.db.SetStatementLog(nullptr);
  table.Print(tour.out, "  ");
  // The statement as sent, with a line break before its WHERE for width.
  const size_t where = lookup.find("  WHERE");
  tour.out << "\n  The lookup statement (line broken before WHERE):\n    "
           << lookup.substr(0, where) << "\n    " << lookup.substr(where) << "\n";
}

}  // namespace zarvik::cli
