// Corpus stemming as dialog-stem does it: LineStemmer over the treebank text
// beside a per-line stem_sentence loop, in this process and as programs; the
// tool with two jobs beside one, and with --progress beside without; the
// tool's peak memory on a 200 MB line; the Japanese morpheme mode beside
// MeCab's own program, on one and two jobs.

#include <fcntl.h>
#include <pty.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include <benchmark/benchmark.h>

#include "corpus/line_stemmer.hpp"
#include "testing/files.hpp"
#include "testing/generated_data.hpp"
#include "testing/mecab.hpp"

extern char** environ;

namespace {

using ZQ::Dialog::corpus::Format;
using ZQ::Dialog::corpus::LineStemmer;

// The baseline: each line, as the tool reads it, through stem_sentence, then
// formatted. Appends to `out`.
void perLine(ZQ::Dialog::Stemmer& stemmer, std::string_view text, std::string& out) {
  std::vector<std::string> elements;
  std::string line;
  while (!text.empty()) {
    const std::size_t end = text.find('\n');
    line.assign(text.substr(0, end));
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    if (!line.empty() && line.back() == '\r') line.pop_back();
    elements.clear();
    stemmer.stem_sentence(line, elements);
    ZQ::Dialog::corpus::formatRecord(Format::Lines, false, elements, out);
  }
}

struct Corpus {
  std::unique_ptr<ZQ::Dialog::Stemmer> stemmer;
  std::string text;   // the language's sentences, one a line
  std::string error;  // set when the two sides disagree
};

const Corpus& corpusFor(const std::string& lang) {
  static std::map<std::string, Corpus> cache;
  auto [entry, fresh] = cache.try_emplace(lang);
  Corpus& c = entry->second;
  if (!fresh) return c;
  const ZQ::Dialog::testing::DataRoot root(ZQ::Dialog::testing::realisticData(lang).prefix);
  c.stemmer = std::make_unique<ZQ::Dialog::Stemmer>(lang);
  for (const std::string& sentence : ZQ::Dialog::testing::realisticSentences(lang))
    c.text += sentence + "\n";
  // Both sides must give the same bytes, or the ratio means nothing.
  std::string fromLoop, fromLines;
  perLine(*c.stemmer, c.text, fromLoop);
  LineStemmer(*c.stemmer).stemText(c.text, Format::Lines, false, fromLines);
  if (fromLoop != fromLines) c.error = "LineStemmer disagrees with stem_sentence";
  return c;
}

// "line_stemmer": one LineStemmer for the whole run, as over a long corpus;
// "line_stemmer_cold": a new one each pass, which fills its cache afresh;
// "per_line": the stem_sentence loop.
void corpus(benchmark::State& state, const std::string& lang, const std::string& impl) {
  const Corpus& c = corpusFor(lang);
  if (!c.error.empty()) return state.SkipWithError(c.error.c_str());
  LineStemmer warm(*c.stemmer);
  std::string out;
  for (auto _ : state) {
    out.clear();
    if (impl == "line_stemmer") {
      warm.stemText(c.text, Format::Lines, false, out);
    } else if (impl == "line_stemmer_cold") {
      LineStemmer(*c.stemmer).stemText(c.text, Format::Lines, false, out);
    } else {
      perLine(*c.stemmer, c.text, out);
    }
    benchmark::DoNotOptimize(out.data());
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * c.text.size()));
  state.SetLabel(ZQ::Dialog::testing::realisticData(lang).description);
}

// The per-line loop as a program, for the tool's cases: this program again,
// with DIALOG_BENCH_PER_LINE=<lang>, stems standard input line by line to
// standard output and exits before the benchmarks' main.
[[maybe_unused]] const bool kPerLineDriver = [] {
  const char* lang = std::getenv("DIALOG_BENCH_PER_LINE");
  if (!lang) return false;
  ZQ::Dialog::Stemmer stemmer(lang);
  std::ios::sync_with_stdio(false);
  std::vector<std::string> elements;
  std::string out;
  for (std::string line; std::getline(std::cin, line);) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    elements.clear();
    stemmer.stem_sentence(line, elements);
    ZQ::Dialog::corpus::formatRecord(Format::Lines, false, elements, out);
    if (out.size() >= (1 << 20))
      std::cout.write(out.data(), static_cast<long>(out.size())), out.clear();
  }
  std::cout.write(out.data(), static_cast<long>(out.size()));
  std::exit(std::cout.flush() ? 0 : 1);
}();

#ifdef DIALOG_STEM_PATH
// Runs `command` on the file `input`, output dropped; returns its wall time in
// seconds, and its peak resident memory in `peakBytes`, read from /proc while
// it runs (its own figure: ru_maxrss would carry this program's peak over
// exec). Standard error goes to `errFd` when it is not -1, and the CPU time
// (user and system) to `cpuSeconds` when given. Negative when it fails.
double runTool(const std::vector<std::string>& command, const std::string& input, long& peakBytes,
               int errFd = -1, double* cpuSeconds = nullptr) {
  std::vector<char*> argv;
  for (const std::string& arg : command) argv.push_back(const_cast<char*>(arg.c_str()));
  argv.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 0, input.c_str(), O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
  if (errFd != -1) posix_spawn_file_actions_adddup2(&actions, errFd, 2);
  const auto start = std::chrono::steady_clock::now();
  pid_t pid;
  const int failed = posix_spawn(&pid, argv[0], &actions, nullptr, argv.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (failed) return -1;
  int status = 0;
  peakBytes = 0;
  const std::string statusFile = "/proc/" + std::to_string(pid) + "/status";
  rusage usage{};
  while (wait4(pid, &status, WNOHANG, &usage) == 0) {
    std::ifstream in(statusFile);
    for (std::string line; std::getline(in, line);)
      if (line.rfind("VmHWM:", 0) == 0)
        peakBytes = std::max(peakBytes, std::stol(line.substr(6)) * 1024);
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
  const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
  if (cpuSeconds)
    *cpuSeconds = static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
                  static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
  return WIFEXITED(status) && WEXITSTATUS(status) == 0 ? seconds.count() : -1;
}

// The corpus text repeated to `megabytes` in a file, of many input blocks.
const std::string& corpusFile(const std::string& lang, std::size_t megabytes) {
  static std::map<std::pair<std::string, std::size_t>, std::string> cache;
  auto [entry, fresh] = cache.try_emplace({lang, megabytes});
  if (fresh) {
    const std::string& text = corpusFor(lang).text;
    std::string repeated;
    while (repeated.size() < (megabytes << 20)) repeated += text;
    entry->second = ZQ::Dialog::testing::processTempDir().write(
        "corpus_" + lang + "_" + std::to_string(megabytes), repeated);
  }
  return entry->second;
}

// One job of dialog-stem ("dialog_stem") or the per-line loop as a program
// ("per_line") on 8 MB of the language's text, each with its start and its
// dictionary: wall time.
void tool(benchmark::State& state, const std::string& lang, const std::string& impl) {
  if (!corpusFor(lang).error.empty()) return state.SkipWithError(corpusFor(lang).error.c_str());
  const std::string& input = corpusFile(lang, 8);
  const ZQ::Dialog::testing::DataRoot root(ZQ::Dialog::testing::realisticData(lang).prefix);
  const ZQ::Dialog::testing::ScopedEnv driver(
      "DIALOG_BENCH_PER_LINE",
      impl == "per_line" ? std::optional<std::string>(lang) : std::nullopt);
  const std::string self = std::filesystem::read_symlink("/proc/self/exe");
  long peak;
  for (auto _ : state) {
    const double seconds =
        runTool(impl == "per_line" ? std::vector<std::string>{self}
                                   : std::vector<std::string>{DIALOG_STEM_PATH, "--lang", lang},
                input, peak);
    if (seconds < 0) return state.SkipWithError("the program failed");
    state.SetIterationTime(seconds);
  }
  state.SetBytesProcessed(
      static_cast<std::int64_t>(state.iterations() * std::ifstream(input, std::ios::ate).tellg()));
}

// dialog-stem --jobs `count` on 32 MB of the language's text, start-up and
// dictionary included: wall time.
void jobs(benchmark::State& state, const std::string& lang, int count) {
  if (!corpusFor(lang).error.empty()) return state.SkipWithError(corpusFor(lang).error.c_str());
  const std::string& input = corpusFile(lang, 32);
  const ZQ::Dialog::testing::DataRoot root(ZQ::Dialog::testing::realisticData(lang).prefix);
  long peak;
  for (auto _ : state) {
    const double seconds =
        runTool({DIALOG_STEM_PATH, "--lang", lang, "--jobs", std::to_string(count)}, input, peak);
    if (seconds < 0) return state.SkipWithError("dialog-stem failed");
    state.SetIterationTime(seconds);
  }
  state.SetBytesProcessed(
      static_cast<std::int64_t>(state.iterations() * std::ifstream(input, std::ios::ate).tellg()));
}

// dialog-stem --progress ("shown") or the same run without it ("without") on
// 32 MB of the language's text, standard error on a pseudo-terminal, where
// reports come most often (4 a second): CPU time, user and system, which the
// machine's other load moves far less than wall time.
void progress(benchmark::State& state, const std::string& lang, const std::string& impl) {
  if (!corpusFor(lang).error.empty()) return state.SkipWithError(corpusFor(lang).error.c_str());
  const std::string& input = corpusFile(lang, 32);
  const ZQ::Dialog::testing::DataRoot root(ZQ::Dialog::testing::realisticData(lang).prefix);
  // Nothing reads the far end: a run's few reports fit in the terminal's buffer.
  int far, near;
  if (openpty(&far, &near, nullptr, nullptr, nullptr) != 0)
    return state.SkipWithError("no pseudo-terminal");
  std::vector<std::string> command{DIALOG_STEM_PATH, "--lang", lang};
  if (impl == "shown") command.push_back("--progress");
  long peak;
  for (auto _ : state) {
    double seconds = 0;
    if (runTool(command, input, peak, near, &seconds) < 0) {
      state.SkipWithError("dialog-stem failed");
      break;
    }
    state.SetIterationTime(seconds);
  }
  close(far), close(near);
  state.SetBytesProcessed(
      static_cast<std::int64_t>(state.iterations() * std::ifstream(input, std::ios::ate).tellg()));
}

// One English line of 200 MB (the corpus's words, space-separated): the tool's
// peak resident memory over the line's size.
void lineMemory(benchmark::State& state, const std::string& format) {
  static const std::string input = [] {
    std::string line, text = corpusFor("enu").text;
    for (char& c : text) c = c == '\n' ? ' ' : c;
    while (line.size() < 200'000'000) line += text;
    line.resize(200'000'000);
    return ZQ::Dialog::testing::processTempDir().write("line_200MB", line + "\n");
  }();
  const ZQ::Dialog::testing::DataRoot root(ZQ::Dialog::testing::realisticData("enu").prefix);
  double ratio = 0;
  for (auto _ : state) {
    long peak;
    const double seconds = runTool({DIALOG_STEM_PATH, "--format", format}, input, peak);
    if (seconds < 0) return state.SkipWithError("dialog-stem failed");
    state.SetIterationTime(seconds);
    ratio += static_cast<double>(peak) / 200e6;
  }
  state.counters["rss_per_line_byte"] =
      benchmark::Counter(ratio, benchmark::Counter::kAvgIterations);
}

// dialog-stem --lang jpj --morphemes with 1 ("1_job") or 2 jobs on 10 MB of everyday
// sentences (repeated), or "mecab_command": MeCab's own program printing base
// forms (-F '%f[6]\n' -U '%m\n' -E '\n') on the same IPA dictionary and its
// dicrc. Wall time, start-up and dictionary included.
void japanese(benchmark::State& state, const std::string& impl) {
  if (auto why = ZQ::Dialog::testing::missing(ZQ::Dialog::testing::Need::kIpaDictionary);
      !why.empty())
    return state.SkipWithError(why.c_str());
  const char kMecab[] = "/usr/bin/mecab";
  if (impl == "mecab_command" && !std::filesystem::exists(kMecab))
    return state.SkipWithError("no /usr/bin/mecab (install mecab)");
  static const std::string input = [] {
    std::string text;
    while (text.size() < (std::size_t{10} << 20))
      for (const std::string& sentence : ZQ::Dialog::testing::japaneseSentences())
        text += sentence + "\n";
    return ZQ::Dialog::testing::processTempDir().write("japanese_10MB", text);
  }();
  const std::string dir = ZQ::Dialog::testing::ipadicDir();
  const ZQ::Dialog::testing::DataRoot root;
  root.linkDictionary(dir);
  const std::vector<std::string> command =
      impl == "mecab_command"
          ? std::vector<std::string>{kMecab,     "-r", dir + "/dicrc", "-d", dir,  "-F",
                                     "%f[6]\\n", "-U", "%m\\n",        "-E", "\\n"}
          : std::vector<std::string>{DIALOG_STEM_PATH, "--lang", "jpj",
                                     "--morphemes",    "--jobs", impl == "2_jobs" ? "2" : "1"};
  long peak;
  for (auto _ : state) {
    const double seconds = runTool(command, input, peak);
    if (seconds < 0) return state.SkipWithError("the program failed");
    state.SetIterationTime(seconds);
  }
  state.SetBytesProcessed(
      static_cast<std::int64_t>(state.iterations() * std::ifstream(input, std::ios::ate).tellg()));
}
// Two operations of the table: --jobs 2 against 1, the mode against MeCab's program.
void jpjJobs(benchmark::State& state, const std::string& impl) { japanese(state, impl); }
void jpjTool(benchmark::State& state, const std::string& impl) { japanese(state, impl); }
#else
void skip(benchmark::State& state) {
  state.SkipWithError("dialog-stem not built (configure with -DDIALOG_BUILD_TOOLS=ON)");
}
void tool(benchmark::State& state, const std::string&, const std::string&) { skip(state); }
void jobs(benchmark::State& state, const std::string&, int) { skip(state); }
void progress(benchmark::State& state, const std::string&, const std::string&) { skip(state); }
void lineMemory(benchmark::State& state, const std::string&) { skip(state); }
void jpjJobs(benchmark::State& state, const std::string&) { skip(state); }
void jpjTool(benchmark::State& state, const std::string&) { skip(state); }
#endif

// Left unformatted: clang-format would put spaces around the slashes of names.
// clang-format off
BENCHMARK_CAPTURE(corpus, enu/line_stemmer, "enu", "line_stemmer");
BENCHMARK_CAPTURE(corpus, enu/line_stemmer_cold, "enu", "line_stemmer_cold");
BENCHMARK_CAPTURE(corpus, enu/per_line, "enu", "per_line");
BENCHMARK_CAPTURE(corpus, frf/line_stemmer, "frf", "line_stemmer");
BENCHMARK_CAPTURE(corpus, frf/line_stemmer_cold, "frf", "line_stemmer_cold");
BENCHMARK_CAPTURE(corpus, frf/per_line, "frf", "per_line");
BENCHMARK_CAPTURE(tool, enu/dialog_stem, "enu", "dialog_stem")->UseManualTime()->Iterations(1);
BENCHMARK_CAPTURE(tool, enu/per_line, "enu", "per_line")->UseManualTime()->Iterations(1);
BENCHMARK_CAPTURE(tool, frf/dialog_stem, "frf", "dialog_stem")->UseManualTime()->Iterations(1);
BENCHMARK_CAPTURE(tool, frf/per_line, "frf", "per_line")->UseManualTime()->Iterations(1);
BENCHMARK_CAPTURE(jobs, enu/2_jobs, "enu", 2)->UseManualTime()->Iterations(1);
BENCHMARK_CAPTURE(jobs, enu/1_job, "enu", 1)->UseManualTime()->Iterations(1);
BENCHMARK_CAPTURE(jobs, frf/2_jobs, "frf", 2)->UseManualTime()->Iterations(1);
BENCHMARK_CAPTURE(jobs, frf/1_job, "frf", 1)->UseManualTime()->Iterations(1);
BENCHMARK_CAPTURE(progress, enu/shown, "enu", "shown")->UseManualTime()->Iterations(1);
BENCHMARK_CAPTURE(progress, enu/without, "enu", "without")->UseManualTime()->Iterations(1);
BENCHMARK_CAPTURE(progress, frf/shown, "frf", "shown")->UseManualTime()->Iterations(1);
BENCHMARK_CAPTURE(progress, frf/without, "frf", "without")->UseManualTime()->Iterations(1);
BENCHMARK_CAPTURE(lineMemory, 200MB_line/lines, "lines")->UseManualTime()->Iterations(1);
BENCHMARK_CAPTURE(jpjJobs, morphemes/2_jobs, "2_jobs")->UseManualTime()->Iterations(1);
BENCHMARK_CAPTURE(jpjJobs, morphemes/1_job, "1_job")->UseManualTime()->Iterations(1);
BENCHMARK_CAPTURE(jpjTool, morphemes/dialog_stem, "1_job")->UseManualTime()->Iterations(1);
BENCHMARK_CAPTURE(jpjTool, morphemes/mecab_command, "mecab_command")->UseManualTime()->Iterations(1);
// clang-format on

}  // namespace
