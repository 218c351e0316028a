#include "ku/log.hpp"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "testing/log_capture.hpp"

namespace {

using Capture = dialog_test::LogCapture;

TEST(Log, CategoriesAreUniqueAndStartAtInfo) {
  ku::log::Category* a = ku::log::addCategory("test.unique");
  EXPECT_EQ(a, ku::log::addCategory("test.unique"));
  EXPECT_NE(a, ku::log::addCategory("test.other"));
  EXPECT_EQ(a->name, "test.unique");
  EXPECT_EQ(a->level, 4);
  EXPECT_EQ(ku::log::Error, 2);
  EXPECT_EQ(ku::log::Debug, 6);
}

TEST(Log, HandlersReceiveEveryRecordWhateverTheLevel) {
  Capture capture;
  ku::log::Category* category = ku::log::addCategory("test.handlers");
  category->level = 0;  // the level test is the caller's, not the framework's
  ku::log::log(6, category, "hello", "f.cpp", "fn", 12);
  ku::log::log(3, "by.name", "text", nullptr, nullptr, 0);
  ASSERT_EQ(capture.records.size(), 2u);
  EXPECT_EQ(capture.records[0].level, 6);
  EXPECT_EQ(capture.records[0].category, "test.handlers");
  EXPECT_EQ(capture.records[0].message, "hello");
  EXPECT_EQ(capture.records[0].file, "f.cpp");
  EXPECT_EQ(capture.records[0].function, "fn");
  EXPECT_EQ(capture.records[0].line, 12);
  EXPECT_EQ(capture.records[1].category, "by.name");
  EXPECT_EQ(capture.records[1].file, "");  // null strings arrive empty
}

TEST(Log, LogStreamEmitsOneRecordOnDestruction) {
  Capture capture;
  ku::log::Category* category = ku::log::addCategory("test.stream");
  {
    ku::log::LogStream stream(2, "", "Func", 0, category);
    stream << "a " << 42 << ' ' << 1.5;
    EXPECT_TRUE(capture.records.empty());
  }
  { ku::log::LogStream(3, "file", "g", 7, std::string("named")) << "x"; }
  ASSERT_EQ(capture.records.size(), 2u);
  EXPECT_EQ(capture.records[0].message, "a 42 1.5");
  EXPECT_EQ(capture.records[0].category, "test.stream");
  EXPECT_EQ(capture.records[0].function, "Func");
  EXPECT_EQ(capture.records[1].category, "named");
  EXPECT_EQ(capture.records[1].line, 7);
}

TEST(Log, RemovedHandlersAreNotCalledAndDefaultSinkIsStandardError) {
  std::vector<ku::log::Record> seen;
  const unsigned id = ku::log::addHandler([&](const ku::log::Record& r) { seen.push_back(r); });
  ku::log::removeHandler(id);
  ku::log::removeHandler(id);  // unknown ids are ignored
  testing::internal::CaptureStderr();
  ku::log::log(2, "test.sink", "to stderr", "", "", 0);
  const std::string err = testing::internal::GetCapturedStderr();
  EXPECT_TRUE(seen.empty());
  EXPECT_NE(err.find("to stderr"), std::string::npos);
  EXPECT_EQ(err.back(), '\n');
}

TEST(Log, ConcurrentRegistrationAndLogging) {
  Capture capture;
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([t] {
      for (int i = 0; i < 200; ++i) {
        ku::log::Category* c = ku::log::addCategory("test.thread" + std::to_string(i % 5));
        const unsigned id = ku::log::addHandler([](const ku::log::Record&) {});
        ku::log::log(4, c, "m", "", "", t);
        ku::log::removeHandler(id);
      }
    });
  }
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(capture.records.size(), 800u);
}

}  // namespace
