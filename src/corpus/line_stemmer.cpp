#include "corpus/line_stemmer.hpp"

#include <cstring>
#include <utility>

#include "corpus/input_blocks.hpp"
#include "stemmer/internals.hpp"

namespace ZQ::Dialog::corpus {
namespace {

bool isSeparator(char c) { return c == ' ' || c == '\''; }

// The bytes before the first NUL: all that the library decodes of a sentence.
std::string_view beforeNul(std::string_view text) {
  const void* nul = std::memchr(text.data(), '\0', text.size());
  return nul ? text.substr(0, static_cast<std::size_t>(static_cast<const char*>(nul) - text.data()))
             : text;
}

// True when decoding each piece between spaces and apostrophes by itself gives
// the decoded text's pieces. Qt's decoder replaces a bad sequence the same way
// whether a separator or the end of the text cuts it, so invalid bytes decode
// alike; but it drops a U+FEFF at the very start only, so stemword would drop
// one that opens a later piece, where the whole text keeps it.
bool piecesDecodeAlike(std::string_view text) {
  constexpr std::string_view kBom = "\xEF\xBB\xBF";
  for (std::size_t i = text.find(kBom, 1); i != std::string_view::npos; i = text.find(kBom, i + 1))
    if (isSeparator(text[i - 1])) return false;
  return true;
}

}  // namespace

LineStemmer::LineStemmer(ZQ::Dialog::Stemmer& stemmer) : LineStemmer(stemmer, kCacheEntries) {}

LineStemmer::LineStemmer(ZQ::Dialog::Stemmer& stemmer, std::size_t cacheEntries)
    : stemmer_(stemmer), cache_(cacheEntries) {}

void LineStemmer::setDrain(std::size_t bytes, std::function<void(std::string&)> drain) {
  drainBytes_ = bytes;
  drain_ = std::move(drain);
}

bool LineStemmer::splitsPieces() {
  const ZQ::Dialog::StemmerPrivate* impl = stemmer_.impl;
  if (impl != impl_) {
    cache_.clear();
    impl_ = impl;
  }
  return ZQ::Dialog::splitsAtSpaceAndApostrophe(stemmer_);
}

LineStemmer::Stem LineStemmer::stem(std::string_view word) {
  Stem found;
  const bool cached = word.size() <= kMaxCachedBytes;
  if (cached && cache_.find(word, found)) return found;
  SharedStems* const shared = shared_ && shared_->impl() == impl_ ? shared_ : nullptr;
  if (cached && shared && shared->find(word, found)) {
    cache_.insert(word, found.text, found.plain);
    return found;
  }
  word_.assign(word.data(), word.size());
  stemmer_.stemword(word_, result_);
  const bool plain = isPlainText(result_);
  if (cached) {
    cache_.insert(word, result_, plain);
    if (shared) shared->insert(word, result_, plain);
  }
  return {result_, plain};
}

template <typename Use>
bool LineStemmer::forEachPieceStem(std::string_view text, Use&& use) {
  text = beforeNul(text);
  if (!piecesDecodeAlike(text)) return false;
  std::size_t start = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (isSeparator(text[i])) {
      use(stem(text.substr(start, i - start)));
      start = i + 1;
    }
  }
  use(stem(text.substr(start)));
  return true;
}

void LineStemmer::stemSentence(const std::string& sentence, std::vector<std::string>& stems) {
  if (splitsPieces() && forEachPieceStem(sentence, [&](Stem s) { stems.emplace_back(s.text); }))
    return;
  stemmer_.stem_sentence(sentence, stems);
}

void LineStemmer::stemLine(std::string_view line, Format format, bool words, bool split,
                           std::string& out) {
  RecordWriter record(format, words, out);
  const auto write = [&](Stem s) {
    if (s.plain)
      record.addPlain(s.text);
    else
      record.add(s.text);
    drainIfFull(out);
  };
  if (words) {
    write(stem(line));
  } else if (!split || !forEachPieceStem(line, write)) {
    elements_.clear();
    line_.assign(line.data(), line.size());
    stemmer_.stem_sentence(line_, elements_);
    for (const std::string& element : elements_) {
      record.add(element);
      drainIfFull(out);
    }
  }
  record.finish();
}

void LineStemmer::stemRecord(const std::string& line, Format format, bool words, std::string& out) {
  stemLine(line, format, words, splitsPieces(), out);
  drainIfFull(out);
}

void LineStemmer::stemText(std::string_view text, Format format, bool words, std::string& out) {
  const bool split = splitsPieces();
  forEachLine(text, [&](std::string_view line) {
    stemLine(line, format, words, split, out);
    drainIfFull(out);
  });
}

}  // namespace ZQ::Dialog::corpus
