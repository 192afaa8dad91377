// The type library as IDL (`zarvik describe`), the text widl compiles into
// the component's .tlb, and the C++ vtable thunks of its dual interfaces
// (`zarvik describe --thunks`), both generated from the one description.
#ifndef ZARVIK_AUTOMATION_IDL_TEXT_H_
#define ZARVIK_AUTOMATION_IDL_TEXT_H_

#include <cstdint>
#include <string>
#include <vector>

#include "automation/type_library.h"

namespace zarvik::automation {

// The DISPID of each member of the class, in member order: the members of
// one name (a property's get, let and set) share one id, numbered from 1 in
// the order the names first appear.
std::vector<int32_t> MemberDispIds(const ClassDescription& cls);

// The name of the dual interface of a class ("_" + class name, as VB names
// a class's default interface).
std::string InterfaceName(const ClassDescription& cls);

// The library: an enum and a struct per enum and record, one dual
// interface per class with its members in member order, and a coclass per
// class; every GUID name-based (name_uuid.h).
std::string TypeLibraryIdl(const TypeLibrary& library);

// C++ source of one class per dual interface (deriving from the interface
// widl declares in its header) whose vtable slots pack their arguments and
// hand them to DualObject::Call (src/com/dual_object.h), and the factory
// NewDualObject that picks the class by index.
std::string TypeLibraryThunks(const TypeLibrary& library, const std::string& idl_header);

}  // namespace zarvik::automation

#endif  // ZARVIK_AUTOMATION_IDL_TEXT_H_
