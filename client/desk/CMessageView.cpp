#include "CMessageView.h"

#include <QTime>

namespace {

constexpr int SHOWN_MESSAGES = 1000;

}  // namespace

CMessageView::CMessageView(QWidget* parent) : QListWidget(parent) {
  setAccessibleName(QStringLiteral("消息"));
  setAlternatingRowColors(true);
}

void CMessageView::addMessage(const QString& text) {
  addItem(QTime::currentTime().toString(QStringLiteral("HH:mm:ss  ")) + text);
  if (count() > SHOWN_MESSAGES) delete takeItem(0);
  scrollToBottom();
}
