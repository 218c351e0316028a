#include "segmenter/open_tagger.hpp"
#include "segmenter/segmenter.hpp"

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <functional>

#include <gtest/gtest.h>

#include "testing/files.hpp"
#include "testing/mecab.hpp"
#include "testing/requirements.hpp"

namespace {

namespace fs = std::filesystem;
using namespace dialog_test;
using ZQ::Dialog::segmenter::openTagger;

// Header field offsets of a compiled dictionary.
constexpr std::size_t kVersionField = 4;
constexpr std::size_t kFeatureSizeField = 32;

std::string versions(const std::vector<unsigned>& numbers) {
  std::string text;
  for (const unsigned number : numbers) text += "\n version_ " + std::to_string(number);
  return text;
}

class OpenTaggerTest : public ::testing::Test {
 protected:
  void SetUp() override {
    DIALOG_REQUIRE(Need::kDictionaryIndexer);
    dic_ = temp_.path() + "/ipadic/";
    installDictionary(dic_);
  }

  // Opens on `dir`, keeping the trail; checks nothing reached standard error.
  TaggerPtr open(const std::string& dir) {
    CapturedOutput output;
    TaggerPtr tagger(openTagger(dir));
    output.finish();
    trail_ = output.out();
    EXPECT_EQ(output.err(), "");
    return tagger;
  }

  // Expects a failed open on `dir` with MeCab's last error left empty.
  void expectFailure(const std::string& dir) {
    const TaggerPtr tagger = open(dir);
    EXPECT_EQ(tagger, nullptr);
    EXPECT_STREQ(MeCab::getTaggerError(), "");
  }

  TempDir temp_;
  std::string dic_;
  std::string trail_;
};

TEST_F(OpenTaggerTest, SuccessTrail) {
  const std::string blanks = temp_.path() + "/with blanks in/ipadic/";
  installDictionary(blanks);
  const std::string first = temp_.path() + "/first user.dic", second = temp_.path() + "/u.dic";
  installUserDictionary(first);
  installUserDictionary(second);
  const std::string rc = readFile(dic_ + "dicrc");
  struct Row {
    std::string dir, dicrc, shown;  // shown: the directory the "[" line gives
    std::vector<unsigned> versions;
    const char* sentence;
  };
  const Row rows[] = {
      {dic_, rc, dic_, {102, 102}, "猫"},
      // The "[" line shows the directory as given; "dicrc" never gets a doubled "/".
      {dic_.substr(0, dic_.size() - 1), rc, dic_.substr(0, dic_.size() - 1), {102, 102}, "猫"},
      {blanks, rc, blanks, {102, 102}, "猫"},
      {dic_, rc + "dicdir = " + temp_.path() + "/elsewhere\n", dic_, {102, 102}, "猫"},
      // Each user dictionary adds a version line.
      {dic_, rc + "userdic = " + first + "," + second + "\n", dic_, {102, 102, 102, 102}, "犬"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.dir + "\n" + row.dicrc);
    writeFile(row.dir + (row.dir.back() == '/' ? "" : "/") + "dicrc", row.dicrc);
    const TaggerPtr tagger = open(row.dir);
    ASSERT_NE(tagger, nullptr);
    const std::string dicdir = row.dir.back() == '/' ? row.dir : row.dir + "/";
    EXPECT_EQ(trail_, "[" + row.shown + "]load_dictionary_resource\ndicdir : " + dicdir + "dicrc" +
                          versions(row.versions));
    EXPECT_EQ(baseForms(*tagger, row.sentence).front(), row.sentence);
  }
  EXPECT_EQ(baseForms(*open(dic_), "犬が走った"),
            (std::vector<std::string>{"犬", "が", "走る", "た"}));
}

// Failures while the resource files load: no version lines, and the error ends the line.
TEST_F(OpenTaggerTest, ResourceFileFailures) {
  struct Row {
    const char* name;
    std::function<std::string()> spoil;  // returns the directory to open
    const char* cause;
  };
  const Row rows[] = {
      {"no such directory", [&] { return temp_.path() + "/none/"; }, "no such file or directory: "},
      {"dicrc missing", [&] { return fs::remove(dic_ + "dicrc"), dic_; },
       "no such file or directory: "},
      {"a line without '='", [&] { return writeFile(dic_ + "dicrc", "cost-factor 800\n"), dic_; },
       "format error: "},
      {"dicrc unreadable", [&] { return chmod((dic_ + "dicrc").c_str(), 0), dic_; }, ""},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    if (!*row.cause && !missing(Need::kUnprivileged).empty()) continue;  // root reads anyway
    installDictionary(dic_);
    const std::string dir = row.spoil();
    expectFailure(dir);
    const std::string error = mecabError(dir, dir);
    EXPECT_NE(error.find(row.cause), std::string::npos) << error;
    const std::string dicrc = fs::exists(dir) ? "dicdir : " + dir + "dicrc" : "";
    EXPECT_EQ(trail_, "[" + dir + "]load_dictionary_resource\n" + dicrc + "ModelImpl::open " +
                          error + "\n");
  }
}

// Failures of the analyser: the versions read so far, then its error with no line end.
TEST_F(OpenTaggerTest, DictionaryFilesMissingBrokenOrIncompatible) {
  using Spoil = std::function<void()>;
  const std::string user = temp_.path() + "/user.dic";
  const auto remove = [&](const char* file) -> Spoil { return [=] { fs::remove(dic_ + file); }; };
  const auto append = [&](const char* file, const std::string& text) -> Spoil {
    return [=] { writeFile(dic_ + file, readFile(dic_ + file) + text); };
  };
  const auto version = [&](const std::string& path) -> Spoil {
    return [=] { patchField(path, kVersionField, 101); };
  };
  const auto userdic = [&](const std::string& list) {
    return append("dicrc", "userdic = " + list + "\n");
  };
  struct Row {
    const char* name;
    std::vector<Spoil> spoil;
    std::vector<unsigned> versions;
    const char* cause;
  };
  const Row rows[] = {
      {"unk.dic missing", {remove("unk.dic")}, {}, "unk.dic"},
      {"unk.dic too short",
       {[&] { fs::resize_file(dic_ + "unk.dic", 99); }},
       {},
       "dictionary file is broken"},
      {"unk.dic version 101", {version(dic_ + "unk.dic")}, {101}, "incompatible version: 101"},
      {"char.bin missing", {remove("char.bin")}, {102}, "char_property"},  // MeCab names no cause
      {"char.bin of the wrong size", {append("char.bin", "x")}, {102}, "invalid file size"},
      {"sys.dic missing", {remove("sys.dic")}, {102}, "sys.dic"},
      // Longer than its magic number says: fails before the version is read.
      {"sys.dic too long", {append("sys.dic", "x")}, {102}, "dictionary file is broken"},
      {"sys.dic version 101", {version(dic_ + "sys.dic")}, {102, 101}, "incompatible version: 101"},
      // Sections not filling the file: fails after the version is read.
      {"sys.dic sections short",
       {[&] {
         const std::string bytes = readFile(dic_ + "sys.dic");
         unsigned size = 0;
         for (int i = 3; i >= 0; --i)
           size = size << 8 | static_cast<unsigned char>(bytes[kFeatureSizeField + i]);
         patchField(dic_ + "sys.dic", kFeatureSizeField, size + 1);
       }},
       {102, 102},
       "dictionary file is broken"},
      {"sys.dic a user dictionary",
       {[&] { installUserDictionary(dic_ + "sys.dic"); }},
       {102, 102},
       "not a system dictionary"},
      {"matrix.bin missing", {remove("matrix.bin")}, {102, 102}, "matrix.bin"},
      {"matrix.bin of the wrong size",
       {append("matrix.bin", "xx")},
       {102, 102},
       "file size is invalid"},
      {"user dictionary missing",
       {userdic(user + ".none")},
       {102, 102},
       "no such file or directory"},
      {"user dictionary version 101",
       {version(user), userdic(user)},
       {102, 102, 101},
       "incompatible version: 101"},
      {"second user dictionary missing",
       {userdic(user + "," + user + ".none")},
       {102, 102, 102},
       "no such file or directory"},
      {"user dictionary a system dictionary",
       {[&] { fs::copy_file(dic_ + "sys.dic", user, fs::copy_options::overwrite_existing); },
        userdic(user)},
       {102, 102, 102},
       "not a user dictionary"},
      {"dicrc without bos-feature",
       {[&] { writeFile(dic_ + "dicrc", "config-charset = UTF-8\n"); }},
       {102, 102},
       "bos-feature"},
      // A writer with a node format of its own lets the analyser run.
      {"wakati writer", {append("dicrc", "output-format-type = wakati\n"), remove("sys.dic")}, {102},
       "sys.dic"},
      {"own writer",
       {append("dicrc", "output-format-type = mine\nnode-format-mine = %m\n"), remove("sys.dic")},
       {102},
       "sys.dic"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    fs::remove_all(dic_);
    installDictionary(dic_);
    installUserDictionary(user);
    for (const Spoil& spoil : row.spoil) spoil();
    expectFailure(dic_);
    std::string error = mecabError(dic_, dic_);
    EXPECT_NE(error.find(row.cause), std::string::npos) << error;
    // MeCab ends the text with a blank before the writer's empty error, unless
    // its 255-character limit cut that blank off.
    if (error.size() < 255 && error.back() == ' ') error.pop_back();
    EXPECT_EQ(trail_, "[" + dic_ + "]load_dictionary_resource\ndicdir : " + dic_ + "dicrc" +
                          versions(row.versions) + "ModelImpl::open  " + error);
  }
}

// A writer failure shows the analyser's empty error.
TEST_F(OpenTaggerTest, WriterFailure) {
  writeFile(dic_ + "dicrc", readFile(dic_ + "dicrc") + "output-format-type = nothing-like-it\n");
  expectFailure(dic_);
  EXPECT_NE(mecabError(dic_, dic_).find("nothing-like-it"), std::string::npos);
  EXPECT_EQ(trail_, "[" + dic_ + "]load_dictionary_resource\ndicdir : " + dic_ + "dicrc" +
                        "ModelImpl::open  ");
}

// The factory finds the dictionary in the user's data home too.
TEST_F(OpenTaggerTest, FactoryOpensTheDictionaryInTheUserDataHome) {
  const DataRoot root;
  const std::string dir = root.linkDictionary(dic_, root.userData() + "/dialog");
  CapturedOutput output;
  const TaggerPtr tagger(MeCab::createTagger());
  output.finish();
  ASSERT_NE(tagger, nullptr);
  EXPECT_EQ(output.out(), "[" + dir + "]load_dictionary_resource\ndicdir : " + dir + "dicrc" +
                              versions({102, 102}));
  EXPECT_EQ(baseForms(*tagger, "猫が走った"), (std::vector<std::string>{"猫", "が", "走る", "た"}));
}

// An empty lookup result: the resource file "MECAB_DEFAULT_RC" of the working
// directory, and nothing else, ever stands in, though MeCab's own fallbacks
// (HOME's .mecabrc, $MECABRC) would find a working dictionary here.
TEST_F(OpenTaggerTest, EmptyDirectoryUsesOnlyTheWorkingDirectorysDefaultResourceFile) {
  const std::string work = temp_.path() + "/work", home = temp_.path() + "/home";
  fs::create_directories(home);
  writeFile(home + "/.mecabrc", "dicdir = " + dic_ + "\n");
  const ScopedEnv homeEnv("HOME", home), mecabrc("MECABRC", home + "/.mecabrc");
  struct Row {
    const char* name;
    const char* defaultRc;  // nullptr: no MECAB_DEFAULT_RC
    bool dictionary;        // whether the working directory holds a dictionary
    std::string trail;      // "" marks success; else the trail up to MeCab's error
    const char* cause;
  };
  const std::string failed = "[]load_dictionary_resource\nModelImpl::open ";
  const Row rows[] = {
      {"no default resource file", nullptr, true, failed,
       "no such file or directory: MECAB_DEFAULT_RC"},
      {"no dicrc", "", false, "[]load_dictionary_resource\ndicdir : ./dicrcModelImpl::open ",
       "no such file or directory: ./dicrc"},
      {"broken default resource file", "not a setting\n", true, failed, "format error"},
      {"default resource file and dictionary", "; read, but sets nothing\n", true, "", ""},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    fs::remove_all(work);
    fs::create_directories(work);
    if (row.dictionary) installDictionary(work);
    if (row.defaultRc) writeFile(work + "/MECAB_DEFAULT_RC", row.defaultRc);
    const WorkingDirectory cd(work);
    if (row.trail.empty()) {
      EXPECT_NE(open(""), nullptr);
      EXPECT_EQ(trail_, "[]load_dictionary_resource\ndicdir : ./dicrc" + versions({102, 102}));
      continue;
    }
    expectFailure("");
    const std::string error = mecabError("MECAB_DEFAULT_RC", ".");
    EXPECT_NE(error.find(row.cause), std::string::npos) << error;
    EXPECT_EQ(trail_, row.trail + error + "\n");
  }
}

}  // namespace
