#include "bench_support.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <sstream>
#include <stdexcept>
#include <unordered_set>
#include <utility>

#include <QString>

namespace fs = std::filesystem;

namespace dialog_bench {
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

struct TempRoot {
  TempRoot() {
    const char* tmp = std::getenv("TMPDIR");
    std::string pattern = std::string(tmp && *tmp ? tmp : "/tmp") + "/dialog-bench.XXXXXX";
    if (!mkdtemp(pattern.data())) throw std::runtime_error("mkdtemp failed");
    path = pattern;
  }
  ~TempRoot() {
    if (std::getenv("DIALOG_BENCH_KEEP_TEMP")) return;  // for looking at the generated files
    std::error_code ignored;
    fs::remove_all(path, ignored);
  }
  std::string path;
};

std::optional<std::string> getEnv(const char* name) {
  const char* value = std::getenv(name);
  if (!value) return std::nullopt;
  return std::string(value);
}

}  // namespace

const std::string& tempRoot() {
  static const TempRoot root;
  return root.path;
}

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

std::size_t writeLemmaFile(const std::string& path, const std::vector<LemmaPair>& pairs) {
  fs::create_directories(fs::path(path).parent_path());
  std::string text;
  for (const LemmaPair& pair : pairs) {
    text += pair.form;
    text += '\n';
    text += pair.lemma;
    text += '\n';
  }
  std::ofstream out(path, std::ios::binary);
  out << text;
  if (!out) throw std::runtime_error("cannot write " + path);
  return text.size();
}

std::string lemmaPath(const std::string& prefix, const std::string& lang) {
  return prefix + "/share/dialog/lemmatizer/" + lang + "/lemma";
}

std::string makeLemmaPrefix(const std::string& name, const std::string& lang,
                            const std::vector<LemmaPair>& pairs) {
  const std::string prefix = tempRoot() + "/" + name;
  writeLemmaFile(lemmaPath(prefix, lang), pairs);
  return prefix;
}

std::optional<std::string> defaultDataPrefix(const std::string& lang) {
  std::vector<std::string> candidates;
  if (const auto list = getEnv("DIALOG_BENCH_DATA")) {
    std::stringstream entries(*list);
    std::string entry;
    while (std::getline(entries, entry, ':'))
      if (!entry.empty()) candidates.push_back(entry);
  }
  candidates.emplace_back(DIALOG_BENCH_STAGED_PREFIX);
  for (const std::string& prefix : candidates) {
    std::error_code ignored;
    if (fs::is_regular_file(lemmaPath(prefix, lang), ignored)) return prefix;
  }
  return std::nullopt;
}

std::vector<std::string> udSentences(const std::string& lang) {
  const std::string dir = getEnv("DIALOG_BENCH_UD").value_or(DIALOG_BENCH_UD_DIR);
  const std::string file = lang == "frf" ? "fr_gsd-ud-dev.conllu" : "en_ewt-ud-dev.conllu";
  std::ifstream in(dir + "/" + file);
  std::vector<std::string> sentences;
  const std::string marker = "# text = ";
  for (std::string line; std::getline(in, line);) {
    if (line.compare(0, marker.size(), marker) != 0) continue;
    if (!line.empty() && line.back() == '\r') line.pop_back();
    sentences.push_back(line.substr(marker.size()));
  }
  return sentences;
}

std::vector<std::string> generatedSentences(std::size_t n, unsigned long long seed) {
  WordGenerator words(seed);
  std::vector<std::string> sentences;
  WordGenerator dice(seed + 1);
  for (std::size_t i = 0; i < n; ++i) {
    const std::size_t length = 4 + dice.stem().size() % 17;
    std::string sentence;
    for (std::size_t w = 0; w < length; ++w) {
      if (w) sentence += ' ';
      std::string word = words.word();
      // Elisions and possessives, so that apostrophes cut words too.
      if (word.size() % 11 == 0) word = "l'" + word;
      if (word.size() % 13 == 0) word += "'s";
      sentence += word;
    }
    sentences.push_back(sentence + " .");
  }
  return sentences;
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

std::vector<std::string> realisticSentences(const std::string& lang, std::size_t fallback) {
  std::vector<std::string> sentences = udSentences(lang);
  if (sentences.empty()) sentences = generatedSentences(fallback, lang == "frf" ? 2 : 1);
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
    data = {makeLemmaPrefix("realistic_" + lang, lang, pairs), "generated"};
  }
  return cache.emplace(lang, data).first->second;
}

DataPrefixScope::DataPrefixScope(const std::string& prefix)
    : prefix_("KU_PREFIX_PATH", prefix), xdg_("XDG_DATA_HOME", tempRoot() + "/empty-xdg") {}

StdoutToNull::StdoutToNull() : saved_(-1) {
  std::cout.flush();
  std::fflush(stdout);
  saved_ = dup(STDOUT_FILENO);
  const int null = open("/dev/null", O_WRONLY);
  if (null >= 0) {
    dup2(null, STDOUT_FILENO);
    close(null);
  }
}

StdoutToNull::~StdoutToNull() {
  std::cout.flush();
  std::fflush(stdout);
  if (saved_ >= 0) {
    dup2(saved_, STDOUT_FILENO);
    close(saved_);
  }
}

std::size_t codePoints(const std::string& utf8) {
  std::size_t n = 0;
  for (const char c : utf8)
    if ((static_cast<unsigned char>(c) & 0xC0) != 0x80) ++n;
  return n;
}

}  // namespace dialog_bench
