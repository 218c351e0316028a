#include <cctype>
#include <cstdio>
#include <cstdlib>

#include <libstemmer.h>

#include "stemmer/stemmer.hpp"
#include "stemmer/stream_buffer.hpp"

namespace ZQ::Dialog {
namespace {

// Appends the zero-terminated UTF-8 `text` to `out`. A non-empty ASCII stem,
// by far the commonest, is copied straight in without a temporary string; it
// decodes to the same characters.
void appendUtf8(QString& out, const char* text) {
  int length = 0;
  bool ascii = true;
  for (; text[length] != '\0'; ++length)
    if (static_cast<unsigned char>(text[length]) >= 0x80) ascii = false;
  if (ascii && length > 0)
    out.append(QLatin1String(text, length));
  else
    out.append(QString::fromUtf8(text));
}

}  // namespace

void stem_stream(sb_stemmer* stemmer, FILE* in, QString& out) {
  // One buffer for the whole stream, grown 10 bytes at a time and never shrunk.
  int capacity = kStreamGrowth;
  auto* buffer = static_cast<sb_symbol*>(std::malloc(capacity));
  // Locked once for the whole read instead of once per byte.
  flockfile(in);
  int c = getc_unlocked(in);
  while (c != EOF) {
    int length = 0;
    while (c != EOF && c != '\n') {
      // A line whose length no longer fits in an int fails like a failed
      // allocation: the buffer is freed and nothing more is appended.
      if (length == capacity && !growStreamBuffer(buffer, capacity)) {
        std::free(buffer);
        funlockfile(in);
        return;
      }
      // Per byte, in the process's locale: bytes of multibyte characters are
      // left alone in the "C" and UTF-8 locales.
      if (std::isupper(c)) c = std::tolower(c);
      buffer[length++] = static_cast<sb_symbol>(c);
      c = getc_unlocked(in);
    }
    // The stem points into the handle and is only valid until its next call;
    // it is decoded at once. A null stem (out of memory) appends nothing.
    const sb_symbol* stem = sb_stemmer_stem(stemmer, buffer, length);
    if (stem) appendUtf8(out, reinterpret_cast<const char*>(stem));
    if (c == EOF) break;
    c = getc_unlocked(in);
  }
  funlockfile(in);
  std::free(buffer);
}

}  // namespace ZQ::Dialog
