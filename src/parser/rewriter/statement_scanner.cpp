#include "parser/rewriter/statement_scanner.h"

#include <algorithm>
#include <cstddef>

#include "parser/rewriter/prefix_set.h"
#include "platform/vb_string.h"

namespace zarvik::rewriter {
namespace {

// Steps over blanks from `pos` on; answers the first position that is not a
// blank (one past the end when the text ends in blanks).
int16_t SkipBlanks(const StatementText& text, int16_t pos) {
  while (text.IsBlankAt(pos)) pos = Pos16(pos + 1);
  return pos;
}

// Steps from `pos` to the next blank (or one past the end), one position
// at a time as far as Overflow is concerned.
int16_t SkipToBlank(const StatementText& text, int16_t pos) {
  if (pos > text.Len()) return pos;
  const std::string_view rest = text.Mid(pos);
  const size_t blank = std::min(rest.find(' '), rest.size());
  return blank == 0 ? pos : Pos16(pos + static_cast<int32_t>(blank));
}

// Steps from `pos` to the next blank or comma (or one past the end).
int16_t SkipToBlankOrComma(const StatementText& text, int16_t pos) {
  while (pos <= text.Len()) {
    const char c = text.At(pos);
    if (c == ' ' || c == ',') break;
    pos = Pos16(pos + 1);
  }
  return pos;
}

// The word from `pos` up to the next blank; `pos` ends on that blank.
std::string_view WordAt(const StatementText& text, int16_t& pos) {
  const int16_t start = pos;
  pos = SkipToBlank(text, pos);
  return text.Mid(start, pos - start);
}

bool IsWordChar(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_';
}

// The prefix of the FROM-list table at `pos`: five characters for the views
// VCG4... and VPD0C, four for everything else.
std::string_view TablePrefixAt(const StatementText& statement, int16_t pos) {
  const bool long_prefix = statement.Mid(pos, 4) == "VCG4" || statement.Mid(pos, 5) == "VPD0C";
  return statement.Mid(pos, long_prefix ? 5 : 4);
}

// The FROM list as it is read, without repeats: an exact repeat of an
// earlier prefix is dropped; CG16 after CG44 or CG18 is dropped; CG44 or
// CG18 after CG16 takes CG16's place. The three stand for the same
// customer/supplier and company revocation, emitted once. (So CG16 is never
// in the list together with CG44 or CG18.)
class FromList {
 public:
  void Add(std::string_view prefix) {
    if (prefix == "CG16") {
      if (has_cg16_ || seen_.Contains("CG44") || seen_.Contains("CG18")) return;
      has_cg16_ = true;
      cg16_at_ = tables_.size();
      tables_.emplace_back(prefix);
      return;
    }
    if (!seen_.Insert(prefix)) return;
    if (has_cg16_ && (prefix == "CG44" || prefix == "CG18")) {
      tables_[cg16_at_] = std::string(prefix);
      has_cg16_ = false;
      return;
    }
    tables_.emplace_back(prefix);
  }
  bool empty() const { return tables_.empty(); }
  std::vector<std::string> Take() { return std::move(tables_); }

 private:
  std::vector<std::string> tables_;
  PrefixSet seen_;  // every prefix in the list but CG16
  bool has_cg16_ = false;
  size_t cg16_at_ = 0;
};

}  // namespace

int16_t LastOrderByPos(const StatementText& text) {
  const std::string_view s = text.Segment();
  const size_t n = s.size();
  size_t last = 0;  // 1-based position of the last match
  size_t from = 1;
  for (;;) {
    const int32_t found = text.FindText(static_cast<int32_t>(from), "ORDER");
    if (found == 0) break;
    const size_t at = static_cast<size_t>(found) - 1;  // 0-based
    from = static_cast<size_t>(found) + 1;
    if (at > 0 && IsWordChar(s[at - 1])) continue;  // \b before ORDER
    size_t k = at + 5;
    while (k < n && !IsWordChar(s[k])) ++k;  // \W+, greedy; BY starts with a word char
    if (k == at + 5 || k + 2 > n) continue;
    if (!vb::SameText(s.substr(k, 2), "BY")) continue;
    if (k + 2 < n && IsWordChar(s[k + 2])) continue;  // \b after BY
    last = static_cast<size_t>(found);
    from = k + 3;  // matches do not overlap: go on after BY
  }
  return Pos16(static_cast<int32_t>(last));
}

std::string NextNonBlankAfterWord(const StatementText& text, int16_t pos) {
  const int32_t len = text.Len();
  int16_t p;
  if (!text.IsBlankAt(pos)) {
    p = Pos16(text.FindBinary(pos, " "));
    if (p == 0) p = Pos16(len + 1);
  } else {
    p = 1;  // deliberate: a blank at `pos` restarts the scan at the first character
  }
  if (p == len) return std::string();
  p = SkipBlanks(text, Pos16(p + 1));
  if (p >= len) return std::string();
  return std::string(1, text.At(p));
}

bool IsInsideQuotes(std::string_view text, int16_t n) {
  if (n <= 0) return false;
  const std::string_view head = text.substr(0, static_cast<size_t>(n));
  bool inside = false;
  for (size_t at = head.find('\''); at != std::string_view::npos; at = head.find('\'', at + 1)) {
    inside = !inside;
  }
  return inside;
}

int16_t CutAtUnion(StatementText& statement) {
  const int16_t u = statement.Find(2, "UNION");
  if (u == 0 || IsInsideQuotes(statement.Segment(), u)) return 0;
  statement.Keep(u - 1);
  return u;
}

MainFrom FindMainFrom(const StatementText& statement, int16_t& from_pos) {
  const int16_t sel = statement.Find(1, "SELECT");
  int16_t sel_next = statement.Find(sel + 1, "SELECT");
  if (IsInsideQuotes(statement.Segment(), sel_next)) sel_next = 0;
  from_pos = statement.Find(1, "FROM");
  if (from_pos == 0) return MainFrom::kNoFrom;
  while (sel_next != 0) {
    const int16_t next_from = statement.Find(sel_next, "FROM");
    if (from_pos == next_from) {
      // The FROM found so far belongs to the sub-query: take the next one.
      from_pos = statement.Find(next_from + 1, "FROM");
      sel_next = statement.Find(sel_next + 1, "SELECT");
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

bool ReadsDerivedTable(const StatementText& statement, int16_t m_pos) {
  return NextNonBlankAfterWord(statement, m_pos) == "(";
}

std::vector<std::string> ReadFromList(const StatementText& statement, int16_t& from_pos) {
  FromList tables;
  int16_t p = from_pos;
  do {
    p = SkipBlanks(statement, Pos16(p + 1));
    std::string_view prefix = TablePrefixAt(statement, p);
    if (prefix == "{oj ") {  // ODBC outer-join escape: the table follows it
      p = SkipBlanks(statement, Pos16(p + 3));
      prefix = statement.Mid(p, 4);
    }
    p = Pos16(p + static_cast<int32_t>(prefix.size()));
    if (tables.empty()) from_pos = p;
    tables.Add(prefix);
    // Next item: past the table name, the blanks and the alias. Only a comma
    // right after the alias (or the name) continues the list; deliberate:
    // "A x , B y", with a blank before the comma, ends the list after A.
    p = SkipToBlankOrComma(statement, p);
    p = SkipBlanks(statement, p);
    p = SkipToBlankOrComma(statement, p);
  } while (p <= statement.Len() && statement.At(p) == ',');
  return tables.Take();
}

int16_t MainWherePos(const StatementText& statement, int16_t from_pos, int16_t where_pos) {
  int16_t s = statement.Find(from_pos, "SELECT");
  while (s != 0 && where_pos != 0) {
    if (s >= where_pos) break;
    s = statement.Find(s + 1, "SELECT");
    where_pos = statement.Find(where_pos + 1, "WHERE");
  }
  return where_pos;
}

std::string FirstTableAlias(const StatementText& statement, int16_t from_pos, int16_t join_pos) {
  if (join_pos == 0) return std::string();
  // Deliberate: the scan starts one character after the first table's
  // prefix, so a table whose name is the bare four-letter prefix gives its
  // own alias away and the next word is looked at instead.
  int16_t p = SkipToBlank(statement, Pos16(from_pos + 1));
  p = SkipBlanks(statement, p);
  const std::string_view word = WordAt(statement, p);
  for (const char* keyword :
       {"RIGHT", "LEFT", "INNER", "OUTER", "JOIN", ",", "WITH", "WITH(NOLOCK)"}) {
    if (vb::SameText(word, keyword)) return std::string();
  }
  return std::string(word) + ".";
}

std::string_view CutOrderBy(StatementText& statement) {
  const int16_t o = LastOrderByPos(statement);
  if (o == 0) return {};
  const std::string_view tail = statement.Mid(o - 1);
  statement.Keep(o - 2);
  return tail;
}

std::string_view CutGroupBy(StatementText& statement) {
  const int16_t g = statement.Find(1, "GROUP BY");
  const int16_t on = g != 0 ? statement.Find(g, " ON ") : int16_t{0};
  // A GROUP BY followed by " ON " belongs to a joined sub-query: it stays.
  if (g == 0 || on != 0) return {};
  const std::string_view tail = statement.Mid(g - 1);
  statement.Keep(g - 2);
  return tail;
}

std::string_view CutWhere(StatementText& statement, int16_t where_pos) {
  if (where_pos == 0) return {};
  const std::string_view condition = statement.Mid(Pos16(where_pos + 5));
  statement.Keep(where_pos - 1);
  return condition;
}

int16_t CustomerKindHint(std::string_view where_condition) {
  // The blanks and parenthesis the rewriter puts around the condition can
  // take no part in a match, so the condition alone is searched.
  if (where_condition.find("CG44_TIPOCF") == std::string_view::npos) return -1;
  if (where_condition.find("CG44_TIPOCF = 0") != std::string_view::npos) return 0;
  if (where_condition.find("CG44_TIPOCF = 1") != std::string_view::npos) return 1;
  return -1;
}

std::vector<JoinedTable> ReadJoins(const StatementText& statement, int16_t join_pos,
                                   const std::vector<std::string>& from_tables) {
  PrefixSet from;
  for (const std::string& table : from_tables) from.Insert(table);
  // Restricted already: through the FROM list or an earlier join; MG36
  // through MG3N, CG16 through a CG44 of the FROM list.
  PrefixSet joined;
  const bool mg3n_in_from = from.Contains("MG3N");
  const bool cg44_in_from = from.Contains("CG44");
  std::vector<JoinedTable> joins;
  while (join_pos != 0) {
    // The 15 characters before JOIN (error 5 when JOIN starts within the
    // first 15). Deliberate: this test is case-sensitive, so "left join" in
    // lower case is restricted like an inner join.
    const std::string_view before = statement.Mid(join_pos - 15, 15);
    if (before.find("LEFT") == std::string_view::npos) {
      join_pos = SkipBlanks(statement, Pos16(join_pos + 4));
      // Always four characters: a joined VCG4.../VPD0C view is taken by its
      // first four letters.
      const std::string_view prefix = statement.Mid(join_pos, 4);
      const bool restricted = from.Contains(prefix) || joined.Contains(prefix) ||
                              (prefix == "MG36" && (mg3n_in_from || joined.Contains("MG3N"))) ||
                              (prefix == "CG16" && cg44_in_from);
      if (!restricted) {
        joined.Insert(prefix);
        joins.push_back({std::string(prefix), std::string()});
      }
      if (!joins.empty()) {
        int16_t p = SkipToBlank(statement, Pos16(join_pos + 4));
        p = SkipBlanks(statement, p);
        const std::string_view word = WordAt(statement, p);
        const bool no_alias = vb::SameText(word, "ON") || vb::SameText(word, "WITH") ||
                              vb::SameText(word, "WITH(NOLOCK)");
        // Deliberate: after a duplicate this rewrites the alias of the
        // previous join with the duplicate's.
        joins.back().alias = no_alias ? std::string() : std::string(word) + ".";
      }
    }
    join_pos = statement.Find(join_pos + 1, "JOIN");
  }
  return joins;
}

}  // namespace zarvik::rewriter
