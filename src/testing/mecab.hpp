#ifndef DIALOG_TESTING_MECAB_HPP
#define DIALOG_TESTING_MECAB_HPP

// MeCab for tests, fuzzers and benchmarks: the IPA dictionary, taggers opened by
// MeCab itself, tiny compiled dictionaries, and what the machine may lack. Not thread-safe.

#include <mecab.h>
#include <memory>
#include <string>

namespace ZQ::Dialog::testing {

enum class Need {
  kIpaDictionary,      // mecab-ipadic-utf8 at DIALOG_IPADIC_DIR
  kDictionaryIndexer,  // mecab-dict-index (mecab-utils)
  kUnprivileged,       // file modes that bind the process (not root)
};
// Why `need` is not met on this machine, naming what to install; "" when met.
std::string missing(Need need);

// The IPA dictionary directory fixed at configure time.
std::string ipadicDir();

struct TaggerDeleter {
  void operator()(MeCab::Tagger* tagger) const { MeCab::deleteTagger(tagger); }
};
using TaggerPtr = std::unique_ptr<MeCab::Tagger, TaggerDeleter>;

// A tagger opened by MeCab itself on `dir` and its dicrc; null on failure.
TaggerPtr openMecab(const std::string& dir);
// MeCab's error text for a model opened with `rcfile` and `dicdir`.
std::string mecabError(const std::string& rcfile, const std::string& dicdir);

// Copies a tiny compiled dictionary ("dicrc", "unk.dic", "char.bin",
// "sys.dic", "matrix.bin") into `dir`: 猫, が, 走っ (base form 走る) and た.
// Throws when mecab-dict-index is missing or fails.
void installDictionary(const std::string& dir);
// Copies a compiled user dictionary (one word, 犬) to the file `path`.
void installUserDictionary(const std::string& path);

}  // namespace ZQ::Dialog::testing

// In a GoogleTest body or SetUp(): skips, saying why, when `need` is not met.
#define DIALOG_REQUIRE(need)                                                    \
  if (const std::string dialog_missing_ = ::ZQ::Dialog::testing::missing(need); \
      !dialog_missing_.empty())                                                 \
  GTEST_SKIP() << dialog_missing_

#endif  // DIALOG_TESTING_MECAB_HPP
