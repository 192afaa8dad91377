// "Run this statement; if it fails, go on with the next one."
//
// CLSFW_RVKUSERS runs its login steps this way: a statement that fails is
// skipped, the method carries on, and nothing reaches the host or a
// message box.
#ifndef ZARVIK_RVKUSERS_RESUME_NEXT_H_
#define ZARVIK_RVKUSERS_RESUME_NEXT_H_

#include <utility>

namespace zarvik::rvkusers {

// Runs `step`, swallowing whatever it throws. True when it ran to the end.
template <class F>
bool ResumeNext(F&& step) noexcept {
  try {
    std::forward<F>(step)();
    return true;
  } catch (...) {
    return false;
  }
}

}  // namespace zarvik::rvkusers

#endif  // ZARVIK_RVKUSERS_RESUME_NEXT_H_
