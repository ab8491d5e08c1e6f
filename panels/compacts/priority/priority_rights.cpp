#include "compacts/priority/priority_rights.h"

#include "luawrapper/LuaModuleCtrl.h"
#include "vn/CUserConfig.h"

#include <algorithm>
#include <iterator>

namespace VN {

namespace {

constexpr int SPECIAL_VARIANTS[] = {90, 91, 100, 101, 301};

}  // namespace

bool isSpecialCounter() {
  const int variant = CUserManager::getUserConfig()->variantCode();
  return std::find(std::begin(SPECIAL_VARIANTS), std::end(SPECIAL_VARIANTS), variant) != std::end(SPECIAL_VARIANTS);
}

bool hasPrioritySettingAuth() {
  return luawrapper::LuaModuleCtrl::instance()->checkModule(luawrapper::LuaModuleCtrl::Order,
                                                            "mdl_order_credit_priority") &&
         isSpecialCounter();
}

}  // namespace VN
