// A cache of values kept by text, bounded by bytes: when an insertion takes
// the total past the bound, the entries used least recently leave first.
// An entry counts its key, the bytes its inserter gives for its value and a
// fixed overhead for the bookkeeping.
#ifndef ZARVIK_DB_LRU_CACHE_H_
#define ZARVIK_DB_LRU_CACHE_H_

#include <cstddef>
#include <list>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace zarvik::db {

template <class Value>
class LruCache {
 public:
  // The bookkeeping of one entry, in bytes (list and index nodes).
  static constexpr size_t kEntryOverhead = 128;

  explicit LruCache(size_t max_bytes) : max_bytes_(max_bytes) {}
  LruCache(const LruCache&) = delete;
  LruCache& operator=(const LruCache&) = delete;

  // The value kept for `key`, now the most recently used; nullptr when none.
  Value* Find(std::string_view key) {
    const auto found = index_.find(key);
    if (found == index_.end()) return nullptr;
    order_.splice(order_.begin(), order_, found->second);
    return &found->second->value;
  }

  // Takes the entry of `key` out of the cache into `key_out` and
  // `value_out`; false when there is none.
  bool Take(std::string_view key, std::string& key_out, Value& value_out) {
    const auto found = index_.find(key);
    if (found == index_.end()) return false;
    const auto entry = found->second;
    index_.erase(found);
    bytes_ -= entry->bytes;
    key_out = std::move(entry->key);
    value_out = std::move(entry->value);
    order_.erase(entry);
    return true;
  }

  // Keeps `value` for `key` (replacing what was kept for it) as the most
  // recently used entry, then lets the least recently used ones go until the
  // total is within the bound. An entry larger than the bound on its own is
  // not kept: false, and `value` is dropped.
  bool Insert(std::string key, Value value, size_t value_bytes) {
    const size_t bytes = key.size() + value_bytes + kEntryOverhead;
    Erase(key);
    if (bytes > max_bytes_) return false;
    order_.push_front(Entry{std::move(key), std::move(value), bytes});
    try {
      index_.emplace(order_.front().key, order_.begin());
    } catch (...) {  // an entry the index does not know would never be let go
      order_.pop_front();
      throw;
    }
    bytes_ += bytes;
    while (bytes_ > max_bytes_) Erase(order_.back().key);
    return true;
  }

  void Clear() {
    index_.clear();
    order_.clear();
    bytes_ = 0;
  }

  size_t Bytes() const { return bytes_; }
  size_t Size() const { return order_.size(); }

 private:
  struct Entry {
    std::string key;
    Value value;
    size_t bytes;
  };

  void Erase(std::string_view key) {
    const auto found = index_.find(key);
    if (found == index_.end()) return;
    const auto entry = found->second;
    index_.erase(found);  // before the key it views goes
    bytes_ -= entry->bytes;
    order_.erase(entry);
  }

  size_t max_bytes_;
  size_t bytes_ = 0;
  std::list<Entry> order_;  // the most recently used first
  std::unordered_map<std::string_view, typename std::list<Entry>::iterator> index_;
};

}  // namespace zarvik::db

#endif  // ZARVIK_DB_LRU_CACHE_H_
