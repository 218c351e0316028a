#ifndef DIALOG_TESTING_INVARIANT_HPP
#define DIALOG_TESTING_INVARIANT_HPP

// What every fuzz target shares: the input cap and how a broken invariant ends
// the run, so that libFuzzer keeps the input.

#include <cstddef>
#include <cstdio>
#include <cstdlib>

namespace dialog_test {

// Inputs above this many bytes are skipped: the library's own 64 KiB steps
// are reached, and longer inputs only slow every run down.
constexpr std::size_t kMaxFuzzInput = 64 * 1024 + 4096;

// An invariant broke: say which and abort.
[[noreturn]] inline void violated(const char* what) {
  std::fprintf(stderr, "invariant violated: %s\n", what);
  std::abort();
}

}  // namespace dialog_test

#endif  // DIALOG_TESTING_INVARIANT_HPP
