#ifndef DIALOG_CORPUS_LINE_STEMMER_HPP
#define DIALOG_CORPUS_LINE_STEMMER_HPP

#include <string>
#include <string_view>
#include <vector>

#include "corpus/format.hpp"
#include "stemmer/stemmer.hpp"

namespace dialog_corpus {

// Stems corpus lines for dialog-stem and the Python module: the elements are
// those of Stemmer::stem_sentence and Stemmer::stemword, byte for byte.
// Not thread-safe: one LineStemmer per thread; any number may share a Stemmer.
class LineStemmer {
 public:
  // Stems with `stemmer`, which must outlive this object.
  explicit LineStemmer(ZQ::Dialog::Stemmer& stemmer);

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

 private:
  ZQ::Dialog::Stemmer& stemmer_;
  std::vector<std::string> elements_;  // reused from record to record
};

}  // namespace dialog_corpus

#endif  // DIALOG_CORPUS_LINE_STEMMER_HPP
