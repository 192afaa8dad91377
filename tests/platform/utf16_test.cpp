#include "platform/utf16.h"

#include <gtest/gtest.h>

namespace zarvik {
namespace {

TEST(Utf16, EveryTextRoundTrips) {
  using U = std::u16string;
  const std::pair<std::string, U> cases[] = {
      {"", U()},
      {"Abc", u"Abc"},
      {"perch\xC3\xA9 \xE2\x82\xAC", u"perch\u00E9 \u20AC"},
      {"\xE0\xA0\x80", U(1, char16_t{0x0800})},             // the first three-byte character
      {"\xF4\x8F\xBF\xBF", u"\U0010FFFF"},                  // the last character
      {"\xF0\x9F\x98\x80", u"\U0001F600"},                  // astral: a surrogate pair
      {"\xED\xA0\x80", U(1, char16_t{0xD800})},             // a lone surrogate is kept
      {"a\xFF\x62", U{u'a', char16_t{0xDCFF}, u'b'}},       // a stray byte
      {"\xC0\x80", U{char16_t{0xDCC0}, char16_t{0xDC80}}},  // an overlong form
      {"\xE2\x82", U{char16_t{0xDCE2}, char16_t{0xDC82}}},  // a cut sequence
      {"\xED\xB2\x80", U{char16_t{0xDCED}, char16_t{0xDCB2}, char16_t{0xDC80}}},  // escape unit
  };
  for (const auto& [utf8, utf16] : cases) {
    EXPECT_EQ(Utf16FromUtf8(utf8), utf16) << utf8;
    EXPECT_EQ(Utf8FromUtf16(utf16), utf8) << utf8;
  }
}

}  // namespace
}  // namespace zarvik
