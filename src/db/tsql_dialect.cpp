// T-SQL to SQLite rewriting on a token stream.
//
// The text is cut into tokens (blanks, words, '...' literals, [bracketed]
// and "quoted" names, comments, single punctuation characters); the output
// is the concatenation of the tokens, so everything the rules below do not
// touch comes out byte for byte as it went in.
#include "db/tsql_dialect.h"

#include <cctype>
#include <cstddef>
#include <set>
#include <string>
#include <vector>

namespace zarvik::db {
namespace {

// The local date and time as SQL Server's datetime reads as text, with
// milliseconds: 'YYYY-MM-DD HH:MM:SS.fff'.
constexpr char kLocalNow[] = "strftime('%Y-%m-%d %H:%M:%f', 'now', 'localtime')";

enum class Tok { kSpace, kWord, kString, kBracket, kQuoted, kComment, kPunct };

struct Token {
  Tok kind;
  std::string text;
};

bool IsSpaceChar(char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\f' || c == '\v';
}

bool IsWordChar(char c) {
  const auto u = static_cast<unsigned char>(c);
  return std::isalnum(u) != 0 || c == '_' || c == '@' || c == '#' || c == '$' || u >= 0x80;
}

std::string Upper(const std::string& text) {
  std::string out = text;
  for (char& c : out) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return out;
}

bool IsNumber(const std::string& text) {
  if (text.empty()) return false;
  for (char c : text) {
    if (std::isdigit(static_cast<unsigned char>(c)) == 0) return false;
  }
  return true;
}

std::string TrimSpace(const std::string& text) {
  size_t b = 0;
  size_t e = text.size();
  while (b < e && IsSpaceChar(text[b])) ++b;
  while (e > b && IsSpaceChar(text[e - 1])) --e;
  return text.substr(b, e - b);
}

// Scans a delimited token starting at `pos` (the opening delimiter); a doubled
// closing delimiter stands for itself. Unterminated: up to the end.
size_t ScanDelimited(const std::string& s, size_t pos, char close) {
  size_t i = pos + 1;
  while (i < s.size()) {
    if (s[i] == close) {
      if (i + 1 < s.size() && s[i + 1] == close) {
        i += 2;
        continue;
      }
      return i + 1;
    }
    ++i;
  }
  return s.size();
}

std::vector<Token> Tokenize(const std::string& s) {
  std::vector<Token> tokens;
  size_t i = 0;
  while (i < s.size()) {
    const char c = s[i];
    size_t end = i + 1;
    Tok kind = Tok::kPunct;
    size_t text_begin = i;
    if (IsSpaceChar(c)) {
      kind = Tok::kSpace;
      while (end < s.size() && IsSpaceChar(s[end])) ++end;
    } else if (c == '\'') {
      kind = Tok::kString;
      end = ScanDelimited(s, i, '\'');
    } else if ((c == 'N' || c == 'n') && i + 1 < s.size() && s[i + 1] == '\'') {
      // N'...' (a Unicode literal): the prefix is dropped.
      kind = Tok::kString;
      end = ScanDelimited(s, i + 1, '\'');
      text_begin = i + 1;
    } else if (c == '[') {
      kind = Tok::kBracket;
      end = ScanDelimited(s, i, ']');
    } else if (c == '"') {
      kind = Tok::kQuoted;
      end = ScanDelimited(s, i, '"');
    } else if (c == '-' && i + 1 < s.size() && s[i + 1] == '-') {
      kind = Tok::kComment;
      end = s.find('\n', i);
      if (end == std::string::npos) end = s.size();
    } else if (c == '/' && i + 1 < s.size() && s[i + 1] == '*') {
      kind = Tok::kComment;
      end = s.find("*/", i + 2);
      end = end == std::string::npos ? s.size() : end + 2;
    } else if (IsWordChar(c)) {
      kind = Tok::kWord;
      while (end < s.size() && IsWordChar(s[end])) ++end;
    }
    tokens.push_back({kind, s.substr(text_begin, end - text_begin)});
    i = end;
  }
  return tokens;
}

// A name that needs no quoting: a letter or '_' followed by word characters.
bool IsPlainName(const std::string& name) {
  if (name.empty() || std::isdigit(static_cast<unsigned char>(name[0])) != 0) return false;
  for (char c : name) {
    if (std::isalnum(static_cast<unsigned char>(c)) == 0 && c != '_') return false;
  }
  return true;
}

bool IsCharType(const std::string& type) {
  return type == "CHAR" || type == "VARCHAR" || type == "NCHAR" || type == "NVARCHAR" ||
         type == "TEXT" || type == "NTEXT";
}

bool IsDateTimeType(const std::string& type) {
  return type == "DATETIME" || type == "SMALLDATETIME" || type == "DATETIME2";
}

// strftime format of a CONVERT style to text ("" when not supported).
std::string StyleFormat(const std::string& style, size_t* full_length) {
  struct Style {
    const char* style;
    const char* format;
    size_t length;
  };
  static constexpr Style kStyles[] = {
      {"120", "%Y-%m-%d %H:%M:%S", 19}, {"20", "%Y-%m-%d %H:%M:%S", 19},
      {"121", "%Y-%m-%d %H:%M:%f", 23}, {"21", "%Y-%m-%d %H:%M:%f", 23},
      {"23", "%Y-%m-%d", 10},           {"112", "%Y%m%d", 8},
      {"108", "%H:%M:%S", 8},           {"8", "%H:%M:%S", 8},
      {"103", "%d/%m/%Y", 10},
  };
  for (const Style& s : kStyles) {
    if (style == s.style) {
      *full_length = s.length;
      return s.format;
    }
  }
  return "";
}

class Translator {
 public:
  explicit Translator(const std::vector<Token>& tokens) : t_(tokens) {}

  std::string Run(size_t begin, size_t end) const;

 private:
  // One level of parentheses (the outermost level is the statement).
  struct Frame {
    bool exists_body = false;  // opened right after EXISTS
    bool seen_content = false;
    std::string limit;       // LIMIT owed by a SELECT TOP n of this level
    size_t content_end = 0;  // output length after the last non-blank token
  };

  bool IsBlank(size_t i) const { return t_[i].kind == Tok::kSpace || t_[i].kind == Tok::kComment; }
  bool IsWord(size_t i, const char* word) const {
    return i < t_.size() && t_[i].kind == Tok::kWord && Upper(t_[i].text) == word;
  }
  bool IsPunct(size_t i, char c) const {
    return i < t_.size() && t_[i].kind == Tok::kPunct && t_[i].text[0] == c;
  }
  size_t NextSolid(size_t i, size_t end) const {
    while (i < end && IsBlank(i)) ++i;
    return i;
  }
  bool PrevSolidIsWord(size_t i, size_t begin, const char* word) const {
    while (i > begin) {
      --i;
      if (!IsBlank(i)) return IsWord(i, word);
    }
    return false;
  }
  size_t MatchParen(size_t open, size_t end) const;
  void DropSubqueryParens(size_t open, size_t end, std::set<size_t>* dropped) const;
  std::vector<std::pair<size_t, size_t>> SplitArgs(size_t open, size_t close) const;

  // Each returns the index after the construct, or 0 when it does not apply.
  size_t TryTop(size_t select, size_t end, std::string* limit, size_t* keep_end) const;
  size_t TryNolock(size_t i, size_t end) const;
  size_t TryConvert(size_t i, size_t end, std::string* out) const;
  size_t TryCast(size_t i, size_t end, std::string* out) const;
  size_t TryGetdate(size_t i, size_t end) const;

  const std::vector<Token>& t_;
};

size_t Translator::MatchParen(size_t open, size_t end) const {
  int depth = 0;
  for (size_t i = open; i < end; ++i) {
    if (IsPunct(i, '(')) ++depth;
    if (IsPunct(i, ')') && --depth == 0) return i;
  }
  return end;
}

// x IN ((SELECT ...)): T-SQL reads the inner parentheses as part of the
// sub-query, SQLite as a list holding one scalar sub-query (its first row
// only), so the inner pair is dropped.
void Translator::DropSubqueryParens(size_t open, size_t end, std::set<size_t>* dropped) const {
  const size_t outer_close = MatchParen(open, end);
  const size_t inner = NextSolid(open + 1, end);
  if (outer_close >= end || !IsPunct(inner, '(') || !IsWord(NextSolid(inner + 1, end), "SELECT")) {
    return;
  }
  const size_t inner_close = MatchParen(inner, end);
  if (NextSolid(inner_close + 1, end) != outer_close) return;
  dropped->insert(inner);
  dropped->insert(inner_close);
}

// The comma-separated arguments between `open` and `close` (top level only).
std::vector<std::pair<size_t, size_t>> Translator::SplitArgs(size_t open, size_t close) const {
  std::vector<std::pair<size_t, size_t>> args;
  int depth = 0;
  size_t start = open + 1;
  for (size_t i = open + 1; i < close; ++i) {
    if (IsPunct(i, '(')) ++depth;
    if (IsPunct(i, ')')) --depth;
    if (depth == 0 && IsPunct(i, ',')) {
      args.emplace_back(start, i);
      start = i + 1;
    }
  }
  args.emplace_back(start, close);
  return args;
}

// SELECT [DISTINCT|ALL] TOP n / TOP (n): `keep_end` is the index up to which
// tokens after SELECT are kept, the result the index after n and its blanks.
size_t Translator::TryTop(size_t select, size_t end, std::string* limit, size_t* keep_end) const {
  size_t k = NextSolid(select + 1, end);
  if (IsWord(k, "DISTINCT") || IsWord(k, "ALL")) k = NextSolid(k + 1, end);
  if (!IsWord(k, "TOP")) return 0;
  size_t n = NextSolid(k + 1, end);
  size_t after = 0;
  if (n < end && t_[n].kind == Tok::kWord && IsNumber(t_[n].text)) {
    *limit = t_[n].text;
    after = n + 1;
  } else if (IsPunct(n, '(')) {
    const size_t inner = NextSolid(n + 1, end);
    const size_t close = NextSolid(inner + 1, end);
    if (inner >= end || t_[inner].kind != Tok::kWord || !IsNumber(t_[inner].text) ||
        !IsPunct(close, ')')) {
      return 0;
    }
    *limit = t_[inner].text;
    after = close + 1;
  } else {
    return 0;
  }
  *keep_end = k;
  while (after < end && t_[after].kind == Tok::kSpace) ++after;
  return after;
}

// [WITH] (NOLOCK): the table hint has no meaning for SQLite.
size_t Translator::TryNolock(size_t i, size_t end) const {
  size_t open = i;
  if (IsWord(i, "WITH")) open = NextSolid(i + 1, end);
  if (!IsPunct(open, '(')) return 0;
  const size_t hint = NextSolid(open + 1, end);
  if (!IsWord(hint, "NOLOCK")) return 0;
  const size_t close = NextSolid(hint + 1, end);
  if (!IsPunct(close, ')')) return 0;
  return close + 1;
}

// CONVERT(type[(n[,s])], x[, style]).
size_t Translator::TryConvert(size_t i, size_t end, std::string* out) const {
  const size_t open = NextSolid(i + 1, end);
  if (!IsPunct(open, '(')) return 0;
  const size_t close = MatchParen(open, end);
  if (close >= end) return 0;
  const auto args = SplitArgs(open, close);
  if (args.size() < 2 || args.size() > 3) return 0;
  const size_t type_at = NextSolid(args[0].first, args[0].second);
  if (type_at >= args[0].second || t_[type_at].kind != Tok::kWord) return 0;
  const std::string type = Upper(t_[type_at].text);
  std::string length;
  const size_t len_open = NextSolid(type_at + 1, args[0].second);
  if (IsPunct(len_open, '(')) {
    const size_t len_at = NextSolid(len_open + 1, args[0].second);
    if (len_at < args[0].second && IsNumber(t_[len_at].text)) length = t_[len_at].text;
  }
  const std::string value = TrimSpace(Run(args[1].first, args[1].second));
  const std::string style = args.size() == 3 ? TrimSpace(Run(args[2].first, args[2].second)) : "";

  if (IsCharType(type)) {
    size_t full_length = 0;
    const std::string format = style.empty() ? "" : StyleFormat(style, &full_length);
    if (format.empty()) {
      *out += "CAST(" + value + " AS TEXT)";
    } else {
      const std::string text = "strftime('" + format + "', " + value + ")";
      if (!length.empty() && length.size() < 4 && std::stoul(length) < full_length) {
        *out += "substr(" + text + ", 1, " + length + ")";
      } else {
        *out += text;
      }
    }
  } else if (type == "DECIMAL" || type == "NUMERIC" || type == "MONEY" || type == "SMALLMONEY") {
    *out += "CAST(" + value + " AS NUMERIC)";
  } else if (type == "FLOAT" || type == "REAL") {
    *out += "CAST(" + value + " AS REAL)";
  } else if (type == "INT" || type == "INTEGER" || type == "SMALLINT" || type == "TINYINT" ||
             type == "BIGINT" || type == "BIT") {
    *out += "CAST(" + value + " AS INTEGER)";
  } else if (IsDateTimeType(type)) {
    *out += "datetime(" + value + ")";
  } else if (type == "DATE") {
    *out += "date(" + value + ")";
  } else {
    return 0;
  }
  return close + 1;
}

// GETDATE(): the server's local clock.
size_t Translator::TryGetdate(size_t i, size_t end) const {
  if (!IsWord(i, "GETDATE")) return 0;
  const size_t open = NextSolid(i + 1, end);
  if (!IsPunct(open, '(')) return 0;
  const size_t close = NextSolid(open + 1, end);
  return IsPunct(close, ')') ? close + 1 : 0;
}

// CAST(x AS character type) and CAST(x AS DATETIME).
size_t Translator::TryCast(size_t i, size_t end, std::string* out) const {
  const size_t open = NextSolid(i + 1, end);
  if (!IsPunct(open, '(')) return 0;
  const size_t close = MatchParen(open, end);
  if (close >= end) return 0;
  size_t as = close;
  int depth = 0;
  for (size_t k = open + 1; k < close; ++k) {
    if (IsPunct(k, '(')) ++depth;
    if (IsPunct(k, ')')) --depth;
    if (depth == 0 && IsWord(k, "AS")) as = k;
  }
  if (as == close) return 0;
  const size_t type_at = NextSolid(as + 1, close);
  if (type_at >= close || t_[type_at].kind != Tok::kWord) return 0;
  const std::string type = Upper(t_[type_at].text);
  if (IsCharType(type)) {
    *out += "CAST(" + Run(open + 1, as) + "AS TEXT)";
  } else if (IsDateTimeType(type)) {
    *out += "datetime(" + TrimSpace(Run(open + 1, as)) + ")";
  } else {
    return 0;
  }
  return close + 1;
}

std::string Translator::Run(size_t begin, size_t end) const {
  std::string out;
  std::vector<Frame> frames(1);
  int open_escapes = 0;      // {oj ... } still open
  bool after_dbo = false;    // the token follows a dropped dbo. qualifier
  std::set<size_t> dropped;  // redundant parentheses around IN sub-queries

  auto emit_solid = [&](const std::string& text) {
    out += text;
    frames.back().seen_content = true;
    frames.back().content_end = out.size();
  };
  auto flush_limit = [&](Frame& frame) {
    if (frame.limit.empty()) return;
    out.insert(frame.content_end, " LIMIT " + frame.limit);
    frame.limit.clear();
  };

  size_t i = begin;
  while (i < end) {
    const Token& tk = t_[i];
    if (IsBlank(i)) {
      out += tk.text;
      ++i;
      continue;
    }
    const bool qualified = after_dbo;
    after_dbo = false;
    if (size_t next = TryNolock(i, end)) {
      i = next;
      continue;
    }
    if (IsWord(i, "SELECT")) {
      std::string limit;
      size_t keep_end = 0;
      const bool first_in_exists = frames.back().exists_body && !frames.back().seen_content;
      emit_solid(tk.text);
      if (size_t next = TryTop(i, end, &limit, &keep_end)) {
        for (size_t k = i + 1; k < keep_end; ++k) {
          if (IsBlank(k)) {
            out += t_[k].text;
          } else {
            emit_solid(t_[k].text);
          }
        }
        if (!first_in_exists) frames.back().limit = limit;
        i = next;
      } else {
        ++i;
      }
      continue;
    }
    if (tk.kind == Tok::kWord && (IsWord(i, "CONVERT") || IsWord(i, "CAST"))) {
      std::string replaced;
      const size_t next =
          IsWord(i, "CONVERT") ? TryConvert(i, end, &replaced) : TryCast(i, end, &replaced);
      if (next != 0) {
        emit_solid(replaced);
        i = next;
        continue;
      }
    }
    if (size_t next = TryGetdate(i, end)) {
      emit_solid(kLocalNow);
      i = next;
      continue;
    }
    if (IsWord(i, "ISNULL") && IsPunct(NextSolid(i + 1, end), '(')) {
      emit_solid("IFNULL");
      ++i;
      continue;
    }
    if (IsWord(i, "DBO") && IsPunct(i + 1, '.')) {
      i += 2;
      after_dbo = true;
      continue;
    }
    if (tk.kind == Tok::kBracket) {
      std::string name = tk.text.substr(1, tk.text.size() >= 2 ? tk.text.size() - 2 : 0);
      if (Upper(name) == "DBO" && IsPunct(i + 1, '.')) {
        i += 2;
        after_dbo = true;
        continue;
      }
      // [dbo].[X] names the object X itself.
      if (qualified && IsPlainName(name)) {
        emit_solid(name);
        ++i;
        continue;
      }
      std::string quoted = "\"";
      for (size_t k = 0; k < name.size(); ++k) {
        if (name[k] == ']' && k + 1 < name.size() && name[k + 1] == ']') ++k;
        if (name[k] == '"') quoted += '"';
        quoted += name[k];
      }
      emit_solid(quoted + "\"");
      ++i;
      continue;
    }
    if (IsPunct(i, '{')) {
      const size_t word = NextSolid(i + 1, end);
      if (IsWord(word, "OJ")) {
        ++open_escapes;
        i = word + 1;
        while (i < end && t_[i].kind == Tok::kSpace) ++i;
        continue;
      }
    }
    if (IsPunct(i, '}') && open_escapes > 0) {
      --open_escapes;
      ++i;
      continue;
    }
    if (dropped.count(i) != 0) {
      ++i;
      continue;
    }
    if (IsPunct(i, '(')) {
      if (PrevSolidIsWord(i, begin, "IN")) DropSubqueryParens(i, end, &dropped);
      const bool after_exists = PrevSolidIsWord(i, begin, "EXISTS");
      emit_solid(tk.text);
      Frame frame;
      frame.exists_body = after_exists;
      frame.content_end = out.size();
      frames.push_back(frame);
      ++i;
      continue;
    }
    if (IsPunct(i, ')') && frames.size() > 1) {
      flush_limit(frames.back());
      frames.pop_back();
      emit_solid(tk.text);
      ++i;
      continue;
    }
    if (IsPunct(i, ';') && frames.size() == 1) {
      flush_limit(frames.back());
      emit_solid(tk.text);
      frames.back().seen_content = false;
      ++i;
      continue;
    }
    emit_solid(tk.text);
    ++i;
  }
  while (!frames.empty()) {
    flush_limit(frames.back());
    frames.pop_back();
  }
  return out;
}

}  // namespace

std::string TranslateTsqlToSqlite(const std::string& tsql) {
  const std::vector<Token> tokens = Tokenize(tsql);
  return Translator(tokens).Run(0, tokens.size());
}

std::string TsqlTranslationCache::Translate(const std::string& tsql) {
  if (const std::string* found = translations_.Find(tsql)) return *found;
  std::string translated = TranslateTsqlToSqlite(tsql);
  translations_.Insert(tsql, translated, translated.size());
  return translated;
}

}  // namespace zarvik::db
