#include "vn/user_settings.h"

namespace VN {

CUserSettings readUserSettings(const std::string& path, std::vector<utils::CConfigError>& errors) {
  CUserSettings settings;
  utils::CConfigFile file(path, errors);
  settings.variantCode = file.getInt("variant_code", 0, 9999, settings.variantCode);
  settings.counterType = file.getInt("counter_type", 0, 9999, settings.counterType);
  settings.queryCompactInterval = file.getInt("query_compact_interval", 0, 3600, settings.queryCompactInterval);
  settings.darkTheme = file.getBool("dark_theme", settings.darkTheme);
  settings.priorityMessage = {file.getBool("priority_message_popup", false),
                              file.getBool("priority_message_sound", false)};
  settings.renewalMessage = {file.getBool("renewal_message_popup", false),
                             file.getBool("renewal_message_sound", false)};
  file.reportUnknownKeys();
  return settings;
}

}  // namespace VN
