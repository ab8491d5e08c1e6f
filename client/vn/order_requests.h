#pragma once

#include "rdservice/CAccountInfo.h"
#include "rdservice/COrderRequests.h"
#include "rdservice/CStkOrder.h"
#include "utils/RDError.h"
#include "vn/CPlaceCommandParameter.h"

#include <functional>
#include <string>
#include <vector>

namespace VN {

/// One request for each order of the batch and account. Empty when the batch is not to be placed; see
/// `CTradeClient::placeCommands`.
std::vector<rdservice::CPlaceOrderReqPtr> makeOrderRequests(
    const CPlaceCommandParameter& parameter, const std::function<bool(const std::string& accountKey)>& isKnown);

/// The record of an order that did not reach the counter, or of which that is not known.
rdservice::CStkOrderPtr makeFailedOrder(const rdservice::CPlaceOrderReq& request,
                                        const rdservice::CAccountInfoPtr& account, const utils::RDError& error);

}  // namespace VN
