#pragma once

#include "CTestRecord.h"

#include "gw/CBaseHighPerformanceTable.h"
#include "gw/column_delegates.h"
#include "gw/table/CShownRows.h"

#include <QCoreApplication>
#include <QEvent>
#include <QString>

#include <functional>
#include <memory>
#include <vector>

constexpr int COLUMN_BOX = CTestRecord::ColumnCount;

inline CTestRecordPtr makeRecord(int id, const QString& name, std::int64_t volume) {
  auto record = boost::make_shared<CTestRecord>();
  record->id = QStringLiteral("%1").arg(id, 6, 10, QLatin1Char('0')).toStdString();
  record->name = name.toStdString();
  record->volume = volume;
  record->amount = double(id);
  return record;
}

/// Shown rows with a column for each field and one of check boxes, filled by hand.
class CRowsByHand : public GW::IRowsObserver {
 public:
  CRowsByHand() : m_table(1, nullptr) {
    for (const rdservice::CFieldDes& field : CTestRecord::structDes()) {
      GW::CTableColumn column;
      column.title = QString::fromUtf8(field.title);
      column.field = &field;
      column.width = 80;
      rows.addColumn(std::move(column));
    }
    GW::CTableColumn box;
    box.title = QString::fromUtf8("选择");
    box.width = 40;
    box.delegate = std::make_unique<GW::CBaseTableColumnCheckBoxDelegate>(COLUMN_BOX, &m_table);
    rows.addColumn(std::move(box));
    rows.setObserver(this);
  }
  ~CRowsByHand() override { rows.setObserver(nullptr); }

  /// Slots that are there already are changed, the next ones added.
  void put(const std::vector<int>& slots, const std::vector<rdservice::IDataPtr>& records, bool isChecked = false) {
    GW::CRowsDrain drain;
    drain.slots = slots;
    drain.records = records;
    GW::CItemColumn boxes;
    for (int i = 0; i < static_cast<int>(slots.size()); ++i) boxes.setChecked(i, isChecked);
    drain.items.emplace_back(COLUMN_BOX, boxes);
    rows.apply(std::move(drain));
  }
  void append(const std::vector<rdservice::IDataPtr>& records) {
    std::vector<int> slots;
    for (std::size_t i = 0; i < records.size(); ++i) slots.push_back(rows.slotCount() + static_cast<int>(i));
    put(slots, records);
  }
  void append(const QStringList& names) {
    std::vector<rdservice::IDataPtr> records;
    for (const QString& name : names) records.push_back(makeRecord(m_nextId++, name, 1));
    append(records);
  }

  void rowsAboutToChange(const GW::CRowsChange& change) override {
    for (const auto& tell : about) tell(change);
  }
  void rowsChanged(const GW::CRowsChange& change) override {
    for (const auto& tell : changed) tell(change);
  }

  GW::CShownRows rows;
  std::vector<std::function<void(const GW::CRowsChange&)>> about;
  std::vector<std::function<void(const GW::CRowsChange&)>> changed;

 private:
  GW::CStandardHpfTable m_table;  ///< of which the delegate is one
  int m_nextId = 1;
};

/// Lets what was posted or deleted later happen.
inline void settle() {
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  QCoreApplication::processEvents();
}
