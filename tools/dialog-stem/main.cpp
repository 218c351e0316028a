// dialog-stem: the stemming library from the shell and in pipelines. See --help.
#include <fcntl.h>
#include <malloc.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <new>
#include <string>

#include <QCoreApplication>

#include "corpus/check.hpp"
#include "corpus/stdout_to_stderr.hpp"
#include "options.hpp"
#include "run.hpp"
#include "stemmer/internals.hpp"
#include "stemmer/stemmer.hpp"
#include "stream_mode.hpp"

namespace ZQ::Dialog::tool {
namespace {

bool isOpen(int fd) { return fcntl(fd, F_GETFD) != -1; }

// Prints a one-line error and gives the status 1.
int failure(const char* what, const char* why = nullptr) {
  std::fprintf(stderr, "dialog-stem: %s%s%s\n", what, why ? ": " : "", why ? why : "");
  return 1;
}

// Flushes standard output after --check, --help or --version (the other modes
// flush their own): `status` when everything arrived, else 1 with the write error.
int flushed(int status) {
  errno = 0;
  if (std::fflush(stdout) != 0 || std::ferror(stdout))
    return failure("cannot write standard output", std::strerror(errno ? errno : EIO));
  return status;
}

int run(const Options& options) {
  if (options.check) return flushed(corpus::runCheck(options.language));
  if (!options.streamAlgorithm.empty()) return runStreamMode(options.streamAlgorithm);
  // Kept to the process's end, never destroyed: freeing a French dictionary's
  // 300k entries would add a fifth to the tool's start-up and exit time.
  static ZQ::Dialog::Stemmer* stemmer = nullptr;
  if (options.language == "jpj") {
    // The Japanese segmenter reports its progress on standard output.
    const corpus::StdoutToStderr trail;
    stemmer = new ZQ::Dialog::Stemmer(options.language);
  } else {
    // The threads that will stem read the dictionary too.
    ZQ::Dialog::setLemmaLoadThreads(options.jobs);
    stemmer = new ZQ::Dialog::Stemmer(options.language);
    // Words would come back unchanged without a word of explanation otherwise.
    if (const std::string problem = corpus::lemmaFileProblem(options.language); !problem.empty())
      std::fprintf(stderr, "dialog-stem: warning: %s, words come back unchanged (see --check)\n",
                   problem.c_str());
  }
  return runStemming(*stemmer, options);
}

}  // namespace
}  // namespace ZQ::Dialog::tool

int main(int argc, char** argv) {
  using ZQ::Dialog::tool::failure;
  using ZQ::Dialog::tool::flushed;
  using ZQ::Dialog::tool::isOpen;
  // Each stemming thread's heap would otherwise grow and shrink by small steps
  // around every block, one system call and fresh page faults each time: a
  // filter that lives for one input keeps what it has grown.
  mallopt(M_TOP_PAD, 64 << 20);
  mallopt(M_TRIM_THRESHOLD, 256 << 20);
  mallopt(M_MMAP_THRESHOLD, 32 << 20);
  // Checked before Qt opens any file: a descriptor it opens would take the
  // free number 0 or 1, and output would go there or input come from it.
  if (!isOpen(STDOUT_FILENO)) return failure("standard output is closed");
  const bool inputOpen = isOpen(STDIN_FILENO);
  try {
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("dialog-stem"));
    const auto parsed = ZQ::Dialog::tool::parseOptions(QCoreApplication::arguments());
    std::fputs(parsed.error.c_str(), stderr);
    if (parsed.exitStatus >= 0) {
      std::fputs(parsed.output.c_str(), stdout);
      return flushed(parsed.exitStatus);
    }
    const auto& options = parsed.options;
    // Standard input matters only where it is read: no SENTENCE, no --check.
    if (!inputOpen && !options.check && options.inputs.empty())
      return failure("standard input is closed");
    return ZQ::Dialog::tool::run(options);
  } catch (const std::bad_alloc&) {
    std::fputs("dialog-stem: memory exhausted\n", stderr);
    return 1;
  }
}
