#ifndef DIALOG_STEM_STDOUT_TO_STDERR_HPP
#define DIALOG_STEM_STDOUT_TO_STDERR_HPP

// While alive, whatever is written to standard output (file descriptor 1, C
// stdio included) goes to standard error instead. Used around the Japanese
// stemmer's construction, whose progress trail would mix with results.
class StdoutToStderr {
 public:
  StdoutToStderr();
  ~StdoutToStderr();
  StdoutToStderr(const StdoutToStderr&) = delete;
  StdoutToStderr& operator=(const StdoutToStderr&) = delete;

 private:
  int saved_;
};

#endif  // DIALOG_STEM_STDOUT_TO_STDERR_HPP
