#ifndef DIALOG_CORPUS_SHARED_STEMS_HPP
#define DIALOG_CORPUS_SHARED_STEMS_HPP

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

#include "corpus/stem_cache.hpp"

namespace ZQ::Dialog {
class StemmerPrivate;
}

namespace ZQ::Dialog::corpus {

// Stems that the LineStemmers of several threads share behind their own
// caches, so that a word goes to the library once for all of them instead of
// once per thread (the misses of a fresh cache are a tenth of a corpus run's
// time). Entries are only added, never changed or removed, until the object
// is destroyed; when half its slots are in use it takes no more.
// Thread-safe: finds take no lock, and an insert is one compare-and-swap.
class SharedStems {
 public:
  // Holds stems of the implementation `impl` only, up to `slots` / 2 words
  // (`slots` a power of two).
  explicit SharedStems(const ZQ::Dialog::StemmerPrivate* impl,
                       std::size_t slots = std::size_t{1} << 17);
  ~SharedStems();
  SharedStems(const SharedStems&) = delete;
  SharedStems& operator=(const SharedStems&) = delete;

  // The implementation whose stems this holds.
  const ZQ::Dialog::StemmerPrivate* impl() const { return impl_; }

  // Sets `stem` (valid as long as this object) to the one held for `word` and
  // returns true; false when none is.
  bool find(std::string_view word, StemCache::Stem& stem) const;
  // Holds `stem` for `word` unless full or `word` is held already.
  void insert(std::string_view word, std::string_view stem, bool plain);

 private:
  struct Entry;

  const ZQ::Dialog::StemmerPrivate* impl_;
  std::size_t mask_;
  std::unique_ptr<std::atomic<Entry*>[]> slots_;
  std::atomic<std::size_t> size_{0};
};

}  // namespace ZQ::Dialog::corpus

#endif  // DIALOG_CORPUS_SHARED_STEMS_HPP
