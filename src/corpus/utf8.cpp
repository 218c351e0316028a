#include "corpus/utf8.hpp"

#include <cstdint>
#include <cstring>

namespace ZQ::Dialog::corpus {

std::size_t utf8SequenceLength(std::string_view text, std::size_t i) {
  const auto byte = [&](std::size_t k) { return static_cast<unsigned char>(text[k]); };
  const unsigned char b = byte(i);
  std::size_t n;
  unsigned min, cp;
  if (b < 0x80) return 1;
  if (b >= 0xC2 && b <= 0xDF) {
    n = 2, min = 0x80, cp = b & 0x1F;
  } else if (b >= 0xE0 && b <= 0xEF) {
    n = 3, min = 0x800, cp = b & 0x0F;
  } else if (b >= 0xF0 && b <= 0xF4) {
    n = 4, min = 0x10000, cp = b & 0x07;
  } else {
    return 0;
  }
  if (i + n > text.size()) return 0;
  for (std::size_t k = 1; k < n; ++k) {
    if ((byte(i + k) & 0xC0) != 0x80) return 0;
    cp = (cp << 6) | (byte(i + k) & 0x3F);
  }
  if (cp < min || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) return 0;
  return n;
}

bool isValidUtf8(std::string_view text) {
  std::size_t i = 0;
  while (i < text.size()) {
    // Corpus text is mostly ASCII: eight bytes at a time while no high bit is set.
    if (i + 8 <= text.size()) {
      std::uint64_t eight;
      std::memcpy(&eight, text.data() + i, sizeof eight);
      if ((eight & 0x8080808080808080u) == 0) {
        i += 8;
        continue;
      }
    }
    if (static_cast<unsigned char>(text[i]) < 0x80) {
      ++i;
      continue;
    }
    const std::size_t n = utf8SequenceLength(text, i);
    if (n == 0) return false;
    i += n;
  }
  return true;
}

}  // namespace ZQ::Dialog::corpus
