#include "panel_texts.h"

#include "rdservice/CErrorResp.h"
#include "utils/threads.h"
#include "vn/CMsgService.h"
#include "vn/CUserConfig.h"

namespace VN {

namespace {

constexpr int RENEWAL_MESSAGES = 1;  // kind of the user's message settings

QString textOf(const std::string& text) { return QString::fromStdString(text); }

}  // namespace

QString renewalQuestion(int compacts) { return QStringLiteral("本次共展期 %1 条合约,是否继续?").arg(compacts); }

void showRenewalResult(const rdservice::CCreditCompactRenewalApplyPtr& apply, const utils::RDError& error,
                       const std::vector<rdservice::IDataPtr>& records) {
  utils::assertGui();
  if (!apply || !apply->accountInfo) return;
  QString text = QStringLiteral("账号[") + textOf(apply->accountInfo->accountId) + QStringLiteral("]对合约[") +
                 textOf(apply->compactNumber) + QStringLiteral("]展期");
  if (error.isSuccess()) {
    text += QStringLiteral("成功");
  } else {
    text += QStringLiteral("失败, rdError:") + textOf(error.errorMsg());
    const auto* first = records.empty() ? nullptr : dynamic_cast<const rdservice::CErrorResp*>(records.front().get());
    if (first != nullptr && !first->errorText.empty()) text += QStringLiteral(", error:") + textOf(first->errorText);
  }
  const CMsgSetting setting = getUserConfig()->getMsgSetting(RENEWAL_MESSAGES);
  CMsgService::showMsg(text, CMsgService::KindTrade, CMsgService::LevelInfo, setting.isPopup, setting.hasSound,
                       QString(), 1);
}

}  // namespace VN
