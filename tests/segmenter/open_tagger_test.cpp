#include "segmenter/open_tagger.hpp"

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <functional>
#include <memory>

#include <gtest/gtest.h>

#include "segmenter_support.hpp"
#include "support/test_support.hpp"

namespace {

namespace fs = std::filesystem;
using segmenter_test::CapturedOutput;
using ZQ::Dialog::segmenter::openTagger;

struct TaggerDeleter {
  void operator()(MeCab::Tagger* tagger) const { MeCab::deleteTagger(tagger); }
};
using TaggerPtr = std::unique_ptr<MeCab::Tagger, TaggerDeleter>;

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
    if (!segmenter_test::canBuildDictionaries()) GTEST_SKIP() << "mecab-dict-index not found";
    dic_ = temp_.path() + "/ipadic/";
    segmenter_test::installDictionary(dic_);
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

  dialog_test::TempDir temp_;
  std::string dic_;
  std::string trail_;
};

TEST_F(OpenTaggerTest, SuccessTrailWithAndWithoutTrailingSlash) {
  for (const std::string& dir : {dic_, dic_.substr(0, dic_.size() - 1)}) {
    const TaggerPtr tagger = open(dir);
    ASSERT_NE(tagger, nullptr) << dir;
    // The "[" line shows the directory as given; "dicrc" never gets a doubled "/".
    EXPECT_EQ(trail_, "[" + dir + "]load_dictionary_resource\ndicdir : " + dic_ + "dicrc" +
                          versions({102, 102}));
    EXPECT_EQ(segmenter_test::baseForms(*tagger, "猫が走った"),
              (std::vector<std::string>{"猫", "が", "走る", "た"}));
  }
}

TEST_F(OpenTaggerTest, PathWithBlanksOpens) {
  const std::string dir = temp_.path() + "/with blanks in/ipadic/";
  segmenter_test::installDictionary(dir);
  const TaggerPtr tagger = open(dir);
  ASSERT_NE(tagger, nullptr);
  EXPECT_EQ(trail_, "[" + dir + "]load_dictionary_resource\ndicdir : " + dir + "dicrc" +
                        versions({102, 102}));
}

TEST_F(OpenTaggerTest, UserDictionariesEachAddAVersionLine) {
  const std::string first = temp_.path() + "/first user.dic";
  const std::string second = temp_.path() + "/second.dic";
  segmenter_test::installUserDictionary(first);
  segmenter_test::installUserDictionary(second);
  segmenter_test::writeFile(dic_ + "dicrc", segmenter_test::readFile(dic_ + "dicrc") +
                                                "userdic = " + first + "," + second + "\n");
  const TaggerPtr tagger = open(dic_);
  ASSERT_NE(tagger, nullptr);
  EXPECT_EQ(trail_, "[" + dic_ + "]load_dictionary_resource\ndicdir : " + dic_ + "dicrc" +
                        versions({102, 102, 102, 102}));
  EXPECT_EQ(segmenter_test::baseForms(*tagger, "犬が走った"),
            (std::vector<std::string>{"犬", "が", "走る", "た"}));
}

TEST_F(OpenTaggerTest, DicdirInDicrcChangesNothing) {
  segmenter_test::writeFile(dic_ + "dicrc", segmenter_test::readFile(dic_ + "dicrc") +
                                                "dicdir = " + temp_.path() + "/elsewhere\n");
  EXPECT_NE(open(dic_), nullptr);
  EXPECT_EQ(trail_, "[" + dic_ + "]load_dictionary_resource\ndicdir : " + dic_ + "dicrc" +
                        versions({102, 102}));
}

// Failures while the resource files load: no version lines, and the error ends the line.
TEST_F(OpenTaggerTest, DirectoryThatDoesNotExist) {
  const std::string dir = temp_.path() + "/none/";
  expectFailure(dir);
  const std::string error = segmenter_test::mecabError(dir, dir);
  EXPECT_NE(error.find("no such file or directory: " + dir), std::string::npos) << error;
  EXPECT_EQ(trail_, "[" + dir + "]load_dictionary_resource\nModelImpl::open " + error + "\n");
}

TEST_F(OpenTaggerTest, DicrcMissingOrBroken) {
  struct Row {
    const char* name;
    std::function<void(const std::string& dicrc)> spoil;
    const char* cause;
  };
  const Row rows[] = {
      {"missing", [](const std::string& dicrc) { fs::remove(dicrc); },
       "no such file or directory: "},
      {"a line without '='",
       [](const std::string& dicrc) { segmenter_test::writeFile(dicrc, "cost-factor 800\n"); },
       "format error: "},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    segmenter_test::installDictionary(dic_);
    row.spoil(dic_ + "dicrc");
    expectFailure(dic_);
    const std::string error = segmenter_test::mecabError(dic_, dic_);
    EXPECT_NE(error.find(row.cause), std::string::npos) << error;
    EXPECT_EQ(trail_, "[" + dic_ + "]load_dictionary_resource\ndicdir : " + dic_ + "dicrc" +
                          "ModelImpl::open " + error + "\n");
  }
}

TEST_F(OpenTaggerTest, DicrcUnreadable) {
  if (geteuid() == 0) GTEST_SKIP() << "root reads files whatever their mode";
  chmod((dic_ + "dicrc").c_str(), 0);
  expectFailure(dic_);
  const std::string error = segmenter_test::mecabError(dic_, dic_);
  EXPECT_EQ(trail_, "[" + dic_ + "]load_dictionary_resource\ndicdir : " + dic_ + "dicrc" +
                        "ModelImpl::open " + error + "\n");
}

// Failures of the analyser: the versions read so far, then its error with no line end.
TEST_F(OpenTaggerTest, DictionaryFilesMissingBrokenOrIncompatible) {
  using segmenter_test::patchField;
  using segmenter_test::readFile;
  using segmenter_test::writeFile;
  const std::string user = temp_.path() + "/user.dic";
  const auto useUserDictionaries = [](const std::string& dic, const std::string& list) {
    writeFile(dic + "dicrc", readFile(dic + "dicrc") + "userdic = " + list + "\n");
  };
  struct Row {
    const char* name;
    std::function<void(const std::string& dic)> spoil;
    std::vector<unsigned> versions;
    const char* cause;
  };
  const Row rows[] = {
      {"unk.dic missing",
       [](const std::string& dic) { fs::remove(dic + "unk.dic"); },
       {},
       "unk.dic"},
      {"unk.dic too short",
       [](const std::string& dic) { fs::resize_file(dic + "unk.dic", 99); },
       {},
       "dictionary file is broken"},
      {"unk.dic version 101",
       [](const std::string& dic) { patchField(dic + "unk.dic", kVersionField, 101); },
       {101},
       "incompatible version: 101"},
      {"char.bin missing",
       [](const std::string& dic) { fs::remove(dic + "char.bin"); },
       {102},
       "char_property"},  // MeCab names no cause here
      {"char.bin of the wrong size",
       [](const std::string& dic) {
         writeFile(dic + "char.bin", readFile(dic + "char.bin") + "x");
       },
       {102},
       "invalid file size"},
      {"sys.dic missing",
       [](const std::string& dic) { fs::remove(dic + "sys.dic"); },
       {102},
       "sys.dic"},
      {"sys.dic longer than its magic number says",  // fails before the version is read
       [](const std::string& dic) { writeFile(dic + "sys.dic", readFile(dic + "sys.dic") + "x"); },
       {102},
       "dictionary file is broken"},
      {"sys.dic version 101",
       [](const std::string& dic) { patchField(dic + "sys.dic", kVersionField, 101); },
       {102, 101},
       "incompatible version: 101"},
      {"sys.dic sections not filling the file",  // fails after the version is read
       [](const std::string& dic) {
         const std::string bytes = readFile(dic + "sys.dic");
         const unsigned featureSize =
             static_cast<unsigned char>(bytes[32]) | static_cast<unsigned char>(bytes[33]) << 8 |
             static_cast<unsigned char>(bytes[34]) << 16 |
             static_cast<unsigned>(static_cast<unsigned char>(bytes[35])) << 24;
         patchField(dic + "sys.dic", kFeatureSizeField, featureSize + 1);
       },
       {102, 102},
       "dictionary file is broken"},
      {"sys.dic a user dictionary",
       [](const std::string& dic) { segmenter_test::installUserDictionary(dic + "sys.dic"); },
       {102, 102},
       "not a system dictionary"},
      {"matrix.bin missing",
       [](const std::string& dic) { fs::remove(dic + "matrix.bin"); },
       {102, 102},
       "matrix.bin"},
      {"matrix.bin of the wrong size",
       [](const std::string& dic) {
         writeFile(dic + "matrix.bin", readFile(dic + "matrix.bin") + "xx");
       },
       {102, 102},
       "file size is invalid"},
      {"user dictionary missing",
       [&](const std::string& dic) { useUserDictionaries(dic, user + ".none"); },
       {102, 102},
       "no such file or directory"},
      {"user dictionary version 101",
       [&](const std::string& dic) {
         patchField(user, kVersionField, 101);
         useUserDictionaries(dic, user);
       },
       {102, 102, 101},
       "incompatible version: 101"},
      {"second user dictionary missing",
       [&](const std::string& dic) { useUserDictionaries(dic, user + "," + user + ".none"); },
       {102, 102, 102},
       "no such file or directory"},
      {"user dictionary a system dictionary",
       [&](const std::string& dic) {
         fs::copy_file(dic + "sys.dic", user, fs::copy_options::overwrite_existing);
         useUserDictionaries(dic, user);
       },
       {102, 102, 102},
       "not a user dictionary"},
      {"dicrc without bos-feature",
       [](const std::string& dic) { writeFile(dic + "dicrc", "config-charset = UTF-8\n"); },
       {102, 102},
       "bos-feature"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    fs::remove_all(dic_);
    segmenter_test::installDictionary(dic_);
    segmenter_test::installUserDictionary(user);
    row.spoil(dic_);
    expectFailure(dic_);
    std::string error = segmenter_test::mecabError(dic_, dic_);
    EXPECT_NE(error.find(row.cause), std::string::npos) << error;
    // MeCab ends the text with a blank before the writer's empty error, unless
    // its 255-character limit cut that blank off.
    if (error.size() < 255 && error.back() == ' ') error.pop_back();
    EXPECT_EQ(trail_, "[" + dic_ + "]load_dictionary_resource\ndicdir : " + dic_ + "dicrc" +
                          versions(row.versions) + "ModelImpl::open  " + error);
  }
}

TEST_F(OpenTaggerTest, WriterFailureShowsTheAnalysersEmptyError) {
  segmenter_test::writeFile(dic_ + "dicrc", segmenter_test::readFile(dic_ + "dicrc") +
                                                "output-format-type = nothing-like-it\n");
  expectFailure(dic_);
  EXPECT_NE(segmenter_test::mecabError(dic_, dic_).find("nothing-like-it"), std::string::npos);
  EXPECT_EQ(trail_, "[" + dic_ + "]load_dictionary_resource\ndicdir : " + dic_ + "dicrc" +
                        "ModelImpl::open  ");
}

// An empty lookup result: the resource file "MECAB_DEFAULT_RC" of the working
// directory, and nothing else, ever stands in.
class EmptyDirectoryTest : public OpenTaggerTest {
 protected:
  void SetUp() override {
    OpenTaggerTest::SetUp();
    if (IsSkipped()) return;
    work_ = temp_.path() + "/work";
    fs::create_directories(work_);
    // MeCab's own fallbacks would find a working dictionary here.
    const std::string home = temp_.path() + "/home";
    fs::create_directories(home);
    segmenter_test::writeFile(home + "/.mecabrc", "dicdir = " + dic_ + "\n");
    home_ = std::make_unique<dialog_test::ScopedEnv>("HOME", home);
    mecabrc_ = std::make_unique<dialog_test::ScopedEnv>("MECABRC", home + "/.mecabrc");
  }

  std::string work_;
  std::unique_ptr<dialog_test::ScopedEnv> home_;
  std::unique_ptr<dialog_test::ScopedEnv> mecabrc_;
};

TEST_F(EmptyDirectoryTest, NoDefaultResourceFile) {
  const segmenter_test::WorkingDirectory cd(work_);
  expectFailure("");
  const std::string error = segmenter_test::mecabError("MECAB_DEFAULT_RC", ".");
  EXPECT_NE(error.find("no such file or directory: MECAB_DEFAULT_RC"), std::string::npos) << error;
  EXPECT_EQ(trail_, "[]load_dictionary_resource\nModelImpl::open " + error + "\n");
}

TEST_F(EmptyDirectoryTest, DefaultResourceFileAndDictionaryInWorkingDirectory) {
  segmenter_test::installDictionary(work_);
  segmenter_test::writeFile(work_ + "/MECAB_DEFAULT_RC", "; read, but sets nothing\n");
  const segmenter_test::WorkingDirectory cd(work_);
  const TaggerPtr tagger = open("");
  ASSERT_NE(tagger, nullptr);
  EXPECT_EQ(trail_, "[]load_dictionary_resource\ndicdir : ./dicrc" + versions({102, 102}));
}

TEST_F(EmptyDirectoryTest, DefaultResourceFileWithoutDicrc) {
  segmenter_test::writeFile(work_ + "/MECAB_DEFAULT_RC", "");
  const segmenter_test::WorkingDirectory cd(work_);
  expectFailure("");
  const std::string error = segmenter_test::mecabError("MECAB_DEFAULT_RC", ".");
  EXPECT_NE(error.find("no such file or directory: ./dicrc"), std::string::npos) << error;
  EXPECT_EQ(trail_, "[]load_dictionary_resource\ndicdir : ./dicrcModelImpl::open " + error + "\n");
}

TEST_F(EmptyDirectoryTest, BrokenDefaultResourceFile) {
  segmenter_test::installDictionary(work_);
  segmenter_test::writeFile(work_ + "/MECAB_DEFAULT_RC", "not a setting\n");
  const segmenter_test::WorkingDirectory cd(work_);
  expectFailure("");
  const std::string error = segmenter_test::mecabError("MECAB_DEFAULT_RC", ".");
  EXPECT_NE(error.find("format error"), std::string::npos) << error;
  EXPECT_EQ(trail_, "[]load_dictionary_resource\nModelImpl::open " + error + "\n");
}

TEST_F(OpenTaggerTest, LastErrorIsClearedAfterEveryFailure) {
  // A failure that MeCab reports with a long text, then one with a short text.
  fs::remove(dic_ + "sys.dic");
  expectFailure(dic_);
  expectFailure(temp_.path() + "/none");
}

}  // namespace
