// How the store of an account takes records in.

#include "rdservice/CAccountData_p.h"
#include "rdservice/CDataVersion.h"
#include "rdservice/CStructDes.h"

#include <algorithm>
#include <cassert>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace rdservice {

namespace {

/// Records stored in one go; readers get in between, so that a large batch does not hold up the GUI thread.
constexpr std::size_t SLICE = 2048;

/// For each record of `fresh`, under the key at the same place in `keys`: the record of `held` that has the same
/// values or is newer, null when it has none.
std::vector<IDataPtr> unchangedRecords(const CTypeStore& fresh, const std::vector<std::string>& keys,
                                       const CTypeStore& held) {
  std::vector<IDataPtr> unchanged(fresh.size());
  for (std::size_t i = 0; i < fresh.size(); ++i) {
    const std::size_t place = held.find(keys[i]);
    if (place == CTypeStore::NONE) continue;
    const IDataPtr& record = held.at(place);
    if (held.basis(place) > fresh.basis(i) || sameFields(*record, *fresh.records()[i])) unchanged[i] = record;
  }
  return unchanged;
}

}  // namespace

IDataPtr CAccountData::Private::publish(const IDataPtr& record, bool ofReply) {
  IDataPtr own = record->version() == 0 ? record : record->copy();
  CDataVersion::stamp(*own, ++lastVersion, ofReply);
  return own;
}

void CAccountData::Private::storeItem(CItem& item, bool keepNewer) {
  item.type = &types[item.record->getBaseId()];
  CTypeStore& store = item.type->store;
  const std::size_t place = store.find(item.key);
  const std::uint64_t mark = CDataVersion::mark(*item.record);
  // Marks are taken at any moment: the basis of a push is a number given now, which no earlier mark can have.
  const auto basis = [mark](const IDataPtr& published) { return mark != 0 ? mark : published->version(); };
  if (place == CTypeStore::NONE) {
    item.held = publish(item.record, mark != 0);
    store.append(item.key, item.held, basis(item.held));
  } else {
    item.held = store.at(place);
    if (keepNewer && item.record->version() < item.held->version()) return;
    if (mark != 0 && mark < store.basis(place)) return;
    if (sameFields(*item.record, *item.held)) {
      store.setBasis(place, mark != 0 ? mark : ++lastVersion);
      ++item.type->generation;  // a set that is being compared with the store must look at the basis again
      return;
    }
    item.held = publish(item.record, mark != 0);
    item.replaced = store.replace(place, item.held, basis(item.held));
  }
  ++item.type->generation;
  item.isChanged = true;
}

std::vector<IDataPtr> CAccountData::Private::store(const IDataPtr* records, std::size_t count, bool keepNewer) {
  std::vector<CItem> items;
  items.reserve(count);  // `seen` points into it
  std::vector<std::size_t> itemOf(count, CTypeStore::NONE);
  std::map<int, std::unordered_map<std::string_view, std::size_t>> seen;
  for (std::size_t i = 0; i < count; ++i) {
    if (records[i] == nullptr) continue;
    items.push_back({records[i], records[i]->getKey()});
    auto& seenOfType = seen[records[i]->getBaseId()];
    if (seenOfType.empty()) seenOfType.reserve(count - i);
    const auto [found, isNew] = seenOfType.emplace(items.back().key, items.size() - 1);
    itemOf[i] = found->second;
    if (isNew) continue;
    items.pop_back();
    items[found->second].record = records[i];
  }

  for (std::size_t begin = 0; begin < items.size(); begin += SLICE) {
    const utils::CWriteLock lock(mutex);
    for (std::size_t i = begin; i < std::min(begin + SLICE, items.size()); ++i) storeItem(items[i], keepNewer);
  }
  std::map<int, std::pair<std::vector<std::string>, std::vector<IDataPtr>>> changed;
  for (const CItem& item : items) {
    if (!item.isChanged) continue;
    auto& [keys, changedRecords] = changed[item.held->getBaseId()];
    keys.push_back(item.key);
    changedRecords.push_back(item.held);
  }
  for (const auto& [typeId, change] : changed) listenersOf(typeId).call(change.first, change.second);

  std::vector<IDataPtr> held(count);
  for (std::size_t i = 0; i < count; ++i)
    if (itemOf[i] != CTypeStore::NONE) held[i] = items[itemOf[i]].held;
  return held;
}

void CAccountData::Private::replaceAll(int typeId, const std::vector<IDataPtr>& records, std::uint64_t mark) {
  CTypeStore fresh;  // holds the old set in the end, and frees it after the lock is given up
  fresh.reserve(records.size());
  std::vector<std::string> keys;
  keys.reserve(records.size());
  for (const IDataPtr& record : records) {
    if (record == nullptr) continue;
    assert(record->getBaseId() == typeId);
    const std::uint64_t own = CDataVersion::mark(*record);  // of the reply that brought it
    const std::uint64_t basis = own != 0 ? own : mark;
    std::string key = record->getKey();
    const std::size_t place = fresh.find(key);
    if (place != CTypeStore::NONE) {
      fresh.replace(place, record, basis);
      continue;
    }
    fresh.append(key, record, basis);
    keys.push_back(std::move(key));
  }

  // Comparing a large set takes long: it is done while others may read, and again only when somebody stored meanwhile.
  std::vector<IDataPtr> unchanged(fresh.size());
  std::uint64_t generation = 0;
  {
    const utils::CReadLock lock(mutex);
    const auto type = types.find(typeId);
    if (type != types.end()) {
      generation = type->second.generation;
      unchanged = unchangedRecords(fresh, keys, type->second.store);
    }
  }
  std::vector<IDataPtr> changed(fresh.size());
  {
    const utils::CWriteLock lock(mutex);
    CTypeEntry& entry = types[typeId];
    if (entry.generation != generation) unchanged = unchangedRecords(fresh, keys, entry.store);
    for (std::size_t i = 0; i < fresh.size(); ++i) {
      if (unchanged[i] == nullptr) changed[i] = publish(fresh.records()[i], true);
      const IDataPtr& held = unchanged[i] == nullptr ? changed[i] : unchanged[i];
      const std::size_t before = entry.store.find(keys[i]);
      const std::uint64_t basis = before == CTypeStore::NONE ? 0 : entry.store.basis(before);
      fresh.replace(i, held, std::max(basis, fresh.basis(i) != ALWAYS ? fresh.basis(i) : lastVersion.load()));
    }
    for (std::size_t i = 0; mark != ALWAYS && i < entry.store.size(); ++i) {
      if (entry.store.basis(i) <= mark) continue;
      const std::string key = entry.store.at(i)->getKey();
      if (fresh.find(key) == CTypeStore::NONE) fresh.append(key, entry.store.at(i), entry.store.basis(i));
    }
    std::swap(fresh, entry.store);
    ++entry.generation;
  }
  std::vector<std::string> changedKeys;
  std::vector<IDataPtr> changedRecords;
  for (std::size_t i = 0; i < changed.size(); ++i) {
    if (changed[i] == nullptr) continue;
    changedKeys.push_back(keys[i]);
    changedRecords.push_back(changed[i]);
  }
  if (!changedKeys.empty()) listenersOf(typeId).call(changedKeys, changedRecords);
}

}  // namespace rdservice
