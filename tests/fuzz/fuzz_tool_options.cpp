// dialog-stem's option parsing: the input is the argument list, one argument
// per line. Checks the outcome's contract: run with valid options, or print
// help and stop with 0, or one error line and status 2.
#include <cstddef>
#include <cstdint>
#include <string>

#include <QCoreApplication>
#include <QStringList>

#include "options.hpp"
#include "invariant.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > dialog_test::kMaxFuzzInput) return 0;
  // The help text names the application, as in the tool.
  static int argc = 1;
  static char name[] = "dialog-stem";
  static char* argv[] = {name, nullptr};
  static const QCoreApplication app(argc, argv);
  QStringList arguments{QStringLiteral("dialog-stem")};
  arguments += QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<int>(size))
                   .split(QLatin1Char('\n'));
  const ParseResult result = parseOptions(arguments);
  switch (result.exitStatus) {
    case -1: {
      const Options& o = result.options;
      if (o.language != "enu" && o.language != "frf" && o.language != "jpj")
        dialog_test::violated("unknown language accepted");
      if (o.jobs < 1 || o.jobs > 1024) dialog_test::violated("jobs out of range");
      if (!o.streamAlgorithm.empty() && (o.words || o.check || !o.inputs.empty()))
        dialog_test::violated("--stream combined with another mode");
      if (!result.output.empty() || !result.error.empty()) dialog_test::violated("text on success");
      break;
    }
    case 0:
      if (result.output.empty() || !result.error.empty())
        dialog_test::violated("help without text");
      break;
    case 2:
      if (result.error.rfind("dialog-stem: ", 0) != 0 || result.error.back() != '\n' ||
          result.error.find('\n') != result.error.size() - 1)
        dialog_test::violated("usage error is not one dialog-stem line");
      break;
    default:
      dialog_test::violated("unexpected exit status");
  }
  return 0;
}
