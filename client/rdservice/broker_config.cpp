#include "rdservice/broker_config.h"

#include <limits>

namespace rdservice {

namespace {

constexpr int MAX_INT = std::numeric_limits<int>::max();
constexpr int NO_ID = -1;

}  // namespace

CBrokerConfig readBrokerConfig(const std::string& path, std::vector<utils::CConfigError>& errors) {
  CBrokerConfig config;
  const utils::CConfigFile file(path, errors);
  config.useSplitPageOfStkCompact = file.getBool("compacts.split_pages", config.useSplitPageOfStkCompact);
  config.calcCompactType = file.getBool("compacts.query_by_type", config.calcCompactType);
  for (const utils::CConfigSection& section : file.getSections("counter_type")) {
    CCounterTypeConfig type;
    type.name = section.getText("name", type.name);
    type.maxCompacts = section.getInt("max_compacts", 0, MAX_INT, type.maxCompacts);
    type.repeatsRecords = section.getBool("repeats_records", type.repeatsRecords);
    type.refusesTodaysRenewal = section.getBool("refuses_todays_renewal", type.refusesTodaysRenewal);
    const int id = section.getInt("id", 0, MAX_INT, NO_ID);
    if (!section.has("id"))
      section.addError("id", "is missing; every counter type needs its number");
    else if (id != NO_ID && !config.counterTypes.emplace(id, std::move(type)).second)
      section.addError("id", "is used twice; every counter type needs a number of its own");
  }
  file.reportUnknownKeys();
  return config;
}

}  // namespace rdservice
