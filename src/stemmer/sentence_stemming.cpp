#include <QStringList>
#include <boost/tokenizer.hpp>

#include "stemmer/stemmer_p.hpp"

namespace ZQ::Dialog {
namespace {

// Appends every token of `sentence` (all its bytes, NULs included) unchanged.
void appendTokens(const std::string& sentence, const boost::char_separator<char>& separator,
                  std::vector<std::string>& stems) {
  const boost::tokenizer<boost::char_separator<char>> tokens(sentence.begin(), sentence.end(),
                                                             separator);
  for (const std::string& token : tokens) stems.push_back(token);
}

// Index of the base form in the IPA dictionary's feature record.
constexpr int kBaseFormField = 6;

}  // namespace

void StemmerPrivate::stem_sentence(const std::string& sentence, std::vector<std::string>& stems) {
  // The stemmer's presence is tested first, then the language: a Japanese
  // stemmer has no Snowball stemmer and so returns its sentence whole.
  if (stemmer && lang != 0) {
    const QStringList parts = QString::fromUtf8(sentence.c_str()).split(rx, Qt::KeepEmptyParts);
    for (const QString& part : parts) {
      QString word = part;
      QString stem;
      stemmword(word, stem);
      stems.emplace_back(stem.toUtf8().constData());
    }
  } else if (stemmer) {
    const MeCab::Node* node = tagger->parseToNode(sentence.c_str());
    for (; node; node = node->next) {
      // Begin- and end-of-sentence nodes (2 and 3) carry no morpheme.
      if ((node->stat & ~1) == MECAB_BOS_NODE) continue;
      const QStringList fields =
          QString::fromUtf8(node->feature).split(QLatin1Char(','), Qt::KeepEmptyParts);
      // Unknown words keep the "*" of their record; a record too short to hold
      // a base form gives an empty element, so elements still match morphemes.
      stems.emplace_back(
          fields.size() > kBaseFormField ? fields.at(kBaseFormField).toUtf8().constData() : "");
    }
  } else if (lang == 0) {
    appendTokens(sentence, charsep, stems);
  } else {
    appendTokens(sentence, sep, stems);
  }
}

}  // namespace ZQ::Dialog
