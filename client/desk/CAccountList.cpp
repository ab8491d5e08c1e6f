#include "CAccountList.h"

#include "rdservice/rdservice_enums.h"
#include "vn/CTradeClient.h"
#include "vn/CUserConfig.h"

#include <QHeaderView>
#include <QStyle>

#include <algorithm>

namespace {

enum EColumn : int { ColumnAccount, ColumnState, ColumnCount };

constexpr const char* TITLES[ColumnCount] = {"账号", "状态"};

struct CStateText {
  rdservice::EBROKER_LOGIN_STATUS status;
  const char* text;
};

constexpr CStateText STATES[] = {
    {rdservice::LoginStatusLoggedOut, "未登录"},
    {rdservice::LoginStatusLoggingIn, "正在登录"},
    {rdservice::LoginStatusReady, "已登录"},
    {rdservice::LoginStatusFailed, "登录失败"},
};

constexpr int LEAST_ROWS = 2;
constexpr int USUAL_ROWS = 8;
constexpr int MOST_WIDTH = 420;  // a very long alias does not take the compacts' room

/// As the panels' combo boxes show an account: with the user's own name for it after two blanks.
QString accountText(const rdservice::CAccountInfo& account) {
  QString text = QString::fromStdString(rdservice::accountDisplayID(account));
  if (!account.alias.empty()) text += QStringLiteral("  (%1)").arg(QString::fromStdString(account.alias));
  return text;
}

QString stateText(rdservice::EBROKER_LOGIN_STATUS status) {
  for (const CStateText& state : STATES)
    if (state.status == status) return QString::fromUtf8(state.text);
  return QString();
}

}  // namespace

CAccountList::CAccountList(QWidget* parent) : QTableWidget(0, ColumnCount, parent) {
  setAccessibleName(QStringLiteral("柜台账号"));
  for (int column = 0; column < ColumnCount; ++column)
    setHorizontalHeaderItem(column, new QTableWidgetItem(QString::fromUtf8(TITLES[column])));
  horizontalHeader()->setSectionResizeMode(ColumnAccount, QHeaderView::Stretch);
  horizontalHeader()->setSectionResizeMode(ColumnState, QHeaderView::ResizeToContents);
  horizontalHeader()->setSectionsClickable(false);
  horizontalHeader()->setHighlightSections(false);
  horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
  verticalHeader()->hide();
  verticalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setSelectionBehavior(SelectRows);
  setSelectionMode(ExtendedSelection);
  setEditTriggers(NoEditTriggers);
  setTabKeyNavigation(false);
  setShowGrid(false);
  setAlternatingRowColors(true);
  setWordWrap(false);

  VN::CTradeClient* client = VN::CTradeClient::instance();
  connect(client, &VN::CTradeClient::sigAccountsChanged, this, [this] { fill(); });
  // What was signalled may be out of date by the time that it arrives here: the state is asked for.
  connect(client, &VN::CTradeClient::sigLoginStatus, this,
          [this](const rdservice::CAccountInfoPtr& account, rdservice::EBROKER_LOGIN_STATUS, const std::string& why) {
            const int row = rowOf(account->getKey());
            if (row >= 0) showState(row, QString::fromStdString(why));
          });
  fill();
}

void CAccountList::fill() {
  const std::vector<std::string> selected = selectedAccounts();
  setRowCount(0);
  const QList<VN::CAccountPtr> accounts = VN::getUserConfig()->getAccountDatas();
  for (const VN::CAccountPtr& account : accounts) {
    if (!account) continue;
    const int row = rowCount();
    insertRow(row);
    auto* item = new QTableWidgetItem(accountText(*account));
    item->setData(Qt::UserRole, QString::fromStdString(account->getKey()));
    item->setToolTip(item->text());
    setItem(row, ColumnAccount, item);
    setItem(row, ColumnState, new QTableWidgetItem);
    showState(row, QString());
    if (std::count(selected.begin(), selected.end(), account->getKey()) > 0)
      selectionModel()->select(model()->index(row, 0), QItemSelectionModel::Select | QItemSelectionModel::Rows);
  }
  if (rowCount() > 0 && selectedAccounts().empty()) selectRow(0);
  updateGeometry();
}

void CAccountList::showState(int row, const QString& why) {
  item(row, ColumnState)->setText(stateText(VN::CTradeClient::instance()->getLoginStatus(accountOf(row))));
  item(row, ColumnState)->setToolTip(why);
}

std::string CAccountList::accountOf(int row) const {
  return item(row, ColumnAccount)->data(Qt::UserRole).toString().toStdString();
}

int CAccountList::rowOf(const std::string& accountKey) const {
  for (int row = 0; row < rowCount(); ++row)
    if (accountOf(row) == accountKey) return row;
  return -1;
}

std::vector<std::string> CAccountList::selectedAccounts() const {
  std::vector<std::string> accounts;
  for (int row = 0; row < rowCount(); ++row)
    if (selectionModel()->isRowSelected(row, QModelIndex())) accounts.push_back(accountOf(row));
  return accounts;
}

std::vector<std::string> CAccountList::allAccounts() const {
  std::vector<std::string> accounts;
  for (int row = 0; row < rowCount(); ++row) accounts.push_back(accountOf(row));
  return accounts;
}

/// Of all states, so that the list stays as wide as it is while accounts log in.
int CAccountList::widestState() const {
  int width = 0;
  for (const CStateText& state : STATES)
    width = std::max(width, fontMetrics().horizontalAdvance(QString::fromUtf8(state.text)));
  return width + 2 * (style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, this) + 1) + 1;
}

QSize CAccountList::sizeForRows(int rows) const {
  const int frame = 2 * frameWidth();
  int width = frame + style()->pixelMetric(QStyle::PM_ScrollBarExtent);
  for (int column = 0; column < ColumnCount; ++column) {
    const int contents = column == ColumnState ? widestState() : sizeHintForColumn(column);
    width += std::max(contents, horizontalHeader()->sectionSizeHint(column));
  }
  const int rowHeight = rowCount() > 0 ? sizeHintForRow(0) : verticalHeader()->defaultSectionSize();
  const int height = frame + horizontalHeader()->sizeHint().height() + rows * rowHeight;
  return {std::min(width, MOST_WIDTH), height};
}

QSize CAccountList::sizeHint() const { return sizeForRows(USUAL_ROWS); }
QSize CAccountList::minimumSizeHint() const { return sizeForRows(LEAST_ROWS); }
