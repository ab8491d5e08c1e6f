#include "luawrapper/lua_factory.h"

#include <gtest/gtest.h>

using luawrapper::LuaModuleCtrl;

TEST(LuaModuleCtrl, AnswersByGroupAndFollowsChanges) {
  EXPECT_EQ(LuaModuleCtrl::instance(), nullptr);
  const auto rights = luawrapper::makeLuaModuleCtrl({{LuaModuleCtrl::Order, {"repay", "renew"}}});
  ASSERT_EQ(LuaModuleCtrl::instance(), rights.get());
  luawrapper::setModuleEnabled(*rights, LuaModuleCtrl::Order, "renew", false);
  luawrapper::setModuleEnabled(*rights, LuaModuleCtrl::Auth, "admin", true);

  const struct {
    int level;
    const char* key;
    bool enabled;
  } cases[] = {{1, "repay", true},  {1, "renew", false}, {1, "admin", false}, {2, "admin", true},
               {2, "repay", false}, {3, "repay", false}, {1, "", false}};
  for (const auto& c : cases) EXPECT_EQ(rights->checkModule(c.level, c.key), c.enabled) << c.level << c.key;
}
