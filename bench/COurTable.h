#pragma once

#include "rdservice/IData.h"

#include "vn/CHpfDataTable.h"

#include <QAbstractScrollArea>
#include <QStringList>

#include <functional>
#include <vector>

/// The table of the panels with one column for each field, as `CPeerTable` has it: records are handed over by another
/// thread, taken over and shown by this one. GUI thread.
class COurTable {
 public:
  COurTable();

  /// Nothing has to be made ready; the peer's counterpart has.
  static void prepare(const std::vector<rdservice::IDataPtr>&) {}
  /// Replaces everything.
  void load(const std::vector<rdservice::IDataPtr>& records);
  /// Replaces the records of known keys, adds the others. Returns the milliseconds that both threads worked, without
  /// those in which the other one woke up.
  double push(const std::vector<rdservice::IDataPtr>& records);
  void sort(int column, Qt::SortOrder order) { m_table.setSortColumn(column, order); }
  /// Only rows with one of these texts; none: every row.
  void filter(int column, const QStringList& texts);

  VN::CHpfDataTable& widget() { return m_table; }
  QAbstractScrollArea& area() { return *m_area; }
  int rowCount() const { return m_table.rowCount(); }
  QString cellText(int row, int column) const { return m_table.cellText(row, column); }

 private:
  void write(const std::function<void()>& run);
  void show();

  VN::CHpfDataTable m_table;
  QAbstractScrollArea* m_area = nullptr;
};
