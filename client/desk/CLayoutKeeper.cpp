#include "CLayoutKeeper.h"

#include "vn/ITradeDockableWidget.h"

#include <QDataStream>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMainWindow>
#include <QSaveFile>

#include <algorithm>
#include <utility>

namespace {

constexpr int SAVE_PERIOD_MS = 3000;
constexpr int STATE_VERSION = 1;
constexpr qint64 MOST_BYTES = 4 << 20;
constexpr int MOST_KEPT_ASIDE = 1000;

CDeskLayout::CPanelKey keyOf(const VN::ITradeDockableWidget& panel) {
  return {panel.typeKey(), QString::fromStdString(panel.panelId())};
}

}  // namespace

CLayoutKeeper::CLayoutKeeper(QMainWindow& window, const QString& path) : m_window(window), m_path(path) {
  read();
  if (!m_layout.geometry.isEmpty() && !m_window.restoreGeometry(m_layout.geometry))
    m_readProblem = QStringLiteral("window.geometry 不是窗口位置");
}

CLayoutKeeper::~CLayoutKeeper() { save(); }

void CLayoutKeeper::read() {
  QFile file(m_path);
  if (!file.exists()) return;
  if (!file.open(QIODevice::ReadOnly)) {
    m_readProblem = file.errorString();
  } else if (file.size() > MOST_BYTES) {
    m_readProblem = QStringLiteral("超过 %1 字节").arg(MOST_BYTES);
  } else {
    m_written = file.readAll();
    m_readProblem = readLayoutText(m_written, m_layout);
    m_isRead = m_readProblem.isEmpty();
  }
}

bool CLayoutKeeper::restore(std::vector<VN::ITradeDockableWidget*> panels, CReport report) {
  m_panels = std::move(panels);
  m_report = std::move(report);
  m_mayWrite = true;
  bool docksRestored = false;
  if (m_readProblem.isEmpty() && !m_layout.state.isEmpty()) {
    docksRestored = m_window.restoreState(m_layout.state, STATE_VERSION);
    if (!docksRestored) m_readProblem = QStringLiteral("window.state 不是停靠布局");
  }
  for (VN::ITradeDockableWidget* panel : m_panels) setParam(*panel);
  if (!m_readProblem.isEmpty()) keepAside(m_readProblem);
  startTimer(SAVE_PERIOD_MS);
  return docksRestored;
}

std::vector<CDeskLayout::CPanelKey> CLayoutKeeper::openPanels() const {
  std::vector<CDeskLayout::CPanelKey> open;
  for (const auto& [key, param] : m_layout.params)
    if (m_layout.closed.count(key) == 0) open.push_back(key);
  return open;
}

void CLayoutKeeper::setParam(VN::ITradeDockableWidget& panel) const {
  const auto param = m_layout.params.find(keyOf(panel));
  if (param != m_layout.params.end()) panel.setParam(param->second);
}

void CLayoutKeeper::addPanel(VN::ITradeDockableWidget& panel) {
  setParam(panel);
  m_panels.push_back(&panel);
}

void CLayoutKeeper::removePanel(VN::ITradeDockableWidget& panel) {
  const auto gone = std::remove(m_panels.begin(), m_panels.end(), &panel);
  if (gone == m_panels.end()) return;
  m_panels.erase(gone, m_panels.end());
  m_layout.params[keyOf(panel)] = panel.param();
  m_layout.closed.insert(keyOf(panel));
}

/// `QMainWindow::saveState` writes the names of the docks as a QDataStream does.
bool CLayoutKeeper::hasPlaceOf(const QString& dockName) const {
  QByteArray name;
  QDataStream stream(&name, QIODevice::WriteOnly);
  stream << dockName;
  return m_layout.state.contains(name);
}

void CLayoutKeeper::keepAside(const QString& why) {
  m_written.clear();
  QString aside = m_path + QStringLiteral(".damaged");
  for (int i = 2; QFileInfo::exists(aside) && i <= MOST_KEPT_ASIDE; ++i)
    aside = m_path + QStringLiteral(".damaged-%1").arg(i);
  m_mayWrite = QFile::rename(m_path, aside);
  const QString file = QDir::toNativeSeparators(m_path);
  m_report(m_mayWrite
               ? QStringLiteral("布局文件 %1 有误（%2），已改名为 %3").arg(file, why, QFileInfo(aside).fileName())
               : QStringLiteral("布局文件 %1 有误（%2），且不能改名，本次不保存布局").arg(file, why));
}

QByteArray CLayoutKeeper::presentText() {
  m_layout.geometry = m_window.saveGeometry();
  m_layout.state = m_window.saveState(STATE_VERSION);
  for (const VN::ITradeDockableWidget* panel : m_panels) {
    m_layout.params[keyOf(*panel)] = panel->param();
    m_layout.closed.erase(keyOf(*panel));
  }
  return layoutText(m_layout);
}

void CLayoutKeeper::save() {
  if (!m_mayWrite) return;
  const QByteArray text = presentText();
  if (text == m_written) return;
  QSaveFile file(m_path);
  const bool written = file.open(QIODevice::WriteOnly) && file.write(text) == text.size() && file.commit();
  if (written) m_written = text;
  const QString problem = written ? QString() : file.errorString();
  if (!problem.isEmpty() && problem != m_writeProblem)
    m_report(QStringLiteral("布局文件 %1 不能保存: %2").arg(QDir::toNativeSeparators(m_path), problem));
  m_writeProblem = problem;
}

void CLayoutKeeper::timerEvent(QTimerEvent*) { save(); }
