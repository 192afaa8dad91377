#include "rvkusers/sql_number_formatter.h"

#include <charconv>
#include <cmath>
#include <cstdlib>

#include "platform/vb_error.h"

namespace zarvik::rvkusers {
namespace {

// The value rounded to 15 significant digits, so that binary noise such as
// 0.1 + 0.2 = 0.30000000000000004 is written as the 0.3 it stands for.
double RoundTo15Digits(double value) {
  char buf[64];
  const auto res =
      std::to_chars(buf, buf + sizeof buf - 1, value, std::chars_format::scientific, 14);
  *res.ptr = '\0';
  return std::strtod(buf, nullptr);
}

}  // namespace

std::string SqlNumberFormatter::Format(const Variant& value) const {
  double number = 0;
  switch (value.Type()) {
    case VarType::kEmpty:
    case VarType::kBoolean:
    case VarType::kInteger:
    case VarType::kLong:
    case VarType::kDouble:
    case VarType::kString:
    case VarType::kNull:
      number = value.ToDouble();  // 13 for text that is not a number, 94 for Null
      break;
    default:
      throw VbError(vberr::kTypeMismatch);
  }
  if (!std::isfinite(number)) throw VbError(vberr::kOverflow);
  if (number == 0) return "0";
  // Fixed notation, shortest digits that read back as the rounded value.
  char buf[400];
  const auto res =
      std::to_chars(buf, buf + sizeof buf, RoundTo15Digits(number), std::chars_format::fixed);
  return std::string(buf, res.ptr);
}

}  // namespace zarvik::rvkusers
