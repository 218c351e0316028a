#include <sys/stat.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <vector>

#include "stemmer/stemmer_p.hpp"
#include "testing/files.hpp"
#include "testing/requirements.hpp"

using Dictionary = std::map<QString, QString>;

namespace {

QString q(const char* utf8) { return QString::fromUtf8(utf8); }

Dictionary load(const std::string& code = "enu") {
  return ZQ::Dialog::StemmerPrivate("jpj").getLemDic(code);
}

TEST(LemmaDictionary, FileRules) {
  struct Case {
    const char* name;
    std::string contents;
    Dictionary expected;
  };
  const std::vector<Case> cases = {
      {"pairs", "went\ngo\nété\nêtre\n", {{q("went"), q("go")}, {q("été"), q("être")}}},
      {"no final newline", "went\ngo", {{q("went"), q("go")}}},
      {"odd line count", "went\ngo\nchildren\n", {{q("went"), q("go")}, {q("children"), q("")}}},
      {"last pair wins", "ran\nrun\nran\nruns\n", {{q("ran"), q("runs")}}},
      {"blank line shifts pairing", "a\n\nb\nc\n", {{q("a"), q("")}, {q("b"), q("c")}}},
      {"spaces and case kept", "  Went\ngo \n", {{q("  Went"), q("go ")}}},
      {"empty file", "", {}},
  };
  for (const Case& c : cases) {
    dialog_test::DataRoot data;
    data.write("lemmatizer/enu/lemma", c.contents);
    EXPECT_EQ(load(), c.expected) << c.name;
  }
}

// Inputs on which a reader of its own most easily departs from QTextStream.
TEST(LemmaDictionary, SameMapAsPlainReadLineLoop) {
  const std::string step(16384, 'a');  // the stream decodes 16 KiB at a time
  const std::pair<const char*, std::string> files[] = {
      {"CRLF", "went\r\ngo\r\n"},
      {"lone CR inside a line", "we\rnt\ngo\r\r\n"},
      {"CR only", "\r"},
      {"CR after the last line end", "went\ngo\n\r\r"},
      {"byte-order mark only", "\xEF\xBB\xBF"},
      {"byte-order mark twice", "\xEF\xBB\xBF\xEF\xBB\xBF" "a\nb\n"},
      {"UTF-16 byte-order mark", std::string("\xFF\xFEw\0\n\0g\0\n\0", 10)},
      {"NUL bytes", std::string("we\0nt\ng\0o\n\0\n", 12)},
      {"invalid UTF-8", "\xC3(\n\xFF\xFE\n\xED\xA0\x80\n\xF4\x90\x80\x80\n"},
      {"cut sequence at the end", "went\ngo\n\xE2\x82"},
      {"cut sequence only", "\xE2"},
      {"unsorted with duplicates", "b\n1\na\n2\nb\n3\nc\n4\na\n5\n"},
      {"blank lines", "\n\n\na\n\n"},
      {"one blank line", "\n"},
      {"lines longer than the read step", std::string(300000, 'x') + "\ny\n"},
      {"line end on a step boundary, CR after", step.substr(1) + "\n" + "\r"},
      {"line end on a step boundary, cut sequence after", step.substr(3) + "\n1\n" + "\xC3"},
      {"line end on a step boundary, text after", step.substr(1) + "\nb\n"},
      {"sequence across a step boundary", step.substr(1) + "\xC3\xA9\n\xC3\xA9\n"},
      {"CR across a step boundary", step.substr(2) + "\n\r\nx\n"},
  };
  for (const auto& [name, contents] : files) {
    dialog_test::DataRoot data;
    const Dictionary plain =
        dialog_test::plainLemmaLoad(data.write("lemmatizer/enu/lemma", contents));
    const Dictionary library = load();
    EXPECT_EQ(library, plain) << name;
    // Null and empty strings compare equal; the loaders must agree on which.
    auto l = library.begin();
    for (auto p = plain.begin(); l != library.end() && p != plain.end(); ++l, ++p)
      EXPECT_EQ(l->second.isNull(), p->second.isNull()) << name;
  }
}

TEST(LemmaDictionary, FileChosenByCodeAndFoundInTheUserDataHome) {
  dialog_test::DataRoot data;
  data.write("lemmatizer/enu/lemma", "went\ngo\n");
  data.write("lemmatizer/frf/lemma", "yeux\nœil\n");
  EXPECT_EQ(load("frf"), (Dictionary{{q("yeux"), q("œil")}}));
  for (const char* code : {"enu", "jpj", "", "FRF"})  // every other code reads English
    EXPECT_EQ(load(code), (Dictionary{{q("went"), q("go")}})) << code;
  const dialog_test::DataRoot user;  // an empty prefix; the file in the user's data home
  std::filesystem::create_directories(user.userData() + "/dialog/lemmatizer/enu");
  dialog_test::writeFile(user.userData() + "/dialog/lemmatizer/enu/lemma", "été\nêtre\n");
  EXPECT_EQ(load(), (Dictionary{{q("été"), q("être")}}));
}

TEST(LemmaDictionary, MissingUnreadableOrSpecialFileGivesEmptyMap) {
  {
    dialog_test::DataRoot data;
    data.write("lemmatizer/frf/lemma", "yeux\nœil\n");
    EXPECT_TRUE(load().empty());
    data.write("lemmatizer/enu/lemma/inner", "x");  // a directory
    EXPECT_TRUE(load().empty());
  }
  {
    // A FIFO without a writer would block an open() for reading forever.
    dialog_test::DataRoot data;
    const std::string path = data.write("lemmatizer/enu/lemma", "");
    ASSERT_EQ(std::remove(path.c_str()), 0);
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    EXPECT_TRUE(load().empty());
  }
  if (dialog_test::missing(dialog_test::Need::kUnprivileged).empty()) {
    dialog_test::DataRoot data;
    ASSERT_EQ(chmod(data.write("lemmatizer/enu/lemma", "went\ngo\n").c_str(), 0), 0);
    EXPECT_TRUE(load().empty());
  }
}

TEST(LemmaDictionary, FiftyMegabyteLine) {
  const std::size_t size = 50u << 20;
  dialog_test::DataRoot data;
  data.write("lemmatizer/enu/lemma", std::string(size, 'w'));  // no line end
  const Dictionary map = load();
  ASSERT_EQ(map.size(), 1U);  // one word form, with an empty lemma
  EXPECT_EQ(map.begin()->first.size(), static_cast<int>(size));
  EXPECT_TRUE(map.begin()->second.isEmpty());
}

}  // namespace
