#include "counter/sample_appointments.h"

#include "counter/sample_changes.h"
#include "counter/sample_securities.h"

namespace counter {

namespace {

constexpr const char* HEADER =
    "account,exchange,code,compact_type,source,compact_no,open_date,expiry_date,volume,compact_amount,unpaid_amount,"
    "interest_amount,max_renewal_days,renewed_days,renewal_times\n";

constexpr std::int64_t SOON = 60;           ///< days before the expiry
constexpr unsigned ONE_IN_APPOINTED = 8;    ///< of the compacts that expire soon
constexpr std::int64_t RENEWAL_DAYS = 180;  ///< that the broker offers, and that a renewal has added

}  // namespace

CSampleAppointments::CSampleAppointments(const QString& path, std::uint32_t seed) : m_file(path), m_random(seed) {
  m_file.add("{}", HEADER);
}

void CSampleAppointments::add(const char* account, const CSampleCompact& compact) {
  const auto left = compact.term - compact.age;
  if (left < 0 || left > SOON || !m_random.oneIn(ONE_IN_APPOINTED)) return;
  m_file.add("{},{},{},{},{},{:08},{},{},{},{},{},{},{},{},{}\n", account, compact.security->exchange,
             compact.security->code, compact.isLending ? 1 : 0, compact.isSpecial ? 1 : 0, compact.number,
             dateWord(-compact.age), dateWord(left), compact.open, yuan(compact.amount), yuan(compact.unpaid),
             yuan(compact.interest), RENEWAL_DAYS, compact.isRenewed ? RENEWAL_DAYS : 0, compact.isRenewed ? 1 : 0);
}

}  // namespace counter
