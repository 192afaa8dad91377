// The zarvik command: see `zarvik help`.
#include <iostream>

#include "automation/cli.h"

int main(int argc, char** argv) {
  return zarvik::cli::Main(argc, argv, std::cin, std::cout, std::cerr);
}
