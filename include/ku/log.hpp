#ifndef KU_LOG_HPP
#define KU_LOG_HPP

#include <functional>
#include <sstream>
#include <string>

#include "ku/export.hpp"

// Categorised logging with pluggable handlers. All functions are thread-safe;
// handlers are called one at a time, on the logging thread.
namespace ku::log {

// Numeric levels; a category lets through records whose level is at most its own.
enum Level : int {
  Silent = 0,
  Fatal = 1,
  Error = 2,
  Warning = 3,
  Info = 4,
  Verbose = 5,
  Debug = 6
};

// A named category. `level` is a plain int that callers may set directly.
struct Category {
  std::string name;
  int level = Info;
};

// Returns the category called `name`, creating it at level Info on first use.
// The same name always gives the same pointer; categories are never freed.
KU_EXPORT Category* addCategory(const std::string& name);

// One log record as handlers receive it.
struct Record {
  int level;
  std::string category, message, file, function;
  int line;
};

using Handler = std::function<void(const Record&)>;

// Adds a handler and returns its id (never 0). While at least one handler is
// registered, records go to the handlers only; otherwise to standard error.
KU_EXPORT unsigned addHandler(Handler handler);

// Removes the handler with this id; unknown ids are ignored. When it returns,
// the handler is not running and will not be called again.
KU_EXPORT void removeHandler(unsigned id);

// Hands one record to the handlers whatever its level: filtering by the
// category's level is the caller's job. A null category or file is taken as "".
KU_EXPORT void log(int level, Category* category, const std::string& message, const char* file,
                   const char* function, int line);
KU_EXPORT void log(int level, const std::string& categoryName, const std::string& message,
                   const char* file, const char* function, int line);

// Collects text with operator<< and logs it as one record when destroyed.
// Not thread-safe: one stream belongs to one thread.
class KU_EXPORT LogStream {
 public:
  LogStream(int level, const char* file, const char* function, int line, Category* category);
  LogStream(int level, const char* file, const char* function, int line,
            const std::string& categoryName);
  ~LogStream();
  LogStream(const LogStream&) = delete;
  LogStream& operator=(const LogStream&) = delete;

  template <typename T>
  LogStream& operator<<(const T& value) {
    stream_ << value;
    return *this;
  }

 private:
  std::ostringstream stream_;
  int level_;
  std::string file_;
  std::string function_;
  int line_;
  Category* category_;
  std::string categoryName_;
};

}  // namespace ku::log

#endif  // KU_LOG_HPP
