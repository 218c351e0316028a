#include "options.hpp"

#include <cstdio>
#include <cstdlib>

#include <QCommandLineParser>

namespace {

[[noreturn]] void usageError(const QString& message) {
  std::fprintf(stderr, "dialog-stem: %s (see --help)\n", message.toLocal8Bit().constData());
  std::exit(2);
}

}  // namespace

Options parseOptions(const QStringList& arguments) {
  QCommandLineParser parser;
  parser.setApplicationDescription(
      QStringLiteral("Prints the normal forms of sentences or words, one per line; an empty "
                     "line follows each sentence. Without SENTENCE arguments, reads standard "
                     "input line by line."));
  const QCommandLineOption helpOption = parser.addHelpOption();
  const QCommandLineOption versionOption = parser.addVersionOption();
  const QCommandLineOption langOption(QStringLiteral("lang"),
                                      QStringLiteral("Language: enu (default), frf or jpj."),
                                      QStringLiteral("code"), QStringLiteral("enu"));
  const QCommandLineOption wordsOption(
      QStringLiteral("words"), QStringLiteral("Treat each input as one word, not a sentence."));
  const QCommandLineOption streamOption(
      QStringLiteral("stream"),
      QStringLiteral("Stem the lines of standard input with this Snowball algorithm "
                     "(e.g. english) and print the stems joined."),
      QStringLiteral("algorithm"));
  parser.addOptions({langOption, wordsOption, streamOption});
  parser.addPositionalArgument(QStringLiteral("SENTENCE"),
                               QStringLiteral("Sentences (or words) to stem."),
                               QStringLiteral("[SENTENCE...]"));

  if (!parser.parse(arguments)) usageError(parser.errorText());
  if (parser.isSet(helpOption)) {
    std::fputs(parser.helpText().toLocal8Bit().constData(), stdout);
    std::exit(0);
  }
  if (parser.isSet(versionOption)) {
    std::printf("dialog-stem %s\n", DIALOG_VERSION);
    std::exit(0);
  }

  Options options;
  options.language = parser.value(langOption).toStdString();
  if (options.language != "enu" && options.language != "frf" && options.language != "jpj")
    usageError(QStringLiteral("unknown language '%1': expected enu, frf or jpj")
                   .arg(parser.value(langOption)));
  options.words = parser.isSet(wordsOption);
  for (const QString& input : parser.positionalArguments())
    options.inputs.push_back(input.toStdString());

  if (parser.isSet(streamOption)) {
    options.streamAlgorithm = parser.value(streamOption).toStdString();
    if (options.streamAlgorithm.empty()) usageError(QStringLiteral("--stream needs an algorithm"));
    if (parser.isSet(langOption) || options.words || !options.inputs.empty())
      usageError(QStringLiteral("--stream reads standard input only and takes no other option"));
  }
  return options;
}
