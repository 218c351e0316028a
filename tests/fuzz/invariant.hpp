#ifndef DIALOG_FUZZ_INVARIANT_HPP
#define DIALOG_FUZZ_INVARIANT_HPP

#include <cstdio>
#include <cstdlib>
namespace ZQ::Dialog::testing {

// Inputs above this size are skipped: the library's 64 KiB steps are reached.
constexpr std::size_t kMaxFuzzInput = 64 * 1024 + 4096;

// Aborts, naming the broken invariant, when `holds` is false, so that libFuzzer keeps the input.
inline void check(bool holds, const char* what) {
  if (!holds) std::fprintf(stderr, "invariant violated: %s\n", what), std::abort();
}

}  // namespace ZQ::Dialog::testing

#endif  // DIALOG_FUZZ_INVARIANT_HPP
