#include <cstring>

#include "stemmer/stemmer_p.hpp"

namespace ZQ::Dialog {
namespace {

// True when a UTF-8 round trip gives `text` back unchanged: it holds no U+0000
// (which would cut it) and no surrogate (a lone one would be replaced), and does
// not start with U+FEFF (the decoder drops a leading byte-order mark).
bool survivesRoundTrip(const QString& text) {
  if (text.startsWith(QChar(0xFEFF))) return false;
  for (const QChar c : text) {
    const ushort unit = c.unicode();
    if (unit == 0 || (unit >= 0xD800 && unit <= 0xDFFF)) return false;
  }
  return true;
}

// The dictionary key of a word: its text up to the first U+0000, after a UTF-8
// round trip. Words that come through unchanged skip the two conversions.
QString lookupKey(const QString& word) {
  if (survivesRoundTrip(word)) return word;
  return QString::fromUtf8(word.toUtf8().constData());
}

}  // namespace

void StemmerPrivate::stemmword(QString& word, QString& result) {
  // Presence is tested before the language; the fetch is checked and so can
  // only fail if the map changed in between, which it never does. The key is
  // built once: building it again from the same word gives the same key.
  const QString key = lookupKey(word);
  if (lemDic.find(key) != lemDic.end() && lang != 0) {
    const QString lemma = lemDic.at(key);
    word = lemma;
  }
  result = word;
}

void Stemmer::stemword(std::string& word, std::string& result) {
  // A copy of the word: the worker replaces its argument in place. The old
  // content of `result` is never read, as the worker always overwrites it.
  QString form = QString::fromUtf8(word.c_str(), static_cast<int>(std::strlen(word.c_str())));
  QString stem;
  impl->stemmword(form, stem);
  result.assign(stem.toUtf8().constData());
}

}  // namespace ZQ::Dialog
