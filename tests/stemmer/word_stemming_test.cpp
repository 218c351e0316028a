#include <gtest/gtest.h>

#include "stemmer/stemmer.hpp"
#include "stemmer/stemmer_p.hpp"
#include "support/test_support.hpp"

using ZQ::Dialog::Stemmer;

namespace {

// An English stemmer over a small dictionary of its own.
class WordStemming : public testing::Test {
 protected:
  std::string stem(std::string word, std::string result = "") {
    english_.stemword(word, result);
    return result;
  }
  dialog_test::DataRoot data_;
  // Written before the stemmer below is built, which reads it.
  std::string file_ =
      data_.write("lemmatizer/enu/lemma", "went\ngo\nchildren\nchild\n\nEMPTY\nété\nêtre\n");
  Stemmer english_{"enu"};
};

TEST_F(WordStemming, StemwordLeavesTheCallersWord) {
  std::string word = "went";
  std::string result;
  english_.stemword(word, result);
  EXPECT_EQ(result, "go");
  EXPECT_EQ(word, "went");  // only the internal copy is replaced
}

TEST_F(WordStemming, StemmwordReplacesItsWordInPlace) {
  QString word = QStringLiteral("went");
  QString result = QStringLiteral("old");
  english_.impl->stemmword(word, result);
  EXPECT_EQ(word, QStringLiteral("go"));
  EXPECT_EQ(result, QStringLiteral("go"));
  QString unlisted = QStringLiteral("walked");
  english_.impl->stemmword(unlisted, result);
  EXPECT_EQ(unlisted, QStringLiteral("walked"));
  EXPECT_EQ(result, QStringLiteral("walked"));
}

TEST_F(WordStemming, LookupIsExact) {
  EXPECT_EQ(stem("children"), "child");
  EXPECT_EQ(stem("été"), "être");
  EXPECT_EQ(stem("running"), "running");  // no Snowball stemming of words
  EXPECT_EQ(stem("Went"), "Went");        // case-sensitive
  EXPECT_EQ(stem("went "), "went ");      // nothing trimmed
  EXPECT_EQ(stem(""), "EMPTY");           // the empty word is looked up too
}

TEST_F(WordStemming, ResultIsReplacedNotAppended) {
  EXPECT_EQ(stem("went", "previous text"), "go");
  EXPECT_EQ(stem("walked", "previous text"), "walked");
}

TEST_F(WordStemming, EmbeddedZeroBytesEndTheWord) {
  EXPECT_EQ(stem(std::string("went\0xyz", 8)), "go");
  EXPECT_EQ(stem(std::string("wal\0ked", 7)), "wal");
  QString word = QStringLiteral("went");
  word.append(QChar(0)).append(QStringLiteral("tail"));
  QString result;
  english_.impl->stemmword(word, result);
  EXPECT_EQ(result, QStringLiteral("go"));  // keyed by the part before U+0000
}

TEST_F(WordStemming, InvalidUtf8IsReplacedNotRejected) {
  const std::string result = stem("caf\xC3");
  EXPECT_EQ(result, "caf\xEF\xBF\xBD");  // U+FFFD
}

TEST(WordStemmingLanguages, JapaneseAndUnsupportedReturnWordsUnchanged) {
  dialog_test::DataRoot data;
  data.write("lemmatizer/enu/lemma", "went\ngo\n");
  for (const char* code : {"jpj", "xx"}) {
    Stemmer stemmer(code);
    std::string word = "went";
    std::string result;
    stemmer.stemword(word, result);
    EXPECT_EQ(result, "went") << code;
    // Even a dictionary entry is ignored when the language selector is 0.
    stemmer.impl->lemDic[QStringLiteral("went")] = QStringLiteral("go");
    stemmer.stemword(word, result);
    EXPECT_EQ(result, "went") << code;
  }
}

}  // namespace
