// `zarvik describe`: the automation description of the three classes as the
// IDL of the component's type library; with --thunks, the C++ vtable thunks
// of its dual interfaces (the Windows build compiles both).
#include <ostream>

#include "automation/idl_text.h"
#include "automation/type_library.h"
#include "cli/cli.h"

namespace zarvik::cli {

int RunDescribe(const Args& args, Streams io) {
  const automation::TypeLibrary library = automation::BuildTypeLibrary();
  if (args.empty() || (args.size() == 1 && args[0] == "--idl")) {
    io.out << automation::TypeLibraryIdl(library);
    return 0;
  }
  if (args.size() == 2 && args[0] == "--thunks") {
    io.out << automation::TypeLibraryThunks(library, args[1]);
    return 0;
  }
  io.err << "usage: zarvik describe [--idl | --thunks IDL_HEADER]\n";
  return 2;
}

}  // namespace zarvik::cli
