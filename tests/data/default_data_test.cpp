// Checks the default lemma files staged under the build tree's share/dialog/: every pair as the
// file holds it, and utterances as people type them, through the library that reads the file.
// Accuracy is evaluate.py's job.
#include <gtest/gtest.h>

#include <QMap>
#include <QStringList>
#include <map>
#include <string>
#include <tuple>
#include <vector>

#include "stemmer/stemmer.hpp"
#include "testing/files.hpp"

namespace {

// Language, the only single letters that may stand for a longer word, the lower-case forms that
// keep a capitalised lemma, and the capitalised forms that need not follow their lower-case
// spelling ("A" is also "à" without its accent).
const char* const kLanguages[][4] = {{"enu", "dmst", "i me", ""},
                                     {"frf", "acdjlmnstyACDJLNSY", "", "A"}};

// The hyphen-joined clitics of a French inverted question ("-t-il" ends with "-il") or request.
const QStringList kClitics = {"-je",   "-tu",  "-il",    "-elle", "-on",  "-nous",
                              "-vous", "-ils", "-elles", "-ce",   "-moi", "-toi",
                              "-le",   "-la",  "-les",   "-en",   "-y"};

// The lines of a lemma file, and its pairs to look a form's lower-case spelling up in.
QMap<QString, QString> readPairs(const std::string& path, QStringList& lines) {
  lines = QString::fromStdString(ZQ::Dialog::testing::readFile(path)).split('\n');
  QMap<QString, QString> pairs;
  for (int i = 0; i + 1 < lines.size(); i += 2) pairs.insert(lines[i], lines[i + 1]);
  return pairs;
}

// Properties over every pair: the format, lower-case forms with lower-case lemmas, single letters,
// and capitalised forms that get exactly what their lower-case spelling gets.
TEST(DefaultData, EveryPairKeepsTheFormatCaseAndLetters) {
  const ZQ::Dialog::testing::DataRoot data(DIALOG_STAGED_PREFIX);
  for (const auto& [code, letterWords, capitalLemmaForms, keptCapitals] : kLanguages) {
    QStringList lines;
    const auto pairs =
        readPairs(data.path() + "/share/dialog/lemmatizer/" + code + "/lemma", lines);
    ASSERT_TRUE(lines.size() > 1000 && lines.size() % 2 == 1 && lines.last().isEmpty()) << code;
    const QStringList ownLemmas = QString(capitalLemmaForms).split(' ');
    QStringList bad;  // out of order, identity, blank, capital lemma, letter, capital's lemma
    for (int i = 0; i + 1 < lines.size(); i += 2) {
      const QString &form = lines[i], &lemma = lines[i + 1], both = form + '\n' + lemma;
      const QString lower = form.toLower();
      const bool lowerCase = form == lower && form != form.toUpper();  // cased, all lower
      const bool letter =
          form.size() == 1 && form[0].isLetter() && !QString(letterWords).contains(form);
      // Capital first letter, no other capital, a lower-case lemma, the lower-case spelling listed.
      const bool capitalised = form.size() > 1 && form[0].isUpper() &&
                               form.mid(1) == lower.mid(1) && lemma == lemma.toLower() &&
                               pairs.contains(lower) && form != keptCapitals;
      if ((i > 0 && !(lines[i - 2] < form)) || form == lemma || form.isEmpty() || lemma.isEmpty() ||
          both.contains(' ') || both.contains('\r') ||
          (lowerCase && lemma != lemma.toLower() && !ownLemmas.contains(form)) ||
          (letter && lemma.size() > 1) || (capitalised && pairs.value(lower) != lemma))
        bad << form + " -> " + lemma;
      // A French inverted question or request is listed with a capital too, with the same lemma.
      const bool question = std::string(code) == "frf" && lowerCase && !form.startsWith('-') &&
                            kClitics.contains(form.mid(form.lastIndexOf('-')));
      if (question && pairs.value(form.left(1).toUpper() + form.mid(1)) != lemma)
        bad << form + " -> " + lemma + " (no capitalised spelling)";
    }
    EXPECT_TRUE(bad.isEmpty()) << code << ": " << bad.mid(0, 5).join(", ").toStdString();
  }
}

// Utterances as people type them to a dialog engine, through stem_sentence: initial capitals,
// the pronoun, inverted questions, tokens with their apostrophe, and names that keep themselves.
const char* const kDialogRows[][3] = {
    {"enu", "Children are playing", "child be play"},
    {"enu", "Went home", "go home"},
    {"enu", "i think me", "I think I"},
    {"enu", "Me too", "I too"},
    {"enu", "Didn't Isn't", "do not be not"},
    {"frf", "Mangez les pommes", "manger le pomme"},
    {"frf", "Nommez un fleuve", "nommer un fleuve"},
    {"frf", "Allons au cinéma", "aller au cinéma"},
    {"frf", "Voulez-vous réserver", "vouloir réserver"},
    {"frf", "voulez-vous Pouvez-vous Avez-vous", "vouloir pouvoir avoir"},
    {"frf", "Peut-on Est-ce VOULEZ-VOUS A-T-IL", "pouvoir être vouloir avoir"},
    {"frf", "Y a-t-il A-t-il va-t-on", "y avoir avoir aller"},
    {"frf", "Suis-je Pourriez-vous habitez-vous", "être pouvoir habiter"},
    {"frf", "Donnez-moi Allons-y vas-y", "donner aller aller"},
    {"frf", "Etes-vous Ecoutez", "être écouter"},
    {"frf", "Aujourd'hui aujourd'hui QU'on", "aujourd hui aujourd hui que on"},
    {"frf", "Rendez-vous Pierre Okay Mademoiselle", "rendez-vous Pierre ok mademoiselle"},
};

TEST(DefaultData, DialogUtterancesGetTheirLowerCaseWordsLemmas) {
  const ZQ::Dialog::testing::DataRoot data(DIALOG_STAGED_PREFIX);
  // One stemmer a language: each reads a file of up to 400k pairs.
  std::map<std::string, ZQ::Dialog::Stemmer> stemmers;
  for (const char* code : {"enu", "frf"}) stemmers.try_emplace(code, code);
  for (const auto& [code, utterance, expected] : kDialogRows) {
    std::vector<std::string> stems;
    stemmers.at(code).stem_sentence(utterance, stems);
    std::string joined;
    for (const std::string& stem : stems) joined += (joined.empty() ? "" : " ") + stem;
    EXPECT_EQ(joined, expected) << code << ": " << utterance;
  }
  // A token as a tokenizer cuts it keeps its apostrophe, U+2019 included.
  for (const auto& [code, token, lemma] :
       {std::tuple{"enu", "n\xE2\x80\x99t", "not"}, std::tuple{"frf", "L'", "le"}}) {
    std::string word = token, result;
    stemmers.at(code).stemword(word, result);
    EXPECT_EQ(result, lemma) << code;
  }
}

}  // namespace
