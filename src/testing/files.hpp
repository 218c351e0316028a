#ifndef DIALOG_TESTING_FILES_HPP
#define DIALOG_TESTING_FILES_HPP

// Files, temporary directories and the environment the data lookup reads, for
// tests, fuzzers and benchmarks. Not thread-safe.

#include <map>
#include <optional>
#include <string>

#include <QString>

namespace dialog_test {

// A whole file's bytes ("" when it cannot be read); writing throws when it cannot.
std::string readFile(const std::string& path);
void writeFile(const std::string& path, const std::string& contents);

// A fresh temporary directory, removed with its contents when the object goes.
class TempDir {
 public:
  TempDir();
  ~TempDir();
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;
  const std::string& path() const { return path_; }
  // Writes `relative` (parent directories created); returns the full path.
  std::string write(const std::string& relative, const std::string& contents) const;

 private:
  std::string path_;
};

// Sets (nullopt: unsets) an environment variable for the object's lifetime.
class ScopedEnv {
 public:
  ScopedEnv(std::string name, const std::optional<std::string>& value);
  ~ScopedEnv();
  ScopedEnv(const ScopedEnv&) = delete;
  ScopedEnv& operator=(const ScopedEnv&) = delete;

 private:
  std::string name_;
  std::optional<std::string> previous_;
};

// Points the data lookup at one prefix (KU_PREFIX_PATH) and the user data
// directory ($XDG_DATA_HOME, HOME) at an empty place, so the machine's data never leaks in.
class DataRoot {
 public:
  DataRoot();                                    // a fresh temporary prefix
  explicit DataRoot(const std::string& prefix);  // an existing prefix, left in place
  // Writes a data file of package "dialog" under the prefix, or with `user`
  // under the user data directory; returns its path.
  std::string write(const std::string& relative, const std::string& contents,
                    bool user = false) const;
  // Links "data/ipadic" of package "dialog" (in the user data directory with
  // `user`) to `dir`; returns the path the lookup gives.
  std::string linkDictionary(const std::string& dir, bool user = false) const;
  const std::string& path() const { return prefix_; }

 private:
  std::string share(bool user) const;
  std::optional<TempDir> own_;
  TempDir home_;
  std::string prefix_;
  ScopedEnv prefixEnv_, xdg_, homeEnv_;
};

// The lemma file at `path` read by the plainest loop (QFile in text mode,
// QTextStream::readLine, one insertion per pair): the library must agree.
std::map<QString, QString> plainLemmaLoad(const std::string& path);

}  // namespace dialog_test

#endif  // DIALOG_TESTING_FILES_HPP
