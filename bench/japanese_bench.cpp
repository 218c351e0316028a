// Japanese: Stemmer("jpj") construction, which opens a tagger on the IPA
// dictionary through the data lookup, against MeCab's own createTagger on the
// same directory; and the morpheme walk over parseToNode, bare and through the
// library's base-form path, in characters per second.
//
// The data lookup is pointed at a temporary prefix whose
// share/dialog/data/ipadic links to Debian's mecab-ipadic-utf8 (or
// $DIALOG_BENCH_IPADIC); the factory's progress trail on standard output goes
// to /dev/null while the benchmarks run.

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <libstemmer.h>
#include <mecab.h>

#include "bench_support.hpp"
#include "stemmer/stemmer.hpp"
#include "stemmer/stemmer_p.hpp"

namespace {

using namespace dialog_bench;
namespace fs = std::filesystem;

// Everyday sentences: greetings, requests, weather, plans, a little of
// everything a dialog engine hears.
const char* const kSentences[] = {
    "おはようございます。",
    "今日はとても良い天気ですね。",
    "明日の天気はどうですか？",
    "駅までの道を教えてください。",
    "このレストランの予約をお願いします。",
    "来週の月曜日に会議があります。",
    "電車が遅れているので少し遅れます。",
    "昨日は友達と映画を見に行きました。",
    "私は毎朝コーヒーを飲みます。",
    "日本語を勉強しています。",
    "すみません、トイレはどこですか？",
    "この本はとても面白かったです。",
    "週末は家族と買い物に行く予定です。",
    "音楽をかけてください。",
    "目覚ましを七時にセットして。",
    "東京から大阪まで新幹線で二時間半かかります。",
    "お腹が空いたので何か食べたいです。",
    "部屋の電気を消してもらえますか？",
    "彼女は来年の春に大学を卒業します。",
    "雨が降りそうだから傘を持って行きましょう。",
    "ありがとうございました。またよろしくお願いします。",
    "近くに美味しいラーメン屋はありますか？",
    "子供たちは公園で元気に遊んでいます。",
    "会社の近くに新しいカフェができました。",
    "今夜は早く寝たいと思います。",
    "申し訳ありませんが、その日は都合が悪いです。",
    "冷蔵庫に牛乳がまだ残っていますか？",
    "夏休みに北海道へ旅行するつもりです。",
    "この漢字の読み方が分かりません。",
    "ちょっと待ってください、すぐに戻ります。",
};

std::string ipadicDir() {
  const char* dir = std::getenv("DIALOG_BENCH_IPADIC");
  return dir && *dir ? dir : "/var/lib/mecab/dic/ipadic-utf8";
}

// A prefix whose share/dialog/data/ipadic links to the dictionary; "" if the
// dictionary is missing.
const std::string& ipadicPrefix() {
  static const std::string prefix = []() -> std::string {
    std::error_code error;
    if (!fs::is_regular_file(ipadicDir() + "/sys.dic", error)) return "";
    const std::string root = tempRoot() + "/jpj";
    fs::create_directories(root + "/share/dialog/data", error);
    fs::create_directory_symlink(ipadicDir(), root + "/share/dialog/data/ipadic", error);
    return error ? "" : root;
  }();
  return prefix;
}

MeCab::Tagger* mecabOpen() {
  const std::string dir = ipadicDir();
  const std::string rc = dir + "/dicrc";
  std::vector<std::string> args = {"mecab", "-r", rc, "-d", dir};
  std::vector<char*> argv;
  for (std::string& arg : args) argv.push_back(arg.data());
  return MeCab::createTagger(static_cast<int>(argv.size()), argv.data());
}

void openLibrary(benchmark::State& state) {
  if (ipadicPrefix().empty()) return state.SkipWithError("IPA dictionary not found");
  const DataPrefixScope scope(ipadicPrefix());
  double opened = 0;
  {
    const StdoutToNull quiet;
    for (auto _ : state) {
      auto* stemmer = new ZQ::Dialog::Stemmer("jpj");
      state.PauseTiming();
      opened = stemmer->impl->tagger ? 1 : 0;
      // The library keeps its tagger for the process's life by design; freed
      // here so that the iterations do not pile up open dictionaries.
      delete stemmer->impl->tagger;
      stemmer->impl->tagger = nullptr;
      delete stemmer;
      state.ResumeTiming();
    }
  }
  state.counters["tagger_opened"] = opened;
  if (!opened) state.SetLabel("factory returned null: figure meaningless");
}

void openMecab(benchmark::State& state) {
  if (ipadicPrefix().empty()) return state.SkipWithError("IPA dictionary not found");
  double opened = 0;
  for (auto _ : state) {
    MeCab::Tagger* tagger = mecabOpen();
    state.PauseTiming();
    opened = tagger ? 1 : 0;
    delete tagger;
    state.ResumeTiming();
  }
  state.counters["tagger_opened"] = opened;
}

double sentenceChars() {
  double chars = 0;
  for (const char* sentence : kSentences) chars += static_cast<double>(codePoints(sentence));
  return chars;
}

void setRates(benchmark::State& state) {
  const auto iterations = static_cast<double>(state.iterations());
  state.counters["chars_per_second"] =
      benchmark::Counter(iterations * sentenceChars(), benchmark::Counter::kIsRate);
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * std::size(kSentences)));
}

void walkBare(benchmark::State& state) {
  std::unique_ptr<MeCab::Tagger> tagger(mecabOpen());
  if (!tagger) return state.SkipWithError("MeCab cannot open the IPA dictionary");
  for (auto _ : state) {
    for (const char* sentence : kSentences) {
      std::size_t morphemes = 0;
      for (const MeCab::Node* node = tagger->parseToNode(sentence); node; node = node->next) {
        if (node->stat == MECAB_BOS_NODE || node->stat == MECAB_EOS_NODE) continue;
        benchmark::DoNotOptimize(node->feature);
        ++morphemes;
      }
      benchmark::DoNotOptimize(morphemes);
    }
  }
  setRates(state);
}

// The library's morpheme path (base form of each node), which construction
// never selects: reached here by giving a Japanese implementation a Snowball
// handle, as the selection rule asks.
void walkLibrary(benchmark::State& state) {
  std::unique_ptr<MeCab::Tagger> own(mecabOpen());
  if (!own) return state.SkipWithError("MeCab cannot open the IPA dictionary");
  std::unique_ptr<ZQ::Dialog::StemmerPrivate> impl;
  {
    const DataPrefixScope scope(ipadicPrefix());
    const StdoutToNull quiet;
    impl = std::make_unique<ZQ::Dialog::StemmerPrivate>("jpj");
  }
  std::unique_ptr<MeCab::Tagger> fromFactory(impl->tagger);
  impl->tagger = fromFactory ? fromFactory.get() : own.get();
  impl->stemmer = sb_stemmer_new("english", "UTF_8");
  std::vector<std::string> stems;
  for (auto _ : state) {
    for (const char* sentence : kSentences) {
      stems.clear();
      impl->stem_sentence(sentence, stems);
      benchmark::DoNotOptimize(stems.data());
    }
  }
  sb_stemmer_delete(impl->stemmer);
  impl->stemmer = nullptr;
  setRates(state);
  state.SetLabel(fromFactory ? "factory's tagger" : "MeCab's tagger (factory returned null)");
}

}  // namespace

BENCHMARK(openLibrary)
    ->Name("jpj_open/ipadic/library")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK(openMecab)
    ->Name("jpj_open/ipadic/mecab_open")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK(walkBare)->Name("mecab_walk/ja/bare_walk")->Unit(benchmark::kMicrosecond);
BENCHMARK(walkLibrary)->Name("mecab_walk/ja/library_morphemes")->Unit(benchmark::kMicrosecond);

BENCHMARK_MAIN();
