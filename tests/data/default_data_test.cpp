// Checks the default lemma files (staged under the build tree's share/dialog/)
// on representative forms, by whole token and through the sentence path.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "stemmer/stemmer.hpp"
#include "testing/files.hpp"

namespace {

struct Row {
  const char* form;
  const char* lemma;
};

class DefaultData : public testing::Test {
 protected:
  static void expectLemmas(const char* code, const std::vector<Row>& rows) {
    ZQ::Dialog::Stemmer stemmer(code);
    for (const Row& row : rows) {
      std::string word = row.form, result;
      stemmer.stemword(word, result);
      EXPECT_EQ(result, row.lemma) << code << " " << row.form;
    }
  }
  static std::vector<std::string> sentence(const char* code, const std::string& text) {
    ZQ::Dialog::Stemmer stemmer(code);
    std::vector<std::string> stems;
    stemmer.stem_sentence(text, stems);
    return stems;
  }
  const dialog_test::DataRoot data_{DIALOG_STAGED_PREFIX};
};

TEST_F(DefaultData, EnglishForms) {
  expectLemmas("enu", {
                          {"went", "go"},
                          {"children", "child"},
                          {"geese", "goose"},
                          {"running", "run"},
                          {"better", "good"},
                          {"was", "be"},
                          {"Went", "go"},  // sentence-initial capital
                          {"THE", "the"},  // all capitals
                          {"n't", "not"},  // contraction token...
                          {"t", "not"},    // ...and the piece a cut leaves
                          {"'m", "be"},
                          {"m", "be"},
                          {"'ll", "will"},
                          {"ll", "will"},
                          {"'ve", "have"},
                          {"'d", "would"},
                          {"N'T", "not"},
                          {"n\xE2\x80\x99t", "not"},  // U+2019
                          {"'s", "'s"},               // possessive, as the evidence reads it
                          {"don", "do"},
                          {"ca", "can"},
                          {"Department", "Department"},  // proper noun, not "department"
                          {"Monday", "Monday"},
                          {"Bush", "Bush"},
                          {"involved", "involved"},  // participle read as an adjective
                          {"saw", "see"},            // and as a verb
                          {"1990s", "1990s"},
                      });
  EXPECT_EQ(sentence("enu", "I don't like dogs"),
            (std::vector<std::string>{"I", "do", "not", "like", "dog"}));
}

TEST_F(DefaultData, FrenchForms) {
  expectLemmas("frf", {
                          {"mangeaient", "manger"},
                          {"chevaux", "cheval"},
                          {"yeux", "\xC5\x93il"},           // œil
                          {"\xC3\xA9tait", "\xC3\xAAtre"},  // était -> être
                          {"fait", "faire"},
                          {"l'", "le"},             // elided token...
                          {"l", "le"},              // ...and the piece a cut leaves
                          {"L'", "le"},             // capitalised
                          {"l\xE2\x80\x99", "le"},  // U+2019
                          {"d'", "de"},
                          {"D'", "de"},
                          {"qu'", "que"},
                          {"Qu'", "que"},
                          {"jusqu'", "jusque"},
                          {"n'", "ne"},
                          {"s'", "soi"},
                          {"C'", "ce"},
                          {"Le", "le"},  // sentence-initial capital
                          {"Elle", "lui"},
                          {"LES", "le"},  // all capitals
                          {"des", "un"},
                          {"Paris", "Paris"},  // proper noun
                          {"arm\xC3\xA9"
                           "e",
                           "arm\xC3\xA9"
                           "e"},  // armée: a noun, not armer
                          {"entreprise", "entreprise"},
                      });
  EXPECT_EQ(sentence("frf", "Les chevaux mangeaient l'herbe"),
            (std::vector<std::string>{"le", "cheval", "manger", "le", "herbe"}));
}

}  // namespace
