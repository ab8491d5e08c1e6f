#pragma once

#include <QCommandLineParser>
#include <QString>

#include <initializer_list>
#include <vector>

/// A whole number that the command line may give.
struct CNumberOption {
  const char* name;
  const char* text;
  int usual;
};

/// The numbers given, or the usual ones, in the order of `options`. Ends the program with a message when the command
/// line is wrong or asks for help.
inline std::vector<int> numbersGiven(const QCoreApplication& application,
                                     std::initializer_list<CNumberOption> options) {
  QCommandLineParser parser;
  parser.addHelpOption();
  for (const CNumberOption& option : options)
    parser.addOption({QString::fromUtf8(option.name), QString::fromUtf8(option.text), QStringLiteral("N"),
                      QString::number(option.usual)});
  parser.process(application);
  std::vector<int> numbers;
  for (const CNumberOption& option : options) numbers.push_back(parser.value(QString::fromUtf8(option.name)).toInt());
  return numbers;
}
