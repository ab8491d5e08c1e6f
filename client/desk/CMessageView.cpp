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
  setUniformItemSizes(true);
  m_subscription =
      VN::CMsgService::subscribe([this](const VN::CMsgService::CMessage& message) { showMessage(message); });
}

CMessageView::~CMessageView() { delete m_box.data(); }

void CMessageView::addMessage(const QString& text) {
  addItem(QTime::currentTime().toString(QStringLiteral("HH:mm:ss  ")) + text);
  settleSoon();
}

void CMessageView::showMessage(const VN::CMsgService::CMessage& message) {
  addMessage(message.text);
  if (message.level == VN::CMsgService::LevelError)
    item(count() - 1)->setIcon(style()->standardIcon(QStyle::SP_MessageBoxWarning));
  if (message.isPopup) m_popUps.push_back(message);
  if (m_popUps.size() > LINES_OF_BOX) m_popUps.removeFirst();
  if (message.hasSound) m_beeps = std::clamp(message.times, m_beeps, MOST_BEEPS);
}

void CMessageView::settleSoon() {
  if (m_isSettling) return;
  m_isSettling = true;
  QTimer::singleShot(0, this, [this] { settle(); });
}

void CMessageView::settle() {
  m_isSettling = false;
  if (count() > SHOWN_MESSAGES) model()->removeRows(0, count() - SHOWN_MESSAGES);
  scrollToBottom();
  for (int i = 0; i < m_beeps; ++i) QTimer::singleShot(i * BEEP_PERIOD_MS, this, [] { QApplication::beep(); });
  m_beeps = 0;
  if (!m_popUps.isEmpty()) popUp();
}

/// Messages that come while the box is open join the former ones in it.
void CMessageView::popUp() {
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
  for (const VN::CMsgService::CMessage& message : qAsConst(m_popUps)) {
    lines += message.text.split(QLatin1Char('\n'));
    const bool isError = message.level == VN::CMsgService::LevelError;
    if (isError || m_box->icon() == QMessageBox::NoIcon)
      m_box->setIcon(isError ? QMessageBox::Warning : QMessageBox::Information);
    m_box->setWindowTitle(message.title.isEmpty() ? QStringLiteral("消息") : message.title);
  }
  m_popUps.clear();
  m_box->setText(QStringList(lines.mid(std::max(0, lines.size() - LINES_OF_BOX))).join(QLatin1Char('\n')));
  m_box->show();
}
