#include "gw/table_layout.h"

#include <QStringList>

#include <algorithm>
#include <set>

namespace GW {

namespace {

constexpr int MAX_WIDTH = 10000;
const QChar PART = QLatin1Char(';');
const QChar VALUE = QLatin1Char(':');

QString checksum(const QString& body) {
  const QByteArray bytes = body.toUtf8();
  return QStringLiteral("%1").arg(qChecksum(bytes.constData(), static_cast<uint>(bytes.size())), 4, 16,
                                  QLatin1Char('0'));
}

std::optional<CColumnLayout> readColumn(const QString& text) {
  const QStringList values = text.split(VALUE);
  if (values.size() != 4) return std::nullopt;
  int numbers[4];
  for (int i = 0; i < 4; ++i) {
    bool ok = false;
    numbers[i] = values[i].toInt(&ok);
    if (!ok) return std::nullopt;
  }
  if (numbers[1] < 1 || numbers[1] > MAX_WIDTH || (numbers[3] != 0 && numbers[3] != 1)) return std::nullopt;
  return CColumnLayout{numbers[0], numbers[1], numbers[2], numbers[3] == 1};
}

}  // namespace

QString writeLayout(int recordType, const std::vector<CColumnLayout>& columns) {
  QStringList parts{QString::number(recordType)};
  for (const CColumnLayout& column : columns) {
    parts.push_back(QStringLiteral("%1:%2:%3:%4")
                        .arg(column.number)
                        .arg(std::clamp(column.width, 1, MAX_WIDTH))
                        .arg(column.position)
                        .arg(column.isHidden ? 1 : 0));
  }
  const QString body = parts.join(PART);
  return body + PART + checksum(body);
}

std::optional<std::vector<CColumnLayout>> readLayout(const QString& text, int recordType) {
  const int bodyEnd = text.lastIndexOf(PART);
  if (bodyEnd < 0 || text.mid(bodyEnd + 1) != checksum(text.left(bodyEnd))) return std::nullopt;
  QStringList parts = text.left(bodyEnd).split(PART);
  if (parts.takeFirst() != QString::number(recordType)) return std::nullopt;

  std::vector<CColumnLayout> columns;
  std::set<int> numbers;
  for (const QString& part : parts) {
    const auto column = readColumn(part);
    if (!column || !numbers.insert(column->number).second) return std::nullopt;
    columns.push_back(*column);
  }
  std::sort(columns.begin(), columns.end(),
            [](const CColumnLayout& a, const CColumnLayout& b) { return a.position < b.position; });
  for (std::size_t i = 0; i < columns.size(); ++i) {
    if (columns[i].position != static_cast<int>(i)) return std::nullopt;
  }
  return columns;
}

}  // namespace GW
