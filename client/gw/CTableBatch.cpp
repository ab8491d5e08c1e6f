#include "gw/CTableBatch.h"

#include "gw/CBaseHighPerformanceTablePrivate.h"
#include "gw/table/CSharedRows.h"

#include <cassert>
#include <utility>

namespace GW {

struct CTableBatch::Private {
  Private(std::shared_ptr<CSharedRows> tableRows, CScopeTest test, ERowRule rowRule)
      : rows(std::move(tableRows)), accepts(std::move(test)), rule(rowRule), gatherer(rows.get()) {}

  std::shared_ptr<CSharedRows> rows;  ///< outlives the table, so that a late commit is refused instead of crashing
  const CScopeTest accepts;           ///< null: any scope
  const ERowRule rule;
  CChangeGatherer gatherer;
};

CTableBatch::CTableBatch(CBaseHighPerformanceTable& table, CTableScope madeFor)
    : m_d(std::make_unique<Private>(
          table.m_d->shared, [scope = std::move(madeFor)](const CTableScope& present) { return present == scope; },
          ERowRule::Ordinary)) {}

CTableBatch::CTableBatch(CBaseHighPerformanceTable& table)
    : m_d(std::make_unique<Private>(table.m_d->shared, nullptr, ERowRule::Push)) {}

CTableBatch::CTableBatch(CBaseHighPerformanceTable& table, int type)
    : m_d(std::make_unique<Private>(
          table.m_d->shared, [type](const CTableScope& present) { return present.type == type; }, ERowRule::Push)) {}

CTableBatch::~CTableBatch() = default;

void CTableBatch::clearFirst() {
  assert(m_d->gatherer.changes.isEmpty() && "a batch is cleared before anything is gathered");
  m_d->gatherer.changes.clearFirst = true;
}

void CTableBatch::dropAbsent(std::function<bool(const rdservice::IData&)> belongs,
                             std::function<bool(const rdservice::IData&)> keepsCells) {
  assert(!m_d->gatherer.changes.belongs && "one set is replaced at a time");
  m_d->gatherer.changes.belongs = std::move(belongs);
  m_d->gatherer.changes.keepsCells = std::move(keepsCells);
}

bool CTableBatch::commit(CTableScope* present) {
  assert(m_d->gatherer.isGathering() && "a batch is committed once");
  m_d->gatherer.stop();
  return m_d->rows->commit(m_d->gatherer.changes, m_d->accepts, m_d->rule, present);
}

}  // namespace GW
