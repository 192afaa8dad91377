// The only ways a value enters the SQL text the component sends.
//
// Statements are built by concatenating fixed pieces with values. Each
// value goes through one of these functions, so that a reader can see at
// the call site how it is written: quoted as it stands (quotes inside are
// NOT doubled, which is how the host's database has always received them),
// quoted with quotes doubled, pasted unquoted, or as a plain decimal number.
#ifndef ZARVIK_FRAME_SQL_TEXT_H_
#define ZARVIK_FRAME_SQL_TEXT_H_

#include <cstdint>
#include <string>

#include "platform/variant.h"

namespace zarvik::sql {

// "'" + value + "'" with the value as it stands (quotes inside not doubled).
std::string Quoted(const std::string& value);

// "'" + value + "'" with every quote inside doubled.
std::string QuotedEscaped(const std::string& value);

// True when Quoted(value) is one literal holding exactly the value: the
// value has no quote (which would end the literal) and no NUL character
// (which ends the text a database driver reads).
bool FitsInQuotes(const std::string& value);

// The value's text form pasted as it stands (a company code, a Variant the
// host gave). Null and Empty add nothing. Objects raise error 13, as VB's
// string concatenation would.
std::string Unquoted(const Variant& value);

// Plain decimal text of a number: "-12", "0", "2147483647".
std::string Number(int32_t value);

// A column expression a caller supplied (NomeCampo... arguments, aliases):
// pasted as it stands.
std::string Column(const std::string& expression);

}  // namespace zarvik::sql

#endif  // ZARVIK_FRAME_SQL_TEXT_H_
