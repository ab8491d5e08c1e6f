#pragma once

#include "vn/CMsgService.h"

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
  void popUp(const VN::CMsgService::CMessage& message);

  QPointer<QMessageBox> m_box;  ///< at most one; deletes itself when it is closed
  utils::CSubscriptionPtr m_subscription;
};
