#ifndef KU_PATH_HPP
#define KU_PATH_HPP

#include <string>
#include <vector>

#include "ku/export.hpp"

// Locates the data files that packages install under <prefix>/share/<package>/.
// Thread-safe: the lookup reads the environment and the file system only.
namespace ku::path {

// Returns the first existing file or directory among, in order:
//   <p>/share/<package>/<relativePath> for each non-empty entry p of the
//   colon-separated KU_PREFIX_PATH;
//   <user data dir>/<package>/<relativePath>, where the user data directory is
//   $XDG_DATA_HOME, else $HOME/.local/share (skipped when
//   excludeUserWritablePath is true);
//   <install prefix>/share/<package>/<relativePath>.
// The result is spelled as built: a relativePath ending in "/" gives a result
// ending in "/". Returns "" when nothing exists or package or relativePath is
// empty. Never throws.
KU_EXPORT std::string findData(const std::string& package, const std::string& relativePath,
                               bool excludeUserWritablePath = false);

// The places findData tries, in its order, whether they exist or not; empty
// when package or relativePath is empty. Never throws but for memory.
KU_EXPORT std::vector<std::string> dataCandidates(const std::string& package,
                                                  const std::string& relativePath,
                                                  bool excludeUserWritablePath = false);

}  // namespace ku::path

#endif  // KU_PATH_HPP
