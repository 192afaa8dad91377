// `zarvik describe`: the automation description of the three classes as
// IDL-like text.
#include <ostream>

#include "automation/idl_text.h"
#include "automation/type_library.h"
#include "cli/cli.h"

namespace zarvik::cli {

int RunDescribe(const Args& args, Streams io) {
  if (!args.empty()) {
    io.err << "usage: zarvik describe\n";
    return 2;
  }
  io.out << automation::TypeLibraryIdl(automation::BuildTypeLibrary());
  return 0;
}

}  // namespace zarvik::cli
