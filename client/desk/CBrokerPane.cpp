#include "CBrokerPane.h"

#include "CAccountList.h"
#include "gw/controls.h"
#include "rdservice/rdservice_enums.h"
#include "runtime/CClientRuntime.h"
#include "vn/CTradeClient.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QLabel>
#include <QSpinBox>

namespace {

using runtime::CClientRuntime;
using runtime::CCounterBehaviour;

constexpr int PUSH_PERIOD_MS = 20;
constexpr int MOST_CHANGES = 100000;
constexpr int MOST_RATE = 1000;
constexpr int FIRST_RATE = 100;
constexpr int LATENCY_STEP_MS = 100;
constexpr int INTERVAL_STEP_MS = 100;
constexpr int USUAL_QUOTES = 12;  ///< that move at once, unless the configuration says how many
constexpr int SECTION_GAP = 8;
constexpr int MARGIN = 6;
constexpr int ROW_GAP = 4;
constexpr int GRID_COLUMNS = 2;

struct CLoginButton {
  const char* text;
  const char* accessibleName;
  bool all;
  bool login;
};

constexpr CLoginButton LOGIN_BUTTONS[] = {
    {"登录", "登录选中的账号", false, true},
    {"退出", "退出选中的账号", false, false},
    {"全部登录", "登录全部账号", true, true},
    {"全部退出", "退出全部账号", true, false},
};

/// A button that does something to as many compacts of each selected account as the spin box beside it says.
struct CChangeButton {
  const char* text;
  const char* accessibleName;
  const char* countName;
  int firstCount;
  void (CClientRuntime::*make)(const std::string& accountKey, int count);
};

constexpr CChangeButton CHANGE_BUTTONS[] = {
    {"推送变动", "推送选中账号的合约变动", "推送变动的条数", 20, &CClientRuntime::changeSomeCompacts},
    {"了结合约", "了结选中账号的合约", "了结合约的条数", 1, &CClientRuntime::closeSomeCompacts},
};

struct CReplyControl {
  const char* text;
  int most;
  int step;
  int CCounterBehaviour::*value;
  void (CClientRuntime::*set)(int);
  const char* suffix;
  const char* zeroText;
};

constexpr CReplyControl REPLY_CONTROLS[] = {
    {"应答延迟", CCounterBehaviour::MAX_LATENCY_MS, LATENCY_STEP_MS, &CCounterBehaviour::latencyMs,
     &CClientRuntime::setCounterLatency, " 毫秒", nullptr},
    {"每 N 次请求失败一次", CCounterBehaviour::MAX_EVERY, 1, &CCounterBehaviour::failEvery,
     &CClientRuntime::setCounterFailEvery, "", "从不"},
    {"每 N 次请求无应答一次", CCounterBehaviour::MAX_EVERY, 1, &CCounterBehaviour::silentEvery,
     &CClientRuntime::setCounterSilentEvery, "", "从不"},
};

void addHeading(QGridLayout& grid, const char* text) {
  auto* heading = new QLabel(QString::fromUtf8(text));
  QFont font = heading->font();
  font.setBold(true);
  heading->setFont(font);
  if (grid.count() > 0) heading->setContentsMargins(0, SECTION_GAP, 0, 0);
  grid.addWidget(heading, grid.rowCount(), 0, 1, GRID_COLUMNS);
}

QPushButton* makeButton(const char* text, const char* accessibleName) {
  auto* button = new GW::CSmallNoNormalButton(0, QString::fromUtf8(text), nullptr);
  button->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
  button->setAccessibleName(QString::fromUtf8(accessibleName));
  return button;
}

}  // namespace

CBrokerPane::CBrokerPane(CClientRuntime& client, QWidget* parent) : QWidget(parent), m_client(client) {
  auto* grid = new QGridLayout(this);
  grid->setContentsMargins(MARGIN, MARGIN, MARGIN, MARGIN);
  grid->setVerticalSpacing(ROW_GAP);
  grid->setColumnStretch(1, 1);
  // In the order in which the tab key goes through them.
  addLogins(*grid);
  addChanges(*grid);
  addReplies(*grid);
  addQuotes(*grid);
  m_pushTimer.setInterval(PUSH_PERIOD_MS);
  m_pushTimer.setTimerType(Qt::PreciseTimer);
  connect(&m_pushTimer, &QTimer::timeout, this, [this] { pushDue(); });
}

CBrokerPane::~CBrokerPane() = default;

void CBrokerPane::addLogins(QGridLayout& grid) {
  m_accounts = new CAccountList(this);
  grid.addWidget(m_accounts, 0, 0, 1, GRID_COLUMNS);
  grid.setRowStretch(0, 1);
  auto* row = new QHBoxLayout;
  row->setSpacing(MARGIN);
  for (const CLoginButton& button : LOGIN_BUTTONS) {
    QPushButton* widget = makeButton(button.text, button.accessibleName);
    connect(widget, &QPushButton::clicked, this, [this, button] {
      setLogin(button.all ? m_accounts->allAccounts() : m_accounts->selectedAccounts(), button.login);
    });
    row->addWidget(widget);
  }
  grid.addLayout(row, grid.rowCount(), 0, 1, GRID_COLUMNS);
}

void CBrokerPane::addChanges(QGridLayout& grid) {
  addHeading(grid, "选中账号的合约");
  for (const CChangeButton& change : CHANGE_BUTTONS) {
    auto* button = makeButton(change.text, change.accessibleName);
    auto* count = addSpinBox(grid, button, change.countName, 1, MOST_CHANGES);
    count->setSuffix(QStringLiteral(" 条"));
    count->setValue(change.firstCount);
    connect(button, &QPushButton::clicked, this, [this, count, make = change.make] {
      const std::vector<std::string> accounts = m_accounts->selectedAccounts();
      for (const std::string& account : accounts) (m_client.*make)(account, count->value());
    });
  }
  auto* steady = new QCheckBox(QStringLiteral("持续推送"));
  steady->setAccessibleName(QStringLiteral("持续推送选中账号的合约变动"));
  m_rate = addSpinBox(grid, steady, "持续推送每秒条数", 1, MOST_RATE);
  m_rate->setSuffix(QStringLiteral(" 条/秒"));
  m_rate->setValue(FIRST_RATE);
  connect(steady, &QCheckBox::toggled, this, [this](bool on) {
    m_sincePush.start();
    if (on)
      m_pushTimer.start();
    else
      m_pushTimer.stop();
  });
}

void CBrokerPane::addReplies(QGridLayout& grid) {
  addHeading(grid, "应答与行情");
  const CCounterBehaviour present = m_client.counterBehaviour();
  for (const CReplyControl& control : REPLY_CONTROLS) {
    auto* box = addSpinBox(grid, new QLabel(QString::fromUtf8(control.text)), control.text, 0, control.most);
    box->setSingleStep(control.step);
    box->setSuffix(QString::fromUtf8(control.suffix));
    if (control.zeroText != nullptr) box->setSpecialValueText(QString::fromUtf8(control.zeroText));
    box->setKeyboardTracking(false);  // a number counts when it is complete
    box->setValue(present.*control.value);
    connect(box, QOverload<int>::of(&QSpinBox::valueChanged), this,
            [this, set = control.set](int value) { (m_client.*set)(value); });
  }
}

void CBrokerPane::addQuotes(QGridLayout& grid) {
  const CCounterBehaviour present = m_client.counterBehaviour();
  auto* moving = new QCheckBox(QStringLiteral("行情波动"));
  moving->setAccessibleName(moving->text());
  moving->setChecked(present.quotesPerMove > 0);
  auto* interval = addSpinBox(grid, moving, "行情波动间隔", CCounterBehaviour::MIN_QUOTE_INTERVAL_MS,
                              CCounterBehaviour::MAX_QUOTE_INTERVAL_MS);
  interval->setSingleStep(INTERVAL_STEP_MS);
  interval->setPrefix(QStringLiteral("每 "));
  interval->setSuffix(QStringLiteral(" 毫秒"));
  interval->setKeyboardTracking(false);
  interval->setValue(present.quoteIntervalMs);
  const int quotes = present.quotesPerMove > 0 ? present.quotesPerMove : USUAL_QUOTES;
  const auto apply = [this, moving, interval, quotes] {
    m_client.setCounterQuoteWalk(moving->isChecked() ? quotes : 0, interval->value());
  };
  connect(moving, &QCheckBox::toggled, this, apply);
  connect(interval, QOverload<int>::of(&QSpinBox::valueChanged), this, apply);
}

QSpinBox* CBrokerPane::addSpinBox(QGridLayout& grid, QWidget* label, const char* accessibleName, int min, int max) {
  const int row = grid.rowCount();
  grid.addWidget(label, row, 0);
  auto* box = new QSpinBox;
  box->setRange(min, max);
  box->setAlignment(Qt::AlignRight);
  box->setAccessibleName(QString::fromUtf8(accessibleName));
  grid.addWidget(box, row, 1);
  if (auto* text = qobject_cast<QLabel*>(label)) text->setBuddy(box);
  return box;
}

/// Only accounts whose state that changes: a repeated log-in would begin anew.
void CBrokerPane::setLogin(const std::vector<std::string>& accounts, bool login) {
  VN::CTradeClient* client = VN::CTradeClient::instance();
  for (const std::string& account : accounts) {
    const auto status = client->getLoginStatus(account);
    const bool isIn = status == rdservice::LoginStatusReady || status == rdservice::LoginStatusLoggingIn;
    if (isIn != login) client->setLogin(account, login);
  }
}

/// Each turn's changes go to one of the selected accounts, so that the rate is that of all of them together.
void CBrokerPane::pushDue() {
  constexpr double NS_PER_S = 1e9;
  const int due = m_steady.due(static_cast<double>(m_sincePush.nsecsElapsed()) / NS_PER_S, m_rate->value());
  m_sincePush.start();
  const std::vector<std::string> accounts = m_accounts->selectedAccounts();
  if (due > 0 && !accounts.empty()) m_client.changeSomeCompacts(accounts[m_turn++ % accounts.size()], due);
}
