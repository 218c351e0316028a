#include "options.hpp"

#include <algorithm>
#include <string>
#include <thread>

#include <QCommandLineParser>

#include "corpus/morphemes.hpp"

namespace ZQ::Dialog::tool {

namespace {

ParseResult usageError(const QString& message) {
  ParseResult result;
  result.exitStatus = 2;
  // One line whatever the arguments held.
  QString line = message;
  line.replace(QLatin1Char('\n'), QLatin1Char(' ')).replace(QLatin1Char('\r'), QLatin1Char(' '));
  result.error = "dialog-stem: " + line.toStdString() + " (see --help)\n";
  return result;
}

ParseResult exitWith(std::string output) {
  ParseResult result;
  result.exitStatus = 0;
  result.output = std::move(output);
  return result;
}

}  // namespace

ParseResult parseOptions(const QStringList& arguments) {
  QCommandLineParser parser;
  parser.setApplicationDescription(QStringLiteral(
      "Prints the normal forms of sentences or words. Without SENTENCE arguments, reads "
      "standard input line by line.\n"
      "Exit status: 0 success; 1 failed write or read, memory exhausted, --check found "
      "no data, or the dictionary of --morphemes is missing or unusable; 2 bad usage. A closed "
      "output pipe ends the program quietly.\n"
      "Data: see --check, and the manual page dialog-stem(1)."));
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
  const QCommandLineOption formatOption(
      QStringLiteral("format"),
      QStringLiteral("Output: lines (default; one element a line, an empty line after each "
                     "sentence), tsv (one line per input line, tab-separated; tab, newline "
                     "and backslash written \\t \\n \\\\) or jsonl (one JSON array of "
                     "strings per input line; bytes that are not UTF-8 become U+FFFD)."),
      QStringLiteral("format"), QStringLiteral("lines"));
  const QCommandLineOption jobsOption(
      QStringLiteral("jobs"),
      QStringLiteral(
          "Threads sharing one stemmer (0: one per core; default 1). Output order "
          "and bytes do not change. Japanese (jpj) runs on one thread but with --morphemes."),
      QStringLiteral("N"), QStringLiteral("1"));
  const QCommandLineOption checkOption(
      QStringLiteral("check"),
      QStringLiteral("Print where the language's data is looked for and found, and how many "
                     "pairs its lemma file holds; exit 1 when it is missing."));
  const QCommandLineOption progressOption(
      QStringLiteral("progress"),
      QStringLiteral("Show on standard error how much of standard input is read: bytes, lines, "
                     "MB/s, and for a file the percentage and time left; on a terminal one "
                     "line rewritten at most 4 times a second, else a line at most every 10 "
                     "seconds; then a summary line. Output and exit status do not change."));
  const QCommandLineOption morphemesOption(
      QStringLiteral("morphemes"),
      QStringLiteral("With --lang jpj: one element per morpheme, its base form (the surface "
                     "where the dictionary has none). See dialog-stem(1)."));
  const QCommandLineOption dictionaryOption(
      QStringLiteral("dictionary"),
      QStringLiteral("MeCab dictionary of --morphemes: ipadic (default) or unidic, found as "
                     "data data/NAME/ (see --check --lang jpj)."),
      QStringLiteral("name"), QStringLiteral("ipadic"));
  parser.addOptions({langOption, wordsOption, formatOption, jobsOption, checkOption, streamOption,
                     progressOption, morphemesOption, dictionaryOption});
  parser.addPositionalArgument(QStringLiteral("SENTENCE"),
                               QStringLiteral("Sentences (or words) to stem."),
                               QStringLiteral("[SENTENCE...]"));

  if (!parser.parse(arguments)) return usageError(parser.errorText());
  if (parser.isSet(helpOption)) return exitWith(parser.helpText().toStdString());
  if (parser.isSet(versionOption))
    return exitWith(std::string("dialog-stem ") + DIALOG_VERSION + "\n");

  ParseResult result;
  Options& options = result.options;
  options.language = parser.value(langOption).toStdString();
  if (options.language != "enu" && options.language != "frf" && options.language != "jpj")
    return usageError(QStringLiteral("unknown language '%1': expected enu, frf or jpj")
                          .arg(parser.value(langOption)));
  options.words = parser.isSet(wordsOption);
  const QString format = parser.value(formatOption);
  if (format == QLatin1String("lines"))
    options.format = Format::Lines;
  else if (format == QLatin1String("tsv"))
    options.format = Format::Tsv;
  else if (format == QLatin1String("jsonl"))
    options.format = Format::Jsonl;
  else
    return usageError(
        QStringLiteral("unknown format '%1': expected lines, tsv or jsonl").arg(format));
  bool number = false;
  const uint jobs = parser.value(jobsOption).toUInt(&number);
  if (!number || jobs > 1024)
    return usageError(QStringLiteral("--jobs needs a number from 0 to 1024, not '%1'")
                          .arg(parser.value(jobsOption)));
  options.jobs = jobs != 0 ? jobs : std::max(1u, std::thread::hardware_concurrency());
  options.check = parser.isSet(checkOption);
  options.progress = parser.isSet(progressOption);
  options.morphemes = parser.isSet(morphemesOption);
  options.dictionary = parser.value(dictionaryOption).toStdString();
  if (options.morphemes && options.language != "jpj")
    return usageError(QStringLiteral("--morphemes needs --lang jpj"));
  if (parser.isSet(dictionaryOption) && !options.morphemes)
    return usageError(QStringLiteral("--dictionary needs --morphemes"));
  if (options.morphemes && options.words)
    return usageError(QStringLiteral("--morphemes cuts sentences; it takes no --words"));
  if (!corpus::MorphemeDictionary::knownName(options.dictionary))
    return usageError(QStringLiteral("unknown dictionary '%1': expected ipadic or unidic")
                          .arg(parser.value(dictionaryOption)));
  if (options.check &&
      (parser.isSet(wordsOption) || parser.isSet(formatOption) || parser.isSet(jobsOption) ||
       options.progress || options.morphemes || !parser.positionalArguments().isEmpty()))
    return usageError(QStringLiteral("--check takes no other option but --lang"));
  for (const QString& input : parser.positionalArguments())
    options.inputs.push_back(input.toStdString());
  if (options.progress && !options.inputs.empty())
    return usageError(QStringLiteral("--progress reports on standard input: no SENTENCE with it"));

  if (parser.isSet(streamOption)) {
    options.streamAlgorithm = parser.value(streamOption).toStdString();
    if (options.streamAlgorithm.empty())
      return usageError(QStringLiteral("--stream needs an algorithm"));
    if (parser.isSet(langOption) || options.words || !options.inputs.empty() ||
        parser.isSet(formatOption) || parser.isSet(jobsOption) || options.check ||
        options.progress || options.morphemes)
      return usageError(
          QStringLiteral("--stream reads standard input only and takes no other option"));
  }
  return result;
}

}  // namespace ZQ::Dialog::tool
