#include <cctype>
#include <cstdlib>

#include <libstemmer.h>

#include "stemmer/stemmer.hpp"

namespace ZQ::Dialog {

void stem_stream(sb_stemmer* stemmer, FILE* in, QString& out) {
  // One buffer for the whole stream, grown 10 bytes at a time and never shrunk.
  int capacity = 10;
  auto* buffer = static_cast<sb_symbol*>(std::malloc(capacity));
  int c = getc(in);
  while (c != EOF) {
    int length = 0;
    while (c != EOF && c != '\n') {
      if (length == capacity) {
        capacity += 10;
        auto* grown = static_cast<sb_symbol*>(std::realloc(buffer, capacity));
        if (!grown) {
          std::free(buffer);
          return;
        }
        buffer = grown;
      }
      // Per byte, in the process's locale: bytes of multibyte characters are
      // left alone in the "C" and UTF-8 locales.
      if (std::isupper(c)) c = std::tolower(c);
      buffer[length++] = static_cast<sb_symbol>(c);
      c = getc(in);
    }
    // The stem points into the handle and is only valid until its next call;
    // it is decoded at once. A null stem (out of memory) appends nothing.
    const sb_symbol* stem = sb_stemmer_stem(stemmer, buffer, length);
    if (stem) out.append(QString::fromUtf8(reinterpret_cast<const char*>(stem)));
    if (c == EOF) break;
    c = getc(in);
  }
  std::free(buffer);
}

}  // namespace ZQ::Dialog
