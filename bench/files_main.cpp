// Export and import of a large priority table, as text and as a spreadsheet, beside openpyxl doing the same with its
// modes for large files, in turn in one run. Prints the medians, their ratio, and whether the goals are met.

#include "bench_options.h"

#include "vn/CFileClient.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>

#include <fmt/format.h>

#include <algorithm>
#include <functional>
#include <vector>

namespace {

constexpr double TEXT_GOAL = 1.0 / 3;
constexpr double SHEET_GOAL = 1;

using CTimes = std::vector<double>;  ///< seconds

double median(CTimes values) {
  std::sort(values.begin(), values.end());
  return values.empty() ? 0 : values[values.size() / 2];
}

QList<QStringList> tableOf(int rows) {
  QList<QStringList> table{{QStringLiteral("资金账号"), QStringLiteral("交易所"), QStringLiteral("证券代码"),
                            QStringLiteral("开仓日期"), QStringLiteral("委托编号"), QStringLiteral("偿还优先级"),
                            QStringLiteral("偿还优先级设置")}};
  for (int i = 0; i < rows; ++i)
    table += {QStringLiteral("80001"),
              i % 2 ? QStringLiteral("SH") : QStringLiteral("深圳"),
              QStringLiteral("%1").arg(i % 999'983, 6, 10, QLatin1Char('0')),
              QStringLiteral("20240105"),
              QString::number(1'000'000 + i),
              QString::number(i % 100),
              QString::number(i + 1)};
  return table;
}

QString textOf(const QList<QStringList>& table) {
  QString text;
  for (const QStringList& row : table) text += row.join(QLatin1Char(',')) + QLatin1Char('\n');
  return text;
}

/// Seconds of the action; ends the program when it fails.
double timed(const char* what, const std::function<bool()>& action) {
  QElapsedTimer timer;
  timer.start();
  if (!action()) {
    fmt::print(stderr, "bench_files: {} failed\n", what);
    std::exit(1);
  }
  return static_cast<double>(timer.nsecsElapsed()) / 1e9;
}

bool readsAll(VN::EFileType type, const QString& path, int lines) {
  int result = -1;
  int count = 0;
  VN::CFileClient::readFileByLine(result, type, path, [&](const QString& line) { count += line.size() > 7; });
  return result == GW::ReadWhole && count == lines;
}

/// Lets openpyxl write and read as many rows; it tells the seconds of both.
bool askPeer(const QString& folder, int rows, CTimes& writes, CTimes& reads) {
  QProcess python;
  python.start(QStringLiteral("/usr/bin/python3"), {QStringLiteral(SOURCE_DIR "/bench/openpyxl_peer.py"),
                                                    folder + QStringLiteral("/peer.xlsx"), QString::number(rows)});
  if (!python.waitForFinished(600'000) || python.exitCode() != 0) return false;
  const QList<QByteArray> seconds = python.readAllStandardOutput().split(' ');
  writes.push_back(seconds.value(0).toDouble());
  reads.push_back(seconds.value(1).toDouble());
  return writes.back() > 0 && reads.back() > 0;
}

void tell(const char* what, const CTimes& ours, const CTimes& peers, double goal) {
  const double ratio = median(ours) / median(peers);
  fmt::print("{:<14} {:7.3f} s   openpyxl {:7.3f} s   ratio {:5.3f}   goal {:.2f}: {}\n", what, median(ours),
             median(peers), ratio, goal, ratio < goal ? "met" : "MISSED");
}

int run(int rows, int rounds) {
  const QTemporaryDir folder;
  const QString text = folder.filePath(QStringLiteral("ours.csv"));
  const QString sheet = folder.filePath(QStringLiteral("ours.xlsx"));
  const QList<QStringList> table = tableOf(rows);
  CTimes textWrites, textReads, sheetWrites, sheetReads, peerWrites, peerReads;
  for (int round = 0; round < rounds; ++round) {
    textWrites.push_back(timed("text export", [&] { return GW::writeFile(18, text, textOf(table), true); }));
    textReads.push_back(timed("text import", [&] { return readsAll(VN::FileTypeCsv, text, rows + 1); }));
    sheetWrites.push_back(timed("sheet export", [&] { return GW::CXlsxReader::write(sheet, table); }));
    sheetReads.push_back(timed("sheet import", [&] { return readsAll(VN::FileTypeXlsx, sheet, rows + 1); }));
    if (askPeer(folder.path(), rows, peerWrites, peerReads)) continue;
    fmt::print(stderr, "bench_files: openpyxl did not run\n");
    return 1;
  }
  fmt::print("{} rows of 7 cells, medians of {}\n", rows, rounds);
  tell("text export", textWrites, peerWrites, TEXT_GOAL);
  tell("text import", textReads, peerReads, TEXT_GOAL);
  tell("sheet export", sheetWrites, peerWrites, SHEET_GOAL);
  tell("sheet import", sheetReads, peerReads, SHEET_GOAL);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  const std::vector<int> given =
      numbersGiven(application, {{"rows", "rows of the table", 100000}, {"rounds", "measured rounds", 3}});
  return run(given[0], given[1]);
}
