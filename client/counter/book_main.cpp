// compacts-book: writes a sample book of CSV files.

#include "counter/CBookGenerator.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <cstdio>
#include <limits>
#include <utility>

namespace {

/// Reads a whole number from 0 to `max`; false when the text is none.
template <class Number>
bool readNumber(const QString& text, qulonglong max, Number& number) {
  bool good = false;
  const auto value = text.toULongLong(&good);
  number = static_cast<Number>(value);
  return good && value <= max;
}

int refuse(const QString& message) {
  std::fprintf(stderr, "compacts-book: %s\n", qUtf8Printable(message));
  return 2;
}

}  // namespace

int main(int argc, char** argv) {
  QCoreApplication application(argc, argv);
  QCommandLineParser parser;
  parser.setApplicationDescription(
      QStringLiteral("Writes a sample book of accounts, instruments, quotes, compacts and positions."));
  parser.addHelpOption();
  parser.addPositionalArgument(QStringLiteral("OUT_DIR"),
                               QStringLiteral("folder for the CSV files; created if needed"));
  const QCommandLineOption compacts(
      QStringLiteral("compacts"), QStringLiteral("unclosed compacts of the first account (5000)"), QStringLiteral("N"));
  const QCommandLineOption closed(QStringLiteral("closed"),
                                  QStringLiteral("closed compacts of the first account (240)"), QStringLiteral("N"));
  const QCommandLineOption changed(
      QStringLiteral("changed"),
      QStringLiteral("unclosed compacts of each account with change details, at most (50000)"), QStringLiteral("N"));
  const QCommandLineOption seed(QStringLiteral("seed"), QStringLiteral("another seed gives other compacts (1)"),
                                QStringLiteral("S"));
  parser.addOptions({compacts, closed, changed, seed});
  parser.process(application);

  counter::CBookGeneratorOptions options;
  for (const auto& [option, number] : {std::pair{&compacts, &options.compacts}, std::pair{&closed, &options.closed},
                                       std::pair{&changed, &options.changed}})
    if (parser.isSet(*option) && !readNumber(parser.value(*option), counter::CBookGenerator::MAX_COMPACTS, *number))
      return refuse(QStringLiteral("--%1 takes a whole number from 0 to %2, got \"%3\"")
                        .arg(option->names().front())
                        .arg(counter::CBookGenerator::MAX_COMPACTS)
                        .arg(parser.value(*option)));
  if (parser.isSet(seed) && !readNumber(parser.value(seed), std::numeric_limits<std::uint32_t>::max(), options.seed))
    return refuse(QStringLiteral("--seed takes a whole number from 0 to %1, got \"%2\"")
                      .arg(std::numeric_limits<std::uint32_t>::max())
                      .arg(parser.value(seed)));
  if (parser.positionalArguments().size() != 1) return refuse(QStringLiteral("expected one folder; see --help"));

  const auto error = counter::CBookGenerator(options).write(parser.positionalArguments().front().toStdString());
  if (error.empty()) return 0;
  std::fprintf(stderr, "compacts-book: %s\n", error.c_str());
  return 1;
}
