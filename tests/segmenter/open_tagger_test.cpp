#include "segmenter/open_tagger.hpp"
#include <gtest/gtest.h>
#include <unistd.h>
#include <filesystem>
#include <sstream>
#include "segmenter/segmenter.hpp"
#include "testing/files.hpp"
#include "testing/mecab.hpp"

namespace {

namespace fs = std::filesystem;
using namespace ZQ::Dialog::testing;

std::string versions(std::size_t count, unsigned last = 102) {
  std::string text;
  for (std::size_t i = 0; i < count; ++i)
    text += "\n version_ " + std::to_string(i + 1 == count ? last : 102);
  return text;
}

class OpenTaggerTest : public ::testing::Test {
 protected:
  void SetUp() override {
    DIALOG_REQUIRE(Need::kDictionaryIndexer);
    dic_ = temp_.path() + "/ipadic/";
    installDictionary(dic_);
  }
  // Opens `dir`, expecting a tagger or none (and MeCab's error empty); gives the trail.
  std::string open(const std::string& dir, bool opens) {
    std::FILE* out = std::fopen((temp_.path() + "/trail").c_str(), "w");
    const TaggerPtr tagger(ZQ::Dialog::segmenter::openTagger(dir, out));
    std::fclose(out);
    EXPECT_EQ(tagger != nullptr, opens) << dir;
    EXPECT_TRUE(opens || !*MeCab::getTaggerError()) << MeCab::getTaggerError();
    if (tagger) parsed_ = tagger->parse("猫が犬");
    return readFile(temp_.path() + "/trail");
  }
  std::string head(const std::string& dir) {
    return "[" + dir + "]load_dictionary_resource\ndicdir : " + dir + "dicrc";
  }
  TempDir temp_;
  std::string dic_;
  std::string parsed_;  // the features of 猫, が and 犬
};

TEST_F(OpenTaggerTest, SuccessTrail) {
  const std::string blanks = temp_.path() + "/with blanks/", user = temp_.path() + "/u 1.dic";
  installDictionary(blanks);
  installUserDictionary(user);
  installUserDictionary(temp_.path() + "/u2.dic");
  const std::string noSlash = dic_.substr(0, dic_.size() - 1);
  EXPECT_EQ(open(dic_, true), head(dic_) + versions(2));
  EXPECT_NE(parsed_.find("犬,イヌ"), std::string::npos) << parsed_;
  EXPECT_EQ(open(noSlash, true),
            "[" + noSlash + "]load_dictionary_resource\ndicdir : " + dic_ + "dicrc" + versions(2));
  EXPECT_EQ(open(blanks, true), head(blanks) + versions(2));
  const std::string rc = readFile(dic_ + "dicrc");
  writeFile(dic_ + "dicrc", rc + "userdic = " + user + "," + temp_.path() + "/u2.dic\n");
  EXPECT_EQ(open(dic_, true), head(dic_) + versions(4));  // a version line per user dictionary
  EXPECT_NE(parsed_.find("犬,イヌ"), std::string::npos) << parsed_;
}
// Each row spoils the dictionary ("verb file [text]" steps, ";" between them);
// the trail shows how far MeCab got, then its own error.
TEST_F(OpenTaggerTest, FailuresShowMeCabsOwnError) {
  enum Stage { kResources, kAnalyser, kWriter };
  // steps, version lines, the last one, where it stops, MeCab's cause
  const std::tuple<const char*, std::size_t, unsigned, Stage, const char*> rows[] = {
      {"rm dicrc", 0, 0, kResources, "no such file or directory: "},
      {"set dicrc cost-factor 800", 0, 0, kResources, "format error: "},
      {"rm unk.dic", 0, 0, kAnalyser, "unk.dic"},
      {"version unk.dic", 1, 101, kAnalyser, "incompatible version: 101"},
      {"add char.bin x", 1, 102, kAnalyser, "invalid file size"},
      {"version sys.dic", 2, 101, kAnalyser, "incompatible version: 101"},
      {"user sys.dic", 2, 102, kAnalyser, "not a system dictionary"},
      {"add matrix.bin xx", 2, 102, kAnalyser, "file size is invalid"},
      {"add dicrc userdic = none.dic", 2, 102, kAnalyser, "no such file or directory"},
      {"user u.dic;version u.dic;add dicrc userdic = @", 3, 101, kAnalyser, "version: 101"},
      {"user u.dic;add dicrc userdic = @,none.dic", 3, 102, kAnalyser, "no such file"},
      {"set dicrc config-charset = UTF-8", 2, 102, kAnalyser, "bos-feature"},
      // A writer of a known type lets the analyser run; another type stops first.
      {"add dicrc output-format-type = wakati;rm sys.dic", 1, 102, kAnalyser, "sys.dic"},
      {"add dicrc output-format-type = m;add dicrc node-format-m = %m;rm sys.dic", 1, 102,
       kAnalyser, "sys.dic"},
      {"add dicrc output-format-type = nothing-like-it", 0, 0, kWriter, "nothing-like-it"},
  };
  for (const auto& [steps, count, last, stage, cause] : rows) {
    SCOPED_TRACE(steps);
    fs::remove_all(dic_);
    installDictionary(dic_);
    std::stringstream list(steps);
    for (std::string step; std::getline(list, step, ';');) {
      std::istringstream words(step);
      std::string verb, file, text;
      words >> verb >> file;
      std::getline(words >> std::ws, text);
      const std::string path = dic_ + file;
      const std::string userPath = dic_ + "u.dic";
      if (const auto at = text.find('@'); at != std::string::npos) text.replace(at, 1, userPath);
      if (verb == "rm") fs::remove(path);
      if (verb == "version") writeFile(path, readFile(path).replace(4, 1, 1, 'e'));  // 101
      if (verb == "add") writeFile(path, readFile(path) + text + "\n");
      if (verb == "set") writeFile(path, text + "\n");
      if (verb == "user") installUserDictionary(path);
    }
    const std::string trail = open(dic_, false);
    std::string error = mecabError(dic_, dic_);
    EXPECT_NE(error.find(cause), std::string::npos) << error;
    if (stage == kResources) {
      const std::string shown =
          fs::exists(dic_) ? head(dic_) : "[" + dic_ + "]" + "load_dictionary_resource\n";
      EXPECT_EQ(trail, shown + "ModelImpl::open " + error + "\n");
      continue;
    }
    // MeCab ends the analyser's text with a blank before the writer's empty one.
    if (stage == kWriter) error.clear();
    if (!error.empty() && error.size() < 255 && error.back() == ' ') error.pop_back();
    EXPECT_EQ(trail, head(dic_) + versions(count, last) + "ModelImpl::open  " + error);
  }
  EXPECT_EQ(open(temp_.path() + "/none/", false),
            "[" + temp_.path() + "/none/]load_dictionary_resource\nModelImpl::open " +
                mecabError(temp_.path() + "/none/", temp_.path() + "/none/") + "\n");
}
// The factory finds the dictionary in the user's data home too.
TEST_F(OpenTaggerTest, FactoryOpensTheDictionaryInTheUserDataHome) {
  const DataRoot root;
  root.linkDictionary(dic_, true);
  const TaggerPtr tagger(MeCab::createTagger());
  ASSERT_NE(tagger, nullptr);
  EXPECT_NE(std::string(tagger->parse("猫が走った")).find(",走る,"), std::string::npos);
}

}  // namespace
