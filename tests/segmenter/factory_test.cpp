#include <filesystem>

#include <gtest/gtest.h>

#include "segmenter/segmenter.hpp"
#include "stemmer/stemmer.hpp"
#include "stemmer/stemmer_p.hpp"
#include "testing/files.hpp"
#include "testing/mecab.hpp"
#include "testing/requirements.hpp"

namespace {

using namespace dialog_test;
using Forms = std::vector<std::string>;

std::string successTrail(const std::string& dir) {
  return "[" + dir + "]load_dictionary_resource\ndicdir : " + dir +
         "dicrc\n version_ 102\n version_ 102";
}

TEST(SegmenterFactory, OpensTheDictionaryOfTheDialogPackage) {
  DIALOG_REQUIRE(Need::kDictionaryIndexer);
  const DataRoot root;
  installDictionary(root.path() + "/tiny");
  const std::string dir = root.linkDictionary(root.path() + "/tiny");
  CapturedOutput output;
  const TaggerPtr tagger(MeCab::createTagger());
  output.finish();
  ASSERT_NE(tagger, nullptr);
  EXPECT_EQ(output.out(), successTrail(dir));
  EXPECT_EQ(output.err(), "");
  EXPECT_EQ(baseForms(*tagger, "猫が走った"), (Forms{"猫", "が", "走る", "た"}));
}

TEST(SegmenterFactory, FailureReturnsNullAndLeavesNoError) {
  const DataRoot root;
  const std::string dir = root.path() + "/share/dialog/data/ipadic/";
  std::filesystem::create_directories(dir);  // exists, but holds no "dicrc"
  CapturedOutput output;
  EXPECT_EQ(MeCab::createTagger(), nullptr);
  output.finish();
  EXPECT_STREQ(MeCab::getTaggerError(), "");
  EXPECT_EQ(output.out(), "[" + dir + "]load_dictionary_resource\ndicdir : " + dir +
                              "dicrcModelImpl::open " + mecabError(dir, dir) + "\n");
  EXPECT_EQ(output.err(), "");
}

TEST(SegmenterFactory, JapaneseStemmerHoldsATaggerOnTheIpaDictionary) {
  DIALOG_REQUIRE(Need::kIpaDictionary);
  const DataRoot root;
  const std::string dir = root.linkDictionary(ipadicDir());
  CapturedOutput output;
  ZQ::Dialog::Stemmer stemmer("jpj");
  output.finish();
  EXPECT_EQ(output.out(), successTrail(dir));
  EXPECT_EQ(output.err(), "");
  EXPECT_EQ(stemmer.impl->lang, 0);
  EXPECT_EQ(stemmer.impl->stemmer, nullptr);
  // The stemmer never frees its tagger; this test does, to stay leak-free.
  const TaggerPtr tagger(stemmer.impl->tagger);
  ASSERT_NE(tagger, nullptr);
  EXPECT_EQ(baseForms(*tagger, "猫が走った"), (Forms{"猫", "が", "走る", "た"}));
}

}  // namespace
