// What the statistics table makes of liabilities: baskets, and the return of borrowed securities.

#include "compacts/tables/CCompactsStaticsTable.h"
#include "compacts/tables/compact_records.h"
#include "dialogs/CSecuRepayComfirmDialog.h"
#include "gw/CMessageBox.h"
#include "gw/CSimpleInputDialog.h"
#include "rdservice/CCodeOrderParam.h"
#include "rdservice/CPositionStatics.h"
#include "rdservice/CPriceData.h"
#include "rdservice/TraderCenter.h"
#include "rdservice/rdservice_enums.h"
#include "utils/threads.h"
#include "vn/CPlaceCommandParameter.h"
#include "vn/CTradeClient.h"
#include "vn/CUserConfig.h"

#include <QAction>

#include <algorithm>
#include <limits>
#include <list>

namespace VN {

using rdservice::CStkUnClosedCompactsStatics;

namespace {

constexpr const char* SAVE_TITLE = "保存篮子";
constexpr const char* HINT_TITLE = "提示";
constexpr const char* WARNING_TITLE = "警告";
constexpr const char* SAVED_TEXT = "篮子保存成功";
constexpr const char* RETURN_TITLE = "批量还券确认";
constexpr const char* NOT_PLACED_TEXT = "部分还券委托未能发出，请查看委托后重试";
constexpr int COMMAND_KIND = 8;

int toInt(std::int64_t volume) {
  using CLimits = std::numeric_limits<int>;
  return static_cast<int>(std::clamp<std::int64_t>(volume, CLimits::min(), CLimits::max()));
}

CPlaceCommandParameter returnCommand(const CSecuRepayEntry& entry) {
  rdservice::CCodeOrderParam order;
  order.operationType = entry.source == rdservice::BrushSourceSpecial ? rdservice::OperationSpecialDirectReturn
                                                                      : rdservice::OperationDirectReturn;
  order.stockInfo = {entry.position->exchangeId.str(), entry.position->code.str(), entry.position->name.str(),
                     entry.position->shareholderId};
  order.accountInfo = entry.account;
  order.volume = entry.volume;
  CPlaceCommandParameter command;
  command.tradeType = COMMAND_KIND;
  command.orders = {order};
  command.accountRatios = {{entry.account->getKey(), 1.0}};
  return command;
}

}  // namespace

struct CCompactsStaticsTable::CBasketKind {
  const char* menuText;
  void (CCompactsStaticsTable::*slot)(bool);
  const char* basketName;
  char compactType;
  char source;

  enum EKind { Financing, SpecialFinancing, Lending, SpecialLending };
  static const CBasketKind ALL[];
};

const CCompactsStaticsTable::CBasketKind CCompactsStaticsTable::CBasketKind::ALL[] = {
    {"生成普通融资负债篮子", &CCompactsStaticsTable::slotSaveFinBasket, "融资负债篮子", '0', '0'},
    {"生成专项融资负债篮子", &CCompactsStaticsTable::slotSaveSpecialFinBasket, "专项融资负债篮子", '0', '1'},
    {"生成普通融券负债篮子", &CCompactsStaticsTable::slotSaveSLOBasket, "融券负债篮子", '1', '0'},
    {"生成专项融券负债篮子", &CCompactsStaticsTable::slotSaveSpecialSLOBasket, "专项融券负债篮子", '1', '1'},
};

void CCompactsStaticsTable::addMenu() {
  addMenuSeparator();
  for (const CBasketKind& kind : CBasketKind::ALL)
    connect(addMenuAction(QString::fromUtf8(kind.menuText)), &QAction::triggered, this, kind.slot);
}

void CCompactsStaticsTable::slotSaveFinBasket(bool) { askForBasket(CBasketKind::ALL[CBasketKind::Financing]); }

void CCompactsStaticsTable::slotSaveSpecialFinBasket(bool) {
  askForBasket(CBasketKind::ALL[CBasketKind::SpecialFinancing]);
}

void CCompactsStaticsTable::slotSaveSLOBasket(bool) { askForBasket(CBasketKind::ALL[CBasketKind::Lending]); }

void CCompactsStaticsTable::slotSaveSpecialSLOBasket(bool) {
  askForBasket(CBasketKind::ALL[CBasketKind::SpecialLending]);
}

void CCompactsStaticsTable::askForBasket(const CBasketKind& kind) {
  utils::assertGui();
  auto* const dialog = new GW::CSimpleInputDialog(QString::fromUtf8(SAVE_TITLE), QString(), this);
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->setText(QString::fromUtf8(kind.basketName));
  // Another account's rows may have come while the user was asked.
  dialog->getInput([this, &kind, account = currentAccount()](const QString& name) {
    if (account == currentAccount()) saveBasket(kind, name);
  });
}

void CCompactsStaticsTable::saveBasket(const CBasketKind& kind, const QString& name) {
  CUserConfig& config = *getUserConfig();
  const CUserConfig::CBasketPtr basket = config.getBasketSettingNoCreate(name);
  basket->stocks.clear();
  basket->setName(name);
  const rdservice::CDataCenter& centre = *rdservice::TraderCenter::instance()->getDataCenter();
  const std::vector<rdservice::IDataPtr> rows = getAllDatas();
  for (const rdservice::IDataPtr& row : rows) {
    const auto statistic = boost::dynamic_pointer_cast<CStkUnClosedCompactsStatics>(row);
    if (!statistic || statistic->compactType != kind.compactType || statistic->source != kind.source) continue;
    const std::string& market = statistic->exchangeId.str();
    const std::string& code = statistic->code.str();
    const rdservice::CInstrumentInfoPtr instrument = centre.getInstrument(market, code);
    const bool isLending = kind.compactType == rdservice::CompactTypeSecuritiesLending;
    CBasketStockData line;
    line.market = QString::fromStdString(market);
    line.code = QString::fromStdString(code);
    if (instrument) line.name = QString::fromStdString(instrument->name);
    line.operation = isLending ? rdservice::OperationBuy : rdservice::OperationSell;
    line.volume = isLending ? statistic->lendingVolume : statistic->financingVolume;
    line.amount = static_cast<double>(line.volume) *
                  rdservice::CPriceDataHelper::getLastPrice(rdservice::PriceSourceLast, market, code);
    basket->stocks.append(line);
  }
  const QString error = config.saveBaskets();
  if (error.isEmpty())
    GW::CMessageBox::information(this, QString::fromUtf8(HINT_TITLE), QString::fromUtf8(SAVED_TEXT));
  else
    GW::CMessageBox::warning(this, QString::fromUtf8(WARNING_TITLE), error);
}

void CCompactsStaticsTable::returnSecurities(const CStatisticMap& statics) {
  utils::assertGui();
  const rdservice::CAccountDataPtr store = accountDataOf(currentAccount());
  const rdservice::CAccountInfoPtr account = store ? store->getAccountInfo() : nullptr;
  if (!account) return;
  std::list<CSecuRepayEntry> entries;
  for (const auto& [key, statistic] : statics) {
    if (!statistic || statistic->compactType != rdservice::CompactTypeSecuritiesLending) continue;
    CSecuRepayEntry entry;
    entry.account = account;
    entry.position = positionOf(store, statistic->exchangeId.str(), statistic->code.str());
    if (!entry.position || entry.position->currentVolume <= 0) continue;
    entry.volume = toInt(std::min(entry.position->currentVolume, statistic->lendingVolume));
    entry.liability = toInt(statistic->lendingVolume);
    entry.source = statistic->source;
    if (entry.volume > 0) entries.push_back(entry);
  }
  auto* const dialog = new CSecuRepayComfirmDialog(QString::fromUtf8(RETURN_TITLE), this);  // deletes itself
  dialog->setData(entries, store);
  if (dialog->exec() != QDialog::Accepted) return;
  bool isAllPlaced = true;
  for (const CSecuRepayEntry& entry : entries)
    if (entry.volume >= 1) isAllPlaced = CTradeClient::instance()->placeCommands(returnCommand(entry)) && isAllPlaced;
  if (!isAllPlaced)
    GW::CMessageBox::warning(this, QString::fromUtf8(WARNING_TITLE), QString::fromUtf8(NOT_PLACED_TEXT));
}

}  // namespace VN
