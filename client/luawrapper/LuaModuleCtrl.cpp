#include "luawrapper/LuaModuleCtrl.h"

#include "luawrapper/lua_factory.h"

#include "utils/CInstance.h"
#include "utils/CMutex.h"

#include <cassert>
#include <optional>
#include <utility>

namespace luawrapper {

struct LuaModuleCtrl::Private {
  explicit Private(std::map<int, std::set<std::string>> rights) : enabled(std::move(rights)), data(this) {}

  utils::CSharedMutex mutex;
  std::map<int, std::set<std::string>> enabled TS_GUARDED_BY(mutex);  ///< module keys by group
  utils::CInstance<Private> data;  ///< how `setModuleEnabled` gets here: the contract has no way in
  std::optional<utils::CInstance<LuaModuleCtrl>> registration;
};

LuaModuleCtrl* LuaModuleCtrl::instance() { return utils::CInstance<LuaModuleCtrl>::get(); }

LuaModuleCtrl::LuaModuleCtrl(std::unique_ptr<Private> d) : m_d(std::move(d)) { m_d->registration.emplace(this); }

LuaModuleCtrl::~LuaModuleCtrl() { m_d->registration.reset(); }

bool LuaModuleCtrl::checkModule(int level, const std::string& key) const {
  utils::CReadLock lock(m_d->mutex);
  const auto group = m_d->enabled.find(level);
  return group != m_d->enabled.end() && group->second.count(key) != 0;
}

std::unique_ptr<LuaModuleCtrl> makeLuaModuleCtrl(std::map<int, std::set<std::string>> enabled) {
  return std::make_unique<LuaModuleCtrl>(std::make_unique<LuaModuleCtrl::Private>(std::move(enabled)));
}

void setModuleEnabled([[maybe_unused]] LuaModuleCtrl& rights, int level, const std::string& key, bool enabled) {
  assert(&rights == LuaModuleCtrl::instance());
  auto* d = utils::CInstance<LuaModuleCtrl::Private>::get();
  utils::CWriteLock lock(d->mutex);
  if (enabled) {
    d->enabled[level].insert(key);
  } else {
    d->enabled[level].erase(key);
  }
}

}  // namespace luawrapper
