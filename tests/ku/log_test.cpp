#include "ku/log.hpp"

#include <gtest/gtest.h>

#include <vector>

namespace {

TEST(Log, HandlersReceiveEveryRecordWhateverTheLevel) {
  ku::log::Category* a = ku::log::addCategory("test.unique");
  EXPECT_EQ(a, ku::log::addCategory("test.unique"));
  EXPECT_NE(a, ku::log::addCategory("test.other"));
  EXPECT_EQ(a->name, "test.unique");
  EXPECT_EQ(a->level, 4);
  std::vector<ku::log::Record> records;
  const unsigned id = ku::log::addHandler([&](const ku::log::Record& r) { records.push_back(r); });
  ku::log::Category* category = ku::log::addCategory("test.handlers");
  category->level = 0;  // the level test is the caller's
  ku::log::log(6, category, "hello", "f.cpp", "fn", 12);
  ku::log::log(3, nullptr, "text", nullptr, nullptr, 0);  // null strings arrive empty
  { ku::log::LogStream(2, "g.cpp", "g", 7, category) << "a " << 42; }
  { ku::log::LogStream(3, "", "", 0, std::string("named")) << "x"; }
  ku::log::removeHandler(id);
  ASSERT_EQ(records.size(), 4u);
  const auto same = [](const ku::log::Record& r, int level, const char* category,
                       const char* message, const char* file, const char* function, int line) {
    return r.level == level && r.category == category && r.message == message && r.file == file &&
           r.function == function && r.line == line;
  };
  EXPECT_TRUE(same(records[0], 6, "test.handlers", "hello", "f.cpp", "fn", 12));
  EXPECT_TRUE(same(records[1], 3, "", "text", "", "", 0));
  EXPECT_TRUE(same(records[2], 2, "test.handlers", "a 42", "g.cpp", "g", 7));
  EXPECT_TRUE(same(records[3], 3, "named", "x", "", "", 0));
}

TEST(Log, EveryHandlerUntilRemovedThenStandardError) {
  int first = 0, second = 0;
  const unsigned a = ku::log::addHandler([&](const ku::log::Record&) { ++first; });
  const unsigned b = ku::log::addHandler([&](const ku::log::Record&) { ++second; });
  EXPECT_NE(a, b);
  testing::internal::CaptureStderr();
  ku::log::log(2, "test.sink", "both", "", "", 0);
  ku::log::removeHandler(a);
  ku::log::removeHandler(a);  // unknown ids are ignored
  ku::log::log(2, "test.sink", "second", "", "", 0);
  ku::log::removeHandler(b);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_EQ(first, 1);
  EXPECT_EQ(second, 2);
  // With no handler, one line a record on standard error.
  struct Row {
    int level;
    const char* category;
    const char* file;
    const char* line;
  };
  const Row rows[] = {
      {2, "test.sink", "f.cpp", "test.sink: error: m (f.cpp:12)\n"},
      {0, "", "", "silent: m\n"},
      {6, "c", "", "c: debug: m\n"},
      {7, "c", "", "c: log: m\n"},  // levels beyond the named ones
      {-1, "c", "", "c: log: m\n"},
  };
  for (const Row& row : rows) {
    testing::internal::CaptureStderr();
    ku::log::log(row.level, row.category, "m", row.file, "fn", 12);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), row.line);
  }
}

}  // namespace
