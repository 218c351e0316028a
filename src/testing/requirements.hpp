#ifndef DIALOG_TESTING_REQUIREMENTS_HPP
#define DIALOG_TESTING_REQUIREMENTS_HPP

// The one rule for what the machine may lack: a test, fuzzer or benchmark
// that needs an optional package asks missing() and skips with its answer.

#include <string>

namespace dialog_test {

enum class Need {
  kIpaDictionary,      // mecab-ipadic-utf8 at DIALOG_IPADIC_DIR
  kDictionaryIndexer,  // mecab-dict-index (mecab-utils)
  kUnprivileged,       // file modes that bind the process (not root)
};

// Why `need` is not met on this machine, naming what to install; "" when met.
std::string missing(Need need);

}  // namespace dialog_test

// In a GoogleTest body or SetUp(): skips, saying why, when `need` is not met.
#define DIALOG_REQUIRE(need)                                                                      \
  if (const std::string dialog_missing_ = ::dialog_test::missing(need); !dialog_missing_.empty()) \
  GTEST_SKIP() << dialog_missing_

#endif  // DIALOG_TESTING_REQUIREMENTS_HPP
