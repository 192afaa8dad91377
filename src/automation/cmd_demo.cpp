// `zarvik demo [--db PATH]`: creates the demo database and tours it.
#include <ostream>
#include <string>

#include "automation/cli.h"
#include "demo/demo_db.h"
#include "demo/tour.h"
#include "platform/vb_error.h"

namespace zarvik::cli {
namespace {

const char kUsage[] =
    "usage: zarvik demo [--db PATH]\n"
    "\n"
    "Creates the demo database (in memory, or in the SQLite file PATH when it\n"
    "is new or empty; an existing demo file is reused) and prints what is in\n"
    "it: companies, users, agents, the revocations of every user and the\n"
    "business tables.\n";

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
    bool created = false;
    const auto connection = demo::OpenDemoDatabase(path, &created);
    io.out << "Demo database: "
           << (file ? path + (created ? " (created now)" : " (already there)") : "in memory")
           << "\n\n";
    demo::TourContext tour{*connection, io.out};
    demo::RunTour(tour);
    connection->Close();
  } catch (const VbError& e) {
    io.err << "zarvik demo: " << e.Number() << " - " << e.Description() << "\n";
    return 1;
  }
  return 0;
}

}  // namespace zarvik::cli
