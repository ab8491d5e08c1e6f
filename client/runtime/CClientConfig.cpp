#include "runtime/CClientConfig.h"

#include "luawrapper/LuaModuleCtrl.h"

#include <algorithm>
#include <iterator>
#include <limits>

namespace runtime {

namespace {

constexpr int MAX_INT = std::numeric_limits<int>::max();
constexpr int WRONG_ID = -1;

struct CRight {
  int level;
  const char* group;
  const char* key;
};

constexpr CRight RIGHTS[] = {
    {luawrapper::LuaModuleCtrl::Order, "mdl_order", "mdl_order_credit_compact_change_detail"},
    {luawrapper::LuaModuleCtrl::Order, "mdl_order", "mdl_order_compact_renewal_apply"},
    {luawrapper::LuaModuleCtrl::Order, "mdl_order", "mdl_order_credit_priority"},
    {luawrapper::LuaModuleCtrl::Auth, "mdl_auth", "mdl_auth_credit_compact_order_disable_select"},
    {luawrapper::LuaModuleCtrl::Auth, "mdl_auth", "mdl_auth_credit_interest_fee_no_fare"},
};

void readGroup(const utils::CConfigFile& file, int level, const char* group,
               std::map<int, std::set<std::string>>& rights) {
  for (const std::string& key : file.getTexts(group)) {
    const bool known = std::any_of(std::begin(RIGHTS), std::end(RIGHTS),
                                   [&](const CRight& right) { return right.level == level && key == right.key; });
    if (known) {
      rights[level].insert(key);
      continue;
    }
    std::string allowed;
    for (const CRight& right : RIGHTS)
      if (right.level == level) allowed += (allowed.empty() ? "" : ", ") + std::string(right.key);
    file.addError(group, "unknown module \"" + key + "\"; allowed are " + allowed);
  }
}

std::map<int, std::set<std::string>> readRights(const std::string& path, std::vector<utils::CConfigError>& errors) {
  std::map<int, std::set<std::string>> rights;
  const utils::CConfigFile file(path, errors);
  readGroup(file, luawrapper::LuaModuleCtrl::Order, "mdl_order", rights);
  readGroup(file, luawrapper::LuaModuleCtrl::Auth, "mdl_auth", rights);
  file.reportUnknownKeys();
  return rights;
}

struct CRefusalName {
  const char* name;
  counter::ERenewalRefusal refusal;
};

constexpr CRefusalName REFUSALS[] = {
    {"error", counter::ERenewalRefusal::Error},
    {"record", counter::ERenewalRefusal::Record},
    {"reply", counter::ERenewalRefusal::Reply},
};

counter::CRenewalRules readRenewalRules(const utils::CConfigSection& section) {
  counter::CRenewalRules rules;
  rules.daysBeforeExpiry = section.getInt("renewal_days_before_expiry", 0, MAX_INT, rules.daysBeforeExpiry);
  rules.maxDays = section.getInt("renewal_max_days", 0, MAX_INT, rules.maxDays);
  rules.maxTimes = section.getInt("renewal_max_times", 0, MAX_INT, rules.maxTimes);
  rules.isTodayAllowed = section.getBool("renewal_today_allowed", rules.isTodayAllowed);
  const std::string name = section.getText("renewal_refusal", REFUSALS[0].name);
  const auto* const found = std::find_if(std::begin(REFUSALS), std::end(REFUSALS),
                                         [&name](const CRefusalName& refusal) { return name == refusal.name; });
  if (found == std::end(REFUSALS))
    section.addError("renewal_refusal", "must be \"error\", \"record\" or \"reply\", not \"" + name + "\"");
  else
    rules.refusal = found->refusal;
  return rules;
}

void readCounterTypes(const utils::CConfigFile& file, CCounterSettings& settings) {
  std::set<int> ids;
  for (const utils::CConfigSection& section : file.getSections("counter_type")) {
    const int most = section.getInt("max_compacts", 0, MAX_INT, 0);
    const bool repeats = section.getBool("repeats_records", false);
    const counter::CRenewalRules rules = readRenewalRules(section);
    const int id = section.getInt("id", 0, MAX_INT, WRONG_ID);
    if (!section.has("id")) {
      section.addError("id", "is missing; every counter type needs its number");
    } else if (id != WRONG_ID && !ids.insert(id).second) {
      section.addError("id", "is used twice; every counter type needs a number of its own");
    } else if (id != WRONG_ID) {
      if (most > 0) settings.maxCompacts.emplace(id, most);
      if (repeats) settings.repeatingTypes.insert(id);
      settings.renewalRules.emplace(id, rules);
    }
  }
}

CCounterSettings readCounterSettings(const std::string& path, std::vector<utils::CConfigError>& errors) {
  CCounterSettings settings;
  const utils::CConfigFile file(path, errors);
  CCounterBehaviour& behaviour = settings.behaviour;
  behaviour.latencyMs = file.getInt("latency_ms", 0, behaviour.MAX_LATENCY_MS, behaviour.latencyMs);
  behaviour.failEvery = file.getInt("fail_every", 0, behaviour.MAX_EVERY, behaviour.failEvery);
  behaviour.silentEvery = file.getInt("silent_every", 0, behaviour.MAX_EVERY, behaviour.silentEvery);
  behaviour.fillDelayMs = file.getInt("fill_delay_ms", 0, behaviour.MAX_FILL_DELAY_MS, behaviour.fillDelayMs);
  behaviour.quotesPerMove = file.getInt("quotes_per_move", 0, behaviour.MAX_QUOTES, behaviour.quotesPerMove);
  behaviour.quoteIntervalMs = file.getInt("quote_interval_ms", behaviour.MIN_QUOTE_INTERVAL_MS,
                                          behaviour.MAX_QUOTE_INTERVAL_MS, behaviour.quoteIntervalMs);
  settings.requestTimeoutMs = file.getInt("request_timeout_ms", 100, 600000, settings.requestTimeoutMs);
  readCounterTypes(file, settings);
  file.reportUnknownKeys();
  return settings;
}

}  // namespace

CClientConfig readClientConfig(const std::string& folder, std::vector<utils::CConfigError>& errors) {
  CClientConfig config;
  config.broker = rdservice::readBrokerConfig(folder + "/broker.toml", errors);
  config.user = VN::readUserSettings(folder + "/user.toml", errors);
  config.counter = readCounterSettings(folder + "/counter.toml", errors);
  config.rights = readRights(folder + "/rights.toml", errors);
  return config;
}

}  // namespace runtime
