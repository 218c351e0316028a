// Words and sentences through every path but the morpheme one: an English
// stemmer (regex split), one without its Snowball handle (space tokens) and
// an unsupported code (whole sentence).
#include <utility>
#include "invariant.hpp"
#include "ku/log.hpp"
#include "stemmer/stemmer_p.hpp"
#include "testing/files.hpp"

namespace {

struct Stemmers {
  ZQ::Dialog::Stemmer english{"enu"}, spaced{"enu"}, whole{"xx"};
  sb_stemmer* unused = std::exchange(spaced.impl->stemmer, nullptr);  // kept reachable
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > dialog_test::kMaxFuzzInput) return 0;
  static const dialog_test::DataRoot root;
  static Stemmers* const s = [] {
    ku::log::addCategory("LibStemmer")->level = 0;  // no "Unsupported language" noise
    root.write("lemmatizer/enu/lemma", "went\ngo\ndon\ndo\nt\nnot\n\nEMPTY\n");
    return new Stemmers;
  }();
  const std::string input(reinterpret_cast<const char*>(data), size);
  std::string word = input, result;
  s->english.stemword(word, result);
  std::vector<std::string> stems{"kept"};
  s->english.stem_sentence(input, stems);
  const QString text = QString::fromUtf8(input.c_str());
  dialog_test::check(word == input && stems.size() == 2u + text.count(' ') + text.count('\''),
                     "word changed, or not one element per piece");
  std::string joined, unspaced;
  stems.assign(1, "kept");
  s->spaced.stem_sentence(input, stems);
  for (std::size_t i = 1; i < stems.size(); ++i) joined += stems[i];
  for (const char c : input) unspaced += c == ' ' ? "" : std::string(1, c);
  dialog_test::check(stems.front() == "kept" && joined == unspaced, "space tokens lost bytes");
  stems.assign(1, "kept");
  s->whole.stem_sentence(input, stems);
  dialog_test::check(stems.back() == (input.empty() ? "kept" : input), "not whole");
  return 0;
}
