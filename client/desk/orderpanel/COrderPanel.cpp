// The order panel's frame: form and compacts, the parameter string, events.

#include "orderpanel/COrderPanel.h"

#include "orderpanel/COrderForm.h"
#include "orderpanel/order_panel_ids.h"

#include "compacts/CCompactsPanel.h"
#include "compacts/panel_ids.h"
#include "gw/controls.h"
#include "gw/widget_events.h"
#include "vn/CSingleAccountCommandModeComboBox.h"
#include "vn/CTradeClient.h"
#include "vn/CUserConfig.h"

#include <QCheckBox>
#include <QElapsedTimer>
#include <QJsonDocument>
#include <QJsonObject>
#include <QScrollArea>
#include <QScrollBar>
#include <QSplitter>

#include <algorithm>
#include <iterator>

namespace {

constexpr int UPDATE_PERIOD_MS = 1000;
constexpr int PERIODS_PER_COST = 100;  ///< the figures take at most a hundredth of the time
constexpr QSize PANEL_SIZE(1100, 420);
constexpr QSize LEAST_COMPACTS(200, 80);
constexpr const char* TITLE = "融资融券下单";

struct CSideRow {
  EPanelSide side;
  Qt::Orientation orientation;
  bool isFirst;  ///< the compacts stand before the form
  int fieldsPerRow;
};

constexpr CSideRow SIDES[] = {{SideLeft, Qt::Horizontal, true, 1},
                              {SideRight, Qt::Horizontal, false, 1},
                              {SideTop, Qt::Vertical, true, 3},
                              {SideBottom, Qt::Vertical, false, 3}};

// Members of the parameter string.
constexpr const char* SIDE_KEY = "side";
constexpr const char* FORM_KEY = "formLength";
constexpr const char* ACCOUNT_KEY = "account";
constexpr const char* OPERATION_KEY = "operation";
constexpr const char* REPAY_KEY = "repay";
constexpr const char* SELECT_KEY = "select";
constexpr const char* COMPACTS_KEY = "compacts";

QString key(const char* name) { return QString::fromLatin1(name); }

}  // namespace

COrderPanel::COrderPanel(int number, QWidget* parent)
    : ITradeDockableWidget(key(TYPE_KEY), number, {key(TYPE_KEY), QString::fromUtf8(TITLE), PANEL_SIZE}, parent),
      m_side(SideRight) {
  build(number);
  const VN::CTradeClient* client = VN::CTradeClient::instance();
  connect(client, &VN::CTradeClient::sigAccountsChanged, this, [this] { refreshAccounts(); });
  connect(client, &VN::CTradeClient::sigLoginStatus, this, [this] { refreshAccounts(); });
  connect(m_compacts, &VN::CCompactsPanel::sigDoubleClickCompact, this,
          [this](const rdservice::CStkUnClosedCompactsPtr& compact) { takeCompact(compact); });
  connect(&m_form->selectColumn(), &QCheckBox::toggled, this,
          [this](bool on) { m_compacts->setSelectColumnVisible(on); });
  m_form->onSecurityEdited([this] { m_compacts->clearSelect(); });
  connect(&m_updates, &QTimer::timeout, this, [this] {
    if (isVisible()) updateFigures();
  });
  m_updates.start(UPDATE_PERIOD_MS);
  m_isReady = true;
  followOperation();
  m_compacts->updateCompactIndex(VN::getUserConfig()->isCompactMode());
  // Queued: a parameter string that follows may name another account.
  QMetaObject::invokeMethod(
      this, [this] { refreshAccounts(); }, Qt::QueuedConnection);
}

COrderPanel::~COrderPanel() {
  m_updates.stop();
  delete m_compacts;  // it asks this panel which accounts it serves
}

void COrderPanel::build(int number) {
  m_splitter = new QSplitter(this);
  m_splitter->setChildrenCollapsible(false);
  auto* area = new QScrollArea(m_splitter);
  area->setFrameShape(QFrame::NoFrame);
  area->setWidgetResizable(true);
  m_form = new COrderForm(area);
  area->setWidget(m_form);
  m_formArea = area;
  m_compacts = new VN::CCompactsPanel(number, m_splitter, VN::ModeOrderPanel);
  m_compacts->setMinimumSize(LEAST_COMPACTS);
  m_commandMode = new VN::CSingleAccountCommandModeComboBox(IdOrderCommandMode, m_compacts);
  m_compacts->setCommandModeComboBox(m_commandMode);
  setInnerWidget(m_splitter);
  moveCompacts(m_side);
}

void COrderPanel::moveCompacts(int side) {
  const auto* const row =
      std::find_if(std::begin(SIDES), std::end(SIDES), [side](const CSideRow& one) { return one.side == side; });
  if (row == std::end(SIDES)) return;
  m_side = side;
  m_form->setFieldsPerRow(row->fieldsPerRow);
  m_splitter->setOrientation(row->orientation);
  m_splitter->insertWidget(row->isFirst ? 0 : 1, m_compacts);
  m_splitter->setStretchFactor(m_splitter->indexOf(m_compacts), 1);
  m_splitter->setStretchFactor(m_splitter->indexOf(m_formArea), 0);
  const QSize form = m_form->sizeHint();
  const bool isWide = row->orientation == Qt::Horizontal;
  const int bar = m_formArea->findChild<QScrollBar*>()->sizeHint().width();
  m_formArea->setMinimumSize(isWide ? QSize(form.width() + bar, 0) : QSize(0, form.height() / 2));
  setFormLength(isWide ? form.width() + bar : form.height());
}

/// The compacts take the rest.
void COrderPanel::setFormLength(int length) {
  const int all = m_splitter->orientation() == Qt::Horizontal ? m_splitter->width() : m_splitter->height();
  const int rest = std::max(all - length, 1);
  m_splitter->setSizes(m_splitter->indexOf(m_formArea) == 0 ? QList<int>{length, rest} : QList<int>{rest, length});
}

QString COrderPanel::param() const {
  const QString account = m_keptAccount.isEmpty() ? m_form->accounts().currentKey() : m_keptAccount;
  const QJsonObject all{{key(SIDE_KEY), m_side},
                        {key(FORM_KEY), m_splitter->sizes().value(m_splitter->indexOf(m_formArea))},
                        {key(ACCOUNT_KEY), account},
                        {key(OPERATION_KEY), m_form->operation()},
                        {key(REPAY_KEY), m_form->repayType()},
                        {key(SELECT_KEY), m_form->selectColumn().isChecked()},
                        {key(COMPACTS_KEY), m_compacts->param()}};
  return QString::fromUtf8(QJsonDocument(all).toJson(QJsonDocument::Compact));
}

void COrderPanel::setParam(const QString& param) {
  const QJsonObject all = QJsonDocument::fromJson(param.toUtf8()).object();
  if (all.isEmpty()) return;
  moveCompacts(all.value(key(SIDE_KEY)).toInt());
  constexpr int MOST = 1 << 16;  // pixels
  const int length = all.value(key(FORM_KEY)).toInt();
  if (length > 0 && length < MOST) setFormLength(length);
  m_form->setOperation(all.value(key(OPERATION_KEY)).toInt());
  m_form->setRepayType(all.value(key(REPAY_KEY)).toInt());
  m_compacts->setParam(all.value(key(COMPACTS_KEY)).toString());
  m_form->selectColumn().setChecked(all.value(key(SELECT_KEY)).toBool(true));
  m_compacts->setSelectColumnVisible(m_form->selectColumn().isChecked());
  m_keptAccount = all.value(key(ACCOUNT_KEY)).toString();
  refreshAccounts();
}

bool COrderPanel::handleEvent(int type, int p1, int p2, QString text, void* data) {
  if (type == GW::EventPanelPosition) {
    moveCompacts(p2);
    return true;
  }
  if (type == GW::EventComboChanged && !m_isReady) return true;
  if (type == GW::EventComboChanged && p1 == IdOrderAccount) {
    m_keptAccount.clear();
    chooseAccount();
    return true;
  }
  if (type == GW::EventComboChanged && (p1 == IdOrderOperation || p1 == IdOrderRepayType)) {
    followOperation();
    return true;
  }
  if (type == GW::EventButtonClicked && p1 == IdPlaceOrder) {
    placeOrder();
    return true;
  }
  return ITradeDockableWidget::handleEvent(type, p1, p2, text, data);
}

void COrderPanel::updateFigures() {
  m_form->updatePrice();
  QElapsedTimer cost;
  cost.start();
  m_form->setEquityCompensation(m_compacts->getEquityCompensation());
  // The sum goes over every compact: of a large table it is taken less often.
  m_updates.setInterval(std::max(UPDATE_PERIOD_MS, static_cast<int>(cost.elapsed()) * PERIODS_PER_COST));
  if (const auto selected = m_compacts->getSelectCompact())
    m_form->setCompactNumber(QString::fromStdString(selected->fieldA));
}
