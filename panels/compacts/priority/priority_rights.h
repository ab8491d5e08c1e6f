#pragma once

namespace VN {

/// Whether the user's client variant is one of those whose counters know repay priorities and renewals.
bool isSpecialCounter();

/// Whether the user may set repay priorities: the module right, in a client variant that has them. Any thread.
bool hasPrioritySettingAuth();

}  // namespace VN
