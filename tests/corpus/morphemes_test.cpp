// MorphemeStemmer on tiny dictionaries of each layout: base forms, surfaces,
// the UniDic conventions, the layout check, long lines and shared use.
#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "corpus/morphemes.hpp"
#include "testing/files.hpp"
#include "testing/mecab.hpp"

namespace {

using namespace ZQ::Dialog::corpus;
using namespace ZQ::Dialog::testing;
using Elements = std::vector<std::string>;

class Morphemes : public testing::Test {
 protected:
  void SetUp() override {
    DIALOG_REQUIRE(Need::kDictionaryIndexer);
    for (const auto& [name, layout] : {std::pair{"ipadic", Layout::kIpadic},
                                       {"unidic", Layout::kUnidic},
                                       {"other", Layout::kOther}}) {
      installDictionary(data_.path() + "/" + name, layout);
      if (layout != Layout::kOther) data_.linkDictionary(data_.path() + "/" + name, false, name);
    }
  }
  std::shared_ptr<const MorphemeDictionary> open(const std::string& name) {
    std::string error;
    auto dictionary = MorphemeDictionary::open(name, error);
    EXPECT_TRUE(dictionary) << error;
    return dictionary;
  }
  DataRoot data_;
};

TEST_F(Morphemes, ElementsFollowEachLayoutsConvention) {
  struct Row {
    const char* name;
    const char* dictionary;
    std::string sentence;
    Elements elements;
  };
  const Row rows[] = {
      {"base forms", "ipadic", "猫が走った", {"猫", "が", "走る", "た"}},
      {"base form '*': surface", "ipadic", "ネコが", {"ネコ", "が"}},
      {"unknown word: surface", "ipadic", "犬が", {"犬", "が"}},
      {"blanks make no element", "ipadic", " 猫\t\xE3\x80\x80が ", {"猫", "が"}},
      {"empty line: none", "ipadic", "", {}},
      {"lexeme", "unidic", "走っ", {"走る"}},
      {"spelling unified", "unidic", "し", {"為る"}},
      {"gloss dropped", "unidic", "ウイルス", {"ウイルス"}},
      {"proper noun: written base form", "unidic", "東京", {"東京"}},
      {"punctuation keeps surface", "unidic", "，", {"，"}},
      {"numeral keeps surface", "unidic", "２", {"２"}},
      {"digits of one number: one element", "unidic", "２２ ２", {"２２", "２"}},
      {"Latin script keeps surface", "unidic", "CD", {"CD"}},
      {"lexeme '*': surface", "unidic", "猫", {"猫"}},
      {"unknown word: surface", "unidic", "犬", {"犬"}},
  };
  MorphemeStemmer ipadic(open("ipadic")), unidic(open("unidic"));
  for (const Row& row : rows) {
    MorphemeStemmer& stemmer = row.dictionary == std::string("ipadic") ? ipadic : unidic;
    Elements elements{"kept"}, expectedElements{"kept"};
    stemmer.stemSentence(row.sentence, elements);
    expectedElements.insert(expectedElements.end(), row.elements.begin(), row.elements.end());
    EXPECT_EQ(elements, expectedElements) << row.name;
    for (const Format format : {Format::Lines, Format::Tsv, Format::Jsonl}) {
      std::string expected, record, text;
      formatRecord(format, false, row.elements, expected);
      stemmer.stemRecord(row.sentence, format, record);
      stemmer.stemText(row.sentence + "\r\n" + row.sentence, format, text);
      EXPECT_EQ(record, expected) << row.name;
      EXPECT_EQ(text, row.sentence.empty() ? expected : expected + expected) << row.name;
    }
  }
  // A feature record shorter than the layout's: the surface, nothing read past it.
  for (const DictionaryLayout layout : {DictionaryLayout::kIpadic, DictionaryLayout::kUnidic})
    EXPECT_EQ(morphemeElement(layout, "x", "名詞,普通名詞,*", true), "x");
}

TEST_F(Morphemes, LayoutComesFromTheEntriesNeverFromMecabsDefault) {
  // MeCab's own default would be a UniDic-layout dictionary: it never counts.
  const std::string rc = data_.write("mecabrc", "dicdir = " + data_.path() + "/unidic\n");
  const ScopedEnv mecabrc("MECABRC", rc);
  EXPECT_EQ(open("ipadic")->layout(), DictionaryLayout::kIpadic);
  EXPECT_EQ(open("unidic")->layout(), DictionaryLayout::kUnidic);
  DataRoot swapped;  // names say nothing
  swapped.linkDictionary(data_.path() + "/unidic", false, "ipadic");
  swapped.linkDictionary(data_.path() + "/other", false, "unidic");
  EXPECT_EQ(open("ipadic")->layout(), DictionaryLayout::kUnidic);
  const std::string dir = swapped.path() + "/share/dialog/data/unidic/";
  const std::pair<const char*, std::string> failures[] = {
      {"unidic", "dictionary unidic at " + dir +
                     " is of neither layout: its entries have 7 feature fields, not 9 (ipadic "
                     "layout) or 29 (UniDic layout)"},
      {"jumandic", "unknown dictionary 'jumandic': expected ipadic or unidic"}};
  for (const auto& [name, message] : failures) {
    std::string error;
    EXPECT_EQ(MorphemeDictionary::open(name, error), nullptr);
    EXPECT_EQ(error, message);
  }
  std::filesystem::remove_all(data_.path() + "/other");
  std::filesystem::create_directory(data_.path() + "/other");  // no files at all
  std::string error;
  EXPECT_EQ(MorphemeDictionary::open("unidic", error), nullptr);
  EXPECT_EQ(error.rfind("dictionary unidic at " + dir + " does not open: ", 0), 0u) << error;
  const DataRoot empty;
  EXPECT_EQ(MorphemeDictionary::open("unidic", error), nullptr);
  EXPECT_EQ(error.rfind("dictionary unidic not found: ", 0), 0u) << error;
}

TEST_F(Morphemes, LongLinesAreAnalysedInPieces) {
  MorphemeStemmer stemmer(open("ipadic"));
  // Cut after a sentence end, and where none comes, between two characters.
  for (const auto& [piece, elements] :
       {std::pair<std::string, Elements>{"猫が走った。", {"猫", "が", "走る", "た", "。"}},
        {"猫", {"猫"}}}) {
    std::string line;
    Elements expected;
    while (line.size() <= 3 * MorphemeStemmer::kMaxPieceBytes)
      line += piece, expected.insert(expected.end(), elements.begin(), elements.end());
    Elements got;
    stemmer.stemSentence(line, got);
    EXPECT_EQ(got, expected) << piece;
  }
}

// MorphemeStemmers on several threads sharing one dictionary give the output of
// one alone. Run under ThreadSanitizer.
class MorphemeConcurrency : public Morphemes {};
TEST_F(MorphemeConcurrency, OneDictionaryManyLattices) {
  const auto dictionary = open("unidic");
  std::string text, expected;
  for (int i = 0; i < 2000; ++i) text += "走っし東京，犬CD" + std::to_string(i) + "\n";
  MorphemeStemmer(dictionary).stemText(text, Format::Jsonl, expected);
  std::vector<std::string> outs(3);
  std::vector<std::thread> threads;
  for (std::string& out : outs)
    threads.emplace_back([&] { MorphemeStemmer(dictionary).stemText(text, Format::Jsonl, out); });
  for (std::thread& thread : threads) thread.join();
  for (const std::string& out : outs) EXPECT_EQ(out, expected);
}

}  // namespace
