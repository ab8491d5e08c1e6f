#include "vn/CBasketSetting.h"

#include "utils/threads.h"

namespace VN {

CBasketSetting::CBasketSetting() = default;
CBasketSetting::~CBasketSetting() = default;

void CBasketSetting::setName(const QString& name) {
  utils::assertGui();
  static std::uint64_t s_lastNamed = 0;
  m_name = name;
  m_named = ++s_lastNamed;
}

}  // namespace VN
