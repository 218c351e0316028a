// stemword on a realistic mix of words, half listed in the dictionary and half
// not, against three baselines over the same words: a std::unordered_map of
// std::string, the minimal form of the library's own path (UTF-8 to QString,
// find and at on the same std::map<QString, QString>, back to UTF-8), and a
// Snowball stemmer.

#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include <benchmark/benchmark.h>
#include <libstemmer.h>
#include <QString>

#include "bench_support.hpp"
#include "stemmer/stemmer.hpp"
#include "stemmer/stemmer_p.hpp"

namespace {

using namespace dialog_bench;

struct Setup {
  std::unique_ptr<ZQ::Dialog::Stemmer> stemmer;
  std::vector<std::string> words;
  std::unordered_map<std::string, std::string> hash;
  sb_stemmer* snowball = nullptr;
  std::string label;
  std::string error;
};

const Setup& setup(const std::string& lang) {
  static std::map<std::string, Setup> cache;
  if (auto found = cache.find(lang); found != cache.end()) return found->second;
  Setup& s = cache[lang];
  const RealisticData& data = realisticData(lang);
  {
    const DataPrefixScope scope(data.prefix);
    s.stemmer = std::make_unique<ZQ::Dialog::Stemmer>(lang);
  }
  s.snowball = sb_stemmer_new(lang == "frf" ? "french" : "english", "UTF_8");
  const auto& dictionary = s.stemmer->impl->lemDic;
  if (dictionary.empty()) {
    s.error = "empty dictionary";
    return s;
  }
  std::vector<std::string> listed;
  for (const auto& [form, lemma] : dictionary) {
    const std::string key = form.toUtf8().toStdString();
    s.hash.emplace(key, lemma.toUtf8().toStdString());
    listed.push_back(key);
  }
  // Unlisted words: the corpus's own first, then generated ones.
  std::vector<std::string> unlisted;
  std::unordered_set<std::string> seen;
  for (const std::string& sentence : realisticSentences(lang))
    for (const std::string& piece : splitPieces(sentence))
      if (!piece.empty() && !s.hash.count(piece) && seen.insert(piece).second)
        unlisted.push_back(piece);
  constexpr std::size_t kHalf = 5000;
  WordGenerator generator(lang == "frf" ? 91 : 19);
  while (unlisted.size() < kHalf) {
    std::string word = generator.word();
    if (!s.hash.count(word) && seen.insert(word).second) unlisted.push_back(std::move(word));
  }
  unlisted.resize(kHalf);
  // Listed words spread evenly over the dictionary's order.
  const std::size_t step = listed.size() > kHalf ? listed.size() / kHalf : 1;
  for (std::size_t i = 0; i < kHalf; ++i) {
    s.words.push_back(listed[(i * step) % listed.size()]);
    s.words.push_back(unlisted[i]);
  }
  std::vector<LemmaPair> order;
  for (std::string& word : s.words) order.push_back({std::move(word), {}});
  shuffle(order, 3);
  s.words.clear();
  for (LemmaPair& pair : order) s.words.push_back(std::move(pair.form));
  s.label = data.description;
  return s;
}

template <typename Fn>
void run(benchmark::State& state, const std::string& lang, Fn&& stem) {
  const Setup& s = setup(lang);
  if (!s.error.empty()) return state.SkipWithError(s.error.c_str());
  std::vector<std::string> words = s.words;
  std::string result;
  for (auto _ : state) {
    for (std::string& word : words) {
      stem(s, word, result);
      benchmark::DoNotOptimize(result.data());
    }
  }
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * words.size()));
  state.SetLabel(s.label);
}

void library(benchmark::State& state, const std::string& lang) {
  run(state, lang, [](const Setup& s, std::string& word, std::string& result) {
    s.stemmer->stemword(word, result);
  });
}

// What the library's path needs at least: one conversion in, the same two map
// lookups for a listed word, one conversion out.
void twoLookup(benchmark::State& state, const std::string& lang) {
  run(state, lang, [](const Setup& s, std::string& word, std::string& result) {
    const std::map<QString, QString>& dictionary = s.stemmer->impl->lemDic;
    const QString key = QString::fromUtf8(word.c_str());
    QString stem = key;
    if (dictionary.find(key) != dictionary.end()) stem = dictionary.at(key);
    result.assign(stem.toUtf8().constData());
  });
}

void hashMap(benchmark::State& state, const std::string& lang) {
  run(state, lang, [](const Setup& s, std::string& word, std::string& result) {
    const auto found = s.hash.find(word);
    result = found != s.hash.end() ? found->second : word;
  });
}

void snowball(benchmark::State& state, const std::string& lang) {
  run(state, lang, [](const Setup& s, std::string& word, std::string& result) {
    const sb_symbol* stem = sb_stemmer_stem(
        s.snowball, reinterpret_cast<const sb_symbol*>(word.data()), static_cast<int>(word.size()));
    result.assign(reinterpret_cast<const char*>(stem),
                  static_cast<std::size_t>(sb_stemmer_length(s.snowball)));
  });
}

}  // namespace

int main(int argc, char** argv) {
  for (const std::string lang : {"enu", "frf"}) {
    const std::string base = "stemword/" + lang + "/";
    benchmark::RegisterBenchmark((base + "library").c_str(), library, lang);
    benchmark::RegisterBenchmark((base + "two_lookup").c_str(), twoLookup, lang);
    benchmark::RegisterBenchmark((base + "unordered_map").c_str(), hashMap, lang);
    benchmark::RegisterBenchmark((base + "snowball").c_str(), snowball, lang);
  }
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
