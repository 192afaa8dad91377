#include "platform/variant.h"

#include <gtest/gtest.h>

#include <tuple>

#include "platform/platform_test_support.h"

namespace zarvik {
namespace {

using test::ErrorOf;
using test::ErrorsOf;

struct Dummy : Object {
  std::string TypeName() const override { return "Dummy"; }
};

const int32_t kOv = vberr::kOverflow;
const int32_t kTm = vberr::kTypeMismatch;
const int32_t kNu = vberr::kInvalidUseOfNull;

// What `f` answers, as CStr writes it, or "#n" for the VB error n it raised.
template <typename F>
std::string Try(F&& f) {
  std::string text;
  const int32_t error = ErrorOf([&] { text = Variant(f()).ToString(); });
  return error != 0 ? "#" + std::to_string(error) : text;
}

// CStr. Just before midnight rounds to the next day rather than to "24:00:00".
TEST(VariantToString, ConversionTable) {
  const std::vector<std::pair<Variant, std::string>> cases = {
      {Variant(), ""},
      {Variant(true), "True"},
      {Variant(int16_t{-32768}), "-32768"},
      {Variant(-0.0), "0"},
      {Variant(2.0 / 3.0), "0.666666666666667"},
      {Variant(0.1 + 0.2), "0.3"},
      {Variant(123456789012345.0), "123456789012345"},
      {Variant(1e15), "1E+15"},
      {Variant(1234567890123456.0), "1.23456789012346E+15"},
      {Variant(0.0001), "0.0001"},
      {Variant(-1.5e-7), "-1.5E-07"},
      {Variant(1e100), "1E+100"},
      {Variant::Date(45306.0), "2024-01-15"},
      {Variant::Date(45306.5), "2024-01-15 12:00:00"},
      {Variant::Date(0.75), "18:00:00"},
      {Variant::Date(-1.25), "1899-12-29 06:00:00"},
      {Variant::Date(36526.0 + 86399.6 / 86400.0), "2000-01-02"},
      {Variant::Null(), "#94"},
      {Variant::Nothing(), "#13"},
      {Variant(ObjectRef(std::make_shared<Dummy>())), "#13"},
      {Variant(std::make_shared<VariantArray>(0, 0, 0, 0)), "#13"}};
  for (const auto& [value, text] : cases) EXPECT_EQ(Try([&] { return value.ToString(); }), text);
}

// CInt and CLng: banker's rounding, the 16- and 32-bit boundaries, text as a number.
TEST(VariantToInteger, ConversionTable) {
  using Case = std::pair<Variant, int32_t>;
  const std::vector<Case> both = {
      {Variant(), 0},          {Variant(true), -1},       {Variant(2.5), 2},
      {Variant(3.5), 4},       {Variant(-2.5), -2},       {Variant(0.5), 0},
      {Variant(2.5001), 3},    {Variant(32767.4), 32767}, {Variant(-32768.5), -32768},
      {Variant("  -7  "), -7}, {Variant("2.5"), 2},       {Variant("1e3"), 1000},
      {Variant("1D2"), 100},   {Variant("&hff"), 255},    {Variant("&O17"), 15},
      {Variant("&H19"), 25}};
  // CInt raises 6, CLng answers.
  const std::vector<Case> long_only = {
      {Variant(32767.5), 32768},           {Variant(-32768.6), -32769},
      {Variant(int32_t{-32769}), -32769},  {Variant(2147483647.0), 2147483647},
      {Variant(-2147483648.5), INT32_MIN}, {Variant("32768"), 32768},
      {Variant("&H10000"), 65536},         {Variant("&HFFFFFFFF"), -1},
      {Variant::Date(45306.75), 45307}};
  // Both raise this error.
  const std::vector<Case> failing = {
      {Variant::Null(), kNu},        {Variant(2147483647.5), kOv}, {Variant(-2147483649.0), kOv},
      {Variant("&H100000000"), kOv}, {Variant("1e400"), kOv},      {Variant(""), kTm},
      {Variant("12abc"), kTm},       {Variant("1,000"), kTm},      {Variant("1e"), kTm},
      {Variant("&H"), kTm},          {Variant("&O8"), kTm},        {Variant("True"), kTm},
      {Variant::Nothing(), kTm}};
  // "CInt CLng" of a value, each the number or #error.
  const auto cint_clng = [](const Variant& v) {
    return Try([&] { return v.ToInteger(); }) + " " + Try([&] { return v.ToLong(); });
  };
  const auto n = [](int32_t value) { return std::to_string(value); };
  for (const auto& [v, i] : both) EXPECT_EQ(cint_clng(v), n(i) + " " + n(i));
  for (const auto& [v, l] : long_only) EXPECT_EQ(cint_clng(v), "#6 " + n(l));
  for (const auto& [v, e] : failing) EXPECT_EQ(cint_clng(v), "#" + n(e) + " #" + n(e));
  EXPECT_EQ(cint_clng(Variant("&HFFFF")), "-1 65535");  // 16-bit, 32-bit
}

TEST(VariantToDouble, ReadsNumbersAndNumericText) {
  EXPECT_EQ((std::vector<double>{Variant(true).ToDouble(), Variant("-4.5e-1").ToDouble(),
                                 Variant("1e-400").ToDouble(), Variant("0e999").ToDouble()}),
            (std::vector<double>{-1.0, -0.45, 0.0, 0.0}));
  EXPECT_EQ(
      ErrorsOf({[] { Variant("-123.4e307").ToDouble(); }, [] { Variant("0.001e312").ToDouble(); },
                [] { Variant::Null().ToDouble(); }, [] { Variant("x1").ToDouble(); }}),
      (std::vector<int32_t>{kOv, kOv, kNu, kTm}));
}

TEST(VariantToBool, ConversionTable) {
  const std::vector<std::pair<Variant, std::string>> cases = {
      {Variant(int32_t{2}), "True"}, {Variant(-0.1), "True"},     {Variant("tRUE"), "True"},
      {Variant("-1"), "True"},       {Variant(), "False"},        {Variant(int16_t{0}), "False"},
      {Variant(" false "), "False"}, {Variant("0.0"), "False"},   {Variant("yes"), "#13"},
      {Variant(""), "#13"},          {Variant::Nothing(), "#13"}, {Variant::Null(), "#94"}};
  for (const auto& [value, answer] : cases) EXPECT_EQ(Try([&] { return value.ToBool(); }), answer);
}

TEST(VariantToDate, ReadsTheInvariantTextItWrites) {
  for (const double oa : {45306.0, 45306.5, 0.75, -1.25, 36526.0 + 3723.0 / 86400.0}) {
    EXPECT_NEAR(Variant(Variant::Date(oa).ToString()).ToDate(), oa, 1e-9);
  }
  EXPECT_EQ(Try([] { return Variant(" 2024-01-15 ").ToDate(); }) + " " +
                Try([] { return Variant(int32_t{3}).ToDate(); }) + " " +
                Try([] { return Variant::Null().ToDate(); }),
            "45306 3 #94");
  for (const char* bad : {"2023-02-30", "2024-13-01", "2024-1-15", "15/01/2024", "25:00",
                          "2024-01-15T10:00:00", "2024-01-15 10:00:61", ""}) {
    EXPECT_EQ(Try([&] { return Variant(bad).ToDate(); }), "#13") << bad;
  }
}

TEST(VariantIsNumeric, FollowsVb) {
  const std::vector<std::pair<Variant, bool>> cases = {
      {Variant(), true},          {Variant::Null(), false},    {Variant(true), true},
      {Variant::Date(1), false},  {Variant(" -1.5e3 "), true}, {Variant("&H1F"), true},
      {Variant(""), false},       {Variant("1 2"), false},     {Variant("1e999"), false},
      {Variant::Nothing(), false}};
  for (const auto& [value, numeric] : cases) EXPECT_EQ(value.IsNumeric(), numeric);
}

TEST(VariantObjectAndArray, NothingWrongTypesAndSubscripts) {
  EXPECT_TRUE(Variant::Nothing().IsNothing() && Variant::Nothing().ToObject() == nullptr);
  EXPECT_FALSE(Variant(ObjectRef(std::make_shared<Dummy>())).IsNothing());
  VariantArray shifted(-2, -1, 5, 6);
  shifted.At(-1, 6) = Variant(int32_t{7});
  EXPECT_EQ(std::to_string(shifted.LBound(1)) + ".." + std::to_string(shifted.UBound(2)) + " " +
                shifted.At(-1, 6).ConcatText() + " " + Try([&] { return shifted.At(-2, 6); }),
            "-2..6 7 ");  // an element never set is Empty
  const int32_t kSub = vberr::kSubscriptOutOfRange;
  EXPECT_EQ(
      ErrorsOf({[] { Variant("x").ToObject(); }, [] { Variant().ToArray(); },
                [&] { shifted.At(-3, 5); }, [&] { shifted.At(0, 5); }, [&] { shifted.At(-2, 4); },
                [&] { shifted.At(-2, 7); }, [&] { shifted.LBound(3); }, [&] { shifted.UBound(0); },
                [] { VariantArray(0, -1, 0, 0); }}),
      (std::vector<int32_t>{kTm, kTm, kSub, kSub, kSub, kSub, kSub, kSub, kSub}));
}

// VB's = on Variants; text against text compares binary, as text.
TEST(VbCompareTest, ComparisonTable) {
  const std::vector<std::tuple<Variant, Variant, int>> cases = {
      {Variant(), Variant(int32_t{0}), 0},
      {Variant(), Variant(0.5), -1},
      {Variant(), Variant(""), 0},
      {Variant(), Variant("a"), -1},
      {Variant(int16_t{1}), Variant(1.0), 0},
      {Variant(true), Variant(int32_t{-1}), 0},
      {Variant::Date(45306), Variant(45306.0), 0},
      {Variant("abc"), Variant("ABC"), 1},
      {Variant("ab"), Variant("abc"), -1},
      {Variant("10"), Variant("9"), -1},
      {Variant(int32_t{10}), Variant("9"), 1},
      {Variant(" 10 "), Variant(int32_t{10}), 0},
      {Variant(true), Variant("True"), 0},
      {Variant(true), Variant("0"), -1}};
  for (const auto& [a, b, expected] : cases) {
    EXPECT_EQ(VbCompare(a, b), expected) << a.ConcatText() << " vs " << b.ConcatText();
    EXPECT_EQ(VbCompare(b, a), -expected) << a.ConcatText();  // antisymmetric
    EXPECT_EQ(VbEquals(a, b), expected == 0) << a.ConcatText();
  }
  // Null makes any comparison unknown, in either direction.
  for (const Variant& other : {Variant::Null(), Variant(), Variant("a")}) {
    EXPECT_FALSE(VbCompare(Variant::Null(), other) || VbCompare(other, Variant::Null()) ||
                 VbEquals(other, Variant::Null()));
  }
  EXPECT_EQ(ErrorsOf({[] { VbCompare(Variant(int32_t{1}), Variant("abc")); },
                      [] { VbCompare(Variant::Nothing(), Variant(int32_t{0})); }}),
            (std::vector<int32_t>{kTm, kTm}));
}

}  // namespace
}  // namespace zarvik
