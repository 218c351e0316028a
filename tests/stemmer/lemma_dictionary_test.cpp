#include <gtest/gtest.h>
#include <sys/stat.h>

#include <clocale>
#include <map>
#include <vector>

#include <QTextCodec>

#include "stemmer/stemmer_p.hpp"
#include "testing/files.hpp"
#include "testing/generated_data.hpp"
#include "testing/memory.hpp"
#include "testing/requirements.hpp"

using Dictionary = std::map<QString, QString>;

namespace {

// Loads `contents` as the English lemma file.
Dictionary load(const std::string& contents, const std::string& code = "enu") {
  dialog_test::DataRoot data;
  data.write(code == "frf" ? "lemmatizer/frf/lemma" : "lemmatizer/enu/lemma", contents);
  ZQ::Dialog::StemmerPrivate unused("jpj");
  return unused.getLemDic(code);
}

QString q(const char* utf8) { return QString::fromUtf8(utf8); }

TEST(LemmaDictionary, FileRules) {
  struct Case {
    const char* name;
    std::string contents;
    Dictionary expected;
  };
  const std::vector<Case> cases = {
      {"pairs", "went\ngo\nchildren\nchild\n", {{q("went"), q("go")}, {q("children"), q("child")}}},
      {"no final newline", "went\ngo", {{q("went"), q("go")}}},
      {"odd line count", "went\ngo\nchildren\n", {{q("went"), q("go")}, {q("children"), q("")}}},
      {"last pair wins", "ran\nrun\nran\nruns\n", {{q("ran"), q("runs")}}},
      {"blank line shifts pairing", "a\n\nb\nc\n", {{q("a"), q("")}, {q("b"), q("c")}}},
      {"spaces kept", "  went\ngo \n", {{q("  went"), q("go ")}}},
      {"case-distinct keys", "Went\nGo\nwent\ngo\n", {{q("Went"), q("Go")}, {q("went"), q("go")}}},
      {"accented UTF-8",
       "mangeaient\nmanger\nœufs\nœuf\nétés\nété\n",
       {{q("mangeaient"), q("manger")}, {q("œufs"), q("œuf")}, {q("étés"), q("été")}}},
      {"empty file", "", {}},
      {"one blank line", "\n", {{q(""), q("")}}},
  };
  for (const Case& c : cases) EXPECT_EQ(load(c.contents), c.expected) << c.name;
}

// Loads `contents` through the library and through the plain readLine loop.
void expectSameAsPlainLoop(const std::string& name, const std::string& contents) {
  dialog_test::DataRoot data;
  const std::string path = data.write("lemmatizer/enu/lemma", contents);
  ZQ::Dialog::StemmerPrivate unused("jpj");
  const Dictionary library = unused.getLemDic("enu");
  const Dictionary plain = dialog_test::plainLemmaLoad(path);
  EXPECT_EQ(library, plain) << name;
  // Null and empty strings compare equal; the loaders must agree on which.
  auto l = library.begin();
  for (auto p = plain.begin(); l != library.end() && p != plain.end(); ++l, ++p)
    EXPECT_EQ(l->second.isNull(), p->second.isNull()) << name << ": " << p->first.toStdString();
}

// Inputs on which a reader of its own most easily departs from QTextStream.
const std::vector<std::pair<std::string, std::string>>& trickyFiles() {
  static const std::string step(16384, 'a');  // the stream decodes 16 KiB at a time
  static const std::vector<std::pair<std::string, std::string>> files = {
      {"CRLF", "went\r\ngo\r\n"},
      {"lone CR inside a line", "we\rnt\ngo\r\r\n"},
      {"CR only", "\r"},
      {"CR after the last line end", "went\ngo\n\r\r"},
      {"byte-order mark only", "\xEF\xBB\xBF"},
      {"byte-order mark twice",
       "\xEF\xBB\xBF\xEF\xBB\xBF"
       "a\nb\n"},
      {"UTF-16 byte-order mark", std::string("\xFF\xFEw\0\n\0g\0\n\0", 10)},
      {"NUL bytes", std::string("we\0nt\ng\0o\n\0\n", 12)},
      {"invalid UTF-8", "\xC3(\n\xFF\xFE\n\xED\xA0\x80\n\xF4\x90\x80\x80\n"},
      {"cut sequence at the end", "went\ngo\n\xE2\x82"},
      {"cut sequence only", "\xE2"},
      {"unsorted with duplicates", "b\n1\na\n2\nb\n3\nc\n4\na\n5\n"},
      {"no final newline, odd lines", "a\n1\nb"},
      {"blank lines", "\n\n\na\n\n"},
      {"one huge line", std::string(300000, 'x') + "\ny\n"},
      {"line end on a step boundary, CR after", step.substr(1) + "\n" + "\r"},
      {"line end on a step boundary, cut sequence after", step.substr(3) + "\n1\n" + "\xC3"},
      {"line end on a step boundary, text after", step.substr(1) + "\nb\n"},
      {"sequence across a step boundary", step.substr(1) + "\xC3\xA9\n\xC3\xA9\n"},
      {"CR across a step boundary", step.substr(2) + "\n\r\nx\n"},
  };
  return files;
}

TEST(LemmaDictionary, SameMapAsPlainReadLineLoop) {
  for (const auto& [name, contents] : trickyFiles()) expectSameAsPlainLoop(name, contents);
}

TEST(LemmaDictionary, SameMapAsPlainLoopUnderLatin1Locale) {
  DIALOG_REQUIRE(dialog_test::Need::kLatin1Locale);
  std::setlocale(LC_ALL, "fr_FR.ISO-8859-1");
  // Debian's Qt 5 keeps UTF-8 as its locale codec under this locale; both
  // loaders ask Qt, so they agree whatever it answers. Forcing Latin-1 then
  // checks that the loader really decodes with the codec Qt names.
  for (const char* codec : {"", "ISO-8859-1"}) {
    if (*codec) QTextCodec::setCodecForLocale(QTextCodec::codecForName(codec));
    for (const auto& [name, contents] : trickyFiles()) expectSameAsPlainLoop(name, contents);
    expectSameAsPlainLoop("Latin-1 text", "\xE9t\xE9s\n\xE9t\xE9\n");
  }
  QTextCodec::setCodecForLocale(nullptr);
  std::setlocale(LC_ALL, "C");
}

TEST(LemmaDictionary, SpecialFilesAreNotOpened) {
  // A FIFO without a writer would block an open() for reading forever.
  dialog_test::DataRoot data;
  const std::string path = data.write("lemmatizer/enu/lemma", "");
  ASSERT_EQ(std::remove(path.c_str()), 0);
  ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
  ZQ::Dialog::StemmerPrivate unused("jpj");
  EXPECT_TRUE(unused.getLemDic("enu").empty());
}

TEST(LemmaDictionary, FileChosenByCode) {
  dialog_test::DataRoot data;
  data.write("lemmatizer/enu/lemma", "went\ngo\n");
  data.write("lemmatizer/frf/lemma", "yeux\nœil\n");
  ZQ::Dialog::StemmerPrivate unused("jpj");
  const Dictionary english = {{q("went"), q("go")}};
  EXPECT_EQ(unused.getLemDic("frf"), (Dictionary{{q("yeux"), q("œil")}}));
  // Every code but "frf" reads the English file.
  for (const char* code : {"enu", "jpj", "", "FRF", "xx"})
    EXPECT_EQ(unused.getLemDic(code), english);
}

TEST(LemmaDictionary, MissingOrUnreadableFileGivesEmptyMap) {
  ZQ::Dialog::StemmerPrivate unused("jpj");
  {
    dialog_test::DataRoot data;
    data.write("lemmatizer/frf/lemma", "yeux\nœil\n");
    EXPECT_TRUE(unused.getLemDic("enu").empty());
  }
  {
    // A directory where the file is expected cannot be opened as a file.
    dialog_test::DataRoot data;
    data.write("lemmatizer/enu/lemma/inner", "x");
    EXPECT_TRUE(unused.getLemDic("enu").empty());
  }
  if (dialog_test::missing(dialog_test::Need::kUnprivileged).empty()) {
    dialog_test::DataRoot data;
    ASSERT_EQ(chmod(data.write("lemmatizer/enu/lemma", "went\ngo\n").c_str(), 0), 0);
    EXPECT_TRUE(unused.getLemDic("enu").empty());
  }
}

TEST(LemmaDictionary, FiftyMegabyteLineInProportionateMemory) {
  const std::size_t size = 50u << 20;
  dialog_test::DataRoot data;
  data.write("lemmatizer/enu/lemma", std::string(size, 'w'));  // no line end
  const std::size_t before = dialog_test::peakRss();
  const Dictionary map = ZQ::Dialog::StemmerPrivate("jpj").getLemDic("enu");
  ASSERT_EQ(map.size(), 1U);  // one word form, with an empty lemma
  EXPECT_EQ(map.begin()->first.size(), static_cast<int>(size));
  EXPECT_TRUE(map.begin()->second.isEmpty());
  // The line is held once as UTF-16 (twice its size) plus reading buffers.
  EXPECT_TRUE(dialog_test::grewInProportion(before, size, 6));
}

}  // namespace
