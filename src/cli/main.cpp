// The zarvik command: see `zarvik help`.
#include <iostream>

#include "cli/cli.h"

int main(int argc, char** argv) {
  // Nothing here writes through C's stdio: the standard streams need not
  // keep in step with it, and read and write in blocks instead. Reading
  // does not flush the output either: nothing prompts, and `zarvik host`
  // flushes its answers itself.
  std::ios::sync_with_stdio(false);
  std::cin.tie(nullptr);
  return zarvik::cli::Main(argc, argv, std::cin, std::cout, std::cerr);
}
