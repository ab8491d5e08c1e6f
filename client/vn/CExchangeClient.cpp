#include "vn/CExchangeClient.h"

#include "vn/instrument_search.h"

#include "rdservice/TraderCenter.h"
#include "rdservice/stock_key.h"

#include <algorithm>

namespace VN {

namespace {

rdservice::CDataCenter* dataCentre() {
  rdservice::TraderCenter* const centre = rdservice::TraderCenter::instance();
  return centre != nullptr ? centre->getDataCenter() : nullptr;
}

}  // namespace

rdservice::CInstrumentInfoPtr CExchangeClient::getInstrument(const QString& code) {
  const rdservice::CDataCenter* const centre = dataCentre();
  if (centre == nullptr) return nullptr;
  const auto parts = rdservice::splitStockKey(code.toStdString());
  if (!parts.exchangeId.empty()) return centre->getInstrument(parts.exchangeId, parts.code);
  const CInstruments listed = instrumentsOfCode(centre->getInstruments(), parts.code);
  return listed.empty() ? nullptr : listed.front();
}

std::vector<rdservice::CInstrumentInfoPtr> CExchangeClient::findInstruments(const QString& typed, int most) {
  const rdservice::CDataCenter* const centre = dataCentre();
  if (centre == nullptr || most <= 0) return {};
  return searchInstruments(centre->getInstruments(), typed.trimmed().toStdString(), static_cast<std::size_t>(most));
}

}  // namespace VN
