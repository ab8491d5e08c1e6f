// The page book: named cases, and random orders of everything that may happen to it against a list kept by the rules.

#include "compacts/tables/CPageBook.h"
#include "compacts/tables/compact_fields.h"
#include "kit/records.h"
#include "rdservice/CDataVersion.h"
#include "rdservice/rdservice_enums.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>

namespace {

using rdservice::CStkUnClosedCompactsPtr;
using rdservice::IDataPtr;
using VN::CPageBook;
using VN::CPageButtons;
using VN::CPageCache;
using VN::CPageRules;
using VN::CPageStep;

constexpr int ALL = rdservice::CompactTypeAll;
constexpr int FINANCING = rdservice::CompactTypeFinancing;
constexpr int LENDING = rdservice::CompactTypeSecuritiesLending;

CPageRules rules(int compactType, bool repeats) { return {rdservice::RecordStkUnClosedCompacts, compactType, repeats}; }

IDataPtr record(int number, const std::string& position, int type = FINANCING) {
  const CStkUnClosedCompactsPtr made = kit::compact(nullptr, std::to_string(number), 1000, static_cast<char>(type));
  made->positionString = position;
  return made;
}

const rdservice::CStkUnClosedCompacts& compactOf(const IDataPtr& data) {
  return static_cast<const rdservice::CStkUnClosedCompacts&>(*data);
}

std::string textOf(const CPageButtons& buttons) {
  return {buttons.first ? 'F' : '-', buttons.previous ? 'P' : '-', buttons.next ? 'N' : '-'};
}

/// A play of few words: "q" query, "r1-500" the newest query's reply with these records, "o1-9" an older one's, "e"
/// empty reply, "f" failure, "1 p n" buttons, "l1-9" rebuild from these, "c" refresh that keeps the cache, "C" drops
/// it.
class CPlay {
 public:
  CPlay(int size, int type, bool repeating) : pageSize(size), compactType(type), repeats(repeating) {}

  std::string act(const std::string& step) {
    switch (step[0]) {
      case 'q': return tell(book.beginQuery());
      case 'r':
      case 'e': return reply(book.number(), range(step));
      case 'o': return reply(book.number() - 1, range(step));
      case 'f': return tell(book.fail(book.number(), pageSize));
      case '1': return tell(book.press(GW::PagingFirst, pageSize, compactType));
      case 'p': return tell(book.press(GW::PagingPrevious, pageSize, compactType));
      case 'n': return tell(book.press(GW::PagingNext, pageSize, compactType));
      case 'l': {
        CPageCache cache(range(step), rules(compactType, repeats));
        return tell(book.rebuild(book.number(), cache, pageSize));
      }
      default: return tell(book.reset(step == "C"));
    }
  }

 private:
  /// Records with an odd number are financing, the others lending.
  static std::vector<IDataPtr> range(const std::string& step) {
    std::vector<IDataPtr> records;
    const std::size_t dash = step.find('-');
    if (dash == std::string::npos) return records;
    for (int i = std::stoi(step.substr(1)); i <= std::stoi(step.substr(dash + 1)); ++i)
      records.push_back(record(i, std::to_string(i), i % 2 == 1 ? FINANCING : LENDING));
    return records;
  }

  std::string reply(std::uint64_t number, const std::vector<IDataPtr>& records) {
    auto batch = book.sift(number, records, rules(compactType, repeats));
    return batch ? tell(book.accept(number, std::move(*batch), pageSize)) : "stale";
  }

  std::string tell(const CPageStep& step) const {
    switch (step.what) {
      case CPageStep::Nothing: return "nothing";
      case CPageStep::Stale: return "stale";
      case CPageStep::Query: return "query @" + step.position;
      case CPageStep::Reload: return "reload";
      case CPageStep::Show: break;
    }
    const std::vector<IDataPtr> page = book.records(step);
    const auto number = [&](std::size_t at) { return compactOf(page[at]).fieldA; };
    return (page.empty() ? "none" : number(0) + "-" + number(page.size() - 1)) + " on " +
           std::to_string(book.pageNo()) + " " + textOf(book.buttons(pageSize));
  }

  CPageBook book;
  const int pageSize;
  const int compactType;
  const bool repeats;
};

struct CNamedCase {
  const char* name;
  int pageSize;
  int compactType;
  bool repeats;
  std::string play;  ///< step>outcome, ...
};

TEST(PageBook, NamedCases) {
  const std::vector<CNamedCase> cases = {
      {"500 a page and 1,000 cached", 0, ALL, false,
       "q>query @, r1-500>1-500 on 1 --N, n>query @500, n>nothing, r501-1000>501-1000 on 2 FPN, 1>1-500 on 1 --N, "
       "n>501-1000 on 2 FPN, n>query @1000, r1001-1003>1001-1003 on 3 FP-, p>501-1000 on 2 FPN"},
      {"previous on page 1", 4, ALL, false, "q>query @, r1-3>1-3 on 1 ---, p>1-3 on 1 ---"},
      {"exactly one full page, then an empty batch or a failure", 4, ALL, false,
       "q>query @, r1-4>1-4 on 1 --N, n>query @4, e>1-4 on 1 --N, e>stale, n>query @4, f>1-4 on 1 --N, f>stale"},
      {"nothing at all", 4, ALL, false, "q>query @, e>none on 1 ---, q>query @, f>none on 1 ---"},
      {"a counter that repeats", 4, ALL, true,
       "q>query @, r1-4>1-4 on 1 --N, n>query @4, r4-8>5-8 on 2 FPN, n>query @8, r7-8>5-8 on 2 FPN, n>query @8"},
      {"only known records of a counter that should not repeat", 4, ALL, false,
       "q>query @, r1-4>1-4 on 1 --N, n>query @4, r2-3>1-4 on 1 --N, n>query @3"},
      {"the reply of an older query", 4, ALL, false,
       "q>query @, q>query @, o1-2>stale, r1-3>1-3 on 1 ---, r1-3>stale, q>query @3, C>nothing, r4-5>stale, "
       "o4-5>stale"},
      {"records of another type, the last one too", 2, FINANCING, false,
       "q>query @, r1-4>1-3 on 1 --N, n>query @4, r6-6>1-3 on 1 --N, n>query @6, r7-8>7-7 on 2 FP-, p>reload, "
       "l1-12>1-3 on 1 --N, n>5-7 on 2 FPN, n>9-11 on 3 FPN, n>query @8"},
      {"a refresh that keeps the cache", 2, ALL, false,
       "q>query @, r1-2>1-2 on 1 --N, n>query @2, r3-4>3-4 on 2 FPN, c>nothing, n>3-4 on 2 FPN, n>query @, "
       "r1-2>1-2 on 1 --N"},
      {"a page that is gone after a reload", 2, FINANCING, false,
       "q>query @, r1-9>1-3 on 1 --N, n>5-7 on 2 FPN, n>9-9 on 3 FP-, p>reload, l1-2>1-1 on 1 ---"},
  };
  for (const CNamedCase& named : cases) {
    CPlay play(named.pageSize, named.compactType, named.repeats);
    for (std::size_t at = 0, end = 0; at < named.play.size(); at = end + 2) {
      end = std::min(named.play.find(", ", at), named.play.size());
      const std::size_t mark = named.play.find('>', at);
      ASSERT_EQ(play.act(named.play.substr(at, mark - at)), named.play.substr(mark + 1, end - mark - 1))
          << named.name << ": " << named.play.substr(0, end);
    }
  }
}

/// The rules, on plain lists.
struct CNaiveBook {
  std::vector<IDataPtr> cache;
  std::string position;
  int page = 1;
  int cacheType = ALL;
  bool isOut = false;
  bool isVoid = false;

  std::size_t placeOf(const std::string& key) const {
    std::size_t place = 0;
    while (place < cache.size() && cache[place]->getKey() != key) ++place;
    return place;
  }
  void put(const IDataPtr& data) {
    const std::size_t place = placeOf(data->getKey());
    if (place == cache.size())
      cache.push_back(data);
    else
      cache[place] = data;
  }
  std::vector<IDataPtr> shown(int pageSize) {
    while (page > 1 && static_cast<std::size_t>((page - 1) * pageSize) >= cache.size()) --page;
    std::vector<IDataPtr> rows;
    for (std::size_t i = std::size_t((page - 1) * pageSize); i < cache.size() && i < std::size_t(page * pageSize); ++i)
      rows.push_back(cache[i]);
    return rows;
  }
  void reset(bool dropCache) {
    if (dropCache) cache.clear();
    position.clear();
    page = 1;
    isOut = false;
    isVoid = true;
  }
  void begin() {
    if (isVoid) cache.clear();
    isVoid = false;
    isOut = true;
  }
  void reply(const std::vector<IDataPtr>& batch, const CPageRules& how) {
    isOut = false;
    bool isAnyKept = false;
    std::set<std::string> held;
    for (const IDataPtr& data : cache) held.insert(compactOf(data).positionString);
    for (const IDataPtr& data : batch) {
      const auto& compact = compactOf(data);
      if (!how.repeats) position = compact.positionString;
      if (how.compactType != ALL && compact.compactType != how.compactType) continue;
      if (how.repeats && !compact.positionString.empty() && !held.insert(compact.positionString).second) continue;
      if (how.repeats) position = compact.positionString;
      put(data);
      isAnyKept = true;
    }
    cacheType = how.compactType;
    if (!isAnyKept) page = std::max(1, page - 1);
  }
};

/// Plays one random order on the book and on the naive one.
class CRandomPlay {
 public:
  explicit CRandomPlay(unsigned seed) : m_random(seed) {}

  void run() {
    for (int i = 0; i < 300 && !testing::Test::HasFailure(); ++i) {
      if (pick(10) == 0) m_pageSize = 1 + pick(7);
      act();
      compare();
    }
  }

 private:
  int pick(int count) { return static_cast<int>(m_random() % static_cast<unsigned>(count)); }

  /// Each key has positions of its own, and now and then a new one; a reply may also come with another key's.
  IDataPtr randomRecord(bool ofReply) {
    const int key = pick(m_keys);
    std::string position = "p" + std::to_string(key);
    if (pick(8) == 0) position += "." + std::to_string(++m_renumbered);
    if (ofReply && pick(12) == 0) position = "p" + std::to_string(pick(m_keys));
    if (ofReply && pick(12) == 0) position.clear();
    return record(key, position, pick(3) == 0 ? LENDING : FINANCING);
  }
  std::vector<IDataPtr> randomRecords(int most, bool ofReply) {
    std::vector<IDataPtr> records;
    for (int left = pick(most + 1); left > 0; --left) records.push_back(randomRecord(ofReply));
    return records;
  }

  void act() {
    switch (pick(14)) {
      case 0: return reset();
      case 1: return begin(m_book.beginQuery());
      case 2:
      case 3:
      case 4:
      case 5: return reply();
      case 6: return fail();
      case 7: return rebuild(m_book.number());
      case 8: return rebuild(m_book.number() - 1);
      default: return press();
    }
  }

  void reset() {
    const CPageStep step = m_book.reset(m_dropCache = pick(2) == 0);
    m_naive.reset(m_dropCache);
    EXPECT_EQ(step.what, CPageStep::Nothing);
    // Another account or type comes with a reset only.
    m_rules = rules(pick(2) == 0 ? ALL : FINANCING, pick(2) == 0);
    m_keys = 5 + pick(40);
  }

  void begin(const CPageStep& step) {
    m_naive.begin();
    EXPECT_EQ(step.what, CPageStep::Query);
    EXPECT_EQ(step.position, m_naive.position);
    EXPECT_EQ(step.number, m_book.number());
  }

  void reply() {
    const std::uint64_t number = m_book.number() - (pick(6) == 0 ? 1 : 0);
    const std::vector<IDataPtr> records = randomRecords(2 * m_pageSize, true);
    auto batch = m_book.sift(number, records, m_rules);
    ASSERT_EQ(batch.has_value(), m_naive.isOut && number == m_book.number());
    if (!batch) return;
    const CPageStep step = m_book.accept(number, *batch, m_pageSize);
    m_naive.reply(records, m_rules);
    expectShown(step);
    EXPECT_EQ(m_book.accept(number, *batch, m_pageSize).what, CPageStep::Stale);
  }

  void fail() {
    const CPageStep step = m_book.fail(m_book.number(), m_pageSize);
    if (!m_naive.isOut) {
      EXPECT_EQ(step.what, CPageStep::Stale);
      return;
    }
    m_naive.isOut = false;
    m_naive.page = std::max(1, m_naive.page - 1);
    expectShown(step);
  }

  void rebuild(std::uint64_t number) {
    const std::vector<IDataPtr> records = randomRecords(30, false);
    const bool isFull = pick(2) == 0;
    CPageCache cache(records, m_rules);
    const CPageStep step =
        m_book.rebuild(number, cache, m_pageSize, isFull ? std::optional<std::string>("full") : std::nullopt);
    if (number != m_book.number()) {
      EXPECT_EQ(step.what, CPageStep::Stale);
      return;
    }
    m_naive.cache.clear();
    for (const IDataPtr& data : records)
      if (m_rules.takes(data)) m_naive.put(data);
    m_naive.cacheType = m_rules.compactType;
    m_naive.isOut = m_naive.isVoid = false;
    if (isFull) m_naive.position = "full";
    expectShown(step);
  }

  void press() {
    constexpr GW::EPagingButton BUTTONS[] = {GW::PagingFirst, GW::PagingPrevious, GW::PagingNext, GW::PagingNext};
    const GW::EPagingButton button = BUTTONS[pick(4)];
    const std::uint64_t before = m_book.number();
    const CPageStep step = m_book.press(button, m_pageSize, m_rules.compactType);
    if (m_naive.isOut) {
      EXPECT_EQ(step.what, CPageStep::Nothing);
      return;
    }
    EXPECT_GT(step.number, before);
    if (button == GW::PagingFirst) m_naive.page = 1;
    if (button == GW::PagingPrevious && m_naive.page > 1) --m_naive.page;
    if (button == GW::PagingNext && m_naive.cache.size() <= std::size_t(m_pageSize * m_naive.page++))
      return begin(step);
    const bool isOther = !m_naive.cache.empty() && m_naive.cacheType != m_rules.compactType;
    if (isOther || (button != GW::PagingNext && m_rules.compactType != ALL)) {
      EXPECT_EQ(step.what, CPageStep::Reload);
      return;
    }
    expectShown(step);
  }

  void expectShown(const CPageStep& step) {
    EXPECT_EQ(step.what, CPageStep::Show);
    EXPECT_TRUE(m_book.isCurrent(step.number));
    EXPECT_EQ(m_book.records(step), m_naive.shown(m_pageSize));
  }

  void compare() {
    EXPECT_EQ(m_book.size(), m_naive.cache.size());
    EXPECT_EQ(m_book.pageNo(), m_naive.page);
    EXPECT_EQ(m_book.position(), m_naive.position);
    CPageButtons expected{m_naive.page != 1, m_naive.page != 1,
                          m_naive.cache.size() >= std::size_t(m_pageSize * m_naive.page)};
    if (m_naive.isOut) expected = {};
    EXPECT_EQ(textOf(m_book.buttons(m_pageSize)), textOf(expected));
    for (std::size_t place = 0; place < m_naive.cache.size(); ++place)
      EXPECT_EQ(m_book.indexOf(m_naive.cache[place]->getKey()), m_naive.isVoid ? 0 : int(place) + 1);
    const std::string any = randomRecord(false)->getKey();
    if (m_naive.placeOf(any) == m_naive.cache.size()) {
      EXPECT_EQ(m_book.indexOf(any), 0);
    }
  }

  std::mt19937 m_random;
  CPageBook m_book;
  CNaiveBook m_naive;
  CPageRules m_rules = rules(ALL, false);
  int m_pageSize = 3;
  int m_keys = 20;
  int m_renumbered = 0;
  bool m_dropCache = false;
};

TEST(PageBook, RandomOrdersGoByTheRules) {
  for (unsigned seed = 1; seed <= 300; ++seed) {
    CRandomPlay(seed).run();
    ASSERT_FALSE(testing::Test::HasFailure()) << "seed " << seed;
  }
}

TEST(PageBook, OnlyLaterVersionsOfCachedRecordsAreTakenOver) {
  CPageBook book;
  const std::uint64_t number = book.beginQuery().number;
  const auto version = [](int key, std::uint64_t value) {
    const IDataPtr made = record(key, {});
    rdservice::CDataVersion::stamp(*made, value);
    return made;
  };
  const IDataPtr later = version(2, 6);
  const std::vector<IDataPtr> received{version(1, 5), version(2, 5)};
  const CPageStep step = book.accept(number, *book.sift(number, received, rules(ALL, false)), VN::PAGE_SIZE);
  for (const IDataPtr& data : {version(1, 4), later, version(3, 6)}) book.renew(data);
  EXPECT_EQ(book.records(step), (std::vector<IDataPtr>{received[0], later}));
  EXPECT_EQ(book.size(), 2U);
}

TEST(PageBook, CostsLittleBesideItsRecords) {
  constexpr int COUNT = 100000;
  std::vector<IDataPtr> records;
  for (int i = 0; i < COUNT; ++i) records.push_back(record(i, std::to_string(i)));
  EXPECT_LE(CPageCache(records, rules(ALL, true)).memory(), std::size_t(COUNT) * 100);
  CPageCache grown;  // as batches make it
  grown.indexPositions();
  for (const IDataPtr& data : records) grown.put(data, VN::CPlaceIndex::hashOf(data->getKey()));
  EXPECT_LE(grown.memory(), std::size_t(COUNT) * 100);
}

}  // namespace
