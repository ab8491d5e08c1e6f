// Positions and orders below the compacts.

#include "CDeskTest.h"

#include "CMainWindow.h"
#include "gw/CBaseHighPerformanceTable.h"
#include "rdservice/CPositionStatics.h"
#include "rdservice/CPriceData.h"
#include "rdservice/CStkUnClosedCompactsStatics.h"
#include "rdservice/TraderCenter.h"
#include "rdservice/rdservice_enums.h"
#include "runtime/CClientRuntime.h"
#include "vn/CPlaceCommandParameter.h"
#include "vn/CTradeClient.h"

#include <cmath>

namespace {

using kit::waitUntil;

class Docks : public DeskTest {
 protected:
  GW::CBaseHighPerformanceTable& table(const char* name) const {
    return dynamic_cast<GW::CBaseHighPerformanceTable&>(*m_window->findChild<QWidget*>(QString::fromLatin1(name)));
  }
};

QString shownCell(const GW::CBaseHighPerformanceTable& table, int row, const char* title) {
  for (int id = 0; id < table.columnCount(); ++id)
    if (table.columnTitle(id) == QString::fromUtf8(title)) return table.cellText(row, id);
  return QStringLiteral("no such column");
}

rdservice::CDataCenter& centre() { return *rdservice::TraderCenter::instance()->getDataCenter(); }

rdservice::CPositionStaticsPtr storedPosition(const rdservice::IData& shown) {
  const auto& position = static_cast<const rdservice::CPositionStatics&>(shown);
  const auto store = centre().getAccountData(position.accountInfo->getKey());
  return boost::static_pointer_cast<rdservice::CPositionStatics>(
      store->getData(rdservice::RecordPositionStatics, position.getKey()));
}

double quoteOf(const rdservice::CPositionStatics& position) {
  const auto quote = boost::static_pointer_cast<rdservice::CPriceData>(
      centre().getMarketData()->getData(rdservice::RecordPriceData, position.exchangeId.str() + position.code.str()));
  return quote ? quote->lastPrice : -1;
}

/// Whether each row shows what the data centre holds: volume, price, and their product in whole yuan.
bool isAsStored(const GW::CBaseHighPerformanceTable& positions) {
  for (int row = 0; row < positions.rowCount(); ++row) {
    const auto stored = storedPosition(*positions.getData(row));
    const double price = quoteOf(*stored);
    const double value = static_cast<double>(stored->currentVolume) * price;
    if (numberOf(shownCell(positions, row, "当前拥股")) != static_cast<double>(stored->currentVolume)) return false;
    if (std::abs(numberOf(shownCell(positions, row, "最新价")) - price) > 1e-9) return false;
    if (std::abs(numberOf(shownCell(positions, row, "市值")) - value) > 0.51) return false;
  }
  return true;
}

std::size_t storedPositions(const std::vector<const char*>& accounts) {
  std::size_t count = 0;
  for (const char* key : accounts)
    count += centre().getAccountData(key)->getData(rdservice::RecordPositionStatics).size();
  return count;
}

/// Shares that the account both owes and holds, as an order to return all of them.
rdservice::CCodeOrderParam returnOrder(const char* accountKey) {
  const auto store = centre().getAccountData(accountKey);
  for (const auto& record : store->getData(rdservice::RecordStkUnClosedCompactsStatics)) {
    const auto& owed = static_cast<const rdservice::CStkUnClosedCompactsStatics&>(*record);
    if (owed.lendingVolume <= 0 || owed.source != rdservice::BrushSourceNormal) continue;
    const auto position = rdservice::CPositionStaticsHelper::getPosition(
        store, owed.exchangeId.str(), owed.code.str(), rdservice::EntrustDirectionBuy, rdservice::HedgeFlagSpeculation,
        rdservice::PositionKindHeld, std::string(), '0');
    if (!position || position->availableVolume <= 0) continue;
    rdservice::CCodeOrderParam order;
    order.operationType = rdservice::OperationDirectReturn;
    order.stockInfo = {position->exchangeId.str(), position->code.str(), position->name.str(), position->shareholderId};
    order.accountInfo = store->getAccountInfo();
    order.volume = std::min(position->availableVolume, owed.lendingVolume);
    return order;
  }
  ADD_FAILURE() << "the book has nothing to return";
  return {};
}

TEST_F(Docks, PositionsFollowQuotesOrdersAndLogIns) {
  const std::vector<const char*> all = {LARGE, "3.60010002", "3.60010003", EMPTY, SMALL, "2.10020001"};
  raise("positions");
  auto& positions = table("positionTable");
  ASSERT_TRUE(waitUntil([&] {
    return positions.rowCount() > 0 && positions.rowCount() == static_cast<int>(storedPositions(all)) &&
           isAsStored(positions);
  })) << positions.rowCount();

  const double firstPrice = quoteOf(*storedPosition(*positions.getData(0)));
  m_window->client().setCounterQuoteWalk(1000, 10);
  ASSERT_TRUE(waitUntil([&] { return numberOf(shownCell(positions, 0, "最新价")) != firstPrice; }));
  m_window->client().setCounterQuoteWalk(0, 1000);
  ASSERT_TRUE(waitUntil([&] { return isAsStored(positions); }));

  // While they are hidden as well: they show it when they are raised again.
  raise("orders");
  auto& orders = table("orderTable");
  ASSERT_TRUE(waitUntil(
      [] { return !centre().getAccountData(LARGE)->getData(rdservice::RecordStkUnClosedCompactsStatics).empty(); }));
  const rdservice::CCodeOrderParam order = returnOrder(LARGE);
  const struct {
    std::int64_t factor;
    const char* state;
    const char* reason;
  } cases[] = {{1000, "废单", "可用数量不足"}, {1, "已成", ""}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.state);
    VN::CPlaceCommandParameter command;
    command.tradeType = rdservice::TraderTypeStockCredit;
    command.orders = {order};
    command.orders.front().volume *= c.factor;
    const int before = orders.rowCount();
    ASSERT_TRUE(VN::CTradeClient::instance()->placeCommands(command));
    const auto rowIn = [&](const char* state) {
      int row = orders.rowCount() - 1;
      while (row >= 0 && shownCell(orders, row, "委托状态") != QString::fromUtf8(state)) --row;
      return row;
    };
    ASSERT_TRUE(waitUntil([&] { return orders.rowCount() == before + 1 && rowIn(c.state) >= 0; }));
    EXPECT_EQ(shownCell(orders, rowIn(c.state), "交易类型"), QStringLiteral("直接还券"));
    EXPECT_TRUE(shownCell(orders, rowIn(c.state), "废单原因").startsWith(QString::fromUtf8(c.reason)));
    EXPECT_EQ(shownCell(orders, rowIn(c.state), "废单原因").isEmpty(), *c.reason == '\0');
    EXPECT_FALSE(shownCell(orders, rowIn(c.state), "委托时间").isEmpty());
  }
  raise("positions");
  const std::string returned = rdservice::CPositionStatics::genKey(order.accountInfo, order.stockInfo.exchangeId,
                                                                   order.stockInfo.code, '0', '1');
  ASSERT_TRUE(waitUntil([&] {
    const auto row = boost::static_pointer_cast<rdservice::CPositionStatics>(positions.getDataByKey(returned));
    return row && row->version() == storedPosition(*row)->version() && isAsStored(positions);
  }));

  VN::CTradeClient::instance()->setLogin(LARGE, false);
  const std::size_t others = storedPositions(all) - storedPositions({LARGE});
  ASSERT_TRUE(waitUntil([&] { return positions.rowCount() == static_cast<int>(others); })) << positions.rowCount();
  VN::CTradeClient::instance()->setLogin(LARGE, true);
  ASSERT_TRUE(waitUntil([&] { return positions.rowCount() == static_cast<int>(storedPositions(all)); }));
  ASSERT_TRUE(waitUntil([&] { return isAsStored(positions); }));
}

}  // namespace
