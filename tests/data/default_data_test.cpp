// Checks the lemma files that the build produced (staged under the build
// tree's share/dialog/) on a handful of common inflected words.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "stemmer/stemmer.hpp"
#include "support/test_support.hpp"

namespace {

std::string stem(ZQ::Dialog::Stemmer& stemmer, std::string word) {
  std::string result;
  stemmer.stemword(word, result);
  return result;
}

class DefaultData : public testing::Test {
 protected:
  dialog_test::TempDir home_;
  dialog_test::ScopedEnv prefix_{"KU_PREFIX_PATH", DIALOG_STAGED_PREFIX};
  dialog_test::ScopedEnv xdg_{"XDG_DATA_HOME", home_.path()};
};

TEST_F(DefaultData, EnglishCommonInflections) {
  ZQ::Dialog::Stemmer english("enu");
  EXPECT_EQ(stem(english, "went"), "go");
  EXPECT_EQ(stem(english, "children"), "child");
  EXPECT_EQ(stem(english, "dogs"), "dog");
  EXPECT_EQ(stem(english, "was"), "be");
  EXPECT_EQ(stem(english, "Went"), "go");  // sentence-initial capital
  std::vector<std::string> stems;
  english.stem_sentence("The children went home", stems);
  EXPECT_EQ(stems, (std::vector<std::string>{"the", "child", "go", "home"}));
}

TEST_F(DefaultData, FrenchCommonInflections) {
  ZQ::Dialog::Stemmer french("frf");
  EXPECT_EQ(stem(french, "mangeaient"), "manger");
  EXPECT_EQ(stem(french, "chevaux"), "cheval");
  EXPECT_EQ(stem(french, "l"), "le");  // what remains of the elided "l'"
  std::vector<std::string> stems;
  french.stem_sentence("Les chevaux mangeaient l'herbe", stems);
  EXPECT_EQ(stems, (std::vector<std::string>{"le", "cheval", "manger", "le", "herbe"}));
}

}  // namespace
