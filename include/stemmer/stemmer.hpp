#ifndef DIALOG_STEMMER_STEMMER_HPP
#define DIALOG_STEMMER_STEMMER_HPP

#include <cstdio>
#include <string>
#include <vector>

#include <QRegExp>
#include <QString>
#include <boost/tokenizer.hpp>

#include "stemmer/export.hpp"

struct sb_stemmer;

namespace ZQ::Dialog {

class StemmerPrivate;

// Turns words and sentences of one language into their normal forms, so that
// inflected forms match alike. Supported codes: "enu" English and "frf" French
// (lemma dictionary lookup), "jpj" Japanese (sentences are returned whole).
//
// Thread safety: any number of threads may call stemword() and stem_sentence()
// on one shared Stemmer at once, each with its own strings and list. The
// Japanese morpheme path (a StemmerPrivate given both a Snowball handle and a
// tagger) reuses the tagger and serves one caller at a time, as stem_stream()
// does for one Snowball handle. Construction, assignment and destruction need
// external synchronisation.
//
// Copies and assignment are shallow: both handles then share one
// implementation, and only one of them may be destroyed. The implementation a
// handle held before an assignment is not freed.
class DIALOG_STEMMER_EXPORT Stemmer {
 public:
  // Builds the stemmer for `language`, reading its lemma dictionary. Never
  // fails: an unknown code logs "Unsupported language" (category "LibStemmer",
  // level 2) and gives a stemmer that returns its input unchanged or whole.
  Stemmer(const std::string& language);  // NOLINT(google-explicit-constructor)
  Stemmer(const Stemmer& other) = default;
  ~Stemmer();

  // Makes this handle share `other`'s implementation; frees nothing.
  Stemmer& operator=(const Stemmer& other);

  // Sets `result` to the lemma of the UTF-8 `word`, or to `word` itself when the
  // dictionary does not list it; `result`'s old content is discarded. Leaves
  // `word` unchanged. Text after an embedded zero byte is ignored.
  void stemword(std::string& word, std::string& result);

  // Appends the normal forms of `sentence` to `stems`, never removing anything.
  // English and French: one element per piece between spaces and apostrophes
  // (empty pieces included). Japanese and unknown codes: the sentence whole, or
  // nothing when it is empty.
  void stem_sentence(const std::string& sentence, std::vector<std::string>& stems);

  // The language code as given to the constructor.
  std::string language;
  // The implementation, owned by this handle (or shared after assignment).
  StemmerPrivate* impl;
};

// Appends the Snowball stem of every line of `in` to `out`, with no separator
// between stems. Each line is lowered byte by byte (isupper/tolower) before
// stemming; an empty line or a null stem appends nothing. Reads `in` to its end
// and closes nothing. `stemmer` and `in` must be valid; one Snowball handle
// serves one thread at a time.
DIALOG_STEMMER_EXPORT void stem_stream(sb_stemmer* stemmer, FILE* in, QString& out);

// Splits at single spaces, dropping empty tokens.
DIALOG_STEMMER_EXPORT extern boost::char_separator<char> sep;
// No delimiter at all: a tokenizer over it yields a non-empty input whole.
DIALOG_STEMMER_EXPORT extern boost::char_separator<char> charsep;
// Matches one space or one apostrophe (U+0027).
DIALOG_STEMMER_EXPORT extern QRegExp rx;

}  // namespace ZQ::Dialog

#endif  // DIALOG_STEMMER_STEMMER_HPP
