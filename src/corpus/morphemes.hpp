#ifndef DIALOG_CORPUS_MORPHEMES_HPP
#define DIALOG_CORPUS_MORPHEMES_HPP

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "corpus/format.hpp"

namespace MeCab {
class Model;
class Tagger;
class Lattice;
}  // namespace MeCab

namespace ZQ::Dialog::corpus {

// How a dictionary's entries lay out their feature fields, and so which field
// gives a morpheme's element.
enum class DictionaryLayout {
  kIpadic,  // 9 fields; the 7th is the base form (原形)
  kUnidic,  // 29 fields; the 8th is the lexeme (語彙素), the 11th the written base form
};

// One MeCab model on the dictionary directory installed as data "data/<name>/"
// of package "dialog", opened once and shared by every thread that stems.
// Like the library's own tagger it is opened on that directory alone (it is
// both MeCab's resource file and dictionary directory), so MeCab's system
// default dictionary, /etc/mecabrc, ~/.mecabrc and MECABRC never count.
//
// Thread-safe: immutable once open() has returned it.
class MorphemeDictionary {
 public:
  // The names that --dictionary accepts: "ipadic" (the default) and "unidic".
  static bool knownName(std::string_view name);

  // Finds data "data/<name>/", opens it with MeCab and recognises its layout
  // from the feature fields of its system dictionary's entries (9: ipadic, 29:
  // UniDic), whatever the name. On failure returns null and sets `error` to
  // one line, without a line end, that names the dictionary: unknown name, not
  // found, does not open, or of neither layout. Never throws for bad data and
  // never writes to standard output or standard error.
  static std::shared_ptr<const MorphemeDictionary> open(const std::string& name,
                                                        std::string& error);

  ~MorphemeDictionary();
  MorphemeDictionary(const MorphemeDictionary&) = delete;
  MorphemeDictionary& operator=(const MorphemeDictionary&) = delete;

  const std::string& name() const { return name_; }
  // The directory as the data lookup gave it.
  const std::string& directory() const { return directory_; }
  DictionaryLayout layout() const { return layout_; }
  // MeCab's model, shared; each MorphemeStemmer makes its own tagger and lattice.
  MeCab::Model& model() const { return *model_; }

 private:
  MorphemeDictionary(std::string name, std::string directory, MeCab::Model* model,
                     DictionaryLayout layout);

  std::string name_;
  std::string directory_;
  MeCab::Model* model_;
  DictionaryLayout layout_;
};

// The element of one morpheme of MeCab's best path, from its surface, its
// feature record (comma-separated, MeCab's CSV quoting) and whether MeCab
// knows the word (`known`: not an unknown-word node).
// ipadic: the base form (7th field); the surface where the word is unknown or
// the field is "*", empty or missing.
// UniDic: the lexeme (8th field) without its "-gloss" suffix; the surface for
// unknown words, symbols, punctuation, blanks, numerals, words written in ASCII
// and where the field is "*", empty or missing; the written base form (11th
// field) for proper nouns. Never throws; reads nothing outside its arguments.
std::string_view morphemeElement(DictionaryLayout layout, std::string_view surface,
                                 std::string_view feature, bool known);

// Writes the elements of sentences and corpus lines: one per morpheme of
// MeCab's best path, in order (morphemeElement), but that blanks (space, tab,
// CR, vertical tab, form feed, U+3000) make no element, so an empty or blank
// line gives an empty record, and that in the UniDic layout adjacent numerals
// written in digits (UniDic cuts "50" into 5 and 0) make one element, their
// surfaces joined.
//
// Not thread-safe: one MorphemeStemmer per thread, each with its own tagger and
// lattice; any number share one MorphemeDictionary, which must outlive them.
class MorphemeStemmer {
 public:
  // Lines longer than this are analysed in pieces cut after the last sentence
  // end (。．！？!?) or space, failing one at a character boundary: MeCab's
  // lattice takes hundreds of bytes a character, and walking one that outgrows
  // the caches takes twice the time (64 KiB pieces: 1.8 times 16 KiB ones).
  static constexpr std::size_t kMaxPieceBytes = std::size_t{1} << 14;

  // A tagger and a lattice of its own on `dictionary` (not null). Throws
  // std::bad_alloc when MeCab cannot make them.
  explicit MorphemeStemmer(std::shared_ptr<const MorphemeDictionary> dictionary);
  ~MorphemeStemmer();
  MorphemeStemmer(const MorphemeStemmer&) = delete;
  MorphemeStemmer& operator=(const MorphemeStemmer&) = delete;

  // Appends the elements of `sentence` (any bytes: NUL, CR and invalid UTF-8
  // are analysed like other characters) to `elements`; never removes any.
  void stemSentence(std::string_view sentence, std::vector<std::string>& elements);

  // Appends to `out` the record of one input `line` (without its line end) in
  // `format`, as dialog-stem writes a sentence's record.
  void stemRecord(std::string_view line, Format format, std::string& out);

  // Appends to `out` the record of every line of `text`, as dialog-stem reads
  // its input: a line ends at '\n' or at the end of `text` (empty text: no
  // line), and one '\r' before that end is dropped.
  void stemText(std::string_view text, Format format, std::string& out);

  // From now on stemRecord and stemText call `drain(out)` whenever `out` holds
  // `bytes` or more between two elements; `drain` writes the text out and
  // empties `out`. An empty `drain` turns this off.
  void setDrain(std::size_t bytes, std::function<void(std::string&)> drain);

 private:
  // Calls `use(element)` for each morpheme of `line`, piece by piece.
  template <typename Use>
  void forEachElement(std::string_view line, Use&& use);
  template <typename Use>
  void analyse(std::string_view piece, Use& use);

  std::shared_ptr<const MorphemeDictionary> dictionary_;
  MeCab::Tagger* tagger_;
  MeCab::Lattice* lattice_;
  std::size_t drainBytes_ = 0;
  std::function<void(std::string&)> drain_;
};

}  // namespace ZQ::Dialog::corpus

#endif  // DIALOG_CORPUS_MORPHEMES_HPP
