// The zarvik command: see `zarvik help`.
#include <iostream>

#include "cli/cli.h"

int main(int argc, char** argv) {
  return zarvik::cli::Main(argc, argv, std::cin, std::cout, std::cerr);
}
