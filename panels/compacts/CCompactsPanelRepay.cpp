// Setting repay priorities at the counter, and repaying by orders.

#include "compacts/CCompactsPanel.h"
#include "compacts/tables/CCompactsBaseTable.h"
#include "gw/CMessageBox.h"
#include "luawrapper/LuaModuleCtrl.h"
#include "panel_texts.h"
#include "rdservice/CAccountData.h"
#include "utils/CLogCenter.h"
#include "utils/threads.h"
#include "vn/CMsgService.h"
#include "vn/CTradeClient.h"
#include "vn/CUserConfig.h"

#include <QPointer>

#include <boost/make_shared.hpp>

namespace VN {

namespace {

constexpr int PRIORITY_MESSAGES = 0;  // kind of the user's message settings

}  // namespace

void CCompactsPanel::operatorInfo(const rdservice::CAccountDataPtr& account, const std::string& first,
                                  const std::string& second, const std::string& third, int nRepayPriority,
                                  const std::map<std::string, std::string>& extra) {
  if (!account || first.empty() || second.empty() || third.empty()) return;
  const auto request = boost::make_shared<rdservice::CSetCreditRepayPriorityReq>();
  request->accountInfo = account->getAccountInfo();
  request->openDates = first;
  request->orderNumbers = second;
  request->priorities = third;
  CTradeClient::instance()->setCreditRepayPriority(
      request, m_lifeline.guard([accountId = request->accountInfo->accountId, key = request->accountInfo->getKey(),
                                 nRepayPriority, extra](CCompactsPanel& panel, const std::vector<utils::RDError>& error,
                                                        const std::vector<rdservice::IDataPtr>& resp) {
        panel.onOperatorInfo(accountId, key, nRepayPriority, extra, error, resp);
      }));
}

void CCompactsPanel::onOperatorInfo(const std::string& accountID, const std::string& accountKey, int nRepayPriority,
                                    const std::map<std::string, std::string>& extra,
                                    const std::vector<utils::RDError>& error,
                                    const std::vector<rdservice::IDataPtr>& resp) {
  constexpr utils::CLogSite SITE{
      "CCompactsPanel.cpp",
      "void VN::CCompactsPanel::onOperatorInfo(const std::string&, const std::string&, int, const "
      "std::map<std::string, std::string>&, const std::vector<utils::RDError>&, const "
      "std::vector<rdservice::IDataPtr>&)"};
  utils::logInfo(SITE, "save priority setting resp size : {0}, error size: {1}", resp.size(), error.size());
  if (m_unclosedTable != nullptr) m_unclosedTable->postPriorityResults(accountKey, resp, extra);
  Q_EMIT sigOperatorInfo(QString::fromStdString(accountID), nRepayPriority, error, resp);
}

void CCompactsPanel::slotOperatorInfo(QString accountID, int nRepayPriority, std::vector<utils::RDError> error,
                                      std::vector<rdservice::IDataPtr> resp) {
  utils::assertGui();
  const int failed = static_cast<int>(error.size());
  const int saved = static_cast<int>(resp.size());
  QString summary;
  if (nRepayPriority != failed + saved)
    summary += QStringLiteral(",清空优先级成功:%1条").arg(nRepayPriority - failed - saved);
  if (saved != 0) summary += QStringLiteral(",保存优先级成功:%1条").arg(saved);
  if (failed != 0) summary += QStringLiteral(",保存优先级失败:%1条,失败信息可以查看消息提示").arg(failed);
  const CMsgSetting setting = getUserConfig()->getMsgSetting(PRIORITY_MESSAGES);
  for (const utils::RDError& one : error)
    CMsgService::showMsg(QString::fromStdString(one.errorMsg()), CMsgService::KindTrade, CMsgService::LevelInfo,
                         setting.isPopup, setting.hasSound, QString(), 1);
  if (!summary.isEmpty())
    GW::CMessageBox::information(this, hintTitle(), QStringLiteral("资金账号:") + accountID + summary + u'.');
}

void CCompactsPanel::doRepayUnRepayStkCompactsOpration(std::vector<rdservice::CCodeOrderParam>& securitiesOrders,
                                                       std::vector<rdservice::CCodeOrderParam>& cashOrders) {
  utils::assertGui();
  struct CQuestion {
    const std::vector<rdservice::CCodeOrderParam>& orders;
    QString text;
  };
  const CQuestion questions[] = {
      {cashOrders, QStringLiteral("当前可还款资金不足以偿还负债,是否进行卖券还款操作?")},
      {securitiesOrders, QStringLiteral("当前持仓不足以偿还负债,是否进行买券还券操作?")},
  };
  CPlaceCommandParameter batch;
  const QPointer<CCompactsPanel> panel = this;
  for (const CQuestion& question : questions) {
    if (question.orders.empty()) continue;
    const int answer = GW::CMessageBox::question(this, hintTitle(), question.text);
    if (!panel) return;
    if (answer == QMessageBox::Yes)
      batch.orders.insert(batch.orders.end(), question.orders.begin(), question.orders.end());
  }
  if (batch.orders.empty()) return;
  batch.batchNo = 0;
  batch.tradeType = rdservice::TraderTypeStockCredit;
  batch.priceMode = 0;
  batch.confirmed = 1;
  CTradeClient::instance()->placeCommands(batch);
}

double CCompactsPanel::getInterestFee(const rdservice::CStkUnClosedCompactsPtr& compact) const {
  using luawrapper::LuaModuleCtrl;
  if (!compact) return 0.0;
  if (LuaModuleCtrl::instance()->checkModule(LuaModuleCtrl::Auth, "mdl_auth_credit_interest_fee_no_fare"))
    return compact->interestAmount;
  return compact->interestAmount + compact->feeAmount;
}

}  // namespace VN
