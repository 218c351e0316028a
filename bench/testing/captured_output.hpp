#ifndef DIALOG_BENCH_CAPTURED_OUTPUT_HPP
#define DIALOG_BENCH_CAPTURED_OUTPUT_HPP

#include <unistd.h>

#include <cstdio>
#include <iostream>
#include <stdexcept>

namespace ZQ::Dialog::testing {

// Sends what the process writes to descriptors 1 and 2 (C and C++ streams
// flushed around it) to a temporary file until finish(), so that the factory's
// progress trail stays out of the benchmark table. Not thread-safe.
class CapturedOutput {
 public:
  CapturedOutput() {
    flushAll();
    file_ = std::tmpfile();
    if (!file_) throw std::runtime_error("tmpfile failed");
    savedOut_ = dup(1);
    savedErr_ = dup(2);
    dup2(fileno(file_), 1);
    dup2(fileno(file_), 2);
  }
  ~CapturedOutput() {
    finish();
    std::fclose(file_);
  }
  CapturedOutput(const CapturedOutput&) = delete;
  CapturedOutput& operator=(const CapturedOutput&) = delete;

  // Restores the descriptors; later calls do nothing.
  void finish() {
    if (savedOut_ < 0) return;
    flushAll();
    dup2(savedOut_, 1);
    dup2(savedErr_, 2);
    close(savedOut_);
    close(savedErr_);
    savedOut_ = savedErr_ = -1;
  }

 private:
  static void flushAll() {
    std::cout.flush();
    std::cerr.flush();
    std::fflush(nullptr);
  }
  int savedOut_ = -1, savedErr_ = -1;
  std::FILE* file_ = nullptr;
};

}  // namespace ZQ::Dialog::testing

#endif  // DIALOG_BENCH_CAPTURED_OUTPUT_HPP
