#include <cstring>

#include "stemmer/stemmer_p.hpp"

namespace ZQ::Dialog {
namespace {

// The dictionary key of a word: its text up to the first U+0000, after a UTF-8
// round trip.
QString lookupKey(const QString& word) { return QString::fromUtf8(word.toUtf8().constData()); }

}  // namespace

void StemmerPrivate::stemmword(QString& word, QString& result) {
  // Presence is tested before the language; the fetch is checked and so can
  // only fail if the map changed in between, which it never does.
  if (lemDic.find(lookupKey(word)) != lemDic.end() && lang != 0) {
    const QString lemma = lemDic.at(lookupKey(word));
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
