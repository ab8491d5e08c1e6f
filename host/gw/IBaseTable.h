#pragma once

#include "gw/CBaseWidget.h"
#include "host_api.h"

namespace GW {

/// What every table of the widget library offers. GUI thread.
class HOST_API IBaseTable : public CBaseWidget {
 public:
  IBaseTable(int tableId, QWidget* parent);
  ~IBaseTable() override;

  /// The id given at construction.
  int getID() const;

  /// Number of displayed rows (filtered, this page).
  virtual int rowCount() const = 0;

  /// The layout as text: columns by field number, with width, order and hidden state, headed by the table's record
  /// type. Never contains "|".
  virtual QString saveConfigStr() const = 0;
  /// Restores a layout. A damaged text, or one of another record type, changes nothing and gives false.
  virtual bool loadConfigStr(const QString& config) = 0;

  /// Fits every column's width to its header and the rows on screen.
  virtual void adjustVisibleRowsColumnWidth() = 0;

 private:
  int m_tableId;
};

}  // namespace GW
