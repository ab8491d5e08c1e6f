#include "gw/files/CFileJob.h"

#include "utils/background.h"
#include "utils/threads.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QPointer>
#include <QProgressDialog>
#include <QTimer>

#include <thread>

namespace GW {

namespace {

constexpr int BOX_DELAY_MS = 500;
constexpr int TURN_MS = 8;
constexpr std::size_t MAX_ROWS = 4096;  ///< that wait for the GUI thread
constexpr qint64 MAX_CHARS = 1 << 22;

const QString CANCEL = QStringLiteral("取消");

/// What the event loop returns; negative when none can run because the program has quit.
enum ELoopEnd : int { LoopDone = 1, LoopBox = 2 };  // LoopBox: the box must come, or has gone

}  // namespace

/// The GUI thread's side of a job: uses up rows in short turns, shows the box. Lives in one call of `run`.
class CFileJob::CLoop : public QObject {
 public:
  CLoop(CFileJob& job, const QString& text) : m_job(job), m_text(text) {
    connect(&m_turns, &QTimer::timeout, this, [this] { turn(); });
    // Between two timers of no interval the event loop delivers everything else, so painting goes on.
    m_turns.setInterval(0);
  }
  ~CLoop() override {
    if (m_box) m_box->disconnect(this);
    delete m_box.data();
  }

  /// Any thread: there are rows, or the work is done.
  void wake() {
    QMetaObject::invokeMethod(
        this, [this] { m_turns.start(); }, Qt::QueuedConnection);
  }

  void exec() {
    QTimer::singleShot(BOX_DELAY_MS, &m_loop, [this] { m_loop.exit(LoopBox); });
    int end = m_loop.exec(QEventLoop::ExcludeUserInputEvents);
    if (end == LoopBox && !m_isOver) {
      showBox();
      end = m_loop.exec();
      // Cancelled: the box has gone, the work has not ended yet.
      while (end == LoopBox && !m_isOver) end = m_loop.exec(QEventLoop::ExcludeUserInputEvents);
    }
    if (end >= 0 && !m_isOver) m_job.cancel();  // the program quits
  }

  /// Uses up what waits, without regard to time.
  void useRest() {
    for (QStringList row; takeRow(row);) m_job.m_useRow(row);
  }

 private:
  void turn() {
    QElapsedTimer timer;
    timer.start();
    for (QStringList row; takeRow(row);) {
      m_job.m_useRow(row);
      if (timer.elapsed() >= TURN_MS) return;
    }
    m_turns.stop();
    m_isOver = m_job.isOver();
    if (m_isOver) m_loop.exit(LoopDone);
  }

  bool takeRow(QStringList& row) {
    if (m_job.m_isCancelled) return false;
    if (m_next == m_batch.size()) {
      m_batch.clear();
      m_next = 0;
      if (!m_job.takeBatch(m_batch)) return false;
    }
    row = std::move(m_batch[m_next++]);
    return true;
  }

  void showBox() {
    m_box = new QProgressDialog(m_text, CANCEL, 0, 0, QApplication::activeWindow());
    m_box->setWindowModality(Qt::ApplicationModal);
    m_box->setWindowTitle(QStringLiteral("提示"));
    const auto cancel = [this] {
      m_job.cancel();
      m_loop.exit(LoopBox);
    };
    connect(m_box.data(), &QProgressDialog::canceled, this, cancel);
    connect(m_box.data(), &QObject::destroyed, this, cancel);
    m_box->show();
  }

  CFileJob& m_job;
  const QString m_text;
  QEventLoop m_loop;
  QTimer m_turns;
  QPointer<QProgressDialog> m_box;
  std::vector<QStringList> m_batch;
  std::size_t m_next = 0;  ///< of the batch
  bool m_isOver = false;
};

CFileJob::CFileJob() = default;
CFileJob::~CFileJob() = default;

bool CFileJob::run(const QString& text, const CWork& work, const CUseRow& useRow) {
  m_useRow = useRow;
  if (utils::isGuiThread() && qobject_cast<QApplication*>(QCoreApplication::instance()) != nullptr)
    runBeside(text, work);
  else
    work(*this);
  return !m_isCancelled;
}

void CFileJob::runBeside(const QString& text, const CWork& work) {
  CLoop loop(*this, text);
  m_loop = &loop;
  std::thread thread([this, &work] {
    utils::workInBackground();
    work(*this);
    const utils::CMutexLock lock(m_mutex);
    m_isDone = true;
    m_changed.notify_all();
    m_loop->wake();
  });
  loop.exec();
  // Where no event loop runs rows are used up all the same, or the work would wait for room for ever.
  while (!isOver()) {
    {
      utils::CMutexLock lock(m_mutex);
      while (m_rows.empty() && !m_isDone) lock.wait(m_changed);
    }
    loop.useRest();
  }
  thread.join();
  m_loop = nullptr;
}

bool CFileJob::put(QStringList&& row) {
  if (m_isCancelled) return false;
  if (m_loop == nullptr) {
    m_useRow(row);
    return true;
  }
  utils::CMutexLock lock(m_mutex);
  while (!m_isCancelled && (m_rows.size() >= MAX_ROWS || m_chars >= MAX_CHARS)) lock.wait(m_changed);
  for (const QString& cell : row) m_chars += cell.size();
  m_rows.push_back(std::move(row));
  if (m_rows.size() == 1) {
    m_loop->wake();
    m_changed.notify_all();
  }
  return !m_isCancelled;
}

void CFileJob::cancel() {
  const utils::CMutexLock lock(m_mutex);
  m_isCancelled = true;
  m_changed.notify_all();
}

bool CFileJob::takeBatch(std::vector<QStringList>& batch) {
  const utils::CMutexLock lock(m_mutex);
  batch.swap(m_rows);
  m_chars = 0;
  m_changed.notify_all();
  return !batch.empty();
}

bool CFileJob::isOver() {
  const utils::CMutexLock lock(m_mutex);
  return m_isDone && (m_rows.empty() || m_isCancelled);
}

}  // namespace GW
