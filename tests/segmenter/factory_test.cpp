#include <filesystem>

#include <gtest/gtest.h>

#include "segmenter/segmenter.hpp"
#include "segmenter_support.hpp"
#include "stemmer/stemmer.hpp"
#include "stemmer/stemmer_p.hpp"
#include "support/test_support.hpp"

namespace {

namespace fs = std::filesystem;
using segmenter_test::CapturedOutput;

std::string successTrail(const std::string& dir) {
  return "[" + dir + "]load_dictionary_resource\ndicdir : " + dir +
         "dicrc\n version_ 102\n version_ 102";
}

// Installs `target` as the data directory "data/ipadic" of package "dialog",
// the way the install step does: as a symbolic link.
std::string linkDictionary(const dialog_test::DataRoot& root, const std::string& target) {
  const fs::path link = fs::path(root.path()) / "share/dialog/data/ipadic";
  fs::create_directories(link.parent_path());
  fs::create_directory_symlink(target, link);
  return link.string() + "/";  // the lookup keeps the "/" of "data/ipadic/"
}

TEST(SegmenterFactory, OpensTheDictionaryOfTheDialogPackage) {
  if (!segmenter_test::canBuildDictionaries()) GTEST_SKIP() << "mecab-dict-index not found";
  dialog_test::TempDir dictionaries;
  segmenter_test::installDictionary(dictionaries.path() + "/tiny");
  const dialog_test::DataRoot root;
  const std::string dir = linkDictionary(root, dictionaries.path() + "/tiny");

  CapturedOutput output;
  MeCab::Tagger* tagger = MeCab::createTagger();
  output.finish();
  ASSERT_NE(tagger, nullptr);
  EXPECT_EQ(output.out(), successTrail(dir));
  EXPECT_EQ(output.err(), "");
  EXPECT_EQ(segmenter_test::baseForms(*tagger, "猫が走った"),
            (std::vector<std::string>{"猫", "が", "走る", "た"}));
  MeCab::deleteTagger(tagger);
}

TEST(SegmenterFactory, FailureReturnsNullAndLeavesNoError) {
  const dialog_test::DataRoot root;
  const std::string dir = root.path() + "/share/dialog/data/ipadic/";
  fs::create_directories(dir);  // exists, but holds no "dicrc"

  CapturedOutput output;
  MeCab::Tagger* tagger = MeCab::createTagger();
  output.finish();
  EXPECT_EQ(tagger, nullptr);
  EXPECT_STREQ(MeCab::getTaggerError(), "");
  const std::string prefix =
      "[" + dir + "]load_dictionary_resource\ndicdir : " + dir + "dicrcModelImpl::open ";
  EXPECT_EQ(output.out().substr(0, prefix.size()), prefix);
  EXPECT_NE(output.out().find("no such file or directory: " + dir + "dicrc\n"), std::string::npos)
      << output.out();
  EXPECT_EQ(output.err(), "");
}

TEST(SegmenterFactory, JapaneseStemmerHoldsATaggerOnTheIpaDictionary) {
  if (!fs::exists(DIALOG_IPADIC_DIR "/sys.dic")) {
    GTEST_SKIP() << "no IPA dictionary at " DIALOG_IPADIC_DIR;
  }
  const dialog_test::DataRoot root;
  const std::string dir = linkDictionary(root, DIALOG_IPADIC_DIR);

  CapturedOutput output;
  ZQ::Dialog::Stemmer stemmer("jpj");
  output.finish();
  EXPECT_EQ(output.out(), successTrail(dir));
  EXPECT_EQ(output.err(), "");
  ASSERT_NE(stemmer.impl, nullptr);
  EXPECT_EQ(stemmer.impl->lang, 0);
  EXPECT_EQ(stemmer.impl->stemmer, nullptr);
  ASSERT_NE(stemmer.impl->tagger, nullptr);
  EXPECT_EQ(segmenter_test::baseForms(*stemmer.impl->tagger, "猫が走った"),
            (std::vector<std::string>{"猫", "が", "走る", "た"}));
  // The stemmer never frees its tagger; this test does, to stay leak-free.
  MeCab::deleteTagger(stemmer.impl->tagger);
}

}  // namespace
