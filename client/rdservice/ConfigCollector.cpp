#include "rdservice/ConfigCollector.h"

#include "rdservice/broker_config.h"
#include "utils/CInstance.h"

#include <optional>
#include <utility>

namespace rdservice {

namespace {

const CCounterTypeConfig& counterTypeOf(const CBrokerConfig& config, int counterType) {
  static const CCounterTypeConfig s_default;
  const auto found = config.counterTypes.find(counterType);
  return found == config.counterTypes.end() ? s_default : found->second;
}

}  // namespace

struct ConfigCollector::Private {
  explicit Private(CBrokerConfig brokerConfig) : config(std::move(brokerConfig)) {}

  const CBrokerConfig config;
  utils::CInstance<const CBrokerConfig> configRegistration{&config};  ///< what DataHelper reads
  std::optional<utils::CInstance<ConfigCollector>> registration;
};

ConfigCollector* ConfigCollector::instance() { return utils::CInstance<ConfigCollector>::get(); }

ConfigCollector::ConfigCollector(std::unique_ptr<Private> d) : m_d(std::move(d)) { m_d->registration.emplace(this); }
ConfigCollector::~ConfigCollector() = default;

bool ConfigCollector::useSplitPageOfStkCompact() const { return m_d->config.useSplitPageOfStkCompact; }
bool ConfigCollector::calcCompactType() const { return m_d->config.calcCompactType; }

int ConfigCollector::getCounterMaxCompactsRespNum(int counterType) const {
  return counterTypeOf(m_d->config, counterType).maxCompacts;
}

bool ConfigCollector::isGTJAQueryCompactsMode(int counterType) const {
  return counterTypeOf(m_d->config, counterType).repeatsRecords;
}

bool DataHelper::isRenewalNotUseTodayCompactsPts(int counterType) {
  const CBrokerConfig* config = utils::CInstance<const CBrokerConfig>::get();
  return config != nullptr && counterTypeOf(*config, counterType).refusesTodaysRenewal;
}

std::unique_ptr<ConfigCollector> makeConfigCollector(CBrokerConfig config) {
  return std::make_unique<ConfigCollector>(std::make_unique<ConfigCollector::Private>(std::move(config)));
}

}  // namespace rdservice
