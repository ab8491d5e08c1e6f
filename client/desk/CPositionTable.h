#pragma once

#include "CAccountFeed.h"
#include "rdservice/CPositionStatics.h"
#include "utils/CMutex.h"
#include "vn/CHpfDataTable.h"

#include <memory>

/// The positions of the accounts that are logged in, with last price and market value, which follow the quotes. GUI
/// thread; needs a running client.
class CPositionTable : public VN::CHpfDataTable {
 public:
  explicit CPositionTable(QWidget* parent);
  ~CPositionTable() override;

 private:
  class CPriceColumn;

  void addColumns();
  // Any thread.
  void writeRows(const std::vector<rdservice::IDataPtr>& positions);
  void writeQuotes(const std::vector<rdservice::IDataPtr>& quotes);
  void writePrice(const rdservice::CPositionStatics& position);

  CPriceColumn* m_price = nullptr;
  int m_valueColumn = -1;
  utils::CMutex m_writing;  ///< from looking up prices to handing them over, so that none overtakes a newer one
  utils::CSubscriptionPtr m_quotes;
  std::unique_ptr<CAccountFeed> m_feed;
};
