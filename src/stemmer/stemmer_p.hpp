#ifndef DIALOG_STEMMER_STEMMER_P_HPP
#define DIALOG_STEMMER_STEMMER_P_HPP

//
//  W A R N I N G
//  -------------
//
// This file is not part of the installed interface. It exists for the
// implementation of Stemmer and for white-box callers such as the tests; it
// may change from version to version.
//

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include <libstemmer.h>
#include <mecab.h>
#include <QString>

#include "stemmer/internals.hpp"
#include "stemmer/stemmer.hpp"

namespace ZQ::Dialog {

// The state behind a Stemmer: the lemma dictionary, the language selector and
// the language's Snowball stemmer or MeCab tagger. Read-only after
// construction, except that the Japanese morpheme path reuses the tagger.
class DIALOG_STEMMER_EXPORT StemmerPrivate {
 public:
  // Sets up the fields for `language`: "enu"/"frf" get a Snowball stemmer and
  // the lemma dictionary, "jpj" a tagger; any other code logs "Unsupported
  // language" when the "LibStemmer" category's level is at least 2. Nothing
  // obtained is checked; a failure leaves a null pointer or an empty dictionary.
  StemmerPrivate(std::string language);  // NOLINT(google-explicit-constructor)
  // Frees the dictionary only; the Snowball stemmer and the tagger are kept
  // until the process ends.
  ~StemmerPrivate();

  // Reads the lemma file of data package "dialog" ("lemmatizer/frf/lemma" for
  // "frf", "lemmatizer/enu/lemma" for any other code) as pairs of lines, word
  // form then lemma; the last pair for a form wins. A missing or unreadable
  // file gives an empty map. Uses no field of the object.
  std::map<QString, QString> getLemDic(std::string language);

  // Replaces `word` by its lemma when the dictionary lists it (and the language
  // is English or French), then copies `word` into `result`.
  void stemmword(QString& word, QString& result);

  // Appends the normal forms of `sentence` to `stems` by one of four paths,
  // chosen by whether `stemmer` is set and then by `lang`.
  void stem_sentence(const std::string& sentence, std::vector<std::string>& stems);

  // Word form to lemma, in QString order.
  std::map<QString, QString> lemDic;
  // 1 English, 2 French, 0 Japanese or unsupported.
  std::int32_t lang;
  // The language's Snowball stemmer (English and French only); never freed.
  sb_stemmer* stemmer;
  // The Japanese tagger; never freed.
  MeCab::Tagger* tagger;
};

}  // namespace ZQ::Dialog

#endif  // DIALOG_STEMMER_STEMMER_P_HPP
