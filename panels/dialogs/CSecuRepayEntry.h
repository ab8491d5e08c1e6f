#pragma once

#include "rdservice/CAccountInfo.h"
#include "rdservice/CPositionStatics.h"
#include "rdservice/rdservice_enums.h"

namespace VN {

/// A borrowed security that an account may return from what it holds.
struct CSecuRepayEntry {
  rdservice::CAccountInfoPtr account;
  rdservice::CPositionStaticsPtr position;
  int volume = 0;     ///< shares to return; the user may change it to anything, also to 0 or less
  int liability = 0;  ///< shares not returned yet
  char source = rdservice::BrushSourceNormal;  ///< rdservice::EKVCompactBrushSource
};

}  // namespace VN
