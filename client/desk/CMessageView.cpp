#include "CMessageView.h"

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QStyle>
#include <QTime>
#include <QTimer>

#include <algorithm>

namespace {

constexpr int SHOWN_MESSAGES = 1000;
constexpr int LINES_OF_BOX = 12;
constexpr int MOST_BEEPS = 5;
constexpr int BEEP_PERIOD_MS = 400;

}  // namespace

CMessageView::CMessageView(QWidget* parent) : QListWidget(parent) {
  setAccessibleName(QStringLiteral("消息"));
  setAlternatingRowColors(true);
  m_subscription =
      VN::CMsgService::subscribe([this](const VN::CMsgService::CMessage& message) { showMessage(message); });
}

CMessageView::~CMessageView() { delete m_box.data(); }

void CMessageView::addMessage(const QString& text) {
  addItem(QTime::currentTime().toString(QStringLiteral("HH:mm:ss  ")) + text);
  if (count() > SHOWN_MESSAGES) delete takeItem(0);
  scrollToBottom();
}

void CMessageView::showMessage(const VN::CMsgService::CMessage& message) {
  addMessage(message.text);
  if (message.level == VN::CMsgService::LevelError)
    item(count() - 1)->setIcon(style()->standardIcon(QStyle::SP_MessageBoxWarning));
  if (message.isPopup) popUp(message);
  if (!message.hasSound) return;
  for (int i = 0; i < std::min(message.times, MOST_BEEPS); ++i)
    QTimer::singleShot(i * BEEP_PERIOD_MS, this, [] { QApplication::beep(); });
}

/// A message that comes while the box is open joins the former ones in it.
void CMessageView::popUp(const VN::CMsgService::CMessage& message) {
  QStringList lines;
  if (m_box && m_box->isVisible()) {
    lines = m_box->text().split(QLatin1Char('\n'));
  } else {
    m_box = new QMessageBox(window());
    m_box->setAttribute(Qt::WA_DeleteOnClose);
    m_box->setTextFormat(Qt::PlainText);  // texts quote answers of the counter
    m_box->addButton(QStringLiteral("关闭"), QMessageBox::AcceptRole);
    m_box->setModal(false);
  }
  lines += message.text.split(QLatin1Char('\n'));
  const bool isError = message.level == VN::CMsgService::LevelError;
  if (isError || m_box->icon() == QMessageBox::NoIcon)
    m_box->setIcon(isError ? QMessageBox::Warning : QMessageBox::Information);
  m_box->setWindowTitle(message.title.isEmpty() ? QStringLiteral("消息") : message.title);
  m_box->setText(QStringList(lines.mid(std::max(0, lines.size() - LINES_OF_BOX))).join(QLatin1Char('\n')));
  m_box->show();
}
