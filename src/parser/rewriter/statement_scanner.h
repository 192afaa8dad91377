// The textual scanner behind ElaboraStrSQL: small functions, each named
// after what it finds in a SELECT statement by keyword positions.
//
// The scanner does not parse SQL. It works the way the host's own code has
// always cut statements, with VB string semantics: 1-based positions,
// keyword searches with text compare (the case of letters ignored), blanks
// meaning the space character only (tabs and line breaks are ordinary
// characters). Positions and counts are 16-bit: a keyword found beyond
// position 32767 raises Overflow (6). Run-time errors (Overflow, or
// Invalid procedure call (5) from a Mid or Left that starts before the
// first character) propagate to the caller, which ends the rewrite
// silently. Every search and step reads only the text it needs, so a scan
// costs time in proportion to the statement's length whatever its shape.
#ifndef ZARVIK_PARSER_REWRITER_STATEMENT_SCANNER_H_
#define ZARVIK_PARSER_REWRITER_STATEMENT_SCANNER_H_

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "parser/rewriter/statement_text.h"

namespace zarvik::rewriter {

// 1-based position of the last match of \bORDER\W+(?:\w+\W+){0,0}?BY\b,
// ignoring case, 0 when there is none. The group repeats zero times, so a
// match is ORDER at a word start, one or more non-word characters, and BY
// at a word end (\w being [A-Za-z0-9_]).
int16_t LastOrderByPos(const StatementText& text);

// The first non-blank character after the word that covers `pos`, or "":
// from a non-blank at `pos` the scan goes to the blank after the word; from
// a blank at `pos` it starts at position 1 instead. "" as well when the
// character found is the last one of the text.
std::string NextNonBlankAfterWord(const StatementText& text, int16_t pos);

// True when an odd number of apostrophes stands among the first n
// characters (the position lies inside a string literal).
bool IsInsideQuotes(std::string_view text, int16_t n);

// Cuts the statement before its first "UNION" outside quotes, searched from
// position 2 so that a segment that begins with UNION is not cut again.
// Answers the position of that UNION (where the next segment starts), or 0
// with the statement unchanged.
int16_t CutAtUnion(StatementText& statement);

// The FROM of the main SELECT, passing over the FROMs of sub-queries in the
// select list. kNoFrom: the statement has no FROM at all. kUnpaired: a later
// SELECT has no FROM of its own where one was expected (the "Parser Error").
enum class MainFrom { kFound, kNoFrom, kUnpaired };
MainFrom FindMainFrom(const StatementText& statement, int16_t& from_pos);

// True when the first thing after the word FROM is "(" (a derived table).
// `m_pos` is the position of the M of FROM.
bool ReadsDerivedTable(const StatementText& statement, int16_t m_pos);

// The table prefixes of the FROM list, starting after the word FROM whose M
// is at `from_pos`, without the repeats the rewriter must not restrict twice.
// Moves `from_pos` to just after the first table's prefix.
std::vector<std::string> ReadFromList(const StatementText& statement, int16_t& from_pos);

// The WHERE of the main statement: passes over one WHERE for every
// sub-query that opens between FROM and that WHERE.
int16_t MainWherePos(const StatementText& statement, int16_t from_pos, int16_t where_pos);

// The qualifier of the first table ("D." for "FROM MG36_DOCUMENTI D INNER
// JOIN ..."): the word after the first table, taken only when a JOIN follows
// (`join_pos` nonzero) and the word is not a join keyword; else "".
std::string FirstTableAlias(const StatementText& statement, int16_t from_pos, int16_t join_pos);

// Tails cut off the end of the statement, each keeping the character before
// its keyword; "" (and the statement unchanged) when there is none. The
// tails are views into the statement's text.
std::string_view CutOrderBy(StatementText& statement);
std::string_view CutGroupBy(StatementText& statement);
// The host's condition (the text after the word WHERE); the statement is
// cut before WHERE. The rewriter wraps it in " WHERE ( " and " ) ".
std::string_view CutWhere(StatementText& statement, int16_t where_pos);

// -1, or 0 / 1 when the host's WHERE condition fixes the customer/supplier
// kind with "CG44_TIPOCF = 0" / "CG44_TIPOCF = 1" (spelled exactly so).
int16_t CustomerKindHint(std::string_view where_condition);

// The INNER and RIGHT joins from `join_pos` on: the table prefix (always 4
// characters) and its qualifier, without the optional side of LEFT joins and
// without tables already restricted through the FROM list or an earlier join.
struct JoinedTable {
  std::string prefix;
  std::string alias;
};
std::vector<JoinedTable> ReadJoins(const StatementText& statement, int16_t join_pos,
                                   const std::vector<std::string>& from_tables);

}  // namespace zarvik::rewriter

#endif  // ZARVIK_PARSER_REWRITER_STATEMENT_SCANNER_H_
