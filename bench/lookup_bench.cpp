// The English and French lookups beside their baselines on the same input:
// stemword on 10,000 words (half listed in the dictionary) against a
// std::unordered_map of UTF-8 strings, the minimal two-lookup path on the same
// std::map<QString, QString> and Snowball; stem_sentence on the UD development
// sentences against a hand-written split; stem_stream over one million lines
// against getline, byte lowering and sb_stemmer_stem.

#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include <benchmark/benchmark.h>
#include <libstemmer.h>
#include <QString>

#include "stemmer/stemmer.hpp"
#include "stemmer/stemmer_p.hpp"
#include "testing/files.hpp"
#include "testing/generated_data.hpp"

namespace {

using namespace ZQ::Dialog::testing;
using Dictionary = std::map<QString, QString>;

// The library's lookup at its plainest: one conversion in, find then at for
// a listed word, one conversion out.
std::string twoLookups(const Dictionary& dictionary, const QString& key) {
  const auto found = dictionary.find(key);
  return (found != dictionary.end() ? dictionary.at(key) : key).toUtf8().toStdString();
}

// Cuts at every space and apostrophe, keeping empty pieces, as the library does.
void handSplit(const Dictionary& dictionary, const std::string& sentence,
               std::vector<std::string>& stems) {
  for (std::size_t start = 0;;) {
    const std::size_t end = sentence.find_first_of(" '", start);
    const std::size_t stop = end == std::string::npos ? sentence.size() : end;
    stems.push_back(twoLookups(
        dictionary, QString::fromUtf8(sentence.data() + start, static_cast<int>(stop - start))));
    if (end == std::string::npos) return;
    start = end + 1;
  }
}

struct Setup {
  std::unique_ptr<ZQ::Dialog::Stemmer> stemmer;
  std::unordered_map<std::string, std::string> hash;
  sb_stemmer* snowball = nullptr;
  std::vector<LemmaPair> words;  // the forms only: LemmaPair for shuffle()
  std::vector<std::string> sentences;
  double pieces = 0;
  std::string error;
};

const Setup& setup(const std::string& lang) {
  static std::map<std::string, Setup> cache;
  auto [entry, fresh] = cache.try_emplace(lang);
  Setup& s = entry->second;
  if (!fresh) return s;
  {
    const DataRoot root(realisticData(lang).prefix);
    s.stemmer = std::make_unique<ZQ::Dialog::Stemmer>(lang);
  }
  s.snowball = sb_stemmer_new(lang == "frf" ? "french" : "english", "UTF_8");
  for (const auto& [form, lemma] : s.stemmer->impl->lemDic)
    s.hash.emplace(form.toUtf8().toStdString(), lemma.toUtf8().toStdString());
  // 5,000 listed words spread over the dictionary, then as many unlisted ones:
  // the corpus's own first, then generated ones.
  constexpr std::size_t kHalf = 5000;
  std::size_t i = 0;
  for (const auto& pair : s.hash)
    if (i++ % std::max<std::size_t>(1, s.hash.size() / kHalf) == 0 && s.words.size() < kHalf)
      s.words.push_back({pair.first, {}});
  // Both sides of the sentence case must give the same stems, or it means nothing.
  std::vector<std::string> candidates;
  s.sentences = realisticSentences(lang);
  for (const std::string& sentence : s.sentences) {
    std::vector<std::string> fromLibrary, fromHand;
    s.stemmer->stem_sentence(sentence, fromLibrary);
    handSplit(s.stemmer->impl->lemDic, sentence, fromHand);
    if (fromLibrary != fromHand) s.error = "hand split disagrees on: " + sentence;
    s.pieces += static_cast<double>(fromLibrary.size());
    for (std::string& piece : splitPieces(sentence)) candidates.push_back(std::move(piece));
  }
  WordGenerator generator(lang == "frf" ? 91 : 19);
  std::unordered_set<std::string> unlisted;
  for (std::size_t next = 0; unlisted.size() < kHalf; ++next) {
    std::string word = next < candidates.size() ? candidates[next] : generator.word();
    if (!word.empty() && !s.hash.count(word) && unlisted.insert(word).second)
      s.words.push_back({word, {}});
  }
  shuffle(s.words, 3);
  return s;
}

void library(const Setup& s, std::string& word, std::string& result) {
  s.stemmer->stemword(word, result);
}
void twoLookup(const Setup& s, std::string& word, std::string& result) {
  result = twoLookups(s.stemmer->impl->lemDic, QString::fromUtf8(word.c_str()));
}
void hashMap(const Setup& s, std::string& word, std::string& result) {
  const auto found = s.hash.find(word);
  result = found != s.hash.end() ? found->second : word;
}
void snowball(const Setup& s, std::string& word, std::string& result) {
  const sb_symbol* stem = sb_stemmer_stem(
      s.snowball, reinterpret_cast<const sb_symbol*>(word.data()), static_cast<int>(word.size()));
  result.assign(reinterpret_cast<const char*>(stem), sb_stemmer_length(s.snowball));
}

void stemword(benchmark::State& state, const std::string& lang,
              void (*stem)(const Setup&, std::string& word, std::string& result)) {
  const Setup& s = setup(lang);
  std::vector<LemmaPair> words = s.words;
  std::string result;
  for (auto _ : state)
    for (LemmaPair& word : words) {
      stem(s, word.form, result);
      benchmark::DoNotOptimize(result.data());
    }
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * words.size()));
  state.SetLabel(realisticData(lang).description);
}

void sentence(benchmark::State& state, const std::string& lang, bool hand) {
  const Setup& s = setup(lang);
  if (!s.error.empty()) return state.SkipWithError(s.error.c_str());
  std::vector<std::string> stems;
  for (auto _ : state)
    for (const std::string& sentence : s.sentences) {
      stems.clear();
      hand ? handSplit(s.stemmer->impl->lemDic, sentence, stems)
           : s.stemmer->stem_sentence(sentence, stems);
      benchmark::DoNotOptimize(stems.data());
    }
  state.counters["words_per_second"] = benchmark::Counter(
      static_cast<double>(state.iterations()) * s.pieces, benchmark::Counter::kIsRate);
  state.SetLabel(realisticData(lang).description);
}

constexpr std::size_t kLines = 1000000;

// The library, or the baseline: getline, byte lowering and Snowball, appending
// to a std::string. Wall time: reading the file is part of the work.
void stream(benchmark::State& state, bool library) {
  // One million words, one a line: the English stemword case's words (listed,
  // the corpus's own and generated) interleaved with generated ones.
  static const std::string path = [] {
    const std::vector<LemmaPair>& words = setup("enu").words;
    WordGenerator generator(7);
    std::string text;
    for (std::size_t i = 0; i < kLines; ++i)
      text += (i % 2 ? words[i / 2 % words.size()].form : generator.word()) + "\n";
    return processTempDir().write("words.txt", text);
  }();
  FILE* in = std::fopen(path.c_str(), "rb");
  if (!in) return state.SkipWithError("cannot open the word file");
  sb_stemmer* stemmer = sb_stemmer_new("english", "UTF_8");
  char* line = nullptr;
  std::size_t capacity = 0;
  for (auto _ : state) {
    std::rewind(in);
    QString out;
    std::string plainOut;
    if (library) ZQ::Dialog::stem_stream(stemmer, in, out);
    for (ssize_t length; !library && (length = getline(&line, &capacity, in)) >= 0;) {
      if (length > 0 && line[length - 1] == '\n') --length;
      for (ssize_t i = 0; i < length; ++i)
        line[i] = static_cast<char>(std::tolower(static_cast<unsigned char>(line[i])));
      const sb_symbol* stem =
          sb_stemmer_stem(stemmer, reinterpret_cast<sb_symbol*>(line), static_cast<int>(length));
      if (stem) plainOut.append(reinterpret_cast<const char*>(stem), sb_stemmer_length(stemmer));
    }
    benchmark::DoNotOptimize(out.constData());
    benchmark::DoNotOptimize(plainOut.data());
  }
  std::free(line);
  sb_stemmer_delete(stemmer);
  std::fclose(in);
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * kLines));
}

// Left unformatted: clang-format would put spaces around the slashes of names.
// clang-format off
BENCHMARK_CAPTURE(stemword, enu/library, "enu", library);
BENCHMARK_CAPTURE(stemword, enu/two_lookup, "enu", twoLookup);
BENCHMARK_CAPTURE(stemword, enu/unordered_map, "enu", hashMap);
BENCHMARK_CAPTURE(stemword, enu/snowball, "enu", snowball);
BENCHMARK_CAPTURE(stemword, frf/library, "frf", library);
BENCHMARK_CAPTURE(stemword, frf/two_lookup, "frf", twoLookup);
BENCHMARK_CAPTURE(stemword, frf/unordered_map, "frf", hashMap);
BENCHMARK_CAPTURE(stemword, frf/snowball, "frf", snowball);
BENCHMARK_CAPTURE(sentence, enu/library, "enu", false);
BENCHMARK_CAPTURE(sentence, enu/hand_split, "enu", true);
BENCHMARK_CAPTURE(sentence, frf/library, "frf", false);
BENCHMARK_CAPTURE(sentence, frf/hand_split, "frf", true);
BENCHMARK_CAPTURE(stream, 1M_lines/library, true)->UseRealTime();
BENCHMARK_CAPTURE(stream, 1M_lines/getline_stem, false)->UseRealTime();
// clang-format on

}  // namespace
