// Name-based UUIDs (RFC 4122 version 5, SHA-1) for the type library.
//
// Every GUID the component registers (the library, each interface, each
// coclass, each record) is derived from a name under one fixed namespace,
// so every build and every machine registers the same ones.
#ifndef ZARVIK_AUTOMATION_NAME_UUID_H_
#define ZARVIK_AUTOMATION_NAME_UUID_H_

#include <array>
#include <cstdint>
#include <string>

namespace zarvik::automation {

// The 16 bytes of a UUID in network order (as RFC 4122 writes them).
using UuidBytes = std::array<uint8_t, 16>;

// The version 5 UUID of `name` under the component's namespace
// cfb76b2f-d6bd-4952-a218-bcb8625e0c59.
UuidBytes NameUuid(const std::string& name);

// Lower-case text form "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx".
std::string UuidText(const UuidBytes& uuid);

// The names the GUIDs of the type library are derived from.
std::string LibraryUuidName(const std::string& library);                            // LIBID
std::string InterfaceUuidName(const std::string& library, const std::string& cls);  // IID
std::string ClassUuidName(const std::string& library, const std::string& cls);      // CLSID
std::string TypeUuidName(const std::string& library, const std::string& type);      // records

}  // namespace zarvik::automation

#endif  // ZARVIK_AUTOMATION_NAME_UUID_H_
