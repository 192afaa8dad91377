// Late-bound invocation of a described member: what automation's IDispatch
// does for a scripting caller.
//
// Arguments arrive as Variants and are coerced to the declared parameter
// types (a Long 1 for a 16-bit parameter becomes an Integer, true for a
// Boolean becomes True = -1, a number for a String its text); omitted
// optional arguments take their defaults; by-reference arguments are
// written back as the member left them. Failures of the call itself are
// VbErrors with automation's numbers:
//   438  unknown member (or no member of the requested kind)
//   449  a required argument is missing
//   450  wrong number of arguments
//   13   an argument cannot take its declared type (Null for a String,
//        text for a number, a non-object for an object, ...)
//   6    a number out of the declared type's range
#ifndef ZARVIK_AUTOMATION_DISPATCHER_H_
#define ZARVIK_AUTOMATION_DISPATCHER_H_

#include <cstdint>
#include <string>
#include <vector>

#include "automation/invocation.h"
#include "automation/type_library.h"
#include "platform/variant.h"

namespace zarvik::automation {

// Automation error numbers of the boundary (besides those in vb_error.h).
inline constexpr int32_t kArgumentNotOptional = 449;  // "Argument not optional"
inline constexpr int32_t kCannotCreateObject = 429;   // "ActiveX component can't create object"
inline constexpr int32_t kObjectRequired = 424;       // "Object required"

// The value coerced to the declared type (as VariantChangeType would).
Variant CoerceToType(const Variant& value, const TypeRef& type);

// Property get (a method called without arguments answers too, as a
// late-bound `x = obj.Name` would).
Variant InvokeGet(const ClassDescription& cls, void* instance, const std::string& name,
                  std::vector<Argument>& args);
// Property put: Set when the value is an object (or Nothing) and the
// property has a Set, otherwise Let; 438 when the needed kind is absent.
void InvokePut(const ClassDescription& cls, void* instance, const std::string& name,
               const Variant& value);
// Method call (a property get answers too). By-reference arguments the
// caller passed are replaced with their values after the call.
Variant InvokeMethod(const ClassDescription& cls, void* instance, const std::string& name,
                     std::vector<Argument>& args);

// Invokes one described member with the given arguments (the steps above).
Variant InvokeMember(const MemberDescription& member, void* instance, std::vector<Argument>& args);

}  // namespace zarvik::automation

#endif  // ZARVIK_AUTOMATION_DISPATCHER_H_
