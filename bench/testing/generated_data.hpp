#ifndef DIALOG_TESTING_GENERATED_DATA_HPP
#define DIALOG_TESTING_GENERATED_DATA_HPP

// Lemma data and sentences for the benchmarks: one deterministic generator and
// the treebank sentences when present. Not thread-safe.

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include <QString>

#include "testing/files.hpp"

namespace ZQ::Dialog::testing {

// One line pair of a lemma file.
struct LemmaPair {
  std::string form;
  std::string lemma;
};

// Deterministic word-like text, the same on every platform: Latin syllables
// with some accented vowels (UTF-8), a few capitalised forms, English- and
// French-looking endings.
class WordGenerator {
 public:
  explicit WordGenerator(unsigned long long seed);
  // A lemma-like stem of one to three syllables.
  std::string stem();
  // A surface word: a stem with an inflection-like ending, sometimes capitalised.
  std::string word();
  // `n` distinct forms, each with its lemma, grouped by lemma as a builder emits them.
  std::vector<LemmaPair> pairs(std::size_t n);
  // `n` sentences of 4 to 20 words, some with apostrophes, ending in " .".
  std::vector<std::string> sentences(std::size_t n);

 private:
  unsigned long long next();
  std::size_t below(std::size_t n) { return static_cast<std::size_t>(next() % n); }
  unsigned long long state_;
};

// Orders pairs by their form as QString's operator< does (UTF-16 code units),
// the order of the library's map.
void sortByForm(std::vector<LemmaPair>& pairs);
// Shuffles the same way on every platform.
void shuffle(std::vector<LemmaPair>& pairs, unsigned long long seed);

// `pairs` as the text of a lemma file, form line then lemma line.
std::string lemmaFileText(const std::vector<LemmaPair>& pairs);

// A temporary directory for the whole process, removed at its normal exit.
const TempDir& processTempDir();

// The "# text = " sentences of the UD development set of "enu" or "frf", read
// in place from the treebank directory; empty when it is missing.
std::vector<std::string> udSentences(const std::string& lang);

// The pieces the library cuts a sentence into: between spaces and apostrophes,
// empty pieces included.
std::vector<std::string> splitPieces(const std::string& sentence);

// The prefix holding share/dialog/lemmatizer/<lang>/lemma of the default data:
// the first of $DIALOG_BENCH_DATA (colon-separated) and the build's staged
// data that has the file; nullopt when none has.
std::optional<std::string> defaultDataPrefix(const std::string& lang);

// Lemma data that resembles real use for "enu" or "frf", under a prefix that
// lives as long as the process.
struct RealisticData {
  std::string prefix;       // holds share/dialog/lemmatizer/<lang>/lemma
  std::string description;  // "default data" or "generated"
};
// The build's default data when present; else 100k generated pairs plus every
// other distinct word of the language's sentences, mapped to its lower case.
const RealisticData& realisticData(const std::string& lang);
// The language's treebank sentences, else 2000 generated ones.
std::vector<std::string> realisticSentences(const std::string& lang);

}  // namespace ZQ::Dialog::testing

#endif  // DIALOG_TESTING_GENERATED_DATA_HPP
