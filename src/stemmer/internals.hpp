#ifndef DIALOG_STEMMER_INTERNALS_HPP
#define DIALOG_STEMMER_INTERNALS_HPP

// What the front ends (src/corpus, the tool, the Python module) may ask the
// library about a Stemmer beyond its installed interface. Not installed; the
// answers come from the library, so no caller restates its rules or reads
// StemmerPrivate's fields.

#include <cstddef>
#include <string>

#include "stemmer/export.hpp"

namespace ZQ::Dialog {

class Stemmer;

// How Stemmer::stem_sentence cuts a sentence.
enum class SentenceSplit {
  kPieces,     // English, French: pieces between the matches of `rx`, each stemmed
  kMorphemes,  // a Snowball stemmer with a tagger: one base form per morpheme
  kWhole,      // Japanese and unknown codes: the sentence whole
  kSpaces,     // a language without its Snowball stemmer: tokens between spaces
};

// The split `stemmer` uses. Never throws.
DIALOG_STEMMER_EXPORT SentenceSplit sentenceSplit(const Stemmer& stemmer);

// True when stem_sentence on `stemmer` gives, for any sentence, stemword of
// each part between the bytes ' ' and '\'' (empty parts included): the split is
// kPieces and `rx` is still the load-time "[ ']". False once a caller changed
// `rx`. Never throws.
DIALOG_STEMMER_EXPORT bool splitsAtSpaceAndApostrophe(const Stemmer& stemmer);

// The number of word forms in the lemma dictionary of `stemmer` (0 for
// Japanese, unknown codes and a missing or unusable file).
DIALOG_STEMMER_EXPORT std::size_t lemmaPairs(const Stemmer& stemmer);

// True when `stemmer` holds a MeCab tagger, i.e. a "jpj" stemmer whose
// dictionary opened.
DIALOG_STEMMER_EXPORT bool taggerOpened(const Stemmer& stemmer);

// The lemma file of `language` as data of package "dialog":
// "lemmatizer/frf/lemma" for "frf", "lemmatizer/enu/lemma" for any other code.
DIALOG_STEMMER_EXPORT std::string lemmaDataPath(const std::string& language);

// Lets every later lemma file load use up to `threads` threads (0 and 1 mean
// one, the default): a UTF-8 file of at least twice `minPartBytes` is then cut
// at pairs of lines and its parts read side by side, into the same map. For
// callers that already use several cores, such as a tool's worker threads.
DIALOG_STEMMER_EXPORT void setLemmaLoadThreads(unsigned threads,
                                               std::size_t minPartBytes = std::size_t{256} << 10);

}  // namespace ZQ::Dialog

#endif  // DIALOG_STEMMER_INTERNALS_HPP
