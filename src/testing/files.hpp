#ifndef DIALOG_TESTING_FILES_HPP
#define DIALOG_TESTING_FILES_HPP

// Files, temporary directories, the environment the data lookup reads and the
// process's standard streams, for tests, fuzzers and benchmarks. Not thread-safe.

#include <cstdio>
#include <map>
#include <optional>
#include <string>

#include <QString>

namespace dialog_test {

// A whole file's bytes; "" when it cannot be read.
std::string readFile(const std::string& path);
// Replaces a file's contents byte for byte; throws when it cannot.
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
// directory at an empty place (userData()), so the machine's data never leaks in.
class DataRoot {
 public:
  DataRoot();                                   // a fresh temporary prefix
  explicit DataRoot(const std::string& prefix);  // an existing prefix, left in place
  // Writes a data file of package "dialog", e.g. "lemmatizer/enu/lemma".
  std::string write(const std::string& relative, const std::string& contents) const;
  // Links "data/ipadic" of package "dialog" under `share` (the prefix's
  // share/dialog by default) to `dir`; returns the path the lookup gives.
  std::string linkDictionary(const std::string& dir, const std::string& share = "") const;
  const std::string& path() const { return prefix_; }
  // $XDG_DATA_HOME: data of package "dialog" goes under userData() + "/dialog/".
  std::string userData() const { return home_.path() + "/data"; }

 private:
  std::optional<TempDir> own_;
  TempDir home_;
  std::string prefix_;
  ScopedEnv prefixEnv_, xdg_, homeEnv_;
};

// Changes the working directory for the object's lifetime.
class WorkingDirectory {
 public:
  explicit WorkingDirectory(const std::string& dir);
  ~WorkingDirectory();
  WorkingDirectory(const WorkingDirectory&) = delete;
  WorkingDirectory& operator=(const WorkingDirectory&) = delete;

 private:
  std::string previous_;
};

// Captures what the process writes to descriptors 1 and 2 until finish().
class CapturedOutput {
 public:
  CapturedOutput();
  ~CapturedOutput();
  CapturedOutput(const CapturedOutput&) = delete;
  CapturedOutput& operator=(const CapturedOutput&) = delete;
  // Restores the descriptors and keeps the text; later calls do nothing.
  void finish();
  const std::string& out() const { return out_; }
  const std::string& err() const { return err_; }

 private:
  int savedOut_ = -1, savedErr_ = -1;
  std::FILE* outFile_ = nullptr;
  std::FILE* errFile_ = nullptr;
  std::string out_, err_;
};

// The lemma file at `path` read by the plainest loop (QFile in text mode,
// QTextStream::readLine, one insertion per pair): the library must agree.
std::map<QString, QString> plainLemmaLoad(const std::string& path);

}  // namespace dialog_test

#endif  // DIALOG_TESTING_FILES_HPP
