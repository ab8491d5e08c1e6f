#pragma once

#include "CAccountFeed.h"
#include "vn/CHpfDataTable.h"

/// The orders of the accounts that are logged in, the newest first. GUI thread; needs a running client.
class COrderTable : public VN::CHpfDataTable {
 public:
  explicit COrderTable(QWidget* parent);
  ~COrderTable() override;

 private:
  void arrangeColumns();

  CAccountFeed m_feed;
};
