#ifndef DIALOG_STEM_PROGRESS_HPP
#define DIALOG_STEM_PROGRESS_HPP

#include <chrono>
#include <cstddef>
#include <cstdint>

namespace ZQ::Dialog::tool {

// --progress: how much of standard input has been read, reported on standard
// error. On a terminal one line, rewritten in place at most 4 times a second;
// elsewhere a plain line at most every 10 seconds. Each report holds the bytes
// and lines read and the rate, and when the input is a regular file also the
// percentage done and the time left; finish() ends with a summary line.
// It is fed where input is read, once a block, so it costs one clock read a
// block and never a thread: a stalled input leaves the last report standing.
// Not thread-safe: one thread at a time calls read() (the reading thread).
class Progress {
 public:
  // Starts the clock. `inputFd` is looked at once: when it is a regular file,
  // what is left of it from its current offset is the total.
  explicit Progress(int inputFd);
  // Calls finish() if nothing has yet, so that an error message that follows
  // starts on a line of its own.
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  // Records the totals read so far and prints a report when one is due.
  // Never allocates or throws; a failed write to standard error is ignored.
  void read(std::uint64_t bytes, std::uint64_t lines);

  // Prints the summary (bytes, lines, seconds, rate) once; later calls do
  // nothing. Never allocates or throws.
  void finish();

 private:
  using Clock = std::chrono::steady_clock;

  // Writes `text` as the status line: over the last one on a terminal, as a
  // line of its own elsewhere; `last` ends the line on a terminal too.
  void show(const char* text, bool last);

  Clock::time_point start_, lastReport_;
  Clock::duration interval_;
  std::uint64_t total_ = 0;  // bytes the input holds; 0: not known
  std::uint64_t bytes_ = 0, lines_ = 0;
  std::size_t shownWidth_ = 0;  // characters of the status line on the terminal
  bool terminal_;
  bool finished_ = false;
};

}  // namespace ZQ::Dialog::tool

#endif  // DIALOG_STEM_PROGRESS_HPP
