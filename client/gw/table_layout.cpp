#include "gw/table_layout.h"

#include <QUrl>

#include <algorithm>
#include <set>

namespace GW {

namespace {

constexpr int MAX_WIDTH = 10000;
constexpr int MAX_FILTER_TEXTS = 1000;
const QChar PART = QLatin1Char(';');
const QChar VALUE = QLatin1Char(':');
const QChar TEXT = QLatin1Char(',');
const QString SORT = QStringLiteral("sort");
const QString FILTER = QStringLiteral("filter");

QString checksum(const QString& body) {
  const QByteArray bytes = body.toUtf8();
  return QStringLiteral("%1").arg(qChecksum(bytes.constData(), static_cast<uint>(bytes.size())), 4, 16,
                                  QLatin1Char('0'));
}

/// Percent signs and ASCII only, so that no text looks like a separator.
QString encoded(const QString& text) { return QString::fromLatin1(QUrl::toPercentEncoding(text)); }
QString decoded(const QString& text) { return QUrl::fromPercentEncoding(text.toLatin1()); }

std::optional<std::vector<int>> readNumbers(const QStringList& values) {
  std::vector<int> numbers;
  for (const QString& value : values) {
    bool ok = false;
    numbers.push_back(value.toInt(&ok));
    if (!ok) return std::nullopt;
  }
  return numbers;
}

bool isFlag(int value) { return value == 0 || value == 1; }

/// number:width:position:hidden
bool readColumn(const QStringList& values, CTableLayout& layout) {
  const auto numbers = readNumbers(values);
  if (!numbers || numbers->size() != 4) return false;
  const CColumnLayout column{(*numbers)[0], (*numbers)[1], (*numbers)[2], (*numbers)[3] == 1};
  layout.columns.push_back(column);
  return column.width >= 1 && column.width <= MAX_WIDTH && isFlag((*numbers)[3]);
}

/// sort:number:descending
bool readSort(const QStringList& values, CTableLayout& layout) {
  const auto numbers = readNumbers(values.mid(1));
  if (!numbers || numbers->size() != 2) return false;
  layout.sort.push_back({(*numbers)[0], (*numbers)[1] == 1});
  return isFlag((*numbers)[1]);
}

/// filter:number:text,text; every text begins with "=", so that the empty one is seen
bool readFilter(const QStringList& values, CTableLayout& layout) {
  bool ok = false;
  if (values.size() != 3) return false;
  CFilterLayout filter{values[1].toInt(&ok), {}};
  if (!values[2].isEmpty()) {
    for (const QString& text : values[2].split(TEXT)) {
      if (!text.startsWith(QLatin1Char('='))) return false;
      filter.texts.push_back(decoded(text.mid(1)));
    }
  }
  layout.filters.push_back(filter);
  return ok;
}

bool areDistinct(const CTableLayout& layout) {
  const auto check = [](const auto& entries) {
    std::set<int> numbers;
    return std::all_of(entries.begin(), entries.end(),
                       [&numbers](const auto& entry) { return numbers.insert(entry.number).second; });
  };
  return check(layout.columns) && check(layout.sort) && check(layout.filters);
}

}  // namespace

QString writeLayout(int recordType, const CTableLayout& layout) {
  QStringList parts{QString::number(recordType)};
  for (const CColumnLayout& column : layout.columns) {
    parts.push_back(QStringLiteral("%1:%2:%3:%4")
                        .arg(column.number)
                        .arg(std::clamp(column.width, 1, MAX_WIDTH))
                        .arg(column.position)
                        .arg(column.isHidden ? 1 : 0));
  }
  for (const CSortLayout& by : layout.sort)
    parts.push_back(QStringLiteral("%1:%2:%3").arg(SORT).arg(by.number).arg(by.isDescending ? 1 : 0));
  for (const CFilterLayout& filter : layout.filters) {
    if (filter.texts.size() > MAX_FILTER_TEXTS) continue;
    QStringList texts;
    for (const QString& text : filter.texts) texts.push_back(QLatin1Char('=') + encoded(text));
    parts.push_back(FILTER + VALUE + QString::number(filter.number) + VALUE + texts.join(TEXT));
  }
  return sealLayout(parts.join(PART) + PART);
}

QString sealLayout(const QString& text) {
  const QString body = text.left(text.lastIndexOf(PART));
  return body + PART + checksum(body);
}

std::optional<CTableLayout> readLayout(const QString& text, int recordType) {
  const int bodyEnd = text.lastIndexOf(PART);
  if (bodyEnd < 0 || text.mid(bodyEnd + 1) != checksum(text.left(bodyEnd))) return std::nullopt;
  QStringList parts = text.left(bodyEnd).split(PART);
  if (parts.takeFirst() != QString::number(recordType)) return std::nullopt;

  CTableLayout layout;
  for (const QString& part : parts) {
    const QStringList values = part.split(VALUE);
    const bool isRead = values[0] == SORT     ? readSort(values, layout)
                        : values[0] == FILTER ? readFilter(values, layout)
                                              : readColumn(values, layout);
    if (!isRead) return std::nullopt;
  }
  if (!areDistinct(layout)) return std::nullopt;
  std::sort(layout.columns.begin(), layout.columns.end(),
            [](const CColumnLayout& a, const CColumnLayout& b) { return a.position < b.position; });
  for (std::size_t i = 0; i < layout.columns.size(); ++i) {
    if (layout.columns[i].position != static_cast<int>(i)) return std::nullopt;
  }
  return layout;
}

}  // namespace GW
