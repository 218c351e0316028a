#ifndef DIALOG_STEM_RUN_HPP
#define DIALOG_STEM_RUN_HPP

#include "options.hpp"
#include "stemmer/stemmer.hpp"

// Stems the inputs of `options` (its SENTENCE arguments, else the lines of
// standard input) with `stemmer` and writes them in `options.format`, with
// `options.jobs` threads sharing the stemmer. Returns the exit status; a failed
// write or read has printed its one-line error. Throws std::bad_alloc.
int runStemming(ZQ::Dialog::Stemmer& stemmer, const Options& options);

// Writes `bytes` to standard output; on failure prints the error and exits 1.
void writeOut(const char* bytes, std::size_t size);

#endif  // DIALOG_STEM_RUN_HPP
