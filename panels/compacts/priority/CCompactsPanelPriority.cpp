// Repay priorities: checking what is typed, assigning by order, saving, clearing.

#include "compacts/CCompactsPanel.h"
#include "compacts/panel_ids.h"
#include "compacts/priority/priority_rights.h"
#include "compacts/tables/CCompactsBaseTable.h"
#include "gw/CMessageTip.h"
#include "gw/CTableBatch.h"
#include "gw/column_delegates.h"
#include "gw/controls.h"
#include "rdservice/stock_key.h"
#include "vn/CTradeClient.h"
#include "vn/CUserConfig.h"

namespace VN {

namespace {

using rdservice::CStkUnClosedCompacts;

constexpr int MAX_PRIORITY = 999999;
constexpr char ENTRY_END = '|';
constexpr int TIP_SECONDS = 2;
constexpr int TIP_WIDTH = 300;

/// The lists of a request for one account, entry by entry.
class CPriorityEntries {
 public:
  void add(const CStkUnClosedCompacts& compact, const std::string& priority) {
    first += compact.fieldA + ENTRY_END;
    second += std::to_string(compact.fieldB) + ENTRY_END;
    third += priority + ENTRY_END;
    ++count;
  }

  static std::string labelOf(const CStkUnClosedCompacts& compact) {
    return rdservice::makeStockKey(compact.exchangeId.str(), compact.code.str());
  }

  std::string first;
  std::string second;
  std::string third;
  int count = 0;
  std::map<std::string, std::string> labels;
};

/// Calls `use` with the compact of each displayed row, in order, that belongs to the account.
template <class F>
void forEachRow(const CCompactsBaseTable& table, const std::string& accountId, F use) {
  for (int row = 0, rows = table.rowCount(); row < rows; ++row) {
    const rdservice::IDataPtr record = table.getData(row);
    const auto* compact = dynamic_cast<const CStkUnClosedCompacts*>(record.get());
    if (compact != nullptr && compact->accountInfo && compact->accountInfo->accountId == accountId) use(*compact);
  }
}

QString keyOf(const CStkUnClosedCompacts& compact) { return QString::fromStdString(compact.getKey()); }

}  // namespace

bool CCompactsPanel::isNumLegal(const QString& text) const {
  const int number = text.toInt(nullptr, 10);
  return (number >= 1 && number <= MAX_PRIORITY) || text.isEmpty() || text == QLatin1String("0");
}

bool CCompactsPanel::isAccontLegal(const CAccountPtr& account) const {
  return account && isBrokerTypeMatchTradeType(account->brokerType, rdservice::TraderTypeStockCredit, false) &&
         rdservice::isLoginStatusReady(CTradeClient::instance()->getLoginStatus(account->getKey()));
}

bool CCompactsPanel::hasPrioritySettingAuth() const { return VN::hasPrioritySettingAuth(); }

void CCompactsPanel::checkPriorityCell(const QString& text, const rdservice::IDataPtr& record) {
  GW::CBaseTableColumnLineeditDelegate* edits = priorityEdits();
  const auto* compact = dynamic_cast<const CStkUnClosedCompacts*>(record.get());
  if (edits == nullptr || compact == nullptr) return;
  const QString key = keyOf(*compact);
  const auto refuse = [edits, &key](const QString& tip) {
    edits->setItemText(key, QString());
    GW::CMessageTip::showTip(edits->editor(), GW::CMessageTip::Below, tip, GW::CMessageTip::Error, TIP_SECONDS,
                             TIP_WIDTH);
  };
  const bool isPriorityView = m_radioGroup != nullptr && m_radioGroup->checkedId() == ViewPriority;
  if (!isNumLegal(text) || text.isEmpty() || !isPriorityView) {
    refuse(QStringLiteral("请输入0 - 999999之间的整数"));
    return;
  }
  const int number = text.toInt(nullptr, 10);
  bool isTaken = false;
  if (number != 0 && compact->accountInfo) {
    forEachRow(*m_unclosedTable, compact->accountInfo->accountId, [&](const CStkUnClosedCompacts& other) {
      if (isTaken) return;
      const QString otherKey = keyOf(other);
      isTaken = otherKey != key && (other.repayPriority == number || edits->itemText(otherKey) == text);
    });
  }
  if (isTaken)
    refuse(QStringLiteral("同一账号不允许设置相同的优先级，请重新输入"));
  else
    edits->setItemText(key, QString::number(number));
}

GW::CBaseTableColumnLineeditDelegate* CCompactsPanel::priorityEdits() const {
  return m_unclosedTable != nullptr ? m_unclosedTable->priorityEditDelegate() : nullptr;
}

void CCompactsPanel::priorityOrderSetting() {
  GW::CBaseTableColumnLineeditDelegate* edits = priorityEdits();
  if (edits == nullptr) return;
  GW::CTableBatch batch(*m_unclosedTable);
  for (int row = 0, rows = m_unclosedTable->rowCount(); row < rows; ++row) {
    const rdservice::IDataPtr record = m_unclosedTable->getData(row);
    if (!record) continue;
    const QString key = QString::fromStdString(record->getKey());
    edits->setItemVisible(key, true);
    edits->setItemText(key, QString::number(row + 1));
  }
  if (batch.commit()) m_unclosedTable->updateTable();
}

void CCompactsPanel::savePriority() {
  const QList<CAccountPtr> accounts = getUserConfig()->getAccountDatas();
  for (const CAccountPtr& account : accounts)
    if (isAccontLegal(account)) saveRepayPrioritySetting(*account);
}

void CCompactsPanel::saveRepayPrioritySetting(rdservice::CAccountInfo account) {
  GW::CBaseTableColumnLineeditDelegate* edits = priorityEdits();
  if (edits == nullptr || edits->isEmpty()) return;
  const rdservice::CAccountDataPtr store = accountDataOf(account.getKey());
  if (!store) return;
  CPriorityEntries entries;
  forEachRow(*m_unclosedTable, account.accountId, [&](const CStkUnClosedCompacts& compact) {
    const QString text = edits->itemText(keyOf(compact));
    if (text == QString::number(compact.repayPriority)) return;
    entries.labels[compact.fieldA] = CPriorityEntries::labelOf(compact);
    entries.add(compact, text.toStdString());
  });
  operatorInfo(store, entries.first, entries.second, entries.third, entries.count, entries.labels);
}

void CCompactsPanel::clearPriority() {
  const QList<CAccountPtr> accounts = getUserConfig()->getAccountDatas();
  for (const CAccountPtr& account : accounts)
    if (isAccontLegal(account)) clearAllPrioritySetting(*account);
}

void CCompactsPanel::clearAllPrioritySetting(rdservice::CAccountInfo account) {
  const rdservice::CAccountDataPtr store = accountDataOf(account.getKey());
  if (!store || m_unclosedTable == nullptr) return;
  CPriorityEntries entries;
  forEachRow(*m_unclosedTable, account.accountId, [&](const CStkUnClosedCompacts& compact) {
    if (compact.repayPriority == 0) return;
    entries.labels.emplace(compact.fieldA, CPriorityEntries::labelOf(compact));
    entries.add(compact, "0");
  });
  operatorInfo(store, entries.first, entries.second, entries.third, entries.count, entries.labels);
}

}  // namespace VN
