// The zarvik command line: one sub-command per job.
#ifndef ZARVIK_CLI_CLI_H_
#define ZARVIK_CLI_CLI_H_

#include <iosfwd>
#include <string>
#include <vector>

namespace zarvik::cli {

// Arguments after the sub-command name.
using Args = std::vector<std::string>;

struct Streams {
  std::istream& in;
  std::ostream& out;
  std::ostream& err;
};

// Runs `zarvik SUBCOMMAND ARGS...`; returns the process exit code.
int Main(int argc, char** argv, std::istream& in, std::ostream& out, std::ostream& err);

// Sub-commands (each in its own file, cmd_<name>.cpp).
int RunDemo(const Args& args, Streams io);
int RunDescribe(const Args& args, Streams io);
int RunHost(const Args& args, Streams io);
int RunInitDb(const Args& args, Streams io);
int RunRewrite(const Args& args, Streams io);

}  // namespace zarvik::cli

#endif  // ZARVIK_CLI_CLI_H_
