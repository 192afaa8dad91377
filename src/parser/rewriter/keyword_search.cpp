#include "parser/rewriter/keyword_search.h"

#include <cstring>

#if defined(__SSE2__) || defined(_M_X64)
#include <emmintrin.h>
#define ZARVIK_KEYWORD_SEARCH_SSE2 1
#endif

namespace zarvik::rewriter {
namespace {

constexpr size_t kNone = std::string_view::npos;

// Whether the key is at offset `at` (its first and last bytes known to
// match when `ends_match`).
bool KeyAt(const char* text, size_t at, std::string_view key, bool ends_match) {
  const size_t skip = ends_match ? 1 : 0;
  const size_t inner = key.size() >= 2 * skip ? key.size() - 2 * skip : 0;
  return std::memcmp(text + at + skip, key.data() + skip, inner) == 0;
}

}  // namespace

size_t FindKeyword(std::string_view text, size_t from, std::string_view key) {
  const size_t m = key.size();
  if (m == 0) return from <= text.size() ? from : kNone;
  if (m > text.size() || from > text.size() - m) return kNone;
  const char* p = text.data();
  const size_t last = text.size() - m;  // the last offset a match can start at
  size_t i = from;
#ifdef ZARVIK_KEYWORD_SEARCH_SSE2
  const __m128i first = _mm_set1_epi8(key[0]);
  const __m128i final = _mm_set1_epi8(key[m - 1]);
  for (; i + 15 <= last; i += 16) {
    const __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + i));
    const __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + i + m - 1));
    unsigned mask = static_cast<unsigned>(
        _mm_movemask_epi8(_mm_and_si128(_mm_cmpeq_epi8(a, first), _mm_cmpeq_epi8(b, final))));
    for (size_t at = i; mask != 0; ++at, mask >>= 1) {
      if ((mask & 1) != 0 && KeyAt(p, at, key, true)) return at;
    }
  }
#endif
  for (; i <= last; ++i) {
    if (p[i] == key[0] && KeyAt(p, i, key, false)) return i;
  }
  return kNone;
}

}  // namespace zarvik::rewriter
