// How the store of an account takes records in.

#include "rdservice/CAccountData_p.h"
#include "rdservice/CDataVersion.h"
#include "rdservice/CStructDes.h"
#include "rdservice/prefetch.h"
#include "rdservice/rdservice_enums.h"

#include <algorithm>
#include <cassert>
#include <string>
#include <utility>

namespace rdservice {

namespace {

/// Records stored in one go; readers get in between, so that a large batch does not hold up the GUI thread.
constexpr std::size_t SLICE = 2048;
constexpr std::size_t KEY_BYTES = 128;  // of a record; what makes up its key stands there

struct CKey {
  std::string text;
  std::uint32_t hash;
};

/// What a store holds under the key of a record that is to replace it.
struct CHeld {
  IDataPtr unchanged{};  ///< the held record when it has the same values or is newer, else null
  bool isNewer = false;
  std::uint64_t basis = 0;  ///< of the held record; 0 without one
};

/// For each record of `fresh`, under the key at the same place in `keys`.
std::vector<CHeld> compare(const CTypeStore& fresh, const std::vector<CKey>& keys, const CTypeStore& held) {
  std::vector<CHeld> found(fresh.size());
  std::size_t guess = 0;
  for (std::size_t i = 0; i < fresh.size(); ++i) {
    if (i + PREFETCH_AHEAD < keys.size()) held.expect(keys[i + PREFETCH_AHEAD].hash, guess);
    const std::size_t place = held.find(keys[i].hash, keys[i].text, guess);
    if (place == CTypeStore::NONE) continue;
    guess = place + 1;
    found[i].basis = held.basis(place);
    const IDataPtr& record = held.at(place);
    found[i].isNewer = found[i].basis > fresh.basis(i);
    if (found[i].isNewer || sameFields(*record, *fresh.records()[i])) found[i].unchanged = record;
  }
  return found;
}

}  // namespace

IDataPtr CAccountData::Private::publish(const IDataPtr& record, bool ofReply) {
  IDataPtr own = record->version() == 0 ? record : record->copy();
  CDataVersion::stamp(*own, ++lastVersion, ofReply);
  return own;
}

IDataPtr CAccountData::Private::storeItem(CTypeEntry& type, CItem& item, bool keepNewer, std::size_t& guess) {
  CTypeStore& store = type.store;
  const IDataPtr& record = *item.record;
  const std::size_t place = store.find(item.hash, item.key, guess);
  guess = (place == CTypeStore::NONE ? store.size() : place) + 1;
  const std::uint64_t mark = CDataVersion::mark(*record);
  // Marks are taken at any moment: the basis of a push is a number given now, which no earlier mark can have.
  const auto basis = [mark](const IDataPtr& published) { return mark != 0 ? mark : published->version(); };
  IDataPtr replaced;
  if (place == CTypeStore::NONE) {
    item.held = publish(record, mark != 0);
    store.append(item.hash, item.held, basis(item.held));
  } else {
    item.held = store.at(place);
    if (keepNewer && record->version() < item.held->version()) return nullptr;
    if (mark != 0 && mark < store.basis(place)) return nullptr;
    if (sameFields(*record, *item.held)) {
      store.setBasis(place, mark != 0 ? mark : ++lastVersion);
      ++type.generation;  // a set that is being compared with the store must look at the basis again
      return nullptr;
    }
    item.held = publish(record, mark != 0);
    replaced = store.replace(place, item.held, basis(item.held));
  }
  countChange(item.typeId, replaced.get(), item.held.get());
  ++type.generation;
  item.isChanged = true;
  return replaced;
}

std::vector<CAccountData::Private::CItem> CAccountData::Private::itemsOf(const IDataPtr* records, std::size_t count,
                                                                         std::vector<std::size_t>& itemOf) {
  std::vector<CItem> items;
  items.reserve(count);
  for (std::size_t i = 0; i < count; ++i) {
    if (i + PREFETCH_AHEAD < count) prefetch(records[i + PREFETCH_AHEAD].get(), KEY_BYTES);
    if (records[i] == nullptr) continue;
    items.push_back({&records[i], records[i]->getKey(), 0, records[i]->getBaseId()});
    items.back().hash = CHashedPlaces::hash(items.back().key);
  }

  itemOf.assign(count, CTypeStore::NONE);
  CHashedPlaces seen;
  seen.reserve(items.size());
  std::size_t kept = 0;
  for (std::size_t i = 0; i < items.size(); ++i) {
    if (i + PREFETCH_AHEAD < items.size()) seen.expect(items[i + PREFETCH_AHEAD].hash);
    CItem& item = items[i];
    const std::size_t first = seen.find(item.hash, [&](std::size_t place) {
      return items[place].typeId == item.typeId && items[place].key == item.key;
    });
    itemOf[static_cast<std::size_t>(item.record - records)] = first == CHashedPlaces::NONE ? kept : first;
    if (first != CHashedPlaces::NONE) {
      items[first].record = item.record;
      continue;
    }
    seen.add(item.hash, kept);
    if (kept != i) items[kept] = std::move(item);
    ++kept;
  }
  items.resize(kept);
  return items;
}

std::vector<IDataPtr> CAccountData::Private::store(const IDataPtr* records, std::size_t count, bool keepNewer) {
  std::vector<std::size_t> itemOf;
  std::vector<CItem> items = itemsOf(records, count, itemOf);
  std::map<int, CChanges> changed;
  std::size_t guess = 0;
  const std::uint64_t mark = items.empty() ? 0 : CDataVersion::mark(**items.front().record);
  std::size_t ofMark = 0;
  for (std::size_t begin = 0; begin < items.size(); begin += SLICE) {
    std::vector<IDataPtr> replaced;  // freed after the lock is given up
    const utils::CWriteLock lock(mutex);
    for (std::size_t i = begin; i < std::min(begin + SLICE, items.size()); ++i) {
      CTypeEntry& type = types[items[i].typeId];
      if (i + PREFETCH_AHEAD < items.size()) {
        prefetch(items[i + PREFETCH_AHEAD].record->get());
        type.store.expect(items[i + PREFETCH_AHEAD].hash, guess);
      }
      if (type.store.size() == 0) type.store.reserve(items.size());
      if (mark != 0 && CDataVersion::mark(**items[i].record) == mark) ++ofMark;
      if (IDataPtr old = storeItem(type, items[i], keepNewer, guess)) replaced.push_back(std::move(old));
    }
    if (begin + SLICE < items.size()) continue;
    takeReply(mark, ofMark);
    storeStatistics(changed[RecordStkUnClosedCompactsStatics]);
  }
  for (CItem& item : items) {
    if (item.isChanged) changed[item.typeId].add(std::move(item.key), item.held);
  }
  for (const auto& [typeId, changes] : changed) tell(typeId, changes);

  std::vector<IDataPtr> held(count);
  const bool isOneEach = items.size() == count;
  for (std::size_t i = 0; i < count; ++i) {
    if (itemOf[i] == CTypeStore::NONE) continue;
    IDataPtr& record = items[itemOf[i]].held;
    held[i] = isOneEach ? std::move(record) : record;
  }
  return held;
}

void CAccountData::Private::tell(int typeId, const CChanges& changes) {
  if (!changes.keys.empty()) listenersOf(typeId).call(changes.keys, changes.records);
}

void CAccountData::Private::replaceAll(int typeId, const std::vector<IDataPtr>& records, std::uint64_t mark) {
  CTypeStore fresh;  // holds the old set in the end, and frees it after the lock is given up
  fresh.reserve(records.size());
  std::vector<CKey> keys;
  keys.reserve(records.size());
  for (const IDataPtr& record : records) {
    if (record == nullptr) continue;
    assert(record->getBaseId() == typeId);
    const std::uint64_t own = CDataVersion::mark(*record);  // of the reply that brought it
    const std::uint64_t basis = own != 0 ? own : mark;
    CKey key{record->getKey(), 0};
    key.hash = CHashedPlaces::hash(key.text);
    const std::size_t place = fresh.find(key.hash, key.text);
    if (place != CTypeStore::NONE) {
      fresh.replace(place, record, basis);
      continue;
    }
    fresh.append(key.hash, record, basis);
    keys.push_back(std::move(key));
  }

  CCompactStatistics counted = countOf(typeId, fresh.records());

  // Comparing a large set takes long: it is done while others may read, and again only when somebody stored meanwhile.
  std::vector<CHeld> held(fresh.size());
  std::uint64_t generation = 0;
  {
    const utils::CReadLock lock(mutex);
    const auto type = types.find(typeId);
    if (type != types.end()) {
      generation = type->second.generation;
      held = compare(fresh, keys, type->second.store);
    }
  }
  std::vector<IDataPtr> changed(fresh.size());
  CChanges statisticChanges;
  {
    const utils::CWriteLock lock(mutex);
    if (typeId == RecordStkUnClosedCompactsStatics && areStatisticsMade) return;  // of the compacts instead
    countAnew(typeId, std::move(counted), mark > droppedAt);
    CTypeEntry& entry = types[typeId];
    if (entry.generation != generation) held = compare(fresh, keys, entry.store);
    for (std::size_t i = 0; i < fresh.size(); ++i) {
      if (held[i].unchanged == nullptr) changed[i] = publish(fresh.records()[i], true);
      if (held[i].isNewer) countChange(typeId, fresh.records()[i].get(), held[i].unchanged.get());
      const std::uint64_t basis = fresh.basis(i) != ALWAYS ? fresh.basis(i) : lastVersion.load();
      fresh.replace(i, held[i].unchanged == nullptr ? changed[i] : held[i].unchanged, std::max(held[i].basis, basis));
    }
    for (std::size_t i = 0; mark != ALWAYS && i < entry.store.size(); ++i) {
      if (entry.store.basis(i) <= mark) continue;
      const std::string key = entry.store.at(i)->getKey();
      const std::uint32_t hash = CHashedPlaces::hash(key);
      if (fresh.find(hash, key) != CTypeStore::NONE) continue;
      fresh.append(hash, entry.store.at(i), entry.store.basis(i));
      countChange(typeId, nullptr, entry.store.at(i).get());
    }
    std::swap(fresh, entry.store);
    ++entry.generation;
    storeStatistics(statisticChanges);
  }
  CChanges changes;
  for (std::size_t i = 0; i < changed.size(); ++i) {
    if (changed[i] != nullptr) changes.add(std::move(keys[i].text), changed[i]);
  }
  tell(typeId, changes);
  tell(RecordStkUnClosedCompactsStatics, statisticChanges);
}

}  // namespace rdservice
