// Checks the default lemma files staged under the build tree's share/dialog/: every pair as the
// file holds it, and a token through the library that reads it. Accuracy is evaluate.py's job.
#include <gtest/gtest.h>

#include <QStringList>
#include <string>

#include "stemmer/stemmer.hpp"
#include "testing/files.hpp"

namespace {

// Language, the only single letters that may stand for a longer word, a token and its lemma.
const char* const kLanguages[][4] = {{"enu", "dmst", "n\xE2\x80\x99t", "not"},  // U+2019
                                     {"frf", "acdjlmnstyACDJLNSY", "L'", "le"}};

TEST(DefaultData, EveryPairKeepsTheFormatCaseAndLetters) {
  const ZQ::Dialog::testing::DataRoot data(DIALOG_STAGED_PREFIX);
  for (const auto& [code, letterWords, token, lemmaOfToken] : kLanguages) {
    const std::string path = data.path() + "/share/dialog/lemmatizer/" + code + "/lemma";
    const QStringList lines =
        QString::fromStdString(ZQ::Dialog::testing::readFile(path)).split('\n');
    ASSERT_TRUE(lines.size() > 1000 && lines.size() % 2 == 1 && lines.last().isEmpty()) << code;
    QStringList bad;  // out of order, identity, blank, capital lemma, letter expansion
    for (int i = 0; i + 1 < lines.size(); i += 2) {
      const QString &form = lines[i], &lemma = lines[i + 1], both = form + '\n' + lemma;
      const bool lowerCase = form == form.toLower() && form != form.toUpper();  // cased, all lower
      const bool letter =
          form.size() == 1 && form[0].isLetter() && !QString(letterWords).contains(form);
      if ((i > 0 && !(lines[i - 2] < form)) || form == lemma || form.isEmpty() || lemma.isEmpty() ||
          both.contains(' ') || both.contains('\r') || (lowerCase && lemma != lemma.toLower()) ||
          (letter && lemma.size() > 1))
        bad << form + " -> " + lemma;
    }
    EXPECT_TRUE(bad.isEmpty()) << code << ": " << bad.mid(0, 5).join(", ").toStdString();
    ZQ::Dialog::Stemmer stemmer(code);
    std::string word = token, result;
    stemmer.stemword(word, result);
    EXPECT_EQ(result, lemmaOfToken) << code;
  }
}

}  // namespace
