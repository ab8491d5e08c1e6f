#pragma once

#include "counter/CRenewalRules.h"
#include "rdservice/broker_config.h"
#include "runtime/CCounterBehaviour.h"
#include "utils/CConfigFile.h"
#include "vn/user_settings.h"

#include <map>
#include <set>
#include <string>
#include <vector>

namespace runtime {

/// Contents of counter.toml: how the embedded counter behaves, and how long the client waits for it.
struct CCounterSettings {
  CCounterBehaviour behaviour;
  int requestTimeoutMs = 15000;    ///< the client gives a request up after that
  std::map<int, int> maxCompacts;  ///< by counter type: most compacts in one reply; a type left out has no limit
  std::set<int> repeatingTypes;    ///< counter types whose replies begin with the last record of the reply before
  std::map<int, counter::CRenewalRules> renewalRules;  ///< by counter type; one left out has the default rules
};

/// Everything that the configuration folder says.
struct CClientConfig {
  rdservice::CBrokerConfig broker;  ///< broker.toml
  VN::CUserSettings user;           ///< user.toml
  CCounterSettings counter;         ///< counter.toml
  std::string basketFile;           ///< the user's baskets; empty: they end with the client. Not read from the folder
  std::string choicesFile;          ///< what the client remembers of the user's choices; in the same way
  /// rights.toml: enabled module keys by group, see luawrapper::LuaModuleCtrl::ELevel.
  std::map<int, std::set<std::string>> rights;
};

/// Reads the folder's files; every wrong value is added to `errors` with file, line and key, and keeps its default.
CClientConfig readClientConfig(const std::string& folder, std::vector<utils::CConfigError>& errors);

}  // namespace runtime
