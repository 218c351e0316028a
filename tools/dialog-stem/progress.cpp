#include "progress.hpp"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace ZQ::Dialog::tool {

namespace {

// Room for a status line; a longer one is cut.
constexpr std::size_t kWidth = 160;

double seconds(std::chrono::steady_clock::duration span) {
  return std::chrono::duration<double>(span).count();
}

// Megabytes (10^6 bytes, as dd and pv count) a second; 0 before any time passed.
double rate(std::uint64_t bytes, double elapsed) {
  return elapsed > 0 ? static_cast<double>(bytes) / elapsed / 1e6 : 0;
}

}  // namespace

Progress::Progress(int inputFd)
    : start_(Clock::now()), lastReport_(start_), terminal_(isatty(STDERR_FILENO) == 1) {
  // A person watches a terminal; a log file wants few lines.
  interval_ = terminal_ ? Clock::duration(std::chrono::milliseconds(250))
                        : Clock::duration(std::chrono::seconds(10));
  struct stat info;
  if (fstat(inputFd, &info) == 0 && S_ISREG(info.st_mode)) {
    // Input may start inside the file, after what a caller has read before.
    const off_t offset = lseek(inputFd, 0, SEEK_CUR);
    if (offset >= 0 && offset < info.st_size)
      total_ = static_cast<std::uint64_t>(info.st_size - offset);
  }
}

Progress::~Progress() { finish(); }

void Progress::read(std::uint64_t bytes, std::uint64_t lines) {
  bytes_ = bytes, lines_ = lines;
  const Clock::time_point now = Clock::now();
  if (now - lastReport_ < interval_) return;
  lastReport_ = now;
  const double elapsed = seconds(now - start_);
  const double megabytes = rate(bytes, elapsed);
  char text[kWidth];
  int size = std::snprintf(text, sizeof text, "dialog-stem: %.1f MB, %llu lines, %.1f MB/s",
                           static_cast<double>(bytes) / 1e6, static_cast<unsigned long long>(lines),
                           megabytes);
  if (total_ != 0 && size > 0 && static_cast<std::size_t>(size) < sizeof text) {
    const std::uint64_t left = total_ - std::min(bytes, total_);
    const auto wait = static_cast<unsigned long>(
        megabytes > 0 ? static_cast<double>(left) / (megabytes * 1e6) + 0.5 : 0);
    std::snprintf(
        text + size, sizeof text - static_cast<std::size_t>(size), ", %d%%, %lu:%02lu:%02lu left",
        static_cast<int>(static_cast<double>(total_ - left) * 100 / static_cast<double>(total_)),
        wait / 3600, wait / 60 % 60, wait % 60);
  }
  show(text, false);
}

void Progress::finish() {
  if (finished_) return;
  finished_ = true;
  const double elapsed = seconds(Clock::now() - start_);
  char text[kWidth];
  std::snprintf(text, sizeof text, "dialog-stem: done: %llu bytes, %llu lines, %.1f s, %.1f MB/s",
                static_cast<unsigned long long>(bytes_), static_cast<unsigned long long>(lines_),
                elapsed, rate(bytes_, elapsed));
  show(text, true);
}

void Progress::show(const char* text, bool last) {
  // One write of the whole line, so that nothing lands inside it.
  char line[2 * kWidth + 2];
  std::size_t size = 0;
  const std::size_t width = std::strlen(text);
  if (terminal_) line[size++] = '\r';
  std::copy_n(text, width, line + size);
  size += width;
  if (terminal_) {
    // Blanks over what a longer line before it left on the screen.
    const std::size_t blanks = shownWidth_ > width ? shownWidth_ - width : 0;
    std::fill_n(line + size, blanks, ' ');
    size += blanks;
    shownWidth_ = width;
  }
  if (!terminal_ || last) line[size++] = '\n';
  std::fwrite(line, 1, size, stderr);
}

}  // namespace ZQ::Dialog::tool
