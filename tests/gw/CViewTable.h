#pragma once

#include "CTestRecord.h"

#include "gw/table/CShownRows.h"
#include "gw/view/CHpfTableView.h"

#include <QApplication>
#include <QEvent>
#include <QHeaderView>
#include <QPaintEvent>
#include <QScrollBar>
#include <QtTest/QTest>

#include <memory>
#include <string>
#include <utility>
#include <vector>

/// A view of rows that are filled by hand; notes what its viewport paints.
class CViewTable : public QObject, public GW::IRowsObserver {
 public:
  explicit CViewTable(int rowsAtFirst) {
    for (const rdservice::CFieldDes& field : CTestRecord::structDes()) {
      GW::CTableColumn column;
      column.title = QString::fromUtf8(field.title);
      column.field = &field;
      column.alignment = GW::alignmentOf(field);
      column.width = 100;
      rows.addColumn(std::move(column));
    }
    rows.setObserver(this);
    view = std::make_unique<GW::CHpfTableView>(rows, nullptr);
    view->viewport()->installEventFilter(this);
    view->resize(450, view->header()->sizeHint().height() + 10 * view->rowHeight() + 5 +
                          view->horizontalScrollBar()->sizeHint().height());
    append(rowsAtFirst);
    view->show();
    QApplication::setActiveWindow(view.get());
    view->setFocus();
    settle();
  }
  ~CViewTable() override { rows.setObserver(nullptr); }

  void rowsAboutToChange(const GW::CRowsChange& change) override { view->rowsAboutToChange(change); }
  void rowsChanged(const GW::CRowsChange& change) override { view->rowsChanged(change); }

  static rdservice::IDataPtr makeRecord(int id, int volume) {
    static const char* const NAMES[] = {"浦发银行", "中国石化", "贵州茅台", "ST 皇台"};
    auto record = boost::make_shared<CTestRecord>();
    record->id = QStringLiteral("%1").arg(id, 6, 10, QLatin1Char('0')).toStdString();
    record->name = std::string(NAMES[id % 4]);
    record->group = static_cast<char>('0' + volume % 5);
    record->volume = volume;
    record->amount = id * 100.25;
    return record;
  }
  void append(int count) {
    GW::CRowsDrain drain;
    for (int i = 0; i < count; ++i) {
      drain.slots.push_back(rows.slotCount() + i);
      drain.records.push_back(makeRecord(m_nextId++, i));
    }
    rows.apply(std::move(drain));
  }
  void change(const std::vector<int>& slots, int volume) {
    GW::CRowsDrain drain;
    for (const int slot : slots) {
      auto record = boost::make_shared<CTestRecord>(testRecord(rows.record(slot)));
      record->volume = volume;
      drain.slots.push_back(slot);
      drain.records.push_back(record);
    }
    rows.apply(std::move(drain));
  }
  /// Rows for which `stays` is false go, the others are renumbered.
  template <class F>
  void drop(F stays) {
    GW::CRowsDrain drain;
    drain.replaced = true;
    int next = 0;
    for (int slot = 0; slot < rows.slotCount(); ++slot) drain.newSlots.push_back(stays(slot) ? next++ : -1);
    rows.apply(std::move(drain));
  }
  std::string keyAt(int row) const { return rows.key(rows.slotAt(row)); }

  /// Paints what is to be painted; the region that was, since the last call.
  QRegion settle() {
    QApplication::sendPostedEvents();
    QApplication::processEvents();
    return std::exchange(m_painted, QRegion());
  }
  QPoint at(int row, int columnId) const { return view->cellRect(row, columnId).center(); }
  void click(int row, int columnId, Qt::KeyboardModifiers modifiers = {}, Qt::MouseButton button = Qt::LeftButton) {
    QTest::mouseClick(view->viewport(), button, modifiers, at(row, columnId));
  }

  GW::CShownRows rows;
  std::unique_ptr<GW::CHpfTableView> view;

 protected:
  bool eventFilter(QObject*, QEvent* event) override {
    if (event->type() == QEvent::Paint) m_painted += static_cast<QPaintEvent*>(event)->region();
    return false;
  }

 private:
  QRegion m_painted;
  int m_nextId = 1;
};
