// The statement the scanner works on: the host's text, one copy of it with
// the ASCII letters upper-cased, and the window of the segment under work.
//
// The keyword searches ignore the case of letters; they run as plain byte
// searches over the upper-cased copy (the keywords are written in upper
// case), and each keyword remembers where its last search started and what
// it found, so that a search from a position that search already passed is
// answered without reading the text again.
//
// A UNION moves the window's start to the next segment; the cuts of ORDER
// BY, GROUP BY and WHERE shorten it from the end. Nothing is copied after
// construction: what the scanner hands on are views into the text.
//
// Positions are VB's, 1-based within the segment, and the operations raise
// the run-time errors of the VB functions they stand for (Mid, Left, InStr:
// Invalid procedure call (5) for a start before position 1).
#ifndef ZARVIK_PARSER_REWRITER_STATEMENT_TEXT_H_
#define ZARVIK_PARSER_REWRITER_STATEMENT_TEXT_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace zarvik::rewriter {

// A scanner position or count: raises Overflow (6) outside -32768..32767.
int16_t Pos16(int32_t value);

class StatementText {
 public:
  // Takes the text over; `text` is left as it was if the copy cannot be
  // made.
  explicit StatementText(std::string&& text);

  // The segment under work and its length.
  std::string_view Segment() const;
  // The segment under work as a string of its own, made from the text
  // without copying it; the object is then used up.
  std::string TakeSegment() &&;
  int32_t Len() const { return static_cast<int32_t>(end_ - begin_); }

  // Mid(segment, pos, 1) as a character, '\0' past the end.
  char At(int32_t pos) const {
    const size_t at = OffsetOf(pos);
    return at < end_ - begin_ ? text_[begin_ + at] : '\0';
  }
  bool IsBlankAt(int32_t pos) const { return At(pos) == ' '; }
  // Mid(segment, start) and Mid(segment, start, length).
  std::string_view Mid(int32_t start) const;
  std::string_view Mid(int32_t start, int32_t length) const;

  // InStr(start, segment, keyword, vbTextCompare); `keyword` is an upper
  // case text that lives as long as the object (a literal: its searches are
  // remembered). 0 when absent.
  int32_t FindText(int32_t start, std::string_view keyword) const;
  // The same as a 16-bit position: raises Overflow beyond 32767.
  int16_t Find(int32_t start, std::string_view keyword) const;
  // InStr(start, segment, what) with binary compare.
  int32_t FindBinary(int32_t start, std::string_view what) const;

  // Segment = Left(segment, length).
  void Keep(int32_t length);
  // The rest of the statement from `pos` of the segment on becomes the
  // segment under work.
  void StartSegmentAt(int32_t pos);

 private:
  // The last search of one keyword: from where, and the first match at or
  // after that offset inside the window as it was (npos: none).
  struct Memo {
    std::string_view keyword;
    size_t from = 0;
    size_t found = 0;
  };

  // Offset of the first match of `keyword` in the upper-cased window at or
  // after offset `from`, or npos.
  size_t FindUpper(size_t from, std::string_view keyword) const;
  // Offset of segment position `start`; raises 5 before position 1.
  static size_t OffsetOf(int32_t start) {
    if (start < 1) InvalidProcedureCall();
    return static_cast<size_t>(start) - 1;
  }
  [[noreturn]] static void InvalidProcedureCall();

  std::string upper_;  // made before the text is taken over
  std::string text_;
  size_t begin_ = 0;  // the segment is [begin_, end_) of the text
  size_t end_ = 0;
  mutable std::array<Memo, 8> memo_;
  mutable size_t memo_used_ = 0;
};

}  // namespace zarvik::rewriter

#endif  // ZARVIK_PARSER_REWRITER_STATEMENT_TEXT_H_
