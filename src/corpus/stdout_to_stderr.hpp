#ifndef DIALOG_CORPUS_STDOUT_TO_STDERR_HPP
#define DIALOG_CORPUS_STDOUT_TO_STDERR_HPP

namespace ZQ::Dialog::corpus {

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

}  // namespace ZQ::Dialog::corpus

#endif  // DIALOG_CORPUS_STDOUT_TO_STDERR_HPP
