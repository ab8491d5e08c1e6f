#pragma once

#include "rdservice/TraderCenter.h"

#include <memory>

namespace rdservice {

/// The running client's data centre, empty; `TraderCenter::instance()` answers it as long as it lives. The stores that
/// it handed out may outlive it.
std::unique_ptr<TraderCenter> makeTraderCenter();

/// An empty store for one account.
CAccountDataPtr makeAccountData(CAccountInfoPtr account);

}  // namespace rdservice
