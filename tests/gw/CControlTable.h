#pragma once

#include "CTestRecord.h"

#include "gw/CBaseHighPerformanceTable.h"
#include "gw/column_delegates.h"
#include "gw/view/CCellControls.h"
#include "gw/view/CHpfTableView.h"
#include "gw/widget_events.h"

#include <QApplication>
#include <QPointer>
#include <QTest>

#include <functional>
#include <string>
#include <utility>
#include <vector>

/// A table with a column of each kind of control; notes the events that reach it as "type column p2 text", a cell
/// edited with the key of its record behind.
class CControlTable : public GW::CStandardHpfTable {
 public:
  explicit CControlTable(int rows) : CStandardHpfTable(1, nullptr) {
    addRecordColumns(CTestRecord::structDes());
    check = add<GW::CBaseTableColumnCheckBoxDelegate>("选择");
    radio = add<GW::CBaseTableColumnRadioButtonDelegate>("单选");
    spin = add<GW::CBaseTableColumnIntSpinBoxDelegate>("展期天数");
    line = add<GW::CBaseTableColumnLineeditDelegate>("优先级");
    spin->setIntSpinBoxInfo(0, 182, 1, 1.0, 0);
    for (int id = 0; id < CTestRecord::ColumnCount; ++id) setColumnHidden(id, id != CTestRecord::ColumnId);
    for (int row = 0; row < rows; ++row) push(key(row));
    updateTable();
    resize(500, 200);
    show();
    QApplication::setActiveWindow(this);
    view()->setFocus();
  }

  bool handleEvent(int type, int p1, int p2, QString text, void* data) override {
    QString event = QStringLiteral("%1 %2 %3 %4").arg(type).arg(name(p1)).arg(p2).arg(text);
    if (type == GW::EventCellEdited)
      event += QStringLiteral(" of ") + QString::fromStdString((*static_cast<rdservice::IDataPtr*>(data))->getKey());
    m_events.push_back(event.toStdString());
    if (onEvent) onEvent(type);
    return true;
  }
  std::vector<std::string> takeEvents() { return std::exchange(m_events, {}); }

  static QString key(int row) { return QStringLiteral("k%1").arg(row, 2, 10, QLatin1Char('0')); }
  void push(const QString& recordKey) {
    auto record = boost::make_shared<CTestRecord>();
    record->id = recordKey.toStdString();
    updateData(record, false);
  }

  GW::CHpfTableView* view() const { return findChild<GW::CHpfTableView*>(); }
  GW::CCellControls& controls() const { return view()->controls(); }
  int rowOf(const QString& recordKey) const {
    for (int row = 0; row < rowCount(); ++row) {
      if (cellText(row, CTestRecord::ColumnId) == recordKey) return row;
    }
    return -1;
  }
  QRect cell(const QString& recordKey, const GW::CBaseTableColumnWidgetDelegate* column) const {
    return view()->cellRect(rowOf(recordKey), column->columnId());
  }
  void click(const QString& recordKey, const GW::CBaseTableColumnWidgetDelegate* column) {
    const QPoint place = cell(recordKey, column).center();
    const QPointer<QWidget> viewport = view()->viewport();
    QTest::mousePress(viewport, Qt::LeftButton, {}, place);
    if (viewport) QTest::mouseRelease(viewport, Qt::LeftButton, {}, place);
  }
  GW::CBaseTableColumnCheckBoxDelegate* check;
  GW::CBaseTableColumnRadioButtonDelegate* radio;
  GW::CBaseTableColumnIntSpinBoxDelegate* spin;
  GW::CBaseTableColumnLineeditDelegate* line;
  std::function<void(int type)> onEvent;

 private:
  template <class Delegate>
  Delegate* add(const char* title) {
    const int id = addPlainColumn(100 + columnCount(), QString::fromUtf8(title), Qt::AlignCenter);
    auto* const delegate = new Delegate(id, this);
    setColumnDelegate(id, delegate);
    setColumnWidth(id, 80);
    return delegate;
  }
  QString name(int columnId) const {
    const std::pair<const GW::CBaseTableColumnWidgetDelegate*, const char*> names[] = {
        {check, "check"}, {radio, "radio"}, {spin, "spin"}, {line, "line"}};
    for (const auto& [delegate, title] : names) {
      if (delegate->columnId() == columnId) return QString::fromLatin1(title);
    }
    return QString::number(columnId);
  }

  std::vector<std::string> m_events;
};
