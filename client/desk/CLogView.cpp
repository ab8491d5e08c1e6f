#include "CLogView.h"

#include "utils/CLogCenter.h"

#include <QTime>

namespace {

constexpr int SHOWN_LINES = 5000;
constexpr int PERIOD_MS = 200;

QString levelText(int level) {
  if (level >= utils::LogError) return QStringLiteral("ERROR");
  if (level >= utils::LogWarn) return QStringLiteral("WARN");
  return QStringLiteral("INFO");
}

}  // namespace

CLogView::CLogView(QWidget* parent) : QPlainTextEdit(parent) {
  setReadOnly(true);
  setMaximumBlockCount(SHOWN_LINES);
  setLineWrapMode(NoWrap);
  setAccessibleName(QStringLiteral("日志"));
  m_listener = utils::CLogCenter::instance()->addListener([this](const utils::CLogLine& line) {
    const QString text = QStringLiteral("%1  %2  %3:%4  %5")
                             .arg(QTime::currentTime().toString(QStringLiteral("HH:mm:ss.zzz")), levelText(line.level),
                                  QString::fromStdString(line.file))
                             .arg(line.line)
                             .arg(QString::fromStdString(line.message));
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_waiting.size() < SHOWN_LINES) m_waiting.append(text);
  });
  startTimer(PERIOD_MS);
}

CLogView::~CLogView() { m_listener.reset(); }

void CLogView::timerEvent(QTimerEvent*) {
  QStringList lines;
  {
    const std::lock_guard<std::mutex> lock(m_mutex);
    lines.swap(m_waiting);
  }
  if (!lines.isEmpty()) appendPlainText(lines.join(QLatin1Char('\n')));
}
