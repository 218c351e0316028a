#ifndef DIALOG_TESTING_FILES_HPP
#define DIALOG_TESTING_FILES_HPP

// Files, temporary directories and the data lookup's environment. Not thread-safe.

#include <unistd.h>
#include <QFile>
#include <QTextStream>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>

namespace ZQ::Dialog::testing {

// A whole file's bytes ("" when it cannot be read).
inline std::string readFile(const std::string& path) {
  std::ostringstream text;
  text << std::ifstream(path, std::ios::binary).rdbuf();
  return text.str();
}
// Replaces a file's bytes, creating its directories; returns the path, or throws.
inline std::string writeFile(const std::string& path, const std::string& contents) {
  if (const auto parent = std::filesystem::path(path).parent_path(); !parent.empty())
    std::filesystem::create_directories(parent);
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  if (!out.write(contents.data(), static_cast<std::streamsize>(contents.size())))
    throw std::runtime_error("cannot write " + path);
  return path;
}
// A fresh temporary directory, removed with its contents when the object goes.
class TempDir {
 public:
  TempDir() : path_((std::filesystem::temp_directory_path() / "dialog-test-XXXXXX").string()) {
    if (!mkdtemp(path_.data())) throw std::runtime_error("mkdtemp failed");
  }
  ~TempDir() {
    std::error_code error;
    std::filesystem::remove_all(path_, error);
  }
  const std::string& path() const { return path_; }
  std::string write(const std::string& relative, const std::string& contents) const {
    return writeFile(path_ + "/" + relative, contents);
  }

 private:
  std::string path_;
};

// Sets (nullopt: unsets) an environment variable for the object's lifetime.
class ScopedEnv {
 public:
  ScopedEnv(std::string name, const std::optional<std::string>& value) : name_(std::move(name)) {
    if (const char* old = std::getenv(name_.c_str())) previous_ = old;
    set(value);
  }
  ~ScopedEnv() { set(previous_); }

 private:
  void set(const std::optional<std::string>& value) const {
    value ? setenv(name_.c_str(), value->c_str(), 1) : unsetenv(name_.c_str());
  }
  std::string name_;
  std::optional<std::string> previous_;
};

// Points the data lookup at one prefix (KU_PREFIX_PATH, a fresh one by default)
// and the user data directory (XDG_DATA_HOME, HOME) at an empty place.
class DataRoot {
 public:
  explicit DataRoot(const std::string& prefix = "")
      : own_(prefix.empty() ? std::make_optional<TempDir>() : std::nullopt),
        prefix_(own_ ? own_->path() : prefix),
        prefixEnv_("KU_PREFIX_PATH", prefix_),
        xdg_("XDG_DATA_HOME", home_.path() + "/data"),
        homeEnv_("HOME", home_.path()) {}
  // Writes a data file of package "dialog" (e.g. "lemmatizer/enu/lemma") under
  // the prefix, or with `user` under the user data directory; returns its path.
  std::string write(const std::string& relative, const std::string& contents,
                    bool user = false) const {
    return writeFile(share(user) + relative, contents);
  }
  // Links "data/ipadic" of package "dialog" (in the user data directory with
  // `user`) to `dir`; returns the path the lookup gives.
  std::string linkDictionary(const std::string& dir, bool user = false) const {
    std::filesystem::create_directories(share(user) + "data");
    std::filesystem::create_directory_symlink(dir, share(user) + "data/ipadic");
    return share(user) + "data/ipadic/";
  }
  const std::string& path() const { return prefix_; }

 private:
  std::string share(bool user) const {
    return user ? home_.path() + "/data/dialog/" : prefix_ + "/share/dialog/";
  }
  std::optional<TempDir> own_;
  TempDir home_;
  std::string prefix_;
  ScopedEnv prefixEnv_, xdg_, homeEnv_;
};

// The lemma file at `path` read by the plainest loop (QFile in text mode,
// QTextStream::readLine, one insertion per pair): the library must agree.
inline std::map<QString, QString> plainLemmaLoad(const std::string& path) {
  std::map<QString, QString> map;
  QFile file(QString::fromUtf8(path.c_str()));
  if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) return map;
  QTextStream in(&file);
  while (!in.atEnd()) {
    const QString form = in.readLine();
    map[form] = in.readLine();
  }
  return map;
}

}  // namespace ZQ::Dialog::testing

#endif  // DIALOG_TESTING_FILES_HPP
