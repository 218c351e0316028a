// Words and sentences through every path but the morpheme one: an English
// stemmer with a small dictionary (regex split), one without its Snowball
// handle (space tokens) and an unsupported code (whole sentence).
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include <QStringList>

#include "ku/log.hpp"
#include "stemmer/stemmer.hpp"
#include "stemmer/stemmer_p.hpp"
#include "testing/files.hpp"
#include "invariant.hpp"

namespace {

using ZQ::Dialog::Stemmer;

struct Stemmers {
  Stemmer* english;
  Stemmer* spaceTokens;
  Stemmer* whole;
  sb_stemmer* unusedHandle;  // the space-token stemmer's, kept reachable for the leak check
};

const Stemmers& stemmers() {
  static const Stemmers instance = [] {
    ku::log::addCategory("LibStemmer")->level = 0;  // no "Unsupported language" noise
    static const dialog_test::DataRoot data;
    data.write("lemmatizer/enu/lemma", "went\ngo\ndogs\ndog\ndon\ndo\nt\nnot\n\nEMPTY\n");
    Stemmers s{new Stemmer("enu"), new Stemmer("enu"), new Stemmer("xx"), nullptr};
    s.unusedHandle = s.spaceTokens->impl->stemmer;
    s.spaceTokens->impl->stemmer = nullptr;
    return s;
  }();
  return instance;
}

// What stemming one decoded word must give: the lemma of its key (the word
// after a UTF-8 round trip) when the dictionary lists it, else the word.
std::string expectedStem(const Stemmer& stemmer, const QString& word) {
  const auto& dictionary = stemmer.impl->lemDic;
  const auto found = dictionary.find(QString::fromUtf8(word.toUtf8().constData()));
  return (found != dictionary.end() ? found->second : word).toUtf8().constData();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > dialog_test::kMaxFuzzInput) return 0;
  const Stemmers& s = stemmers();
  const std::string input(reinterpret_cast<const char*>(data), size);

  std::string word = input;
  std::string result = "stale";
  s.english->stemword(word, result);
  if (word != input) dialog_test::violated("stemword changed the word");
  const QString decoded = QString::fromUtf8(input.c_str());
  if (result != expectedStem(*s.english, decoded)) dialog_test::violated("stemword lookup");

  std::vector<std::string> stems{"kept"};
  s.english->stem_sentence(input, stems);
  std::vector<std::string> expected{"kept"};
  for (const QString& piece : decoded.split(ZQ::Dialog::rx, Qt::KeepEmptyParts))
    expected.push_back(expectedStem(*s.english, piece));
  if (stems != expected) dialog_test::violated("regex split output");

  stems.assign(1, "kept");
  s.spaceTokens->stem_sentence(input, stems);
  std::string joined;
  for (std::size_t i = 1; i < stems.size(); ++i) {
    if (stems[i].empty() || stems[i].find(' ') != std::string::npos)
      dialog_test::violated("space token empty or holding a space");
    joined += stems[i];
  }
  std::string unspaced = input;
  unspaced.erase(std::remove(unspaced.begin(), unspaced.end(), ' '), unspaced.end());
  if (stems.front() != "kept" || joined != unspaced)
    dialog_test::violated("space tokens lost bytes");

  stems.assign(1, "kept");
  s.whole->stem_sentence(input, stems);
  expected =
      input.empty() ? std::vector<std::string>{"kept"} : std::vector<std::string>{"kept", input};
  if (stems != expected) dialog_test::violated("whole sentence not returned whole");
  return 0;
}
