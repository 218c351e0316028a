// ku::path::findData over arbitrary package names, relative paths and
// KU_PREFIX_PATH values: three NUL-separated fields; "@" in the prefix list
// stands for a root that holds share/p/a and share/p/d/.
#include <filesystem>
#include "invariant.hpp"
#include "ku/path.hpp"
#include "testing/files.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const ZQ::Dialog::testing::TempDir root;
  static const bool made = (root.write("share/p/a", "x"), root.write("share/p/d/b", "x"), true);
  std::string fields[3];
  for (std::size_t i = 0, field = 0; i < size && made && size <= ZQ::Dialog::testing::kMaxFuzzInput;
       ++i)
    if (data[i] == '\0' && field < 2)
      ++field;
    else
      fields[field] += data[i] == '@' ? root.path() : std::string(1, static_cast<char>(data[i]));
  setenv("KU_PREFIX_PATH", fields[2].c_str(), 1);
  setenv("XDG_DATA_HOME", (root.path() + "/none").c_str(), 1);
  std::string first;  // the first candidate that exists, or ""
  for (const std::string& candidate : ku::path::dataCandidates(fields[0], fields[1], false))
    if (std::error_code error; first.empty() && std::filesystem::exists(candidate, error))
      first = candidate;
  const std::string found = ku::path::findData(fields[0], fields[1], false);
  ZQ::Dialog::testing::check(found == first, "result is not the first existing candidate");
  return 0;
}
