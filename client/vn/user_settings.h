#pragma once

#include "utils/CConfigFile.h"
#include "vn/CUserConfig.h"

#include <memory>
#include <string>
#include <vector>

namespace VN {

/// Contents of user.toml.
struct CUserSettings {
  int variantCode = 0;
  int counterType = 0;
  int queryCompactInterval = 3;  ///< seconds
  bool darkTheme = false;
  CMsgSetting priorityMessage;  ///< of repay priorities
  CMsgSetting renewalMessage;
};

/// Reads user.toml; errors are added to `errors`, with file and line.
CUserSettings readUserSettings(const std::string& path, std::vector<utils::CConfigError>& errors);

/// Baskets are kept in `basketFile` (UTF-8 path), choices in `choicesFile`, or, when that is empty, only as long as the
/// client runs. GUI thread.
std::unique_ptr<CUserConfig> makeUserConfig(const CUserSettings& settings, const std::string& basketFile = {},
                                            const std::string& choicesFile = {});
std::unique_ptr<CConfig> makeConfig(const CUserSettings& settings);

}  // namespace VN
