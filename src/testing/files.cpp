#include "testing/files.hpp"

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include <QFile>
#include <QTextStream>

namespace fs = std::filesystem;

namespace dialog_test {

std::string readFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

void writeFile(const std::string& path, const std::string& contents) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out.write(contents.data(), static_cast<std::streamsize>(contents.size()));
  if (!out) throw std::runtime_error("cannot write " + path);
}

TempDir::TempDir() {
  std::string pattern = (fs::temp_directory_path() / "dialog-test-XXXXXX").string();
  if (!mkdtemp(pattern.data())) throw std::runtime_error("mkdtemp failed");
  path_ = pattern;
}

TempDir::~TempDir() {
  std::error_code error;
  fs::remove_all(path_, error);
}

std::string TempDir::write(const std::string& relative, const std::string& contents) const {
  const fs::path target = fs::path(path_) / relative;
  fs::create_directories(target.parent_path());
  writeFile(target.string(), contents);
  return target.string();
}

ScopedEnv::ScopedEnv(std::string name, const std::optional<std::string>& value)
    : name_(std::move(name)) {
  if (const char* old = std::getenv(name_.c_str())) previous_ = old;
  if (value)
    setenv(name_.c_str(), value->c_str(), 1);
  else
    unsetenv(name_.c_str());
}

ScopedEnv::~ScopedEnv() {
  if (previous_)
    setenv(name_.c_str(), previous_->c_str(), 1);
  else
    unsetenv(name_.c_str());
}

DataRoot::DataRoot() : DataRoot(std::string()) {}

DataRoot::DataRoot(const std::string& prefix)
    : own_(prefix.empty() ? std::make_optional<TempDir>() : std::nullopt),
      prefix_(own_ ? own_->path() : prefix),
      prefixEnv_("KU_PREFIX_PATH", prefix_),
      xdg_("XDG_DATA_HOME", home_.path() + "/data"),
      homeEnv_("HOME", home_.path()) {}

std::string DataRoot::share(bool user) const {
  return user ? home_.path() + "/data/dialog/" : prefix_ + "/share/dialog/";
}

std::string DataRoot::write(const std::string& relative, const std::string& contents,
                            bool user) const {
  fs::create_directories(fs::path(share(user) + relative).parent_path());
  writeFile(share(user) + relative, contents);
  return share(user) + relative;
}

std::string DataRoot::linkDictionary(const std::string& dir, bool user) const {
  fs::create_directories(share(user) + "data");
  fs::create_directory_symlink(dir, share(user) + "data/ipadic");
  return share(user) + "data/ipadic/";
}

std::map<QString, QString> plainLemmaLoad(const std::string& path) {
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

}  // namespace dialog_test
