#include "ku/log.hpp"

#include <cstdio>
#include <map>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace ku::log {
namespace {

// Process-wide state. It is allocated once and never destroyed, so categories
// stay valid while other libraries' static destructors still log.
struct Registry {
  // Recursive, so that a handler may itself log or add a category.
  std::recursive_mutex mutex;
  std::map<std::string, std::unique_ptr<Category>> categories;
  std::vector<std::pair<unsigned, Handler>> handlers;
  unsigned nextId = 1;
};

Registry& registry() {
  static Registry* const instance = new Registry;
  return *instance;
}

const char* levelName(int level) {
  static const char* const names[] = {"silent", "fatal",   "error", "warning",
                                      "info",   "verbose", "debug"};
  return level >= 0 && level <= Debug ? names[level] : "log";
}

void writeToStandardError(const Record& record) {
  std::string text = record.category.empty() ? std::string() : record.category + ": ";
  text += levelName(record.level);
  text += ": " + record.message;
  if (!record.file.empty()) text += " (" + record.file + ":" + std::to_string(record.line) + ")";
  text += '\n';
  std::fputs(text.c_str(), stderr);
}

void dispatch(const Record& record) {
  Registry& r = registry();
  std::lock_guard<std::recursive_mutex> lock(r.mutex);
  if (r.handlers.empty()) {
    writeToStandardError(record);
    return;
  }
  // Iterate over a copy: a handler may add or remove handlers.
  const auto handlers = r.handlers;
  for (const auto& entry : handlers) entry.second(record);
}

}  // namespace

Category* addCategory(const std::string& name) {
  Registry& r = registry();
  std::lock_guard<std::recursive_mutex> lock(r.mutex);
  std::unique_ptr<Category>& slot = r.categories[name];
  if (!slot) {
    slot = std::make_unique<Category>();
    slot->name = name;
  }
  return slot.get();
}

unsigned addHandler(Handler handler) {
  Registry& r = registry();
  std::lock_guard<std::recursive_mutex> lock(r.mutex);
  const unsigned id = r.nextId++;
  r.handlers.emplace_back(id, std::move(handler));
  return id;
}

void removeHandler(unsigned id) {
  Registry& r = registry();
  std::lock_guard<std::recursive_mutex> lock(r.mutex);
  for (auto it = r.handlers.begin(); it != r.handlers.end(); ++it) {
    if (it->first == id) {
      r.handlers.erase(it);
      return;
    }
  }
}

void log(int level, Category* category, const std::string& message, const char* file,
         const char* function, int line) {
  log(level, category ? category->name : std::string(), message, file, function, line);
}

void log(int level, const std::string& categoryName, const std::string& message, const char* file,
         const char* function, int line) {
  dispatch(Record{level, categoryName, message, file ? file : "", function ? function : "", line});
}

LogStream::LogStream(int level, const char* file, const char* function, int line,
                     Category* category)
    : level_(level),
      file_(file ? file : ""),
      function_(function ? function : ""),
      line_(line),
      category_(category) {}

LogStream::LogStream(int level, const char* file, const char* function, int line,
                     const std::string& categoryName)
    : level_(level),
      file_(file ? file : ""),
      function_(function ? function : ""),
      line_(line),
      category_(nullptr),
      categoryName_(categoryName) {}

LogStream::~LogStream() {
  if (category_)
    log(level_, category_, stream_.str(), file_.c_str(), function_.c_str(), line_);
  else
    log(level_, categoryName_, stream_.str(), file_.c_str(), function_.c_str(), line_);
}

}  // namespace ku::log
