// Japanese: Stemmer("jpj"), which opens a tagger on the IPA dictionary through
// the data lookup, against MeCab's own createTagger on the same directory; and
// the morpheme walk over parseToNode, bare and through the library's base-form
// path, in characters per second, on everyday sentences a dialog engine hears.

#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <libstemmer.h>
#include <mecab.h>

#include "corpus/morphemes.hpp"
#include "stemmer/stemmer.hpp"
#include "stemmer/stemmer_p.hpp"
#include "testing/captured_output.hpp"
#include "testing/files.hpp"
#include "testing/generated_data.hpp"
#include "testing/mecab.hpp"

namespace {

using namespace ZQ::Dialog::testing;

const std::vector<std::string>& kSentences = japaneseSentences();

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

// dialog-stem --morphemes's work in this process (MorphemeStemmer::stemText,
// format lines) against the bare walk that writes the same bytes: MeCab's own
// tagger on the same directory, parseToNode per line, the 7th feature field or
// the surface, one a line. CPU time, in characters per second.
void morphemes(benchmark::State& state, bool mode) {
  if (auto why = missing(Need::kIpaDictionary); !why.empty())
    return state.SkipWithError(why.c_str());
  const DataRoot root;
  root.linkDictionary(ipadicDir());
  std::string error;
  const auto dictionary = ZQ::Dialog::corpus::MorphemeDictionary::open("ipadic", error);
  const TaggerPtr tagger = openMecab(ipadicDir());
  if (!dictionary || !tagger) return state.SkipWithError("no dictionary opened");
  ZQ::Dialog::corpus::MorphemeStemmer stemmer(dictionary);
  std::string text;
  for (const std::string& sentence : kSentences) text += sentence + "\n";
  const auto bare = [&](std::string& out) {
    for (const std::string& sentence : kSentences) {
      for (const MeCab::Node* node = tagger->parseToNode(sentence.data(), sentence.size()); node;
           node = node->next) {
        if (node->stat == MECAB_BOS_NODE || node->stat == MECAB_EOS_NODE) continue;
        const char* field = node->feature;
        for (int commas = 0; commas < 6 && field; ++commas)
          if ((field = std::strchr(field, ','))) ++field;
        const std::size_t length = field ? std::strcspn(field, ",") : 0;
        if (node->stat == MECAB_UNK_NODE || length == 0 || (length == 1 && *field == '*'))
          out.append(node->surface, node->length);
        else
          out.append(field, length);
        out += '\n';
      }
      out += '\n';
    }
  };
  std::string out, other;
  bare(mode ? other : out);
  stemmer.stemText(text, ZQ::Dialog::corpus::Format::Lines, mode ? out : other);
  if (out != other) return state.SkipWithError("the two walks disagree");
  for (auto _ : state) {
    out.clear();
    if (mode)
      stemmer.stemText(text, ZQ::Dialog::corpus::Format::Lines, out);
    else
      bare(out);
    benchmark::DoNotOptimize(out.data());
  }
  double chars = 0;
  for (const char c : text) chars += (c & 0xC0) != 0x80;
  state.counters["chars_per_second"] = benchmark::Counter(
      static_cast<double>(state.iterations()) * chars, benchmark::Counter::kIsRate);
}

// Left unformatted: clang-format would put spaces around the slashes of names.
// clang-format off
BENCHMARK_CAPTURE(jpjOpen, ipadic/library, true)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(jpjOpen, ipadic/mecab_open, false)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(mecabWalk, ja/bare_walk, false);
BENCHMARK_CAPTURE(mecabWalk, ja/library_morphemes, true);
BENCHMARK_CAPTURE(morphemes, ipadic/morpheme_mode, true);
BENCHMARK_CAPTURE(morphemes, ipadic/bare_walk, false);
// clang-format on

}  // namespace
