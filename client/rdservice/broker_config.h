#pragma once

#include "rdservice/ConfigCollector.h"
#include "utils/CConfigFile.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace rdservice {

/// What is particular to counters of one type.
struct CCounterTypeConfig {
  std::string name;                   ///< for people
  int maxCompacts = 0;                ///< most compacts in one reply; 0 for no limit
  bool repeatsRecords = false;        ///< replies may repeat records of the reply before
  bool refusesTodaysRenewal = false;  ///< compacts opened today cannot be extended
};

/// The broker's switches: broker.toml.
///
///   [compacts]
///   split_pages = false            # compact tables in pages
///   query_by_type = true           # false: the generic data query
///
///   [[counter_type]]
///   id = 2                         # as the account's counter type
///   name = "..."
///   max_compacts = 200
///   repeats_records = false
///   refuses_todays_renewal = true
///
/// Whatever is absent keeps its value below.
struct CBrokerConfig {
  bool useSplitPageOfStkCompact = false;
  bool calcCompactType = true;
  std::map<int, CCounterTypeConfig> counterTypes;  ///< by counter type; others have the defaults
};

/// Reads the file (UTF-8 path). Unknown keys and wrong values are added to `errors`, and their defaults taken.
CBrokerConfig readBrokerConfig(const std::string& path, std::vector<utils::CConfigError>& errors);

/// `ConfigCollector::instance()` and `DataHelper` answer from it as long as it lives.
std::unique_ptr<ConfigCollector> makeConfigCollector(CBrokerConfig config);

}  // namespace rdservice
