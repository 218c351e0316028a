#ifndef DIALOG_PYTHON_PY_STEMMER_HPP
#define DIALOG_PYTHON_PY_STEMMER_HPP

#include <pybind11/pybind11.h>

#include <memory>
#include <string>
#include <vector>

#include "corpus/morphemes.hpp"
#include "stemmer/stemmer.hpp"

struct Workspace;

// The object behind dialog_stemmer.Stemmer: one ZQ::Dialog::Stemmer of one
// language code, or in the morpheme mode one MeCab dictionary, and the
// conversions between Python objects and their calls. Thread-safe as the
// library is for its code ("enu", "frf": any number of threads; "jpj": one at
// a time); in the morpheme mode any number of threads, each call with a
// lattice of its own. Every method is entered with the GIL held and releases
// it while it stems.
class PyStemmer {
 public:
  // Builds the stemmer of `code`. For "enu" and "frf" without a usable lemma
  // file, logs one WARNING (logger "dialog_stemmer") that names the file or
  // the places it was looked for. Never throws for an unknown code.
  // With `morphemes`, the morpheme mode of "jpj" on the dictionary `dictionary`
  // (None: "ipadic"), opened once per process while any stemmer holds it.
  // ValueError for morphemes with another code, for a dictionary without
  // morphemes and for an unknown dictionary name; FileNotFoundError when the
  // dictionary is missing; RuntimeError when it does not open or is of
  // neither layout; each with a one-line message naming it.
  PyStemmer(const pybind11::str& code, bool morphemes, const pybind11::object& dictionary);

  const std::string& language() const { return language_; }
  bool morphemes() const { return dictionary_ != nullptr; }
  // The dictionary's name in the morpheme mode, else "".
  const std::string& dictionaryName() const { return dictionaryName_; }

  // The lemma of `word`, or `word` unchanged. TypeError for a non-str,
  // UnicodeEncodeError for a lone surrogate, ValueError in the morpheme mode.
  std::string stemword(const pybind11::str& word) const;

  // The list of stem_sentence's elements for `sentence`; raises as stemword.
  pybind11::list stemSentence(const pybind11::str& sentence) const;

  // [stemSentence(s) for s in sentences] for any iterable of str. TypeError
  // for a str, bytes or bytearray given whole, and for a non-str element,
  // before anything is stemmed.
  pybind11::list stemSentences(const pybind11::handle& sentences) const;

  // The bytes that dialog-stem --format `format` (--words with `words`)
  // writes for the lines of `data`, any bytes included. TypeError when `data`
  // is not a contiguous bytes-like object, ValueError for an unknown format
  // and for `words` in the morpheme mode (the tool refuses --words there).
  pybind11::bytes stemText(const pybind11::handle& data, const std::string& format,
                           bool words) const;

  PyStemmer(PyStemmer&&) noexcept;
  ~PyStemmer();  // with the GIL held, as pybind11 destroys its objects

 private:
  class Lease;

  std::string language_;
  std::string dictionaryName_;
  // Owned here and never copied: copies of a Stemmer share one implementation.
  // Null in the morpheme mode, which stems with `dictionary_` instead.
  std::unique_ptr<ZQ::Dialog::Stemmer> stemmer_;
  std::shared_ptr<const ZQ::Dialog::corpus::MorphemeDictionary> dictionary_;
  // Workspaces that calls left behind, whose caches the next calls reuse;
  // guarded by the GIL. Mutable: caches change no result.
  mutable std::vector<std::unique_ptr<Workspace>> idle_;
};

// The UTF-8 bytes of a str. UnicodeEncodeError for a lone surrogate,
// TypeError for anything but a str.
std::string utf8(pybind11::handle text);

// TypeError when `items`, given where a sequence of texts is expected, is
// itself one text (str, bytes, bytearray, memoryview), whose iteration would
// yield characters or numbers.
void rejectSingleText(pybind11::handle items, const char* function);

#endif  // DIALOG_PYTHON_PY_STEMMER_HPP
