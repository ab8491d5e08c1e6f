#pragma once

#include "host_api.h"

#include <memory>
#include <string>

namespace luawrapper {

/// User rights inside the client, by module key. Any thread.
class HOST_API LuaModuleCtrl {
 public:
  struct Private;

  /// Groups of module keys, numbered as `checkModule` takes them.
  enum ELevel : int { Order = 1, Auth = 2 };

  /// The running client's rights; null when no client runs.
  static LuaModuleCtrl* instance();

  explicit LuaModuleCtrl(std::unique_ptr<Private> d);
  ~LuaModuleCtrl();

  /// Whether the module `key` is enabled in group `level` (1 "mdl_order", 2 "mdl_auth"). Unknown keys are not.
  bool checkModule(int level, const std::string& key) const;

 private:
  std::unique_ptr<Private> m_d;
};

}  // namespace luawrapper
