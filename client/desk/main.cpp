// compacts-desk: a trading desk on an embedded counter.

#include "CDeskOptions.h"
#include "CMainWindow.h"
#include "CShotWalk.h"
#include "runtime/CClientRuntime.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QFutureWatcher>
#include <QMessageBox>
#include <QtConcurrent>

#include <atomic>
#include <cstdio>

namespace {

constexpr int EXIT_USAGE = 2;
constexpr int EXIT_INPUT = 3;

using runtime::CClientRuntime;

/// Tells why the desk cannot start, on standard error and, with a display, in a box.
void showFailure(CMainWindow& window, const CDeskOptions& options, const QString& what, const QString& errors) {
  std::fprintf(stderr, "%s\n%s\n", qPrintable(what), qPrintable(errors));
  if (options.shots.isEmpty())
    QMessageBox::critical(&window, window.windowTitle(), what + QStringLiteral("\n\n") + errors.left(4000));
  QApplication::exit(EXIT_INPUT);
}

void openClient(CMainWindow& window, const CDeskOptions& options, const QString& database) {
  CClientRuntime::CPaths paths;
  paths.configFolder = options.config.toStdString();
  paths.database = database.toStdString();
  paths.basketFile = QDir(options.data).filePath(QStringLiteral("baskets.json")).toStdString();
  paths.choicesFile = QDir(options.data).filePath(QStringLiteral("choices.json")).toStdString();
  paths.logFile = QDir(options.data).filePath(QStringLiteral("desk.log")).toStdString();
  std::vector<std::string> errors;
  std::unique_ptr<CClientRuntime> client = CClientRuntime::open(paths, errors);
  if (!client) {
    QString text;
    for (const std::string& error : errors) text += QString::fromStdString(error) + QLatin1Char('\n');
    showFailure(window, options, QStringLiteral("配置文件有误"), text);
    return;
  }
  window.startClient(std::move(client));
  if (!options.shots.isEmpty()) new CShotWalk(window, options.shots, &window);
}

/// Loading a book on a worker thread; its end gives the loading up and waits for it.
class CBookLoading {
 public:
  using CWatcher = QFutureWatcher<CClientRuntime::CLoadedBook>;

  ~CBookLoading() {
    m_giveUp = true;
    m_watcher.waitForFinished();
  }
  CWatcher& watcher() { return m_watcher; }
  void begin(const QString& book, const QString& database) {
    m_watcher.setFuture(QtConcurrent::run([this, folder = book.toStdString(), file = database.toStdString()] {
      return CClientRuntime::loadBook(folder, file, m_giveUp);
    }));
  }

 private:
  std::atomic<bool> m_giveUp{false};
  CWatcher m_watcher;
};

/// Loads the book, then opens the client; the window stays alive meanwhile.
void loadBookThenOpen(CMainWindow& window, CBookLoading& loading, const CDeskOptions& options, const QString& book,
                      const QString& database) {
  std::vector<std::string> errors;
  if (!CClientRuntime::checkConfig(options.config.toStdString(), errors)) {
    openClient(window, options, database);  // tells the errors; the database stays as it is
    return;
  }
  window.showState(QStringLiteral("正在载入账本 %1 …").arg(book));
  QObject::connect(&loading.watcher(), &QFutureWatcherBase::finished, &window,
                   [&window, &loading, options, book, database] {
                     const CClientRuntime::CLoadedBook loaded = loading.watcher().result();
                     if (!loaded.loaded) {
                       showFailure(window, options, QStringLiteral("账本 %1 未载入").arg(book),
                                   QString::fromStdString(loaded.errorText));
                       return;
                     }
                     std::fprintf(stderr, "book loaded: %s\n", loaded.summary.c_str());
                     openClient(window, options, database);
                   });
  loading.begin(book, database);
}

}  // namespace

int main(int argc, char** argv) {
  QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
  QApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
  QApplication application(argc, argv);
  QApplication::setApplicationName(QStringLiteral("compacts-desk"));
  CDeskOptions options;
  if (!readDeskOptions(QApplication::arguments(), options)) return EXIT_USAGE;
  if (!QDir().mkpath(options.data)) {
    std::fprintf(stderr, "cannot make the folder %s\n", qPrintable(options.data));
    return EXIT_INPUT;
  }

  // The walk shows the same each time: it neither takes up a layout nor leaves one.
  CMainWindow window(options.shots.isEmpty() ? QDir(options.data).filePath(QStringLiteral("layout.json")) : QString());
  CBookLoading loading;
  window.show();
  const QString database = QDir(options.data).filePath(QStringLiteral("counter.db"));
  QString book = options.book;
  if (book.isEmpty() && !QFileInfo::exists(database)) book = options.config + QStringLiteral("/../sample_book");
  QMetaObject::invokeMethod(
      &window,
      [&] {
        if (book.isEmpty())
          openClient(window, options, database);
        else
          loadBookThenOpen(window, loading, options, book, database);
      },
      Qt::QueuedConnection);
  return QApplication::exec();
}
