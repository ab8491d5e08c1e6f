#pragma once

#include "host_api.h"

#include <QString>

#include <memory>
#include <string>

namespace VN {

class CHpfDataTable;

/// How the cells of an added column are shown; nothing to choose at present.
struct CExtraColumnInfo {};

/// Values of columns that a table adds to those of its record type, by row key. Inside a batch of the writing thread
/// they are handed over with the batch's rows, otherwise at once; they may arrive before their record.
class HOST_API CHpfExtraDataModel {
 public:
  explicit CHpfExtraDataModel(CHpfDataTable& table);
  ~CHpfExtraDataModel();
  CHpfExtraDataModel(const CHpfExtraDataModel&) = delete;
  CHpfExtraDataModel& operator=(const CHpfExtraDataModel&) = delete;

  /// The column may take data from now on. GUI thread.
  void addColumn(int columnId, const CExtraColumnInfo& info);

  /// Whole numbers, shown with thousands separators, or texts. Ignored for a column that was not added. Any thread.
  void addData(const std::string& key, int columnId, qint64 value);
  void addData(const std::string& key, int columnId, const QString& text);

  /// Whether the column's values take part in the statistics row, as `GW::IBaseHpfTableModel` does it for every column;
  /// in the reference client the last of the two calls counts. GUI thread.
  void setColumnStatEnable(int columnId, bool enabled, int statType, int decimals, const QString& filter);

 private:
  struct Private;
  std::unique_ptr<Private> m_d;
};

}  // namespace VN
