// Runs the dialog-stem program as a process and checks its output and status.
#include <sys/stat.h>
#include <sys/wait.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "testing/files.hpp"
#include "testing/generated_data.hpp"
#include "testing/requirements.hpp"

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

TEST_F(DialogStem, Outputs) {
  struct Case {
    std::vector<std::string> args;
    std::string input, out;
  };
  const std::vector<Case> cases = {
      {{"The children went", "don't"}, "", "The\nchild\ngo\n\ndo\nnot\n\n"},
      {{}, "children went\r\nl'homme\n", "child\ngo\n\nl\nhomme\n\n"},     // English, "\r" dropped
      {{"--lang", "frf"}, "l'homme\nchevaux", "le\nhomme\n\ncheval\n\n"},  // no final newline
      {{"--lang", "jpj", "猫が 走った"}, "", "猫が 走った\n\n"},  // whole; the trail stays off
      {{"--words"}, "went\ndon't\n\n", "go\ndon't\n\n"},          // a word is never split
      {{"--words", "children", "Went"}, "", "child\nWent\n"},
      {{"--stream", "english"}, "Running\nJUMPS", "runjump\n"},
      {{"--format", "tsv"}, "children went\n\n'\n", "child\tgo\n\n\t\n"},
      {{"--format", "tsv", "--words"}, "went\na\tb\\\n", "go\na\\tb\\\\\n"},
      {{"--format", "jsonl"}, "don't \"x\"\n\n", "[\"do\",\"not\",\"\\\"x\\\"\"]\n[\"\"]\n"},
      {{"--format", "jsonl", "--words"}, "went\n", "[\"go\"]\n"},
      // Token paths pass bytes through: invalid UTF-8 becomes U+FFFD, controls \u escapes.
      {{"--format", "jsonl", "--words"}, "a\xFF\x01\n", "[\"a\xEF\xBF\xBD\\u0001\"]\n"},
      {{"--format", "jsonl", "--lang", "jpj"},
       "\xE7\x8C\xAB \xC3\n",
       "[\"\xE7\x8C\xAB \xEF\xBF\xBD\"]\n"},
      {{"--format", "lines", "--words"}, "went\n", "go\n"},
  };
  for (const Case& c : cases) {
    const Outcome r = run(c.args, c.input);
    EXPECT_EQ(r.out, c.out) << (c.args.empty() ? "" : c.args[0]) << " " << c.input;
    EXPECT_EQ(r.status, 0);
    // Only the Japanese factory's trail may reach standard error.
    const bool japanese = std::find(c.args.begin(), c.args.end(), "jpj") != c.args.end();
    EXPECT_TRUE(japanese || r.err.empty()) << r.err;
  }
  // The stream mode over more lines than the tool's block holds.
  std::string many, expected;
  for (int i = 0; i < 20000; ++i) many += "jumping\n", expected += "jump";
  EXPECT_EQ(run({"--stream", "english"}, many).out, expected + "\n");
}

TEST_F(DialogStem, BadUsageGivesOneLineAndStatusTwo) {
  const std::vector<std::vector<std::string>> cases = {
      {"--lang", "xx"},
      {"--format", "xml"},
      {"--jobs", "-1"},
      {"--check", "--words"},
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

TEST_F(DialogStem, HelpNamesEveryOption) {
  const Outcome r = run({"--help"});
  EXPECT_EQ(r.status, 0);
  for (const char* option : {"--lang", "--words", "--format", "--jobs", "--check", "--stream"})
    EXPECT_NE(r.out.find(option), std::string::npos) << option;
  EXPECT_EQ(run({"--version"}).out.rfind("dialog-stem ", 0), 0u);
}

TEST_F(DialogStem, JobsGiveTheSameBytes) {
  std::string input;
  for (int i = 0; i < 30000; ++i)
    input += std::to_string(i) + (i % 3 ? " children went don't\n" : " l'\xFF\n");
  const std::string one = run({"--format", "jsonl"}, input).out;
  EXPECT_EQ(std::count(one.begin(), one.end(), '\n'), 30000);
  for (const char* jobs : {"2", "3", "0"})
    EXPECT_EQ(run({"--format", "jsonl", "--jobs", jobs}, input).out, one) << jobs;
  EXPECT_EQ(run({"--words", "--jobs", "2"}, input).out, run({"--words"}, input).out);
}

TEST_F(DialogStem, FailedWritesEndWithStatusOne) {
  // /dev/full fails every write; endless input must not keep the tool going.
  for (const char* args : {"", "--words", "--format jsonl --jobs 2", "--stream english"}) {
    const std::string command = "yes went | timeout 60 " + quote(DIALOG_STEM_PATH) + " " + args +
                                " >/dev/full 2>" + scratch_.path() + "/err";
    const int raw = std::system(command.c_str());
    EXPECT_EQ(WIFEXITED(raw) ? WEXITSTATUS(raw) : -1, 1) << args;
    const std::string err = dialog_test::readFile(scratch_.path() + "/err");
    EXPECT_EQ(err, "dialog-stem: cannot write standard output: No space left on device\n") << args;
  }
}

TEST_F(DialogStem, CheckTellsWhereDataIs) {
  Outcome r = run({"--check"});
  EXPECT_EQ(r.status, 0);
  EXPECT_NE(r.out.find("found   " + data_.path() + "/share/dialog/lemmatizer/enu/lemma"),
            std::string::npos)
      << r.out;
  EXPECT_NE(r.out.find(": 4 pairs"), std::string::npos) << r.out;
  r = run({"--check", "--lang", "jpj"});  // no dictionary under the test's data root
  EXPECT_EQ(r.status, 1);
  EXPECT_NE(r.out.find("dictionary directory: not found"), std::string::npos) << r.out;
  const dialog_test::ScopedEnv empty("KU_PREFIX_PATH", scratch_.path());
  r = run({"went"});  // without data the words come back, with a warning
  EXPECT_EQ(r.out, "went\n\n");
  EXPECT_EQ(r.status, 0);
  EXPECT_NE(r.err.find("warning: no enu lemma file"), std::string::npos) << r.err;
  r = run({"--check", "--lang", "frf"});
  EXPECT_EQ(r.status, 1);
  EXPECT_NE(r.out.find("missing " + scratch_.path() + "/share/dialog/lemmatizer/frf/lemma"),
            std::string::npos)
      << r.out;
  // A FIFO would block a reader: it is named, never opened.
  const std::string fifo = scratch_.write("share/dialog/lemmatizer/frf/lemma", "");
  ASSERT_EQ(std::remove(fifo.c_str()), 0);
  ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
  r = run({"--check", "--lang", "frf"});
  EXPECT_EQ(r.status, 1);
  EXPECT_NE(r.out.find(fifo + " is not a regular file"), std::string::npos) << r.out;
  EXPECT_NE(run({"--lang", "frf", "x"}).err.find("is not a regular file"), std::string::npos);
}

TEST_F(DialogStem, OneLinePerSentenceOnTreebankText) {
  // Every sentence of the UD development sets, whatever its characters, gives
  // one line of tsv and one valid JSON array.
  DIALOG_REQUIRE(dialog_test::Need::kTreebanks);
  std::string text;
  for (const char* lang : {"enu", "frf"})
    for (const std::string& sentence : dialog_test::udSentences(lang)) text += sentence + "\n";
  const auto lines = std::count(text.begin(), text.end(), '\n');
  const std::string tsv = run({"--format", "tsv", "--lang", "frf", "--jobs", "2"}, text).out;
  EXPECT_EQ(std::count(tsv.begin(), tsv.end(), '\n'), lines);
  const std::string json = scratch_.write("json", run({"--format", "jsonl"}, text).out);
  const std::string check =
      "/usr/bin/python3 -c 'import json,sys\n"
      "n=sum(isinstance(json.loads(l),list) for l in open(sys.argv[1]))\n"
      "sys.exit(0 if n==" +
      std::to_string(lines) + " else 1)' " + json;
  EXPECT_EQ(std::system(check.c_str()), 0);
}

}  // namespace
