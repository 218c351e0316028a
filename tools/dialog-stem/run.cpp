#include "run.hpp"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <new>
#include <string>
#include <thread>
#include <vector>

#include "corpus/line_stemmer.hpp"

namespace {

// A block is the unit of work of one thread: enough lines that handing them
// over costs little, few enough that jobs x blocks stay small in memory.
constexpr std::size_t kBlockLines = 4096;
constexpr std::size_t kBlockBytes = 1 << 20;

[[noreturn]] void fail(const char* what) {
  std::fprintf(stderr, "dialog-stem: %s: %s\n", what, std::strerror(errno));
  std::exit(1);
}

// Reads the next line of standard input without its line end (and without a
// '\r' before it); false at the end of the input.
bool readLine(std::string& line) {
  static char* buffer = nullptr;
  static std::size_t capacity = 0;
  errno = 0;
  const ssize_t n = ::getline(&buffer, &capacity, stdin);
  if (n < 0) {
    if (errno == ENOMEM) throw std::bad_alloc();
    if (std::ferror(stdin)) fail("cannot read standard input");
    return false;
  }
  std::size_t size = static_cast<std::size_t>(n);
  if (size && buffer[size - 1] == '\n') --size;
  if (size && buffer[size - 1] == '\r') --size;
  line.assign(buffer, size);
  return true;
}

void stemBlock(ZQ::Dialog::Stemmer& stemmer, const Options& options,
               std::vector<std::string>& lines, std::string& out) {
  dialog_corpus::LineStemmer lineStemmer(stemmer);
  for (const std::string& line : lines)
    lineStemmer.stemRecord(line, options.format, options.words, out);
}

}  // namespace

int lineTooLong(std::size_t number) {
  if (std::fflush(stdout) != 0) fail("cannot write standard output");
  std::fprintf(stderr, "dialog-stem: line %zu is longer than 1 GiB; stopped before it\n", number);
  return 1;
}

void writeOut(const char* bytes, std::size_t size) {
  if (size && std::fwrite(bytes, 1, size, stdout) != size) fail("cannot write standard output");
}

int runStemming(ZQ::Dialog::Stemmer& stemmer, const Options& options) {
  // At a terminal each line is answered at once; elsewhere lines go in blocks.
  const bool interactive = isatty(STDIN_FILENO) || isatty(STDOUT_FILENO);
  const std::size_t blockLines = interactive ? 1 : kBlockLines;
  const unsigned jobs = options.language == "jpj" ? 1 : options.jobs;
  std::size_t next = 0;     // next SENTENCE argument
  std::size_t number = 0;   // lines read so far
  std::size_t tooLong = 0;  // the number of a line over kMaxLineBytes, once read
  // Fills `block` with up to blockLines lines; false when there were none.
  const auto fill = [&](std::vector<std::string>& block) {
    block.clear();
    std::size_t bytes = 0;
    std::string line;
    while (block.size() < blockLines && bytes < kBlockBytes && !tooLong) {
      if (!options.inputs.empty()) {
        if (next == options.inputs.size()) break;
        line = options.inputs[next++];
        if (!line.empty() && line.back() == '\r') line.pop_back();
      } else if (!readLine(line)) {
        break;
      }
      if (++number, line.size() > kMaxLineBytes) {
        tooLong = number;
        break;
      }
      bytes += line.size();
      block.push_back(std::move(line));
    }
    return !block.empty();
  };

  // At most `jobs` blocks are in flight: read, stemmed side by side, written in order.
  std::vector<std::vector<std::string>> blocks(jobs);
  std::vector<std::string> outputs(jobs);
  for (;;) {
    unsigned filled = 0;
    while (filled < jobs && fill(blocks[filled])) ++filled;
    if (filled == 0) break;
    std::vector<std::thread> helpers;
    std::vector<std::exception_ptr> errors(filled);
    for (unsigned i = 1; i < filled; ++i)
      helpers.emplace_back([&, i] {
        try {
          stemBlock(stemmer, options, blocks[i], outputs[i]);
        } catch (...) {
          errors[i] = std::current_exception();  // memory exhausted, reported below
        }
      });
    stemBlock(stemmer, options, blocks[0], outputs[0]);
    for (std::thread& helper : helpers) helper.join();
    for (const std::exception_ptr& error : errors)
      if (error) std::rethrow_exception(error);
    for (unsigned i = 0; i < filled; ++i) {
      writeOut(outputs[i].data(), outputs[i].size());
      outputs[i].clear();
    }
    if (interactive && std::fflush(stdout) != 0) fail("cannot write standard output");
    if (filled < jobs) break;
  }
  if (tooLong) return lineTooLong(tooLong);
  if (std::fflush(stdout) != 0 || std::ferror(stdout)) fail("cannot write standard output");
  return 0;
}
