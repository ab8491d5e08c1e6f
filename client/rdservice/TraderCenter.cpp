#include "rdservice/TraderCenter.h"

#include "rdservice/CDataCenter_p.h"
#include "rdservice/data_centre_factory.h"
#include "utils/CInstance.h"

#include <optional>
#include <utility>

namespace rdservice {

struct TraderCenter::Private {
  CDataCenter dataCenter{std::make_unique<CDataCenter::Private>()};
  std::optional<utils::CInstance<TraderCenter>> registration;  ///< last: ends before the data centre does
};

TraderCenter* TraderCenter::instance() { return utils::CInstance<TraderCenter>::get(); }

TraderCenter::TraderCenter(std::unique_ptr<Private> d) : m_d(std::move(d)) { m_d->registration.emplace(this); }
TraderCenter::~TraderCenter() = default;

CDataCenter* TraderCenter::getDataCenter() const { return &m_d->dataCenter; }

std::unique_ptr<TraderCenter> makeTraderCenter() {
  return std::make_unique<TraderCenter>(std::make_unique<TraderCenter::Private>());
}

}  // namespace rdservice
