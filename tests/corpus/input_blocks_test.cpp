// The front end's input reader at a line limit of 4 bytes: the boundary that
// dialog-stem keeps at 1 GiB, and lines that blocks must never cut.
#include "corpus/input_blocks.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <string>

#include "testing/files.hpp"

using ZQ::Dialog::corpus::InputBlocks;

TEST(InputBlocks, WholeLinesUpToTheFirstOneOverTheLimit) {
  struct Row {
    const char* name;
    std::string input, lines;
    std::size_t tooLong;
  };
  const Row rows[] = {
      {"at the limit", "abcd\nab\n", "abcd\nab\n", 0},
      {"CR before the end", "abcd\r\nx", "abcd\r\nx", 0},  // a CR is no part of the line
      {"over", "ab\nabcde\nab\n", "ab\n", 2},
      {"over at the end", "ab\nabcde", "ab\n", 2},
      {"over with CR", "abcd\rx\r\n", "", 1},
      {"empty", "", "", 0},
  };
  const ZQ::Dialog::testing::TempDir dir;
  for (const Row& row : rows) {
    const int fd = open(dir.write("in", row.input).c_str(), O_RDONLY);
    InputBlocks input(fd, 4);
    std::string lines, block;
    while (input.next(block)) lines += block;
    EXPECT_EQ(lines, row.lines) << row.name;
    EXPECT_EQ(input.tooLong(), row.tooLong) << row.name;
    close(fd);
  }
}
