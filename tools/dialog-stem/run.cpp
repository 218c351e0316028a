#include "run.hpp"

#include <unistd.h>

#include <cerrno>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <thread>
#include <vector>

#include "corpus/input_blocks.hpp"
#include "corpus/line_stemmer.hpp"
#include "corpus/morphemes.hpp"
#include "progress.hpp"

namespace ZQ::Dialog::tool {

namespace {

using corpus::InputBlocks;
using corpus::LineStemmer;
using corpus::MorphemeDictionary;
using corpus::MorphemeStemmer;

// Output is handed to standard output in pieces of about this size, also
// inside one long line, so that a huge line never has its whole result in memory.
constexpr std::size_t kDrainBytes = std::size_t{1} << 20;
// Blocks larger than this hold a long line: they are stemmed by the reading
// thread once every block before them is written, with the output drained.
constexpr std::size_t kLongBlockBytes = 8 * InputBlocks::kBlockBytes;

[[noreturn]] void fail(const char* what) {
  std::fprintf(stderr, "dialog-stem: %s: %s\n", what, std::strerror(errno));
  std::exit(1);
}

// Writes and empties `text`, then hands standard output's buffer on, so that
// every block is answered at once; throws std::system_error on failure.
void writeAndFlush(std::string& text) {
  if ((!text.empty() && std::fwrite(text.data(), 1, text.size(), stdout) != text.size()) ||
      std::fflush(stdout) != 0)
    throw std::system_error(errno, std::generic_category(), "cannot write standard output");
  text.clear();
}

// What the threads stem with: the library's elements through LineStemmers,
// which share the stems of all threads when there are several.
class LineWork {
 public:
  using Worker = LineStemmer;
  LineWork(ZQ::Dialog::Stemmer& stemmer, const Options& options, bool shared)
      : stemmer_(stemmer), options_(options) {
    if (shared) shared_.emplace(stemmer.impl);
  }
  std::unique_ptr<LineStemmer> worker() {
    auto lines = std::make_unique<LineStemmer>(stemmer_);
    if (shared_) lines->share(&*shared_);
    return lines;
  }
  void stemRecord(LineStemmer& lines, const std::string& line, std::string& out) {
    lines.stemRecord(line, options_.format, options_.words, out);
  }
  void stemText(LineStemmer& lines, std::string_view text, std::string& out) {
    lines.stemText(text, options_.format, options_.words, out);
  }

 private:
  ZQ::Dialog::Stemmer& stemmer_;
  const Options& options_;
  std::optional<corpus::SharedStems> shared_;  // each word goes to the library once
};

// Japanese base forms: one MorphemeStemmer (tagger and lattice) per thread,
// all on one dictionary.
class MorphemeWork {
 public:
  using Worker = MorphemeStemmer;
  MorphemeWork(std::shared_ptr<const MorphemeDictionary> dictionary, const Options& options)
      : dictionary_(std::move(dictionary)), options_(options) {}
  std::unique_ptr<MorphemeStemmer> worker() {
    return std::make_unique<MorphemeStemmer>(dictionary_);
  }
  void stemRecord(MorphemeStemmer& morphemes, const std::string& line, std::string& out) {
    morphemes.stemRecord(line, options_.format, out);
  }
  void stemText(MorphemeStemmer& morphemes, std::string_view text, std::string& out) {
    morphemes.stemText(text, options_.format, out);
  }

 private:
  std::shared_ptr<const MorphemeDictionary> dictionary_;
  const Options& options_;
};

// A worker whose output goes to standard output whenever kDrainBytes gathered.
template <typename Work>
std::unique_ptr<typename Work::Worker> drainingWorker(Work& work) {
  auto worker = work.worker();
  worker->setDrain(kDrainBytes, writeAndFlush);
  return worker;
}

// SENTENCE arguments: each is one line; a '\r' at its end is dropped.
template <typename Work>
int stemArguments(Work& work, const Options& options) {
  const auto worker = work.worker();
  std::string out;
  std::size_t number = 0;
  for (std::string line : options.inputs) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (++number, line.size() > kMaxLineBytes) {
      writeOut(out.data(), out.size());
      return lineTooLong(number);
    }
    work.stemRecord(*worker, line, out);
  }
  writeOut(out.data(), out.size());
  return 0;
}

template <typename Work>
void stemSerially(Work& work, InputBlocks& input) {
  const auto worker = drainingWorker(work);
  std::string block, out;
  while (input.next(block)) {
    work.stemText(*worker, block, out);
    writeAndFlush(out);
  }
}

// `jobs` threads, the calling one among them, each read the next block (one
// at a time) and stem it; whichever thread finds the oldest unwritten block
// stemmed writes it and every stemmed block after it, so output keeps the
// input's order. No thread only reads: on two cores a third thread would take
// turns with the two that stem.
template <typename Work>
class Parallel {
 public:
  Parallel(Work& work, unsigned jobs) : work_(work), jobs_(jobs), slots_(std::size_t{2} * jobs) {}

  // Reads and stems all of `input`; rethrows the first failure of any thread.
  void run(InputBlocks& input) {
    std::vector<std::thread> threads;
    try {
      for (unsigned i = 1; i < jobs_; ++i) threads.emplace_back([&] { work(input); });
    } catch (...) {
      stop(std::current_exception());
    }
    work(input);
    for (std::thread& thread : threads) thread.join();
    if (error_) std::rethrow_exception(error_);
  }

 private:
  struct Slot {
    std::string in, out;
    bool stemmed = false;
  };

  void stop(std::exception_ptr error) {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (!error_) error_ = std::move(error);
    changed_.notify_all();
  }

  // Reads the next block into a free slot; false at the end of the input or
  // after a failure. A long line is stemmed and written here, once every
  // block before it is written, while no other thread reads.
  bool take(InputBlocks& input, Slot*& slot) {
    const std::lock_guard<std::mutex> reading(reading_);
    for (;;) {
      {
        std::unique_lock<std::mutex> lock(mutex_);
        changed_.wait(lock, [&] { return error_ || done_ || read_ - written_ < slots_.size(); });
        if (error_ || done_) return false;
        slot = &slots_[read_ % slots_.size()];
      }
      if (!input.next(slot->in)) {
        const std::lock_guard<std::mutex> lock(mutex_);
        done_ = true;
        changed_.notify_all();
        return false;
      }
      if (slot->in.size() <= kLongBlockBytes) break;
      if (!stemLongBlock(slot->in)) return false;
    }
    const std::lock_guard<std::mutex> lock(mutex_);
    slot->stemmed = false;
    ++read_;
    return true;
  }

  // A long line: no other thread holds output, so it is written as it is made.
  bool stemLongBlock(const std::string& block) {
    {
      std::unique_lock<std::mutex> lock(mutex_);
      changed_.wait(lock, [&] { return error_ || written_ == read_; });
      if (error_) return false;
    }
    std::string out;
    work_.stemText(*drainingWorker(work_), block, out);
    writeAndFlush(out);
    return true;
  }

  void work(InputBlocks& input) {
    try {
      const auto worker = work_.worker();
      // Stemmed into a string of this thread's own: appending to one inside
      // the shared slots would keep its cache line moving between cores.
      std::string out;
      for (Slot* slot; take(input, slot);) {
        work_.stemText(*worker, slot->in, out);
        std::unique_lock<std::mutex> lock(mutex_);
        slot->out.swap(out);
        slot->stemmed = true;
        if (writing_) continue;  // the thread writing picks this block up
        writing_ = true;
        for (Slot* next; !error_ && (next = &slots_[written_ % slots_.size()])->stemmed;) {
          lock.unlock();
          writeAndFlush(next->out);
          lock.lock();
          next->stemmed = false;
          ++written_;
          changed_.notify_all();
        }
        writing_ = false;
      }
    } catch (...) {
      stop(std::current_exception());
    }
  }

  Work& work_;
  unsigned jobs_;
  std::vector<Slot> slots_;  // block n lives in slot n % size until written
  std::mutex reading_;       // held by the thread reading a block
  std::mutex mutex_;         // guards what follows and the slots' flags
  std::condition_variable changed_;
  std::size_t read_ = 0, written_ = 0;  // blocks so far
  bool writing_ = false;                // a thread is writing blocks
  bool done_ = false;                   // no block will follow
  std::exception_ptr error_;
};

}  // namespace

int lineTooLong(std::size_t number) {
  if (std::fflush(stdout) != 0) fail("cannot write standard output");
  std::fprintf(stderr, "dialog-stem: line %zu is longer than 1 GiB; stopped before it\n", number);
  return 1;
}

void writeOut(const char* bytes, std::size_t size) {
  if (size && std::fwrite(bytes, 1, size, stdout) != size) fail("cannot write standard output");
}

namespace {

// Stems standard input with `jobs` threads; returns the exit status.
template <typename Work>
int stemInput(Work& work, const Options& options, unsigned jobs) {
  InputBlocks input(STDIN_FILENO, kMaxLineBytes);
  // Counted where blocks are read, whichever thread or stemmer takes them.
  std::optional<ZQ::Dialog::tool::Progress> progress;
  if (options.progress) {
    ZQ::Dialog::tool::Progress& shown = progress.emplace(STDIN_FILENO);
    input.observe([&shown](std::uint64_t bytes, std::uint64_t lines) { shown.read(bytes, lines); });
  }
  try {
    if (jobs <= 1) {
      stemSerially(work, input);
    } else {
      Parallel<Work> parallel(work, jobs);
      parallel.run(input);
    }
  } catch (const std::system_error& error) {
    if (progress) progress->finish();  // the summary, then the error
    std::fprintf(stderr, "dialog-stem: %s\n", error.what());
    return 1;
  }
  if (progress) progress->finish();
  return input.tooLong() ? lineTooLong(input.tooLong()) : 0;
}

// What stdio still holds is written here: a short output fails only now.
int flushedStatus(int status) {
  if (status == 0 && (std::fflush(stdout) != 0 || std::ferror(stdout)))
    fail("cannot write standard output");
  return status;
}

}  // namespace

int runStemming(ZQ::Dialog::Stemmer& stemmer, const Options& options) {
  // The library's Japanese tagger serves one caller at a time.
  const unsigned jobs = options.language == "jpj" ? 1 : options.jobs;
  LineWork work(stemmer, options, jobs > 1);
  return flushedStatus(options.inputs.empty() ? stemInput(work, options, jobs)
                                              : stemArguments(work, options));
}

int runMorphemes(std::shared_ptr<const MorphemeDictionary> dictionary, const Options& options) {
  MorphemeWork work(std::move(dictionary), options);
  return flushedStatus(options.inputs.empty() ? stemInput(work, options, options.jobs)
                                              : stemArguments(work, options));
}

}  // namespace ZQ::Dialog::tool
