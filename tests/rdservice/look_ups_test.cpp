#include "rdservice/records.h"

#include "rdservice/CPositionStatics.h"
#include "rdservice/CPriceData.h"
#include "rdservice/TypeManager.h"
#include "rdservice/data_centre_factory.h"
#include "rdservice/rdservice_enums.h"

#include <gtest/gtest.h>

#include <boost/smart_ptr/make_shared.hpp>

using namespace rdservice;

namespace {

IDataPtr position(const char* exchange, const char* code, char direction, char hedgeFlag, std::int64_t volume) {
  auto record = boost::make_shared<CPositionStatics>();
  record->accountInfo = test::creditAccount();
  record->exchangeId = exchange;
  record->code = code;
  record->direction = direction;
  record->hedgeFlag = hedgeFlag;
  record->currentVolume = volume;
  record->shareholderId = "E01";
  return record;
}

IDataPtr quote(const char* exchange, const char* code, double last) {
  auto record = boost::make_shared<CPriceData>();
  record->exchangeId = exchange;
  record->code = code;
  record->lastPrice = last;
  return record;
}

}  // namespace

TEST(LookUps, positionsByDirectionHedgeFlagAndHolder) {
  const auto account = makeAccountData(test::creditAccount());
  account->updateDatas({position("SH", "600000", '0', '1', 100), position("SH", "600000", '1', '1', 200),
                        position("SH", "600000", '0', '3', 300), position("SZ", "000001", '0', '1', 400)});
  const struct {
    const char* exchange;
    const char* code;
    char direction;
    char hedgeFlag;
    int kind;
    const char* shareholder;
    std::int64_t volume;  ///< -1 for none
  } cases[] = {
      {"SH", "600000", '0', '1', 1, "", 100}, {"SH", "600000", '1', '1', 1, "", 200},
      {"SH", "600000", '0', '3', 1, "", 300}, {"SZ", "000001", '0', '1', 1, "E01", 400},
      {"SZ", "000001", '1', '1', 1, "", -1},  {"SZ", "600000", '0', '1', 1, "", -1},
      {"SH", "600000", '0', '1', 2, "", -1},  {"SH", "600000", '0', '1', 1, "E02", -1},
  };
  for (const auto& c : cases) {
    const auto found = CPositionStaticsHelper::getPosition(account, c.exchange, c.code, c.direction, c.hedgeFlag,
                                                           c.kind, c.shareholder, '0');
    EXPECT_EQ(found == nullptr ? -1 : found->currentVolume, c.volume) << c.exchange << c.code << c.direction;
  }
  EXPECT_EQ(CPositionStaticsHelper::getPosition(nullptr, "SH", "600000", '0', '1', 1, "", '0'), nullptr);
}

TEST(LookUps, lastPricesAreThoseOfTheMarketStore) {
  EXPECT_EQ(CPriceDataHelper::getLastPrice(PriceSourceLast, "SH", "600000"), 0) << "no client runs";
  const auto centre = makeTraderCenter();
  const auto market = centre->getDataCenter()->getMarketData();
  EXPECT_EQ(CPriceDataHelper::getLastPrice(PriceSourceLast, "SH", "600000"), 0);
  market->updateDatas({quote("SH", "600000", 11.25), quote("SZ", "000001", 9)});
  market->updateDatas({quote("SH", "600000", 11.5)});
  EXPECT_EQ(CPriceDataHelper::getLastPrice(19999, "SH", "600000"), 11.5);
  EXPECT_EQ(CPriceDataHelper::getLastPrice(19999, "SZ", "000001"), 9);
  EXPECT_EQ(CPriceDataHelper::getLastPrice(19999, "SZ", "600000"), 0);
  EXPECT_EQ(CPriceDataHelper::getLastPrice(0, "SH", "600000"), 0) << "another price";
}

TEST(LookUps, operationNames) {
  const struct {
    int operation;
    const char* name;
  } cases[] = {{18, "买入"},     {19, "卖出"},           {22, "买券还券"},       {23, "直接还券"}, {24, "卖券还款"},
               {25, "直接还款"}, {1012, "专项直接还券"}, {1021, "专项买券还券"}, {77, "77"}};
  for (const auto& c : cases) EXPECT_EQ(operationValueToString(c.operation), c.name);
}
