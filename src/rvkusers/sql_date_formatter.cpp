#include "rvkusers/sql_date_formatter.h"

#include <cstdio>

#include "platform/env.h"
#include "platform/vb_error.h"

namespace zarvik::rvkusers {

std::optional<std::string> SqlDateFormatter::Format(const Variant& value) const {
  double oa_date = 0;
  if (value.Type() == VarType::kDate) {
    oa_date = value.RawNumber();
  } else if (value.Type() == VarType::kString) {
    try {
      oa_date = value.ToDate();
    } catch (const VbError&) {
      return std::nullopt;
    }
  } else {
    return std::nullopt;
  }
  int year = 0;
  int month = 0;
  int day = 0;
  YmdFromOleDate(oa_date, &year, &month, &day);
  // VB's own date range; outside it no Date value can exist.
  if (year < 100 || year > 9999) return std::nullopt;
  char text[16];
  std::snprintf(text, sizeof text, "%04d%02d%02d", year, month, day);
  return std::string(text);
}

}  // namespace zarvik::rvkusers
