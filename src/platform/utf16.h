// Text across the automation boundary: the component keeps text as UTF-8,
// automation passes it as UTF-16 (BSTR). Both directions are lossless, so a
// value the host hands in comes back unchanged:
// - a byte that is not part of valid UTF-8 becomes the lone low surrogate
//   0xDC00 + byte, and that unit becomes the byte again;
// - any other lone surrogate is kept as its three-byte form.
#ifndef ZARVIK_PLATFORM_UTF16_H_
#define ZARVIK_PLATFORM_UTF16_H_

#include <string>

namespace zarvik {

std::u16string Utf16FromUtf8(const std::string& text);
std::string Utf8FromUtf16(const std::u16string& text);

}  // namespace zarvik

#endif  // ZARVIK_PLATFORM_UTF16_H_
