#include "corpus/stem_cache.hpp"

#include <algorithm>
#include <cstring>

namespace ZQ::Dialog::corpus {

StemCache::StemCache(std::size_t capacity) : capacity_(capacity) { rehash(kFirstSlots); }

std::size_t StemCache::hash(std::string_view word) {
  // Words are short: eight bytes at a time with one multiply each (the last
  // eight may overlap the ones before), then a final mix so that the low bits
  // (the slot) and the high bits (the tag) both vary.
  const auto load = [&](std::size_t at, std::size_t bytes) {
    std::uint64_t value = 0;
    std::memcpy(&value, word.data() + at, bytes);
    return value;
  };
  const std::size_t n = word.size();
  std::uint64_t h = n * 0x9E3779B97F4A7C15u;
  const auto mix = [&](std::uint64_t eight) {
    h = (h ^ eight) * 0xFF51AFD7ED558CCDu;
    h ^= h >> 32;
  };
  if (n >= 8) {
    for (std::size_t at = 0; at + 8 < n; at += 8) mix(load(at, 8));
    mix(load(n - 8, 8));
  } else if (n >= 4) {
    mix(load(0, 4) << 32 | load(n - 4, 4));
  } else if (n > 0) {
    mix(load(0, 1) << 16 | load(n / 2, 1) << 8 | load(n - 1, 1));
  }
  h ^= h >> 29;
  h *= 0xC4CEB9FE1A85EC53u;
  return h ^ (h >> 32);
}

bool StemCache::find(std::string_view word, Stem& stem) const {
  const std::uint64_t h = hash(word);
  const std::uint64_t tag = h >> 32 << 32;
  for (std::size_t i = h & mask_;; i = (i + 1) & mask_) {
    const std::uint64_t slot = slots_[i];
    if (slot == 0) return false;
    if ((slot & ~std::uint64_t{0xFFFFFFFF}) != tag) continue;
    const Entry& entry = entries_[(slot & 0xFFFFFFFF) - 1];
    if (entry.wordBytes == word.size() &&
        std::equal(word.begin(), word.end(), arena_.data() + entry.offset)) {
      stem = {std::string_view(arena_).substr(entry.offset + entry.wordBytes, entry.stemBytes),
              entry.plain};
      return true;
    }
  }
}

void StemCache::place(std::uint64_t hash, std::size_t entryNumber) {
  std::size_t i = hash & mask_;
  while (slots_[i] != 0) i = (i + 1) & mask_;
  slots_[i] = (hash >> 32 << 32) | entryNumber;
}

void StemCache::rehash(std::size_t slots) {
  slots_.assign(slots, 0);
  mask_ = slots - 1;
  for (std::size_t k = 0; k < entries_.size(); ++k)
    place(hash(std::string_view(arena_).substr(entries_[k].offset, entries_[k].wordBytes)), k + 1);
}

void StemCache::insert(std::string_view word, std::string_view stem, bool plain) {
  if (capacity_ == 0 || stem.size() > kMaxStemBytes) return;
  // Offsets are 32-bit: a cache past 4 GiB of text starts afresh too.
  if (entries_.size() >= capacity_ || arena_.size() + word.size() + stem.size() > 0xFFFFFFFFu)
    clear();
  // At most half the slots in use keeps probe runs short.
  if (2 * (entries_.size() + 1) > slots_.size()) rehash(2 * slots_.size());
  entries_.push_back({static_cast<std::uint32_t>(arena_.size()),
                      static_cast<std::uint32_t>(word.size()),
                      static_cast<std::uint32_t>(stem.size()), plain});
  place(hash(word), entries_.size());
  (arena_ += word) += stem;
}

void StemCache::clear() {
  std::fill(slots_.begin(), slots_.end(), 0);
  entries_.clear();
  arena_.clear();
}

}  // namespace ZQ::Dialog::corpus
