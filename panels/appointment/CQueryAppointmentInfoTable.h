#pragma once

#include "vn/CHpfDataTable.h"

#include <string>
#include <vector>

namespace GW {
class CBaseTableColumnCheckBoxDelegate;
class CBaseTableColumnIntSpinBoxDelegate;
}  // namespace GW

namespace VN {

/// The compacts of one account that are open for renewal by appointment: which of them shall be extended, and by how
/// many days. GUI thread.
class CQueryAppointmentInfoTable : public CHpfDataTable {
  Q_OBJECT
 public:
  static constexpr int TABLE_ID = 16886;
  static constexpr int MAX_DAYS = 182;

  explicit CQueryAppointmentInfoTable(QWidget* parent);
  ~CQueryAppointmentInfoTable() override;

  /// Adds the table's two own columns, before the others. Once, after construction.
  void setUpColumns();

  /// The ticked rows, in their order.
  std::vector<rdservice::IDataPtr> checkedRecords() const;
  /// Days by which the row of that key shall be extended.
  int renewalDays(const std::string& key) const;
  /// The rows to come: every one is ticked and has the default days.
  void markNewRows(const std::vector<rdservice::IDataPtr>& records);
  /// Days for the rows to come and for every row held, whatever the user has entered; 0 to 182, others are clipped.
  void setDefaultRenewalDays(int days);
  int defaultRenewalDays() const { return m_defaultDays; }
  void checkAll(bool on);
  /// The header's box tells whether every row is ticked; not while there is none.
  void updateHeaderCheckBox();

  bool handleEvent(int type, int p1, int p2, QString text, void* data) override;

 private:
  int m_checkColumn = -1;
  int m_daysColumn = -1;
  int m_defaultDays = 0;
  GW::CBaseTableColumnCheckBoxDelegate* m_check = nullptr;
  GW::CBaseTableColumnIntSpinBoxDelegate* m_days = nullptr;
};

}  // namespace VN
