#include "rdservice/CAccountData.h"

#include "rdservice/CAccountData_p.h"
#include "rdservice/CDataVersion.h"
#include "rdservice/CStructDes.h"
#include "rdservice/data_centre_factory.h"
#include "rdservice/prefetch.h"
#include "rdservice/rdservice_enums.h"
#include "rdservice/reply_marks.h"

#include <boost/smart_ptr/make_shared.hpp>

#include <algorithm>
#include <cassert>
#include <utility>

namespace rdservice {

CAccountDataPtr makeAccountData(CAccountInfoPtr account) {
  return boost::make_shared<CAccountData>(std::make_unique<CAccountData::Private>(std::move(account)));
}

CAccountData::CAccountData(std::unique_ptr<Private> d) : m_d(std::move(d)) {}
CAccountData::~CAccountData() = default;

CAccountInfoPtr CAccountData::getAccountInfo() const { return m_d->accountInfo; }

std::vector<IDataPtr> CAccountData::getData(int typeId) const {
  const utils::CReadLock lock(m_d->mutex);
  const auto type = m_d->types.find(typeId);
  return type == m_d->types.end() ? std::vector<IDataPtr>() : type->second.store.records();
}

IDataPtr CAccountData::getData(int typeId, const std::string& key) const {
  const utils::CReadLock lock(m_d->mutex);
  const auto type = m_d->types.find(typeId);
  if (type == m_d->types.end()) return nullptr;
  const CTypeStore& store = type->second.store;
  const std::size_t place = store.find(key);
  return place == CTypeStore::NONE ? nullptr : store.at(place);
}

IDataPtr CAccountData::updateData(const IDataPtr& record, bool keepNewer) {
  return m_d->store(&record, 1, keepNewer).front();
}

std::vector<IDataPtr> CAccountData::updateDatas(const std::vector<IDataPtr>& records) {
  return m_d->store(records.data(), records.size(), false);
}

void CAccountData::updateCompacts(int typeId, const std::vector<IDataPtr>& records) {
  // A set that several replies brought knows of nothing that came after the first request.
  std::uint64_t mark = Private::ALWAYS;
  for (const IDataPtr& record : records)
    if (record != nullptr && CDataVersion::mark(*record) != 0) mark = std::min(mark, CDataVersion::mark(*record));
  m_d->replaceAll(typeId, records, mark);
}

CAccountData::Private::CListeners& CAccountData::Private::listenersOf(int typeId) {
  const utils::CMutexLock lock(listenersMutex);
  return listeners[typeId];
}

std::uint64_t takeMark(CAccountData& account) { return ++CAccountData::Private::of(account).lastVersion; }

void noteMark(const std::vector<IDataPtr>& records, std::uint64_t mark) {
  for (std::size_t i = 0; i < records.size(); ++i) {
    if (i + PREFETCH_AHEAD < records.size()) prefetch(records[i + PREFETCH_AHEAD].get());
    if (records[i] != nullptr) CDataVersion::stampReply(*records[i], mark);
  }
}

void replaceAsOf(CAccountData& account, int typeId, const std::vector<IDataPtr>& records, std::uint64_t mark) {
  CAccountData::Private::of(account).replaceAll(typeId, records, mark);
}

void CAccountData::removeMetaData(int typeId) {
  CTypeStore removed;  // freed after the lock is given up
  {
    const utils::CWriteLock lock(m_d->mutex);
    const auto type = m_d->types.find(typeId);
    m_d->countAnew(typeId, {}, false);
    if (type == m_d->types.end()) return;
    std::swap(removed, type->second.store);
    ++type->second.generation;
  }
  m_d->listenersOf(typeId).call({}, {});
}

IDataPtr CAccountData::modifyData(int typeId, const std::string& key, const std::function<void(IData&)>& edit) {
  IDataPtr replaced;
  IDataPtr held;
  Private::CChanges statistics;
  {
    const utils::CWriteLock lock(m_d->mutex);
    const auto type = m_d->types.find(typeId);
    if (type == m_d->types.end()) return nullptr;
    Private::CTypeEntry& entry = type->second;
    const std::size_t place = entry.store.find(key);
    if (place == CTypeStore::NONE) return nullptr;
    held = entry.store.at(place);
    const IDataPtr edited = held->copy();
    edit(*edited);
    assert(edited->getKey() == key && "an edit may not change what makes up the key");
    if (sameFields(*edited, *held)) return held;
    held = m_d->publish(edited, false);
    replaced = entry.store.replace(place, held, held->version());
    ++entry.generation;
    m_d->countChange(typeId, replaced.get(), held.get());
    m_d->storeStatistics(statistics);
  }
  m_d->listenersOf(typeId).call({key}, {held});
  m_d->tell(RecordStkUnClosedCompactsStatics, statistics);
  return held;
}

utils::CSubscriptionPtr CAccountData::subscribe(int typeId, const std::string& key, CDataCallback callback,
                                                CClearCallback cleared) {
  using CKeys = std::vector<std::string>;
  using CRecords = std::vector<IDataPtr>;
  // The store of the market's data belongs to no account.
  const std::string account = m_d->accountInfo ? m_d->accountInfo->getKey() : std::string();
  return m_d->listenersOf(typeId).add([f = std::move(callback), cleared = std::move(cleared), key, account, typeId](
                                          const CKeys& keys, const CRecords& records) {
    if (keys.empty()) {
      if (cleared) cleared(account, typeId);
    } else if (key.empty()) {
      f(records);
    } else {
      for (std::size_t i = 0; i < keys.size(); ++i)
        if (keys[i] == key) f({records[i]});
    }
  });
}

}  // namespace rdservice
