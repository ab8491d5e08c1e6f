#pragma once

#include "rdservice/CStkOrder.h"
#include "utils/RDError.h"

#include <string>
#include <vector>

namespace rdservice {
class CPlaceOrderReq;
}

namespace counter {

class CBrokerAccounts;
class CSqlConnection;

/// Takes orders and fills them. Only the counter's writer thread uses it.
///
/// It knows the returns of securities that the account holds or buys, and the sale of securities that repays financing;
/// other operations are refused. An order that needs shares holds them back until it is filled. Each step is one
/// transaction; errors of the database are logged and leave it as it was.
class COrderDesk {
 public:
  explicit COrderDesk(CBrokerAccounts& accounts) : m_accounts(accounts) {}

  struct CPlaced {
    utils::RDError error;           ///< there is no order
    rdservice::CStkOrderPtr order;  ///< entrusted or refused
    std::vector<rdservice::IDataPtr> changed{};

    bool isEntrusted() const;
  };
  CPlaced place(const CSqlConnection& connection, const rdservice::CPlaceOrderReq& request);

  /// Fills an entrusted order as a whole, or refuses it when the liability or the position has gone meanwhile. Returns
  /// what changed: compacts, position, order. Nothing for an order that is not entrusted any more.
  std::vector<rdservice::IDataPtr> fill(const CSqlConnection& connection, const rdservice::CStkOrder& order);

  /// The orders that wait to be filled.
  std::vector<rdservice::CStkOrderPtr> entrusted(const CSqlConnection& connection);

 private:
  CBrokerAccounts& m_accounts;
};

}  // namespace counter
