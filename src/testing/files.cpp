#include "testing/files.hpp"

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
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

namespace {

// Writes `contents` to base/relative, creating its parent directories.
std::string writeBelow(const fs::path& base, const std::string& relative,
                       const std::string& contents) {
  const fs::path target = base / relative;
  fs::create_directories(target.parent_path());
  writeFile(target.string(), contents);
  return target.string();
}

}  // namespace

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
  return writeBelow(path_, relative, contents);
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
      xdg_("XDG_DATA_HOME", userData()),
      homeEnv_("HOME", home_.path()) {}

std::string DataRoot::write(const std::string& relative, const std::string& contents) const {
  return writeBelow(fs::path(prefix_) / "share/dialog", relative, contents);
}

std::string DataRoot::linkDictionary(const std::string& dir, const std::string& share) const {
  const fs::path link = fs::path(share.empty() ? prefix_ + "/share/dialog" : share) / "data/ipadic";
  fs::create_directories(link.parent_path());
  fs::create_directory_symlink(dir, link);
  return link.string() + "/";
}

WorkingDirectory::WorkingDirectory(const std::string& dir)
    : previous_(fs::current_path().string()) {
  fs::current_path(dir);
}

WorkingDirectory::~WorkingDirectory() { fs::current_path(previous_); }

namespace {

void flushAll() {
  std::cout.flush();
  std::cerr.flush();
  std::fflush(stdout);
  std::fflush(stderr);
}

std::string readStream(std::FILE* file) {
  std::string text;
  std::rewind(file);
  char buffer[4096];
  for (std::size_t got; (got = std::fread(buffer, 1, sizeof buffer, file)) > 0;)
    text.append(buffer, got);
  return text;
}

}  // namespace

CapturedOutput::CapturedOutput() {
  flushAll();
  outFile_ = std::tmpfile();
  errFile_ = std::tmpfile();
  if (!outFile_ || !errFile_) throw std::runtime_error("tmpfile failed");
  savedOut_ = dup(1);
  savedErr_ = dup(2);
  dup2(fileno(outFile_), 1);
  dup2(fileno(errFile_), 2);
}

CapturedOutput::~CapturedOutput() {
  finish();
  if (outFile_) std::fclose(outFile_);
  if (errFile_) std::fclose(errFile_);
}

void CapturedOutput::finish() {
  if (savedOut_ < 0) return;
  flushAll();
  dup2(savedOut_, 1);
  dup2(savedErr_, 2);
  close(savedOut_);
  close(savedErr_);
  savedOut_ = savedErr_ = -1;
  out_ = readStream(outFile_);
  err_ = readStream(errFile_);
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
