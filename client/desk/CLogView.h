#pragma once

#include "utils/CSubscription.h"

#include <QPlainTextEdit>
#include <QStringList>

#include <mutex>

/// The client's log lines as they are written. Lines arrive from every thread and are shown a few times a second.
class CLogView : public QPlainTextEdit {
 public:
  explicit CLogView(QWidget* parent);
  ~CLogView() override;

 protected:
  void timerEvent(QTimerEvent* event) override;

 private:
  std::mutex m_mutex;
  QStringList m_waiting;  ///< under m_mutex
  utils::CSubscriptionPtr m_listener;
};
