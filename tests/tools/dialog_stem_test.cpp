// Runs the dialog-stem program as a process and checks its output and status.
#include <sys/wait.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <string>

#include "support/test_support.hpp"

namespace {

struct Outcome {
  int status;
  std::string out, err;
};

std::string quote(const std::string& argument) {
  std::string quoted = "'";
  for (char c : argument) quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return quoted + "'";
}

class DialogStem : public testing::Test {
 protected:
  DialogStem() {
    data_.write("lemmatizer/enu/lemma", "went\ngo\nchildren\nchild\ndon\ndo\nt\nnot\n");
    data_.write("lemmatizer/frf/lemma", "l\nle\nchevaux\ncheval\n");
  }
  Outcome run(const std::vector<std::string>& args, const std::string& input = "") {
    const std::string in = scratch_.write("in", input);
    std::string command = quote(DIALOG_STEM_PATH);
    for (const std::string& arg : args) command += " " + quote(arg);
    command += " <" + in + " >" + scratch_.path() + "/out 2>" + scratch_.path() + "/err";
    const int raw = std::system(command.c_str());
    return {WIFEXITED(raw) ? WEXITSTATUS(raw) : -1, dialog_test::readFile(scratch_.path() + "/out"),
            dialog_test::readFile(scratch_.path() + "/err")};
  }
  dialog_test::DataRoot data_;
  dialog_test::TempDir scratch_;
};

TEST_F(DialogStem, SentencesFromArgumentsAndStandardInput) {
  Outcome r = run({"The children went", "don't"});
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(r.out, "The\nchild\ngo\n\ndo\nnot\n\n");
  EXPECT_EQ(r.err, "");
  r = run({}, "children went\r\nl'homme\n");
  EXPECT_EQ(r.out, "child\ngo\n\nl\nhomme\n\n");  // English by default, "\r" dropped
  r = run({"--lang", "frf"}, "l'homme\nchevaux");
  EXPECT_EQ(r.out, "le\nhomme\n\ncheval\n\n");  // last line without newline
  EXPECT_EQ(r.status, 0);
}

TEST_F(DialogStem, WordsAndStreamModes) {
  Outcome r = run({"--words"}, "went\ndon't\n\n");
  EXPECT_EQ(r.out, "go\ndon't\n\n");  // a word is never split
  r = run({"--words", "children", "Went"});
  EXPECT_EQ(r.out, "child\nWent\n");
  r = run({"--stream", "english"}, "Running\nJUMPS");
  EXPECT_EQ(r.out, "runjump\n");
  EXPECT_EQ(r.status, 0);
  std::string many;
  for (int i = 0; i < 20000; ++i) many += "jumping\n";  // crosses the tool's block size
  std::string expected;
  for (int i = 0; i < 20000; ++i) expected += "jump";
  EXPECT_EQ(run({"--stream", "english"}, many).out, expected + "\n");
}

TEST_F(DialogStem, JapaneseTrailStaysOffStandardOutput) {
  const Outcome r = run({"--lang", "jpj", "猫が 走った"});
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(r.out, "猫が 走った\n\n");  // Japanese sentences come back whole
}

TEST_F(DialogStem, BadUsageGivesOneLineAndStatusTwo) {
  const std::vector<std::vector<std::string>> cases = {
      {"--lang", "xx"},
      {"--bogus"},
      {"--lang"},
      {"--stream", "nosuch"},
      {"--stream"},
      {"--stream", "english", "--words"},
      {"--stream", "english", "text"},
  };
  for (const auto& args : cases) {
    const Outcome r = run(args);
    EXPECT_EQ(r.status, 2) << args[0];
    EXPECT_EQ(r.out, "") << args[0];
    EXPECT_EQ(std::count(r.err.begin(), r.err.end(), '\n'), 1) << r.err;
    EXPECT_EQ(r.err.rfind("dialog-stem: ", 0), 0u) << r.err;
  }
}

TEST_F(DialogStem, HelpAndVersion) {
  Outcome r = run({"--help"});
  EXPECT_EQ(r.status, 0);
  EXPECT_NE(r.out.find("--lang"), std::string::npos);
  EXPECT_NE(r.out.find("--stream"), std::string::npos);
  r = run({"--version"});
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(r.out.rfind("dialog-stem ", 0), 0u);
}

}  // namespace
