// Work beside the GUI thread: painting goes on, cancelling, the end of windows and of the program; and that a file is
// written as a whole or not at all.

#include "file_kit.h"

#include "gw/files/CFileJob.h"
#include "gw/files/xlsx_writer.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QProgressDialog>
#include <QPushButton>
#include <QTimer>

#include <csignal>
#include <memory>
#include <thread>

#include <sys/resource.h>

namespace {

QString u(const char* text) { return QString::fromUtf8(text); }

/// A widget that asks to be painted again whenever it was painted.
class CPainted : public QWidget {
 public:
  int paints = 0;

 protected:
  void paintEvent(QPaintEvent*) override {
    ++paints;
    update();
  }
};

void spend(int microseconds) {
  QElapsedTimer timer;
  timer.start();
  while (timer.nsecsElapsed() < microseconds * qint64{1000}) {
  }
}

/// Hands over rows until it is cancelled.
void putForEver(GW::CFileJob& job) {
  while (job.put({u("row")})) {
  }
}

/// Calls `act` with the box of the job that runs, once there is one.
void whenBoxShows(QObject& context, std::function<void(QProgressDialog&)> act) {
  auto* const timer = new QTimer(&context);
  QObject::connect(timer, &QTimer::timeout, &context, [timer, act] {
    auto* const box = qobject_cast<QProgressDialog*>(QApplication::activeModalWidget());
    if (box == nullptr) return;
    timer->stop();
    act(*box);
  });
  timer->start(1);
}

TEST(FileJob, WindowsArePaintedWhileRowsComeInOrder) {
  CPainted window;
  window.show();
  int next = 0;
  constexpr int ROWS = 20'000;
  const bool isWhole = GW::CFileJob().run(
      u("…"),
      [](GW::CFileJob& job) {
        for (int i = 0; i < ROWS; ++i) job.put({QString::number(i)});
      },
      [&next](const QStringList& row) {
        EXPECT_EQ(row.first().toInt(), next);
        ++next;
        spend(20);
      });
  EXPECT_TRUE(isWhole);
  EXPECT_EQ(next, ROWS);
  // 400 ms of callbacks in turns of 8 ms; half of that leaves room for a busy machine.
  EXPECT_GE(window.paints, 25);
}

TEST(FileJob, IsCancelledByItsBox) {
  QObject context;
  whenBoxShows(context, [](QProgressDialog& box) {
    EXPECT_EQ(box.labelText(), u("正在读取…"));
    EXPECT_EQ(box.windowModality(), Qt::ApplicationModal);
    box.findChild<QPushButton*>()->click();
  });
  int rows = 0;
  EXPECT_FALSE(GW::CFileJob().run(u("正在读取…"), putForEver, [&rows](const QStringList&) { ++rows; }));
  EXPECT_GT(rows, 0);
}

TEST(FileJob, EndsWithItsWindowAndWithTheProgram) {
  QObject context;
  auto window = std::make_unique<QWidget>();
  window->show();
  QApplication::setActiveWindow(window.get());
  whenBoxShows(context, [&window](QProgressDialog& box) {
    EXPECT_EQ(box.parentWidget(), window.get());
    window.reset();
  });
  EXPECT_FALSE(GW::CFileJob().run(u("…"), putForEver, [](const QStringList&) {}));
  EXPECT_EQ(window, nullptr);

  QTimer::singleShot(0, &context, [] { QCoreApplication::quit(); });
  EXPECT_FALSE(GW::CFileJob().run(u("…"), putForEver, [](const QStringList&) {}));
  // Event loops do not run any more, yet what is begun now is done.
  int rows = 0;
  const auto putMany = [](GW::CFileJob& job) {
    for (int i = 0; i < 10'000; ++i) job.put({u("row")});
  };
  EXPECT_TRUE(GW::CFileJob().run(u("…"), putMany, [&rows](const QStringList&) { ++rows; }));
  EXPECT_EQ(rows, 10'000);
  QTimer::singleShot(0, &context, [] { QCoreApplication::quit(); });
  QCoreApplication::exec();  // after which event loops run again

  std::thread other([] { EXPECT_TRUE(GW::CFileJob().run(u("…"), [](GW::CFileJob&) {})); });
  other.join();
}

TEST(Writing, TextHasAMarkAndUnixLineEnds) {
  const QTemporaryDir folder;
  const QString path = folder.filePath(u("规则.csv"));
  store(path, "old");
  EXPECT_TRUE(GW::writeFile(18, path, u("代码,600\n"), true));
  EXPECT_EQ(contentOf(path), QByteArray("\xEF\xBB\xBF") + u("代码,600\n").toUtf8());
  const QString large = QString(65'535, QLatin1Char('x')) + u("𠮷") + QString(100'000, QLatin1Char('y'));
  EXPECT_TRUE(GW::writeFile(18, path, large, true));
  EXPECT_EQ(readLines(path).lines, QStringList(large));
  EXPECT_TRUE(GW::writeFile(QIODevice::Append, path, u("\n尾"), false));
  EXPECT_EQ(readLines(path).lines, QStringList({large, u("尾")}));
  EXPECT_FALSE(GW::writeFile(QIODevice::Append, path, u("x"), true));
  EXPECT_FALSE(GW::writeFile(QIODevice::ReadOnly, path, u("x"), true));
}

TEST(Writing, LeavesTheOldFileWhereItCannotBeDone) {
  const QTemporaryDir folder;
  const QString path = folder.filePath(u("rules.xlsx"));
  store(path, "old");
  QList<QStringList> rows;
  for (int i = 0; i < 20'000; ++i) rows += QStringList{QString::number(i * 7919), u("x")};
  const QString text(1 << 20, QLatin1Char('x'));

  // A disk that takes no more, small enough for either file to be too large.
  rlimit old{};
  ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &old), 0);
  const auto handler = std::signal(SIGXFSZ, SIG_IGN);
  const rlimit small{32'768, old.rlim_max};
  setrlimit(RLIMIT_FSIZE, &small);
  const bool isTextWritten = GW::writeFile(18, path, text, true);
  const bool isSheetWritten = GW::CXlsxReader::write(path, rows);
  setrlimit(RLIMIT_FSIZE, &old);
  std::signal(SIGXFSZ, handler);
  EXPECT_FALSE(isTextWritten);
  EXPECT_FALSE(isSheetWritten);

  EXPECT_FALSE(GW::writeXlsx(path, rows, GW::CCancelFlag(true)));
  for (const QString& place : {folder.filePath(u("none/rules.csv")), folder.path(), QString()}) {
    EXPECT_FALSE(GW::writeFile(18, place, text, true)) << place.toStdString();
    EXPECT_FALSE(GW::CXlsxReader::write(place, rows)) << place.toStdString();
  }
  EXPECT_EQ(contentOf(path), "old");
  EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files), QStringList(u("rules.xlsx")));
  EXPECT_TRUE(GW::CXlsxReader::write(path, rows));
  EXPECT_EQ(readLines(path).lines.size(), rows.size());
}

}  // namespace
