#include "ku/path.hpp"

#include <dlfcn.h>

#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <vector>

namespace ku::path {
namespace {

namespace fs = std::filesystem;

// Appends `tail` to `base` with exactly one "/" between them.
std::string join(std::string base, const std::string& tail) {
  if (!base.empty() && base.back() != '/') base += '/';
  return base + tail;
}

std::string environment(const char* name) {
  const char* value = std::getenv(name);
  return value ? value : "";
}

// The prefix this copy of libku is installed in, found from the library's own
// location so that an installed tree can be moved; an uninstalled library (the
// build tree) has no install prefix.
std::string computeInstallPrefix() {
  Dl_info info{};
  if (dladdr(reinterpret_cast<void*>(&computeInstallPrefix), &info) == 0 || !info.dli_fname)
    return KU_INSTALL_PREFIX;
  std::error_code error;
  fs::path dir = fs::weakly_canonical(fs::path(info.dli_fname), error).parent_path();
  if (error) return KU_INSTALL_PREFIX;
  // Strip the library directory (e.g. "lib") component by component.
  const fs::path libdir(KU_INSTALL_LIBDIR);
  std::vector<fs::path> parts(libdir.begin(), libdir.end());
  for (auto it = parts.rbegin(); it != parts.rend(); ++it) {
    if (dir.filename() != *it) return "";
    dir = dir.parent_path();
  }
  return dir.string();
}

const std::string& installPrefix() {
  static const std::string prefix = computeInstallPrefix();
  return prefix;
}

bool exists(const std::string& candidate) {
  std::error_code error;
  return fs::exists(candidate, error);
}

}  // namespace

std::vector<std::string> dataCandidates(const std::string& package, const std::string& relativePath,
                                        bool excludeUserWritablePath) {
  std::vector<std::string> candidates;
  if (package.empty() || relativePath.empty()) return candidates;
  const std::string inPackage = package + "/" + relativePath;
  const std::string inShare = "share/" + inPackage;

  const std::string prefixes = environment("KU_PREFIX_PATH");
  std::string::size_type start = 0;
  while (start <= prefixes.size()) {
    std::string::size_type end = prefixes.find(':', start);
    if (end == std::string::npos) end = prefixes.size();
    if (end > start) candidates.push_back(join(prefixes.substr(start, end - start), inShare));
    start = end + 1;
  }

  if (!excludeUserWritablePath) {
    std::string userData = environment("XDG_DATA_HOME");
    if (userData.empty()) {
      const std::string home = environment("HOME");
      if (!home.empty()) userData = join(home, ".local/share");
    }
    if (!userData.empty()) candidates.push_back(join(userData, inPackage));
  }

  if (!installPrefix().empty()) candidates.push_back(join(installPrefix(), inShare));
  return candidates;
}

std::string findData(const std::string& package, const std::string& relativePath,
                     bool excludeUserWritablePath) {
  for (const std::string& candidate :
       dataCandidates(package, relativePath, excludeUserWritablePath))
    if (exists(candidate)) return candidate;
  return "";
}

}  // namespace ku::path
