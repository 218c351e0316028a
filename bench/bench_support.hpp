#ifndef DIALOG_BENCH_BENCH_SUPPORT_HPP
#define DIALOG_BENCH_BENCH_SUPPORT_HPP

// Shared helpers of the benchmark programs: generated lemma data, the real data
// and corpora when present, and the environment the library reads.

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "support/test_support.hpp"

namespace dialog_bench {

// One line pair of a lemma file.
struct LemmaPair {
  std::string form;
  std::string lemma;
};

// A directory under the system's temporary directory, shared by the whole
// process and removed with its contents when the process exits normally.
const std::string& tempRoot();

// Deterministic word-like text: Latin syllables with some accented vowels
// (UTF-8), a few capitalised forms, English- and French-looking endings.
class WordGenerator {
 public:
  explicit WordGenerator(unsigned long long seed);
  // A lemma-like stem of one to three syllables.
  std::string stem();
  // A surface word: a stem with an inflection-like ending, sometimes capitalised.
  std::string word();
  // `n` distinct forms, each with its lemma, grouped by lemma as a builder
  // would emit them.
  std::vector<LemmaPair> pairs(std::size_t n);

 private:
  unsigned long long next();
  std::size_t below(std::size_t n) { return static_cast<std::size_t>(next() % n); }
  unsigned long long state_;
};

// Orders pairs by their form as QString's operator< does (UTF-16 code units),
// the order of the library's map.
void sortByForm(std::vector<LemmaPair>& pairs);
void shuffle(std::vector<LemmaPair>& pairs, unsigned long long seed);

// Writes `pairs` as a lemma file, form line then lemma line; returns its size.
std::size_t writeLemmaFile(const std::string& path, const std::vector<LemmaPair>& pairs);

// Creates <tempRoot>/<name>/share/dialog/lemmatizer/<lang>/lemma from `pairs`
// and returns the prefix <tempRoot>/<name>.
std::string makeLemmaPrefix(const std::string& name, const std::string& lang,
                            const std::vector<LemmaPair>& pairs);

// The lemma file path below a data prefix.
std::string lemmaPath(const std::string& prefix, const std::string& lang);

// The prefix holding share/dialog/lemmatizer/<lang>/lemma of the default data:
// the first of $DIALOG_BENCH_DATA (colon-separated) and the build's staged data
// that has the file; nullopt when none has.
std::optional<std::string> defaultDataPrefix(const std::string& lang);

// Sentences of the Universal Dependencies development set for "enu" or "frf"
// ("# text = " lines), read in place from $DIALOG_BENCH_UD or the directory
// fixed at build time; empty when the file is missing.
std::vector<std::string> udSentences(const std::string& lang);

// `n` generated sentences of 4 to 20 generated words, some with apostrophes.
std::vector<std::string> generatedSentences(std::size_t n, unsigned long long seed);

// The pieces the library cuts a sentence into: between spaces and apostrophes,
// empty pieces included.
std::vector<std::string> splitPieces(const std::string& sentence);

// Lemma data that resembles real use for "enu" or "frf".
struct RealisticData {
  std::string prefix;       // holds share/dialog/lemmatizer/<lang>/lemma
  std::string description;  // "default data" or "generated"
};
// The default data when present; else 100k generated pairs plus every other
// distinct word of the language's corpus sentences, mapped to its lower case,
// so that about half of the corpus's words are listed.
const RealisticData& realisticData(const std::string& lang);

// The language's corpus sentences, else `fallback` generated ones.
std::vector<std::string> realisticSentences(const std::string& lang, std::size_t fallback = 2000);

// Points the data lookup at `prefix` only (KU_PREFIX_PATH, and the user data
// directory at a place that does not exist) for the object's lifetime.
class DataPrefixScope {
 public:
  explicit DataPrefixScope(const std::string& prefix);

 private:
  dialog_test::ScopedEnv prefix_;
  dialog_test::ScopedEnv xdg_;
};

// Sends file descriptor 1 to /dev/null for the object's lifetime (the Japanese
// factory writes its trail there), flushing both C and C++ streams around it.
class StdoutToNull {
 public:
  StdoutToNull();
  ~StdoutToNull();
  StdoutToNull(const StdoutToNull&) = delete;
  StdoutToNull& operator=(const StdoutToNull&) = delete;

 private:
  int saved_;
};

// Number of Unicode code points in UTF-8 text.
std::size_t codePoints(const std::string& utf8);

}  // namespace dialog_bench

#endif  // DIALOG_BENCH_BENCH_SUPPORT_HPP
