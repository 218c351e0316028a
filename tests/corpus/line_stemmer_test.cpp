// LineStemmer gives what the library's own calls give, byte for byte.
#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "corpus/line_stemmer.hpp"
#include "testing/files.hpp"

using ZQ::Dialog::corpus::Format;
using ZQ::Dialog::corpus::LineStemmer;
using Stems = std::vector<std::string>;

static const std::vector<std::pair<const char*, std::string>> kLines = {
    {"empty", ""},                                              // one element: the empty word's
    {"separators", " don't  Went '"},                           // leading, doubled and trailing
    {"multibyte", "caf\xC3\xA9 CAF\xC3\x89 don\xE2\x80\x99t"},  // U+2019 does not cut
    {"invalid", "went \xFF dogs \xED\xA0\x80 \xC0\xAF \xC3"},   // surrogate, overlong, cut short
    {"noncharacters", "\xEF\xBF\xBE \xEF\xBF\xBF \xF4\x8F\xBF\xBF"},  // valid for Qt too
    {"nul", std::string("went\0 dogs", 10)},                          // the rest is ignored
    {"cr", "went\rdogs \r"},
    {"bom first", "\xEF\xBB\xBFwent dogs"},  // dropped by the decoder
    {"bom later", "dogs\xEF\xBB\xBFwent \xEF\xBB\xBFmice \xEF\xBB\xBFwent'\xEF\xBB\xBF"},
    {"escapes", "a\tb \"went\" \\ \x01"},
    {"long word", std::string(100, 'x') + " went " + std::string(100, 'x')},  // never cached
};

// Each line through `lines` and through `stemmer`: its sentence elements, and
// its records as a sentence and as a word in every format.
static void expectLibraryOutput(ZQ::Dialog::Stemmer& stemmer, LineStemmer& lines) {
  for (const auto& [name, text] : kLines) {
    Stems expected{"kept"}, actual{"kept"};
    stemmer.stem_sentence(text, expected);
    lines.stemSentence(text, actual);
    EXPECT_EQ(actual, expected) << name;
    std::string word = text, stem;
    stemmer.stemword(word, stem);
    for (const Format format : {Format::Lines, Format::Tsv, Format::Jsonl}) {
      std::string want, got;
      ZQ::Dialog::corpus::formatRecord(format, false, Stems(expected.begin() + 1, expected.end()),
                                       want);
      ZQ::Dialog::corpus::formatRecord(format, true, {stem}, want);
      lines.stemRecord(text, format, false, got);
      lines.stemRecord(text, format, true, got);
      EXPECT_EQ(got, want) << name;
    }
  }
}

TEST(LineStemmer, SameAsTheLibrary) {
  const ZQ::Dialog::testing::DataRoot data;
  data.write("lemmatizer/enu/lemma",
             "went\ngo\nWent\ngo\ndogs\ndog\ndon\ndo\nt\nnot\n\nEMPTY\ncaf\xC3\xA9\nCAF\xC3\x89\n");
  ZQ::Dialog::Stemmer english("enu"), unsupported("xx");
  // `tiny` empties its cache again and again.
  LineStemmer lines(english), tiny(english, 2), whole(unsupported);
  for (int pass = 0; pass < 2; ++pass)  // the second pass takes stems from the caches
    for (LineStemmer* l : {&lines, &tiny}) expectLibraryOutput(english, *l);
  expectLibraryOutput(unsupported, whole);
  const QRegExp saved = ZQ::Dialog::rx;  // a caller's own rx is honoured, as by the library
  ZQ::Dialog::rx = QRegExp(QStringLiteral("[ o]"));
  expectLibraryOutput(english, lines);
  ZQ::Dialog::rx = saved;

  std::string expected, out, drained;
  for (const char* line : {"The dogs", "went", "", "don't went dogs went dogs"})
    lines.stemRecord(line, Format::Jsonl, false, expected);
  lines.setDrain(5, [&](std::string& text) {
    EXPECT_TRUE(text.size() >= 5 && text.size() < 12) << text;  // inside lines too
    drained += text, text.clear();
  });
  lines.stemText("The dogs\r\nwent\n\ndon't went dogs went dogs", Format::Jsonl, false, out);
  EXPECT_EQ(drained + out, expected);  // "\r\n" ends a line; the last needs no line end
}

// LineStemmers on several threads sharing one table of stems give the
// library's output; the table stops taking words when half full and serves
// only the implementation it was made for. Run under ThreadSanitizer.
TEST(Concurrency, LineStemmersSharingStemsGiveTheLibrarysOutput) {
  const ZQ::Dialog::testing::DataRoot data;
  data.write("lemmatizer/enu/lemma", "went\ngo\ndogs\ndog\nw7\nseven\nq\n\"q\"\n");
  ZQ::Dialog::Stemmer english("enu");
  std::string text, expected;
  for (int i = 0; i < 3000; ++i) text += "went w" + std::to_string(i % 1000) + " dogs q\n";
  LineStemmer(english, 0).stemText(text, Format::Jsonl, false, expected);  // nothing cached
  ZQ::Dialog::corpus::SharedStems shared(english.impl, 1024);
  std::vector<std::string> outs(3);
  std::vector<std::thread> threads;
  for (std::string& out : outs)
    threads.emplace_back([&] {
      LineStemmer lines(english);
      lines.share(&shared);
      lines.stemText(text, Format::Jsonl, false, out);
    });
  for (std::thread& thread : threads) thread.join();
  for (const std::string& out : outs) EXPECT_EQ(out, expected);
  int held = 0;
  ZQ::Dialog::corpus::StemCache::Stem stem;
  for (int i = 0; i < 1000; ++i) held += shared.find("w" + std::to_string(i), stem);
  EXPECT_GE(held, 500);
  EXPECT_LE(held, 512 + 2);  // threads may pass the check together
  EXPECT_TRUE(shared.find("went", stem) && stem.text == "go" && stem.plain);

  ZQ::Dialog::corpus::SharedStems foreign(nullptr);  // some other implementation's
  foreign.insert("went", "gone", true);
  LineStemmer lines(english);
  lines.share(&foreign);
  std::string out;
  lines.stemText("went", Format::Jsonl, false, out);
  EXPECT_EQ(out, "[\"go\"]\n");
}
