// The morpheme mode against a bare parseToNode walk that applies the same rule
// plainly: MeCab's own tagger, each feature record split whole into fields.
// The first byte picks the dictionary: the system's IPA dictionary, the tiny
// UniDic-layout one (with a quoted field) or Debian's unidic-mecab when it is
// installed, on arbitrary bytes.
#include <cctype>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "corpus/morphemes.hpp"
#include "invariant.hpp"
#include "testing/files.hpp"
#include "testing/mecab.hpp"

namespace {

using namespace ZQ::Dialog::corpus;
using namespace ZQ::Dialog::testing;

// Fields as MeCab's CSV reader gives them: quotes around a field removed.
std::vector<std::string> split(const std::string& feature) {
  std::vector<std::string> fields(1);
  bool quoted = false;
  for (std::size_t i = 0; i < feature.size(); ++i) {
    const char c = feature[i];
    if (c == '"' && (quoted || fields.back().empty())) {
      if (quoted && i + 1 < feature.size() && feature[i + 1] == '"') fields.back() += feature[++i];
      quoted = !quoted;
    } else if (c == ',' && !quoted) {
      fields.emplace_back();
    } else {
      fields.back() += c;
    }
  }
  return fields;
}

std::string plainElement(DictionaryLayout layout, const MeCab::Node& node) {
  const std::string surface(node.surface, node.length);
  const std::vector<std::string> f = split(node.feature ? node.feature : "");
  const auto field = [&](std::size_t i) {
    return i < f.size() && !f[i].empty() && f[i] != "*" ? f[i] : surface;
  };
  if (node.stat == MECAB_UNK_NODE) return surface;
  if (layout == DictionaryLayout::kIpadic) return field(6);
  bool ascii = true;
  for (const char c : surface) ascii = ascii && static_cast<unsigned char>(c) < 0x80;
  if (f.size() < 2 || ascii || f[0] == "補助記号" || f[0] == "記号" || f[0] == "空白" ||
      f[1] == "数詞")
    return surface;
  if (f[1] == "固有名詞") return field(10);
  const std::string lexeme = field(7);
  return lexeme.substr(0, lexeme.find('-', 1));
}

// A UniDic numeral written in digits (ASCII or full-width).
bool digitNumeral(DictionaryLayout layout, const MeCab::Node& node) {
  const std::string surface(node.surface, node.length);
  const std::vector<std::string> f = split(node.feature ? node.feature : "");
  if (layout != DictionaryLayout::kUnidic || node.stat == MECAB_UNK_NODE || f.size() < 2 ||
      f[1] != "数詞" || surface.empty())
    return false;
  for (std::size_t i = 0; i < surface.size(); ++i) {
    if (std::isdigit(static_cast<unsigned char>(surface[i]))) continue;
    if (surface.compare(i, 2, "\xEF\xBC") != 0 || i + 2 >= surface.size() ||
        static_cast<unsigned char>(surface[i + 2]) - 0x90u >= 10)
      return false;
    i += 2;
  }
  return true;
}

bool blank(std::string_view text) {
  while (!text.empty())
    if (text.substr(0, 3) == "\xE3\x80\x80")
      text.remove_prefix(3);
    else if (std::string_view(" \t\v\f\r").find(text.front()) != std::string_view::npos)
      text.remove_prefix(1);
    else
      return false;
  return true;
}

struct Side {
  MorphemeStemmer* mode;
  MeCab::Tagger* tagger;
};

// Never destroyed, so that the leak check finds them reachable.
Side* setUp() {
  static const DataRoot data;
  static const TempDir dictionaries;
  check(missing(Need::kIpaDictionary).empty(), "no IPA dictionary (mecab-ipadic-utf8)");
  const std::string unidic = dictionaries.path() + "/unidic";
  installDictionary(unidic, Layout::kUnidic);
  data.linkDictionary(ipadicDir());
  data.linkDictionary(unidic, false, "unidic");
  static const DataRoot debian;  // unidic-mecab, else the tiny one again
  const std::string installed = "/var/lib/mecab/dic/unidic";
  debian.linkDictionary(std::filesystem::exists(installed + "/sys.dic") ? installed : unidic, false,
                        "unidic");
  static Side sides[3];
  const char* names[] = {"ipadic", "unidic", "unidic"};
  for (int i = 0; i < 3; ++i) {
    // The last prefix serves the last side; the first two are found before it.
    const ScopedEnv prefix("KU_PREFIX_PATH", (i < 2 ? data : debian).path());
    std::string error;
    const auto dictionary = MorphemeDictionary::open(names[i], error);
    check(dictionary != nullptr, "a dictionary does not open");
    sides[i].mode = new MorphemeStemmer(dictionary);
    sides[i].tagger = openMecab(dictionary->directory()).release();
    check(sides[i].tagger, "MeCab's own tagger does not open");
  }
  return sides;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0 || size > 4096) return 0;  // MeCab's lattice grows with the sentence
  static Side* const sides = setUp();
  const Side& side = sides[data[0] % 3];
  const DictionaryLayout layout =
      data[0] % 3 ? DictionaryLayout::kUnidic : DictionaryLayout::kIpadic;
  const std::string sentence(reinterpret_cast<const char*>(data) + 1, size - 1);
  std::vector<std::string> mode{"kept"}, plain{"kept"};
  side.mode->stemSentence(sentence, mode);
  const char* numberEnd = nullptr;  // where the last digit numeral ended
  for (const MeCab::Node* node = side.tagger->parseToNode(sentence.data(), sentence.size()); node;
       node = node->next) {
    if (node->stat == MECAB_BOS_NODE || node->stat == MECAB_EOS_NODE) continue;
    const bool digits = digitNumeral(layout, *node);
    if (digits && numberEnd == node->surface)
      plain.back().append(node->surface, node->length);
    else if (digits || !blank(std::string_view(node->surface, node->length)))
      plain.push_back(plainElement(layout, *node));
    numberEnd = digits ? node->surface + node->length : nullptr;
  }
  check(mode == plain, "the mode differs from the bare walk");
  return 0;
}
