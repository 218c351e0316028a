#ifndef DIALOG_TESTS_TEST_SUPPORT_HPP
#define DIALOG_TESTS_TEST_SUPPORT_HPP

#include <map>
#include <optional>
#include <string>

#include <QString>

namespace dialog_test {

// A whole file's bytes; "" when it cannot be read.
std::string readFile(const std::string& path);
// Replaces a file's contents with `contents`, byte for byte.
void writeFile(const std::string& path, const std::string& contents);

// The lemma file at `path` read by the plainest loop: QFile in text mode,
// QTextStream::readLine, one map insertion per pair. The library's loader must
// give exactly this map.
std::map<QString, QString> plainLemmaLoad(const std::string& path);

// A fresh directory under the system's temporary directory, removed with its
// contents when the object goes.
class TempDir {
 public:
  TempDir();
  ~TempDir();
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;

  const std::string& path() const { return path_; }
  // Writes `contents` to `relative` (parent directories created); returns the full path.
  std::string write(const std::string& relative, const std::string& contents) const;

 private:
  std::string path_;
};

// Sets (or, with nullopt, unsets) an environment variable for the object's
// lifetime, then restores the previous value.
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

// Points the data lookup at `root` only: KU_PREFIX_PATH=root and the user data
// directory at an empty place, so the machine's own data never leaks in. Data
// of package "dialog" then lives under root + "/share/dialog/".
class DataRoot {
 public:
  DataRoot();
  // Writes a data file of package "dialog", e.g. "lemmatizer/enu/lemma".
  std::string write(const std::string& relative, const std::string& contents) const;
  const std::string& path() const { return root_.path(); }

 private:
  TempDir root_;
  TempDir home_;
  ScopedEnv prefix_;
  ScopedEnv xdg_;
  ScopedEnv homeEnv_;
};

}  // namespace dialog_test

#endif  // DIALOG_TESTS_TEST_SUPPORT_HPP
