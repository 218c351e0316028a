#include "run.hpp"

#include <unistd.h>

#include <cerrno>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <mutex>
#include <string>
#include <string_view>
#include <system_error>
#include <thread>
#include <vector>

#include "corpus/line_stemmer.hpp"
#include "input_blocks.hpp"

namespace {

using dialog_corpus::LineStemmer;

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

// A LineStemmer whose output goes to standard output whenever kDrainBytes gathered.
void drainToStdout(LineStemmer& lines) { lines.setDrain(kDrainBytes, writeAndFlush); }

// SENTENCE arguments: each is one line; a '\r' at its end is dropped.
int stemArguments(ZQ::Dialog::Stemmer& stemmer, const Options& options) {
  LineStemmer lines(stemmer);
  std::string out;
  std::size_t number = 0;
  for (std::string line : options.inputs) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (++number, line.size() > kMaxLineBytes) {
      writeOut(out.data(), out.size());
      return lineTooLong(number);
    }
    lines.stemRecord(line, options.format, options.words, out);
  }
  writeOut(out.data(), out.size());
  return 0;
}

void stemSerially(ZQ::Dialog::Stemmer& stemmer, const Options& options, InputBlocks& input) {
  LineStemmer lines(stemmer);
  drainToStdout(lines);
  std::string block, out;
  while (input.next(block)) {
    lines.stemText(block, options.format, options.words, out);
    writeAndFlush(out);
  }
}

// `jobs` threads stem blocks while the calling thread reads them; whichever
// thread finds the oldest unwritten block stemmed writes it and every stemmed
// block after it, so output keeps the input's order.
class Parallel {
 public:
  Parallel(ZQ::Dialog::Stemmer& stemmer, const Options& options, unsigned jobs)
      : stemmer_(stemmer), options_(options), jobs_(jobs), slots_(std::size_t{2} * jobs) {}

  // Reads and stems all of `input`; rethrows the first failure of any thread.
  void run(InputBlocks& input) {
    try {
      for (unsigned i = 0; i < jobs_; ++i) threads_.emplace_back([this] { work(); });
      for (std::string* block; (block = freeSlot()) && input.next(*block);) {
        if (block->size() > kLongBlockBytes) {
          stemLongBlock(*block);
        } else {
          const std::lock_guard<std::mutex> lock(mutex_);
          ++read_;
          changed_.notify_all();
        }
      }
    } catch (...) {
      stop(std::current_exception());
    }
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      done_ = true;
      changed_.notify_all();
    }
    for (std::thread& thread : threads_) thread.join();
    if (error_) std::rethrow_exception(error_);
  }

 private:
  struct Slot {
    std::string in, out;
    bool stemmed = false;
  };

  // The slot for the next block once one is free; null after a failure.
  std::string* freeSlot() {
    std::unique_lock<std::mutex> lock(mutex_);
    changed_.wait(lock, [&] { return error_ || read_ - written_ < slots_.size(); });
    return error_ ? nullptr : &slots_[read_ % slots_.size()].in;
  }

  void stop(std::exception_ptr error) {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (!error_) error_ = std::move(error);
    changed_.notify_all();
  }

  // A long line: no other thread holds output, so it is written as it is made.
  void stemLongBlock(const std::string& block) {
    {
      std::unique_lock<std::mutex> lock(mutex_);
      changed_.wait(lock, [&] { return error_ || written_ == read_; });
      if (error_) return;
    }
    LineStemmer lines(stemmer_);
    drainToStdout(lines);
    std::string out;
    lines.stemText(block, options_.format, options_.words, out);
    writeAndFlush(out);
  }

  void work() {
    try {
      LineStemmer lines(stemmer_);
      // Stemmed into a string of this thread's own: appending to one inside
      // the shared slots would keep its cache line moving between cores.
      std::string out;
      std::unique_lock<std::mutex> lock(mutex_);
      for (;;) {
        changed_.wait(lock, [&] { return error_ || taken_ < read_ || done_; });
        if (error_ || taken_ == read_) return;
        Slot& slot = slots_[taken_++ % slots_.size()];
        const std::string_view in = slot.in;
        lock.unlock();
        lines.stemText(in, options_.format, options_.words, out);
        lock.lock();
        slot.out.swap(out);
        slot.stemmed = true;
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

  ZQ::Dialog::Stemmer& stemmer_;
  const Options& options_;
  unsigned jobs_;
  std::vector<Slot> slots_;  // block n lives in slot n % size until written
  std::vector<std::thread> threads_;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::size_t read_ = 0, taken_ = 0, written_ = 0;  // blocks so far
  bool writing_ = false;                            // a thread is writing blocks
  bool done_ = false;                               // no block will follow
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

int runStemming(ZQ::Dialog::Stemmer& stemmer, const Options& options) {
  if (!options.inputs.empty()) return stemArguments(stemmer, options);
  // The Japanese morpheme path serves one caller at a time.
  const unsigned jobs = options.language == "jpj" ? 1 : options.jobs;
  InputBlocks input(STDIN_FILENO, kMaxLineBytes);
  try {
    if (jobs <= 1) {
      stemSerially(stemmer, options, input);
    } else {
      Parallel parallel(stemmer, options, jobs);
      parallel.run(input);
    }
  } catch (const std::system_error& error) {
    std::fprintf(stderr, "dialog-stem: %s\n", error.what());
    return 1;
  }
  if (input.tooLong()) return lineTooLong(input.tooLong());
  if (std::fflush(stdout) != 0 || std::ferror(stdout)) fail("cannot write standard output");
  return 0;
}
