// Construction of English and French stemmers: the time to read a lemma file
// into the dictionary, and the memory the dictionary keeps.
//
// Beside each library figure run its baselines over the same file: reading the
// file's bytes, and the same std::map<QString, QString> filled by the plain
// QTextStream::readLine loop of the tests.
//
// Every construction runs in a fresh process, as a user meets it: the program
// runs itself again with --child, which warms up Qt's text decoding, reads its
// resident size (VmRSS of /proc/self/status), builds the dictionary once and
// reports the time taken and its peak resident size (VmHWM) minus that start.

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include <benchmark/benchmark.h>
#include <QFile>
#include <QString>
#include <QTextStream>

#include "bench_support.hpp"
#include "stemmer/stemmer.hpp"
#include "stemmer/stemmer_p.hpp"
#include "support/test_support.hpp"

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
    const std::string text = dialog_test::readFile(src.path);
    std::size_t lines = 0;
    for (const char c : text) lines += c == '\n';
    if (!text.empty() && text.back() != '\n') ++lines;
    src.pairs = static_cast<double>((lines + 1) / 2);
  }
  return cache.emplace(key, std::move(src)).first->second;
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

// The child: one construction, reported as "<entries> <seconds> <bytes>".
int constructChild(const std::string& impl, const std::string& lang, const std::string& prefix) {
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
  const auto start = std::chrono::steady_clock::now();
  // Both results are left to the process's end: only building is timed.
  if (impl == "library") {
    entries = (new ZQ::Dialog::Stemmer(lang))->impl->lemDic.size();
  } else {
    entries = (new std::map<QString, QString>(dialog_test::plainLemmaLoad(path)))->size();
  }
  const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
  std::printf("%zu %.9f %ld\n", entries, seconds.count(), statusBytes("VmHWM") - before);
  std::fflush(stdout);
  _exit(0);  // the dictionary's teardown is of no interest here
}

struct ChildResult {
  double entries = 0, seconds = 0, bytes = 0;
};

// Runs one construction in a fresh process; false when the child failed.
bool runChild(const std::string& impl, const Source& src, ChildResult& result) {
  int fds[2];
  if (pipe(fds) != 0) return false;
  std::fflush(nullptr);
  const pid_t pid = fork();
  if (pid == 0) {
    dup2(fds[1], STDOUT_FILENO);
    close(fds[0]);
    close(fds[1]);
    execl("/proc/self/exe", "dialog_bench_construction", "--child", impl.c_str(), src.lang.c_str(),
          src.prefix.c_str(), static_cast<char*>(nullptr));
    _exit(127);
  }
  close(fds[1]);
  std::string output;
  char buffer[256];
  for (ssize_t n; (n = read(fds[0], buffer, sizeof buffer)) > 0;) output.append(buffer, n);
  close(fds[0]);
  int status = 0;
  if (pid > 0) waitpid(pid, &status, 0);
  return pid > 0 && WIFEXITED(status) && WEXITSTATUS(status) == 0 &&
         std::sscanf(output.c_str(), "%lf %lf %lf", &result.entries, &result.seconds,
                     &result.bytes) == 3 &&
         result.entries > 0;
}

void setCounters(benchmark::State& state, const Source& src, double entries) {
  // Seconds per (100k pairs / 1000), inverted rate: milliseconds per 100k pairs.
  state.counters["ms_per_100k"] =
      benchmark::Counter(static_cast<double>(state.iterations()) * src.pairs / 1e8,
                         benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
  state.counters["pairs"] = src.pairs;
  if (entries >= 0) state.counters["entries"] = entries;
}

// Library or plain loop, each construction timed inside its own process.
void construct(benchmark::State& state, const std::string& impl, const Source& src) {
  if (!src.error.empty()) return state.SkipWithError(src.error.c_str());
  ChildResult result;
  std::vector<double> bytes;
  for (auto _ : state) {
    if (!runChild(impl, src, result)) return state.SkipWithError("construction child failed");
    state.SetIterationTime(result.seconds);
    bytes.push_back(result.bytes / result.entries);
  }
  setCounters(state, src, result.entries);
  std::sort(bytes.begin(), bytes.end());
  if (!bytes.empty()) state.counters["bytes_per_entry"] = bytes[bytes.size() / 2];
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
  for (const char* impl : {"library", "readline_map"})
    benchmark::RegisterBenchmark((base + impl).c_str(),
                                 [get, impl](benchmark::State& s) { construct(s, impl, get()); })
        ->Unit(benchmark::kMillisecond)
        ->UseManualTime();
  benchmark::RegisterBenchmark((base + "read_bytes").c_str(),
                               [get](benchmark::State& s) { readBytes(s, get()); })
      ->Unit(benchmark::kMillisecond)
      ->UseRealTime();
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 5 && std::string(argv[1]) == "--child")
    return constructChild(argv[2], argv[3], argv[4]);
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
