#include <QFile>
#include <QTextStream>

#include "ku/path.hpp"
#include "stemmer/stemmer_p.hpp"

namespace ZQ::Dialog {

std::map<QString, QString> StemmerPrivate::getLemDic(std::string language) {
  std::map<QString, QString> dictionary;
  const char* const relativePath =
      language == "frf" ? "lemmatizer/frf/lemma" : "lemmatizer/enu/lemma";
  const std::string path = ku::path::findData("dialog", relativePath, false);

  // Text mode accepts "\r\n"; the stream decodes with the locale's codec.
  QFile file(QString::fromUtf8(path.c_str()));
  if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) return dictionary;
  QTextStream stream(&file);
  QString key;
  QString value;
  // The end is tested before each pair only: an odd last line gets a null
  // (empty) lemma. Lines are kept whole, so a blank line shifts the pairing.
  while (!stream.atEnd()) {
    key = stream.readLine(0);
    value = stream.readLine(0);
    dictionary[key] = value;
  }
  return dictionary;
}

}  // namespace ZQ::Dialog
