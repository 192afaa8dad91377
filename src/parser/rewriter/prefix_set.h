// A set of table prefixes, for the scanner's de-duplication of the tables of
// a statement. A few prefixes are kept in a small array and compared in
// turn; beyond that they go into a hash table, so that a statement with
// hundreds of tables is de-duplicated in time proportional to their number.
// The set keeps views: the texts must outlive it.
#ifndef ZARVIK_PARSER_REWRITER_PREFIX_SET_H_
#define ZARVIK_PARSER_REWRITER_PREFIX_SET_H_

#include <array>
#include <cstddef>
#include <string_view>
#include <vector>

namespace zarvik::rewriter {

class PrefixSet {
 public:
  // Adds `prefix`; false when it was there already.
  bool Insert(std::string_view prefix);
  bool Contains(std::string_view prefix) const;

 private:
  struct Slot {
    std::string_view key;
    bool used = false;
  };
  static constexpr size_t kFew = 8;

  // The slot of the hash table that holds `prefix`, or the free slot where
  // it belongs.
  Slot& SlotOf(std::string_view prefix) const;
  void Rehash(size_t slots);

  std::array<std::string_view, kFew> few_;
  size_t count_ = 0;
  mutable std::vector<Slot> table_;  // empty while count_ <= kFew
};

}  // namespace zarvik::rewriter

#endif  // ZARVIK_PARSER_REWRITER_PREFIX_SET_H_
