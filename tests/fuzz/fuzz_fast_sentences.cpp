// LineStemmer against the library on arbitrary bytes, sentences or words in the format the
// first byte picks. Small caches living across inputs see hits, misses and clearing.
#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "corpus/line_stemmer.hpp"
#include "invariant.hpp"
#include "ku/log.hpp"
#include "testing/files.hpp"

// Never destroyed, so that the leak check finds them reachable.
static ZQ::Dialog::Stemmer* stemmers[2];
static ZQ::Dialog::corpus::LineStemmer* lineStemmers[2];

static bool setUp() {
  ku::log::addCategory("LibStemmer")->level = 0;  // no "Unsupported language" noise
  static const ZQ::Dialog::testing::DataRoot data;
  // Multi-byte, capitalised, empty and apostrophe-bearing forms and lemmas.
  data.write("lemmatizer/enu/lemma",
             "went\ngo\nWent\nGo\ndon\ndo\nt\nnot\n\nEMPTY\ncaf\xC3\xA9\nCAF\xC3\x89\no'clock\n"
             "clock\n\xC3\xA9t\xC3\xA9\n\xC3\xAAtre\nl\nle\naujourd'hui\nx\"\\\t\n");
  stemmers[0] = new ZQ::Dialog::Stemmer("enu");
  stemmers[1] = new ZQ::Dialog::Stemmer("xx");
  for (int i = 0; i < 2; ++i)
    lineStemmers[i] = new ZQ::Dialog::corpus::LineStemmer(*stemmers[i], 16);
  return true;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const bool ready = setUp();
  if (!ready || size == 0 || size > ZQ::Dialog::testing::kMaxFuzzInput) return 0;
  const auto format = static_cast<ZQ::Dialog::corpus::Format>(data[0] % 3);
  const bool words = (data[0] & 4) != 0;
  const std::string text(reinterpret_cast<const char*>(data) + 1, size - 1);
  for (int i = 0; i < 2; ++i) {
    std::string expected, actual;
    for (std::size_t start = 0, end; start < text.size(); start = end + 1) {
      end = std::min(text.find('\n', start), text.size());
      std::string line = text.substr(start, end - start);
      if (!line.empty() && line.back() == '\r') line.pop_back();
      std::vector<std::string> elements(words ? 1 : 0);
      words ? stemmers[i]->stemword(line, elements[0]) : stemmers[i]->stem_sentence(line, elements);
      ZQ::Dialog::corpus::formatRecord(format, words, elements, expected);
    }
    lineStemmers[i]->stemText(text, format, words, actual);
    ZQ::Dialog::testing::check(actual == expected, "stemText differs from the library");
    std::vector<std::string> mine{"kept"}, library{"kept"};
    lineStemmers[i]->stemSentence(text, mine);
    stemmers[i]->stem_sentence(text, library);
    ZQ::Dialog::testing::check(mine == library, "stemSentence differs from stem_sentence");
  }
  return 0;
}
