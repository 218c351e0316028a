#include "corpus/line_stemmer.hpp"

namespace dialog_corpus {

LineStemmer::LineStemmer(ZQ::Dialog::Stemmer& stemmer) : stemmer_(stemmer) {}

void LineStemmer::stemSentence(const std::string& sentence, std::vector<std::string>& stems) {
  stemmer_.stem_sentence(sentence, stems);
}

void LineStemmer::stemRecord(const std::string& line, Format format, bool words, std::string& out) {
  elements_.clear();
  if (words) {
    std::string word = line;
    elements_.emplace_back();
    stemmer_.stemword(word, elements_.back());
  } else {
    stemSentence(line, elements_);
  }
  formatRecord(format, words, elements_, out);
}

void LineStemmer::stemText(std::string_view text, Format format, bool words, std::string& out) {
  std::string line;
  while (!text.empty()) {
    const std::size_t end = text.find('\n');
    line.assign(text.substr(0, end));
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    if (!line.empty() && line.back() == '\r') line.pop_back();
    stemRecord(line, format, words, out);
  }
}

}  // namespace dialog_corpus
