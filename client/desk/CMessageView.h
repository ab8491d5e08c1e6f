#pragma once

#include "vn/CMsgService.h"

#include <QList>
#include <QListWidget>
#include <QPointer>

class QMessageBox;

/// Messages to the user, newest last: log-ins and their failures, and what the panels tell.
class CMessageView : public QListWidget {
 public:
  explicit CMessageView(QWidget* parent);
  ~CMessageView() override;

  void addMessage(const QString& text);

 private:
  void showMessage(const VN::CMsgService::CMessage& message);
  void settleSoon();
  void settle();
  void popUp();

  QPointer<QMessageBox> m_box;  ///< at most one; deletes itself when it is closed
  /// What waits for `settle`: messages come by the thousand, and what makes room and noise for them comes once.
  QList<VN::CMsgService::CMessage> m_popUps;
  int m_beeps = 0;
  bool m_isSettling = false;
  utils::CSubscriptionPtr m_subscription;
};
