// The order panel's orders: from the form and the compact chosen to the counter.

#include "orderpanel/COrderForm.h"
#include "orderpanel/COrderPanel.h"
#include "orderpanel/security_lookup.h"

#include "compacts/CCompactsPanel.h"
#include "gw/CMessageBox.h"
#include "gw/controls.h"
#include "rdservice/TypeManager.h"
#include "rdservice/rdservice_enums.h"
#include "vn/CPlaceCommandParameter.h"
#include "vn/CTradeClient.h"
#include "vn/CUserConfig.h"

#include <QLocale>
#include <QPointer>

#include <algorithm>

namespace {

constexpr double WHOLE = 1.0;  ///< every account places the whole volume

// Texts for users.
constexpr const char* HINT_TITLE = "提示";
constexpr const char* NO_ACCOUNT = "没有选择已登录的信用账号。";
constexpr const char* NO_DIRECT_REPAY = "直接还款不经委托，请在柜台办理。";
constexpr const char* COMPACT_FILLED = "已填入所选合约的证券和数量，请核对后再下单。";
constexpr const char* OTHER_ACCOUNT = "所选合约 %1 属于资金账号 %2，与下单的账号不同。";
constexpr const char* OTHER_SECURITY = "所选合约 %1 的证券是 %2，与委托的证券 %3 不同。";
constexpr const char* NO_VOLUME = "请输入委托数量。";
constexpr const char* NOT_PLACED = "委托没有发出，请检查账号、证券和数量。";
constexpr const char* ASK_TITLE = "下单确认";
constexpr const char* ASK_TEXT = "资金账号：%1\n业务类型：%2\n证券：%3\n委托价格：%4\n委托数量：%5 股\n\n确定下单？";
constexpr const char* EACH_ACCOUNT = "%1 个账号，每个账号委托全部数量（%2）";
constexpr const char* AT_LAST_PRICE = "最新价";
constexpr const char* REMARK = "合约 %1";

bool isSpecial(int operation) {
  return operation == rdservice::OperationSpecialDirectReturn || operation == rdservice::OperationSpecialBuyToReturn;
}

QString codeAndName(const rdservice::CStockInfo& stock) {
  return QString::fromStdString(stock.code) + QLatin1Char(' ') + QString::fromStdString(stock.name);
}

}  // namespace

void COrderPanel::followOperation() {
  m_form->followOperation();
  const rdservice::EOperationType operation = m_form->operation();
  m_compacts->clearSelect();  // it may be of another type
  m_form->setCompactNumber(QString());
  m_compacts->setOperationType(operation, m_form->repayType());
  m_compacts->setCompactBrushSourceType(isSpecial(operation) ? rdservice::BrushSourceSpecial
                                                             : rdservice::BrushSourceNormal);
}

void COrderPanel::takeCompact(const rdservice::CStkUnClosedCompactsPtr& compact) {
  if (!compact) return;
  m_form->fill(*compact);
  m_compacts->setSelectCompact(compact->getKey());
  m_form->focusVolume();
}

QString COrderPanel::makeCommand(VN::CPlaceCommandParameter& command) {
  const VN::CAccountPtr account = VN::getUserConfig()->getAccountData(m_form->accounts().currentKey());
  if (!account) return QString::fromUtf8(NO_ACCOUNT);
  const rdservice::EOperationType operation = m_form->operation();
  if (operation == rdservice::OperationDirectRepay) return QString::fromUtf8(NO_DIRECT_REPAY);

  const rdservice::CStkUnClosedCompactsPtr compact = m_compacts->getSelectCompact();
  if (compact && m_form->securityText().trimmed().isEmpty()) {
    m_form->fill(*compact);
    m_form->focusVolume();
    return QString::fromUtf8(COMPACT_FILLED);
  }
  const CNamedSecurity security = findSecurity(m_form->securityText());
  if (!security.instrument) {
    m_form->focusSecurity();
    return security.problem;
  }
  const rdservice::CInstrumentInfo& instrument = *security.instrument;
  rdservice::CCodeOrderParam order;
  order.operationType = operation;
  order.stockInfo = {instrument.exchangeId.str(), instrument.code.str(), instrument.name.str(), std::string()};
  order.accountInfo = account;
  order.volume = m_form->volume();
  order.price = m_form->price();
  if (compact && !VN::getUserConfig()->isCompactMode() && compact->accountInfo &&
      compact->accountInfo->getKey() != account->getKey())
    return QString::fromUtf8(OTHER_ACCOUNT)
        .arg(QString::fromStdString(compact->fieldA), QString::fromStdString(compact->accountInfo->accountId));
  if (compact && (compact->exchangeId != instrument.exchangeId || compact->code != instrument.code))
    return QString::fromUtf8(OTHER_SECURITY)
        .arg(QString::fromStdString(compact->fieldA), QString::fromStdString(compact->code.str()),
             codeAndName(order.stockInfo));
  if (order.volume <= 0) {
    m_form->focusVolume();
    return QString::fromUtf8(NO_VOLUME);
  }

  if (compact) m_form->setCompactNumber(QString::fromStdString(compact->fieldA));
  if (!m_form->compactNumber().isEmpty())
    command.remark = QString::fromUtf8(REMARK).arg(m_form->compactNumber()).toStdString();
  command.tradeType = rdservice::TraderTypeStockCredit;
  command.orders = {order};
  if (VN::getUserConfig()->isCompactMode())
    for (const VN::CAccountPtr& ready : readyAccounts()) command.accountRatios[ready->getKey()] = WHOLE;
  return QString();
}

QString COrderPanel::questionOf(const VN::CPlaceCommandParameter& command) const {
  const rdservice::CCodeOrderParam& order = command.orders.front();
  QStringList accounts;
  for (const auto& [key, ratio] : command.accountRatios)
    if (const auto account = VN::getUserConfig()->getAccountData(QString::fromStdString(key)))
      accounts.append(QString::fromStdString(account->accountId));
  const QString account =
      accounts.isEmpty()
          ? QString::fromStdString(rdservice::accountDisplayID(*order.accountInfo))
          : QString::fromUtf8(EACH_ACCOUNT).arg(accounts.size()).arg(accounts.join(QStringLiteral("、")));
  const QLocale locale(QLocale::Chinese);
  const QString price = order.price > 0 ? QString::number(order.price, 'g', 9) : QString::fromUtf8(AT_LAST_PRICE);
  return QString::fromUtf8(ASK_TEXT).arg(
      account, QString::fromStdString(rdservice::operationValueToString(order.operationType)),
      codeAndName(order.stockInfo), price, locale.toString(static_cast<qlonglong>(order.volume)));
}

void COrderPanel::placeOrder() {
  VN::CPlaceCommandParameter command;
  const QString problem = makeCommand(command);
  if (!problem.isEmpty()) {
    GW::CMessageBox::warning(this, QString::fromUtf8(HINT_TITLE), problem);
    return;
  }
  const VN::CUserConfig& user = *VN::getUserConfig();
  const bool isAsked = command.accountRatios.empty()
                           ? user.isOrderConfirmed(command.orders.front().accountInfo->getKey())
                           : std::any_of(command.accountRatios.begin(), command.accountRatios.end(),
                                         [&user](const auto& account) { return user.isOrderConfirmed(account.first); });
  if (isAsked) {
    const QPointer<COrderPanel> panel = this;
    const int answer = GW::CMessageBox::question(this, QString::fromUtf8(ASK_TITLE), questionOf(command));
    if (!panel || answer != QMessageBox::Yes) return;
    command.confirmed = 1;
  }
  if (!VN::CTradeClient::instance()->placeCommands(command)) {
    GW::CMessageBox::warning(this, QString::fromUtf8(HINT_TITLE), QString::fromUtf8(NOT_PLACED));
    return;
  }
  m_compacts->clearSelect();
  m_form->setCompactNumber(QString());
  m_form->setVolume(0);  // the same button does not place it twice
}
