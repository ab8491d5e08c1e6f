#pragma once

#include "gw/CEventDeliverer.h"
#include "host_api.h"

#include <QString>
#include <QWidget>

#include <functional>
#include <memory>
#include <optional>

namespace GW {

class CBaseHighPerformanceTable;
struct CDelegateControl;

/// Base of the delegates that give a column its cells: keeps text, visibility, enabled and checked state per row key.
///
/// The state lives in the table, under the same mutex as the rows, and is written from the strand or the GUI thread:
/// inside a batch of the writing thread it is handed over with the batch's rows, otherwise at once. State may arrive
/// before its record. Setting an item by program sends no event. Reading sees what was handed over. Any thread unless
/// noted.
class HOST_API CBaseTableColumnWidgetDelegate : public CEventDeliverer {
 public:
  /// `columnId` is the column of the table that will own the delegate, `deliverer` that table: its `handleEvent`
  /// receives the delegate's events first.
  CBaseTableColumnWidgetDelegate(int columnId, CBaseHighPerformanceTable* deliverer);
  ~CBaseTableColumnWidgetDelegate() override;

  int columnId() const;

  void setItemText(const QString& key, const QString& text, int reserved = 0);
  void setItemVisible(const QString& key, bool visible, int reserved = 0);
  void setItemEnabled(const QString& key, bool enabled, int reserved = 0);
  void setItemChecked(const QString& key, bool checked, int reserved = 0, int reserved2 = 0);

  /// Gives the key's item the state of one that was never set: visible, enabled, unchecked, without text.
  void resetItem(const QString& key);

  /// Empty for a key without text.
  QString itemText(const QString& key) const;
  bool isItemVisible(const QString& key) const;
  bool isItemEnabled(const QString& key) const;
  bool isItemChecked(const QString& key) const;
  /// True when no key holds a non-empty text.
  bool isEmpty() const;
  /// Forgets every key.
  void reset();

  /// Rows are sorted by what `order` makes of their cell's value (none: no value was set), instead of by the text.
  /// Set once, before rows arrive; called on the GUI thread, often, when rows are sorted.
  void setValueOrder(std::function<qint64(std::optional<qint64> value)> order);

 protected:
  /// A number per key for derived delegates, kept like the rest of the state; none until it is set.
  void setItemValue(const QString& key, qint64 value);
  std::optional<qint64> itemValue(const QString& key) const;

 private:
  friend struct CDelegateControl;
  struct Private;
  std::unique_ptr<Private> m_d;
};

/// A column of check boxes. A click on one reports EventCheckChanged; its column's header may show a box for all
/// (`CBaseHighPerformanceTable::setColumnCheckBoxVisible`). Cells are sorted by their state.
class HOST_API CBaseTableColumnCheckBoxDelegate : public CBaseTableColumnWidgetDelegate {
 public:
  CBaseTableColumnCheckBoxDelegate(int columnId, CBaseHighPerformanceTable* deliverer);
  ~CBaseTableColumnCheckBoxDelegate() override;

  /// Whether there are cells and every one of them is checked, also those whose record has not arrived.
  bool isAllChecked() const;
};

/// A column of radio buttons: checking a key unchecks every other. A click on an unchecked one reports
/// EventCheckChanged.
class HOST_API CBaseTableColumnRadioButtonDelegate : public CBaseTableColumnWidgetDelegate {
 public:
  CBaseTableColumnRadioButtonDelegate(int columnId, CBaseHighPerformanceTable* deliverer);
  ~CBaseTableColumnRadioButtonDelegate() override;

  /// Empty when none is checked.
  QString checkedKey() const;
};

/// A column of whole numbers, edited in a spin box. When editing begins it reports EventSpinBegin, when the user has
/// changed the number EventSpinChanged. Cells are sorted by their number.
class HOST_API CBaseTableColumnIntSpinBoxDelegate : public CBaseTableColumnWidgetDelegate {
 public:
  CBaseTableColumnIntSpinBoxDelegate(int columnId, CBaseHighPerformanceTable* deliverer);
  ~CBaseTableColumnIntSpinBoxDelegate() override;

  /// The range that can be entered and the step of the arrows. `factor` and `kind` are for the client; the reference
  /// client knows 1.0 and 0. GUI thread.
  void setIntSpinBoxInfo(int minimum, int maximum, int step, double factor, int kind);
  /// The cell's text as a number; 0 when it is none.
  int itemInt(const QString& key) const;
};

/// A column of texts that the user edits. When editing begins it reports EventLineEditBegin; when a text is committed
/// it is stored and then reported by EventCellEdited, whose receiver may store another. Cells are sorted as numbers
/// when they are whole numbers, before all others.
class HOST_API CBaseTableColumnLineeditDelegate : public CBaseTableColumnWidgetDelegate {
 public:
  CBaseTableColumnLineeditDelegate(int columnId, CBaseHighPerformanceTable* deliverer);
  ~CBaseTableColumnLineeditDelegate() override;

  /// The open editor, for tips beside it; it still exists while EventCellEdited is delivered. Null when none is open.
  /// GUI thread.
  QWidget* editor() const;
};

/// A column of plain texts.
class HOST_API CBaseTableColumnSimpleTextDelegate : public CBaseTableColumnWidgetDelegate {
 public:
  CBaseTableColumnSimpleTextDelegate(int columnId, CBaseHighPerformanceTable* deliverer);
  ~CBaseTableColumnSimpleTextDelegate() override;
};

}  // namespace GW
