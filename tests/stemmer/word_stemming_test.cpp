#include <gtest/gtest.h>

#include "stemmer/stemmer.hpp"
#include "stemmer/stemmer_p.hpp"
#include "testing/files.hpp"

using ZQ::Dialog::Stemmer;

namespace {

// An English stemmer over a small dictionary of its own.
class WordStemming : public testing::Test {
 protected:
  // stemword on a copy of `word`, checking that the caller's word stays as it was.
  std::string stem(const std::string& word, std::string result = "") {
    std::string mine = word;
    english_.stemword(mine, result);
    EXPECT_EQ(mine, word);
    return result;
  }
  dialog_test::DataRoot data_;
  // Written before the stemmer below is built, which reads it.
  std::string file_ = data_.write("lemmatizer/enu/lemma",
                                  "went\ngo\nchildren\nchild\n\nEMPTY\nété\nêtre\n"
                                  "\xEF\xBB\xBF" "dogs\nunreachable\n");
  Stemmer english_{"enu"};
};

TEST_F(WordStemming, LookupIsExact) {
  EXPECT_EQ(stem("children"), "child");
  EXPECT_EQ(stem("été"), "être");
  EXPECT_EQ(stem("running"), "running");           // no Snowball stemming of words
  EXPECT_EQ(stem("Went"), "Went");                 // case-sensitive
  EXPECT_EQ(stem("went "), "went ");               // nothing trimmed
  EXPECT_EQ(stem(""), "EMPTY");                    // the empty word is looked up too
  EXPECT_EQ(stem("went", "previous text"), "go");  // the result is replaced, not appended
  EXPECT_EQ(stem("walked", "previous text"), "walked");
}

TEST_F(WordStemming, BadBytes) {
  EXPECT_EQ(stem("caf\xC3"), "caf\xEF\xBF\xBD");  // each bad sequence becomes U+FFFD
  EXPECT_EQ(stem("\xFF\xFE"), "\xEF\xBF\xBD\xEF\xBF\xBD");
  EXPECT_EQ(stem(std::string("went\0xyz", 8)), "go");  // a zero byte ends the word
  EXPECT_EQ(stem(std::string("\0went", 5)), "EMPTY");
  // The key's UTF-8 round trip drops a leading byte-order mark, as any decoding would.
  EXPECT_EQ(stem("\xEF\xBB\xBF\xEF\xBB\xBFwent"), "go");
  EXPECT_EQ(stem("\xEF\xBB\xBF" "dogs"), "dogs");  // the form listed with its mark is never found
  EXPECT_EQ(stem(std::string(10 << 20, 'y')), std::string(10 << 20, 'y'));
}

TEST_F(WordStemming, StemmwordReplacesItsWordAndKeysBeforeNul) {
  QString word = QStringLiteral("went") + QChar(0) + QStringLiteral("tail"), result;
  english_.impl->stemmword(word, result);
  EXPECT_EQ(word, QStringLiteral("go"));
  EXPECT_EQ(result, QStringLiteral("go"));
  word = QChar(0xFEFF) + QStringLiteral("dogs");  // unlisted: the word stays, mark and all
  english_.impl->stemmword(word, result);
  EXPECT_EQ(result, QChar(0xFEFF) + QStringLiteral("dogs"));
  word = QStringLiteral("x") + QChar(0xD800);  // a lone surrogate never survives in the key
  english_.impl->lemDic[word] = QStringLiteral("unreachable");
  english_.impl->stemmword(word, result);
  EXPECT_EQ(result, QStringLiteral("x") + QChar(0xD800));
}

TEST_F(WordStemming, JapaneseAndUnsupportedReturnWordsUnchanged) {
  for (const char* code : {"jpj", "xx"}) {
    Stemmer stemmer(code);
    stemmer.impl->lemDic[QStringLiteral("went")] = QStringLiteral("go");  // even when listed
    std::string word = "went", result;
    stemmer.stemword(word, result);
    EXPECT_EQ(result, "went") << code;
  }
}

}  // namespace
