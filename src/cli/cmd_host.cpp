// `zarvik host`: serves the JSON line protocol of host_session.h on
// standard input and output.
#include <ostream>

#include "automation/host_session.h"
#include "cli/cli.h"

namespace zarvik::cli {

int RunHost(const Args& args, Streams io) {
  if (!args.empty()) {
    io.err << "usage: zarvik host   (one JSON request per line on standard input)\n";
    return 2;
  }
  return automation::RunHostSession(io.in, io.out);
}

}  // namespace zarvik::cli
