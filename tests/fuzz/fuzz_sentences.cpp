// Words and sentences through the regex split (an English stemmer) and the
// whole-sentence path (an unsupported code).
#include "invariant.hpp"
#include "ku/log.hpp"
#include "stemmer/stemmer_p.hpp"
#include "testing/files.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > ZQ::Dialog::testing::kMaxFuzzInput) return 0;
  static const ZQ::Dialog::testing::DataRoot root;
  static ZQ::Dialog::Stemmer* const stemmers = [] {
    ku::log::addCategory("LibStemmer")->level = 0;  // no "Unsupported language" noise
    root.write("lemmatizer/enu/lemma", "went\ngo\ndon\ndo\nt\nnot\n\nEMPTY\n");
    return new ZQ::Dialog::Stemmer[2]{{"enu"}, {"xx"}};
  }();
  const std::string input(reinterpret_cast<const char*>(data), size);
  std::string word = input, result;
  stemmers[0].stemword(word, result);
  std::vector<std::string> stems{"kept"};
  stemmers[0].stem_sentence(input, stems);
  const QString text = QString::fromUtf8(input.c_str());
  ZQ::Dialog::testing::check(
      word == input && stems.size() == 2u + text.count(' ') + text.count('\''),
      "word changed, or not one element per piece");
  stems.assign(1, "kept");
  stemmers[1].stem_sentence(input, stems);
  ZQ::Dialog::testing::check(stems.back() == (input.empty() ? "kept" : input), "not whole");
  return 0;
}
