#include "rdservice/CDataCenter_p.h"

#include "rdservice/CDataVersion.h"
#include "rdservice/data_centre_factory.h"
#include "rdservice/rdservice_enums.h"
#include "rdservice/stock_key.h"

#include <boost/smart_ptr/make_shared.hpp>
#include <boost/smart_ptr/shared_ptr.hpp>

#include <cassert>
#include <utility>

namespace rdservice {

CDataCenter::CDataCenter(std::unique_ptr<Private> d) : m_d(std::move(d)) {}
CDataCenter::~CDataCenter() = default;

CAccountDataPtr CDataCenter::getAccountData(const std::string& accountKey) const {
  const utils::CReadLock lock(m_d->mutex);
  const auto found = m_d->accounts.find(accountKey);
  return found == m_d->accounts.end() ? nullptr : found->second;
}

CInstrumentInfoPtr CDataCenter::getInstrument(std::string_view exchangeId, std::string_view code) const {
  const std::string key = makeStockKey(exchangeId, code);
  const utils::CReadLock lock(m_d->mutex);
  const auto found = m_d->instruments.places.find(key);
  return found == m_d->instruments.places.end() ? nullptr : m_d->instruments.all[found->second];
}

std::vector<CInstrumentInfoPtr> CDataCenter::getInstruments() const {
  const utils::CReadLock lock(m_d->mutex);
  return m_d->instruments.all;
}

CAccountDataPtr CDataCenter::getMarketData() const { return m_d->marketData; }

void CDataCenter::setAccounts(const std::vector<CAccountInfoPtr>& accounts) {
  const utils::CWriteLock lock(m_d->mutex);
  for (const CAccountInfoPtr& account : accounts) {
    if (account == nullptr) continue;
    CAccountDataPtr& store = m_d->accounts[account->getKey()];
    if (store == nullptr) store = makeAccountData(account);
  }
}

void CDataCenter::setInstruments(const std::vector<IDataPtr>& instruments) {
  Private::CInstruments fresh;  // holds the old ones in the end, and frees them after the lock is given up
  fresh.all.reserve(instruments.size());
  fresh.places.reserve(instruments.size());
  for (const IDataPtr& record : instruments) {
    if (record == nullptr) continue;
    assert(record->getBaseId() == RecordInstrumentInfo);
    const auto [entry, isNew] = fresh.places.emplace(record->getKey(), fresh.all.size());
    const auto instrument = boost::static_pointer_cast<CInstrumentInfo>(record);
    if (isNew)
      fresh.all.push_back(instrument);
    else
      fresh.all[entry->second] = instrument;
  }
  const utils::CWriteLock lock(m_d->mutex);
  for (const CInstrumentInfoPtr& instrument : fresh.all)
    if (instrument->version() == 0) CDataVersion::stamp(*instrument, ++m_d->lastVersion);
  std::swap(fresh, m_d->instruments);
}

}  // namespace rdservice
