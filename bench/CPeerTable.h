#pragma once

#include "rdservice/CStructDes.h"
#include "rdservice/IData.h"

#include <QStringList>
#include <QTableView>

#include <memory>
#include <vector>

/// What one compares a table engine with: a QTableView on a hand-written model over a vector of structs and a sorting
/// and filtering proxy, each used as one is advised to use it. Columns are the record type's fields; cells are
/// formatted when they are asked for. GUI thread.
class CPeerTable : public QTableView {
 public:
  /// How the view learns of changed rows; which is faster depends on how many rows the proxy would sort anew.
  enum class EPushSignals : unsigned char {
    Runs,   ///< one signal for each run of adjacent rows
    OneAll  ///< one signal from the first to the last changed row
  };
  /// How the proxy learns of another filter.
  enum class EFilterWay : unsigned char {
    Invalidate,  ///< invalidateFilter(): keeps the selection, removes and inserts run by run
    Reset        ///< begins anew; much faster when many rows come or go
  };

  explicit CPeerTable(const rdservice::CStructDes& des);
  ~CPeerTable() override;

  /// Makes the model's own structs of records that `load` will show, so that loading is not charged for it.
  void prepare(const std::vector<rdservice::IDataPtr>& records);
  /// Replaces everything by what was prepared.
  void load();
  /// Replaces the records of known keys; others are ignored.
  void push(const std::vector<rdservice::IDataPtr>& records, EPushSignals signalling);
  /// Sorts by the field at that place of the field table.
  void sort(int column, Qt::SortOrder order);
  /// Only rows with one of these texts; none: every row.
  void setFilter(int column, const QStringList& texts, EFilterWay way);

  int rowCount() const;
  QString cellText(int row, int column) const;

 private:
  struct Private;
  std::unique_ptr<Private> m_d;
};
