#pragma once

#include "luawrapper/LuaModuleCtrl.h"

#include <map>
#include <memory>
#include <set>
#include <string>

namespace luawrapper {

/// The running client's user rights: the enabled module keys by group (LuaModuleCtrl::ELevel). One at a time.
std::unique_ptr<LuaModuleCtrl> makeLuaModuleCtrl(std::map<int, std::set<std::string>> enabled);

/// Gives or takes one right of the running client, whose rights `rights` must be. Any thread; `checkModule` answers
/// accordingly from then on.
void setModuleEnabled(LuaModuleCtrl& rights, int level, const std::string& key, bool enabled);

}  // namespace luawrapper
