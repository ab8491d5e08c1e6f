// The statistics of an account's unclosed compacts in its store: whatever happens to the compacts, they are what a
// naive fold over the stored compacts gives.

#include "rdservice/records.h"

#include "rdservice/CStkUnClosedCompactsStatics.h"
#include "rdservice/data_centre_factory.h"
#include "rdservice/rdservice_enums.h"
#include "rdservice/reply_marks.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <boost/smart_ptr/make_shared.hpp>

#include <cmath>
#include <map>
#include <random>
#include <set>

using namespace rdservice;
using test::openCompact;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr int OPEN = RecordStkUnClosedCompacts;
constexpr int STATISTICS = RecordStkUnClosedCompactsStatics;

constexpr double SETTLED = 12345;  ///< repaid: nothing is owed, the counter has closed the compact

/// A statistic by its key: volumes, then amounts in cents.
using CNumbers = std::map<std::string, std::vector<std::int64_t>>;

std::int64_t cents(double yuan) {
  EXPECT_NEAR(yuan * 100, std::round(yuan * 100), 1e-3) << "no whole cents";
  return std::llround(yuan * 100);
}

template <class Record>
std::vector<std::int64_t> numbersOfRecord(const Record& record) {
  return {record.financingVolume,     record.lendingVolume,       cents(record.compactAmount),
          cents(record.unpaidAmount), cents(record.repaidAmount), cents(record.interestAmount),
          cents(record.feeAmount),    cents(record.penaltyAmount)};
}

CNumbers stored(const CAccountData& store) {
  CNumbers numbers;
  for (const IDataPtr& record : store.getData(STATISTICS))
    numbers[record->getKey()] = numbersOfRecord(static_cast<const CStkUnClosedCompactsStatics&>(*record));
  return numbers;
}

CNumbers folded(const CAccountData& store) {
  CNumbers numbers;
  for (const IDataPtr& record : store.getData(OPEN)) {
    const auto& compact = static_cast<const CStkUnClosedCompacts&>(*record);
    if (compact.repaidAmount == SETTLED) continue;
    auto& sums = numbers[CStkUnClosedCompactsStatics::genKey(compact.exchangeId.str(), compact.code.str(),
                                                             compact.compactType, compact.source, compact.accountInfo)];
    const std::vector<std::int64_t> one = numbersOfRecord(compact);
    sums.resize(one.size());
    for (std::size_t i = 0; i < one.size(); ++i) sums[i] += one[i];
  }
  return numbers;
}

IDataPtr statistic(std::int64_t volume) {
  const auto told = boost::make_shared<CStkUnClosedCompactsStatics>();
  told->accountInfo = test::creditAccount();
  told->exchangeId = "SZ";
  told->code = "000001";
  told->financingVolume = volume;
  return told;
}

std::vector<std::int64_t> volumesOf(const CAccountData& store) {
  std::vector<std::int64_t> volumes;
  for (const auto& [key, numbers] : stored(store)) volumes.push_back(numbers.front());
  return volumes;
}

}  // namespace

TEST(Statistics, FollowTheCompactsWhateverHappensToThem) {
  constexpr int STEPS = 3000;
  constexpr int COMPACTS = 60;
  std::mt19937 random(20261121);
  const auto below = [&random](int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); };
  const auto makeCompact = [&] {
    const auto compact = openCompact("C" + std::to_string(below(COMPACTS)), below(5) * 100);
    compact->compactType = below(2) == 0 ? '0' : '1';
    compact->source = below(2) == 0 ? '0' : '1';
    compact->lendingVolume = below(3) * 100;
    const double large = below(4) == 0 ? 1e8 : 1;  // what is added to it and taken away again must not be lost
    for (double CStkUnClosedCompacts::*amount :
         {&CStkUnClosedCompacts::compactAmount, &CStkUnClosedCompacts::unpaidAmount,
          &CStkUnClosedCompacts::repaidAmount, &CStkUnClosedCompacts::interestAmount, &CStkUnClosedCompacts::feeAmount,
          &CStkUnClosedCompacts::penaltyAmount})
      (*compact).*amount = large + below(10000) / 100.0 - 50;
    if (below(10) == 0) {
      compact->financingVolume = compact->lendingVolume = 0;
      compact->unpaidAmount = compact->interestAmount = compact->feeAmount = compact->penaltyAmount = 0;
      compact->repaidAmount = SETTLED;
    }
    return compact;
  };
  const auto makeSet = [&](int most) {
    std::vector<IDataPtr> set;
    for (int count = below(most + 1); count > 0; --count) set.push_back(makeCompact());
    return set;
  };

  const CAccountDataPtr store = makeAccountData(test::creditAccount());
  std::map<std::string, IDataPtr> heard;
  const auto subscription = store->subscribe(STATISTICS, {}, [&](const std::vector<IDataPtr>& changed) {
    for (const IDataPtr& record : changed) heard[record->getKey()] = record;
  });
  replaceAsOf(*store, OPEN, makeSet(COMPACTS), takeMark(*store));
  std::vector<std::uint64_t> marks;
  for (int step = 0; step < STEPS; ++step) {
    const int act = below(20);
    if (act == 0) marks.push_back(takeMark(*store));
    if (act == 1 && !marks.empty()) {  // a late reply: what came since is newer
      replaceAsOf(*store, OPEN, makeSet(COMPACTS), marks[static_cast<std::size_t>(below(int(marks.size())))]);
    }
    if (act == 2) replaceAsOf(*store, STATISTICS, {statistic(7)}, takeMark(*store));
    if (act >= 3 && act < 8)
      store->modifyData(OPEN, test::openKey("C" + std::to_string(below(COMPACTS))), [&](IData& data) {
        auto& compact = static_cast<CStkUnClosedCompacts&>(data);
        if (compact.repaidAmount != SETTLED) compact.unpaidAmount += 0.01;
      });
    if (act >= 8) store->updateDatas(makeSet(6));
    const CNumbers expected = folded(*store);
    ASSERT_EQ(stored(*store), expected) << "after act " << act << " at step " << step;
    for (const IDataPtr& record : store->getData(STATISTICS)) ASSERT_EQ(heard[record->getKey()], record) << step;
  }
}

TEST(Statistics, StayAsToldUntilEveryCompactIsKnown) {
  const CAccountDataPtr store = makeAccountData(test::creditAccount());
  const auto tell = [&] { replaceAsOf(*store, STATISTICS, {statistic(7)}, takeMark(*store)); };
  tell();
  store->updateDatas({openCompact("C1", 100)});
  EXPECT_THAT(volumesOf(*store), ElementsAre(7)) << "of one compact it is not known whether the counter counted it";
  const auto reply = [&](const std::vector<IDataPtr>& records, bool isWhole) {
    const std::uint64_t mark = takeMark(*store);
    noteMark(records, mark);
    if (isWhole) noteWholeReply(*store, records, mark);
    store->updateDatas(records);
  };
  reply({openCompact("C1", 200), openCompact("C2", 50)}, false);
  EXPECT_THAT(volumesOf(*store), ElementsAre(7)) << "there may be more";
  reply({openCompact("C2", 50)}, true);
  EXPECT_THAT(volumesOf(*store), ElementsAre(7)) << "the counter has one less";
  reply({openCompact("C1", 210), openCompact("C2", 50)}, true);
  EXPECT_THAT(volumesOf(*store), ElementsAre(260));
  store->updateDatas({openCompact("C1", 200)});
  EXPECT_THAT(volumesOf(*store), ElementsAre(250));
  const std::uint64_t version = store->getData(STATISTICS).front()->version();
  tell();
  store->updateDatas({openCompact("C1", 200)});
  EXPECT_THAT(volumesOf(*store), ElementsAre(250));
  EXPECT_EQ(store->getData(STATISTICS).front()->version(), version) << "nothing has changed";

  // After a log-out the counter's word counts again, and nothing is made of the compacts of before, also of those in
  // replies on their way.
  const std::uint64_t before = takeMark(*store);
  const std::vector<IDataPtr> noted{openCompact("C5", 5)};
  noteMark(noted, before);
  noteWholeReply(*store, noted, before);
  store->removeMetaData(OPEN);
  tell();
  store->updateDatas(noted);
  EXPECT_THAT(volumesOf(*store), ElementsAre(7));
  const std::vector<IDataPtr> late{openCompact("C5", 6)};
  noteMark(late, before + 1);
  noteWholeReply(*store, late, before);
  store->updateDatas(late);
  replaceAsOf(*store, OPEN, {openCompact("C3", 1)}, before);
  EXPECT_THAT(volumesOf(*store), ElementsAre(7));
  store->updateCompacts(OPEN, {openCompact("C4", 3)});
  EXPECT_THAT(volumesOf(*store), ElementsAre(3));
  replaceAsOf(*store, OPEN, {}, takeMark(*store));
  EXPECT_THAT(volumesOf(*store), IsEmpty());
}
