#include "CShotWalk.h"

#include "CMainWindow.h"
#include "CPanelDocks.h"
#include "orderpanel/COrderPanel.h"
#include "orderpanel/order_panel_ids.h"

#include "compacts/CCompactsPanel.h"
#include "compacts/panel_ids.h"
#include "gw/CBaseHighPerformanceTable.h"
#include "gw/controls.h"
#include "vn/CCountDownButton.h"

#include <QAbstractScrollArea>
#include <QApplication>
#include <QCheckBox>
#include <QDir>
#include <QDockWidget>
#include <QMouseEvent>
#include <QPixmap>
#include <QTableWidget>

#include <algorithm>
#include <cstdio>

namespace {

constexpr int POLL_MS = 20;
constexpr int STEP_LIMIT_MS = 30000;
constexpr int PUSHES_MS = 2000;
constexpr int CHOICE_MS = 300;  // what a user takes at least between choosing an account and pressing the button
constexpr int LOOK_MS = 1000;   // what a view may take to ask the counter and show the answer

struct CViewStep {
  VN::ECompactsView view;
  const char* picture;
};

constexpr CViewStep VIEWS[] = {
    {VN::ViewClosed, "closed"},       {VN::ViewChanges, "changes"}, {VN::ViewStatistics, "statistics"},
    {VN::ViewPriority, "priorities"}, {VN::ViewUnclosed, nullptr},
};

struct CSideStep {
  EPanelSide side;
  const char* picture;
};

constexpr CSideStep SIDES[] = {{SideRight, "order-panel-right"}, {SideBottom, "order-panel-below"}};
constexpr QSize PICTURE_SIZE(1680, 960);
constexpr QPoint FIRST_ROW(150, 10);  // of a table's viewport, behind the select column

constexpr const char* DOCKS[] = {"positions", "orders", "baskets"};

void doubleClick(QWidget* widget, const QPoint& place) {
  const QPoint onScreen = widget->mapToGlobal(place);
  for (const QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease, QEvent::MouseButtonDblClick,
                                  QEvent::MouseButtonRelease}) {
    const Qt::MouseButtons held = type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
    QMouseEvent event(type, place, onScreen, Qt::LeftButton, held, Qt::NoModifier);
    QApplication::sendEvent(widget, &event);
  }
}

}  // namespace

CShotWalk::CShotWalk(CMainWindow& window, const QString& folder, QObject* parent)
    : QObject(parent), m_window(window), m_folder(folder) {
  const auto combo = [this] {
    return m_window.panel() != nullptr ? m_window.panel()->findChild<GW::CComboBox*>() : nullptr;
  };
  m_window.resize(PICTURE_SIZE);
  m_steps.push_back({nextPicture("start"), [] {}, [combo] { return combo() != nullptr && combo()->count() > 0; }});
  m_steps.push_back({QString(), [this] { addAccountSteps(); }, [] { return true; }});
  m_waited.start();
  startTimer(POLL_MS);
}

/// Each account of the combo box: choose it, refresh, wait for the answer.
void CShotWalk::addAccountSteps() {
  const int accounts = m_window.panel()->findChild<GW::CComboBox*>()->count();
  for (int i = 0; i < accounts; ++i) {
    addChoice(i);
    addRefresh(nextPicture("account") + QStringLiteral("-%1").arg(i + 1));
  }
  addChoice(0);
  addRefresh(QString());
  addPushSteps(nextPicture("pushes"));
  addViewSteps();
  addDockSteps();
  addOrderPanelSteps();
  addAppointmentStep();
}

QString CShotWalk::nextPicture(const char* name) {
  return QStringLiteral("%1-%2").arg(++m_pictures, 2, 10, QLatin1Char('0')).arg(QString::fromLatin1(name));
}

bool CShotWalk::isUpToDate(const QWidget& widget) {
  const auto widgets = widget.findChildren<QWidget*>();
  return std::all_of(widgets.begin(), widgets.end(), [](QWidget* child) {
    const auto* table = dynamic_cast<GW::CBaseHighPerformanceTable*>(child);
    return table == nullptr || !table->isVisible() || table->isUpToDate();
  });
}

void CShotWalk::addViewSteps() {
  const auto* group = m_window.panel()->findChild<GW::CRadioButtonGroup*>();
  for (const CViewStep& step : VIEWS) {
    auto* button = group->button(step.view);
    if (button == nullptr) continue;  // the user has no right to it
    m_steps.push_back({step.picture != nullptr ? nextPicture(step.picture) : QString(), [button] { button->click(); },
                       [this] { return m_waited.elapsed() > LOOK_MS && isUpToDate(*m_window.panel()); }});
  }
}

void CShotWalk::addDockSteps() {
  for (const char* name : DOCKS) {
    auto* dock = m_window.findChild<QDockWidget*>(QString::fromLatin1(name));
    m_steps.push_back({nextPicture(name),
                       [dock] {
                         dock->show();
                         dock->raise();
                       },
                       [this] { return m_waited.elapsed() > CHOICE_MS; }});
  }
}

/// An order panel whose compacts are asked for; the first of them is double-clicked.
void CShotWalk::addOrderPanelSteps() {
  const auto panel = [this]() -> COrderPanel* {
    for (const CPanelDocks::CPanel& open : m_window.panels().panels())
      if (auto* orders = dynamic_cast<COrderPanel*>(open.panel)) return orders;
    return nullptr;
  };
  const auto looked = [this, panel] { return m_waited.elapsed() > LOOK_MS && isUpToDate(*panel()); };
  m_steps.push_back(
      {QString(), [this] { m_window.panels().open(QString::fromLatin1(COrderPanel::TYPE_KEY)); }, looked});
  m_steps.push_back({QString(), [panel] { panel()->findChild<VN::CCountDownButton*>()->click(); }, looked});
  m_steps.push_back({QString(),
                     [panel] {
                       auto* table = panel()->findChild<QWidget*>(QStringLiteral("compactsTable0"));
                       doubleClick(table->findChild<QAbstractScrollArea*>()->viewport(), FIRST_ROW);
                     },
                     looked});
  for (const CSideStep& step : SIDES)
    m_steps.push_back(
        {nextPicture(step.picture),
         [panel, side = step.side] { panel()->compacts().slotTableLayoutClicked(false, side, QString()); }, looked});
}

void CShotWalk::addAppointmentStep() {
  m_steps.push_back({nextPicture("appointments"), [this] { m_window.panels().open(QStringLiteral("crdaq")); },
                     [this] { return m_waited.elapsed() > LOOK_MS && isUpToDate(m_window); }});
}

void CShotWalk::addChoice(int account) {
  auto* combo = m_window.panel()->findChild<GW::CComboBox*>();
  auto* refresh = m_window.panel()->findChild<VN::CCountDownButton*>();
  m_steps.push_back({QString(), [combo, account] { combo->setCurrentIndex(account); },
                     [this, refresh] { return !refresh->isLocked() && m_waited.elapsed() > CHOICE_MS; }});
}

void CShotWalk::addRefresh(const QString& picture) {
  auto* combo = m_window.panel()->findChild<GW::CComboBox*>();
  auto* refresh = m_window.panel()->findChild<VN::CCountDownButton*>();
  auto* table = m_window.panel()->findChild<QWidget*>(QStringLiteral("compactsTable0"));
  auto* rows = dynamic_cast<GW::CBaseHighPerformanceTable*>(table);
  m_steps.push_back({picture, [refresh] { refresh->click(); },
                     [combo, rows] { return combo->isEnabled() && (rows == nullptr || rows->isUpToDate()); }});
}

/// The broker changes compacts of the shown account all the while.
void CShotWalk::addPushSteps(const QString& picture) {
  auto* combo = m_window.panel()->findChild<GW::CComboBox*>();
  auto* pane = m_window.findChild<QWidget*>(QStringLiteral("broker"));
  auto* accounts = pane->findChild<QTableWidget*>();
  auto* steady = pane->findChild<QCheckBox*>();
  m_steps.push_back({picture,
                     [combo, accounts, steady] {
                       for (int row = 0; row < accounts->rowCount(); ++row)
                         if (accounts->item(row, 0)->data(Qt::UserRole) == combo->currentKey())
                           accounts->selectRow(row);
                       steady->setChecked(true);
                     },
                     [this] { return m_waited.elapsed() > PUSHES_MS; }});
}

void CShotWalk::timerEvent(QTimerEvent*) {
  if (m_next >= m_steps.size()) {
    std::printf("longest time without a turn of the event loop: %.1f ms\n", m_longestGap);
    return finish(0);
  }
  if (!m_acted) {
    m_acted = true;
    m_waited.restart();
    const std::function<void()> act = m_steps[m_next].act;  // a step may add steps
    act();
    return;
  }
  if (!m_window.startFailure().isEmpty()) {
    std::fprintf(stderr, "the counter cannot be used: %s\n", qPrintable(m_window.startFailure()));
    return finish(1);
  }
  if (!m_steps[m_next].done()) {
    if (m_waited.elapsed() < STEP_LIMIT_MS) return;
    std::fprintf(stderr, "step %zu did not come about within %d s\n", m_next + 1, STEP_LIMIT_MS / 1000);
    return finish(1);
  }
  m_longestGap = std::max(m_longestGap, m_window.longestGap());
  const QString picture = m_steps[m_next].picture;
  if (!picture.isEmpty() && !save(picture)) return finish(1);
  m_window.restartMeter();  // saving a picture takes long, and is not what the desk does
  ++m_next;
  m_acted = false;
}

bool CShotWalk::save(const QString& picture) {
  const QString path = QDir(m_folder).filePath(picture + QStringLiteral(".png"));
  if (!QDir().mkpath(m_folder) || !m_window.grab().save(path)) {
    std::fprintf(stderr, "cannot write %s\n", qPrintable(path));
    return false;
  }
  std::printf("%s\n", qPrintable(path));
  std::fflush(stdout);
  return true;
}

void CShotWalk::finish(int exitCode) {
  deleteLater();
  QApplication::exit(exitCode);
}
