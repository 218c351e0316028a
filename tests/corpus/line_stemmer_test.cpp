// LineStemmer gives what the library's own calls give, byte for byte.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "corpus/line_stemmer.hpp"
#include "stemmer/stemmer_p.hpp"
#include "testing/files.hpp"
#include "testing/log_capture.hpp"

namespace {

using dialog_corpus::Format;
using dialog_corpus::LineStemmer;
using Stems = std::vector<std::string>;

struct Line {
  const char* name;
  std::string text;
};
const std::vector<Line> kLines = {
    {"empty", ""},  // one element: the empty word's lemma
    {"plain", "The dogs went"},
    {"separators", " don't  Went '"},  // leading, doubled and trailing
    {"multibyte", "caf\xC3\xA9 CAF\xC3\x89 \xE7\x8C\xAB"},
    {"u2019", "don\xE2\x80\x99t went"},  // not a separator
    {"invalid", "went \xFF dogs"},
    {"truncated", "dogs \xC3"},
    {"surrogate", "\xED\xA0\x80 went"},
    {"overlong", "\xC0\xAF went"},
    {"noncharacters", "\xEF\xBF\xBE \xEF\xBF\xBF \xF4\x8F\xBF\xBF"},  // valid for Qt too
    {"nul", std::string("went\0 dogs", 10)},                          // the rest is ignored
    {"cr", "went\rdogs \r"},
    {"bom first",
     "\xEF\xBB\xBF"
     "dogs went"},                             // dropped by the decoder
    {"bom mid-word", "dogs\xEF\xBB\xBFwent"},  // kept
    {"bom opens word",
     "dogs \xEF\xBB\xBF"
     "cats \xEF\xBB\xBFmice"},  // kept, not by stemword
    {"bom after apostrophe", "dogs'\xEF\xBB\xBF"},
    {"escapes", "a\tb \"went\" \\ \x01"},
    {"long word", std::string(100, 'x') + " went " + std::string(100, 'x')},  // never cached
};

class LineStemmerTest : public testing::Test {
 protected:
  LineStemmerTest() {
    data_.write("lemmatizer/enu/lemma",
                "went\ngo\nWent\ngo\ndogs\ndog\ndon\ndo\nt\nnot\n\nEMPTY\ncaf\xC3\xA9\n"
                "CAF\xC3\x89\ncats\n\xEF\xBB\xBF"
                "cat\n");
  }
  // Every line through `lines` against the library: sentences and words, in each format.
  static void expectLibraryOutput(ZQ::Dialog::Stemmer& stemmer, LineStemmer& lines) {
    for (const Line& line : kLines) {
      Stems expected{"kept"}, actual{"kept"};
      stemmer.stem_sentence(line.text, expected);
      lines.stemSentence(line.text, actual);
      EXPECT_EQ(actual, expected) << line.name;
      std::string word = line.text, stem;
      stemmer.stemword(word, stem);
      for (const Format format : {Format::Lines, Format::Tsv, Format::Jsonl}) {
        std::string want, got;
        dialog_corpus::formatRecord(format, false, Stems(expected.begin() + 1, expected.end()),
                                    want);
        dialog_corpus::formatRecord(format, true, {stem}, want);
        lines.stemRecord(line.text, format, false, got);
        lines.stemRecord(line.text, format, true, got);
        EXPECT_EQ(got, want) << line.name;
      }
    }
  }
  dialog_test::DataRoot data_;
};

TEST_F(LineStemmerTest, SameAsTheLibraryOnTrickyLines) {
  const dialog_test::LogCapture quiet("LibStemmer");  // "Unsupported language"
  ZQ::Dialog::Stemmer english("enu"), unsupported("xx");
  LineStemmer lines(english), tiny(english, 2);  // `tiny` empties its cache again and again
  for (int pass = 0; pass < 2; ++pass) {         // the second pass takes stems from the cache
    expectLibraryOutput(english, lines);
    expectLibraryOutput(english, tiny);
  }
  LineStemmer whole(unsupported);
  expectLibraryOutput(unsupported, whole);
  // A caller's own rx is honoured by the library, and so here.
  const QRegExp saved = ZQ::Dialog::rx;
  ZQ::Dialog::rx = QRegExp(QStringLiteral("[ o]"));
  expectLibraryOutput(english, lines);
  ZQ::Dialog::rx = saved;
}

TEST_F(LineStemmerTest, TextIsCutIntoLinesAndDrained) {
  ZQ::Dialog::Stemmer english("enu");
  LineStemmer lines(english);
  std::string expected;
  for (const char* line : {"The dogs", "went", "", "don't"})
    lines.stemRecord(line, Format::Jsonl, false, expected);
  std::string out = "before\n";
  lines.stemText("The dogs\r\nwent\n\ndon't", Format::Jsonl, false, out);  // no final line end
  EXPECT_EQ(out, "before\n" + expected);
  std::string drained;
  lines.setDrain(5, [&](std::string& text) {
    EXPECT_GE(text.size(), 5u);
    drained += text;
    text.clear();
  });
  out.clear();
  lines.stemText("The dogs\nwent\n\ndon't\n", Format::Jsonl, false, out);
  EXPECT_EQ(drained + out, expected);
  EXPECT_LT(out.size(), 5u);
}

}  // namespace
