// Construction of English and French stemmers: the time to read a lemma file
// into the dictionary and the memory the dictionary keeps, beside reading the
// file's bytes and the plain readLine map loop of the tests on the same file.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

#include <benchmark/benchmark.h>
#include <QFile>
#include <QString>
#include <QTextStream>

#include "stemmer/stemmer.hpp"
#include "stemmer/stemmer_p.hpp"
#include "testing/files.hpp"
#include "testing/generated_data.hpp"

namespace {

using namespace ZQ::Dialog::testing;

// A "<field>: <n> kB" line of /proc/self/status, in bytes: the process's own
// figures, where getrusage's ru_maxrss would carry the parent's peak over exec.
long statusBytes(const std::string& field) {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);)
    if (line.rfind(field + ":", 0) == 0) return std::stol(line.substr(field.size() + 1)) * 1024;
  return -1;
}

// Each construction runs in a fresh process, as a user meets it: this program
// again, with DIALOG_BENCH_CHILD="<library|library_2_threads|readline_map> <lang>
// <prefix>" (library_2_threads: the lemma file read in parts on 2 threads). It
// builds once, prints "<entries> <seconds> <peak resident growth in bytes>" and
// exits before the benchmarks' main.
int constructChild(const std::string& args) {
  std::string impl, lang, prefix;
  std::istringstream in(args);
  std::getline(in >> impl >> lang >> std::ws, prefix);  // the prefix may hold spaces
  const DataRoot root(prefix);
  const std::string path = prefix + "/share/dialog/lemmatizer/" + lang + "/lemma";
  {
    // Loads the locale's codec and Qt's file machinery before the start figure.
    QFile file(QString::fromStdString(path));
    if (file.open(QIODevice::ReadOnly | QIODevice::Text)) QTextStream(&file).readLine();
  }
  const long before = statusBytes("VmRSS");
  const auto start = std::chrono::steady_clock::now();
  // Both results are left unfreed to the process's end: only building counts.
  if (impl == "library_2_threads") ZQ::Dialog::setLemmaLoadThreads(2);
  const std::size_t entries = impl.rfind("library", 0) == 0
                                  ? (new ZQ::Dialog::Stemmer(lang))->impl->lemDic.size()
                                  : (new std::map<QString, QString>(plainLemmaLoad(path)))->size();
  const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
  std::printf("%zu %.9f %ld\n", entries, seconds.count(), statusBytes("VmHWM") - before);
  return entries > 0 ? 0 : 1;
}
[[maybe_unused]] const bool kChild = [] {
  if (const char* args = std::getenv("DIALOG_BENCH_CHILD")) std::exit(constructChild(args));
  return false;
}();

// The prefix holding one lemma file: the default data (count 0; "" when there
// is none) or `count` generated pairs, sorted in the map's order or shuffled.
const std::string& prefixFor(const std::string& lang, std::size_t count, bool sorted) {
  static std::map<std::tuple<std::string, std::size_t, bool>, std::string> cache;
  auto [entry, fresh] = cache.try_emplace({lang, count, sorted});
  if (fresh && count == 0) entry->second = defaultDataPrefix(lang).value_or("");
  if (fresh && count > 0) {
    static const std::vector<LemmaPair> all = WordGenerator(20240611).pairs(1000000);
    std::vector<LemmaPair> pairs(all.begin(), all.begin() + static_cast<long>(count));
    sorted ? sortByForm(pairs) : shuffle(pairs, count);
    entry->second =
        processTempDir().path() + "/" + (sorted ? "sorted" : "shuffled") + std::to_string(count);
    DataRoot(entry->second).write("lemmatizer/" + lang + "/lemma", lemmaFileText(pairs));
  }
  return entry->second;
}

// `impl` is "library", "library_2_threads", "readline_map" (in a child) or
// "read_bytes".
void construct(benchmark::State& state, const std::string& impl, const std::string& lang,
               std::size_t count, bool sorted) {
  const std::string& prefix = prefixFor(lang, count, sorted);
  if (prefix.empty()) return state.SkipWithError("no default data: build target lemma-data");
  const std::string path = prefix + "/share/dialog/lemmatizer/" + lang + "/lemma";
  const std::string text = readFile(path);
  const auto pairs = static_cast<double>((std::count(text.begin(), text.end(), '\n') + 1) / 2);
  const std::string self = std::filesystem::read_symlink("/proc/self/exe");
  double entries = 0, seconds = 0, bytes = 0, bytesPerEntry = 0;
  for (auto _ : state) {
    const auto start = std::chrono::steady_clock::now();
    if (impl == "read_bytes") {
      benchmark::DoNotOptimize(readFile(path).size());
      seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    } else {
      const ScopedEnv child("DIALOG_BENCH_CHILD", impl + " " + lang + " " + prefix);
      FILE* out = popen(("'" + self + "'").c_str(), "r");
      const int read = out ? std::fscanf(out, "%lf %lf %lf", &entries, &seconds, &bytes) : 0;
      if ((out && pclose(out) != 0) || read != 3) {
        state.SkipWithError("construction child failed");
        break;
      }
      bytesPerEntry += bytes / entries;
    }
    state.SetIterationTime(seconds);
  }
  // Iterations per second over (pairs / 1e8), inverted: milliseconds per 100k pairs.
  state.counters["ms_per_100k"] =
      benchmark::Counter(static_cast<double>(state.iterations()) * pairs / 1e8,
                         benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
  if (impl != "read_bytes")
    state.counters["bytes_per_entry"] =
        benchmark::Counter(bytesPerEntry, benchmark::Counter::kAvgIterations);
}

// The library and its two baselines on one file, named construct/<name>/<impl>.
// Left unformatted: clang-format would put spaces around the slashes of names.
// clang-format off
#define DIALOG_CONSTRUCT(name, ...)                                                                \
  BENCHMARK_CAPTURE(construct, name/library, "library", __VA_ARGS__)->UseManualTime();           \
  BENCHMARK_CAPTURE(construct, name/readline_map, "readline_map", __VA_ARGS__)->UseManualTime(); \
  BENCHMARK_CAPTURE(construct, name/read_bytes, "read_bytes", __VA_ARGS__)->UseManualTime()

DIALOG_CONSTRUCT(default_enu, "enu", 0, false);
DIALOG_CONSTRUCT(default_frf, "frf", 0, false);
BENCHMARK_CAPTURE(construct, default_enu/library_2_threads, "library_2_threads", "enu", 0, false)->UseManualTime();
BENCHMARK_CAPTURE(construct, default_frf/library_2_threads, "library_2_threads", "frf", 0, false)->UseManualTime();
DIALOG_CONSTRUCT(sorted_100k, "enu", 100000, true);
DIALOG_CONSTRUCT(shuffled_100k, "enu", 100000, false);
DIALOG_CONSTRUCT(sorted_400k, "enu", 400000, true);
DIALOG_CONSTRUCT(shuffled_400k, "enu", 400000, false);
DIALOG_CONSTRUCT(sorted_1M, "enu", 1000000, true);
DIALOG_CONSTRUCT(shuffled_1M, "enu", 1000000, false);
// clang-format on

}  // namespace
