#ifndef DIALOG_TESTING_FILES_HPP
#define DIALOG_TESTING_FILES_HPP

// Support shared by the tests, fuzzers and benchmarks: files, temporary
// directories, the environment the data lookup reads, and the process's
// standard output and error. None of it is thread-safe; set it up before
// starting threads.

#include <cstdio>
#include <optional>
#include <string>

namespace dialog_test {

// A whole file's bytes; "" when it cannot be read.
std::string readFile(const std::string& path);
// Replaces a file's contents with `contents`, byte for byte; throws when it cannot.
void writeFile(const std::string& path, const std::string& contents);

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

// A temporary directory for the whole process, removed at its normal exit.
const TempDir& processTempDir();

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

// Points the data lookup at one prefix only: KU_PREFIX_PATH and HOME set, the
// user data directory at an empty place, so the machine's own data never leaks
// in. Data of package "dialog" then lives under prefix + "/share/dialog/".
class DataRoot {
 public:
  // A fresh temporary prefix, removed with the object.
  DataRoot();
  // An existing prefix, left in place.
  explicit DataRoot(const std::string& prefix);
  // Writes a data file of package "dialog", e.g. "lemmatizer/enu/lemma".
  std::string write(const std::string& relative, const std::string& contents) const;
  // Makes "data/ipadic" of package "dialog" a symbolic link to `dir`, as the
  // install step does; returns the path the lookup gives, with its final "/".
  std::string linkDictionary(const std::string& dir) const;
  const std::string& path() const { return prefix_; }

 private:
  std::optional<TempDir> own_;
  TempDir home_;
  std::string prefix_;
  ScopedEnv prefixEnv_;
  ScopedEnv xdg_;
  ScopedEnv homeEnv_;
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

// Captures what the process writes to file descriptors 1 and 2 (C and C++
// streams flushed around it) until finish() or destruction.
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
  int savedOut_ = -1;
  int savedErr_ = -1;
  std::FILE* outFile_ = nullptr;
  std::FILE* errFile_ = nullptr;
  std::string out_;
  std::string err_;
};

}  // namespace dialog_test

#endif  // DIALOG_TESTING_FILES_HPP
