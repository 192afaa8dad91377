// The date half of the login log's literal writers: a date as the text of
// an SQL date literal.
//
// The literal is YYYYMMDD (eight digits, no separators). SQL Server reads
// that form as the same day under every language and DATEFORMAT setting of
// the login, which a form with separators does not guarantee (an Italian
// login reads 2024-03-05 as the 3rd of May for datetime columns). The time
// of day is dropped: the log compares calendar days.
#ifndef ZARVIK_RVKUSERS_SQL_DATE_FORMATTER_H_
#define ZARVIK_RVKUSERS_SQL_DATE_FORMATTER_H_

#include <optional>
#include <string>

#include "platform/variant.h"

namespace zarvik::rvkusers {

class SqlDateFormatter {
 public:
  // The literal's text without quotes, or nothing when the value is not a
  // date: a Date, or text that reads as one (the forms Variant::ToDate
  // reads), between the years 100 and 9999. Numbers, Booleans, Empty, Null
  // and objects are not dates, as VB's IsDate says.
  std::optional<std::string> Format(const Variant& value) const;
};

}  // namespace zarvik::rvkusers

#endif  // ZARVIK_RVKUSERS_SQL_DATE_FORMATTER_H_
