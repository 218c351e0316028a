// dialog-stem's option parsing over argument lists (one argument a line): run
// with valid options, or help text and 0, or one error line and status 2.
#include <QCoreApplication>

#include "invariant.hpp"
#include "options.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > dialog_test::kMaxFuzzInput) return 0;
  static int argc = 1;
  static char name[] = "dialog-stem";
  static char* argv[] = {name, nullptr};
  static const QCoreApplication app(argc, argv);  // the help text names the application
  const ParseResult result =
      parseOptions(QStringList{QStringLiteral("dialog-stem")} +
                   QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<int>(size))
                       .split(QLatin1Char('\n')));
  const Options& o = result.options;
  if (result.exitStatus == -1 &&
      ((o.language != "enu" && o.language != "frf" && o.language != "jpj") || o.jobs < 1 ||
       o.jobs > 1024 || !result.output.empty() || !result.error.empty()))
    dialog_test::violated("bad options accepted");
  if (result.exitStatus == 0 && (result.output.empty() || !result.error.empty()))
    dialog_test::violated("help without text");
  if (result.exitStatus == 2 && (result.error.rfind("dialog-stem: ", 0) != 0 ||
                                 result.error.find('\n') + 1 != result.error.size()))
    dialog_test::violated("usage error is not one dialog-stem line");
  if (result.exitStatus != -1 && result.exitStatus != 0 && result.exitStatus != 2)
    dialog_test::violated("unexpected exit status");
  return 0;
}
