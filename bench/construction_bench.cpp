// Construction of English and French stemmers: the time to read a lemma file
// into the dictionary, and the memory the dictionary keeps.
//
// Beside each library figure run its baselines over the same file: reading the
// file's bytes, and the same std::map<QString, QString> filled by a plain loop
// over QTextStream::readLine, the floor for this data structure.
//
// Memory is measured in a fresh process: the program runs itself again with
// --rss-child, which warms up Qt's text decoding, reads its resident size
// (VmRSS of /proc/self/status), builds the dictionary once and reports its peak
// resident size (VmHWM) minus that starting size, per dictionary entry.

#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <utility>

#include <benchmark/benchmark.h>
#include <libstemmer.h>
#include <QFile>
#include <QString>
#include <QTextStream>

#include "bench_support.hpp"
#include "stemmer/stemmer.hpp"
#include "stemmer/stemmer_p.hpp"

namespace {

using namespace dialog_bench;

// One lemma file to construct from.
struct Source {
  std::string lang;
  std::string prefix;
  std::string path;
  double pairs = 0;  // line pairs in the file
  std::string error;
};

const std::vector<LemmaPair>& generatedPairs() {
  static const std::vector<LemmaPair> pairs = WordGenerator(20240611).pairs(1000000);
  return pairs;
}

// "default_enu", "default_frf", or "<sorted|shuffled>_<count>"; built on first use.
const Source& source(const std::string& key, const std::string& lang, std::size_t count,
                     bool sorted) {
  static std::map<std::string, Source> cache;
  auto found = cache.find(key);
  if (found != cache.end()) return found->second;
  Source src;
  src.lang = lang;
  if (count == 0) {
    if (const auto prefix = defaultDataPrefix(lang)) {
      src.prefix = *prefix;
    } else {
      src.error = "no default data for " + lang +
                  ": set DIALOG_BENCH_DATA to a prefix holding share/dialog/lemmatizer/" + lang +
                  "/lemma";
    }
  } else {
    const auto& all = generatedPairs();
    std::vector<LemmaPair> pairs(all.begin(), all.begin() + static_cast<long>(count));
    if (sorted)
      sortByForm(pairs);
    else
      shuffle(pairs, count);
    src.prefix = makeLemmaPrefix(key, lang, pairs);
  }
  if (src.error.empty()) {
    src.path = lemmaPath(src.prefix, lang);
    const std::string text = readFile(src.path);
    std::size_t lines = 0;
    for (const char c : text) lines += c == '\n';
    if (!text.empty() && text.back() != '\n') ++lines;
    src.pairs = static_cast<double>((lines + 1) / 2);
  }
  return cache.emplace(key, std::move(src)).first->second;
}

// The floor: the same map, filled by the plainest loop over readLine.
std::map<QString, QString> readLineMap(const std::string& path) {
  std::map<QString, QString> map;
  QFile file(QString::fromUtf8(path.c_str()));
  if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) return map;
  QTextStream in(&file);
  while (!in.atEnd()) {
    QString form = in.readLine();
    QString lemma = in.readLine();
    map.insert_or_assign(std::move(form), std::move(lemma));
  }
  return map;
}

// A "<field>: <n> kB" line of /proc/self/status, in bytes. These figures are
// the process's own: getrusage's ru_maxrss would carry the parent's peak over
// fork and exec.
long statusBytes(const char* field) {
  long kb = -1;
  if (FILE* status = std::fopen("/proc/self/status", "r")) {
    char line[256];
    const std::size_t length = std::strlen(field);
    while (std::fgets(line, sizeof line, status))
      if (std::strncmp(line, field, length) == 0 && line[length] == ':') {
        kb = std::strtol(line + length + 1, nullptr, 10);
        break;
      }
    std::fclose(status);
  }
  return kb * 1024;
}

int rssChild(const std::string& impl, const std::string& lang, const std::string& prefix) {
  setenv("KU_PREFIX_PATH", prefix.c_str(), 1);
  setenv("XDG_DATA_HOME", "/nonexistent/dialog-bench", 1);
  const std::string path = lemmaPath(prefix, lang);
  {
    // Loads the locale's codec and Qt's file machinery before the start figure.
    QFile file(QString::fromUtf8(path.c_str()));
    if (file.open(QIODevice::ReadOnly | QIODevice::Text)) QTextStream(&file).readLine();
  }
  const long before = statusBytes("VmRSS");
  std::size_t entries = 0;
  std::unique_ptr<ZQ::Dialog::Stemmer> stemmer;
  std::map<QString, QString> map;
  if (impl == "library") {
    stemmer = std::make_unique<ZQ::Dialog::Stemmer>(lang);
    entries = stemmer->impl->lemDic.size();
  } else {
    map = readLineMap(path);
    entries = map.size();
  }
  std::printf("%zu %ld\n", entries, statusBytes("VmHWM") - before);
  std::fflush(stdout);
  _exit(0);  // the dictionary's teardown is of no interest here
}

// Bytes of peak resident growth per entry, measured once per (source, impl).
double bytesPerEntry(const std::string& impl, const Source& src) {
  static std::map<std::string, double> cache;
  const std::string key = impl + "|" + src.prefix + "|" + src.lang;
  if (auto found = cache.find(key); found != cache.end()) return found->second;
  double result = -1;
  int fds[2];
  if (pipe(fds) == 0) {
    std::fflush(nullptr);
    const pid_t pid = fork();
    if (pid == 0) {
      dup2(fds[1], STDOUT_FILENO);
      close(fds[0]);
      close(fds[1]);
      execl("/proc/self/exe", "dialog_bench_construction", "--rss-child", impl.c_str(),
            src.lang.c_str(), src.prefix.c_str(), static_cast<char*>(nullptr));
      _exit(127);
    }
    close(fds[1]);
    std::string output;
    char buffer[256];
    for (ssize_t n; (n = read(fds[0], buffer, sizeof buffer)) > 0;) output.append(buffer, n);
    close(fds[0]);
    int status = 0;
    if (pid > 0) waitpid(pid, &status, 0);
    unsigned long entries = 0;
    long growth = 0;
    if (pid > 0 && WIFEXITED(status) && WEXITSTATUS(status) == 0 &&
        std::sscanf(output.c_str(), "%lu %ld", &entries, &growth) == 2 && entries > 0)
      result = static_cast<double>(growth) / static_cast<double>(entries);
  }
  cache[key] = result;
  return result;
}

void setCounters(benchmark::State& state, const Source& src, double entries) {
  // Seconds per (100k pairs / 1000), inverted rate: milliseconds per 100k pairs.
  state.counters["ms_per_100k"] =
      benchmark::Counter(static_cast<double>(state.iterations()) * src.pairs / 1e8,
                         benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
  state.counters["pairs"] = src.pairs;
  if (entries >= 0) state.counters["entries"] = entries;
}

void constructLibrary(benchmark::State& state, const Source& src) {
  if (!src.error.empty()) return state.SkipWithError(src.error.c_str());
  const DataPrefixScope scope(src.prefix);
  const double memory = bytesPerEntry("library", src);
  double entries = 0;
  for (auto _ : state) {
    auto* stemmer = new ZQ::Dialog::Stemmer(src.lang);
    state.PauseTiming();
    entries = static_cast<double>(stemmer->impl->lemDic.size());
    // Snowball handles are kept for the process's life by design; freed here
    // so that thousands of iterations do not pile them up.
    sb_stemmer_delete(stemmer->impl->stemmer);
    stemmer->impl->stemmer = nullptr;
    delete stemmer;
    state.ResumeTiming();
  }
  setCounters(state, src, entries);
  if (memory >= 0) state.counters["bytes_per_entry"] = memory;
}

void constructReadLineMap(benchmark::State& state, const Source& src) {
  if (!src.error.empty()) return state.SkipWithError(src.error.c_str());
  const double memory = bytesPerEntry("readline_map", src);
  double entries = 0;
  for (auto _ : state) {
    auto* map = new std::map<QString, QString>(readLineMap(src.path));
    state.PauseTiming();
    entries = static_cast<double>(map->size());
    delete map;
    state.ResumeTiming();
  }
  setCounters(state, src, entries);
  if (memory >= 0) state.counters["bytes_per_entry"] = memory;
}

void readBytes(benchmark::State& state, const Source& src) {
  if (!src.error.empty()) return state.SkipWithError(src.error.c_str());
  for (auto _ : state) {
    std::string bytes;
    if (FILE* file = std::fopen(src.path.c_str(), "rb")) {
      char buffer[1 << 16];
      for (std::size_t n; (n = std::fread(buffer, 1, sizeof buffer, file)) > 0;)
        bytes.append(buffer, n);
      std::fclose(file);
    }
    benchmark::DoNotOptimize(bytes.data());
  }
  setCounters(state, src, -1);
}

void registerSource(const std::string& key, const std::string& lang, std::size_t count,
                    bool sorted) {
  const auto get = [=]() -> const Source& { return source(key, lang, count, sorted); };
  const std::string base = "construct/" + key + "/";
  benchmark::RegisterBenchmark((base + "library").c_str(),
                               [get](benchmark::State& s) { constructLibrary(s, get()); })
      ->Unit(benchmark::kMillisecond)
      ->UseRealTime();
  benchmark::RegisterBenchmark((base + "readline_map").c_str(),
                               [get](benchmark::State& s) { constructReadLineMap(s, get()); })
      ->Unit(benchmark::kMillisecond)
      ->UseRealTime();
  benchmark::RegisterBenchmark((base + "read_bytes").c_str(),
                               [get](benchmark::State& s) { readBytes(s, get()); })
      ->Unit(benchmark::kMillisecond)
      ->UseRealTime();
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 5 && std::string(argv[1]) == "--rss-child")
    return rssChild(argv[2], argv[3], argv[4]);
  registerSource("default_enu", "enu", 0, false);
  registerSource("default_frf", "frf", 0, false);
  for (const std::size_t count : {100000, 400000, 1000000}) {
    const std::string size = count == 1000000 ? "1M" : std::to_string(count / 1000) + "k";
    registerSource("sorted_" + size, "enu", count, true);
    registerSource("shuffled_" + size, "enu", count, false);
  }
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
