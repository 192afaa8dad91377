// `zarvik init-db PATH`: creates the demo database in a new SQLite file.
#include <ostream>
#include <string>

#include "cli/cli.h"
#include "demo/demo_db.h"
#include "demo/demo_sql.h"
#include "platform/vb_error.h"

namespace zarvik::cli {
namespace {

const char kUsage[] =
    "usage: zarvik init-db PATH\n"
    "\n"
    "Creates the SQLite database file PATH from the demo database's schema and\n"
    "data. PATH must not exist yet. The file can then be given to zarvik demo\n"
    "--db PATH, or to the component as \"Provider=SQLite;Data Source=PATH\".\n";

}  // namespace

int RunInitDb(const Args& args, Streams io) {
  if (args.size() == 1 && (args[0] == "--help" || args[0] == "-h")) {
    io.out << kUsage;
    return 0;
  }
  if (args.size() != 1 || args[0].empty() || args[0][0] == '-') {
    io.err << kUsage;
    return 2;
  }
  const std::string& path = args[0];
  try {
    demo::InitDemoDatabase(path);
  } catch (const VbError& e) {
    io.err << "zarvik init-db: " << e.Description() << "\n";
    return 1;
  }
  io.out << "Created " << path << " from";
  for (const demo::SqlFile& file : demo::DemoSqlFiles()) io.out << " demo/" << file.name;
  io.out << "\n";
  return 0;
}

}  // namespace zarvik::cli
