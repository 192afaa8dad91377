#include "parser/rewriter/prefix_set.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace zarvik::rewriter {
namespace {

// A prefix is at most a few bytes: they are read as one number and mixed by
// a multiplication; longer texts (which the scanner does not produce) are
// folded in eight bytes at a time.
uint64_t Hash(std::string_view text) {
  uint64_t hash = text.size();
  for (size_t at = 0; at < text.size(); at += 8) {
    uint64_t chunk = 0;
    std::memcpy(&chunk, text.data() + at, std::min<size_t>(8, text.size() - at));
    hash = (hash ^ chunk) * 0x9E3779B97F4A7C15ULL;
  }
  return hash ^ (hash >> 29);
}

}  // namespace

bool PrefixSet::Contains(std::string_view prefix) const {
  if (table_.empty()) {
    return std::find(few_.begin(), few_.begin() + count_, prefix) != few_.begin() + count_;
  }
  return SlotOf(prefix).used;
}

bool PrefixSet::Insert(std::string_view prefix) {
  if (Contains(prefix)) return false;
  if (table_.empty() && count_ < kFew) {
    few_[count_++] = prefix;
    return true;
  }
  if (table_.empty() || 2 * (count_ + 1) > table_.size()) Rehash(std::max<size_t>(64, 4 * count_));
  SlotOf(prefix) = Slot{prefix, true};
  ++count_;
  return true;
}

PrefixSet::Slot& PrefixSet::SlotOf(std::string_view prefix) const {
  const size_t mask = table_.size() - 1;  // the size is a power of two
  size_t at = static_cast<size_t>(Hash(prefix)) & mask;
  while (table_[at].used && table_[at].key != prefix) at = (at + 1) & mask;
  return table_[at];
}

void PrefixSet::Rehash(size_t slots) {
  size_t size = 1;
  while (size < slots) size *= 2;
  std::vector<Slot> old(size);
  old.swap(table_);
  if (old.empty()) {
    for (size_t i = 0; i < count_; ++i) SlotOf(few_[i]) = Slot{few_[i], true};
  } else {
    for (const Slot& slot : old) {
      if (slot.used) SlotOf(slot.key) = slot;
    }
  }
}

}  // namespace zarvik::rewriter
