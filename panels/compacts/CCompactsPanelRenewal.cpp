// Applications for renewal of the compacts that are ticked.

#include "compacts/CCompactsPanel.h"
#include "compacts/tables/CCompactsBaseTable.h"
#include "gw/CMessageBox.h"
#include "panel_texts.h"
#include "rdservice/ConfigCollector.h"
#include "utils/CLogCenter.h"
#include "utils/threads.h"
#include "vn/CTradeClient.h"

#include <QDate>
#include <QPointer>

#include <boost/make_shared.hpp>

namespace VN {

namespace {

using rdservice::CStkUnClosedCompacts;
using rdservice::CStkUnClosedCompactsPtr;

/// An empty document has five bytes; whatever is longer says why nothing was done.
constexpr int EMPTY_REPLY_BYTES = 5;

/// Whether the counter of the compact's account refuses it because it was opened today.
bool isRefusedToday(const CStkUnClosedCompacts& compact) {
  return rdservice::DataHelper::isRenewalNotUseTodayCompactsPts(counterTypeOf(compact)) &&
         compact.fieldB == QDate::currentDate().toJulianDay();
}

void markRenewed(CStkUnClosedCompacts& compact) {
  compact.modifyTag = "KV";
  compact.renewalFlag = '1';
}

/// Those that are still there after the user was asked, and with them the days that were entered.
QVector<CStkUnClosedCompactsPtr> stillHeld(const CCompactsBaseTable& table,
                                           const QVector<CStkUnClosedCompactsPtr>& compacts) {
  QVector<CStkUnClosedCompactsPtr> held;
  for (const CStkUnClosedCompactsPtr& compact : compacts)
    if (table.getDataByKey(compact->getKey())) held.push_back(compact);
  return held;
}

/// What is stored now is changed, so that no push since the application is reverted.
void storeRenewed(const rdservice::CAccountInfo& account, const CStkUnClosedCompacts& compact) {
  const rdservice::CAccountDataPtr store = accountDataOf(account.getKey());
  if (!store) return;
  const rdservice::IDataPtr held =
      store->modifyData(rdservice::RecordStkUnClosedCompacts, compact.getKey(),
                        [](rdservice::IData& stored) { markRenewed(dynamic_cast<CStkUnClosedCompacts&>(stored)); });
  if (held) return;
  const auto renewed = boost::make_shared<CStkUnClosedCompacts>(compact);
  markRenewed(*renewed);
  store->updateData(renewed, false);
}

}  // namespace

void CCompactsPanel::applyRenewal() {
  if (m_unclosedTable == nullptr) return;
  QVector<CStkUnClosedCompactsPtr> kept;
  const QList<rdservice::IDataPtr> checked = m_unclosedTable->checkedDatas();
  for (const rdservice::IDataPtr& record : checked) {
    const auto compact = boost::dynamic_pointer_cast<CStkUnClosedCompacts>(record);
    if (compact && !isRefusedToday(*compact)) kept.push_back(compact);
  }
  const auto ask = [this](int compacts) {
    const QPointer<CCompactsPanel> panel = this;
    const int answer =
        GW::CMessageBox::information(this, hintTitle(), renewalQuestion(compacts), QMessageBox::Yes | QMessageBox::No);
    return panel && answer == QMessageBox::Yes;
  };
  if (kept.size() != checked.size() && !ask(checked.size())) return;
  if (kept.isEmpty())
    GW::CMessageBox::warning(this, warningTitle(), QStringLiteral("请选择您要展期的合约!"));
  else if (ask(kept.size()))
    operatorCompactRenewInfo(stillHeld(*m_unclosedTable, kept));
}

void CCompactsPanel::operatorCompactRenewInfo(const QVector<CStkUnClosedCompactsPtr>& compacts) {
  for (const CStkUnClosedCompactsPtr& compact : compacts) {
    if (!compact) continue;
    const auto apply = boost::make_shared<rdservice::CCreditCompactRenewalApply>();
    apply->accountInfo = compact->accountInfo;
    apply->compactNumber = compact->fieldA;
    apply->openDate = compact->fieldB;
    apply->renewalDays = m_unclosedTable != nullptr ? m_unclosedTable->renewalDays(compact->getKey()) : 0;
    apply->exchangeId = compact->exchangeId.str();
    apply->code = compact->code.str();
    apply->expiryDate = compact->expiryDate;
    apply->newExpiryDate = compact->expiryDate + apply->renewalDays;
    CTradeClient::instance()->applyCompactRenewal(
        apply,
        m_lifeline.guard([apply, compact](CCompactsPanel& panel, const utils::RDError& error,
                                          const std::vector<rdservice::IDataPtr>& resp, const bson::BSONObj& reply) {
          panel.onOperatorCompactRenewInfo(apply, compact, error, resp, reply);
        }));
  }
}

void CCompactsPanel::onOperatorCompactRenewInfo(const rdservice::CCreditCompactRenewalApplyPtr& apply,
                                                const CStkUnClosedCompactsPtr& compact, const utils::RDError& error,
                                                const std::vector<rdservice::IDataPtr>& resp,
                                                const bson::BSONObj& reply) {
  const bool isRenewed = error.isSuccess() && reply.objsize() <= EMPTY_REPLY_BYTES;
  if (isRenewed && apply->accountInfo && compact) storeRenewed(*apply->accountInfo, *compact);
  if (!isRenewed) {
    constexpr utils::CLogSite SITE{
        "CCompactsPanel.cpp",
        "void VN::CCompactsPanel::onOperatorCompactRenewInfo(rdservice::CCreditCompactRenewalApplyPtr, const "
        "rdservice::CStkUnClosedCompactsPtr&, const utils::RDError&, const std::vector<rdservice::IDataPtr>&, "
        "bson::BSONObj)"};
    utils::logInfo(SITE, "[VN::CCompactsPanel::onOperatorCompactRenewInfo] data size : {0}, error: {1}", resp.size(),
                   error.isSuccess() ? reply.toString() : error.errorMsg());
  }
  Q_EMIT sigOperatorCompactRenewInfo(apply, error, resp);
}

void CCompactsPanel::slotOperatorCompactRenewInfo(rdservice::CCreditCompactRenewalApplyPtr apply, utils::RDError error,
                                                  std::vector<rdservice::IDataPtr> resp) {
  showRenewalResult(apply, error, resp);
}

}  // namespace VN
