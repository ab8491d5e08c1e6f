#pragma once

#include "gw/table/CShownRows.h"

#include "gw/IBaseHpfTableModel.h"

#include <QStringList>

#include <functional>
#include <vector>

namespace GW {

/// The displayed rows as an item model. It keeps nothing of them: whoever changes them tells it before and after. GUI
/// thread.
class CTableFace final : public IBaseHpfTableModel {
 public:
  using CSetStat = std::function<void(int columnId, bool enabled)>;

  /// Whether the column's cells are check boxes or radio buttons.
  static bool isBox(const CTableColumn& column);

  /// `rows` outlives the face.
  CTableFace(CShownRows& rows, CSetStat setStat, QObject* parent);
  ~CTableFace() override;

  void rowsAboutToChange(const CRowsChange& change);
  void rowsChanged(const CRowsChange& change);
  void columnAboutToBeAdded();
  void columnAdded();
  /// Title, delegate or alignment is another.
  void columnChanged(int columnId);

  /// Only sums (kind 0) are known; other kinds are ignored.
  void setColumnStatEnable(int columnId, bool enabled, int statType, int decimals, const QString& filter) override;

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;

 private:
  void holdRow(int row);
  void emitChanged(const std::vector<int>& slots);

  CShownRows& m_rows;
  const CSetStat m_setStat;
  std::vector<int> m_persistentSlots;  ///< of the persistent indexes, while the order changes
  int m_heldRow = -1;                  ///< it shows `m_heldTexts`
  QStringList m_heldTexts;
};

}  // namespace GW
