// The VB string primitives the component's text scanning relies on.
//
// Positions are 1-based, as in VB. Error cases raise VbError with VB's
// numbers: a start below 1 or a negative length is error 5.
#ifndef ZARVIK_PLATFORM_VB_STRING_H_
#define ZARVIK_PLATFORM_VB_STRING_H_

#include <cstdint>
#include <string>
#include <string_view>

namespace zarvik::vb {

enum class Compare { kBinary = 0, kText = 1 };

// InStr(start, text, find, compare): position of `find` at or after `start`,
// 0 when absent or when start is past the end of `text`; start < 1 raises 5.
// An empty `find` answers `start` (when start <= Len(text) + 1).
// Text compare ignores the case of ASCII letters.
int32_t InStr(int32_t start, const std::string& text, const std::string& find,
              Compare compare = Compare::kBinary);
// InStrRev is not needed by the component and is deliberately absent.

// Mid(text, start[, length]): start < 1 or length < 0 raises 5; a start past
// the end gives "".
std::string Mid(const std::string& text, int32_t start);
std::string Mid(const std::string& text, int32_t start, int32_t length);
// Left / Right: negative length raises 5.
std::string Left(const std::string& text, int32_t length);
std::string Right(const std::string& text, int32_t length);
int32_t Len(const std::string& text);

// Trim, LTrim, RTrim remove the space character only.
std::string Trim(const std::string& text);
std::string LTrim(const std::string& text);
std::string RTrim(const std::string& text);
// UCase / LCase of ASCII letters.
inline char AsciiUpper(char c) { return (c >= 'a' && c <= 'z') ? static_cast<char>(c - 32) : c; }
std::string UCase(const std::string& text);
// UCase(a) = UCase(b) without copying either (most names differ in length).
inline bool SameText(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    if (AsciiUpper(a[i]) != AsciiUpper(b[i])) return false;
  }
  return true;
}
std::string LCase(const std::string& text);
// Replace(text, find, with) with binary compare, every occurrence.
std::string Replace(const std::string& text, const std::string& find, const std::string& with);

}  // namespace zarvik::vb

#endif  // ZARVIK_PLATFORM_VB_STRING_H_
