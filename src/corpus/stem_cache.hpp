#ifndef DIALOG_CORPUS_STEM_CACHE_HPP
#define DIALOG_CORPUS_STEM_CACHE_HPP

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace ZQ::Dialog::corpus {

// A bounded map from words to their stems, laid out for corpus text: words
// and stems sit in one byte arena in the order they were first met, so the
// frequent ones share a few cache lines, and the open-addressed index holds a
// part of each hash, so that most probes touch no other memory. (A node-based
// std::unordered_map spent half the stemming time in cache misses.)
// Not thread-safe.
class StemCache {
 public:
  struct Stem {
    std::string_view text;  // valid until the next insert or clear
    bool plain;             // written without escaping (isPlainText)
  };

  // Longer stems are never cached.
  static constexpr std::size_t kMaxStemBytes = 4096;

  // Holds at most `capacity` words; the one after the last empties it. The
  // index starts small and grows with the words.
  explicit StemCache(std::size_t capacity);

  // Sets `stem` to the one cached for `word` and returns true; false when
  // `word` is not cached.
  bool find(std::string_view word, Stem& stem) const;
  // Caches `stem` for `word`, which find() has just not found; empties the
  // cache first when it is full. A capacity of 0 caches nothing.
  void insert(std::string_view word, std::string_view stem, bool plain);
  // Forgets every word; keeps the index's size.
  void clear();

  // A 64-bit hash of `word` whose low and high halves both vary.
  static std::size_t hash(std::string_view word);

 private:
  struct Entry {
    std::uint32_t offset;  // of the word in arena_, its stem right after it
    std::uint32_t wordBytes;
    std::uint32_t stemBytes;
    bool plain;
  };
  static constexpr std::size_t kFirstSlots = 1024;
  // Points a free slot, found from `hash`, at entries_[entryNumber - 1].
  void place(std::uint64_t hash, std::size_t entryNumber);
  // Rebuilds the index with `slots` slots, a power of two.
  void rehash(std::size_t slots);

  std::size_t capacity_;
  std::size_t mask_ = 0;              // slots_.size() - 1
  std::vector<std::uint64_t> slots_;  // 0 empty, else hash's high half << 32 | entry + 1
  std::vector<Entry> entries_;
  std::string arena_;
};

}  // namespace ZQ::Dialog::corpus

#endif  // DIALOG_CORPUS_STEM_CACHE_HPP
