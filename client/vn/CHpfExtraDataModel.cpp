#include "vn/CHpfExtraDataModel.h"

#include "vn/CHpfDataTablePrivate.h"

#include "utils/CMutex.h"
#include "utils/threads.h"

#include <set>

namespace VN {

struct CHpfExtraDataModel::Private {
  CHpfDataTable& table;
  mutable utils::CSharedMutex mutex;
  std::set<int> columns TS_GUARDED_BY(mutex);

  bool has(int columnId) const {
    const utils::CReadLock lock(mutex);
    return columns.count(columnId) > 0;
  }
};

CHpfExtraDataModel::CHpfExtraDataModel(CHpfDataTable& table) : m_d(new Private{table, {}, {}}) {}

CHpfExtraDataModel::~CHpfExtraDataModel() = default;

void CHpfExtraDataModel::addColumn(int columnId, const CExtraColumnInfo&) {
  utils::assertGui();
  const utils::CWriteLock lock(m_d->mutex);
  m_d->columns.insert(columnId);
}

void CHpfExtraDataModel::addData(const std::string& key, int columnId, qint64 value) {
  if (m_d->has(columnId)) m_d->table.setCellValue(columnId, key, value);
}

void CHpfExtraDataModel::addData(const std::string& key, int columnId, const QString& text) {
  if (m_d->has(columnId)) m_d->table.setCellText(columnId, key, text);
}

void CHpfExtraDataModel::setColumnStatEnable(int columnId, bool enabled, int statType, int, const QString&) {
  utils::assertGui();
  if (statType == 0 && m_d->has(columnId)) m_d->table.m_d->setStatistics(columnId, enabled);
}

}  // namespace VN
