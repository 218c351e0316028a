#ifndef DIALOG_TESTING_MECAB_HPP
#define DIALOG_TESTING_MECAB_HPP

// MeCab for the tests, fuzzers and benchmarks: the machine's IPA dictionary,
// taggers opened with MeCab's own API, and tiny dictionaries compiled at run
// time with mecab-dict-index. Not thread-safe.

#include <memory>
#include <string>
#include <vector>

#include <mecab.h>

namespace dialog_test {

// The IPA dictionary directory fixed at configure time (DIALOG_IPADIC_DIR).
std::string ipadicDir();

struct TaggerDeleter {
  void operator()(MeCab::Tagger* tagger) const { MeCab::deleteTagger(tagger); }
};
using TaggerPtr = std::unique_ptr<MeCab::Tagger, TaggerDeleter>;

// A tagger opened by MeCab itself on `dir` and its dicrc; null on failure.
TaggerPtr openMecab(const std::string& dir);

// Field 6 (the base form) of each morpheme's feature, BOS and EOS left out.
std::vector<std::string> baseForms(MeCab::Tagger& tagger, const char* sentence);

// The error text MeCab gives for a model opened with `rcfile` and `dicdir`;
// leaves MeCab's last error set.
std::string mecabError(const std::string& rcfile, const std::string& dicdir);

// Copies a tiny compiled dictionary ("dicrc", "unk.dic", "char.bin",
// "sys.dic", "matrix.bin") into `dir`, creating it. Its words: 猫, が, 走っ
// (base form 走る) and た. Throws when mecab-dict-index is missing or fails.
void installDictionary(const std::string& dir);
// Copies a compiled user dictionary (one word, 犬) to the file `path`.
void installUserDictionary(const std::string& path);

// Overwrites the 32-bit little-endian header field at byte `offset` of a file.
void patchField(const std::string& path, std::size_t offset, unsigned value);

}  // namespace dialog_test

#endif  // DIALOG_TESTING_MECAB_HPP
