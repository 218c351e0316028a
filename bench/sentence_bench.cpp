// stem_sentence on English and French sentences (the Universal Dependencies
// development sets, else generated ones), through the regular-expression split,
// against the same two lookups per piece over a hand-written split.

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <benchmark/benchmark.h>
#include <QString>

#include "bench_support.hpp"
#include "stemmer/stemmer.hpp"
#include "stemmer/stemmer_p.hpp"

namespace {

using namespace dialog_bench;

// Cuts at every space and apostrophe, keeping empty pieces, and looks each
// piece up as the library does.
void handSplit(const std::map<QString, QString>& dictionary, const std::string& sentence,
               std::vector<std::string>& stems) {
  std::size_t start = 0;
  for (;;) {
    const std::size_t end = sentence.find_first_of(" '", start);
    const std::size_t stop = end == std::string::npos ? sentence.size() : end;
    const QString key = QString::fromUtf8(sentence.data() + start, static_cast<int>(stop - start));
    QString stem = key;
    if (dictionary.find(key) != dictionary.end()) stem = dictionary.at(key);
    stems.emplace_back(stem.toUtf8().constData());
    if (end == std::string::npos) return;
    start = end + 1;
  }
}

struct Setup {
  std::unique_ptr<ZQ::Dialog::Stemmer> stemmer;
  std::vector<std::string> sentences;
  double pieces = 0;
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
  s.sentences = udSentences(lang);
  s.label =
      data.description + (s.sentences.empty() ? ", generated sentences" : ", UD dev sentences");
  if (s.sentences.empty()) s.sentences = realisticSentences(lang);
  // Both sides must give the same stems, or the comparison means nothing.
  for (const std::string& sentence : s.sentences) {
    std::vector<std::string> fromLibrary;
    std::vector<std::string> fromHand;
    s.stemmer->stem_sentence(sentence, fromLibrary);
    handSplit(s.stemmer->impl->lemDic, sentence, fromHand);
    if (fromLibrary != fromHand) s.error = "hand split disagrees on: " + sentence;
    s.pieces += static_cast<double>(fromLibrary.size());
  }
  return s;
}

template <typename Fn>
void run(benchmark::State& state, const std::string& lang, Fn&& stem) {
  const Setup& s = setup(lang);
  if (!s.error.empty()) return state.SkipWithError(s.error.c_str());
  std::vector<std::string> stems;
  for (auto _ : state) {
    for (const std::string& sentence : s.sentences) {
      stems.clear();
      stem(s, sentence, stems);
      benchmark::DoNotOptimize(stems.data());
    }
  }
  const auto iterations = static_cast<double>(state.iterations());
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * s.sentences.size()));
  state.counters["words_per_second"] =
      benchmark::Counter(iterations * s.pieces, benchmark::Counter::kIsRate);
  state.SetLabel(s.label);
}

void library(benchmark::State& state, const std::string& lang) {
  run(state, lang,
      [](const Setup& s, const std::string& sentence, std::vector<std::string>& stems) {
        s.stemmer->stem_sentence(sentence, stems);
      });
}

void hand(benchmark::State& state, const std::string& lang) {
  run(state, lang,
      [](const Setup& s, const std::string& sentence, std::vector<std::string>& stems) {
        handSplit(s.stemmer->impl->lemDic, sentence, stems);
      });
}

}  // namespace

int main(int argc, char** argv) {
  for (const std::string lang : {"enu", "frf"}) {
    const std::string base = "sentence/" + lang + "/";
    benchmark::RegisterBenchmark((base + "library").c_str(), library, lang);
    benchmark::RegisterBenchmark((base + "hand_split").c_str(), hand, lang);
  }
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
