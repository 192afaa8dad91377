#include "platform/vb_string.h"

#include <gtest/gtest.h>

#include <chrono>
#include <tuple>

#include "platform/platform_test_support.h"

namespace zarvik::vb {
namespace {

using test::ErrorOf;
using test::ErrorsOf;

TEST(InStrTest, PositionsTable) {
  const Compare kB = Compare::kBinary;
  const Compare kT = Compare::kText;
  // start, text, find, compare, answer
  const std::vector<std::tuple<int32_t, std::string, std::string, Compare, int32_t>> cases = {
      {1, "SELECT a FROM t", "from", kB, 0},
      {1, "select a from t", "FROM", kT, 10},
      {10, "SELECT a FROM t", "FROM", kT, 10},
      {11, "SELECT a FROM t", "FROM", kT, 0},
      {6, "abcabc", "c", kB, 6},
      {7, "abcabc", "c", kB, 0},
      {1, "abc", "abcd", kT, 0},
      // An empty find answers start up to Len + 1, then 0.
      {4, "abc", "", kB, 4},
      {5, "abc", "", kB, 0},
      // Text compare touches ASCII letters only.
      {1, "x[Y]", "[y]", kT, 2},
      {1, "x@", "`", kT, 0},  // '@' and '`' differ by 32 but are not letters
      {1, "caf\xC3\xA9", "\xC3\xA9", kT, 4},
      // A partial match at the first candidate does not hide a later one.
      {1, "AaAaB", "aab", kT, 3},
      {1, "xFROMFROM", "from", kT, 2}};
  for (const auto& [start, text, find, compare, answer] : cases) {
    EXPECT_EQ(InStr(start, text, find, compare), answer) << start << " " << text;
  }
  EXPECT_EQ(ErrorsOf({[] { InStr(0, "abc", "a"); }, [] { InStr(-1, "abc", "a"); },
                      [] { InStr(0, "abc", "", Compare::kText); },
                      [] { InStr(-1, "abc", "", Compare::kText); }}),
            std::vector<int32_t>(4, vberr::kInvalidProcedureCall));
}

// Text compare must not rescan the text for each candidate.
TEST(InStrTest, TextCompareStaysLinearOnRepetitiveText) {
  const std::string text(300'000, 'a');
  const auto begin = std::chrono::steady_clock::now();
  EXPECT_EQ(InStr(1, text, "aB", Compare::kText), 0);
  EXPECT_EQ(InStr(1, text + "B", "aB", Compare::kText), 300'000);
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(1));
}

TEST(MidLeftRightTest, SlicesAndErrors) {
  const std::string s = "Hello";
  const std::vector<std::pair<std::string, std::string>> cases = {
      {Mid(s, 2), "ello"},    {Mid(s, 6), ""},     {Mid(s, 2, 3), "ell"},  {Mid(s, 2, 0), ""},
      {Mid(s, 4, 10), "lo"},  {Mid(s, 6, 1), ""},  {Left(s, 0), ""},       {Left(s, 2), "He"},
      {Left(s, 50), "Hello"}, {Right(s, 2), "lo"}, {Right(s, 50), "Hello"}};
  for (size_t i = 0; i < cases.size(); ++i) EXPECT_EQ(cases[i].first, cases[i].second) << i;
  EXPECT_EQ(Len(s), 5);
  EXPECT_EQ(ErrorsOf({[] { Mid("abc", 0); }, [] { Mid("abc", -1, 2); }, [] { Mid("abc", 10, -1); },
                      [] { Left("abc", -1); }, [] { Right("abc", -1); }, [] { Mid("", 1); }}),
            (std::vector<int32_t>{5, 5, 5, 5, 5, 0}));
}

TEST(TrimTest, RemovesSpacesOnly) {
  // Input, then Trim, LTrim and RTrim of it.
  for (const std::vector<std::string>& c :
       std::vector<std::vector<std::string>>{{"   ", "", "", ""},
                                             {"  a b  ", "a b", "a b  ", "  a b"},
                                             {" \tx\r\n ", "\tx\r\n", "\tx\r\n ", " \tx\r\n"}}) {
    EXPECT_EQ(std::vector<std::string>({c[0], Trim(c[0]), LTrim(c[0]), RTrim(c[0])}), c);
  }
}

TEST(CaseTest, AsciiLettersOnly) {
  EXPECT_EQ(UCase("Select a_b FROM [x]@`{}caf\xC3\xA9"), "SELECT A_B FROM [X]@`{}CAF\xC3\xA9");
  EXPECT_EQ(std::vector<bool>({SameText("canAbilitato", "CANABILITATO"),
                               SameText("canAbilitato", "canAbilitat"), SameText("a[", "A{")}),
            std::vector<bool>({true, false, false}));  // only letters fold
  EXPECT_EQ(LCase("Select A_B FROM [X]@`{}"), "select a_b from [x]@`{}");
}

TEST(ReplaceTest, EveryOccurrenceBinaryCompare) {
  for (const std::vector<std::string>& c :
       std::vector<std::vector<std::string>>{{"a.b.c", ".", "::", "a::b::c"},
                                             {"aaaa", "aa", "a", "aa"},
                                             {"abc", "B", "x", "abc"},
                                             {"abc", "", "x", "abc"},
                                             {"x'y'", "'", "''", "x''y''"}}) {
    EXPECT_EQ(Replace(c[0], c[1], c[2]), c[3]) << c[0];
  }
}

}  // namespace
}  // namespace zarvik::vb
