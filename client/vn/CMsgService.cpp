#include "vn/CMsgService.h"

#include "utils/CCallbackList.h"
#include "utils/threads.h"

namespace VN {

namespace {

utils::CCallbackList<const CMsgService::CMessage&>& subscribers() {
  static utils::CCallbackList<const CMsgService::CMessage&> all;
  return all;
}

}  // namespace

void CMsgService::showMsg(const QString& text, int kind, int level, bool isPopup, bool hasSound, const QString& title,
                          int times) {
  utils::assertGui();
  subscribers().call({text, kind, level, isPopup, hasSound, title, times});
}

utils::CSubscriptionPtr CMsgService::subscribe(std::function<void(const CMessage&)> callback) {
  utils::assertGui();
  return subscribers().add(std::move(callback));
}

}  // namespace VN
