#include "frame/sql_text.h"

#include "platform/vb_string.h"

namespace zarvik::sql {

std::string Quoted(const std::string& value) { return "'" + value + "'"; }

std::string QuotedEscaped(const std::string& value) {
  return "'" + vb::Replace(value, "'", "''") + "'";
}

bool FitsInQuotes(const std::string& value) {
  return value.find('\'') == std::string::npos && value.find('\0') == std::string::npos;
}

std::string Unquoted(const Variant& value) {
  if (value.IsEmpty() || value.IsNull()) return std::string();
  return value.ToString();
}

std::string Number(int32_t value) { return std::to_string(value); }

std::string Column(const std::string& expression) { return expression; }

}  // namespace zarvik::sql
