#include "CMainWindow.h"

#include "CBasketPane.h"
#include "CBrokerPane.h"
#include "CLayoutKeeper.h"
#include "CLogView.h"
#include "CMessageView.h"
#include "COrderTable.h"
#include "CPanelDocks.h"
#include "CPositionTable.h"
#include "compacts/CCompactsPanel.h"
#include "gw/widget_events.h"
#include "runtime/CClientRuntime.h"
#include "vn/CTradeClient.h"
#include "vn/CUserConfig.h"

#include <QCoreApplication>
#include <QDockWidget>
#include <QGuiApplication>
#include <QLabel>
#include <QLayout>
#include <QMenu>
#include <QMenuBar>
#include <QScreen>
#include <QStatusBar>

namespace {

constexpr int METER_PERIOD_MS = 1000;
constexpr int BOTTOM_HEIGHT = 190;  // pixels, of messages and log at first

/// Room for every view of a panel of compacts beside the broker's side, as far as the screen has it.
QSize firstSize() {
  constexpr QSize LEAST(1280, 760);
  constexpr QSize BEST(1680, 960);
  const QScreen* screen = QGuiApplication::primaryScreen();
  return screen != nullptr ? screen->availableSize().boundedTo(BEST).expandedTo(LEAST) : LEAST;
}

QString loginText(const rdservice::CAccountInfo& account, rdservice::EBROKER_LOGIN_STATUS status,
                  const std::string& why) {
  const char* text = "未登录";
  switch (status) {
    case rdservice::LoginStatusLoggingIn: text = "正在登录"; break;
    case rdservice::LoginStatusReady: text = "登录成功"; break;
    case rdservice::LoginStatusFailed: text = "登录失败"; break;
    default: break;
  }
  QString line =
      QStringLiteral("资金账号[%1]%2").arg(QString::fromStdString(account.accountId), QString::fromUtf8(text));
  if (!why.empty()) line += QStringLiteral(": ") + QString::fromStdString(why);
  return line;
}

}  // namespace

CMainWindow::CMainWindow(const QString& layoutFile) {
  setWindowTitle(QStringLiteral("融资融券交易台"));
  resize(firstSize());
  setDockNestingEnabled(true);
  m_panelMenu = menuBar()->addMenu(QStringLiteral("面板(&P)"));
  m_panelMenu->setEnabled(false);
  m_viewMenu = menuBar()->addMenu(QStringLiteral("视图(&V)"));
  m_state = new QLabel(this);
  m_pushes = new QLabel(this);
  m_pushes->setObjectName(QStringLiteral("pushLoad"));
  m_pushes->setToolTip(
      QStringLiteral("积压: 最近一秒内同时等待处理的推送最多条数\n合并: 等待时被同一合约更新的推送取代的条数"));
  m_gap = new QLabel(this);
  m_gap->setObjectName(QStringLiteral("gap"));
  m_gap->setToolTip(
      QStringLiteral("界面线程未响应的最长时间\n丢帧: 因此错过的画面, 每帧 %1 毫秒").arg(m_meter.FRAME_MS));
  statusBar()->addWidget(m_state, 1);
  statusBar()->addPermanentWidget(m_pushes);
  statusBar()->addPermanentWidget(m_gap);
  if (!layoutFile.isEmpty()) m_layout = std::make_unique<CLayoutKeeper>(*this, layoutFile);
  startTimer(METER_PERIOD_MS);
}

CMainWindow::~CMainWindow() {
  m_layout.reset();  // saves what the docks still show
  // First nothing new may arrive; panels and views use the client's services to their last moment.
  if (m_client) m_client->stop();
  qDeleteAll(findChildren<QDockWidget*>(QString(), Qt::FindDirectChildrenOnly));
}

void CMainWindow::showState(const QString& text) { m_state->setText(text); }

QDockWidget* CMainWindow::addDock(const QString& name, const QString& title, QWidget* widget, Qt::DockWidgetArea area) {
  auto* dock = new QDockWidget(title, this);
  dock->setObjectName(name);
  dock->setWidget(widget);
  addDockWidget(area, dock);
  m_viewMenu->addAction(dock->toggleViewAction());
  return dock;
}

void CMainWindow::startClient(std::unique_ptr<runtime::CClientRuntime> client) {
  m_client = std::move(client);
  addDocks();
  m_viewMenu->addSeparator();
  QAction* dark = m_viewMenu->addAction(QStringLiteral("深色配色"));
  dark->setCheckable(true);
  dark->setChecked(runtime::CClientRuntime::isDarkTheme());
  connect(dark, &QAction::toggled, this, [](bool on) { runtime::CClientRuntime::setDarkTheme(on); });
  listenToClient();
  showState(QStringLiteral("正在连接柜台…"));
  m_client->start();
}

void CMainWindow::addDocks() {
  m_panels = std::make_unique<CPanelDocks>(*this, m_layout.get());
  m_panels->openKept();
  m_panels->fillMenu(*m_panelMenu);
  m_panelMenu->setEnabled(true);
  QDockWidget* broker = addDock(QStringLiteral("broker"), QStringLiteral("柜台"), new CBrokerPane(*m_client, this),
                                Qt::TopDockWidgetArea);
  m_messages = new CMessageView(this);
  QDockWidget* messages =
      addDock(QStringLiteral("messages"), QStringLiteral("消息"), m_messages, Qt::BottomDockWidgetArea);
  QDockWidget* log =
      addDock(QStringLiteral("log"), QStringLiteral("日志"), new CLogView(this), Qt::BottomDockWidgetArea);
  const QList<QDockWidget*> behindLog = {
      addDock(QStringLiteral("positions"), QStringLiteral("持仓"), new CPositionTable(this), Qt::BottomDockWidgetArea),
      addDock(QStringLiteral("orders"), QStringLiteral("委托"), new COrderTable(this), Qt::BottomDockWidgetArea),
      addDock(QStringLiteral("baskets"), QStringLiteral("篮子"), new CBasketPane(this), Qt::BottomDockWidgetArea)};
  for (QDockWidget* dock : behindLog) tabifyDockWidget(log, dock);
  log->raise();

  const bool isRestored =
      m_layout && m_layout->restore(m_panels->widgets(), [this](const QString& text) { m_messages->addMessage(text); });
  for (QDockWidget* dock : behindLog)
    if (isRestored && !m_layout->hasPlaceOf(dock->objectName())) tabifyDockWidget(log, dock);
  for (const CPanelDocks::CPanel& panel : m_panels->panels())
    if (isRestored && !m_layout->hasPlaceOf(panel.dock->objectName())) m_panels->place(panel.dock);
  QDockWidget* top = m_panels->panels().empty() ? broker : m_panels->panels().front().dock;
  QMetaObject::invokeMethod(
      this,
      [this, isRestored, top, broker, messages, log] {
        if (!isRestored) {
          resizeDocks({top, messages}, {height(), BOTTOM_HEIGHT}, Qt::Vertical);
          resizeDocks({top, broker}, {width(), 1}, Qt::Horizontal);  // the broker's side takes what it needs
          resizeDocks({messages, log}, {width() * 2 / 7, width() * 5 / 7}, Qt::Horizontal);
          settleDocks();
        }
        m_meter.reset();
      },
      Qt::QueuedConnection);  // once the docks have their places
}

/// The first layout after docks were resized holds to their sizes, even when one has come to need more since: it is
/// done twice, and with what the docks need by now.
void CMainWindow::settleDocks() {
  for (int turn = 0; turn < 2; ++turn) {
    QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
    layout()->invalidate();
    layout()->activate();
  }
}

VN::CCompactsPanel* CMainWindow::panel() const { return m_panels ? m_panels->firstCompacts() : nullptr; }

bool CMainWindow::handleEvent(int type, int, int, QString, void*) {
  if (type != GW::EventCompactMode) return false;
  m_panels->tellCompactMode();
  return true;
}

void CMainWindow::listenToClient() {
  const QStringList found = VN::getUserConfig()->startMessages();
  for (const QString& message : found) m_messages->addMessage(message);
  VN::CTradeClient* client = VN::CTradeClient::instance();
  connect(client, &VN::CTradeClient::sigLoginStatus, m_messages,
          [this](const rdservice::CAccountInfoPtr& account, rdservice::EBROKER_LOGIN_STATUS status,
                 const std::string& why) { m_messages->addMessage(loginText(*account, status, why)); });
  connect(client, &VN::CTradeClient::sigAccountsChanged, this, [this] {
    showState(QStringLiteral("柜台已连接"));
    settleDocks();  // the list of accounts has grown
  });
  connect(client, &VN::CTradeClient::sigStartFailed, this, [this](const QString& reason) {
    showState(QStringLiteral("柜台不可用: %1").arg(reason));
    m_messages->addMessage(QStringLiteral("柜台不可用: %1").arg(reason));
    m_startFailure = reason;
  });
}

void CMainWindow::showPushLoad() {
  VN::CPushLoad load;
  const auto panels = findChildren<VN::CCompactsPanel*>();
  for (VN::CCompactsPanel* panel : panels) {
    const VN::CPushLoad own = panel->takePushLoad();
    load.mostWaiting += own.mostWaiting;
    m_foldedPushes += own.folded;
  }
  m_pushes->setText(QStringLiteral("推送积压 %1, 合并 %2").arg(load.mostWaiting).arg(m_foldedPushes));
}

void CMainWindow::timerEvent(QTimerEvent*) {
  m_gap->setText(
      QStringLiteral("最长停顿 %1 毫秒, 丢帧 %2").arg(m_meter.longestGap(), 0, 'f', 1).arg(m_meter.missedFrames()));
  showPushLoad();
}
