#include "counter/sample_changes.h"

#include "counter/sample_securities.h"

#include <algorithm>
#include <vector>

namespace counter {

namespace {

constexpr const char* HEADER =
    "account,exchange,code,compact_type,compact_no,open_date,change_date,change_kind,change_volume,change_amount,"
    "remaining_volume,remaining_amount,serial_no\n";

constexpr std::int64_t MOST_REPAYMENTS = 3;
constexpr std::int64_t LOT = 100;
constexpr std::int64_t EARLIEST_RENEWAL = 120;  ///< days after the opening
constexpr std::int64_t LATEST_RENEWAL = 179;

struct CKinds {
  const char* opening;
  const char* repayments[2];
};
constexpr CKinds FINANCING{"融资买入", {"卖券还款", "直接还款"}};
constexpr CKinds LENDING{"融券卖出", {"直接还券", "买券还券"}};
constexpr const char* RENEWAL = "展期";

struct CSampleChange {
  std::int64_t day;  ///< after the opening
  const char* kind;
  std::int64_t volume;
  std::int64_t amount;
};

/// Part number `i` of `count` nearly equal ones that add up to `whole`, in units of `unit`.
std::int64_t partOf(std::int64_t whole, std::int64_t i, std::int64_t count, std::int64_t unit) {
  return (whole / unit * (i + 1) / count - whole / unit * i / count) * unit + (i == count - 1 ? whole % unit : 0);
}

}  // namespace

CSampleChanges::CSampleChanges(const QString& path, std::uint32_t seed) : m_file(path), m_random(seed) {
  m_file.add("{}", HEADER);
}

void CSampleChanges::beginAccount(const char* account) {
  m_account = account;
  m_serial = 0;
}

void CSampleChanges::add(const CSampleCompact& compact) {
  const CKinds& kinds = compact.isLending ? LENDING : FINANCING;
  std::vector<CSampleChange> changes{{0, kinds.opening, compact.volume, compact.amount}};
  const std::int64_t repayments = compact.unpaid < compact.amount ? m_random.between(1, MOST_REPAYMENTS) : 0;
  for (std::int64_t i = 0; i < repayments; ++i)
    changes.push_back({m_random.between(0, compact.age), kinds.repayments[m_random.between(0, 1)],
                       -partOf(compact.volume - compact.open, i, repayments, LOT),
                       -partOf(compact.amount - compact.unpaid, i, repayments, 1)});
  if (compact.isRenewed)
    changes.push_back({std::min(compact.age, m_random.between(EARLIEST_RENEWAL, LATEST_RENEWAL)), RENEWAL, 0, 0});
  std::stable_sort(changes.begin() + 1, changes.end(),
                   [](const CSampleChange& a, const CSampleChange& b) { return a.day < b.day; });

  std::int64_t volume = 0;
  std::int64_t amount = 0;
  for (const CSampleChange& change : changes) {
    volume += change.volume;
    amount += change.amount;
    m_file.add("{},{},{},{},{:08},{},{},{},{},{},{},{},{:08}\n", m_account, compact.security->exchange,
               compact.security->code, compact.isLending ? 1 : 0, compact.number, dateWord(-compact.age),
               dateWord(change.day - compact.age), change.kind, change.volume, yuan(change.amount), volume,
               yuan(amount), ++m_serial);
  }
}

}  // namespace counter
