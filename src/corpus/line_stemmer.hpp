#ifndef DIALOG_CORPUS_LINE_STEMMER_HPP
#define DIALOG_CORPUS_LINE_STEMMER_HPP

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "corpus/format.hpp"
#include "corpus/shared_stems.hpp"
#include "corpus/stem_cache.hpp"
#include "stemmer/stemmer.hpp"

namespace ZQ::Dialog::corpus {

// Stems corpus lines for dialog-stem and the Python module: the elements are
// those of Stemmer::stem_sentence and Stemmer::stemword, byte for byte.
//
// English and French lines (up to a NUL, where the library stops reading;
// invalid UTF-8 included) are cut at the bytes space and apostrophe, and each
// piece is stemmed through a bounded cache of stemword results: corpus text
// repeats its words, so most pieces skip the library. Lines where a U+FEFF
// starts a later piece, other languages and a caller's own ZQ::Dialog::rx take
// the library's stem_sentence. Words (`words`) go through the same cache in
// every language: stemword depends on the word alone.
//
// Not thread-safe: one LineStemmer per thread; any number may share a Stemmer.
class LineStemmer {
 public:
  // Pieces and words cached by default, about 15 MB at most; the cache is
  // emptied when it is full. Tens of megabytes of text rarely hold more words.
  static constexpr std::size_t kCacheEntries = std::size_t{1} << 18;
  // Longer pieces and words go to the library each time, never into the cache.
  static constexpr std::size_t kMaxCachedBytes = 64;

  // Stems with `stemmer`, which must outlive this object.
  explicit LineStemmer(ZQ::Dialog::Stemmer& stemmer);
  // The same with a cache of at most `cacheEntries` pieces (0: none kept).
  LineStemmer(ZQ::Dialog::Stemmer& stemmer, std::size_t cacheEntries);

  // Appends to `stems` exactly what stemmer.stem_sentence(sentence, stems)
  // appends, for any bytes; never removes anything.
  void stemSentence(const std::string& sentence, std::vector<std::string>& stems);

  // Appends to `out` the record of one input `line` (without its line end) in
  // `format`: its sentence elements, or with `words` its stemword result.
  void stemRecord(const std::string& line, Format format, bool words, std::string& out);

  // Appends to `out` the record of every line of `text`, as dialog-stem reads
  // its input: a line ends at '\n' or at the end of `text` (empty text: no
  // line), and one '\r' before that end is dropped.
  void stemText(std::string_view text, Format format, bool words, std::string& out);

  // From now on words missing from this object's cache are looked for in
  // `shared` (which must outlive it, or be null: none) before the library, and
  // stored there, while `shared` holds the stems of the stemmer's current
  // implementation.
  void share(SharedStems* shared) { shared_ = shared; }

  // From now on stemRecord and stemText call `drain(out)` whenever `out` holds
  // `bytes` or more between two elements, also inside one long line; `drain`
  // writes the text out and empties `out`. An empty `drain` turns this off.
  void setDrain(std::size_t bytes, std::function<void(std::string&)> drain);

 private:
  using Stem = StemCache::Stem;

  // Whether the library's stem_sentence cuts lines at spaces and apostrophes
  // (its regex-split path); forgets the cache when the stemmer was reassigned.
  bool splitsPieces();
  // The stemword result of `word`, from the cache or from the library; valid
  // until the next call.
  Stem stem(std::string_view word);
  // Calls `use(stem)` for each piece of `text` when cutting its bytes gives the
  // library's pieces; false, having called nothing, when it does not.
  template <typename Use>
  bool forEachPieceStem(std::string_view text, Use&& use);
  // One record; `split` is splitsPieces() for the call it serves.
  void stemLine(std::string_view line, Format format, bool words, bool split, std::string& out);
  void drainIfFull(std::string& out) {
    if (drain_ && out.size() >= drainBytes_) drain_(out);
  }

  ZQ::Dialog::Stemmer& stemmer_;
  const ZQ::Dialog::StemmerPrivate* impl_ = nullptr;  // whose results the cache holds
  StemCache cache_;
  SharedStems* shared_ = nullptr;
  std::string word_;                   // a word handed to the library, reused
  std::string result_;                 // and its stem
  std::string line_;                   // a line handed to the library, reused
  std::vector<std::string> elements_;  // reused from record to record
  std::size_t drainBytes_ = 0;
  std::function<void(std::string&)> drain_;
};

}  // namespace ZQ::Dialog::corpus

#endif  // DIALOG_CORPUS_LINE_STEMMER_HPP
