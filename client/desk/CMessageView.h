#pragma once

#include <QListWidget>

/// Messages to the user, newest last: log-ins and their failures.
class CMessageView : public QListWidget {
 public:
  explicit CMessageView(QWidget* parent);

  void addMessage(const QString& text);
};
