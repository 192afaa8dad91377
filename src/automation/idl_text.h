// The type library as readable IDL-like text (`zarvik describe`).
#ifndef ZARVIK_AUTOMATION_IDL_TEXT_H_
#define ZARVIK_AUTOMATION_IDL_TEXT_H_

#include <string>

#include "automation/type_library.h"

namespace zarvik::automation {

std::string TypeLibraryIdl(const TypeLibrary& library);

}  // namespace zarvik::automation

#endif  // ZARVIK_AUTOMATION_IDL_TEXT_H_
