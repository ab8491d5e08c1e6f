#include "vn/CBasketBook.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace VN {

CBasketBook::CBasketBook(const QString& path) : m_file(path, QStringLiteral("篮子")) {
  QByteArray text;
  if (!m_file.read(text)) return;
  const QString problem = readBasketText(text, m_named);
  if (!problem.isEmpty()) m_file.keepAside(problem);
}

CBasketPtr CBasketBook::find(const QString& name) const {
  const auto found =
      std::find_if(m_named.begin(), m_named.end(), [&](const CBasketPtr& basket) { return basket->name() == name; });
  return found == m_named.end() ? nullptr : *found;
}

void CBasketBook::settle() {
  for (const CBasketPtr& basket : m_unnamed)
    if (basket->isNamed()) m_named.push_back(basket);
  const auto isSettled = [](const CBasketPtr& basket) { return basket->isNamed() || basket.use_count() == 1; };
  m_unnamed.erase(std::remove_if(m_unnamed.begin(), m_unnamed.end(), isSettled), m_unnamed.end());
  const auto isOutdone = [this](const CBasketPtr& basket) {
    return std::any_of(m_named.begin(), m_named.end(), [&](const CBasketPtr& other) {
      return other->name() == basket->name() && other->isNamedAfter(*basket);
    });
  };
  std::vector<CBasketPtr> kept;
  std::remove_copy_if(m_named.begin(), m_named.end(), std::back_inserter(kept), isOutdone);
  m_named = std::move(kept);
}

CBasketPtr CBasketBook::get(const QString& name) {
  settle();
  if (const CBasketPtr known = find(name)) return known;
  m_unnamed.push_back(std::make_shared<CBasketSetting>());
  return m_unnamed.back();
}

const std::vector<CBasketPtr>& CBasketBook::named() {
  settle();
  return m_named;
}

QString CBasketBook::save() {
  settle();
  const QString problem = m_file.write(basketText(m_named));
  m_changed.call();
  return problem;
}

std::optional<QString> CBasketBook::remove(const QString& name) {
  settle();
  const CBasketPtr basket = find(name);
  if (!basket) return std::nullopt;
  m_named.erase(std::find(m_named.begin(), m_named.end(), basket));
  return save();
}

std::optional<QString> CBasketBook::rename(const QString& from, const QString& to) {
  settle();
  const CBasketPtr basket = find(from);
  if (!basket || (from != to && find(to))) return std::nullopt;
  basket->setName(to);
  return save();
}

}  // namespace VN
