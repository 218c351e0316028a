#include "testing/generated_data.hpp"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <unordered_set>
#include <utility>

#include <QString>

#include "testing/files.hpp"

namespace fs = std::filesystem;

namespace ZQ::Dialog::testing {
namespace {

const char* const kOnsets[] = {"",   "",   "b",  "c",  "d",  "f",  "g",  "h",   "j",  "l",
                               "m",  "n",  "p",  "r",  "s",  "t",  "v",  "br",  "ch", "cl",
                               "cr", "dr", "fl", "fr", "gr", "pl", "pr", "qu",  "sh", "st",
                               "th", "tr", "w",  "k",  "sp", "gl", "ç",  "str", "z",  "bl"};
const char* const kVowels[] = {"a",  "e",  "i",  "o",  "u", "ou", "ai", "ea",
                               "ee", "oi", "au", "ie", "a", "e",  "i",  "o"};
const char* const kAccented[] = {"é", "è", "ê", "à", "â", "ô", "û", "î", "ï", "ë"};
const char* const kCodas[] = {"",  "",   "",   "",   "n",  "r", "s", "l", "t",
                              "m", "nt", "rt", "st", "ck", "x", "d", "ng"};
const char* const kEndings[] = {"s",   "es",  "ed",   "ing",   "er",    "est",  "ly",  "ness",
                                "e",   "ent", "ons",  "ez",    "ait",   "é",    "ée",  "és",
                                "ées", "ais", "ions", "èrent", "eront", "ment", "ité", "ful"};

template <typename T, std::size_t N>
constexpr std::size_t count(const T (&)[N]) {
  return N;
}

std::string capitalised(const std::string& word) {
  QString text = QString::fromUtf8(word.c_str());
  if (!text.isEmpty()) text[0] = text[0].toUpper();
  return text.toUtf8().toStdString();
}

}  // namespace

WordGenerator::WordGenerator(unsigned long long seed) : state_(seed * 0x9E3779B97F4A7C15ULL + 1) {}

// splitmix64: the same sequence on every platform, unlike <random>'s distributions.
unsigned long long WordGenerator::next() {
  unsigned long long z = (state_ += 0x9E3779B97F4A7C15ULL);
  z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ULL;
  z = (z ^ (z >> 27)) * 0x94D049BB133111EBULL;
  return z ^ (z >> 31);
}

std::string WordGenerator::stem() {
  const std::size_t roll = below(10);
  const std::size_t syllables = roll < 3 ? 1 : roll < 8 ? 2 : 3;
  std::string text;
  for (std::size_t i = 0; i < syllables; ++i) {
    text += kOnsets[below(count(kOnsets))];
    text += below(100) < 7 ? kAccented[below(count(kAccented))] : kVowels[below(count(kVowels))];
  }
  if (below(100) < 60) text += kCodas[below(count(kCodas))];
  return text;
}

std::string WordGenerator::word() {
  std::string text = stem();
  if (below(4) != 0) text += kEndings[below(count(kEndings))];
  return below(100) < 5 ? capitalised(text) : text;
}

std::vector<LemmaPair> WordGenerator::pairs(std::size_t n) {
  std::vector<LemmaPair> result;
  result.reserve(n);
  std::unordered_set<std::string> seen;
  seen.reserve(n * 2);
  auto add = [&](std::string form, const std::string& lemma) {
    if (result.size() < n && seen.insert(form).second) result.push_back({std::move(form), lemma});
  };
  while (result.size() < n) {
    const std::string base = stem();
    const std::string lemma = below(100) < 30 ? base + "er" : base;
    add(lemma, lemma);
    const std::size_t forms = 1 + below(6);
    for (std::size_t i = 0; i < forms; ++i) {
      std::string form = base + kEndings[below(count(kEndings))];
      if (below(100) < 5) form = capitalised(form);
      add(std::move(form), lemma);
    }
  }
  return result;
}

void sortByForm(std::vector<LemmaPair>& pairs) {
  std::vector<std::pair<QString, std::size_t>> keys;
  keys.reserve(pairs.size());
  for (std::size_t i = 0; i < pairs.size(); ++i)
    keys.emplace_back(QString::fromUtf8(pairs[i].form.c_str()), i);
  std::sort(keys.begin(), keys.end(),
            [](const auto& a, const auto& b) { return a.first < b.first; });
  std::vector<LemmaPair> sorted;
  sorted.reserve(pairs.size());
  for (const auto& key : keys) sorted.push_back(std::move(pairs[key.second]));
  pairs = std::move(sorted);
}

void shuffle(std::vector<LemmaPair>& pairs, unsigned long long seed) {
  // Fisher-Yates over xorshift64, so the order is the same on every platform.
  unsigned long long state = seed * 0x2545F4914F6CDD1DULL + 7;
  for (std::size_t i = pairs.size(); i > 1; --i) {
    state ^= state << 13;
    state ^= state >> 7;
    state ^= state << 17;
    std::swap(pairs[i - 1], pairs[state % i]);
  }
}

std::string lemmaFileText(const std::vector<LemmaPair>& pairs) {
  std::string text;
  for (const LemmaPair& pair : pairs) text += pair.form + '\n' + pair.lemma + '\n';
  return text;
}

const TempDir& processTempDir() {
  static const TempDir dir;
  return dir;
}

std::optional<std::string> defaultDataPrefix(const std::string& lang) {
  std::vector<std::string> candidates;
  if (const char* list = std::getenv("DIALOG_BENCH_DATA")) {
    std::stringstream entries(list);
    for (std::string entry; std::getline(entries, entry, ':');)
      if (!entry.empty()) candidates.push_back(entry);
  }
  candidates.emplace_back(DIALOG_STAGED_PREFIX);
  for (const std::string& prefix : candidates) {
    std::error_code ignored;
    if (fs::is_regular_file(prefix + "/share/dialog/lemmatizer/" + lang + "/lemma", ignored))
      return prefix;
  }
  return std::nullopt;
}

std::vector<std::string> udSentences(const std::string& lang) {
  const std::string file = lang == "frf" ? "/fr_gsd-ud-dev.conllu" : "/en_ewt-ud-dev.conllu";
  std::ifstream in(DIALOG_UD_DIR + file);
  std::vector<std::string> sentences;
  const std::string marker = "# text = ";
  for (std::string line; std::getline(in, line);) {
    if (line.compare(0, marker.size(), marker) != 0) continue;
    if (!line.empty() && line.back() == '\r') line.pop_back();
    sentences.push_back(line.substr(marker.size()));
  }
  return sentences;
}

std::vector<std::string> WordGenerator::sentences(std::size_t n) {
  std::vector<std::string> result;
  for (std::size_t i = 0; i < n; ++i) {
    const std::size_t length = 4 + below(17);
    std::string sentence;
    for (std::size_t w = 0; w < length; ++w) {
      std::string piece = word();
      // Elisions and possessives, so that apostrophes cut words too.
      if (below(11) == 0) piece = "l'" + piece;
      if (below(13) == 0) piece += "'s";
      sentence += (w ? " " : "") + piece;
    }
    result.push_back(sentence + " .");
  }
  return result;
}

std::vector<std::string> splitPieces(const std::string& sentence) {
  std::vector<std::string> pieces;
  std::size_t start = 0;
  for (;;) {
    const std::size_t end = sentence.find_first_of(" '", start);
    pieces.push_back(sentence.substr(start, end == std::string::npos ? end : end - start));
    if (end == std::string::npos) return pieces;
    start = end + 1;
  }
}

std::vector<std::string> realisticSentences(const std::string& lang) {
  std::vector<std::string> sentences = udSentences(lang);
  if (sentences.empty()) sentences = WordGenerator(lang == "frf" ? 2 : 1).sentences(2000);
  return sentences;
}

const RealisticData& realisticData(const std::string& lang) {
  static std::map<std::string, RealisticData> cache;
  if (auto found = cache.find(lang); found != cache.end()) return found->second;
  RealisticData data;
  if (const auto prefix = defaultDataPrefix(lang)) {
    data = {*prefix, "default data"};
  } else {
    std::vector<LemmaPair> pairs = WordGenerator(lang == "frf" ? 77 : 33).pairs(100000);
    std::unordered_set<std::string> seen;
    for (const LemmaPair& pair : pairs) seen.insert(pair.form);
    bool take = true;
    for (const std::string& sentence : realisticSentences(lang))
      for (const std::string& piece : splitPieces(sentence)) {
        if (piece.empty() || !seen.insert(piece).second) continue;
        if (take)
          pairs.push_back(
              {piece, QString::fromUtf8(piece.c_str()).toLower().toUtf8().toStdString()});
        take = !take;
      }
    shuffle(pairs, 5);
    const std::string name = "realistic_" + lang;
    processTempDir().write(name + "/share/dialog/lemmatizer/" + lang + "/lemma",
                           lemmaFileText(pairs));
    data = {processTempDir().path() + "/" + name, "generated"};
  }
  return cache.emplace(lang, data).first->second;
}

}  // namespace ZQ::Dialog::testing
