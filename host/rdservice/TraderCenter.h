#pragma once

#include "host_api.h"
#include "rdservice/CAccountData.h"
#include "rdservice/CInstrumentInfo.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace rdservice {

/// The client's records: one store for each account, the instruments and their quotes. Any thread.
class HOST_API CDataCenter {
 public:
  struct Private;

  explicit CDataCenter(std::unique_ptr<Private> d);
  ~CDataCenter();

  /// The store of an account, null when the client does not know the account key.
  CAccountDataPtr getAccountData(const std::string& accountKey) const;

  /// The instrument, null when unknown.
  CInstrumentInfoPtr getInstrument(std::string_view exchangeId, std::string_view code) const;
  /// Every instrument, in the counter's order.
  std::vector<CInstrumentInfoPtr> getInstruments() const;

  /// The store of what belongs to no account: the quotes (CPriceData). Never null; it has no account information.
  CAccountDataPtr getMarketData() const;

  /// Makes a store for each account that has none; known accounts keep theirs. Called by the trade client.
  void setAccounts(const std::vector<CAccountInfoPtr>& accounts);
  /// Replaces the instruments. Called by the trade client.
  void setInstruments(const std::vector<IDataPtr>& instruments);

 private:
  std::unique_ptr<Private> m_d;
};

/// Entry to the data centre. Any thread.
class HOST_API TraderCenter {
 public:
  struct Private;

  /// The running client's; null when no client runs.
  static TraderCenter* instance();

  explicit TraderCenter(std::unique_ptr<Private> d);
  ~TraderCenter();

  /// Never null; lives as long as the client.
  CDataCenter* getDataCenter() const;

 private:
  std::unique_ptr<Private> m_d;
};

}  // namespace rdservice
