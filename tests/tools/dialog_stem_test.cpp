// Runs the dialog-stem program as a process and checks its output and status.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <string>

#include "testing/files.hpp"
#include "testing/mecab.hpp"
#include "tool_runner.hpp"

namespace {

using namespace ZQ::Dialog::testing;

const char kWriteError[] = "dialog-stem: cannot write standard output: No space left on device\n";

TEST_F(DialogStem, Outputs) {
  struct Case {
    Args args;
    std::string input, out;
  };
  std::string lines, stems;  // 200 KiB: --stream hands the library 64 KiB at a time
  for (int i = 0; i < 20000; ++i) lines += std::to_string(i) + "Jumps\n";
  for (int i = 0; i < 20000; ++i) stems += std::to_string(i) + "jump";
  const std::vector<Case> cases = {
      {{"The children went", "don't", "went\r", "a\rb"},
       "",
       "The\nchild\ngo\n\ndo\nnot\n\ngo\n\na\rb\n\n"},
      {{}, "children went\r\nl'homme\n", "child\ngo\n\nl\nhomme\n\n"},     // English, "\r" dropped
      {{"--lang", "frf"}, "l'homme\nchevaux", "le\nhomme\n\ncheval\n\n"},  // no final newline
      {{"--lang", "jpj", "猫が 走った"}, "", "猫が 走った\n\n"},    // whole; the trail stays off
      {{"--words"}, "went\ndon't\n\nWent", "go\ndon't\n\nWent\n"},  // a word is never split
      {{"--stream", "english"}, "Running\nJUMPS", "runjump\n"},
      {{"--stream", "english"}, lines, stems + "\n"},  // each line's stem once, in order
      {{"--format", "tsv"}, "children went\n\n'\n", "child\tgo\n\n\t\n"},
      {{"--format", "tsv", "--words"}, "went\na\tb\\\n", "go\na\\tb\\\\\n"},
      {{"--format", "tsv", "a\nb\\\tc went"}, "", "a\\nb\\\\\\tc\tgo\n"},
      {{"--format", "jsonl"}, "don't \"x\"\n\n", "[\"do\",\"not\",\"\\\"x\\\"\"]\n[\"\"]\n"},
      {{"--format", "jsonl", "--words", "a\nb"}, "", "[\"a\\u000ab\"]\n"},
      // Whole sentences pass bytes through: valid sequences of each length
      // stay, anything else (lone or bad continuation bytes, overlong forms,
      // surrogates, past U+10FFFF, cut) becomes one U+FFFD a byte.
      {{"--format", "jsonl", "--lang", "jpj"},
       "\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF\xF0\x90\x80\x80"
       "\xF4\x8F\xBF\xBF|\x80|\xC1\xBF|\xC2\x41|\xE0\x9F\xBF|\xED\xA0\x80|\xF0\x8F\xBF\xBF|"
       "\xF4\x90\x80\x80|\xF5|\xFF|\x1F |\xE2\x82",
       "[\"\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF\xF0\x90\x80\x80"
       "\xF4\x8F\xBF\xBF|\xEF\xBF\xBD|\xEF\xBF\xBD\xEF\xBF\xBD|\xEF\xBF\xBD"
       "A|"
       "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD|\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD|"
       "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD|\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"
       "\xEF\xBF\xBD|\xEF\xBF\xBD|\xEF\xBF\xBD|\\u001f |\xEF\xBF\xBD\xEF\xBF\xBD\"]\n"},
      {{"--jobs", "0", "went"}, "", "go\n\n"},  // both ends of the range
      {{"--jobs", "1024", "went"}, "", "go\n\n"},
  };
  for (const Case& c : cases) {
    const Outcome r = run(c.args, c.input);
    EXPECT_EQ(r.out, c.out) << c.args.size() << " " << c.input;
    EXPECT_EQ(r.status, 0);
    // Only the Japanese factory's trail may reach standard error.
    const bool japanese = std::find(c.args.begin(), c.args.end(), "jpj") != c.args.end();
    EXPECT_TRUE(japanese || r.err.empty()) << r.err;
  }
}

TEST_F(DialogStem, BadUsageGivesOneLineAndStatusTwo) {
  // Quoted arguments with line ends still give one line; --progress only
  // where standard input is stemmed.
  std::vector<Args> cases = {{"--lang", "e\nn\ru"},
                             {"--bogus\nx"},
                             {"--check", "--progress"},
                             {"--stream", "english", "--progress"},
                             {"--progress", "x"}};
  for (const char* args : {"--lang xx",
                           "--format xml",
                           "--jobs -1",
                           "--jobs 1025",
                           "--jobs x",
                           "--bogus",
                           "--lang",
                           "--check --words",
                           "--check --jobs 1",
                           "--check --format tsv",
                           "--check x",
                           "--stream nosuch",
                           "--stream",
                           "--stream english --words",
                           "--stream english text",
                           "--stream english --lang enu",
                           "--stream english --format tsv",
                           "--stream english --jobs 1",
                           "--stream english --check",
                           "--morphemes",
                           "--lang frf --morphemes",
                           "--dictionary ipadic",
                           "--lang jpj --morphemes --dictionary jumandic",
                           "--lang jpj --morphemes --words",
                           "--check --lang jpj --morphemes"})
    cases.push_back(split(args));
  for (const Args& args : cases) {
    const Outcome r = run(args);
    EXPECT_EQ(r.status, 2) << args.front();
    EXPECT_EQ(r.out, "") << args.front();
    EXPECT_EQ(std::count(r.err.begin(), r.err.end(), '\n'), 1) << r.err;
    EXPECT_EQ(r.err.rfind("dialog-stem: ", 0), 0u) << r.err;
  }
}
// Closed, full or never-ending streams: status, out ("*": any) and err.
TEST_F(DialogStem, StreamsClosedFullOrEndless) {
  const std::string closedIn = "dialog-stem: standard input is closed\n";
  struct Row {
    const char* args;
    std::string input, redirect, source;
    int status;
    std::string out, err;
  };
  const Row rows[] = {
      {"went", "", ">/dev/full", "", 1, "", kWriteError},  // a short output, at the last flush
      {"--words", "went\n", ">/dev/full", "", 1, "", kWriteError},
      {"--stream english", "went\n", ">/dev/full", "", 1, "", kWriteError},
      {"--check", "", ">/dev/full", "", 1, "", kWriteError},
      {"--help", "", ">/dev/full", "", 1, "", kWriteError},
      {"--version", "", ">/dev/full", "", 1, "", kWriteError},
      // Endless input to a full device must not keep the tool going.
      {"", "", ">/dev/full", "yes went |", 1, "", kWriteError},
      {"--words", "", ">/dev/full", "yes went |", 1, "", kWriteError},
      {"--format jsonl --jobs 2", "", ">/dev/full", "yes went |", 1, "", kWriteError},
      {"--stream english", "", ">/dev/full", "yes went |", 1, "", kWriteError},
      {"went", "", ">&-", "", 1, "", "dialog-stem: standard output is closed\n"},
      {"", "", "<&-", "", 1, "", closedIn},
      {"--stream english", "", "<&-", "", 1, "", closedIn},
      {"", "", "<.", "", 1, "", "dialog-stem: cannot read standard input: Is a directory\n"},
      {"went", "", "<&-", "", 0, "go\n\n", ""},  // input closed but not read
      {"--check", "", "<&-", "", 0, "*", ""},
      // --version and --help (below) never read their input, even one that never ends.
      {"--version", "", "<fifo", "", 0, "dialog-stem " DIALOG_VERSION "\n", ""},
  };
  for (const Row& row : rows) {
    const Outcome r = run(split(row.args), row.input, row.redirect, row.source);
    const std::string name = row.args + std::string(" ") + row.redirect;
    EXPECT_EQ(r.status, row.status) << name;
    EXPECT_TRUE(row.out == "*" || r.out == row.out) << name << ": " << r.out;
    EXPECT_EQ(r.err, row.err) << name;
  }
  const std::string help = run({"--help"}, "", "<fifo").out;  // names every option
  for (const char* option : {"--lang", "--words", "--format", "--jobs", "--check", "--stream",
                             "--progress", "--morphemes", "--dictionary"})
    EXPECT_NE(help.find(option), std::string::npos) << option;
}

TEST_F(DialogStem, JobsGiveTheSameBytes) {
  const std::string big(200, 'W');  // the lemma of "w"
  data_.write("lemmatizer/enu/lemma", "went\ngo\nchildren\nchild\ndon\ndo\nt\nnot\nw\n" + big);
  std::string input, expected;
  for (int i = 0; i < 100000; ++i) {  // 2.6 MB: several input blocks
    input += std::to_string(i) + (i % 3 ? " children went don't\n" : " l'\xFF\n");
    expected += "[\"" + std::to_string(i) +
                (i % 3 ? "\",\"child\",\"go\",\"do\",\"not\"]\n" : "\",\"l\",\"\xEF\xBF\xBD\"]\n");
    if (i == 50000) {
      // A block the library is slow to stem (a mark opens a later piece), then
      // a line of 2 MB whose output is written while it is stemmed, at once.
      const std::string mark = "\xEF\xBB\xBF";
      std::string slow, slowRecord = "[";
      for (int w = 0; w < 40; ++w) slow += "went ", slowRecord += "\"go\",";
      slow += mark + "b\n", slowRecord += "\"" + mark + "b\"]\n";
      for (int l = 0; l < 1200; ++l) input += slow, expected += slowRecord;
      std::string line = "w", record = "[\"" + big + "\"";
      for (int w = 1; w < 430000; ++w)
        line += w < 10000 ? " w" : " went", record += w < 10000 ? ",\"" + big + "\"" : ",\"go\"";
      input += line + "\n", expected += record + "]\n";
    }
  }
  const std::string one = run({"--format", "jsonl"}, input).out;
  EXPECT_EQ(one, expected);  // lines cut by a block's end are whole
  for (const char* jobs : {"2", "3", "0"})
    EXPECT_EQ(run({"--format", "jsonl", "--jobs", jobs}, input).out, one) << jobs;
  EXPECT_EQ(run({"--words", "--jobs", "2"}, input).out, run({"--words"}, input).out);
}

TEST_F(DialogStem, AnswersEachLineBeforeMoreInputComes) {
  // A coprocess writes one line and waits for its answer; the read's timeout
  // only ends a tool that would wait for more input.
  const std::string command = "cd " + scratch_.path() + " && mkfifo q r && (timeout 60 " +
                              quote(DIALOG_STEM_PATH) + " <q >r &) && exec 5>q 6<r && " +
                              "echo went >&5 && read -t 30 reply <&6 && [ \"$reply\" = go ]";
  EXPECT_EQ(std::system(("bash -c " + quote(command)).c_str()), 0);
}

TEST_F(DialogStem, CheckTellsWhereDataIs) {
  DIALOG_REQUIRE(Need::kDictionaryIndexer);
  const std::string share = data_.path() + "/share/dialog/";
  installDictionary(data_.path() + "/tiny");
  data_.linkDictionary(data_.path() + "/tiny");
  const std::pair<const char*, std::string> rows[] = {
      {"enu", "lemma file " + share + "lemmatizer/enu/lemma: 4 pairs\n"},
      {"frf", "lemma file " + share + "lemmatizer/frf/lemma: 2 pairs\n"},
      {"jpj",
       "--morphemes --dictionary unidic: not found (Debian: dialog-stemmer-data-jpj-unidic)\n"}};
  Outcome r;
  for (const auto& [lang, last] : rows) {
    r = run({"--check", "--lang", lang});
    EXPECT_EQ(r.status, 0) << lang;
    EXPECT_NE(r.out.find("  found   " + share), std::string::npos) << r.out;
    EXPECT_EQ(r.out.substr(r.out.rfind('\n', r.out.size() - 2) + 1), last) << r.out;
  }
  // A directory, a FIFO or a device where the lemma file should be.
  for (const char* make : {"mkdir -p", "mkfifo", "ln -s /dev/null"}) {
    const std::string lemma = share + "lemmatizer/enu/lemma";
    ASSERT_EQ(std::system(("rm -rf " + lemma + " && " + make + " " + lemma).c_str()), 0);
    r = run({"--check"});
    EXPECT_EQ(r.status, 1) << make;
    EXPECT_EQ(r.out.substr(r.out.rfind('\n', r.out.size() - 2) + 1),
              "the enu lemma file " + lemma + " is not a regular file\n")
        << make;
  }
  const ScopedEnv empty("KU_PREFIX_PATH", scratch_.path());
  r = run({"went"});  // without data the words come back, with a warning
  EXPECT_EQ(r.out, "went\n\n");
  EXPECT_EQ(r.status, 0);
  EXPECT_NE(r.err.find("warning: no enu lemma file"), std::string::npos) << r.err;
  for (const char* lang : {"frf", "jpj"}) {
    r = run({"--check", "--lang", lang});
    EXPECT_EQ(r.status, 1);
    EXPECT_NE(r.out.find("missing " + scratch_.path()), std::string::npos) << r.out;
    EXPECT_EQ(r.out.substr(r.out.size() - 12), ": not found\n") << r.out;
  }
}

TEST_F(DialogStem, MorphemesAnyInputAnyJobs) {
  DIALOG_REQUIRE(Need::kDictionaryIndexer);
  const std::string& dir = data_.path();
  for (const auto& [name, layout] :
       {std::pair{"ipadic", Layout::kIpadic}, {"unidic", Layout::kUnidic}}) {
    installDictionary(dir + "/" + name, layout);
    data_.linkDictionary(dir + "/" + name, false, name);
  }
  EXPECT_EQ(run({"--lang", "jpj", "--morphemes", "猫が走った", "ネコ"}).out,
            "猫\nが\n走る\nた\n\nネコ\n\n");
  EXPECT_EQ(run({"--lang", "jpj", "--morphemes", "--dictionary", "unidic", "--format", "tsv"},
                "ウイルス，東京\n")
                .out,
            "ウイルス\t，\t東京\n");
  // Bad bytes, empty and blank lines, CR and a line of 3 MB, over many blocks:
  // one record a line, the same bytes on any number of threads.
  static const char kFiveLines[] = "猫\r\n\n \t\n\xFF\x80猫\n猫\0が\r\rた\n";
  std::string input, huge;
  while (huge.size() < (3 << 20)) huge += "猫が走った";
  for (int i = 0; i < 60000; ++i)
    input += i == 30000 ? huge + "\n" : std::string(kFiveLines, sizeof kFiveLines - 1);
  for (const char* format : {"tsv", "jsonl"}) {
    const Outcome one = run({"--lang", "jpj", "--morphemes", "--format", format}, input);
    EXPECT_EQ(one.status, 0);
    EXPECT_EQ(std::count(one.out.begin(), one.out.end(), '\n'), 5 * 59999 + 1) << format;
    for (const char* jobs : {"2", "3"})
      EXPECT_EQ(
          run({"--lang", "jpj", "--morphemes", "--format", format, "--jobs", jobs}, input).out,
          one.out)
          << jobs;
  }
  const Outcome checked = run({"--check", "--lang", "jpj"});
  EXPECT_EQ(checked.status, 0);
  for (const char* line :
       {"ipadic: %ipadic/, ipadic layout\n", "unidic: %unidic/, UniDic layout\n"}) {
    std::string expected = line;
    expected.replace(expected.find('%'), 1, dir + "/share/dialog/data/");
    EXPECT_NE(checked.out.find("--morphemes --dictionary " + expected), std::string::npos)
        << checked.out;
  }

  // A dictionary missing or of a third layout: one line that names it, status 1.
  std::filesystem::remove(dir + "/share/dialog/data/unidic");
  Outcome r = run({"--lang", "jpj", "--morphemes", "--dictionary", "unidic", "猫"});
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err.rfind("dialog-stem: dictionary unidic not found: ", 0), 0u) << r.err;
  installDictionary(dir + "/other", Layout::kOther);
  data_.linkDictionary(dir + "/other", false, "unidic");
  r = run({"--lang", "jpj", "--morphemes", "--dictionary", "unidic", "猫"});
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.out, "");
  EXPECT_EQ(std::count(r.err.begin(), r.err.end(), '\n'), 1) << r.err;
  EXPECT_NE(r.err.find("dictionary unidic at "), std::string::npos) << r.err;
  EXPECT_EQ(run({"--check", "--lang", "jpj"}).status, 1);
}

}  // namespace
