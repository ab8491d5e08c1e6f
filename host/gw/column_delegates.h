#pragma once

#include "gw/CEventDeliverer.h"
#include "host_api.h"

#include <QString>

#include <functional>
#include <memory>
#include <optional>

namespace GW {

class CBaseHighPerformanceTable;

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

  /// Empty for a key without text.
  QString itemText(const QString& key) const;
  bool isItemVisible(const QString& key) const;
  bool isItemEnabled(const QString& key) const;
  bool isItemChecked(const QString& key) const;
  /// True when no key holds a non-empty text.
  bool isEmpty() const;
  /// Forgets every key.
  void reset();

  /// Rows are sorted by what `key` returns for their row key, instead of by the text. Set once, before rows arrive;
  /// called on the GUI thread when rows are sorted.
  void setSortKey(std::function<qint64(const QString& rowKey)> key);
  /// Null unless set.
  const std::function<qint64(const QString& rowKey)>& sortKey() const;

 protected:
  /// A number per key for derived delegates, kept like the rest of the state; none until it is set.
  void setItemValue(const QString& key, qint64 value);
  std::optional<qint64> itemValue(const QString& key) const;

 private:
  struct Private;
  std::unique_ptr<Private> m_d;
};

/// A column of plain texts.
class HOST_API CBaseTableColumnSimpleTextDelegate : public CBaseTableColumnWidgetDelegate {
 public:
  CBaseTableColumnSimpleTextDelegate(int columnId, CBaseHighPerformanceTable* deliverer);
  ~CBaseTableColumnSimpleTextDelegate() override;
};

}  // namespace GW
