#include "counter/sample_positions.h"

#include "counter/sample_securities.h"

namespace counter {

namespace {

constexpr const char* POSITION_HEADER =
    "account,exchange,code,current_volume,available_volume,cost_price,shareholder\n";
constexpr const char* QUOTE_HEADER = "exchange,code,last_price,close_price\n";

constexpr std::int64_t LOT = 100;
constexpr unsigned ONE_IN_HELD = 6;     ///< of the securities that are not owed
constexpr unsigned ONE_IN_BLOCKED = 8;  ///< of the positions, in part

/// Thousandths of a yuan in the steps of the security.
std::string priceText(const CSampleSecurity& security, std::int64_t price) {
  return security.fund ? fmt::format("{}.{:03}", price / 1000, price % 1000) : yuan((price + 5) / 10);
}

}  // namespace

CSamplePositions::CSamplePositions(const QString& path, std::uint32_t seed) : m_file(path), m_random(seed) {
  m_file.add("{}", POSITION_HEADER);
}

std::int64_t CSamplePositions::pickLots(std::int64_t owedLots) {
  if (owedLots == 0) return m_random.oneIn(ONE_IN_HELD) ? m_random.between(1, 100) : 0;
  const auto tenth = m_random.between(0, 9);
  if (tenth < 3) return 0;
  return tenth < 6 ? owedLots * m_random.between(10, 80) / 100 : owedLots * m_random.between(110, 200) / 100 + 1;
}

void CSamplePositions::add(const char* account, const CSampleLiabilities& owed) {
  for (const auto* security = beginSampleSecurities(); security != endSampleSecurities(); ++security) {
    const auto found = owed.find(security);
    const auto lots = pickLots(found == owed.end() ? 0 : found->second / LOT);
    if (lots == 0) continue;
    const auto blocked = m_random.oneIn(ONE_IN_BLOCKED) ? lots * m_random.between(1, 5) / 10 : 0;
    const auto cost = security->price * m_random.between(85, 115) / 100;
    const bool isShanghai = security->exchange[1] == 'H';
    m_file.add("{},{},{},{},{},{},{}{}\n", account, security->exchange, security->code, lots * LOT,
               (lots - blocked) * LOT, priceText(*security, cost), isShanghai ? "E0" : "06", account);
  }
}

std::string writeSampleQuotes(const QString& path, std::uint32_t seed) {
  CSampleFile file(path);
  CSampleRandom random(seed);
  file.add("{}", QUOTE_HEADER);
  for (const auto* security = beginSampleSecurities(); security != endSampleSecurities(); ++security)
    file.add("{},{},{},{}\n", security->exchange, security->code,
             priceText(*security, security->price * random.between(970, 1030) / 1000),
             priceText(*security, security->price));
  return file.finish();
}

}  // namespace counter
