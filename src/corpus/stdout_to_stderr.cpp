#include "corpus/stdout_to_stderr.hpp"

#include <unistd.h>

#include <cstdio>

namespace ZQ::Dialog::corpus {

StdoutToStderr::StdoutToStderr() {
  std::fflush(stdout);
  saved_ = dup(STDOUT_FILENO);
  if (saved_ >= 0) dup2(STDERR_FILENO, STDOUT_FILENO);
}

StdoutToStderr::~StdoutToStderr() {
  // The library writes through C stdio without flushing: flush before the
  // descriptor is switched back, or the trail would land on standard output.
  std::fflush(stdout);
  if (saved_ < 0) return;
  dup2(saved_, STDOUT_FILENO);
  close(saved_);
  // End the trail's last line so that later messages start on a line of their own.
  std::fputc('\n', stderr);
}

}  // namespace ZQ::Dialog::corpus
