#pragma once

#include "rdservice/CStkUnClosedCompacts.h"

#include <QList>
#include <QString>

namespace GW {
class CBaseTableColumnCheckBoxDelegate;
class CBaseTableColumnIntSpinBoxDelegate;
class CBaseTableColumnLineeditDelegate;
class CBaseTableColumnRadioButtonDelegate;
class CBaseTableColumnRepayPriorityTextDelegate;
}  // namespace GW

namespace VN {

class CHpfDataTable;

/// The columns that a compact table adds to those of its records: selection, renewal days, and the two of the repay
/// priority. Which of them there are depends on the user's rights and variant; a column that is not there has the id
/// -1 and no delegate. The table owns the delegates.
class CCompactColumns {
 public:
  /// Adds the columns; nothing for a table of closed compacts. GUI thread, once.
  void build(CHpfDataTable& table, bool singleSelect);

  /// Shows the select column and offers it to the user, or neither.
  void setSelectVisible(bool visible) const;
  /// Single-select tables: nothing is selected any more.
  void clearRadioSelection() const;
  /// Single-select tables: the selected record; else null.
  rdservice::IDataPtr checkedRadio() const;
  /// Multi-select tables: the displayed records that are ticked, in order of the rows.
  QList<rdservice::IDataPtr> checkedRows() const;
  /// What a table's paging bar and cells report stays in it: further out, small ids mean views of the panel. True for
  /// these events. The beginning of an edit of the renewal days is refused where the counter knows no such days.
  bool handleEvent(int type, const QString& key) const;

  /// The compact's item is visible, enabled and not selected. Any thread.
  void resetSelectItem(const QString& key) const;
  /// What the compact's priority column shows. Any thread.
  void writePriority(const rdservice::CStkUnClosedCompacts& compact) const;

  int select = -1;
  int renewalDays = -1;
  int priorityEdit = -1;
  int priorityText = -1;
  GW::CBaseTableColumnRadioButtonDelegate* radio = nullptr;  ///< of `select` in single-select tables
  GW::CBaseTableColumnCheckBoxDelegate* check = nullptr;     ///< of `select` in the others
  GW::CBaseTableColumnIntSpinBoxDelegate* days = nullptr;
  GW::CBaseTableColumnLineeditDelegate* priorityEditor = nullptr;
  GW::CBaseTableColumnRepayPriorityTextDelegate* priorityLabel = nullptr;

 private:
  void beginRenewalDays(const QString& key) const;
  void addRadio(CHpfDataTable& table);
  void addRenewal(CHpfDataTable& table);
  void addPriority(CHpfDataTable& table);

  CHpfDataTable* m_table = nullptr;
};

}  // namespace VN
