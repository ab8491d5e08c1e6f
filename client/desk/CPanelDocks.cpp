#include "CPanelDocks.h"

#include "CLayoutKeeper.h"
#include "CPanelHost.h"
#include "appointment/CQueryAppointmentInfoPanel.h"
#include "compacts/CCompactsPanel.h"
#include "compacts/panel_ids.h"
#include "orderpanel/COrderPanel.h"
#include "vn/CUserConfig.h"

#include <QCloseEvent>
#include <QDockWidget>
#include <QMainWindow>
#include <QMenu>

#include <algorithm>
#include <functional>
#include <iterator>
#include <utility>

namespace {

constexpr int MOST_NUMBER = 999;
constexpr const char* COMPACTS_TYPE = "cpt";

/// Tells when the user has closed it.
class CClosingDock : public QDockWidget {
 public:
  CClosingDock(const QString& title, QWidget* parent, std::function<void()> closed)
      : QDockWidget(title, parent), m_closed(std::move(closed)) {}

 protected:
  void closeEvent(QCloseEvent* event) override {
    QDockWidget::closeEvent(event);
    if (event->isAccepted() && m_closed) std::exchange(m_closed, nullptr)();
  }

 private:
  std::function<void()> m_closed;
};

VN::ITradeDockableWidget* makeCompacts(int number, QWidget* parent) {
  auto* panel = new VN::CCompactsPanel(number, parent, VN::ModeIndependent);
  new CPanelHost(panel);
  return panel;
}

VN::ITradeDockableWidget* makeAppointments(int number, QWidget* parent) {
  auto* panel = new VN::CQueryAppointmentInfoPanel(number, parent);
  new CPanelHost(panel);
  return panel;
}

VN::ITradeDockableWidget* makeOrderPanel(int number, QWidget* parent) { return new COrderPanel(number, parent); }

}  // namespace

struct CPanelDocks::CKind {
  const char* typeKey;
  const char* dockName;
  const char* menuText;
  VN::ITradeDockableWidget* (*make)(int number, QWidget* parent);
};

const CPanelDocks::CKind CPanelDocks::KINDS[] = {
    {COMPACTS_TYPE, "compacts", "新建融资融券合约面板", &makeCompacts},
    {COrderPanel::TYPE_KEY, "orderPanel", "新建下单面板", &makeOrderPanel},
    {"crdaq", "appointments", "新建预约展期面板", &makeAppointments},
};

CPanelDocks::CPanelDocks(QMainWindow& window, CLayoutKeeper* keeper) : m_window(window), m_keeper(keeper) {}

CPanelDocks::~CPanelDocks() = default;

const CPanelDocks::CKind* CPanelDocks::kindOf(const QString& typeKey) {
  const auto* const kind = std::find_if(std::begin(KINDS), std::end(KINDS),
                                        [&](const CKind& one) { return typeKey == QLatin1String(one.typeKey); });
  return kind == std::end(KINDS) ? nullptr : kind;
}

bool CPanelDocks::isFree(int number) const {
  return std::none_of(m_panels.begin(), m_panels.end(), [&](const CPanel& panel) { return panel.number == number; });
}

CPanelDocks::CPanel& CPanelDocks::add(const CKind& kind, int number) {
  VN::ITradeDockableWidget* panel = kind.make(number, &m_window);
  QString title = panel->dockInfo().title;
  if (number > 1) title += QStringLiteral(" %1").arg(number);
  auto* dock = new CClosingDock(title, &m_window, [this, number] { close(number); });
  dock->setObjectName(QString::fromLatin1(kind.dockName) + QString::number(number));
  dock->setWidget(panel);
  place(dock);
  const auto behind =
      std::find_if(m_panels.begin(), m_panels.end(), [&](const CPanel& other) { return other.number > number; });
  return *m_panels.insert(behind, {number, panel, dock});
}

/// Among the tabs of the panel opened last that is docked; else at the top.
void CPanelDocks::place(QDockWidget* dock) {
  const auto other = std::find_if(m_panels.rbegin(), m_panels.rend(), [&](const CPanel& panel) {
    return panel.dock != dock && !panel.dock->isFloating() &&
           m_window.dockWidgetArea(panel.dock) != Qt::NoDockWidgetArea;
  });
  if (other == m_panels.rend())
    m_window.addDockWidget(Qt::TopDockWidgetArea, dock);
  else
    m_window.tabifyDockWidget(other->dock, dock);
}

void CPanelDocks::openKept() {
  if (m_keeper == nullptr || !m_keeper->hasLayout()) {
    open(QString::fromLatin1(COMPACTS_TYPE));
    return;
  }
  for (const auto& [type, id] : m_keeper->openPanels()) {
    const CKind* kind = kindOf(type);
    const int number = id.toInt();
    const bool isNumber = number >= 1 && number <= MOST_NUMBER && id == QString::number(number);
    if (kind != nullptr && isNumber && isFree(number)) add(*kind, number);
  }
}

VN::ITradeDockableWidget* CPanelDocks::open(const QString& typeKey) {
  const CKind* kind = kindOf(typeKey);
  int number = 1;
  while (!isFree(number)) ++number;
  if (kind == nullptr || number > MOST_NUMBER) return nullptr;
  const CPanel panel = add(*kind, number);
  if (m_keeper != nullptr && m_keeper->isKeeping()) m_keeper->addPanel(*panel.panel);
  panel.dock->show();
  panel.dock->raise();
  return panel.panel;
}

/// The dock goes when the event loop is reached again: what closed it may be its own button.
void CPanelDocks::close(int number) {
  const auto closed =
      std::find_if(m_panels.begin(), m_panels.end(), [&](const CPanel& panel) { return panel.number == number; });
  if (closed == m_panels.end()) return;
  if (m_keeper != nullptr) m_keeper->removePanel(*closed->panel);
  QDockWidget* dock = closed->dock;
  m_panels.erase(closed);
  m_window.removeDockWidget(dock);
  dock->setObjectName(QString());  // the next one of that number may come before it has gone
  dock->deleteLater();
}

std::vector<VN::ITradeDockableWidget*> CPanelDocks::widgets() const {
  std::vector<VN::ITradeDockableWidget*> all;
  for (const CPanel& panel : m_panels) all.push_back(panel.panel);
  return all;
}

VN::CCompactsPanel* CPanelDocks::firstCompacts() const {
  for (const CPanel& panel : m_panels)
    if (auto* compacts = dynamic_cast<VN::CCompactsPanel*>(panel.panel)) return compacts;
  return nullptr;
}

void CPanelDocks::fillMenu(QMenu& menu) {
  for (const CKind& kind : KINDS)
    connect(menu.addAction(QString::fromUtf8(kind.menuText)), &QAction::triggered, this,
            [this, type = kind.typeKey] { open(QString::fromLatin1(type)); });
  menu.addSeparator();
  connect(&menu, &QMenu::aboutToShow, this, [this, &menu] { listPanels(menu); });
}

void CPanelDocks::listPanels(QMenu& menu) {
  const QList<QAction*> old = menu.actions().mid(static_cast<int>(std::size(KINDS)) + 1);
  for (QAction* action : old) delete action;
  for (const CPanel& panel : m_panels)
    connect(menu.addAction(panel.dock->windowTitle()), &QAction::triggered, panel.dock, [dock = panel.dock] {
      dock->show();
      dock->raise();
      dock->activateWindow();
    });
}

void CPanelDocks::tellCompactMode() const {
  const bool compact = VN::getUserConfig()->isCompactMode();
  for (const CPanel& panel : m_panels) {
    if (auto* compacts = dynamic_cast<VN::CCompactsPanel*>(panel.panel)) compacts->updateCompactIndex(compact);
    if (auto* orders = dynamic_cast<COrderPanel*>(panel.panel)) orders->updateCompactMode(compact);
  }
}
