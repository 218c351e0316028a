#include "corpus/shared_stems.hpp"

#include <cstring>
#include <new>

namespace ZQ::Dialog::corpus {

// The word's bytes, then the stem's, follow the header in one allocation.
struct SharedStems::Entry {
  std::uint64_t hash;
  std::uint32_t wordBytes;
  std::uint32_t stemBytes;
  bool plain;

  const char* bytes() const { return reinterpret_cast<const char*>(this + 1); }
  std::string_view word() const { return {bytes(), wordBytes}; }
  std::string_view stem() const { return {bytes() + wordBytes, stemBytes}; }
};

SharedStems::SharedStems(const ZQ::Dialog::StemmerPrivate* impl, std::size_t slots)
    : impl_(impl), mask_(slots - 1), slots_(new std::atomic<Entry*>[slots]) {
  for (std::size_t i = 0; i < slots; ++i) slots_[i].store(nullptr, std::memory_order_relaxed);
}

SharedStems::~SharedStems() {
  for (std::size_t i = 0; i <= mask_; ++i)
    if (Entry* entry = slots_[i].load(std::memory_order_relaxed)) {
      entry->~Entry();
      ::operator delete(entry);
    }
}

bool SharedStems::find(std::string_view word, StemCache::Stem& stem) const {
  const std::uint64_t hash = StemCache::hash(word);
  for (std::size_t i = hash & mask_;; i = (i + 1) & mask_) {
    const Entry* entry = slots_[i].load(std::memory_order_acquire);
    if (!entry) return false;
    if (entry->hash == hash && entry->word() == word) {
      stem = {entry->stem(), entry->plain};
      return true;
    }
  }
}

void SharedStems::insert(std::string_view word, std::string_view stem, bool plain) {
  // Half the slots at most keeps probe runs short and always ends them.
  if (stem.size() > StemCache::kMaxStemBytes ||
      size_.load(std::memory_order_relaxed) >= (mask_ + 1) / 2)
    return;
  const std::uint64_t hash = StemCache::hash(word);
  void* const memory = ::operator new(sizeof(Entry) + word.size() + stem.size());
  Entry* const entry = new (memory) Entry{hash, static_cast<std::uint32_t>(word.size()),
                                          static_cast<std::uint32_t>(stem.size()), plain};
  char* const bytes = static_cast<char*>(memory) + sizeof(Entry);
  std::memcpy(bytes, word.data(), word.size());
  std::memcpy(bytes + word.size(), stem.data(), stem.size());
  for (std::size_t i = hash & mask_;; i = (i + 1) & mask_) {
    Entry* held = nullptr;
    if (slots_[i].compare_exchange_strong(held, entry, std::memory_order_acq_rel)) {
      size_.fetch_add(1, std::memory_order_relaxed);
      return;
    }
    // Another thread stored the word first: its stem is the same.
    if (held->hash == hash && held->word() == word) break;
  }
  entry->~Entry();
  ::operator delete(entry);
}

}  // namespace ZQ::Dialog::corpus
