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

// True while `rx` still matches exactly one space or one apostrophe, as it was
// built at load time; a caller may have changed it since.
bool rxIsLoadTimeSplit() {
  return rx.patternSyntax() == QRegExp::RegExp && rx.caseSensitivity() == Qt::CaseSensitive &&
         rx.pattern() == QLatin1String("[ ']");
}

// Calls `piece` with every part between spaces and apostrophes, empty parts
// included: the parts QString::split(rx, Qt::KeepEmptyParts) gives for the
// load-time `rx`, without running the regular expression or building a list.
template <typename Piece>
void forEachPiece(const QString& text, Piece&& piece) {
  const QChar* const begin = text.constData();
  const QChar* const end = begin + text.size();
  const QChar* start = begin;
  for (const QChar* c = begin; c != end; ++c) {
    if (*c == QLatin1Char(' ') || *c == QLatin1Char('\'')) {
      piece(QString(start, static_cast<int>(c - start)));
      start = c + 1;
    }
  }
  piece(QString(start, static_cast<int>(end - start)));
}

// Index of the base form in the IPA dictionary's feature record.
constexpr int kBaseFormField = 6;

// The split of `impl`: the Snowball stemmer's presence is tested first, then
// the language, so a Japanese stemmer given a Snowball stemmer splits morphemes.
SentenceSplit splitOf(const StemmerPrivate& impl) {
  if (impl.stemmer) return impl.lang != 0 ? SentenceSplit::kPieces : SentenceSplit::kMorphemes;
  return impl.lang == 0 ? SentenceSplit::kWhole : SentenceSplit::kSpaces;
}

}  // namespace

SentenceSplit sentenceSplit(const Stemmer& stemmer) { return splitOf(*stemmer.impl); }

bool splitsAtSpaceAndApostrophe(const Stemmer& stemmer) {
  return splitOf(*stemmer.impl) == SentenceSplit::kPieces && rxIsLoadTimeSplit();
}

void StemmerPrivate::stem_sentence(const std::string& sentence, std::vector<std::string>& stems) {
  // A Japanese stemmer has no Snowball stemmer and so returns its sentence whole.
  const SentenceSplit split = splitOf(*this);
  if (split == SentenceSplit::kPieces) {
    const QString text = QString::fromUtf8(sentence.c_str());
    const auto stemPiece = [&](QString word) {
      QString stem;
      stemmword(word, stem);
      stems.emplace_back(stem.toUtf8().constData());
    };
    if (rxIsLoadTimeSplit()) {
      forEachPiece(text, stemPiece);
    } else {
      for (const QString& part : text.split(rx, Qt::KeepEmptyParts)) stemPiece(part);
    }
  } else if (split == SentenceSplit::kMorphemes) {
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
  } else if (split == SentenceSplit::kWhole) {
    appendTokens(sentence, charsep, stems);
  } else {
    appendTokens(sentence, sep, stems);
  }
}

}  // namespace ZQ::Dialog
