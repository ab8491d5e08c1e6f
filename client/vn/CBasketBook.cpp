#include "vn/CBasketBook.h"

#include "utils/CLogCenter.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <algorithm>
#include <iterator>
#include <utility>

namespace VN {

namespace {

constexpr utils::CLogSite SITE{"CBasketBook.cpp", "VN::CBasketBook"};

constexpr qint64 MOST_BYTES = 64 << 20;
constexpr int MOST_KEPT_ASIDE = 1000;

// Texts for users.
const char* const DAMAGED = "篮子文件 %1 有误（%2），已改名为 %3";
const char* const DAMAGED_IN_PLACE = "篮子文件 %1 有误（%2），且不能改名，本次不保存篮子";
const char* const UNREADABLE = "篮子文件 %1 不能读取（%2），本次不保存篮子";
const char* const NOT_WRITTEN = "篮子文件 %1 不能保存: %2";
const char* const LEFT_ALONE = "启动时不能读取，未改动";

}  // namespace

CBasketBook::CBasketBook(const QString& path) : m_path(path) {
  if (!m_path.isEmpty()) read();
}

void CBasketBook::read() {
  QFile file(m_path);
  if (!file.exists()) return;
  if (file.size() > MOST_BYTES) return keepAside(QStringLiteral("超过 %1 字节").arg(MOST_BYTES));
  if (!file.open(QIODevice::ReadOnly)) {
    m_mayWrite = false;
    return report(QString::fromUtf8(UNREADABLE).arg(QDir::toNativeSeparators(m_path), file.errorString()));
  }
  const QString problem = readBasketText(file.readAll(), m_named);
  file.close();
  if (!problem.isEmpty()) keepAside(problem);
}

void CBasketBook::keepAside(const QString& why) {
  QString aside = m_path + QStringLiteral(".damaged");
  for (int i = 2; QFileInfo::exists(aside) && i <= MOST_KEPT_ASIDE; ++i)
    aside = m_path + QStringLiteral(".damaged-%1").arg(i);
  m_mayWrite = QFile::rename(m_path, aside);
  const QString file = QDir::toNativeSeparators(m_path);
  report(m_mayWrite ? QString::fromUtf8(DAMAGED).arg(file, why, QFileInfo(aside).fileName())
                    : QString::fromUtf8(DAMAGED_IN_PLACE).arg(file, why));
}

void CBasketBook::report(const QString& message) {
  m_messages.append(message);
  utils::logError(SITE, "{0}", message.toStdString());
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
  QString problem;
  if (!m_mayWrite) {
    problem = QString::fromUtf8(LEFT_ALONE);
  } else if (!m_path.isEmpty()) {
    const QByteArray text = basketText(m_named);
    QSaveFile file(m_path);
    const bool isWritten = file.open(QIODevice::WriteOnly) && file.write(text) == text.size() && file.commit();
    if (!isWritten) problem = file.errorString();
  }
  if (!problem.isEmpty()) {
    problem = QString::fromUtf8(NOT_WRITTEN).arg(QDir::toNativeSeparators(m_path), problem);
    utils::logError(SITE, "{0}", problem.toStdString());
  }
  m_changed.call();
  return problem;
}

bool CBasketBook::remove(const QString& name) {
  settle();
  const CBasketPtr basket = find(name);
  if (!basket) return false;
  m_named.erase(std::find(m_named.begin(), m_named.end(), basket));
  save();
  return true;
}

bool CBasketBook::rename(const QString& from, const QString& to) {
  settle();
  const CBasketPtr basket = find(from);
  if (!basket || (from != to && find(to))) return false;
  basket->setName(to);
  save();
  return true;
}

}  // namespace VN
