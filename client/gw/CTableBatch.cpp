#include "gw/CTableBatch.h"

#include "gw/CBaseHighPerformanceTablePrivate.h"
#include "gw/CTableStore.h"

#include <cassert>
#include <optional>
#include <utility>

namespace GW {

struct CTableBatch::Private {
  Private(std::shared_ptr<CTableStore> tableStore, std::optional<CTableScope> scope)
      : store(std::move(tableStore)), madeFor(std::move(scope)), gatherer(store.get()) {}

  std::shared_ptr<CTableStore> store;  ///< outlives the table, so that a late commit is refused instead of crashing
  std::optional<CTableScope> madeFor;  ///< none: a push
  CChangeGatherer gatherer;
};

CTableBatch::CTableBatch(CBaseHighPerformanceTable& table, CTableScope madeFor)
    : m_d(std::make_unique<Private>(table.m_d->store, std::move(madeFor))) {}

CTableBatch::CTableBatch(CBaseHighPerformanceTable& table)
    : m_d(std::make_unique<Private>(table.m_d->store, std::nullopt)) {}

CTableBatch::~CTableBatch() = default;

void CTableBatch::clearFirst() {
  assert(m_d->gatherer.changes.isEmpty() && "a batch is cleared before anything is gathered");
  m_d->gatherer.changes.clearFirst = true;
}

void CTableBatch::dropAbsent(std::function<bool(const rdservice::IData&)> belongs) {
  assert(!m_d->gatherer.changes.belongs && "one set is replaced at a time");
  m_d->gatherer.changes.belongs = std::move(belongs);
}

bool CTableBatch::commit(CTableScope* present) {
  assert(m_d->gatherer.isGathering() && "a batch is committed once");
  m_d->gatherer.stop();
  return m_d->store->commit(std::move(m_d->gatherer.changes), m_d->madeFor ? &*m_d->madeFor : nullptr,
                            m_d->madeFor ? ERowRule::Ordinary : ERowRule::Push, present);
}

}  // namespace GW
