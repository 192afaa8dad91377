#include "platform/variant.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "platform/vb_error.h"

namespace zarvik {
namespace {

// Runs `f` and returns the VB error number it raised, 0 when it raised none.
template <typename F>
int32_t ErrorOf(F f) {
  try {
    f();
  } catch (const VbError& e) {
    return e.Number();
  }
  return 0;
}

class Dummy : public Object {
 public:
  std::string TypeName() const override { return "Dummy"; }
};

// ---- CStr -----------------------------------------------------------------

struct TextCase {
  Variant value;
  std::string text;  // expected CStr when error == 0
  int32_t error;
};

TEST(VariantToString, ConversionTable) {
  const std::vector<TextCase> cases = {
      {Variant(), "", 0},
      {Variant(true), "True", 0},
      {Variant(false), "False", 0},
      {Variant(int16_t{-32768}), "-32768", 0},
      {Variant(int32_t{2147483647}), "2147483647", 0},
      {Variant(int32_t{-5}), "-5", 0},
      {Variant(0.5), "0.5", 0},
      {Variant(-0.5), "-0.5", 0},
      {Variant(2.0), "2", 0},
      {Variant(-0.0), "0", 0},
      {Variant(1.0 / 3.0), "0.333333333333333", 0},
      {Variant(2.0 / 3.0), "0.666666666666667", 0},
      {Variant(0.1 + 0.2), "0.3", 0},
      {Variant(123456789012345.0), "123456789012345", 0},
      {Variant(1e15), "1E+15", 0},
      {Variant(1234567890123456.0), "1.23456789012346E+15", 0},
      {Variant(0.0001), "0.0001", 0},
      {Variant(0.00001), "1E-05", 0},
      {Variant(-1.5e-7), "-1.5E-07", 0},
      {Variant(1e100), "1E+100", 0},
      {Variant(1234.5678), "1234.5678", 0},
      {Variant("abc"), "abc", 0},
      {Variant(std::string()), "", 0},
      {Variant::Date(45306.0), "2024-01-15", 0},
      {Variant::Date(45306.5), "2024-01-15 12:00:00", 0},
      {Variant::Date(0.0), "1899-12-30", 0},
      {Variant::Date(0.75), "18:00:00", 0},
      {Variant::Date(-1.25), "1899-12-29 06:00:00", 0},
      {Variant::Date(36526.0 + (23 * 3600 + 59 * 60 + 59) / 86400.0), "2000-01-01 23:59:59", 0},
      // Just before midnight rounds to the next day rather than to "24:00:00".
      {Variant::Date(36526.0 + 86399.6 / 86400.0), "2000-01-02", 0},
      {Variant::Null(), "", vberr::kInvalidUseOfNull},
      {Variant(ObjectRef(std::make_shared<Dummy>())), "", vberr::kTypeMismatch},
      {Variant::Nothing(), "", vberr::kTypeMismatch},
      {Variant(std::make_shared<VariantArray>(0, 0, 0, 0)), "", vberr::kTypeMismatch},
  };
  for (size_t i = 0; i < cases.size(); ++i) {
    const TextCase& c = cases[i];
    SCOPED_TRACE("case " + std::to_string(i));
    std::string got;
    EXPECT_EQ(ErrorOf([&] { got = c.value.ToString(); }), c.error);
    if (c.error == 0) {
      EXPECT_EQ(got, c.text);
    }
  }
}

TEST(VariantToString, ConcatTextTurnsNullAndEmptyIntoNothing) {
  EXPECT_EQ(Variant::Null().ConcatText(), "");
  EXPECT_EQ(Variant().ConcatText(), "");
  EXPECT_EQ(Variant(int32_t{42}).ConcatText(), "42");
  EXPECT_EQ(Variant(true).ConcatText(), "True");
  EXPECT_EQ(ErrorOf([] { Variant::Nothing().ConcatText(); }), vberr::kTypeMismatch);
}

// ---- CInt / CLng ------------------------------------------------------------

struct IntCase {
  Variant value;
  int32_t cint;  // expected when cint_error == 0
  int32_t cint_error;
  int32_t clng;  // expected when clng_error == 0
  int32_t clng_error;
};

TEST(VariantToInteger, ConversionTable) {
  const int32_t kOv = vberr::kOverflow;
  const int32_t kTm = vberr::kTypeMismatch;
  const int32_t kNu = vberr::kInvalidUseOfNull;
  const std::vector<IntCase> cases = {
      {Variant(), 0, 0, 0, 0},
      {Variant(true), -1, 0, -1, 0},
      {Variant(false), 0, 0, 0, 0},
      {Variant::Null(), 0, kNu, 0, kNu},
      // Banker's rounding.
      {Variant(2.5), 2, 0, 2, 0},
      {Variant(3.5), 4, 0, 4, 0},
      {Variant(-2.5), -2, 0, -2, 0},
      {Variant(-3.5), -4, 0, -4, 0},
      {Variant(0.5), 0, 0, 0, 0},
      {Variant(1.5), 2, 0, 2, 0},
      {Variant(-0.5), 0, 0, 0, 0},
      {Variant(2.4999), 2, 0, 2, 0},
      {Variant(2.5001), 3, 0, 3, 0},
      {Variant(-2.6), -3, 0, -3, 0},
      // 16-bit boundaries.
      {Variant(32767.0), 32767, 0, 32767, 0},
      {Variant(32767.4), 32767, 0, 32767, 0},
      {Variant(32767.5), 0, kOv, 32768, 0},
      {Variant(32768.0), 0, kOv, 32768, 0},
      {Variant(-32768.0), -32768, 0, -32768, 0},
      {Variant(-32768.5), -32768, 0, -32768, 0},
      {Variant(-32768.6), 0, kOv, -32769, 0},
      {Variant(int32_t{-32769}), 0, kOv, -32769, 0},
      {Variant(int32_t{40000}), 0, kOv, 40000, 0},
      // 32-bit boundaries.
      {Variant(2147483647.0), 0, kOv, 2147483647, 0},
      {Variant(2147483647.5), 0, kOv, 0, kOv},
      {Variant(2147483646.5), 0, kOv, 2147483646, 0},
      {Variant(-2147483648.5), 0, kOv, -2147483647 - 1, 0},
      {Variant(-2147483649.0), 0, kOv, 0, kOv},
      {Variant(1e300), 0, kOv, 0, kOv},
      // Text is read as a number.
      {Variant("12"), 12, 0, 12, 0},
      {Variant("  -7  "), -7, 0, -7, 0},
      {Variant("+3"), 3, 0, 3, 0},
      {Variant("2.5"), 2, 0, 2, 0},
      {Variant("3.5"), 4, 0, 4, 0},
      {Variant(".5"), 0, 0, 0, 0},
      {Variant("1e3"), 1000, 0, 1000, 0},
      {Variant("1D2"), 100, 0, 100, 0},
      {Variant("32768"), 0, kOv, 32768, 0},
      {Variant("&H10"), 16, 0, 16, 0},
      {Variant("&hff"), 255, 0, 255, 0},
      {Variant("&HFFFF"), -1, 0, 65535, 0},
      {Variant("&H10000"), 0, kOv, 65536, 0},
      {Variant("&HFFFFFFFF"), 0, kOv, -1, 0},
      {Variant("&H100000000"), 0, kOv, 0, kOv},
      {Variant("&O17"), 15, 0, 15, 0},
      {Variant("1e400"), 0, kOv, 0, kOv},
      {Variant(""), 0, kTm, 0, kTm},
      {Variant("   "), 0, kTm, 0, kTm},
      {Variant("abc"), 0, kTm, 0, kTm},
      {Variant("12abc"), 0, kTm, 0, kTm},
      {Variant("1,000"), 0, kTm, 0, kTm},
      {Variant("."), 0, kTm, 0, kTm},
      {Variant("1e"), 0, kTm, 0, kTm},
      {Variant("&H"), 0, kTm, 0, kTm},
      {Variant("&HG"), 0, kTm, 0, kTm},
      {Variant("&O8"), 0, kTm, 0, kTm},
      {Variant("True"), 0, kTm, 0, kTm},
      {Variant::Date(45306.75), 0, kOv, 45307, 0},
      {Variant::Date(1.5), 2, 0, 2, 0},
      {Variant(ObjectRef(std::make_shared<Dummy>())), 0, kTm, 0, kTm},
      {Variant::Nothing(), 0, kTm, 0, kTm},
  };
  for (size_t i = 0; i < cases.size(); ++i) {
    const IntCase& c = cases[i];
    SCOPED_TRACE("case " + std::to_string(i));
    int16_t got16 = 0;
    int32_t got32 = 0;
    EXPECT_EQ(ErrorOf([&] { got16 = c.value.ToInteger(); }), c.cint_error);
    if (c.cint_error == 0) {
      EXPECT_EQ(got16, c.cint);
    }
    EXPECT_EQ(ErrorOf([&] { got32 = c.value.ToLong(); }), c.clng_error);
    if (c.clng_error == 0) {
      EXPECT_EQ(got32, c.clng);
    }
  }
}

// ---- CDbl / CBool / CDate ---------------------------------------------------

TEST(VariantToDouble, ReadsNumbersAndNumericText) {
  EXPECT_EQ(Variant().ToDouble(), 0.0);
  EXPECT_EQ(Variant(true).ToDouble(), -1.0);
  EXPECT_EQ(Variant(int16_t{7}).ToDouble(), 7.0);
  EXPECT_EQ(Variant(" 1.25 ").ToDouble(), 1.25);
  EXPECT_EQ(Variant("-4.5e-1").ToDouble(), -0.45);
  EXPECT_EQ(Variant("1e-400").ToDouble(), 0.0);
  EXPECT_EQ(Variant("0.0000123e-320").ToDouble(), 0.0);
  EXPECT_EQ(Variant("0e999").ToDouble(), 0.0);
  EXPECT_EQ(ErrorOf([] { Variant("-123.4e307").ToDouble(); }), vberr::kOverflow);
  EXPECT_EQ(ErrorOf([] { Variant("0.001e312").ToDouble(); }), vberr::kOverflow);
  EXPECT_EQ(Variant::Date(2.25).ToDouble(), 2.25);
  EXPECT_EQ(ErrorOf([] { Variant::Null().ToDouble(); }), vberr::kInvalidUseOfNull);
  EXPECT_EQ(ErrorOf([] { Variant("x1").ToDouble(); }), vberr::kTypeMismatch);
}

struct BoolCase {
  Variant value;
  bool expected;
  int32_t error;
};

TEST(VariantToBool, ConversionTable) {
  const std::vector<BoolCase> cases = {
      {Variant(), false, 0},
      {Variant(true), true, 0},
      {Variant(false), false, 0},
      {Variant(int16_t{0}), false, 0},
      {Variant(int32_t{2}), true, 0},
      {Variant(-0.1), true, 0},
      {Variant("True"), true, 0},
      {Variant("tRUE"), true, 0},
      {Variant(" false "), false, 0},
      {Variant("FALSE"), false, 0},
      {Variant("0"), false, 0},
      {Variant("-1"), true, 0},
      {Variant("0.0"), false, 0},
      {Variant("yes"), false, vberr::kTypeMismatch},
      {Variant(""), false, vberr::kTypeMismatch},
      {Variant::Null(), false, vberr::kInvalidUseOfNull},
      {Variant::Nothing(), false, vberr::kTypeMismatch},
  };
  for (size_t i = 0; i < cases.size(); ++i) {
    const BoolCase& c = cases[i];
    SCOPED_TRACE("case " + std::to_string(i));
    bool got = false;
    EXPECT_EQ(ErrorOf([&] { got = c.value.ToBool(); }), c.error);
    if (c.error == 0) {
      EXPECT_EQ(got, c.expected);
    }
  }
}

TEST(VariantToDate, ReadsTheInvariantTextItWrites) {
  for (const double oa : {45306.0, 45306.5, 0.0, 0.75, -1.25, 36526.0 + 3723.0 / 86400.0}) {
    SCOPED_TRACE(oa);
    const std::string text = Variant::Date(oa).ToString();
    EXPECT_NEAR(Variant(text).ToDate(), oa, 1e-9);
  }
  EXPECT_EQ(Variant(" 2024-01-15 ").ToDate(), 45306.0);
  EXPECT_EQ(Variant(int32_t{3}).ToDate(), 3.0);
  EXPECT_EQ(Variant().ToDate(), 0.0);
  for (const char* bad : {"2023-02-30", "2024-13-01", "2024-1-15", "15/01/2024", "25:00",
                          "2024-01-15T10:00:00", "2024-01-15 10:00:61", ""}) {
    SCOPED_TRACE(bad);
    EXPECT_EQ(ErrorOf([&] { Variant(bad).ToDate(); }), vberr::kTypeMismatch);
  }
  EXPECT_EQ(ErrorOf([] { Variant::Null().ToDate(); }), vberr::kInvalidUseOfNull);
}

// ---- IsNumeric / objects / arrays --------------------------------------------

TEST(VariantIsNumeric, FollowsVb) {
  struct Case {
    Variant value;
    bool numeric;
  };
  const std::vector<Case> cases = {
      {Variant(), true},           {Variant::Null(), false},    {Variant(true), true},
      {Variant(int16_t{1}), true}, {Variant(1.5), true},        {Variant::Date(1), false},
      {Variant("12"), true},       {Variant(" -1.5e3 "), true}, {Variant("&H1F"), true},
      {Variant(""), false},        {Variant("1 2"), false},     {Variant("abc"), false},
      {Variant("1e999"), false},   {Variant::Nothing(), false},
  };
  for (size_t i = 0; i < cases.size(); ++i) {
    SCOPED_TRACE("case " + std::to_string(i));
    EXPECT_EQ(cases[i].value.IsNumeric(), cases[i].numeric);
  }
}

TEST(VariantObject, HoldsReferencesAndNothing) {
  auto obj = std::make_shared<Dummy>();
  const Variant v{ObjectRef(obj)};
  EXPECT_TRUE(v.IsObject());
  EXPECT_FALSE(v.IsNothing());
  EXPECT_EQ(v.ToObject(), obj);
  EXPECT_TRUE(Variant::Nothing().IsNothing());
  EXPECT_EQ(Variant::Nothing().ToObject(), nullptr);
  EXPECT_EQ(ErrorOf([] { Variant("x").ToObject(); }), vberr::kTypeMismatch);
  EXPECT_EQ(ErrorOf([] { Variant().ToArray(); }), vberr::kTypeMismatch);
}

TEST(VariantArrayTest, BoundsAndSubscripts) {
  auto arr = std::make_shared<VariantArray>(0, 1, 0, 2);
  EXPECT_EQ(arr->LBound(1), 0);
  EXPECT_EQ(arr->UBound(1), 1);
  EXPECT_EQ(arr->LBound(2), 0);
  EXPECT_EQ(arr->UBound(2), 2);
  for (int32_t i = 0; i <= 1; ++i) {
    for (int32_t j = 0; j <= 2; ++j) arr->At(i, j) = Variant(int32_t{i * 10 + j});
  }
  for (int32_t i = 0; i <= 1; ++i) {
    for (int32_t j = 0; j <= 2; ++j) EXPECT_EQ(arr->At(i, j).ToLong(), i * 10 + j);
  }
  EXPECT_TRUE(VariantArray(0, 0, 0, 0).At(0, 0).IsEmpty());
  const Variant v(arr);
  EXPECT_EQ(v.Type(), VarType::kArray);
  EXPECT_EQ(v.ToArray(), arr);

  const VariantArray shifted(-2, -1, 5, 5);
  EXPECT_EQ(shifted.LBound(1), -2);
  EXPECT_EQ(shifted.UBound(2), 5);
  for (const auto& [i, j] :
       std::vector<std::pair<int32_t, int32_t>>{{-3, 5}, {0, 5}, {-2, 4}, {-2, 6}}) {
    SCOPED_TRACE(std::to_string(i) + "," + std::to_string(j));
    EXPECT_EQ(ErrorOf([&] { shifted.At(i, j); }), vberr::kSubscriptOutOfRange);
  }
  EXPECT_EQ(ErrorOf([&] { shifted.LBound(3); }), vberr::kSubscriptOutOfRange);
  EXPECT_EQ(ErrorOf([&] { shifted.UBound(0); }), vberr::kSubscriptOutOfRange);
  EXPECT_EQ(ErrorOf([] { VariantArray(0, -1, 0, 0); }), vberr::kSubscriptOutOfRange);
}

// ---- Comparison ---------------------------------------------------------------

struct CompareCase {
  Variant a;
  Variant b;
  std::optional<int> expected;
  int32_t error;
};

TEST(VbCompareTest, ComparisonTable) {
  const std::optional<int> kNone;
  const std::vector<CompareCase> cases = {
      {Variant::Null(), Variant::Null(), kNone, 0},
      {Variant::Null(), Variant(int32_t{1}), kNone, 0},
      {Variant("a"), Variant::Null(), kNone, 0},
      {Variant(), Variant::Null(), kNone, 0},
      {Variant(), Variant(), 0, 0},
      {Variant(), Variant(int32_t{0}), 0, 0},
      {Variant(), Variant(0.5), -1, 0},
      {Variant(int16_t{-1}), Variant(), -1, 0},
      {Variant(), Variant(""), 0, 0},
      {Variant(), Variant("a"), -1, 0},
      {Variant("a"), Variant(), 1, 0},
      {Variant(int16_t{1}), Variant(1.0), 0, 0},
      {Variant(int32_t{2}), Variant(int16_t{10}), -1, 0},
      {Variant(true), Variant(int32_t{-1}), 0, 0},
      {Variant(false), Variant(int32_t{0}), 0, 0},
      {Variant::Date(45306), Variant(45306.0), 0, 0},
      {Variant("abc"), Variant("abc"), 0, 0},
      {Variant("abc"), Variant("ABC"), 1, 0},  // binary compare
      {Variant("ab"), Variant("abc"), -1, 0},
      {Variant("10"), Variant("9"), -1, 0},  // text against text stays text
      {Variant(int32_t{10}), Variant("9"), 1, 0},
      {Variant(" 10 "), Variant(int32_t{10}), 0, 0},
      {Variant(int32_t{1}), Variant("1.0"), 0, 0},
      {Variant(int32_t{1}), Variant("abc"), kNone, vberr::kTypeMismatch},
      {Variant(true), Variant("True"), 0, 0},
      {Variant("false"), Variant(false), 0, 0},
      {Variant(true), Variant("0"), -1, 0},
      {Variant::Nothing(), Variant(int32_t{0}), kNone, vberr::kTypeMismatch},
  };
  for (size_t i = 0; i < cases.size(); ++i) {
    const CompareCase& c = cases[i];
    SCOPED_TRACE("case " + std::to_string(i));
    std::optional<int> got;
    EXPECT_EQ(ErrorOf([&] { got = VbCompare(c.a, c.b); }), c.error);
    if (c.error != 0) continue;
    EXPECT_EQ(got, c.expected);
    // The comparison is antisymmetric.
    const std::optional<int> back = VbCompare(c.b, c.a);
    if (c.expected) {
      ASSERT_TRUE(back.has_value());
      EXPECT_EQ(*back, -*c.expected);
    } else {
      EXPECT_FALSE(back.has_value());
    }
    EXPECT_EQ(VbEquals(c.a, c.b), c.expected.has_value() && *c.expected == 0);
  }
}

}  // namespace
}  // namespace zarvik
