// dialog-stem's option parsing over argument lists (one argument a line): run
// with valid options, or help text and 0, or one error line and status 2.
#include <QCoreApplication>
#include "invariant.hpp"
#include "options.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > ZQ::Dialog::testing::kMaxFuzzInput) return 0;
  static int argc = 1;
  static char name[] = "dialog-stem";
  static char* argv[] = {name, nullptr};
  static const QCoreApplication app(argc, argv);  // the help text names the application
  const ZQ::Dialog::tool::ParseResult r = ZQ::Dialog::tool::parseOptions(
      QStringList{QStringLiteral("dialog-stem")} +
      QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<int>(size)).split('\n'));
  const std::string& lang = r.options.language;
  ZQ::Dialog::testing::check(
      r.exitStatus != -1 ||
          ((lang == "enu" || lang == "frf" || lang == "jpj") && r.options.jobs >= 1 &&
           r.options.jobs <= 1024 && r.output.empty() && r.error.empty()),
      "bad options accepted");
  ZQ::Dialog::testing::check(r.exitStatus != 0 || (!r.output.empty() && r.error.empty()),
                             "help text");
  ZQ::Dialog::testing::check(r.exitStatus != 2 || (r.error.rfind("dialog-stem: ", 0) == 0 &&
                                                   r.error.find('\n') + 1 == r.error.size()),
                             "usage error is not one dialog-stem line");
  ZQ::Dialog::testing::check(r.exitStatus == -1 || r.exitStatus == 0 || r.exitStatus == 2,
                             "status");
  return 0;
}
