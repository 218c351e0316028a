#ifndef DIALOG_TESTING_LOG_CAPTURE_HPP
#define DIALOG_TESTING_LOG_CAPTURE_HPP

#include <optional>
#include <string>
#include <vector>

#include "ku/log.hpp"

namespace dialog_test {

// Collects the log records of `category` (of every category when it is "")
// while alive; with a `level`, that category's level is set and then restored.
// Handlers are called under the log's own lock, so threads may log meanwhile.
class LogCapture {
 public:
  explicit LogCapture(std::string category = "", std::optional<int> level = std::nullopt)
      : name_(std::move(category)) {
    if (level) {
      category_ = ku::log::addCategory(name_);
      saved_ = category_->level;
      category_->level = *level;
    }
    id_ = ku::log::addHandler([this](const ku::log::Record& record) {
      if (name_.empty() || record.category == name_) records.push_back(record);
    });
  }
  ~LogCapture() {
    ku::log::removeHandler(id_);
    if (category_) category_->level = saved_;
  }
  LogCapture(const LogCapture&) = delete;
  LogCapture& operator=(const LogCapture&) = delete;

  std::vector<ku::log::Record> records;

 private:
  std::string name_;
  ku::log::Category* category_ = nullptr;
  int saved_ = 0;
  unsigned id_ = 0;
};

}  // namespace dialog_test

#endif  // DIALOG_TESTING_LOG_CAPTURE_HPP
