#include "corpus/morphemes.hpp"

#include <mecab.h>

#include <new>
#include <utility>

#include "corpus/input_blocks.hpp"

namespace ZQ::Dialog::corpus {

namespace {

// Fields of the feature record that the elements come from.
constexpr std::size_t kIpadicBaseForm = 6;
constexpr std::size_t kUnidicPos1 = 0, kUnidicPos2 = 1, kUnidicLexeme = 7, kUnidicWrittenBase = 10;

// The fields of one feature record, by MeCab's CSV rules: a field that starts
// with a double quote runs to the closing one and is given without its quotes.
class Fields {
 public:
  explicit Fields(std::string_view feature) : rest_(feature) {}
  // Field `index`, which must not be below the index of the last call; false
  // when the record has fewer fields.
  bool at(std::size_t index, std::string_view& field) {
    for (;; ++next_) {
      if (!more_) return false;
      const std::string_view current = cut();
      if (next_ == index) {
        field = current;
        ++next_;
        return true;
      }
    }
  }

 private:
  std::string_view cut() {
    std::size_t end;
    std::string_view field;
    if (!rest_.empty() && rest_.front() == '"') {
      end = rest_.find('"', 1);
      while (end != rest_.npos && end + 1 < rest_.size() && rest_[end + 1] == '"')
        end = rest_.find('"', end + 2);
      field = rest_.substr(1, end == rest_.npos ? rest_.npos : end - 1);
      end = end == rest_.npos ? end : rest_.find(',', end);
    } else {
      end = rest_.find(',');
      field = rest_.substr(0, end);
    }
    more_ = end != rest_.npos;
    rest_.remove_prefix(more_ ? end + 1 : rest_.size());
    return field;
  }

  std::string_view rest_;
  std::size_t next_ = 0;
  bool more_ = true;
};

bool usable(std::string_view field) { return !field.empty() && field != "*"; }

bool isAscii(std::string_view text) {
  for (const char c : text)
    if (static_cast<unsigned char>(c) >= 0x80) return false;
  return true;
}

// Space, tab, vertical tab, form feed, carriage return and U+3000.
bool isBlank(std::string_view text) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (c == ' ' || (c >= '\t' && c <= '\r' && c != '\n')) continue;
    if (text.compare(i, 3, "\xE3\x80\x80") != 0) return false;
    i += 2;
  }
  return true;
}

// UniDic's lexeme of a loanword ends in "-" and the source word ("ウイルス-virus").
std::string_view withoutGloss(std::string_view lexeme) {
  const std::size_t dash = lexeme.find('-', 1);
  return dash == lexeme.npos ? lexeme : lexeme.substr(0, dash);
}

std::string_view unidicElement(std::string_view surface, std::string_view feature) {
  Fields fields(feature);
  std::string_view pos1, pos2, field;
  if (!fields.at(kUnidicPos1, pos1) || !fields.at(kUnidicPos2, pos2)) return surface;
  // Symbols, punctuation, blanks, numerals and Latin script keep their surface.
  if (pos1 == "補助記号" || pos1 == "記号" || pos1 == "空白" || pos2 == "数詞" || isAscii(surface))
    return surface;
  // A proper noun's lexeme is its katakana reading: its written base form instead.
  if (pos2 == "固有名詞")
    return fields.at(kUnidicWrittenBase, field) && usable(field) ? field : surface;
  return fields.at(kUnidicLexeme, field) && usable(field) ? withoutGloss(field) : surface;
}

// A UniDic numeral (数詞) written in digits, ASCII or full-width: UniDic gives
// one morpheme a digit, where a number written so is one word.
bool isDigitNumeral(std::string_view surface, std::string_view feature) {
  std::string_view pos2;
  if (surface.empty() || !Fields(feature).at(kUnidicPos2, pos2) || pos2 != "数詞") return false;
  for (std::size_t i = 0; i < surface.size(); ++i) {
    if (surface[i] >= '0' && surface[i] <= '9') continue;
    // U+FF10 to U+FF19
    if (surface.compare(i, 2, "\xEF\xBC") != 0 || i + 2 >= surface.size() ||
        static_cast<unsigned char>(surface[i + 2]) < 0x90 ||
        static_cast<unsigned char>(surface[i + 2]) > 0x99)
      return false;
    i += 2;
  }
  return true;
}

// Where a piece of at most `limit` bytes of `text` (longer than that) ends:
// after the last sentence end or blank, else at the last character boundary.
std::size_t pieceEnd(std::string_view text, std::size_t limit) {
  const std::string_view window = text.substr(0, limit);
  std::size_t end = window.find_last_of(" !?");
  for (const char* mark : {"\xE3\x80\x82", "\xEF\xBC\x8E", "\xEF\xBC\x81", "\xEF\xBC\x9F"}) {
    const std::size_t at = window.rfind(mark);
    if (at != window.npos && (end == window.npos || at + 2 > end)) end = at + 2;
  }
  if (end != window.npos && end > 0) return end + 1;
  std::size_t boundary = limit;
  // Back over continuation bytes, at most three: further back, invalid bytes.
  while (boundary > limit - 3 && (static_cast<unsigned char>(text[boundary]) & 0xC0) == 0x80)
    --boundary;
  return boundary;
}

}  // namespace

std::string_view morphemeElement(DictionaryLayout layout, std::string_view surface,
                                 std::string_view feature, bool known) {
  if (!known) return surface;
  if (layout == DictionaryLayout::kUnidic) return unidicElement(surface, feature);
  std::string_view base;
  return Fields(feature).at(kIpadicBaseForm, base) && usable(base) ? base : surface;
}

MorphemeStemmer::MorphemeStemmer(std::shared_ptr<const MorphemeDictionary> dictionary)
    : dictionary_(std::move(dictionary)),
      tagger_(dictionary_->model().createTagger()),
      lattice_(dictionary_->model().createLattice()) {
  if (!tagger_ || !lattice_) {
    delete tagger_;
    delete lattice_;
    throw std::bad_alloc();
  }
}

MorphemeStemmer::~MorphemeStemmer() {
  delete lattice_;
  delete tagger_;
}

void MorphemeStemmer::setDrain(std::size_t bytes, std::function<void(std::string&)> drain) {
  drainBytes_ = bytes;
  drain_ = std::move(drain);
}

template <typename Use>
void MorphemeStemmer::analyse(std::string_view piece, Use& use) {
  lattice_->set_sentence(piece.data(), piece.size());
  if (!tagger_->parse(lattice_)) return;
  const DictionaryLayout layout = dictionary_->layout();
  // UniDic's digits of one number, adjacent in the piece, make one element.
  std::string_view number;
  for (const MeCab::Node* node = lattice_->bos_node(); node; node = node->next) {
    if (node->stat == MECAB_BOS_NODE || node->stat == MECAB_EOS_NODE) continue;
    const std::string_view surface(node->surface, node->length);
    const std::string_view feature = node->feature ? node->feature : "";
    const bool known = node->stat != MECAB_UNK_NODE;
    if (layout == DictionaryLayout::kUnidic && known && isDigitNumeral(surface, feature)) {
      if (!number.empty() && number.data() + number.size() == surface.data()) {
        number = std::string_view(number.data(), number.size() + surface.size());
        continue;
      }
      if (!number.empty()) use(number);
      number = surface;
      continue;
    }
    if (!number.empty()) use(number), number = {};
    if (!isBlank(surface)) use(morphemeElement(layout, surface, feature, known));
  }
  if (!number.empty()) use(number);
}

template <typename Use>
void MorphemeStemmer::forEachElement(std::string_view line, Use&& use) {
  while (line.size() > kMaxPieceBytes) {
    const std::size_t end = pieceEnd(line, kMaxPieceBytes);
    analyse(line.substr(0, end), use);
    line.remove_prefix(end);
  }
  if (!line.empty()) analyse(line, use);
}

void MorphemeStemmer::stemSentence(std::string_view sentence, std::vector<std::string>& elements) {
  forEachElement(sentence, [&](std::string_view element) { elements.emplace_back(element); });
}

void MorphemeStemmer::stemRecord(std::string_view line, Format format, std::string& out) {
  RecordWriter record(format, false, out);
  forEachElement(line, [&](std::string_view element) {
    record.add(element);
    if (drain_ && out.size() >= drainBytes_) drain_(out);
  });
  record.finish();
  if (drain_ && out.size() >= drainBytes_) drain_(out);
}

void MorphemeStemmer::stemText(std::string_view text, Format format, std::string& out) {
  forEachLine(text, [&](std::string_view line) { stemRecord(line, format, out); });
}

}  // namespace ZQ::Dialog::corpus
