// Catching the VbError a call raises, shared by the platform and db tests.
#ifndef ZARVIK_TESTS_PLATFORM_PLATFORM_TEST_SUPPORT_H_
#define ZARVIK_TESTS_PLATFORM_PLATFORM_TEST_SUPPORT_H_

#include <cstdint>
#include <functional>
#include <vector>

#include "platform/vb_error.h"

namespace zarvik::test {

// The VbError `f` raised; number 0 when it raised none.
template <typename F>
VbError CaughtError(F&& f) {
  try {
    f();
  } catch (const VbError& e) {
    return e;
  }
  return VbError(0, "no error");
}

// The VB error number `f` raised, 0 when it raised none.
template <typename F>
int32_t ErrorOf(F&& f) {
  return CaughtError(f).Number();
}

// The error number each call raised, 0 for one that raised none.
inline std::vector<int32_t> ErrorsOf(const std::vector<std::function<void()>>& calls) {
  std::vector<int32_t> numbers;
  for (const auto& call : calls) numbers.push_back(ErrorOf(call));
  return numbers;
}

}  // namespace zarvik::test

#endif  // ZARVIK_TESTS_PLATFORM_PLATFORM_TEST_SUPPORT_H_
