// The scanner's keyword search: the byte search answers what
// std::string_view::find answers, from every start, on texts where the key's
// first and last bytes are frequent and matches straddle the blocks the
// search reads at once; remembered searches follow the segment's cuts.
#include "parser/rewriter/keyword_search.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <string_view>

#include "parser/rewriter/statement_text.h"

namespace zarvik::rewriter {
namespace {

TEST(FindKeyword, AgreesWithStringViewFind) {
  std::mt19937 rng(42);
  for (const std::string_view key :
       {"O", "ON", "JOIN", " ON ", "ORDER", "GROUP BY", "UNIONUNION"}) {
    for (size_t length : {0, 1, 7, 15, 16, 17, 31, 33, 100}) {
      std::string text;
      // Whole keys, their first and last bytes and other bytes, so that near
      // misses abound.
      while (text.size() < length) {
        const unsigned pick = rng() % 4;
        text += pick == 0   ? key
                : pick == 1 ? key.substr(0, 1)
                : pick == 2 ? key.substr(key.size() - 1)
                            : "x";
      }
      text.resize(length);
      for (size_t from = 0; from <= length + 1; ++from) {
        ASSERT_EQ(FindKeyword(text, from, key), std::string_view(text).find(key, from))
            << "[" << text << "] from " << from << " key [" << key << "]";
      }
    }
  }
}

// A search answered from an earlier one sees the segment as it is now: cut
// shorter, or moved on to the next segment.
TEST(StatementText, RememberedSearchesFollowTheSegment) {
  StatementText text(std::string("select a from t union select b from u"));
  EXPECT_EQ(text.Find(1, "FROM"), 10);
  EXPECT_EQ(text.Find(3, "FROM"), 10);
  text.Keep(11);
  EXPECT_EQ(text.Find(2, "FROM"), 0);
  text.StartSegmentAt(17);  // "union select b from u"
  EXPECT_EQ(text.Segment(), "union select b from u");
  EXPECT_EQ(text.Find(1, "FROM"), 16);
  EXPECT_EQ(text.Find(1, "SELECT"), 7);
}

}  // namespace
}  // namespace zarvik::rewriter
