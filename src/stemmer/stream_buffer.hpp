#ifndef DIALOG_STEMMER_STREAM_BUFFER_HPP
#define DIALOG_STEMMER_STREAM_BUFFER_HPP

#include <climits>
#include <cstdlib>

#include <libstemmer.h>

namespace ZQ::Dialog {

// The line buffer of stem_stream grows by this many bytes at a time.
constexpr int kStreamGrowth = 10;

// Grows `buffer` by kStreamGrowth bytes. Returns false, leaving both unchanged,
// when realloc fails or when the new capacity would pass `limit` (an int
// capacity must never wrap; the limit is a parameter so that tests can reach
// it without allocating gigabytes).
inline bool growStreamBuffer(sb_symbol*& buffer, int& capacity, int limit = INT_MAX) {
  if (capacity > limit - kStreamGrowth) return false;
  auto* grown = static_cast<sb_symbol*>(std::realloc(buffer, capacity + kStreamGrowth));
  if (!grown) return false;
  buffer = grown;
  capacity += kStreamGrowth;
  return true;
}

}  // namespace ZQ::Dialog

#endif  // DIALOG_STEMMER_STREAM_BUFFER_HPP
