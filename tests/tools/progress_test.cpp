// dialog-stem --progress: its reports and summary on standard error, on a
// terminal and elsewhere, never changing standard output or the status.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <pty.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <regex>
#include <string>

#include "tool_runner.hpp"

namespace {

using namespace ZQ::Dialog::testing;

// A pseudo-terminal whose far end the test reads; its output is passed raw.
struct Terminal {
  Terminal() {
    if (openpty(&far, &near, path, nullptr, nullptr) != 0) return;
    termios raw;
    tcgetattr(near, &raw);
    cfmakeraw(&raw);
    tcsetattr(near, TCSANOW, &raw);
    fcntl(far, F_SETFL, O_NONBLOCK);
  }
  ~Terminal() { close(far), close(near); }
  // What has been written to the terminal so far.
  std::string written() const {
    std::string text;
    char buffer[4096];
    for (ssize_t n; (n = ::read(far, buffer, sizeof buffer)) > 0;) text.append(buffer, n);
    return text;
  }
  int far = -1, near = -1;
  char path[64] = "";
};

// The bytes and lines of `input`, as the summary counts them.
std::string counts(const std::string& input) {
  const std::size_t lines =
      std::count(input.begin(), input.end(), '\n') + (!input.empty() && input.back() != '\n');
  return std::to_string(input.size()) + " bytes, " + std::to_string(lines) + " lines";
}

// Each run again with --progress: the same output and status, and on standard
// error what came without it plus `reports` reports, the last of them (due
// when the last line comes) as many lines as the summary, and then a summary
// of `summary` (empty: the input's counts; "*": any).
TEST_F(DialogStem, ProgressChangesOnlyStandardError) {
  struct Row {
    const char* args;
    std::string input, redirect, source;
    int reports;
    std::string summary;
    bool terminal;
  };
  std::string big;  // 1.2 MB: several blocks
  for (int i = 0; i < 60000; ++i) big += i % 2 ? "children went don't\n" : "l'\xFF\n";
  // A report 9.5 s after the start would be too early, and none at all too
  // late; the last wait leaves the tool up to 1.5 s to start, as the 1.5 s on
  // a terminal leaves it 1.25.
  const std::string went3 = "(echo went; sleep 9.5; echo went; sleep 2; echo went) |";
  const Row rows[] = {
      {"", "children went\r\nl'homme", "", "", 0, "", false},
      {"--lang frf --format tsv", "l'homme\nchevaux\n\n", "", "", 0, "", false},
      {"--words --format jsonl", big, "", "", 0, "", false},
      {"--jobs 2 --format jsonl", big, "", "", 0, "", false},
      {"--lang jpj", "猫が 走った\n", "", "", 0, "", false},
      {"", "", "<.", "", 0, "0 bytes, 0 lines", false},  // a read error after the summary
      {"--jobs 2", "", ">/dev/full", "yes went |", 0, "*", false},
      // Not a terminal: a plain line at most every 10 s; on one, 4 a second.
      {"", "", "", went3, 1, "15 bytes, 3 lines", false},
      {"--jobs 2", "", "", "(echo went; sleep 1.5; echo went) |", 1, "10 bytes, 2 lines", true},
  };
  const std::regex report(
      R"(dialog-stem: \d+\.\d MB, (\d+) lines, \d+\.\d MB/s(, \d+%, \d+:\d\d:\d\d left)?)");
  const std::regex summary(
      R"(dialog-stem: done: (\d+ bytes, (\d+) lines), \d+\.\d s, \d+\.\d MB/s)");
  for (const Row& row : rows) {
    Args args = split(row.args);
    // The same input without the waits, which only --progress needs.
    const std::string source = std::regex_replace(row.source, std::regex("sleep [.0-9]+;"), "");
    const Outcome plain = run(args, row.input, row.redirect, source);
    args.push_back("--progress");
    const Terminal terminal;
    Outcome shown =
        run(args, row.input,
            row.redirect + (row.terminal ? " 2>" + std::string(terminal.path) : ""), row.source);
    const std::string name = row.args + std::string(" ") + row.redirect + row.source;
    EXPECT_EQ(shown.status, plain.status) << name;
    EXPECT_TRUE(shown.out == plain.out) << name;
    if (row.terminal) {
      // Each report overwrites the one before; only the summary ends a line.
      shown.err = terminal.written();
      EXPECT_EQ(std::count(shown.err.begin(), shown.err.end(), '\r'), row.reports + 1) << name;
      EXPECT_EQ(shown.err.find('\n'), shown.err.size() - 1) << shown.err;
      std::replace(shown.err.begin(), shown.err.end(), '\r', '\n');
      shown.err = std::regex_replace(shown.err, std::regex(" *\n+"), "\n");
      shown.err.erase(0, shown.err.find_first_not_of('\n'));
    }
    std::string others, last;  // the last report's lines
    int reports = 0, summaries = 0;
    std::istringstream lines(shown.err);
    for (std::string line; std::getline(lines, line);) {
      std::smatch counted;
      if (std::regex_match(line, counted, summary)) {
        ++summaries;
        EXPECT_TRUE(row.summary == "*" ||
                    counted[1] == (row.summary.empty() ? counts(row.input) : row.summary))
            << name << ": " << line;
        EXPECT_TRUE(last.empty() || counted[2] == last) << name << ": " << shown.err;
      } else if (std::regex_match(line, counted, report)) {
        ++reports, last = counted[1];
        EXPECT_EQ(summaries, 0) << name << ": a report after the summary";
      } else {
        others += line + "\n";
      }
    }
    EXPECT_EQ(summaries, 1) << name << ": " << shown.err;
    EXPECT_EQ(reports, row.reports) << name << ": " << shown.err;
    EXPECT_EQ(others, plain.err) << name;
    // A failure's message comes last, on a line of its own.
    EXPECT_TRUE(plain.status == 0 || shown.err.substr(shown.err.size() - others.size()) == others)
        << name;
  }
}

}  // namespace
