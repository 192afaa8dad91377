#include "parser/rewriter/statement_scanner.h"

#include <algorithm>
#include <cstddef>

#include "platform/vb_error.h"
#include "platform/vb_string.h"

namespace zarvik::rewriter {
namespace {

using vb::Compare;

// Keyword search with text compare, answered as a 16-bit position.
int16_t Find(int32_t start, const std::string& text, const char* keyword) {
  return Pos16(vb::InStr(start, text, keyword, Compare::kText));
}

// The character at a position ("" past the end; error 5 before the start).
std::string CharAt(const std::string& text, int32_t pos) { return vb::Mid(text, pos, 1); }

bool IsBlankAt(const std::string& text, int32_t pos) { return CharAt(text, pos) == " "; }

// Steps over blanks from `pos` on; answers the first position that is not a
// blank (one past the end when the text ends in blanks).
int16_t SkipBlanks(const std::string& text, int16_t pos) {
  while (IsBlankAt(text, pos)) pos = Pos16(pos + 1);
  return pos;
}

// Steps from `pos` to the next blank (or one past the end).
int16_t SkipToBlank(const std::string& text, int16_t pos) {
  while (pos <= vb::Len(text) && !IsBlankAt(text, pos)) pos = Pos16(pos + 1);
  return pos;
}

// Steps from `pos` to the next blank or comma (or one past the end).
int16_t SkipToBlankOrComma(const std::string& text, int16_t pos) {
  while (pos <= vb::Len(text)) {
    const std::string c = CharAt(text, pos);
    if (c == " " || c == ",") break;
    pos = Pos16(pos + 1);
  }
  return pos;
}

// The word from `pos` up to the next blank; `pos` ends on that blank.
std::string WordAt(const std::string& text, int16_t& pos) {
  const int16_t start = pos;
  pos = SkipToBlank(text, pos);
  return vb::Mid(text, start, pos - start);
}

bool IsWordChar(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_';
}

// Case-insensitive comparison of two ASCII words.
bool SameWord(const std::string& a, const std::string& b) { return vb::UCase(a) == vb::UCase(b); }

bool Contains(const std::vector<std::string>& list, const std::string& item) {
  return std::find(list.begin(), list.end(), item) != list.end();
}

// An exact repeat of an earlier prefix is dropped; CG16 after CG44 or CG18
// is dropped; CG44 or CG18 after CG16 takes CG16's place. The three stand
// for the same customer/supplier and company revocation, emitted once.
void DropRepeatedPrefix(std::vector<std::string>& tables) {
  const std::string& last = tables.back();
  for (size_t i = 0; i + 1 < tables.size(); ++i) {
    if (last == tables[i] || (last == "CG16" && (tables[i] == "CG44" || tables[i] == "CG18"))) {
      tables.pop_back();
      return;
    }
    if ((last == "CG44" || last == "CG18") && tables[i] == "CG16") {
      tables[i] = last;
      tables.pop_back();
      return;
    }
  }
}

// The prefix of the FROM-list table at `pos`: five characters for the views
// VCG4... and VPD0C, four for everything else.
std::string TablePrefixAt(const std::string& statement, int16_t pos) {
  const bool long_prefix =
      vb::Mid(statement, pos, 4) == "VCG4" || vb::Mid(statement, pos, 5) == "VPD0C";
  return vb::Mid(statement, pos, long_prefix ? 5 : 4);
}

// A joined table that is already restricted through the FROM list or an
// earlier join (MG36 counts as restricted by MG3N, CG16 by CG44).
bool IsDuplicateJoin(const std::string& prefix, const std::vector<std::string>& from_tables,
                     const std::vector<JoinedTable>& earlier_joins) {
  if (Contains(from_tables, prefix)) return true;
  if (prefix == "MG36" && Contains(from_tables, "MG3N")) return true;
  if (prefix == "CG16" && Contains(from_tables, "CG44")) return true;
  for (const JoinedTable& j : earlier_joins) {
    if (prefix == j.prefix) return true;
    if (prefix == "MG36" && j.prefix == "MG3N") return true;
  }
  return false;
}

}  // namespace

int16_t Pos16(int32_t value) {
  if (value < -32768 || value > 32767) throw VbError(vberr::kOverflow);
  return static_cast<int16_t>(value);
}

int16_t LastOrderByPos(const std::string& text) {
  const size_t n = text.size();
  size_t last = 0;  // 1-based position of the last match
  size_t from = 1;
  for (;;) {
    const int32_t found = vb::InStr(static_cast<int32_t>(from), text, "ORDER", Compare::kText);
    if (found == 0) break;
    const size_t at = static_cast<size_t>(found) - 1;  // 0-based
    from = static_cast<size_t>(found) + 1;
    if (at > 0 && IsWordChar(text[at - 1])) continue;  // \b before ORDER
    size_t k = at + 5;
    while (k < n && !IsWordChar(text[k])) ++k;  // \W+, greedy; BY starts with a word char
    if (k == at + 5 || k + 2 > n) continue;
    if (!SameWord(text.substr(k, 2), "BY")) continue;
    if (k + 2 < n && IsWordChar(text[k + 2])) continue;  // \b after BY
    last = static_cast<size_t>(found);
    from = k + 3;  // matches do not overlap: go on after BY
  }
  return Pos16(static_cast<int32_t>(last));
}

std::string NextNonBlankAfterWord(const std::string& text, int16_t pos) {
  const int32_t len = vb::Len(text);
  int16_t p;
  if (!IsBlankAt(text, pos)) {
    p = Pos16(vb::InStr(pos, text, " "));
    if (p == 0) p = Pos16(len + 1);
  } else {
    p = 1;  // deliberate: a blank at `pos` restarts the scan at the first character
  }
  if (p == len) return std::string();
  p = SkipBlanks(text, Pos16(p + 1));
  if (p == len) return std::string();
  return CharAt(text, p);
}

bool IsInsideQuotes(const std::string& text, int16_t n) {
  if (n <= 0) return false;
  const size_t count = std::min(static_cast<size_t>(n), text.size());
  const auto quotes =
      std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(count), '\'');
  return quotes % 2 == 1;
}

UnionCut CutAtUnion(std::string& statement) {
  int16_t u = Find(2, statement, "UNION");
  if (IsInsideQuotes(statement, u)) u = 0;
  UnionCut cut;
  if (u == 0) return cut;
  cut.has_union = true;
  cut.rest = vb::Mid(statement, u);
  statement = vb::Left(statement, u - 1);
  return cut;
}

MainFrom FindMainFrom(const std::string& statement, int16_t& from_pos) {
  const int16_t sel = Find(1, statement, "SELECT");
  int16_t sel_next = Find(sel + 1, statement, "SELECT");
  if (IsInsideQuotes(statement, sel_next)) sel_next = 0;
  from_pos = Find(1, statement, "FROM");
  if (from_pos == 0) return MainFrom::kNoFrom;
  while (sel_next != 0) {
    const int16_t next_from = Find(sel_next, statement, "FROM");
    if (from_pos == next_from) {
      // The FROM found so far belongs to the sub-query: take the next one.
      from_pos = Find(next_from + 1, statement, "FROM");
      sel_next = Find(sel_next + 1, statement, "SELECT");
    } else if (from_pos < next_from) {
      break;  // the other SELECT lies after the main FROM
    } else {
      // Also when the later SELECT has no FROM at all (next_from = 0):
      // deliberate, that too is a case the scanner does not handle.
      return MainFrom::kUnpaired;
    }
  }
  return MainFrom::kFound;
}

bool ReadsDerivedTable(const std::string& statement, int16_t m_pos) {
  return NextNonBlankAfterWord(statement, m_pos) == "(";
}

std::vector<std::string> ReadFromList(const std::string& statement, int16_t& from_pos) {
  std::vector<std::string> tables;
  int16_t p = from_pos;
  do {
    p = SkipBlanks(statement, Pos16(p + 1));
    std::string prefix = TablePrefixAt(statement, p);
    if (prefix == "{oj ") {  // ODBC outer-join escape: the table follows it
      p = SkipBlanks(statement, Pos16(p + 3));
      prefix = vb::Mid(statement, p, 4);
    }
    p = Pos16(p + vb::Len(prefix));
    if (tables.empty()) from_pos = p;
    tables.push_back(prefix);
    DropRepeatedPrefix(tables);
    // Next item: past the table name, the blanks and the alias. Only a comma
    // right after the alias (or the name) continues the list; deliberate:
    // "A x , B y", with a blank before the comma, ends the list after A.
    p = SkipToBlankOrComma(statement, p);
    p = SkipBlanks(statement, p);
    p = SkipToBlankOrComma(statement, p);
  } while (p <= vb::Len(statement) && CharAt(statement, p) == ",");
  return tables;
}

int16_t MainWherePos(const std::string& statement, int16_t from_pos, int16_t where_pos) {
  int16_t s = Find(from_pos, statement, "SELECT");
  while (s != 0 && where_pos != 0) {
    if (s >= where_pos) break;
    s = Find(s + 1, statement, "SELECT");
    where_pos = Find(where_pos + 1, statement, "WHERE");
  }
  return where_pos;
}

std::string FirstTableAlias(const std::string& statement, int16_t from_pos, int16_t join_pos) {
  if (join_pos == 0) return std::string();
  // Deliberate: the scan starts one character after the first table's
  // prefix, so a table whose name is the bare four-letter prefix gives its
  // own alias away and the next word is looked at instead.
  int16_t p = SkipToBlank(statement, Pos16(from_pos + 1));
  p = SkipBlanks(statement, p);
  const std::string word = WordAt(statement, p);
  for (const char* keyword :
       {"RIGHT", "LEFT", "INNER", "OUTER", "JOIN", ",", "WITH", "WITH(NOLOCK)"}) {
    if (SameWord(word, keyword)) return std::string();
  }
  return word + ".";
}

std::string CutOrderBy(std::string& statement) {
  const int16_t o = LastOrderByPos(statement);
  if (o == 0) return std::string();
  std::string tail = vb::Mid(statement, o - 1);
  statement = vb::Left(statement, o - 2);
  return tail;
}

std::string CutGroupBy(std::string& statement) {
  const int16_t g = Find(1, statement, "GROUP BY");
  const int16_t on = g != 0 ? Find(g, statement, " ON ") : int16_t{0};
  // A GROUP BY followed by " ON " belongs to a joined sub-query: it stays.
  if (g == 0 || on != 0) return std::string();
  std::string tail = vb::Mid(statement, g - 1);
  statement = vb::Left(statement, g - 2);
  return tail;
}

std::string CutWhere(std::string& statement, int16_t where_pos) {
  if (where_pos == 0) return std::string();
  std::string tail = " WHERE ( " + vb::Mid(statement, Pos16(where_pos + 5)) + " ) ";
  statement = vb::Left(statement, where_pos - 1);
  return tail;
}

int16_t CustomerKindHint(const std::string& where_tail) {
  if (vb::InStr(1, where_tail, "CG44_TIPOCF") == 0) return -1;
  if (vb::InStr(1, where_tail, "CG44_TIPOCF = 0") != 0) return 0;
  if (vb::InStr(1, where_tail, "CG44_TIPOCF = 1") != 0) return 1;
  return -1;
}

std::vector<JoinedTable> ReadJoins(const std::string& statement, int16_t join_pos,
                                   const std::vector<std::string>& from_tables) {
  std::vector<JoinedTable> joins;
  while (join_pos != 0) {
    // The 15 characters before JOIN (error 5 when JOIN starts within the
    // first 15). Deliberate: this test is case-sensitive, so "left join" in
    // lower case is restricted like an inner join.
    const std::string before = vb::Mid(statement, join_pos - 15, 15);
    if (vb::InStr(1, before, "LEFT") == 0) {
      join_pos = SkipBlanks(statement, Pos16(join_pos + 4));
      // Always four characters: a joined VCG4.../VPD0C view is taken by its
      // first four letters.
      const std::string prefix = vb::Mid(statement, join_pos, 4);
      if (!IsDuplicateJoin(prefix, from_tables, joins)) joins.push_back({prefix, ""});
      if (!joins.empty()) {
        int16_t p = SkipToBlank(statement, Pos16(join_pos + 4));
        p = SkipBlanks(statement, p);
        const std::string word = WordAt(statement, p);
        const bool no_alias =
            SameWord(word, "ON") || SameWord(word, "WITH") || SameWord(word, "WITH(NOLOCK)");
        // Deliberate: after a duplicate this rewrites the alias of the
        // previous join with the duplicate's.
        joins.back().alias = no_alias ? std::string() : word + ".";
      }
    }
    join_pos = Find(join_pos + 1, statement, "JOIN");
  }
  return joins;
}

}  // namespace zarvik::rewriter
