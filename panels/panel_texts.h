#pragma once

#include "rdservice/CCreditCompactRenewalApply.h"
#include "rdservice/IData.h"
#include "utils/RDError.h"

#include <QString>

#include <vector>

namespace VN {

/// Titles of the message boxes.
inline QString hintTitle() { return QStringLiteral("提示"); }
inline QString warningTitle() { return QStringLiteral("警告"); }

/// The question before so many compacts are extended.
QString renewalQuestion(int compacts);

/// Tells the user what became of an application, as the user's settings for such messages want it. Nothing without
/// application or account. GUI thread.
void showRenewalResult(const rdservice::CCreditCompactRenewalApplyPtr& apply, const utils::RDError& error,
                       const std::vector<rdservice::IDataPtr>& records);

}  // namespace VN
