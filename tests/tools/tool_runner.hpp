#ifndef DIALOG_TESTS_TOOLS_TOOL_RUNNER_HPP
#define DIALOG_TESTS_TOOLS_TOOL_RUNNER_HPP

// Runs the dialog-stem program as a process, on its own data root and
// scratch folder, for the tool's test files.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

#include "testing/files.hpp"

namespace ZQ::Dialog::testing {

using Args = std::vector<std::string>;

struct Outcome {
  int status;
  std::string out, err;
};

inline std::string quote(const std::string& argument) {
  std::string quoted = "'";
  for (char c : argument) quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return quoted + "'";
}
// The words of `words`.
inline Args split(const std::string& words) {
  Args args;
  std::istringstream in(words);
  for (std::string word; in >> word;) args.push_back(word);
  return args;
}

class DialogStem : public ::testing::Test {
 protected:
  DialogStem() {
    data_.write("lemmatizer/enu/lemma", "went\ngo\nchildren\nchild\ndon\ndo\nt\nnot\n");
    data_.write("lemmatizer/frf/lemma", "l\nle\nchevaux\ncheval\n");
    mkfifo((scratch_.path() + "/fifo").c_str(), 0600);
  }
  // Runs the tool on `input`; `redirect` may then change its standard streams
  // ("<fifo" is an input held open that never ends) and `source` feed it
  // instead. The timeout only ends a run that would hang.
  Outcome run(const Args& args, const std::string& input = "", const std::string& redirect = "",
              const std::string& source = "") {
    const std::string& dir = scratch_.path();
    scratch_.write("in", input);
    std::string command =
        "cd " + dir + " && exec 3<>fifo && " + source + " timeout 60 " + quote(DIALOG_STEM_PATH);
    for (const std::string& arg : args) command += " " + quote(arg);
    command += (source.empty() ? " <in" : "") + std::string(" >out 2>err ") + redirect;
    const int raw = std::system(command.c_str());
    return {WIFEXITED(raw) ? WEXITSTATUS(raw) : -1, readFile(dir + "/out"), readFile(dir + "/err")};
  }
  DataRoot data_;
  TempDir scratch_;
};

}  // namespace ZQ::Dialog::testing

#endif  // DIALOG_TESTS_TOOLS_TOOL_RUNNER_HPP
