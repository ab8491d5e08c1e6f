#pragma once

#include "gw/files/table_reading.h"

#include "utils/CMutex.h"

#include <QString>
#include <QStringList>

#include <condition_variable>
#include <functional>
#include <memory>
#include <vector>

namespace GW {

/// Work on a file that goes on beside the GUI thread, and its way of handing rows over to it.
class CFileJob {
 public:
  /// Runs on the job's own thread; ends soon once `isCancelled`.
  using CWork = std::function<void(CFileJob& job)>;
  /// Runs on the thread that called `run`.
  using CUseRow = std::function<void(const QStringList& row)>;

  CFileJob();
  ~CFileJob();

  /// Runs the work and returns when it is done. On the GUI thread in an event loop: windows are painted, the user's
  /// input goes nowhere, and after half a second a modal box says `text` and lets the user cancel; the loop takes
  /// turns of at most 8 ms. On other threads, and without widgets, the work runs on the caller's thread.
  /// False when it was cancelled, by the user, because the window of the box went, or because the program quits.
  bool run(const QString& text, const CWork& work, const CUseRow& useRow = {});

  /// For the work: hands over one row, and waits while too many are under way. False once the job is cancelled.
  bool put(QStringList&& row);
  const CCancelFlag& isCancelled() const { return m_isCancelled; }

 private:
  class CLoop;

  void runBeside(const QString& text, const CWork& work);
  void cancel();
  bool takeBatch(std::vector<QStringList>& batch);
  bool isOver();

  CCancelFlag m_isCancelled{false};
  CUseRow m_useRow;
  CLoop* m_loop = nullptr;  ///< null when the work runs on the caller's thread
  utils::CMutex m_mutex;
  std::condition_variable m_changed;
  std::vector<QStringList> m_rows TS_GUARDED_BY(m_mutex);  ///< those that wait for the GUI thread
  qint64 m_chars TS_GUARDED_BY(m_mutex) = 0;               ///< of those
  bool m_isDone TS_GUARDED_BY(m_mutex) = false;
};

}  // namespace GW
