// The byte search under the scanner's keyword searches.
#ifndef ZARVIK_PARSER_REWRITER_KEYWORD_SEARCH_H_
#define ZARVIK_PARSER_REWRITER_KEYWORD_SEARCH_H_

#include <cstddef>
#include <string_view>

namespace zarvik::rewriter {

// text.find(key, from): the offset of the first occurrence of `key` at or
// after `from`, or npos. Sixteen positions at a time, the first and the last
// byte of the key are compared at once, and only positions where both match
// are compared in full; unlike a search for the first byte alone, the cost
// stays low when that byte is frequent in the text ('O' of ORDER, the blank
// of " ON ").
size_t FindKeyword(std::string_view text, size_t from, std::string_view key);

}  // namespace zarvik::rewriter

#endif  // ZARVIK_PARSER_REWRITER_KEYWORD_SEARCH_H_
