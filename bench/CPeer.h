#pragma once

#include "CPeerTable.h"
#include "bench_times.h"

#include "rdservice/CStkUnClosedCompacts.h"

#include <QAbstractScrollArea>

#include <vector>

/// The peer with the face of `COurTable`. GUI thread.
class CPeer {
 public:
  CPeer() : m_table(rdservice::CStkUnClosedCompacts::structDes()) { m_table.show(); }

  void prepare(const std::vector<rdservice::IDataPtr>& records) { m_table.prepare(records); }
  void load(const std::vector<rdservice::IDataPtr>&) { m_table.load(); }
  double push(const std::vector<rdservice::IDataPtr>& records) {
    return msOf([&] { m_table.push(records, s_signals); });
  }
  void sort(int column, Qt::SortOrder order) { m_table.sort(column, order); }
  void filter(int column, const QStringList& texts) { m_table.setFilter(column, texts, s_filterWay); }
  CPeerTable& widget() { return m_table; }
  QAbstractScrollArea& area() { return m_table; }
  int rowCount() const { return m_table.rowCount(); }
  QString cellText(int row, int column) const { return m_table.cellText(row, column); }

  inline static CPeerTable::EPushSignals s_signals = CPeerTable::EPushSignals::Runs;
  inline static CPeerTable::EFilterWay s_filterWay = CPeerTable::EFilterWay::Reset;

 private:
  CPeerTable m_table;
};
