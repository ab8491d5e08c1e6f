#include "rdservice/records.h"

#include "rdservice/CHashedPlaces.h"
#include "rdservice/CStructDes.h"
#include "rdservice/data_centre_factory.h"
#include "rdservice/rdservice_enums.h"
#include "rdservice/reply_marks.h"

#include <gtest/gtest.h>

#include <boost/smart_ptr/make_shared.hpp>

#include <algorithm>
#include <random>
#include <utility>

using namespace rdservice;
using test::closedCompact;
using test::numbersOf;
using test::openCompact;
using test::openKey;

namespace {

constexpr int OPEN = RecordStkUnClosedCompacts;
constexpr int CLOSED = RecordStkClosedCompacts;

std::int64_t volumeOf(const IDataPtr& record) {
  return static_cast<const CStkUnClosedCompacts&>(*record).financingVolume;
}

class CStoreTest : public testing::Test {
 protected:
  CAccountDataPtr store = makeAccountData(test::creditAccount());
  std::vector<IDataPtr> told;
  utils::CSubscriptionPtr subscription = store->subscribe(OPEN, {}, [this](const std::vector<IDataPtr>& changed) {
    told.insert(told.end(), changed.begin(), changed.end());
  });

  std::string takeTold() {
    const std::string numbers = numbersOf(told);
    told.clear();
    return numbers;
  }
};

}  // namespace

TEST_F(CStoreTest, storingStampsAndKeepsThePlace) {
  const auto first = openCompact("C1");
  EXPECT_EQ(store->updateData(first, false), first);
  EXPECT_EQ(first->version(), 1u);
  store->updateData(openCompact("C2"), false);
  const auto changed = openCompact("C1", 50);
  EXPECT_EQ(store->updateData(changed, false), changed);
  EXPECT_EQ(changed->version(), 3u);
  EXPECT_EQ(takeTold(), "C1 C2 C1");
  EXPECT_EQ(numbersOf(store->getData(OPEN)), "C1 C2");
  EXPECT_EQ(store->getData(OPEN, openKey("C1")), changed);
  EXPECT_EQ(store->getData(OPEN, openKey("C9")), nullptr);
  EXPECT_EQ(store->getData(CLOSED, openKey("C1")), nullptr);
  EXPECT_EQ(store->updateData(nullptr, false), nullptr);
}

TEST_F(CStoreTest, echoesChangeNothing) {
  const auto held = store->updateData(openCompact("C1"), false);
  takeTold();
  const auto echo = openCompact("C1");
  EXPECT_EQ(store->updateData(echo, false), held);
  EXPECT_EQ(echo->version(), 0u) << "not published";
  EXPECT_EQ(store->updateData(held, true), held);
  EXPECT_EQ(store->updateDatas({held, openCompact("C1")}), (std::vector<IDataPtr>{held, held}));
  store->updateCompacts(OPEN, {openCompact("C1")});
  EXPECT_EQ(store->getData(OPEN, openKey("C1")), held);
  EXPECT_EQ(held->version(), 1u);
  EXPECT_EQ(takeTold(), "");
}

TEST_F(CStoreTest, aPublishedRecordIsStoredAgainAsACopy) {
  const auto old = store->updateData(openCompact("C1", 1), false);
  const auto newer = store->updateData(openCompact("C1", 2), false);
  EXPECT_EQ(store->updateData(old, true), newer) << "its version is below the held one's";
  const auto again = store->updateData(old, false);
  EXPECT_NE(again, old);
  EXPECT_EQ(volumeOf(again), 1);
  EXPECT_EQ(old->version(), 1u) << "others may hold it";
  EXPECT_GT(again->version(), newer->version());
}

TEST_F(CStoreTest, aWholeSetReplacesTheOldOne) {
  store->updateDatas({openCompact("C1"), openCompact("C2"), openCompact("C3"), closedCompact("X1")});
  const auto kept = store->getData(OPEN, openKey("C2"));
  const auto before = store->getData(OPEN, openKey("C3"));
  takeTold();
  store->updateCompacts(OPEN,
                        {openCompact("C4"), nullptr, openCompact("C3", 7), openCompact("C2"), openCompact("C4", 8)});
  EXPECT_EQ(numbersOf(store->getData(OPEN)), "C4 C3 C2");
  EXPECT_EQ(store->getData(OPEN, openKey("C1")), nullptr);
  EXPECT_EQ(store->getData(OPEN, openKey("C2")), kept);
  EXPECT_EQ(volumeOf(store->getData(OPEN, openKey("C4"))), 8) << "the later of two with one key";
  EXPECT_EQ(takeTold(), "C4 C3");
  EXPECT_EQ(numbersOf(store->getData(CLOSED)), "X1");

  // Versions go on rising after the set was dropped, also for a record that was held before.
  const auto last = store->getData(OPEN, openKey("C3"));
  store->removeMetaData(OPEN);
  EXPECT_TRUE(store->getData(OPEN).empty());
  EXPECT_EQ(takeTold(), "");
  store->updateCompacts(OPEN, {before});
  const auto back = store->getData(OPEN, openKey("C3"));
  EXPECT_NE(back, before);
  EXPECT_GT(back->version(), last->version());
  EXPECT_EQ(takeTold(), "C3");
}

TEST_F(CStoreTest, aBatchIsToldOnceWhenAllOfItIsStored) {
  store->updateData(openCompact("C1"), false);
  takeTold();
  std::vector<std::size_t> heldWhenTold;
  const auto counting = store->subscribe(OPEN, {}, [&](const std::vector<IDataPtr>&) {
    heldWhenTold.push_back(store->getData(OPEN).size() + store->getData(CLOSED).size());
  });
  const auto held =
      store->updateDatas({openCompact("C2", 1), nullptr, openCompact("C1"), closedCompact("X1"), openCompact("C2", 2)});
  EXPECT_EQ(numbersOf(held), "C2 - C1 X1 C2");
  EXPECT_EQ(held[0], held[4]);
  EXPECT_EQ(volumeOf(held[0]), 2);
  EXPECT_EQ(takeTold(), "C2") << "C1 did not change, C2 is told as it is held";
  EXPECT_EQ(heldWhenTold, std::vector<std::size_t>{3});
}

TEST_F(CStoreTest, batchesInAnyOrderEndAsOneRecordAfterTheOther) {
  std::mt19937 random(5);
  std::vector<std::pair<std::string, std::int64_t>> expected;  // in order of arrival
  for (int round = 0; round < 60; ++round) {
    std::vector<IDataPtr> batch;
    const bool isReply = round % 5 == 4;  // the same set again, in its order
    const std::size_t size = isReply ? expected.size() : 1 + random() % 300;
    for (std::size_t i = 0; i < size; ++i) {
      const std::string number = isReply ? expected[i].first : "C" + std::to_string(random() % 2000);
      const auto volume = static_cast<std::int64_t>(random() % 3);
      const auto held =
          std::find_if(expected.begin(), expected.end(), [&](const auto& e) { return e.first == number; });
      if (held == expected.end())
        expected.emplace_back(number, volume);
      else
        held->second = volume;
      batch.push_back(openCompact(number, volume));
      if (random() % 4 == 0) batch.push_back(closedCompact(number));  // another type with the same key
    }
    store->updateDatas(batch);
    if (round % 10 == 9) store->updateCompacts(OPEN, store->getData(OPEN));
  }
  std::vector<std::pair<std::string, std::int64_t>> held;
  for (const IDataPtr& record : store->getData(OPEN)) {
    held.emplace_back(numbersOf({record}), volumeOf(record));
    EXPECT_EQ(store->getData(OPEN, record->getKey()), record);
  }
  EXPECT_EQ(held, expected);
  EXPECT_EQ(store->getData(OPEN, openKey("C2000")), nullptr);
}

TEST(HashedPlaces, keysWithOneHashAreToldApart) {
  CHashedPlaces places;
  const auto isPlace = [](std::size_t wanted) { return [wanted](std::size_t place) { return place == wanted; }; };
  constexpr std::uint32_t HASHES[] = {0, 7, 0xFFFFFFFF};  // the last one's neighbours are at the beginning
  constexpr std::size_t COUNT = 300;
  for (std::size_t place = 0; place < COUNT; ++place) {
    EXPECT_EQ(places.find(HASHES[place % 3], isPlace(place)), CHashedPlaces::NONE);
    places.add(HASHES[place % 3], place);
  }
  for (std::size_t place = 0; place < COUNT; ++place)
    for (const std::uint32_t hash : HASHES)
      EXPECT_EQ(places.find(hash, isPlace(place)), hash == HASHES[place % 3] ? place : CHashedPlaces::NONE);
}

TEST_F(CStoreTest, modifyingWorksOnWhatIsHeldNow) {
  const auto stale = store->updateData(openCompact("C1", 1), false);
  store->updateData(openCompact("C1", 2), false);
  takeTold();
  const auto setPriority = [](IData& record) { static_cast<CStkUnClosedCompacts&>(record).repayPriority = 5; };
  const auto modified = store->modifyData(OPEN, openKey("C1"), setPriority);
  EXPECT_EQ(volumeOf(modified), 2) << "the push in between stays";
  EXPECT_EQ(static_cast<const CStkUnClosedCompacts&>(*modified).repayPriority, 5);
  EXPECT_EQ(store->getData(OPEN, openKey("C1")), modified);
  EXPECT_EQ(modified->version(), 3u);
  EXPECT_EQ(takeTold(), "C1");
  EXPECT_EQ(store->modifyData(OPEN, openKey("C1"), setPriority), modified) << "nothing to change";
  EXPECT_EQ(store->modifyData(OPEN, openKey("C9"), setPriority), nullptr);
  EXPECT_EQ(store->modifyData(CLOSED, openKey("C1"), setPriority), nullptr);
  EXPECT_EQ(takeTold(), "");
  EXPECT_EQ(static_cast<const CStkUnClosedCompacts&>(*stale).repayPriority, 0);
}

TEST_F(CStoreTest, aReplyLeavesAloneWhatIsNewerThanItsRequest) {
  const auto reply = [&](std::uint64_t mark, std::vector<IDataPtr> records) {
    noteMark(records, mark);
    return records;
  };
  const auto volume = [&](const char* number) { return volumeOf(store->getData(OPEN, openKey(number))); };
  store->updateData(openCompact("C1", 1), false);
  const std::uint64_t first = takeMark(*store);
  const std::uint64_t second = takeMark(*store);
  store->updateDatas(reply(second, {openCompact("C2", 20)}));
  store->updateData(openCompact("C3", 3), false);
  store->updateData(openCompact("C4", 4), false);
  const auto held = store->updateDatas(
      reply(first, {openCompact("C1", 10), openCompact("C2", 10), openCompact("C3", 10), openCompact("C5", 10)}));
  EXPECT_EQ(volume("C1"), 10) << "pushed before the request";
  EXPECT_EQ(volume("C2"), 20) << "a later request was answered first";
  EXPECT_EQ(volume("C3"), 3) << "pushed after the request";
  EXPECT_EQ(held[2], store->getData(OPEN, openKey("C3"))) << "told what is held, not what came";

  // The same for a whole set, which also keeps what was opened after the request.
  const std::uint64_t third = takeMark(*store);
  store->updateData(openCompact("C4", 4), false);  // the same values, but true later than the request
  store->modifyData(OPEN, openKey("C1"), [](IData& r) { static_cast<CStkUnClosedCompacts&>(r).repayPriority = 5; });
  takeTold();
  replaceAsOf(*store, OPEN, {openCompact("C5", 50), openCompact("C1", 11)}, third);
  EXPECT_EQ(numbersOf(store->getData(OPEN)), "C5 C1 C4");
  EXPECT_EQ(volume("C1"), 10);
  EXPECT_EQ(volume("C5"), 50);
  EXPECT_EQ(takeTold(), "C5");
  replaceAsOf(*store, OPEN, {}, takeMark(*store));
  EXPECT_TRUE(store->getData(OPEN).empty());
}

TEST_F(CStoreTest, subscriptionsHearTheirTypeOrKeyUntilDropped) {
  std::vector<IDataPtr> ofKey;
  auto keySubscription = store->subscribe(
      OPEN, openKey("C2"), [&](const std::vector<IDataPtr>& r) { ofKey.insert(ofKey.end(), r.begin(), r.end()); });
  int calls = 0;
  utils::CSubscriptionPtr once = store->subscribe(OPEN, {}, [&](const std::vector<IDataPtr>&) {
    ++calls;
    once.reset();
  });
  store->updateDatas({openCompact("C1"), openCompact("C2"), closedCompact("C2"), openCompact("C3")});
  EXPECT_EQ(numbersOf(ofKey), "C2");
  EXPECT_EQ(calls, 1) << "dropped from inside itself";
  keySubscription.reset();
  store->updateData(openCompact("C2", 9), false);
  EXPECT_EQ(ofKey.size(), 1u);
  EXPECT_EQ(takeTold(), "C1 C2 C3 C2");
  store.reset();
  subscription.reset();  // a handle may outlive the store
}

TEST(DataCentre, accountsAndInstruments) {
  EXPECT_EQ(TraderCenter::instance(), nullptr);
  const auto centre = makeTraderCenter();
  ASSERT_EQ(TraderCenter::instance(), centre.get());
  CDataCenter& data = *centre->getDataCenter();
  EXPECT_EQ(data.getAccountData("3.10010001"), nullptr);
  data.setAccounts({test::creditAccount()});
  const auto store = data.getAccountData("3.10010001");
  ASSERT_NE(store, nullptr);
  EXPECT_EQ(store->getAccountInfo(), test::creditAccount());
  data.setAccounts({boost::make_shared<CAccountInfo>(*test::creditAccount())});
  EXPECT_EQ(data.getAccountData("3.10010001"), store) << "known accounts keep their records";

  const auto instrument = [](const char* exchange, const char* code, const char* name) {
    auto record = boost::make_shared<CInstrumentInfo>();
    record->exchangeId = exchange;
    record->code = code;
    record->name = name;
    return record;
  };
  data.setInstruments(
      {instrument("SZ", "000001", "a"), instrument("SH", "600000", "b"), instrument("SZ", "000001", "c")});
  EXPECT_EQ(data.getInstruments().size(), 2u);
  EXPECT_EQ(data.getInstrument("SZ", "000001")->name.str(), "c");
  data.setInstruments({instrument("SH", "600000", "d")});
  EXPECT_EQ(data.getInstrument("SZ", "000001"), nullptr);
  EXPECT_EQ(data.getInstrument("SH", "600000")->name.str(), "d");
}

using CStoreDeathTest = CStoreTest;

TEST_F(CStoreDeathTest, writingToAPublishedRecordStopsADebugBuild) {
  testing::GTEST_FLAG(death_test_style) = "threadsafe";
  const auto record = openCompact("C1");
  store->updateData(record, false);
  EXPECT_DEBUG_DEATH(
      {
        record->financingVolume = 7;
        store->getData(OPEN, openKey("C1"));
      },
      "published record was written to");
}
