#include <gtest/gtest.h>

#include <map>
#include <vector>

#include "stemmer/stemmer_p.hpp"
#include "support/test_support.hpp"

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
      {"CRLF equals LF",
       "went\r\ngo\r\nchildren\r\nchild\r\n",
       {{q("went"), q("go")}, {q("children"), q("child")}}},
      {"accented UTF-8",
       "mangeaient\nmanger\nœufs\nœuf\nétés\nété\n",
       {{q("mangeaient"), q("manger")}, {q("œufs"), q("œuf")}, {q("étés"), q("été")}}},
      {"byte-order mark", "\xEF\xBB\xBFwent\ngo\n", {{q("went"), q("go")}}},
      {"empty file", "", {}},
      {"one blank line", "\n", {{q(""), q("")}}},
  };
  for (const Case& c : cases) EXPECT_EQ(load(c.contents), c.expected) << c.name;
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
  {
    dialog_test::DataRoot data;
    data.write("lemmatizer/frf/lemma", "yeux\nœil\n");
    ZQ::Dialog::StemmerPrivate unused("jpj");
    EXPECT_TRUE(unused.getLemDic("enu").empty());
  }
  {
    // A directory where the file is expected cannot be opened as a file.
    dialog_test::DataRoot data;
    data.write("lemmatizer/enu/lemma/inner", "x");
    ZQ::Dialog::StemmerPrivate unused("jpj");
    EXPECT_TRUE(unused.getLemDic("enu").empty());
  }
}

TEST(LemmaDictionary, KeysFollowQStringOrder) {
  const Dictionary dictionary = load("b\n1\nB\n2\né\n3\na\n4\n");
  std::vector<QString> keys;
  for (const auto& entry : dictionary) keys.push_back(entry.first);
  EXPECT_EQ(keys, (std::vector<QString>{q("B"), q("a"), q("b"), q("é")}));  // UTF-16 code units
}

}  // namespace
