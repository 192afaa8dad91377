#include "platform/utf16.h"

#include <cstdint>

namespace zarvik {
namespace {

// Units 0xDC80..0xDCFF stand for the bytes 0x80..0xFF that were not UTF-8.
constexpr char32_t kEscapeBase = 0xDC00;
bool IsEscape(char32_t unit) { return unit >= 0xDC80 && unit <= 0xDCFF; }

void AppendUtf8(std::string& out, char32_t cp) {
  if (cp < 0x80) {
    out += static_cast<char>(cp);
  } else if (cp < 0x800) {
    out += static_cast<char>(0xC0 | (cp >> 6));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  } else if (cp < 0x10000) {
    out += static_cast<char>(0xE0 | (cp >> 12));
    out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  } else {
    out += static_cast<char>(0xF0 | (cp >> 18));
    out += static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
    out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  }
}

// The code point of the UTF-8 sequence at text[i] and its length, or a
// length of 0 when the bytes there are not a valid (shortest-form)
// sequence. Three-byte forms of surrogates are accepted, except those of
// the escape units, which only ever stand for single bytes.
size_t DecodeUtf8(const std::string& text, size_t i, char32_t* cp) {
  const auto byte = [&](size_t k) { return static_cast<uint8_t>(text[k]); };
  const uint8_t lead = byte(i);
  size_t length = 0;
  char32_t value = 0;
  char32_t minimum = 0;
  if (lead >= 0xC2 && lead <= 0xDF) {
    length = 2, value = lead & 0x1F, minimum = 0x80;
  } else if (lead >= 0xE0 && lead <= 0xEF) {
    length = 3, value = lead & 0x0F, minimum = 0x800;
  } else if (lead >= 0xF0 && lead <= 0xF4) {
    length = 4, value = lead & 0x07, minimum = 0x10000;
  } else {
    return 0;
  }
  if (i + length > text.size()) return 0;
  for (size_t k = 1; k < length; ++k) {
    if ((byte(i + k) & 0xC0) != 0x80) return 0;
    value = (value << 6) | (byte(i + k) & 0x3F);
  }
  if (value < minimum || value > 0x10FFFF || IsEscape(value)) return 0;
  *cp = value;
  return length;
}

}  // namespace

std::u16string Utf16FromUtf8(const std::string& text) {
  std::u16string out;
  out.reserve(text.size());
  for (size_t i = 0; i < text.size();) {
    const auto lead = static_cast<uint8_t>(text[i]);
    char32_t cp = lead;
    size_t length = lead < 0x80 ? 1 : DecodeUtf8(text, i, &cp);
    if (length == 0) {
      cp = kEscapeBase + lead;
      length = 1;
    }
    if (cp >= 0x10000) {
      out += static_cast<char16_t>(0xD800 + ((cp - 0x10000) >> 10));
      out += static_cast<char16_t>(0xDC00 + ((cp - 0x10000) & 0x3FF));
    } else {
      out += static_cast<char16_t>(cp);
    }
    i += length;
  }
  return out;
}

std::string Utf8FromUtf16(const std::u16string& text) {
  std::string out;
  out.reserve(text.size());
  for (size_t i = 0; i < text.size(); ++i) {
    char32_t unit = text[i];
    if (unit >= 0xD800 && unit <= 0xDBFF && i + 1 < text.size() && text[i + 1] >= 0xDC00 &&
        text[i + 1] <= 0xDFFF) {
      AppendUtf8(out, 0x10000 + ((unit - 0xD800) << 10) + (text[i + 1] - 0xDC00));
      ++i;
    } else if (IsEscape(unit)) {
      out += static_cast<char>(unit - kEscapeBase);
    } else {
      AppendUtf8(out, unit);
    }
  }
  return out;
}

}  // namespace zarvik
