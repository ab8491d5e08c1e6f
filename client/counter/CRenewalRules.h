#pragma once

namespace counter {

/// How a counter tells that it refuses to extend a compact.
enum class ERenewalRefusal {
  Error,   ///< by an error
  Record,  ///< by an error and a CErrorResp, which says why
  Reply,   ///< by a success whose extra data says why, as text "msg"
};

/// Which compacts a broker extends, and for how long.
struct CRenewalRules {
  int daysBeforeExpiry = 0;    ///< only in so many last days before the expiry; 0 at any time
  int maxDays = 0;             ///< most days of one renewal; 0 for no limit
  int maxTimes = 0;            ///< renewals of one compact; 0 for no limit
  bool isTodayAllowed = true;  ///< compacts that were opened today, too
  ERenewalRefusal refusal = ERenewalRefusal::Error;
};

}  // namespace counter
