#include "CDeskOptions.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QStandardPaths>

#include <cstdio>

bool readDeskOptions(const QStringList& arguments, CDeskOptions& options) {
  QCommandLineParser parser;
  parser.setApplicationDescription(
      QStringLiteral("A trading desk on an embedded counter, with the compacts panel docked."));
  parser.addHelpOption();
  const QString defaultData = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
  const QString share = QCoreApplication::applicationDirPath() + QStringLiteral("/../share/PanelCompacts");
  const QCommandLineOption book(QStringLiteral("book"), QStringLiteral("Load the book of CSV files in <dir> first."),
                                QStringLiteral("dir"));
  const QCommandLineOption data(QStringLiteral("data"), QStringLiteral("Keep database, log and layout in <dir>."),
                                QStringLiteral("dir"), defaultData);
  const QCommandLineOption config(QStringLiteral("config"), QStringLiteral("Read the configuration files in <dir>."),
                                  QStringLiteral("dir"), share + QStringLiteral("/config"));
  const QCommandLineOption shots(QStringLiteral("shots"),
                                 QStringLiteral("Walk through every view, save pictures in <dir>, and end."),
                                 QStringLiteral("dir"));
  parser.addOptions({book, data, config, shots});
  if (!parser.parse(arguments) || !parser.positionalArguments().isEmpty()) {
    const QString error = parser.errorText().isEmpty()
                              ? QStringLiteral("Unexpected argument '%1'.").arg(parser.positionalArguments().value(0))
                              : parser.errorText();
    std::fprintf(stderr, "%s\n\n%s", qPrintable(error), qPrintable(parser.helpText()));
    return false;
  }
  if (parser.isSet(QStringLiteral("help"))) parser.showHelp();
  options.book = parser.value(book);
  options.data = parser.value(data);
  options.config = parser.value(config);
  options.shots = parser.value(shots);
  return true;
}
