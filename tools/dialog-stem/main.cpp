// dialog-stem: the stemming library from the shell and in pipelines. See --help.
#include <cstdio>
#include <memory>
#include <new>
#include <string>

#include <QCoreApplication>

#include "check.hpp"
#include "options.hpp"
#include "run.hpp"
#include "stdout_to_stderr.hpp"
#include "stemmer/stemmer.hpp"
#include "stream_mode.hpp"

namespace {

int run(const Options& options) {
  if (options.check) return runCheck(options.language);
  if (!options.streamAlgorithm.empty()) return runStreamMode(options.streamAlgorithm);
  std::unique_ptr<ZQ::Dialog::Stemmer> stemmer;
  if (options.language == "jpj") {
    // The Japanese segmenter reports its progress on standard output.
    const StdoutToStderr trail;
    stemmer = std::make_unique<ZQ::Dialog::Stemmer>(options.language);
  } else {
    stemmer = std::make_unique<ZQ::Dialog::Stemmer>(options.language);
    // Words would come back unchanged without a word of explanation otherwise.
    if (const std::string problem = lemmaFileProblem(options.language); !problem.empty())
      std::fprintf(stderr, "dialog-stem: warning: %s, words come back unchanged (see --check)\n",
                   problem.c_str());
  }
  return runStemming(*stemmer, options);
}

}  // namespace

int main(int argc, char** argv) {
  try {
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("dialog-stem"));
    const ParseResult parsed = parseOptions(QCoreApplication::arguments());
    std::fputs(parsed.output.c_str(), stdout);
    std::fputs(parsed.error.c_str(), stderr);
    if (parsed.exitStatus >= 0) return parsed.exitStatus;
    return run(parsed.options);
  } catch (const std::bad_alloc&) {
    std::fputs("dialog-stem: memory exhausted\n", stderr);
    return 1;
  }
}
