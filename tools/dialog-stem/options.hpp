#ifndef DIALOG_STEM_OPTIONS_HPP
#define DIALOG_STEM_OPTIONS_HPP

#include <string>
#include <vector>

#include <QStringList>

#include "corpus/format.hpp"

namespace ZQ::Dialog::tool {

using corpus::Format;

// What the command line asks for.
struct Options {
  std::string language = "enu";
  bool words = false;
  Format format = Format::Lines;
  unsigned jobs = 1;  // threads sharing the stemmer; at least 1
  bool check = false;
  bool progress = false;              // report reading standard input on standard error
  bool morphemes = false;             // --morphemes: Japanese base forms per morpheme
  std::string dictionary = "ipadic";  // its MeCab dictionary, data "data/<name>/"
  std::string streamAlgorithm;        // non-empty: --stream mode
  std::vector<std::string> inputs;
};

// The outcome of parsing: options to run with, or text to print and a status.
struct ParseResult {
  Options options;
  int exitStatus = -1;  // -1: run with `options`; 0: --help or --version; 2: bad usage
  std::string output;   // for standard output (--help, --version)
  std::string error;    // one line for standard error (bad usage)
};

// Parses `arguments` (the program name first). Never exits and never throws
// but for memory: --help and --version give status 0 and their text, bad
// usage status 2 and a one-line "dialog-stem: ..." error.
ParseResult parseOptions(const QStringList& arguments);

}  // namespace ZQ::Dialog::tool

#endif  // DIALOG_STEM_OPTIONS_HPP
