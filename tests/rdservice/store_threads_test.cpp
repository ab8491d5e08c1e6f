// The store under several threads; the thread sanitizer's build is where a wrong lock shows.

#include "rdservice/records.h"

#include "rdservice/data_centre_factory.h"
#include "rdservice/rdservice_enums.h"

#include <gtest/gtest.h>

#include <atomic>
#include <map>
#include <thread>

using namespace rdservice;
using test::openCompact;
using test::openKey;

namespace {

constexpr int OPEN = RecordStkUnClosedCompacts;
constexpr int ROUNDS = 2000;
constexpr int KEYS = 8;

std::string number(int i) { return "C" + std::to_string(i); }

/// A compact whose amounts all follow from its volume, so that a half-written one shows.
IDataPtr consistent(int key, std::int64_t volume) {
  auto record = openCompact(number(key), volume);
  record->lendingVolume = volume;
  record->unpaidAmount = static_cast<double>(volume);
  return record;
}

bool isConsistent(const CStkUnClosedCompacts& record) {
  return record.lendingVolume == record.financingVolume &&
         record.unpaidAmount == static_cast<double>(record.financingVolume);
}

/// Remembers the newest version seen of each key; false when one goes back.
class CVersionWatch {
 public:
  bool see(const IData& record) {
    std::uint64_t& newest = m_newest[record.getKey()];
    const bool isRising = record.version() >= newest;
    newest = record.version();
    return isRising;
  }

 private:
  std::map<std::string, std::uint64_t> m_newest;
};

}  // namespace

TEST(StoreThreads, readersSeeWholeRecordsOfRisingVersions) {
  const auto store = makeAccountData(test::creditAccount());
  std::atomic<int> told{0};
  const auto subscription = store->subscribe(OPEN, {}, [&](const std::vector<IDataPtr>& changed) {
    for (const IDataPtr& record : changed)
      if (isConsistent(static_cast<const CStkUnClosedCompacts&>(*record))) ++told;
  });
  std::atomic<int> published{0};
  std::atomic<bool> isDone{false};
  std::thread pusher([&] {
    for (int i = 0; i < ROUNDS; ++i) {
      const auto pushed = consistent(i % KEYS, i % 3);
      if (store->updateData(pushed, false) == pushed) ++published;
    }
  });
  std::thread replacer([&] {
    for (int i = 0; i < ROUNDS; ++i) {
      std::vector<IDataPtr> records;
      for (int key = 0; key < KEYS; ++key) records.push_back(consistent(key, (i + key) % 3));
      if (i % 3 == 0)
        store->updateCompacts(OPEN, records);
      else
        store->updateDatas(records);
    }
  });
  bool areRising = true;
  bool areConsistent = true;
  std::thread reader([&] {
    CVersionWatch watch;
    while (!isDone) {
      for (const auto& record : store->getData(OPEN)) {
        areRising = areRising && watch.see(*record);
        areConsistent = areConsistent && isConsistent(static_cast<const CStkUnClosedCompacts&>(*record));
      }
      const auto one = store->getData(OPEN, openKey(number(1)));
      areRising = areRising && (one == nullptr || watch.see(*one));
    }
  });
  pusher.join();
  replacer.join();
  isDone = true;
  reader.join();
  EXPECT_TRUE(areRising);
  EXPECT_TRUE(areConsistent);
  EXPECT_EQ(store->getData(OPEN).size(), static_cast<std::size_t>(KEYS));
  EXPECT_GT(published, 0);
  EXPECT_GE(told, published.load()) << "what was stored was told, whole";
}

TEST(StoreThreads, modificationsAreNeverLost) {
  const auto store = makeAccountData(test::creditAccount());
  store->updateData(openCompact("C1", 0), false);
  const auto add = [&](auto&& edit) {
    for (int i = 0; i < ROUNDS; ++i) store->modifyData(OPEN, openKey("C1"), edit);
  };
  std::thread one([&] { add([](IData& r) { ++static_cast<CStkUnClosedCompacts&>(r).repayPriority; }); });
  std::thread two([&] { add([](IData& r) { ++static_cast<CStkUnClosedCompacts&>(r).lendingVolume; }); });
  std::thread pusher([&] {  // of other rows
    for (int i = 0; i < ROUNDS; ++i) store->updateData(openCompact(number(2 + i % KEYS), i), false);
  });
  one.join();
  two.join();
  pusher.join();
  const auto held = store->getData(OPEN, openKey("C1"));
  const auto& compact = static_cast<const CStkUnClosedCompacts&>(*held);
  EXPECT_EQ(compact.repayPriority, ROUNDS);
  EXPECT_EQ(compact.lendingVolume, ROUNDS);
}
