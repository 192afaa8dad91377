// Small pieces every condition builder of CLSFW_PARSER shares.
#ifndef ZARVIK_PARSER_CONDITIONS_CONDITION_TEXT_H_
#define ZARVIK_PARSER_CONDITIONS_CONDITION_TEXT_H_

#include <string>

namespace zarvik::conditions {

// The connector the host's statement receives in front of a predicate.
inline constexpr const char* kAndPrefix = " AND ";

// " AND " + predicate when inserire_and is True and the predicate is not
// empty; an empty predicate stays empty (it restricts nothing and must not
// leave a dangling AND in the host's statement).
inline std::string WithAnd(const std::string& predicate, bool inserire_and) {
  if (predicate.empty() || !inserire_and) return predicate;
  return kAndPrefix + predicate;
}

}  // namespace zarvik::conditions

#endif  // ZARVIK_PARSER_CONDITIONS_CONDITION_TEXT_H_
