// ku::path::findData over arbitrary package names, relative paths and
// KU_PREFIX_PATH values: three NUL-separated fields; "@" in the prefix list
// stands for a root that holds share/p/a and share/p/d/.
#include <cstdlib>
#include <filesystem>

#include "invariant.hpp"
#include "ku/path.hpp"
#include "testing/files.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > dialog_test::kMaxFuzzInput) return 0;
  static const dialog_test::TempDir root;
  static const bool made = (root.write("share/p/a", "x"), root.write("share/p/d/b", "x"), true);
  std::string fields[3];
  for (std::size_t i = 0, field = 0; i < size && made; ++i) {
    const char c = static_cast<char>(data[i]);
    if (c == '\0' && field < 2)
      ++field;
    else
      fields[field] += c == '@' ? root.path() : std::string(1, c);
  }
  setenv("KU_PREFIX_PATH", fields[2].c_str(), 1);
  setenv("XDG_DATA_HOME", (root.path() + "/none").c_str(), 1);
  const std::string found = ku::path::findData(fields[0], fields[1], false);
  std::string first;  // the first candidate that exists, or ""
  for (const std::string& candidate : ku::path::dataCandidates(fields[0], fields[1], false)) {
    std::error_code error;
    if (std::filesystem::exists(candidate, error) && first.empty()) first = candidate;
  }
  if (found != first) dialog_test::violated("result is not the first existing candidate");
  if (!found.empty() && fields[1].back() == '/' && found.back() != '/')
    dialog_test::violated("a path ending in / gave a result without it");
  return 0;
}
