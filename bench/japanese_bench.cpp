// Japanese: Stemmer("jpj"), which opens a tagger on the IPA dictionary through
// the data lookup, against MeCab's own createTagger on the same directory; and
// the morpheme walk over parseToNode, bare and through the library's base-form
// path, in characters per second, on everyday sentences a dialog engine hears.

#include <memory>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <libstemmer.h>
#include <mecab.h>

#include "stemmer/stemmer.hpp"
#include "stemmer/stemmer_p.hpp"
#include "testing/captured_output.hpp"
#include "testing/files.hpp"
#include "testing/generated_data.hpp"
#include "testing/mecab.hpp"

namespace {

using namespace ZQ::Dialog::testing;

// Everyday sentences a dialog engine hears (greetings, requests, weather,
// plans), separated by spaces, which Japanese text does not use.
const std::vector<std::string> kSentences = splitPieces(
    "おはようございます。 今日はとても良い天気ですね。 明日の天気はどうですか？ "
    "駅までの道を教えてください。 このレストランの予約をお願いします。 "
    "来週の月曜日に会議があります。 電車が遅れているので少し遅れます。 "
    "昨日は友達と映画を見に行きました。 私は毎朝コーヒーを飲みます。 "
    "日本語を勉強しています。 すみません、トイレはどこですか？ "
    "この本はとても面白かったです。 週末は家族と買い物に行く予定です。 "
    "音楽をかけてください。 目覚ましを七時にセットして。 "
    "東京から大阪まで新幹線で二時間半かかります。 お腹が空いたので何か食べたいです。 "
    "部屋の電気を消してもらえますか？ 彼女は来年の春に大学を卒業します。 "
    "雨が降りそうだから傘を持って行きましょう。 "
    "ありがとうございました。またよろしくお願いします。 "
    "近くに美味しいラーメン屋はありますか？ 子供たちは公園で元気に遊んでいます。 "
    "会社の近くに新しいカフェができました。 今夜は早く寝たいと思います。 "
    "申し訳ありませんが、その日は都合が悪いです。 冷蔵庫に牛乳がまだ残っていますか？ "
    "夏休みに北海道へ旅行するつもりです。 この漢字の読み方が分かりません。 "
    "ちょっと待ってください、すぐに戻ります。");

// Library or MeCab; what is freed between iterations is not timed.
void jpjOpen(benchmark::State& state, bool library) {
  if (auto why = missing(Need::kIpaDictionary); !why.empty())
    return state.SkipWithError(why.c_str());
  const DataRoot root;
  root.linkDictionary(ipadicDir());
  CapturedOutput quiet;  // the factory's progress trail
  bool opened = true;
  for (auto _ : state) {
    auto* stemmer = library ? new ZQ::Dialog::Stemmer("jpj") : nullptr;
    TaggerPtr tagger(library ? stemmer->impl->tagger : openMecab(ipadicDir()).release());
    state.PauseTiming();
    opened = opened && tagger;
    // The library keeps its tagger for the process's life by design (its
    // destructor leaves it); freed here so that open dictionaries do not pile up.
    tagger.reset();
    delete stemmer;
    state.ResumeTiming();
  }
  quiet.finish();
  if (!opened) state.SkipWithError("no tagger opened: the figure would mean nothing");
}

// The bare walk over MeCab's nodes, or the library's morpheme path (base form of
// each node), which construction never selects: reached here by giving a
// Japanese implementation a Snowball handle, as the selection rule asks.
void mecabWalk(benchmark::State& state, bool library) {
  if (auto why = missing(Need::kIpaDictionary); !why.empty())
    return state.SkipWithError(why.c_str());
  const TaggerPtr tagger = openMecab(ipadicDir());
  const DataRoot root;
  root.linkDictionary(ipadicDir());
  CapturedOutput quiet;  // the factory's progress trail
  ZQ::Dialog::StemmerPrivate impl("jpj");
  quiet.finish();
  const TaggerPtr fromFactory(impl.tagger);  // else kept for the process's life
  if (!tagger || !fromFactory) return state.SkipWithError("no tagger opened");
  impl.stemmer = sb_stemmer_new("english", "UTF_8");
  std::vector<std::string> stems;
  for (auto _ : state)
    for (const std::string& sentence : kSentences) {
      stems.clear();
      if (library) impl.stem_sentence(sentence, stems);
      for (const MeCab::Node* node = library ? nullptr : tagger->parseToNode(sentence.c_str());
           node; node = node->next)
        if (node->stat != MECAB_BOS_NODE && node->stat != MECAB_EOS_NODE)
          benchmark::DoNotOptimize(node->feature);
      benchmark::DoNotOptimize(stems.data());
    }
  sb_stemmer_delete(impl.stemmer);  // the library never frees it
  // Characters are code points: bytes that do not continue a UTF-8 sequence.
  double chars = 0;
  for (const std::string& sentence : kSentences)
    for (const char c : sentence) chars += (c & 0xC0) != 0x80;
  state.counters["chars_per_second"] = benchmark::Counter(
      static_cast<double>(state.iterations()) * chars, benchmark::Counter::kIsRate);
}

// Left unformatted: clang-format would put spaces around the slashes of names.
// clang-format off
BENCHMARK_CAPTURE(jpjOpen, ipadic/library, true)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(jpjOpen, ipadic/mecab_open, false)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(mecabWalk, ja/bare_walk, false);
BENCHMARK_CAPTURE(mecabWalk, ja/library_morphemes, true);
// clang-format on

}  // namespace
