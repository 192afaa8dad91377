// The arguments of one late-bound call as the typed C++ call sees them.
#ifndef ZARVIK_AUTOMATION_INVOCATION_H_
#define ZARVIK_AUTOMATION_INVOCATION_H_

#include <cstddef>
#include <utility>
#include <vector>

#include "platform/variant.h"

namespace zarvik::automation {

// One argument as a late-bound caller passes it: a value, or an omitted
// optional argument (`missing`).
struct Argument {
  Variant value;
  bool missing = false;

  static Argument Missing() { return Argument{Variant(), true}; }
};

// One entry per declared parameter, in order: the argument coerced to the
// parameter's type, the default of an omitted optional argument, or a
// missing marker (omitted, no default). A by-reference parameter's final
// value is what Set left, and the dispatcher hands it back to the caller.
class Invocation {
 public:
  Invocation() = default;
  Invocation(std::vector<Variant> values, std::vector<bool> missing)
      : values_(std::move(values)), missing_(std::move(missing)) {}

  size_t Count() const { return values_.size(); }
  // Parameter i's value (Empty when missing). Out of range: error 450.
  const Variant& Value(size_t i) const;
  bool IsMissing(size_t i) const;
  // Writes back a by-reference parameter.
  void Set(size_t i, Variant value);

 private:
  std::vector<Variant> values_;
  std::vector<bool> missing_;
};

}  // namespace zarvik::automation

#endif  // ZARVIK_AUTOMATION_INVOCATION_H_
