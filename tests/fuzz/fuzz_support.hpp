#ifndef DIALOG_TESTS_FUZZ_SUPPORT_HPP
#define DIALOG_TESTS_FUZZ_SUPPORT_HPP

#include <cstdio>
#include <cstdlib>

#include "ku/log.hpp"
#include "support/test_support.hpp"

namespace dialog_fuzz {

// Fuzz inputs above this many bytes are skipped: the interesting shapes are
// short, and long ones only slow every run down.
constexpr std::size_t kMaxInput = 64 * 1024;

// A data root of the fuzzer's own, for the whole run, removed at exit.
inline const dialog_test::DataRoot& dataRoot() {
  static const dialog_test::DataRoot root;
  return root;
}

// Keeps "Unsupported language" records out of the fuzzer's output.
inline void quietLog() { ku::log::addCategory("LibStemmer")->level = 0; }

// An invariant broke: abort, so that libFuzzer keeps the input.
[[noreturn]] inline void fail(const char* what) {
  std::fprintf(stderr, "invariant violated: %s\n", what);
  std::abort();
}

}  // namespace dialog_fuzz

#endif  // DIALOG_TESTS_FUZZ_SUPPORT_HPP
