#include "platform/vb_string.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/platform_test_support.h"
#include "platform/vb_error.h"

namespace zarvik::vb {
namespace {

using test::ErrorOf;

struct InStrCase {
  int32_t start;
  std::string text, find;
  Compare compare;
  int32_t expected;
};

TEST(InStrTest, PositionsTable) {
  const Compare kB = Compare::kBinary;
  const Compare kT = Compare::kText;
  const std::vector<InStrCase> cases = {
      {1, "SELECT a FROM t", "from", kB, 0},
      {1, "select a from t", "FROM", kT, 10},
      {10, "SELECT a FROM t", "FROM", kT, 10},
      {11, "SELECT a FROM t", "FROM", kT, 0},
      {4, "abcabc", "c", kB, 6},
      {6, "abcabc", "c", kB, 6},
      {7, "abcabc", "c", kB, 0},
      {1, "abc", "abcd", kT, 0},
      // An empty find answers start up to Len + 1, then 0.
      {3, "abc", "", kT, 3},
      {4, "abc", "", kB, 4},
      {5, "abc", "", kB, 0},
      {1, "", "", kB, 1},
      {100, "abc", "a", kB, 0},
      // Text compare touches ASCII letters only.
      {1, "x[Y]", "[y]", kT, 2},
      {1, "x@", "`", kT, 0},  // '@' and '`' differ by 32 but are not letters
      {1, "caf\xC3\xA9", "\xC3\xA9", kT, 4},
      // A partial match at the first candidate does not hide a later one.
      {1, "AaAaB", "aab", kT, 3},
      {1, "xFROMFROM", "from", kT, 2}};
  for (size_t i = 0; i < cases.size(); ++i) {
    const InStrCase& c = cases[i];
    SCOPED_TRACE("case " + std::to_string(i));
    EXPECT_EQ(InStr(c.start, c.text, c.find, c.compare), c.expected);
  }
  for (const int32_t start : {0, -1}) {
    SCOPED_TRACE(start);
    EXPECT_EQ(ErrorOf([&] { InStr(start, "abc", "a"); }), vberr::kInvalidProcedureCall);
    EXPECT_EQ(ErrorOf([&] { InStr(start, "abc", "", Compare::kText); }),
              vberr::kInvalidProcedureCall);
  }
}

// Text-compare search of a letter whose other case is everywhere must not
// rescan the text for each candidate.
TEST(InStrTest, TextCompareStaysLinearOnRepetitiveText) {
  const std::string text(300'000, 'a');
  const auto begin = std::chrono::steady_clock::now();
  EXPECT_EQ(InStr(1, text, "aB", Compare::kText), 0);
  EXPECT_EQ(InStr(1, text + "B", "aB", Compare::kText), 300'000);
  const auto elapsed = std::chrono::steady_clock::now() - begin;
  EXPECT_LT(std::chrono::duration_cast<std::chrono::milliseconds>(elapsed).count(), 1000);
}

TEST(MidLeftRightTest, SlicesAndErrors) {
  const std::string s = "Hello";
  const std::vector<std::pair<std::string, std::string>> cases = {
      {Mid(s, 2), "ello"},    {Mid(s, 6), ""},     {Mid(s, 2, 3), "ell"},  {Mid(s, 2, 0), ""},
      {Mid(s, 4, 10), "lo"},  {Mid(s, 6, 1), ""},  {Left(s, 0), ""},       {Left(s, 2), "He"},
      {Left(s, 50), "Hello"}, {Right(s, 2), "lo"}, {Right(s, 50), "Hello"}};
  for (size_t i = 0; i < cases.size(); ++i) {
    SCOPED_TRACE("case " + std::to_string(i));
    EXPECT_EQ(cases[i].first, cases[i].second);
  }
  EXPECT_EQ(Len(s), 5);
  const int32_t k5 = vberr::kInvalidProcedureCall;
  EXPECT_EQ(ErrorOf([] { Mid("abc", 0); }), k5);
  EXPECT_EQ(ErrorOf([] { Mid("abc", -1, 2); }), k5);
  EXPECT_EQ(ErrorOf([] { Mid("abc", 10, -1); }), k5);
  EXPECT_EQ(ErrorOf([] { Left("abc", -1); }), k5);
  EXPECT_EQ(ErrorOf([] { Right("abc", -1); }), k5);
  EXPECT_EQ(ErrorOf([] { Mid("", 1); }), 0);
}

TEST(TrimTest, RemovesSpacesOnly) {
  struct Case {
    std::string in, trim, ltrim, rtrim;
  };
  const std::vector<Case> cases = {{"   ", "", "", ""},
                                   {"  a b  ", "a b", "a b  ", "  a b"},
                                   {" \tx\r\n ", "\tx\r\n", "\tx\r\n ", " \tx\r\n"}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.in);
    EXPECT_EQ(Trim(c.in), c.trim);
    EXPECT_EQ(LTrim(c.in), c.ltrim);
    EXPECT_EQ(RTrim(c.in), c.rtrim);
  }
}

TEST(CaseTest, AsciiLettersOnly) {
  EXPECT_EQ(UCase("Select a_b FROM [x]@`{}caf\xC3\xA9"), "SELECT A_B FROM [X]@`{}CAF\xC3\xA9");
  EXPECT_EQ(LCase("Select A_B FROM [X]@`{}"), "select a_b from [x]@`{}");
}

TEST(ReplaceTest, EveryOccurrenceBinaryCompare) {
  struct Case {
    std::string text, find, with, expected;
  };
  const std::vector<Case> cases = {{"a.b.c", ".", "::", "a::b::c"},
                                   {"aaaa", "aa", "a", "aa"},
                                   {"abc", "B", "x", "abc"},
                                   {"abc", "", "x", "abc"},
                                   {"x'y'", "'", "''", "x''y''"}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(Replace(c.text, c.find, c.with), c.expected);
  }
}

}  // namespace
}  // namespace zarvik::vb
