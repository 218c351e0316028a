// stem_stream over a file of one million words, one a line, against a plain
// loop of getline, byte lowering and sb_stemmer_stem appending to a std::string.

#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <libstemmer.h>
#include <QString>

#include "bench_support.hpp"
#include "stemmer/stemmer.hpp"

namespace {

using namespace dialog_bench;

constexpr std::size_t kLines = 1000000;

// Generated words interleaved with the corpus's own, some capitalised.
const std::string& wordFile() {
  static const std::string path = [] {
    std::vector<std::string> corpus;
    for (const char* lang : {"enu", "frf"})
      for (const std::string& sentence : udSentences(lang))
        for (const std::string& piece : splitPieces(sentence))
          if (!piece.empty()) corpus.push_back(piece);
    WordGenerator generator(7);
    std::string text;
    for (std::size_t i = 0; i < kLines; ++i) {
      text += (i % 2 == 0 || corpus.empty()) ? generator.word() : corpus[(i / 2) % corpus.size()];
      text += '\n';
    }
    const std::string file = tempRoot() + "/words.txt";
    if (FILE* out = std::fopen(file.c_str(), "wb")) {
      std::fwrite(text.data(), 1, text.size(), out);
      std::fclose(out);
    }
    return file;
  }();
  return path;
}

void library(benchmark::State& state) {
  FILE* in = std::fopen(wordFile().c_str(), "rb");
  if (!in) return state.SkipWithError("cannot open the word file");
  sb_stemmer* stemmer = sb_stemmer_new("english", "UTF_8");
  for (auto _ : state) {
    std::rewind(in);
    QString out;
    ZQ::Dialog::stem_stream(stemmer, in, out);
    benchmark::DoNotOptimize(out.constData());
  }
  sb_stemmer_delete(stemmer);
  std::fclose(in);
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * kLines));
}

void getlineStem(benchmark::State& state) {
  FILE* in = std::fopen(wordFile().c_str(), "rb");
  if (!in) return state.SkipWithError("cannot open the word file");
  sb_stemmer* stemmer = sb_stemmer_new("english", "UTF_8");
  for (auto _ : state) {
    std::rewind(in);
    std::string out;
    char* line = nullptr;
    std::size_t capacity = 0;
    for (ssize_t length; (length = getline(&line, &capacity, in)) >= 0;) {
      if (length > 0 && line[length - 1] == '\n') --length;
      for (ssize_t i = 0; i < length; ++i)
        line[i] = static_cast<char>(std::tolower(static_cast<unsigned char>(line[i])));
      const sb_symbol* stem =
          sb_stemmer_stem(stemmer, reinterpret_cast<sb_symbol*>(line), static_cast<int>(length));
      if (stem)
        out.append(reinterpret_cast<const char*>(stem),
                   static_cast<std::size_t>(sb_stemmer_length(stemmer)));
    }
    std::free(line);
    benchmark::DoNotOptimize(out.data());
  }
  sb_stemmer_delete(stemmer);
  std::fclose(in);
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * kLines));
}

}  // namespace

// At least two iterations, so that the first (cold) one is not the figure.
BENCHMARK(library)
    ->Name("stream/1M_lines/library")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->MinTime(0.5);
BENCHMARK(getlineStem)
    ->Name("stream/1M_lines/getline_stem")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

BENCHMARK_MAIN();
