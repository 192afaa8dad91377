// A VB-style Variant with the conversion rules of the VB runtime.
//
// Text form (CStr), 16- and 32-bit conversions with banker's rounding and
// overflow (error 6), text that is not a number (error 13), Null where VB
// rejects it (error 94), True = -1.
#ifndef ZARVIK_PLATFORM_VARIANT_H_
#define ZARVIK_PLATFORM_VARIANT_H_

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/object.h"

namespace zarvik {

enum class VarType {
  kEmpty,
  kNull,
  kBoolean,  // stored as True = -1 / False = 0
  kInteger,  // 16-bit
  kLong,     // 32-bit
  kDouble,
  kDate,  // OLE automation date: days since 1899-12-30, fraction = time
  kString,
  kObject,  // object reference; a null reference is Nothing
  kArray,   // two-dimensional Variant array (the one the component returns)
};

class VariantArray;

class Variant {
 public:
  Variant() = default;  // Empty
  static Variant Null();
  static Variant Nothing();
  static Variant Date(double oa_date);
  static Variant Boolean(bool value);

  Variant(bool value);  // NOLINT(google-explicit-constructor): VB assigns freely
  Variant(int16_t value);
  Variant(int32_t value);
  Variant(double value);
  Variant(const char* value);
  Variant(std::string value);
  Variant(ObjectRef value);
  Variant(std::shared_ptr<VariantArray> value);

  VarType Type() const { return type_; }
  bool IsEmpty() const { return type_ == VarType::kEmpty; }
  bool IsNull() const { return type_ == VarType::kNull; }
  bool IsObject() const { return type_ == VarType::kObject; }
  // True for an object variant holding Nothing.
  bool IsNothing() const { return type_ == VarType::kObject && !object_; }
  bool IsNumeric() const;  // VB IsNumeric

  // CStr: Empty -> "", Null -> error 94, Boolean -> "True"/"False",
  // numbers with an invariant decimal point, objects and arrays -> error 13.
  // Dates use a fixed, locale-independent form instead of the machine's
  // short date: "YYYY-MM-DD" without a time, "YYYY-MM-DD HH:MM:SS" with
  // one, and "HH:MM:SS" for a time alone (day 0), to the nearest second.
  std::string ToString() const;
  // Text for concatenation with &: Null and Empty give "".
  std::string ConcatText() const;
  // CInt / CLng: round half to even; out of range -> 6; non-numeric -> 13;
  // Null -> 94. Text is read as a number: blanks around it, a sign, digits
  // with '.' as the decimal point, an exponent with E or D, or "&H" / "&O"
  // digits (narrowed as two's complement: CInt("&HFFFF") = -1 while
  // CLng("&HFFFF") = 65535). No thousands separators or currency signs.
  int16_t ToInteger() const;
  int32_t ToLong() const;
  double ToDouble() const;  // CDbl
  // CBool: numbers are True when nonzero; text "True"/"False" in any case
  // or numeric text; anything else 13, Null 94.
  bool ToBool() const;
  // CDate as OLE date: numbers as they are, text in the forms ToString
  // writes for dates; other text 13, Null 94.
  double ToDate() const;
  // The object reference (nullptr for Nothing); error 13 when not an object.
  ObjectRef ToObject() const;
  std::shared_ptr<VariantArray> ToArray() const;

  // Raw access without conversion (valid only for the matching type).
  double RawNumber() const { return number_; }
  const std::string& RawString() const { return text_; }

 private:
  VarType type_ = VarType::kEmpty;
  double number_ = 0;  // Boolean, Integer, Long, Double, Date
  std::string text_;
  ObjectRef object_;
  std::shared_ptr<VariantArray> array_;
};

// A two-dimensional Variant array with lower bounds, as VB's ReDim makes it.
class VariantArray {
 public:
  VariantArray(int32_t lower1, int32_t upper1, int32_t lower2, int32_t upper2);
  Variant& At(int32_t i, int32_t j);  // out of bounds: error 9
  const Variant& At(int32_t i, int32_t j) const;
  int32_t LBound(int dimension) const;
  int32_t UBound(int dimension) const;

 private:
  int32_t lower1_, upper1_, lower2_, upper2_;
  std::vector<Variant> items_;
};

// VB's comparison of two Variants with '=' and '<': Null on either side
// gives no answer (std::nullopt), which an If statement treats as False.
// Numbers compare numerically, strings as text (binary compare), a number
// against numeric text numerically, and Empty as 0 or "". A number against
// text that is not numeric raises 13 (as comparing with a typed number does
// in VB); a Boolean against text reads the text with CBool; objects and
// arrays raise 13. The result is -1, 0 or 1.
std::optional<int> VbCompare(const Variant& a, const Variant& b);
bool VbEquals(const Variant& a, const Variant& b);  // False when Null

// Text of a double as VB's CStr writes it (up to 15 significant digits,
// invariant decimal point, no grouping).
std::string VbNumberText(double value);

}  // namespace zarvik

#endif  // ZARVIK_PLATFORM_VARIANT_H_
