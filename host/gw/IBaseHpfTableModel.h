#pragma once

#include "host_api.h"

#include <QAbstractTableModel>
#include <QString>

namespace GW {

/// The displayed rows of a table as an item model, for printing, accessibility and whoever wants to look on: rows as
/// shown, columns by id. Read-only. GUI thread.
class HOST_API IBaseHpfTableModel : public QAbstractTableModel {
 public:
  explicit IBaseHpfTableModel(QObject* parent);
  ~IBaseHpfTableModel() override;

  /// Whether the statistics row shows the column. `statType` 0 is the sum, the only kind the reference client has;
  /// `decimals` -1 for the column's own; `filter` is for the client.
  virtual void setColumnStatEnable(int columnId, bool enabled, int statType, int decimals, const QString& filter) = 0;
};

}  // namespace GW
