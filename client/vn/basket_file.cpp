#include "vn/basket_file.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>

#include <algorithm>
#include <cmath>
#include <limits>

namespace VN {

namespace {

constexpr int VERSION = 1;
/// Whole numbers up to here stay the same in JSON.
constexpr double MAX_WHOLE = 9007199254740992.0;

const QString KEY_VERSION = QStringLiteral("version");
const QString KEY_BASKETS = QStringLiteral("baskets");
const QString KEY_NAME = QStringLiteral("name");
const QString KEY_STOCKS = QStringLiteral("stocks");
const QString KEY_MARKET = QStringLiteral("market");
const QString KEY_CODE = QStringLiteral("code");
const QString KEY_OPERATION = QStringLiteral("operation");
const QString KEY_VOLUME = QStringLiteral("volume");
const QString KEY_AMOUNT = QStringLiteral("amount");

/// Nearest to the volume that can be read again.
double wholeNumber(std::int64_t volume) {
  constexpr auto MOST = static_cast<std::int64_t>(MAX_WHOLE);
  return static_cast<double>(std::clamp(volume, -MOST, MOST));
}

QJsonObject stockObject(const CBasketStockData& stock) {
  return {{KEY_MARKET, stock.market},
          {KEY_CODE, stock.code},
          {KEY_NAME, stock.name},
          {KEY_OPERATION, stock.operation},
          {KEY_VOLUME, wholeNumber(stock.volume)},
          {KEY_AMOUNT, std::isfinite(stock.amount) ? stock.amount : 0.0}};  // JSON has no other numbers
}

/// Takes members out of one object; the first that is not as it should be is the problem.
class CMembers {
 public:
  CMembers(const QJsonValue& value, const QString& place, QString& problem)
      : m_object(value.toObject()), m_place(place), m_problem(problem) {
    if (!value.isObject()) fail(QStringLiteral("不是对象"));
  }

  QString text(const QString& key) {
    const QJsonValue value = m_object.value(key);
    if (!value.isString()) fail(key + QStringLiteral(" 不是文本"));
    return value.toString();
  }
  double number(const QString& key) {
    const QJsonValue value = m_object.value(key);
    if (!value.isDouble()) fail(key + QStringLiteral(" 不是数字"));
    return value.toDouble();
  }
  std::int64_t whole(const QString& key, double max) {
    const double value = number(key);
    if (value == std::floor(value) && std::abs(value) <= max) return static_cast<std::int64_t>(value);
    fail(key + QStringLiteral(" 不是整数或超出范围"));
    return 0;
  }
  QJsonArray array(const QString& key) {
    const QJsonValue value = m_object.value(key);
    if (!value.isArray()) fail(key + QStringLiteral(" 不是数组"));
    return value.toArray();
  }
  void fail(const QString& what) {
    if (m_problem.isEmpty()) m_problem = m_place.isEmpty() ? what : m_place + QStringLiteral(": ") + what;
  }

 private:
  const QJsonObject m_object;
  const QString m_place;
  QString& m_problem;
};

CBasketStockData readStock(const QJsonValue& value, const QString& place, QString& problem) {
  CMembers members(value, place, problem);
  CBasketStockData stock;
  stock.market = members.text(KEY_MARKET);
  stock.code = members.text(KEY_CODE);
  stock.name = members.text(KEY_NAME);
  stock.operation = static_cast<int>(members.whole(KEY_OPERATION, std::numeric_limits<int>::max()));
  stock.volume = members.whole(KEY_VOLUME, MAX_WHOLE);
  stock.amount = members.number(KEY_AMOUNT);
  return stock;
}

CBasketPtr readBasket(const QJsonValue& value, const QString& place, QString& problem) {
  CMembers members(value, place, problem);
  auto basket = std::make_shared<CBasketSetting>();
  basket->setName(members.text(KEY_NAME));
  const QJsonArray stocks = members.array(KEY_STOCKS);
  for (int i = 0; i < stocks.size() && problem.isEmpty(); ++i)
    basket->stocks.append(readStock(stocks.at(i), QStringLiteral("%1.%2[%3]").arg(place, KEY_STOCKS).arg(i), problem));
  return basket;
}

/// Where a byte of the text stands, for people.
QString placeOf(const QByteArray& text, int offset) {
  const QByteArray before = text.left(offset);
  return QStringLiteral("第 %1 行第 %2 字节").arg(before.count('\n') + 1).arg(offset - before.lastIndexOf('\n'));
}

}  // namespace

QByteArray basketText(const std::vector<CBasketPtr>& baskets) {
  QJsonArray list;
  for (const CBasketPtr& basket : baskets) {
    QJsonArray stocks;
    for (const CBasketStockData& stock : basket->stocks) stocks.append(stockObject(stock));
    list.append(QJsonObject{{KEY_NAME, basket->name()}, {KEY_STOCKS, stocks}});
  }
  return QJsonDocument(QJsonObject{{KEY_VERSION, VERSION}, {KEY_BASKETS, list}}).toJson();
}

QString readBasketText(const QByteArray& text, std::vector<CBasketPtr>& baskets) {
  QJsonParseError error;
  const QJsonDocument document = QJsonDocument::fromJson(text, &error);
  if (error.error != QJsonParseError::NoError)
    return placeOf(text, error.offset) + QStringLiteral(": ") + error.errorString();
  QString problem;
  CMembers members(document.isObject() ? QJsonValue(document.object()) : QJsonValue(), QString(), problem);
  if (members.whole(KEY_VERSION, MAX_WHOLE) != VERSION)
    members.fail(QStringLiteral("%1 不是 %2").arg(KEY_VERSION).arg(VERSION));
  const QJsonArray list = members.array(KEY_BASKETS);
  std::vector<CBasketPtr> read;
  QSet<QString> names;
  for (int i = 0; i < list.size() && problem.isEmpty(); ++i) {
    const QString place = QStringLiteral("%1[%2]").arg(KEY_BASKETS).arg(i);
    read.push_back(readBasket(list.at(i), place, problem));
    if (problem.isEmpty() && names.contains(read.back()->name()))
      problem = place + QStringLiteral(": 名称重复 ") + read.back()->name();
    names.insert(read.back()->name());
  }
  if (problem.isEmpty()) baskets = std::move(read);
  return problem;
}

}  // namespace VN
