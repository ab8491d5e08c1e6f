#include "counter/CQuoteFeed.h"

#include "counter/CSqlConnection.h"
#include "counter/sql_rows.h"
#include "rdservice/CPriceData.h"
#include "rdservice/entry_list.h"
#include "rdservice/rdservice_enums.h"
#include "utils/CLogCenter.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace counter {

namespace {

using rdservice::CPriceData;
using rdservice::IDataPtr;

constexpr utils::CLogSite SITE{"CQuoteFeed.cpp", "counter::CQuoteFeed::move"};

constexpr double LIMIT = 0.1;  ///< of the close price, to either side
constexpr int MAX_STEPS = 3;
constexpr double MIN_TICK = 0.001;  ///< yuan

/// A price in whole steps, without the tail of digits that binary fractions leave.
double toTicks(double price, double tick) { return std::round(std::round(price / tick) * tick * 1000) / 1000; }

double movedPrice(const CPriceData& quote, double tick, int steps) {
  const double price = toTicks(quote.lastPrice + steps * tick, tick);
  if (quote.closePrice <= 0) return std::max(price, tick);
  const double low = std::max(tick, toTicks(quote.closePrice * (1 - LIMIT), tick));
  const double high = std::max(low, toTicks(quote.closePrice * (1 + LIMIT), tick));
  return std::clamp(price, low, high);
}

}  // namespace

void CQuoteFeed::subscribe(const std::string& stockKeys) {
  std::set<std::string> keys;
  for (const std::string_view key : rdservice::splitEntries(stockKeys)) keys.emplace(key);
  const utils::CMutexLock lock(m_mutex);
  m_subscribed.swap(keys);
}

void CQuoteFeed::removeOthers(std::vector<IDataPtr>& quotes) const {
  std::vector<IDataPtr> kept;
  {
    const utils::CMutexLock lock(m_mutex);
    for (const IDataPtr& quote : quotes)
      if (m_subscribed.count(quote->getKey()) != 0) kept.push_back(quote);
  }
  quotes = std::move(kept);
}

std::vector<IDataPtr> CQuoteFeed::move(const CSqlConnection& connection, int count) {
  if (!connection.isOpen() || count <= 0) return {};  // said when it was opened
  std::vector<IDataPtr> moved;
  std::string error;
  {
    CSqlTransaction transaction(connection);
    error = transaction.error();
    auto quotes = error.empty() ? selectRows(connection, rdservice::RecordPriceData, QStringLiteral("ORDER BY rowid"),
                                             {}, nullptr, error)
                                : std::vector<IDataPtr>();
    const std::size_t wanted = std::min(static_cast<std::size_t>(count), quotes.size());
    for (std::size_t i = 0; error.empty() && i < wanted; ++i) {
      std::swap(quotes[i], quotes[i + m_random() % (quotes.size() - i)]);
      auto& quote = static_cast<CPriceData&>(*quotes[i]);
      const auto steps = static_cast<int>(m_random() % MAX_STEPS) + 1;
      const bool isUp = m_random() % 2 == 0;
      const double tick =
          selectValue(connection,
                      QStringLiteral("SELECT \"price_tick\" FROM \"instruments\" "
                                     "WHERE \"exchange\" = ? AND \"code\" = ?"),
                      {QString::fromStdString(quote.exchangeId), QString::fromStdString(quote.code)}, error)
              .toDouble();
      const double price = movedPrice(quote, std::max(tick, MIN_TICK), isUp ? steps : -steps);
      if (!error.empty() || price == quote.lastPrice) continue;
      quote.lastPrice = price;
      if (upsertRow(connection, quote, error)) moved.push_back(quotes[i]);
    }
    if (error.empty()) transaction.commit(error);
  }
  if (!error.empty()) {
    utils::logError(SITE, "quotes not moved: {0}", error);
    return {};
  }
  removeOthers(moved);
  return moved;
}

}  // namespace counter
