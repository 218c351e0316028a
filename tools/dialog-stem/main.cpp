// dialog-stem: the stemming library from the shell. See --help.
#include <cstdio>
#include <iostream>
#include <string>
#include <vector>

#include <QCoreApplication>

#include "options.hpp"
#include "stdout_to_stderr.hpp"
#include "stemmer/stemmer.hpp"
#include "stream_mode.hpp"

namespace {

// Prints the stems of one input: one word's normal form, or a sentence's
// elements followed by an empty line.
void stemOne(ZQ::Dialog::Stemmer& stemmer, bool words, std::string input) {
  if (!input.empty() && input.back() == '\r') input.pop_back();
  if (words) {
    std::string result;
    stemmer.stemword(input, result);
    std::cout << result << '\n';
    return;
  }
  std::vector<std::string> stems;
  stemmer.stem_sentence(input, stems);
  for (const std::string& stem : stems) std::cout << stem << '\n';
  std::cout << '\n';
}

}  // namespace

int main(int argc, char** argv) {
  QCoreApplication app(argc, argv);
  QCoreApplication::setApplicationName(QStringLiteral("dialog-stem"));
  const Options options = parseOptions(QCoreApplication::arguments());
  if (!options.streamAlgorithm.empty()) return runStreamMode(options.streamAlgorithm);

  std::ios::sync_with_stdio(false);
  ZQ::Dialog::Stemmer* stemmer;
  if (options.language == "jpj") {
    // The Japanese segmenter reports its progress on standard output.
    StdoutToStderr trail;
    stemmer = new ZQ::Dialog::Stemmer(options.language);
  } else {
    stemmer = new ZQ::Dialog::Stemmer(options.language);
  }
  if (options.inputs.empty()) {
    std::string line;
    while (std::getline(std::cin, line)) stemOne(*stemmer, options.words, line);
  } else {
    for (const std::string& input : options.inputs) stemOne(*stemmer, options.words, input);
  }
  std::cout.flush();
  delete stemmer;
  return std::cout ? 0 : 1;
}
