#include "cli/cli.h"

#include <iostream>

namespace zarvik::cli {
namespace {

struct SubCommand {
  const char* name;
  const char* summary;
  int (*run)(const Args&, Streams);
};

// Every sub-command of the zarvik command, in the order `help` lists them.
const SubCommand kSubCommands[] = {
    {"demo", "build the embedded demo database and tour it", RunDemo},
    {"describe", "print the automation description of the component's classes", RunDescribe},
    {"init-db", "create the demo database in a new SQLite file", RunInitDb},
    {"host", "serve the component to a scripting host: JSON requests, one per line", RunHost},
    {"rewrite", "print a SELECT statement rewritten for a user (ElaboraStrSQL)", RunRewrite},
};

int Help(std::ostream& out) {
  out << "usage: zarvik COMMAND [ARGS...]\n\ncommands:\n";
  for (const SubCommand& c : kSubCommands) out << "  " << c.name << "  " << c.summary << "\n";
  return 0;
}

}  // namespace

int Main(int argc, char** argv, std::istream& in, std::ostream& out, std::ostream& err) {
  if (argc < 2) {
    Help(err);
    return 2;
  }
  const std::string name = argv[1];
  if (name == "help" || name == "--help" || name == "-h") return Help(out);
  Args args(argv + 2, argv + argc);
  for (const SubCommand& c : kSubCommands) {
    if (name == c.name) return c.run(args, Streams{in, out, err});
  }
  err << "zarvik: unknown command '" << name << "'\n";
  Help(err);
  return 2;
}

}  // namespace zarvik::cli
