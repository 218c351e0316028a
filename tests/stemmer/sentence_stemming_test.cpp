#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <libstemmer.h>

#include "stemmer/stemmer.hpp"
#include "stemmer/stemmer_p.hpp"
#include "testing/files.hpp"
#include "testing/mecab.hpp"
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
  EXPECT_EQ(run(en, " a  b"), (Stems{"EMPTY", "a", "EMPTY", "b"}));  // empty parts are kept
  EXPECT_EQ(run(en, ""), (Stems{"EMPTY"}));  // one part, the empty word
  EXPECT_EQ(run(en, "'"), (Stems{"EMPTY", "EMPTY"}));
  EXPECT_EQ(run(en, "dogs\tdogs,dogs"), (Stems{"dogs\tdogs,dogs"}));    // tab and comma stay
  EXPECT_EQ(run(en, "don\xE2\x80\x99t"), (Stems{"don\xE2\x80\x99t"}));  // U+2019 does not split
  EXPECT_EQ(run(en, "dogs", {"kept"}), (Stems{"kept", "dog"}));        // appended
  Stemmer fr("frf");
  EXPECT_EQ(run(fr, "l'homme hommes"), (Stems{"le", "homme", "homme"}));
}

TEST_F(SentenceStemming, RegexSplitBadInput) {
  Stemmer en("enu");
  EXPECT_EQ(run(en, std::string("dogs don\0t dogs", 15)), (Stems{"dog", "DO"}));  // ends at NUL
  EXPECT_EQ(run(en, "caf\xC3 dogs"), (Stems{"caf\xEF\xBF\xBD", "dog"}));  // replaced, not dropped
  EXPECT_EQ(run(en, "\xC0\xAF went"), (Stems{"\xEF\xBF\xBD\xEF\xBF\xBD", "go"}));
  EXPECT_EQ(run(en, "dogs \xEF\xBB\xBFwent"), (Stems{"dog", "go"}));  // a later word's mark goes
}

TEST_F(SentenceStemming, TenMegabyteSentence) {
  std::string text;  // pieces of 999 bytes and a space: about ten thousand
  while (text.size() + 1000 <= 10u << 20) text += std::string(999, 'x') + ' ';
  text += "went";
  Stemmer en("enu"), xx("xx");
  const Stems stems = run(en, text);
  ASSERT_EQ(stems.size(), text.size() / 1000 + 1);
  EXPECT_EQ(stems.front(), std::string(999, 'x'));
  EXPECT_EQ(stems.back(), "go");
  EXPECT_EQ(run(xx, text), Stems{text});
}

// A caller's own `rx` is honoured; one equal to the load-time split gives its parts.
TEST_F(SentenceStemming, CallersPatternIsHonoured) {
  Stemmer en("enu");
  const QRegExp saved = ZQ::Dialog::rx;
  ZQ::Dialog::rx.setPattern(QStringLiteral("[' ]"));
  EXPECT_EQ(run(en, " I don't\tx''"), (Stems{"EMPTY", "I", "DO", "t\tx", "EMPTY", "EMPTY"}));
  ZQ::Dialog::rx.setPattern(QStringLiteral("o"));
  EXPECT_EQ(run(en, "don't dogs"), (Stems{"d", "n't d", "gs"}));
  ZQ::Dialog::rx.setCaseSensitivity(Qt::CaseInsensitive);
  EXPECT_EQ(run(en, "dOgs"), (Stems{"d", "gs"}));
  ZQ::Dialog::rx = saved;
  ZQ::Dialog::rx.setPatternSyntax(QRegExp::Wildcard);  // "[ ']" as a wildcard: the same set
  EXPECT_EQ(run(en, "don't"), (Stems{"DO", "NOT"}));
  ZQ::Dialog::rx = saved;
  EXPECT_EQ(run(en, "don't"), (Stems{"DO", "NOT"}));
}

TEST_F(SentenceStemming, WholeSentencePathForJapaneseAndUnsupported) {
  for (const char* code : {"jpj", "xx"}) {
    Stemmer stemmer(code);
    EXPECT_EQ(run(stemmer, " a  don't \t"), (Stems{" a  don't \t"})) << code;
    EXPECT_EQ(run(stemmer, std::string("a\0b", 3)), (Stems{std::string("a\0b", 3)})) << code;
    EXPECT_EQ(run(stemmer, "\xFF\xFE"), (Stems{"\xFF\xFE"})) << code;  // bytes, never decoded
    EXPECT_EQ(run(stemmer, "", {"kept"}), Stems{"kept"}) << code;
  }
}

TEST_F(SentenceStemming, SpaceTokenPathWithoutSnowballStemmer) {
  Stemmer en("enu");
  en.impl->stemmer = nullptr;  // as when the Snowball stemmer could not be created
  EXPECT_EQ(run(en, "  dogs   don't\tx  "), (Stems{"dogs", "don't\tx"}));  // no lookup
  EXPECT_EQ(run(en, "   "), Stems{});
  EXPECT_EQ(run(en, std::string("a\0b c", 5)), (Stems{std::string("a\0b", 3), "c"}));
  EXPECT_EQ(run(en, "\xC0\xAF went"), (Stems{"\xC0\xAF", "went"}));  // bytes, never decoded
}

// The morpheme path: a Snowball stemmer with selector 0 and a real tagger.
TEST(MorphemePath, YieldsBaseFormsOfMorphemes) {
  DIALOG_REQUIRE(dialog_test::Need::kIpaDictionary);
  const dialog_test::TaggerPtr tagger = dialog_test::openMecab(dialog_test::ipadicDir());
  ASSERT_NE(tagger, nullptr) << MeCab::getTaggerError();
  dialog_test::DataRoot data;
  ZQ::Dialog::StemmerPrivate impl("xx");
  impl.stemmer = sb_stemmer_new("english", "UTF_8");
  impl.tagger = tagger.get();
  const auto run = [&](const std::string& sentence, Stems stems = {}) {
    impl.stem_sentence(sentence, stems);
    return stems;
  };
  EXPECT_EQ(run("猫が走った"), (Stems{"猫", "が", "走る", "た"}));
  EXPECT_EQ(run("", {"kept"}), (Stems{"kept"}));            // only begin and end nodes
  EXPECT_EQ(run("Zyxwvq"), (Stems{"*"}));                   // unknown words keep "*"
  EXPECT_EQ(run(std::string("猫\0が", 7)), (Stems{"猫"}));  // ends at NUL
  sb_stemmer_delete(impl.stemmer);
}

}  // namespace
