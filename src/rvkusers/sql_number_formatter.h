// The number half of the login log's literal writers: a number as the text
// of an SQL numeric literal.
//
// The text is the same on every machine: '.' as the decimal point, no digit
// grouping, no exponent, at most 15 significant digits (the precision VB
// keeps when it writes a Double), and "0" for zero of either sign.
#ifndef ZARVIK_RVKUSERS_SQL_NUMBER_FORMATTER_H_
#define ZARVIK_RVKUSERS_SQL_NUMBER_FORMATTER_H_

#include <string>

#include "platform/variant.h"

namespace zarvik::rvkusers {

class SqlNumberFormatter {
 public:
  // Numbers, Booleans (True = -1), numeric text and Empty (0) are written;
  // Null raises
  // error 94, anything else (text that is not a number, dates, objects)
  // error 13.
  std::string Format(const Variant& value) const;
};

}  // namespace zarvik::rvkusers

#endif  // ZARVIK_RVKUSERS_SQL_NUMBER_FORMATTER_H_
