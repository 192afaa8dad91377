#include "platform/variant.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <utility>

#include "platform/env.h"
#include "platform/vb_error.h"

namespace zarvik {
namespace {

constexpr double kTrue = -1.0;
constexpr double kFalse = 0.0;

[[noreturn]] void Raise(int32_t number) { throw VbError(number); }

bool IsBlank(char c) { return c == ' ' || c == '\t'; }

bool EqualsNoCase(const char* a, size_t len, const char* b) {
  if (std::strlen(b) != len) return false;
  for (size_t i = 0; i < len; ++i) {
    char c = a[i];
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + 32);
    if (c != b[i]) return false;
  }
  return true;
}

// A number read from text. `hex_bits` is the two's-complement value of an
// "&H"/"&O" literal, which VB narrows to the target type rather than
// reading as an unsigned magnitude.
struct ParsedNumber {
  bool ok = false;
  bool overflow = false;
  bool radix = false;
  double value = 0;
  uint64_t bits = 0;
};

// For validated decimal text out of the range of a double: true when the
// magnitude is huge, false when it is tiny.
bool DecimalExponentPositive(const std::string& buf) {
  size_t k = 0;
  if (k < buf.size() && buf[k] == '-') ++k;
  long long magnitude = 0;  // decimal position of the first significant digit
  bool seen_point = false;
  bool seen_digit = false;
  for (; k < buf.size() && buf[k] != 'e'; ++k) {
    if (buf[k] == '.') {
      seen_point = true;
    } else if (!seen_digit && buf[k] == '0') {
      if (seen_point) --magnitude;
    } else {
      seen_digit = true;
      if (!seen_point) ++magnitude;
    }
  }
  long long exponent = 0;
  if (k < buf.size()) {
    ++k;
    bool negative = false;
    if (k < buf.size() && (buf[k] == '+' || buf[k] == '-')) negative = buf[k++] == '-';
    for (; k < buf.size(); ++k) {
      if (exponent < 100000000) exponent = exponent * 10 + (buf[k] - '0');
    }
    if (negative) exponent = -exponent;
  }
  return seen_digit && magnitude + exponent > 0;
}

// Reads VB numeric text with an invariant '.' decimal point: optional
// blanks, optional sign, digits with an optional fraction, an optional
// exponent (E or D), optional blanks; or "&H" hex / "&O" octal digits.
// Thousands separators and currency signs are not accepted.
ParsedNumber ParseNumber(const std::string& text) {
  ParsedNumber out;
  size_t i = 0;
  size_t n = text.size();
  while (i < n && IsBlank(text[i])) ++i;
  while (n > i && IsBlank(text[n - 1])) --n;
  if (i == n) return out;
  if (text[i] == '&' && i + 1 < n) {
    const char kind = text[i + 1];
    const int base = (kind == 'H' || kind == 'h') ? 16 : (kind == 'O' || kind == 'o') ? 8 : 0;
    if (base == 0) return out;
    size_t j = i + 2;
    if (j == n) return out;
    uint64_t bits = 0;
    for (; j < n; ++j) {
      const char c = text[j];
      int digit;
      if (c >= '0' && c <= '9') {
        digit = c - '0';
      } else if (base == 16 && c >= 'a' && c <= 'f') {
        digit = c - 'a' + 10;
      } else if (base == 16 && c >= 'A' && c <= 'F') {
        digit = c - 'A' + 10;
      } else {
        return out;
      }
      if (digit >= base) return out;
      bits = bits * static_cast<uint64_t>(base) + static_cast<uint64_t>(digit);
      if (bits > 0xFFFFFFFFull) out.overflow = true;
    }
    out.ok = true;
    out.radix = true;
    out.bits = bits;
    // As a plain number the literal reads like VB source: up to 16 bits it
    // is an Integer, up to 32 bits a Long.
    if (bits <= 0xFFFF) {
      out.value = static_cast<int16_t>(static_cast<uint16_t>(bits));
    } else {
      out.value = static_cast<int32_t>(static_cast<uint32_t>(bits));
    }
    return out;
  }
  // Validate the decimal form and copy it into a buffer from_chars accepts
  // ('D' exponent becomes 'e', a leading '+' is dropped).
  std::string buf;
  buf.reserve(n - i);
  size_t j = i;
  if (text[j] == '+' || text[j] == '-') {
    if (text[j] == '-') buf += '-';
    ++j;
  }
  size_t digits = 0;
  while (j < n && text[j] >= '0' && text[j] <= '9') buf += text[j++], ++digits;
  if (j < n && text[j] == '.') {
    buf += text[j++];
    while (j < n && text[j] >= '0' && text[j] <= '9') buf += text[j++], ++digits;
  }
  if (digits == 0) return out;
  if (j < n && (text[j] == 'e' || text[j] == 'E' || text[j] == 'd' || text[j] == 'D')) {
    buf += 'e';
    ++j;
    if (j < n && (text[j] == '+' || text[j] == '-')) buf += text[j++];
    size_t exp_digits = 0;
    while (j < n && text[j] >= '0' && text[j] <= '9') buf += text[j++], ++exp_digits;
    if (exp_digits == 0) return out;
  }
  if (j != n) return out;
  double value = 0;
  const auto res = std::from_chars(buf.data(), buf.data() + buf.size(), value);
  if (res.ec == std::errc::result_out_of_range) {
    // Too small reads as zero; only a magnitude too large overflows. The
    // text is valid here, so its decimal exponent tells the two apart.
    out.ok = true;
    out.overflow = DecimalExponentPositive(buf);
    return out;
  }
  if (res.ec != std::errc() || res.ptr != buf.data() + buf.size()) return out;
  out.ok = true;
  out.value = value;
  return out;
}

// VB's rounding for CInt and CLng: to the nearest integer, halves to even.
double RoundHalfEven(double x) {
  const double floor = std::floor(x);
  const double diff = x - floor;
  if (diff > 0.5) return floor + 1;
  if (diff < 0.5) return floor;
  return std::fmod(floor, 2.0) == 0 ? floor : floor + 1;
}

std::string TwoDigits(int v) {
  char buf[3] = {static_cast<char>('0' + v / 10), static_cast<char>('0' + v % 10), 0};
  return buf;
}

// Invariant text of an OLE date: "YYYY-MM-DD" for a date without time,
// "YYYY-MM-DD HH:MM:SS" with a time, "HH:MM:SS" for a time on day 0 (VB too
// drops the date part of a pure time).
std::string DateText(double oa_date) {
  double day_part = std::trunc(oa_date);
  long long seconds = std::llround(std::fabs(oa_date - day_part) * 86400.0);
  if (seconds >= 86400) {
    // Rounding reached midnight of the next day in the date's direction.
    day_part += oa_date < 0 ? -1 : 1;
    seconds = 0;
  }
  const int h = static_cast<int>(seconds / 3600);
  const int mi = static_cast<int>(seconds / 60 % 60);
  const int s = static_cast<int>(seconds % 60);
  const std::string time = TwoDigits(h) + ":" + TwoDigits(mi) + ":" + TwoDigits(s);
  if (day_part == 0 && seconds != 0) return time;
  int y = 0, m = 0, d = 0;
  YmdFromOleDate(day_part, &y, &m, &d);
  char buf[32];
  std::snprintf(buf, sizeof buf, "%04d-%02d-%02d", y, m, d);
  std::string out(buf);
  if (seconds != 0) out += " " + time;
  return out;
}

bool ParseFixedDigits(const std::string& s, size_t pos, size_t count, int* value) {
  if (pos + count > s.size()) return false;
  int v = 0;
  for (size_t k = 0; k < count; ++k) {
    const char c = s[pos + k];
    if (c < '0' || c > '9') return false;
    v = v * 10 + (c - '0');
  }
  *value = v;
  return true;
}

// Time "HH:MM" or "HH:MM:SS" from `pos` to the end; fraction of a day.
bool ParseTime(const std::string& s, size_t pos, double* fraction) {
  int h = 0, mi = 0, sec = 0;
  if (!ParseFixedDigits(s, pos, 2, &h) || pos + 2 >= s.size() || s[pos + 2] != ':' ||
      !ParseFixedDigits(s, pos + 3, 2, &mi))
    return false;
  size_t end = pos + 5;
  if (end < s.size()) {
    if (s[end] != ':' || !ParseFixedDigits(s, end + 1, 2, &sec)) return false;
    end += 3;
  }
  if (end != s.size() || h > 23 || mi > 59 || sec > 59) return false;
  *fraction = (h * 3600 + mi * 60 + sec) / 86400.0;
  return true;
}

// The invariant date forms written by DateText: "YYYY-MM-DD", optionally
// followed by a blank and a time, or a time alone.
bool ParseDate(const std::string& raw, double* oa_date) {
  size_t b = 0, e = raw.size();
  while (b < e && IsBlank(raw[b])) ++b;
  while (e > b && IsBlank(raw[e - 1])) --e;
  const std::string s = raw.substr(b, e - b);
  double fraction = 0;
  if (ParseTime(s, 0, &fraction)) {
    *oa_date = fraction;
    return true;
  }
  int y = 0, m = 0, d = 0;
  if (!ParseFixedDigits(s, 0, 4, &y) || s.size() < 10 || s[4] != '-' ||
      !ParseFixedDigits(s, 5, 2, &m) || s[7] != '-' || !ParseFixedDigits(s, 8, 2, &d))
    return false;
  if (m < 1 || m > 12 || d < 1) return false;
  const double day = OleDateFromYmd(y, m, d);
  int cy = 0, cm = 0, cd = 0;
  YmdFromOleDate(day, &cy, &cm, &cd);
  if (cm != m || cd != d) return false;  // e.g. 2023-02-30
  if (s.size() > 10) {
    if (s[10] != ' ' || !ParseTime(s, 11, &fraction)) return false;
  }
  // Before day 0 the time runs away from zero (OLE date convention).
  *oa_date = day < 0 ? day - fraction : day + fraction;
  return true;
}

// Converts a Variant to a number for arithmetic conversions (CDbl, CInt,
// CLng). Hex literals give their source-code value here; CInt and CLng
// narrow them themselves.
double NumberOf(VarType type, double number, const std::string& text) {
  switch (type) {
    case VarType::kEmpty:
      return 0;
    case VarType::kNull:
      Raise(vberr::kInvalidUseOfNull);
    case VarType::kBoolean:
    case VarType::kInteger:
    case VarType::kLong:
    case VarType::kDouble:
    case VarType::kDate:
      return number;
    case VarType::kString: {
      const ParsedNumber p = ParseNumber(text);
      if (!p.ok) Raise(vberr::kTypeMismatch);
      if (p.overflow) Raise(vberr::kOverflow);
      return p.value;
    }
    case VarType::kObject:
    case VarType::kArray:
      break;
  }
  Raise(vberr::kTypeMismatch);
}

int Sign(double d) { return d < 0 ? -1 : (d > 0 ? 1 : 0); }

}  // namespace

Variant Variant::Null() {
  Variant v;
  v.type_ = VarType::kNull;
  return v;
}

Variant Variant::Nothing() {
  Variant v;
  v.type_ = VarType::kObject;
  return v;
}

Variant Variant::Date(double oa_date) {
  Variant v;
  v.type_ = VarType::kDate;
  v.number_ = oa_date;
  return v;
}

Variant Variant::Boolean(bool value) { return Variant(value); }

Variant::Variant(bool value) : type_(VarType::kBoolean), number_(value ? kTrue : kFalse) {}
Variant::Variant(int16_t value) : type_(VarType::kInteger), number_(value) {}
Variant::Variant(int32_t value) : type_(VarType::kLong), number_(value) {}
Variant::Variant(double value) : type_(VarType::kDouble), number_(value) {}
Variant::Variant(const char* value) : type_(VarType::kString), text_(value ? value : "") {}
Variant::Variant(std::string value) : type_(VarType::kString), text_(std::move(value)) {}
Variant::Variant(ObjectRef value) : type_(VarType::kObject), object_(std::move(value)) {}
Variant::Variant(std::shared_ptr<VariantArray> value)
    : type_(VarType::kArray), array_(std::move(value)) {}

// VB's IsNumeric: Empty counts as numeric (it converts to 0), Null, dates,
// objects and arrays do not, text when it reads as a number.
bool Variant::IsNumeric() const {
  switch (type_) {
    case VarType::kEmpty:
    case VarType::kBoolean:
    case VarType::kInteger:
    case VarType::kLong:
    case VarType::kDouble:
      return true;
    case VarType::kString: {
      const ParsedNumber p = ParseNumber(text_);
      return p.ok && !p.overflow;
    }
    case VarType::kNull:
    case VarType::kDate:
    case VarType::kObject:
    case VarType::kArray:
      break;
  }
  return false;
}

std::string Variant::ToString() const {
  switch (type_) {
    case VarType::kEmpty:
      return std::string();
    case VarType::kNull:
      Raise(vberr::kInvalidUseOfNull);
    case VarType::kBoolean:
      return number_ != 0 ? "True" : "False";
    case VarType::kInteger:
    case VarType::kLong:
      return std::to_string(static_cast<int32_t>(number_));
    case VarType::kDouble:
      return VbNumberText(number_);
    case VarType::kDate:
      return DateText(number_);
    case VarType::kString:
      return text_;
    case VarType::kObject:
    case VarType::kArray:
      break;
  }
  Raise(vberr::kTypeMismatch);
}

std::string Variant::ConcatText() const {
  if (type_ == VarType::kNull) return std::string();
  return ToString();
}

int16_t Variant::ToInteger() const {
  if (type_ == VarType::kString) {
    const ParsedNumber p = ParseNumber(text_);
    if (p.ok && p.radix) {
      if (p.bits > 0xFFFF) Raise(vberr::kOverflow);
      return static_cast<int16_t>(static_cast<uint16_t>(p.bits));
    }
  }
  const double r = RoundHalfEven(NumberOf(type_, number_, text_));
  if (!(r >= -32768.0 && r <= 32767.0)) Raise(vberr::kOverflow);
  return static_cast<int16_t>(r);
}

int32_t Variant::ToLong() const {
  if (type_ == VarType::kString) {
    const ParsedNumber p = ParseNumber(text_);
    if (p.ok && p.radix) {
      if (p.bits > 0xFFFFFFFFull) Raise(vberr::kOverflow);
      return static_cast<int32_t>(static_cast<uint32_t>(p.bits));
    }
  }
  const double r = RoundHalfEven(NumberOf(type_, number_, text_));
  if (!(r >= -2147483648.0 && r <= 2147483647.0)) Raise(vberr::kOverflow);
  return static_cast<int32_t>(r);
}

double Variant::ToDouble() const { return NumberOf(type_, number_, text_); }

bool Variant::ToBool() const {
  if (type_ == VarType::kString) {
    size_t b = 0, e = text_.size();
    while (b < e && IsBlank(text_[b])) ++b;
    while (e > b && IsBlank(text_[e - 1])) --e;
    if (EqualsNoCase(text_.data() + b, e - b, "true")) return true;
    if (EqualsNoCase(text_.data() + b, e - b, "false")) return false;
  }
  return NumberOf(type_, number_, text_) != 0;
}

double Variant::ToDate() const {
  switch (type_) {
    case VarType::kNull:
      Raise(vberr::kInvalidUseOfNull);
    case VarType::kString: {
      double oa = 0;
      if (ParseDate(text_, &oa)) return oa;
      Raise(vberr::kTypeMismatch);
    }
    case VarType::kEmpty:
    case VarType::kBoolean:
    case VarType::kInteger:
    case VarType::kLong:
    case VarType::kDouble:
    case VarType::kDate:
      return number_;
    case VarType::kObject:
    case VarType::kArray:
      break;
  }
  Raise(vberr::kTypeMismatch);
}

ObjectRef Variant::ToObject() const {
  if (type_ != VarType::kObject) Raise(vberr::kTypeMismatch);
  return object_;
}

std::shared_ptr<VariantArray> Variant::ToArray() const {
  if (type_ != VarType::kArray) Raise(vberr::kTypeMismatch);
  return array_;
}

VariantArray::VariantArray(int32_t lower1, int32_t upper1, int32_t lower2, int32_t upper2)
    : lower1_(lower1), upper1_(upper1), lower2_(lower2), upper2_(upper2) {
  if (upper1 < lower1 || upper2 < lower2) Raise(vberr::kSubscriptOutOfRange);
  const int64_t rows = static_cast<int64_t>(upper1) - lower1 + 1;
  const int64_t cols = static_cast<int64_t>(upper2) - lower2 + 1;
  items_.resize(static_cast<size_t>(rows * cols));
}

Variant& VariantArray::At(int32_t i, int32_t j) {
  return const_cast<Variant&>(std::as_const(*this).At(i, j));
}

const Variant& VariantArray::At(int32_t i, int32_t j) const {
  if (i < lower1_ || i > upper1_ || j < lower2_ || j > upper2_) {
    Raise(vberr::kSubscriptOutOfRange);
  }
  const int64_t cols = static_cast<int64_t>(upper2_) - lower2_ + 1;
  const int64_t index = (static_cast<int64_t>(i) - lower1_) * cols + (j - lower2_);
  return items_[static_cast<size_t>(index)];
}

int32_t VariantArray::LBound(int dimension) const {
  if (dimension == 1) return lower1_;
  if (dimension == 2) return lower2_;
  Raise(vberr::kSubscriptOutOfRange);
}

int32_t VariantArray::UBound(int dimension) const {
  if (dimension == 1) return upper1_;
  if (dimension == 2) return upper2_;
  Raise(vberr::kSubscriptOutOfRange);
}

// Comparison follows VB with typed operands: Null gives no answer; Empty
// stands for 0 against a number and "" against text; a number against text
// converts the text to a number (error 13 when it is not one); a Boolean
// against text reads the text as CBool does; text against text compares
// bytes. Objects and arrays cannot be compared (error 13).
std::optional<int> VbCompare(const Variant& a, const Variant& b) {
  const VarType ta = a.Type();
  const VarType tb = b.Type();
  if (ta == VarType::kNull || tb == VarType::kNull) return std::nullopt;
  if (ta == VarType::kObject || ta == VarType::kArray || tb == VarType::kObject ||
      tb == VarType::kArray) {
    Raise(vberr::kTypeMismatch);
  }
  if (ta == VarType::kEmpty && tb == VarType::kEmpty) return 0;
  if (ta == VarType::kString && tb == VarType::kString) {
    const int c = a.RawString().compare(b.RawString());
    return Sign(c);
  }
  if (ta == VarType::kString && tb == VarType::kEmpty) return a.RawString().empty() ? 0 : 1;
  if (ta == VarType::kEmpty && tb == VarType::kString) return b.RawString().empty() ? 0 : -1;
  if (ta == VarType::kBoolean && tb == VarType::kString) {
    return Sign(a.RawNumber() - (b.ToBool() ? kTrue : kFalse));
  }
  if (ta == VarType::kString && tb == VarType::kBoolean) {
    return Sign((a.ToBool() ? kTrue : kFalse) - b.RawNumber());
  }
  // At least one side is a number; Empty is 0 and text converts.
  const double x = a.ToDouble();
  const double y = b.ToDouble();
  if (x < y) return -1;
  if (x > y) return 1;
  return 0;
}

bool VbEquals(const Variant& a, const Variant& b) {
  const std::optional<int> c = VbCompare(a, b);
  return c.has_value() && *c == 0;
}

// 15 significant digits as VB's CStr: plain notation for magnitudes from
// 1E-05 up to below 1E+15, otherwise mantissa and exponent ("1E+15",
// "1.5E-07"); the shortest form, so 0.5 is "0.5" and 2 is "2".
std::string VbNumberText(double value) {
  if (value == 0) return "0";  // also for -0
  if (std::isnan(value)) return "NaN";
  if (std::isinf(value)) return value < 0 ? "-Infinity" : "Infinity";
  char buf[64];
  const auto res = std::to_chars(buf, buf + sizeof buf, value, std::chars_format::general, 15);
  std::string out(buf, res.ptr);
  const size_t e = out.find('e');
  if (e != std::string::npos) {
    out[e] = 'E';
    // to_chars writes at least two exponent digits, as VB does.
  }
  return out;
}

}  // namespace zarvik
