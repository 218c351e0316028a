#ifndef DIALOG_STEM_OPTIONS_HPP
#define DIALOG_STEM_OPTIONS_HPP

#include <string>
#include <vector>

#include <QStringList>

enum class Format { Lines, Tsv, Jsonl };

// What the command line asks for.
struct Options {
  std::string language = "enu";
  bool words = false;
  Format format = Format::Lines;
  unsigned jobs = 1;  // threads sharing the stemmer; at least 1
  bool check = false;
  std::string streamAlgorithm;  // non-empty: --stream mode
  std::vector<std::string> inputs;
};

// Parses `arguments` (the program name first). On --help or --version prints
// the text and exits 0; on bad usage prints a one-line error and exits 2.
Options parseOptions(const QStringList& arguments);

#endif  // DIALOG_STEM_OPTIONS_HPP
