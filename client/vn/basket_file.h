#pragma once

#include "vn/CBasketSetting.h"

#include <QByteArray>

#include <memory>
#include <vector>

namespace VN {

using CBasketPtr = std::shared_ptr<CBasketSetting>;

// Baskets as the JSON text of their file.

QByteArray basketText(const std::vector<CBasketPtr>& baskets);

/// Returns what is wrong with the text, for users, and leaves `baskets` as they are; empty when they were read.
QString readBasketText(const QByteArray& text, std::vector<CBasketPtr>& baskets);

}  // namespace VN
