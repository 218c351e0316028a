#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <libstemmer.h>

#include "stemmer/stemmer.hpp"
#include "stemmer/stemmer_p.hpp"
#include "testing/files.hpp"
#include "testing/mecab.hpp"
#include "testing/memory.hpp"
#include "testing/requirements.hpp"

using ZQ::Dialog::Stemmer;
using Stems = std::vector<std::string>;

namespace {

class SentenceStemming : public testing::Test {
 protected:
  SentenceStemming() {
    data_.write("lemmatizer/enu/lemma", "dogs\ndog\ndon\nDO\nt\nNOT\n\nEMPTY\nwent\ngo\n");
    data_.write("lemmatizer/frf/lemma", "l\nle\nhommes\nhomme\n");
  }
  static Stems run(Stemmer& stemmer, const std::string& sentence, Stems stems = {}) {
    stemmer.stem_sentence(sentence, stems);
    return stems;
  }
  dialog_test::DataRoot data_;
};

TEST_F(SentenceStemming, RegexSplitCutsAtSpacesAndApostrophes) {
  Stemmer en("enu");
  EXPECT_EQ(run(en, "I don't like dogs"), (Stems{"I", "DO", "NOT", "like", "dog"}));
  EXPECT_EQ(run(en, "a  b"), (Stems{"a", "EMPTY", "b"}));  // empty parts are kept
  EXPECT_EQ(run(en, " a "), (Stems{"EMPTY", "a", "EMPTY"}));
  EXPECT_EQ(run(en, ""), (Stems{"EMPTY"}));  // one part, the empty word
  EXPECT_EQ(run(en, "'"), (Stems{"EMPTY", "EMPTY"}));
  EXPECT_EQ(run(en, "dogs\tdogs,dogs"), (Stems{"dogs\tdogs,dogs"}));    // tab and comma stay
  EXPECT_EQ(run(en, "don\xE2\x80\x99t"), (Stems{"don\xE2\x80\x99t"}));  // U+2019 does not split
  EXPECT_EQ(run(en,
                "dogs\xC2\xA0"
                "dogs"),
            (Stems{"dogs\xC2\xA0"
                   "dogs"}));  // nor does U+00A0
  Stemmer fr("frf");
  EXPECT_EQ(run(fr, "l'homme hommes"), (Stems{"le", "homme", "homme"}));
}

TEST_F(SentenceStemming, RegexSplitBadInput) {
  Stemmer en("enu");
  EXPECT_EQ(run(en, std::string("dogs don\0t dogs", 15)), (Stems{"dog", "DO"}));  // ends at NUL
  EXPECT_EQ(run(en, "caf\xC3 dogs"), (Stems{"caf\xEF\xBF\xBD", "dog"}));  // replaced, not dropped
  EXPECT_EQ(run(en, "\xC0\xAF went"), (Stems{"\xEF\xBF\xBD\xEF\xBF\xBD", "go"}));
  // A byte-order mark starting a later word is dropped by the key's decoding.
  EXPECT_EQ(run(en, "dogs \xEF\xBB\xBFwent"), (Stems{"dog", "go"}));
}

TEST_F(SentenceStemming, TenMegabyteSentence) {
  // Pieces of 999 bytes and one space: 10 MiB, about ten thousand pieces.
  std::string text;
  while (text.size() + 1000 <= 10u << 20) text += std::string(999, 'x') + ' ';
  text += "went";
  const std::size_t before = dialog_test::peakRss();
  Stemmer en("enu");
  Stems stems = run(en, text);
  ASSERT_EQ(stems.size(), text.size() / 1000 + 1);
  EXPECT_EQ(stems.front(), std::string(999, 'x'));
  EXPECT_EQ(stems.back(), "go");
  stems.clear();
  // UTF-16 text, the list of parts and the output: a few times the input.
  EXPECT_TRUE(dialog_test::grewInProportion(before, text.size(), 8));
  Stemmer xx("xx");
  EXPECT_EQ(run(xx, text), Stems{text});
}

TEST_F(SentenceStemming, DirectSplitEqualsRegexSplit) {
  // "[' ]" matches what "[ ']" matches but is not the load-time pattern, so it
  // takes the regular-expression path; both must give the same parts.
  const std::vector<std::string> sentences = {"",
                                              " ",
                                              "'",
                                              "''",
                                              " ' ",
                                              "I don't like dogs",
                                              "  a  b  ",
                                              "l'homme'",
                                              "dogs\tdogs",
                                              "don\xE2\x80\x99t",
                                              "caf\xC3 dogs",
                                              "\xF0\x9F\x98\x80 dogs",
                                              std::string("a b\0c d", 7)};
  Stemmer en("enu");
  std::vector<Stems> direct;
  for (const std::string& sentence : sentences) direct.push_back(run(en, sentence));
  const QRegExp saved = ZQ::Dialog::rx;
  ZQ::Dialog::rx.setPattern(QStringLiteral("[' ]"));
  for (std::size_t i = 0; i < sentences.size(); ++i)
    EXPECT_EQ(run(en, sentences[i]), direct[i]) << sentences[i];
  // A caller's own pattern is honoured from then on.
  ZQ::Dialog::rx.setPattern(QStringLiteral("o"));
  EXPECT_EQ(run(en, "don't dogs"), (Stems{"d", "n't d", "gs"}));
  ZQ::Dialog::rx = saved;
  EXPECT_EQ(run(en, "don't"), (Stems{"DO", "NOT"}));
}

TEST_F(SentenceStemming, AppendsToTheCallersList) {
  Stemmer en("enu");
  EXPECT_EQ(run(en, "dogs", {"kept"}), (Stems{"kept", "dog"}));
  Stemmer ja("jpj");
  EXPECT_EQ(run(ja, "x", {"kept"}), (Stems{"kept", "x"}));
}

TEST_F(SentenceStemming, WholeSentencePathForJapaneseAndUnsupported) {
  for (const char* code : {"jpj", "xx"}) {
    Stemmer stemmer(code);
    EXPECT_EQ(run(stemmer, " a  don't \t"), (Stems{" a  don't \t"})) << code;
    EXPECT_EQ(run(stemmer, std::string("a\0b", 3)), (Stems{std::string("a\0b", 3)})) << code;
    EXPECT_EQ(run(stemmer, "\xFF\xFE"), (Stems{"\xFF\xFE"})) << code;  // bytes, never decoded
    EXPECT_EQ(run(stemmer, ""), Stems{}) << code;
  }
}

TEST_F(SentenceStemming, SpaceTokenPathWithoutSnowballStemmer) {
  Stemmer en("enu");
  en.impl->stemmer = nullptr;  // as when the Snowball stemmer could not be created
  EXPECT_EQ(run(en, "  dogs   don't\tx  "), (Stems{"dogs", "don't\tx"}));  // no lookup
  EXPECT_EQ(run(en, ""), Stems{});
  EXPECT_EQ(run(en, "   "), Stems{});
  EXPECT_EQ(run(en, std::string("a\0b c", 5)), (Stems{std::string("a\0b", 3), "c"}));
  EXPECT_EQ(run(en, "\xC0\xAF went"), (Stems{"\xC0\xAF", "went"}));  // bytes, never decoded
}

// The morpheme path: a Snowball stemmer with selector 0 and a real tagger.
class MorphemePath : public testing::Test {
 protected:
  void SetUp() override {
    DIALOG_REQUIRE(dialog_test::Need::kIpaDictionary);
    tagger_ = dialog_test::openMecab(dialog_test::ipadicDir());
    ASSERT_NE(tagger_, nullptr) << MeCab::getTaggerError();
    impl_.stemmer = sb_stemmer_new("english", "UTF_8");
    impl_.tagger = tagger_.get();
  }
  void TearDown() override {
    if (impl_.stemmer) sb_stemmer_delete(impl_.stemmer);  // none when skipped
  }
  Stems run(const std::string& sentence, Stems stems = {}) {
    impl_.stem_sentence(sentence, stems);
    return stems;
  }
  dialog_test::DataRoot data_;
  ZQ::Dialog::StemmerPrivate impl_{"xx"};
  dialog_test::TaggerPtr tagger_;
};

TEST_F(MorphemePath, YieldsBaseFormsOfMorphemes) {
  EXPECT_EQ(run("猫が走った"), (Stems{"猫", "が", "走る", "た"}));
  EXPECT_EQ(run("", {"kept"}), (Stems{"kept"}));            // only begin and end nodes
  EXPECT_EQ(run("Zyxwvq"), (Stems{"*"}));                   // unknown words keep "*"
  EXPECT_EQ(run("\xFF\xFE\xE7\x8C").size(), 1U);            // one unknown morpheme
  EXPECT_EQ(run(std::string("猫\0が", 7)), (Stems{"猫"}));  // ends at NUL
}

}  // namespace
