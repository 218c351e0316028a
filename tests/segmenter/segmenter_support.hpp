#ifndef DIALOG_TESTS_SEGMENTER_SUPPORT_HPP
#define DIALOG_TESTS_SEGMENTER_SUPPORT_HPP

#include <string>
#include <vector>

#include <mecab.h>

#include "support/test_support.hpp"

namespace segmenter_test {

// Captures what the process writes to file descriptors 1 and 2 until finish().
class CapturedOutput {
 public:
  CapturedOutput();
  ~CapturedOutput();
  CapturedOutput(const CapturedOutput&) = delete;
  CapturedOutput& operator=(const CapturedOutput&) = delete;

  // Flushes the standard streams, restores the descriptors and keeps the text.
  void finish();
  const std::string& out() const { return out_; }
  const std::string& err() const { return err_; }

 private:
  int savedOut_ = -1;
  int savedErr_ = -1;
  std::FILE* outFile_ = nullptr;
  std::FILE* errFile_ = nullptr;
  std::string out_;
  std::string err_;
};

// Changes the working directory for the object's lifetime.
class WorkingDirectory {
 public:
  explicit WorkingDirectory(const std::string& dir);
  ~WorkingDirectory();
  WorkingDirectory(const WorkingDirectory&) = delete;
  WorkingDirectory& operator=(const WorkingDirectory&) = delete;

 private:
  std::string previous_;
};

// Whether mecab-dict-index was found when the tests were configured.
bool canBuildDictionaries();

// Copies a freshly compiled tiny dictionary ("dicrc", "unk.dic", "char.bin",
// "sys.dic", "matrix.bin") into `dir`, creating it. Its words: 猫, が, 走っ
// (base form 走る) and た.
void installDictionary(const std::string& dir);
// Copies a compiled user dictionary (one word, 犬) to the file `path`.
void installUserDictionary(const std::string& path);

using dialog_test::readFile;
using dialog_test::writeFile;
// Overwrites the 32-bit little-endian header field at byte `offset`.
void patchField(const std::string& path, std::size_t offset, unsigned value);

// The error text MeCab gives for a model opened on `dir` as both resource
// file and dictionary directory; leaves MeCab's last error set.
std::string mecabError(const std::string& rcfile, const std::string& dicdir);

// Field 6 (the base form) of each morpheme's feature, BOS and EOS left out.
std::vector<std::string> baseForms(MeCab::Tagger& tagger, const char* sentence);

}  // namespace segmenter_test

#endif  // DIALOG_TESTS_SEGMENTER_SUPPORT_HPP
