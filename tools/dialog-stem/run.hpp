#ifndef DIALOG_STEM_RUN_HPP
#define DIALOG_STEM_RUN_HPP

#include "options.hpp"
#include "stemmer/stemmer.hpp"

namespace ZQ::Dialog::tool {

// Stems the inputs of `options` (its SENTENCE arguments, else the lines of
// standard input) with `stemmer` and writes them in `options.format`, with
// `options.jobs` threads sharing the stemmer, each with its own LineStemmer;
// output keeps input order, and what has arrived is answered at once, so that
// an interactive caller never waits for a full block. Returns the exit status;
// a failed write or read, or a line over kMaxLineBytes, has printed its
// one-line error after writing every line before it. Throws std::bad_alloc.
int runStemming(ZQ::Dialog::Stemmer& stemmer, const Options& options);

// The longest line stemmed: the library's text holds at most 2^30 UTF-16 units.
constexpr std::size_t kMaxLineBytes = std::size_t{1} << 30;

// Prints that line `number` is over kMaxLineBytes, after the output before it;
// returns the exit status 1.
int lineTooLong(std::size_t number);

// Writes `bytes` to standard output; on failure prints the error and exits 1.
void writeOut(const char* bytes, std::size_t size);

}  // namespace ZQ::Dialog::tool

#endif  // DIALOG_STEM_RUN_HPP
