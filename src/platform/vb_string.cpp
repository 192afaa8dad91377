#include "platform/vb_string.h"

#include <cstring>

#include "platform/vb_error.h"

namespace zarvik::vb {
namespace {

inline char AsciiLower(char c) { return (c >= 'A' && c <= 'Z') ? static_cast<char>(c + 32) : c; }

// Offset of `find` in `text` at or after `from`, ignoring the case of ASCII
// letters; std::string::npos when absent. Candidates for the first character
// are located with memchr on each of its two cases; the next occurrence of
// each case is remembered and only searched again once the scan has passed
// it, so every byte is looked at by memchr at most once per case and a scan
// of long text stays linear.
size_t FindText(const std::string& text, const std::string& find, size_t from) {
  const size_t n = text.size();
  const size_t m = find.size();
  if (m > n || from > n - m) return std::string::npos;
  const char lo = AsciiLower(find[0]);
  const char up = AsciiUpper(find[0]);
  const char* base = text.data();
  const size_t end = n - m + 1;  // one past the last offset where a match can start
  auto next_of = [&](char c, size_t pos) -> size_t {
    const void* hit = std::memchr(base + pos, c, end - pos);
    return hit ? static_cast<size_t>(static_cast<const char*>(hit) - base) : end;
  };
  size_t next_lo = next_of(lo, from);
  size_t next_up = lo == up ? end : next_of(up, from);
  for (;;) {
    const size_t at = next_lo < next_up ? next_lo : next_up;
    if (at >= end) return std::string::npos;
    size_t k = 1;
    while (k < m && AsciiLower(base[at + k]) == AsciiLower(find[k])) ++k;
    if (k == m) return at;
    if (at == next_lo) next_lo = at + 1 < end ? next_of(lo, at + 1) : end;
    if (at == next_up) next_up = at + 1 < end ? next_of(up, at + 1) : end;
  }
}

void RequireNonNegative(int32_t length) {
  if (length < 0) throw VbError(vberr::kInvalidProcedureCall);
}

void RequireStart(int32_t start) {
  if (start < 1) throw VbError(vberr::kInvalidProcedureCall);
}

}  // namespace

int32_t InStr(int32_t start, const std::string& text, const std::string& find, Compare compare) {
  RequireStart(start);
  const size_t from = static_cast<size_t>(start) - 1;
  if (from > text.size()) return 0;
  if (find.empty()) return start;
  const size_t at = compare == Compare::kText ? FindText(text, find, from) : text.find(find, from);
  return at == std::string::npos ? 0 : static_cast<int32_t>(at + 1);
}

std::string Mid(const std::string& text, int32_t start) {
  RequireStart(start);
  const size_t from = static_cast<size_t>(start) - 1;
  if (from >= text.size()) return std::string();
  return text.substr(from);
}

std::string Mid(const std::string& text, int32_t start, int32_t length) {
  RequireStart(start);
  RequireNonNegative(length);
  const size_t from = static_cast<size_t>(start) - 1;
  if (from >= text.size()) return std::string();
  return text.substr(from, static_cast<size_t>(length));
}

std::string Left(const std::string& text, int32_t length) {
  RequireNonNegative(length);
  return text.substr(0, static_cast<size_t>(length));
}

std::string Right(const std::string& text, int32_t length) {
  RequireNonNegative(length);
  const size_t count = static_cast<size_t>(length);
  if (count >= text.size()) return text;
  return text.substr(text.size() - count);
}

int32_t Len(const std::string& text) { return static_cast<int32_t>(text.size()); }

std::string Trim(const std::string& text) {
  const size_t first = text.find_first_not_of(' ');
  if (first == std::string::npos) return std::string();
  const size_t last = text.find_last_not_of(' ');
  return text.substr(first, last - first + 1);
}

std::string LTrim(const std::string& text) {
  const size_t first = text.find_first_not_of(' ');
  if (first == std::string::npos) return std::string();
  return text.substr(first);
}

std::string RTrim(const std::string& text) {
  const size_t last = text.find_last_not_of(' ');
  if (last == std::string::npos) return std::string();
  return text.substr(0, last + 1);
}

// Eight bytes at a time: every byte from 'a' to 'z' loses the bit 0x20
// (the rewriter upper-cases whole statements of many kilobytes).
std::string UCase(const std::string& text) {
  constexpr uint64_t kOnes = 0x0101010101010101ULL;
  constexpr uint64_t kHigh = 0x8080808080808080ULL;
  std::string upper(text);
  char* p = upper.data();
  const size_t n = upper.size();
  size_t i = 0;
  for (; i + 8 <= n; i += 8) {
    uint64_t block;
    std::memcpy(&block, p + i, 8);
    const uint64_t low7 = block & ~kHigh;
    // High bit of each byte: its low seven bits are >= 'a', > 'z', and the
    // byte itself is ASCII.
    const uint64_t from_a = low7 + kOnes * (0x80 - 'a');
    const uint64_t past_z = low7 + kOnes * (0x80 - 'z' - 1);
    const uint64_t lower = from_a & ~past_z & ~block & kHigh;
    block ^= lower >> 2;
    std::memcpy(p + i, &block, 8);
  }
  for (; i < n; ++i) p[i] = AsciiUpper(p[i]);
  return upper;
}

std::string LCase(const std::string& text) {
  std::string out(text);
  for (char& c : out) c = AsciiLower(c);
  return out;
}

// An empty `find` leaves the text as it is, as VB's Replace does.
std::string Replace(const std::string& text, const std::string& find, const std::string& with) {
  if (find.empty() || text.empty()) return text;
  size_t at = text.find(find);
  if (at == std::string::npos) return text;
  std::string out;
  out.reserve(text.size());
  size_t from = 0;
  while (at != std::string::npos) {
    out.append(text, from, at - from);
    out += with;
    from = at + find.size();
    at = text.find(find, from);
  }
  out.append(text, from, std::string::npos);
  return out;
}

}  // namespace zarvik::vb
