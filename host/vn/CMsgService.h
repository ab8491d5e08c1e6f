#pragma once

#include "host_api.h"
#include "utils/CSubscription.h"

#include <QString>

#include <functional>

namespace VN {

/// Messages for the user that do not stop the work. GUI thread.
class HOST_API CMsgService {
 public:
  enum EKind : int { KindTrade = 1 };
  enum ELevel : int { LevelInfo = 1, LevelError = 2 };

  struct CMessage {
    QString text;
    int kind = KindTrade;
    int level = LevelInfo;
    bool isPopup = false;  ///< see CMsgSetting
    bool hasSound = false;
    QString title;  ///< of the popup; may be empty
    int times = 1;  ///< how often the sound is played
  };

  /// Hands the message to every subscriber.
  static void showMsg(const QString& text, int kind, int level, bool isPopup, bool hasSound, const QString& title,
                      int times);
  /// Whoever shows messages: the host's window.
  [[nodiscard]] static utils::CSubscriptionPtr subscribe(std::function<void(const CMessage&)> callback);
};

}  // namespace VN
