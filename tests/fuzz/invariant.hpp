#ifndef DIALOG_FUZZ_INVARIANT_HPP
#define DIALOG_FUZZ_INVARIANT_HPP

#include <cstdio>
#include <cstdlib>

namespace dialog_test {

// Inputs above this size are skipped: the library's 64 KiB steps are reached.
constexpr std::size_t kMaxFuzzInput = 64 * 1024 + 4096;

// An invariant broke: say which and abort, so that libFuzzer keeps the input.
[[noreturn]] inline void violated(const char* what) {
  std::fprintf(stderr, "invariant violated: %s\n", what);
  std::abort();
}

}  // namespace dialog_test

#endif  // DIALOG_FUZZ_INVARIANT_HPP
