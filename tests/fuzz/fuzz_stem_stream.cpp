// stem_stream over arbitrary bytes with a real English UTF-8 Snowball stemmer.
#include <libstemmer.h>
#include <cstdio>
#include <vector>
#include "invariant.hpp"
#include "stemmer/stemmer.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > ZQ::Dialog::testing::kMaxFuzzInput) return 0;
  static sb_stemmer* const english = sb_stemmer_new("english", "UTF_8");
  std::vector<std::uint8_t> bytes(data, data + size);  // fmemopen refuses an empty buffer
  FILE* in = size ? fmemopen(bytes.data(), bytes.size(), "r") : std::fopen("/dev/null", "r");
  QString out = QStringLiteral("kept");
  ZQ::Dialog::stem_stream(english, in, out);
  ZQ::Dialog::testing::check(out.startsWith(QLatin1String("kept")), "output not appended to");
  ZQ::Dialog::testing::check(std::fgetc(in) == EOF, "stream not read to its end");
  std::fclose(in);
  return 0;
}
