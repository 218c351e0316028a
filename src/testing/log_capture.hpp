#ifndef DIALOG_TESTING_LOG_CAPTURE_HPP
#define DIALOG_TESTING_LOG_CAPTURE_HPP

#include <string>
#include <vector>

#include "ku/log.hpp"

namespace dialog_test {

// Collects the log records of `category` while alive, with the category's
// level set to `level` and then restored. Not thread-safe.
class LogCapture {
 public:
  LogCapture(const std::string& category, int level)
      : category_(ku::log::addCategory(category)), saved_(category_->level) {
    category_->level = level;
    id_ = ku::log::addHandler([this](const ku::log::Record& record) {
      if (record.category == category_->name) records.push_back(record);
    });
  }
  ~LogCapture() {
    ku::log::removeHandler(id_);
    category_->level = saved_;
  }
  LogCapture(const LogCapture&) = delete;
  LogCapture& operator=(const LogCapture&) = delete;

  std::vector<ku::log::Record> records;

 private:
  ku::log::Category* category_;
  int saved_;
  unsigned id_ = 0;
};

}  // namespace dialog_test

#endif  // DIALOG_TESTING_LOG_CAPTURE_HPP
