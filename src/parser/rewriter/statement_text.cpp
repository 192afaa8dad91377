#include "parser/rewriter/statement_text.h"

#include <utility>

#include "parser/rewriter/keyword_search.h"
#include "platform/vb_error.h"
#include "platform/vb_string.h"

namespace zarvik::rewriter {
namespace {

constexpr size_t kNone = std::string_view::npos;

}  // namespace

int16_t Pos16(int32_t value) {
  if (value < -32768 || value > 32767) throw VbError(vberr::kOverflow);
  return static_cast<int16_t>(value);
}

StatementText::StatementText(std::string&& text)
    : upper_(vb::UCase(text)), text_(std::move(text)), end_(text_.size()) {}

std::string_view StatementText::Segment() const {
  return std::string_view(text_).substr(begin_, end_ - begin_);
}

std::string StatementText::TakeSegment() && {
  text_.erase(end_);
  text_.erase(0, begin_);
  return std::move(text_);
}

void StatementText::InvalidProcedureCall() { throw VbError(vberr::kInvalidProcedureCall); }

std::string_view StatementText::Mid(int32_t start) const {
  const size_t at = OffsetOf(start);
  return at < end_ - begin_ ? Segment().substr(at) : std::string_view();
}

std::string_view StatementText::Mid(int32_t start, int32_t length) const {
  const size_t at = OffsetOf(start);
  if (length < 0) InvalidProcedureCall();
  return at < end_ - begin_ ? Segment().substr(at, static_cast<size_t>(length))
                            : std::string_view();
}

int32_t StatementText::FindText(int32_t start, std::string_view keyword) const {
  const size_t from = OffsetOf(start);
  if (from > end_ - begin_) return 0;
  if (keyword.empty()) return start;
  const size_t at = FindUpper(begin_ + from, keyword);
  return at == kNone ? 0 : static_cast<int32_t>(at - begin_ + 1);
}

int16_t StatementText::Find(int32_t start, std::string_view keyword) const {
  return Pos16(FindText(start, keyword));
}

int32_t StatementText::FindBinary(int32_t start, std::string_view what) const {
  const size_t from = OffsetOf(start);
  if (from > end_ - begin_) return 0;
  const size_t at = Segment().find(what, from);
  return at == kNone ? 0 : static_cast<int32_t>(at + 1);
}

size_t StatementText::FindUpper(size_t from, std::string_view keyword) const {
  // A search from inside the stretch an earlier search of the keyword read
  // has its answer already. The window only shrinks within a segment, so a
  // match that no longer fits means there is none.
  Memo* slot = nullptr;
  for (size_t i = 0; i < memo_used_; ++i) {
    Memo& m = memo_[i];
    // Most keywords differ in length or first letter: no byte compare.
    if (m.keyword.size() != keyword.size() || m.keyword[0] != keyword[0] || m.keyword != keyword) {
      continue;
    }
    if (m.from <= from && (m.found == kNone || from <= m.found)) {
      return m.found != kNone && m.found + keyword.size() <= end_ ? m.found : kNone;
    }
    slot = &m;
    break;
  }
  const size_t found = FindKeyword(std::string_view(upper_.data(), end_), from, keyword);
  if (slot == nullptr) slot = &memo_[memo_used_ < memo_.size() ? memo_used_++ : 0];
  *slot = Memo{keyword, from, found};
  return found;
}

void StatementText::Keep(int32_t length) {
  if (length < 0) InvalidProcedureCall();
  if (static_cast<size_t>(length) < end_ - begin_) end_ = begin_ + static_cast<size_t>(length);
}

void StatementText::StartSegmentAt(int32_t pos) {
  begin_ += OffsetOf(pos);
  end_ = text_.size();
  if (begin_ > end_) begin_ = end_;
  memo_used_ = 0;  // the window grows again: what was not found may be there now
}

}  // namespace zarvik::rewriter
