#include "vn/order_requests.h"

#include "rdservice/TraderCenter.h"
#include "rdservice/rdservice_enums.h"

#include <QDateTime>

#include <boost/make_shared.hpp>

#include <atomic>
#include <cmath>
#include <limits>

namespace VN {

namespace {

/// Shares of an order that fall to an account; 0 when it cannot be told.
std::int64_t shareOf(std::int64_t volume, double ratio) {
  const double shares = std::floor(static_cast<double>(volume) * ratio + 1e-6);  // a third of 300 is 100
  const bool isGood = shares >= 1 && shares < static_cast<double>(std::numeric_limits<std::int64_t>::max());
  return isGood ? static_cast<std::int64_t>(shares) : 0;
}

rdservice::CPlaceOrderReqPtr makeRequest(const CPlaceCommandParameter& parameter,
                                         const rdservice::CCodeOrderParam& order, const std::string& accountKey,
                                         std::int64_t volume) {
  auto request = boost::make_shared<rdservice::CPlaceOrderReq>();
  request->accountKey = accountKey;
  request->exchangeId = order.stockInfo.exchangeId;
  request->code = order.stockInfo.code;
  request->operationType = order.operationType;
  request->volume = volume;
  request->price = order.price;
  request->shareholderId = order.stockInfo.shareholderId;
  request->batchNo = parameter.batchNo;
  request->remark = parameter.remark;
  return request;
}

}  // namespace

std::vector<rdservice::CPlaceOrderReqPtr> makeOrderRequests(const CPlaceCommandParameter& parameter,
                                                            const std::function<bool(const std::string&)>& isKnown) {
  if (parameter.tradeType != rdservice::TraderTypeStockCredit || parameter.priceMode != 0) return {};
  std::vector<rdservice::CPlaceOrderReqPtr> requests;
  for (const rdservice::CCodeOrderParam& order : parameter.orders) {
    const auto add = [&](const std::string& accountKey, std::int64_t volume) {
      const bool isGood = volume >= 1 && order.price >= 0 && std::isfinite(order.price) && isKnown(accountKey) &&
                          !order.stockInfo.exchangeId.empty() && !order.stockInfo.code.empty();
      if (isGood) requests.push_back(makeRequest(parameter, order, accountKey, volume));
      return isGood;
    };
    if (parameter.accountRatios.empty() &&
        !add(order.accountInfo ? order.accountInfo->getKey() : std::string(), order.volume))
      return {};
    for (const auto& [accountKey, ratio] : parameter.accountRatios)
      if (!add(accountKey, shareOf(order.volume, ratio))) return {};
  }
  return requests;
}

rdservice::CStkOrderPtr makeFailedOrder(const rdservice::CPlaceOrderReq& request,
                                        const rdservice::CAccountInfoPtr& account, const utils::RDError& error) {
  static std::atomic<unsigned> s_lastNumber{0};
  const QDateTime now = QDateTime::currentDateTime();
  auto order = boost::make_shared<rdservice::CStkOrder>();
  order->accountInfo = account;
  order->orderId = "L" + std::to_string(++s_lastNumber);
  order->exchangeId = request.exchangeId;
  order->code = request.code;
  if (const auto* centre = rdservice::TraderCenter::instance())
    if (const auto instrument = centre->getDataCenter()->getInstrument(request.exchangeId, request.code))
      order->name = instrument->name;
  order->operationType = request.operationType;
  order->volume = request.volume;
  order->price = request.price;
  const bool isUnanswered = error.errorCode() == utils::RDError::TimedOut;
  order->state = static_cast<char>(isUnanswered ? rdservice::OrderUnanswered : rdservice::OrderRefused);
  order->reason = error.errorMsg();
  order->orderDate = static_cast<std::int32_t>(now.date().toJulianDay());
  order->orderTime = now.toString(QStringLiteral("HH:mm:ss")).toStdString();
  order->batchNo = request.batchNo;
  order->remark = request.remark;
  return order;
}

}  // namespace VN
