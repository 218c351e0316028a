// ku::path::findData over arbitrary package names, relative paths and
// KU_PREFIX_PATH values. The input is three NUL-separated fields; "@" in the
// prefix list stands for a root that holds share/p/a and share/p/d/.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "ku/path.hpp"
#include "testing/files.hpp"
#include "invariant.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > dialog_test::kMaxFuzzInput) return 0;
  static const dialog_test::TempDir root;
  static const bool made = (root.write("share/p/a", "x"), root.write("share/p/d/b", "x"), true);
  (void)made;
  std::string fields[3];
  std::size_t field = 0;
  for (std::size_t i = 0; i < size; ++i) {
    const char c = static_cast<char>(data[i]);
    if (c == '\0' && field < 2)
      ++field;
    else
      fields[field] += c == '@' ? root.path() : std::string(1, c);
  }
  const std::string& package = fields[0];
  const std::string& relative = fields[1];
  setenv("KU_PREFIX_PATH", fields[2].c_str(), 1);
  setenv("XDG_DATA_HOME", (root.path() + "/none").c_str(), 1);

  std::string found;
  std::vector<std::string> candidates;
  try {
    found = ku::path::findData(package, relative, false);
    candidates = ku::path::dataCandidates(package, relative, false);
  } catch (...) {
    dialog_test::violated("the lookup threw");
  }
  // The result is the first candidate that exists, or "" when none does.
  std::string first;
  for (const std::string& candidate : candidates) {
    std::error_code error;
    if (std::filesystem::exists(candidate, error)) {
      first = candidate;
      break;
    }
  }
  if (found != first) dialog_test::violated("result is not the first existing candidate");
  if ((package.empty() || relative.empty()) && !found.empty())
    dialog_test::violated("found data for an empty package or path");
  if (!found.empty() && relative.back() == '/' && found.back() != '/')
    dialog_test::violated("a path ending in / gave a result without it");
  return 0;
}
