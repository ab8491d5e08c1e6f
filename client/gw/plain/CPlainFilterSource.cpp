#include "gw/plain/CPlainFilterSource.h"

#include "gw/plain/CPlainRows.h"

#include <algorithm>

namespace GW {

CPlainFilterSource::CPlainFilterSource(CPlainRows& rows, int column) : m_rows(rows), m_column(column) {}

CPlainFilterSource::~CPlainFilterSource() = default;

std::vector<CShownRows::CValue> CPlainFilterSource::values() {
  std::vector<QVariant> cells;
  for (int row = 0; row < m_rows.filledRowCount(); ++row)
    if (m_rows.passes(row, m_column)) cells.push_back(m_rows.cell({row, m_column}));
  std::stable_sort(cells.begin(), cells.end(),
                   [this](const QVariant& left, const QVariant& right) { return m_rows.isBefore(left, right); });
  std::vector<CShownRows::CValue> values;
  for (const QVariant& cell : cells) {
    const QString text = cell.toString();
    int code = m_texts.indexOf(text);
    if (code < 0) {
      code = m_texts.size();
      m_texts.append(text);
    }
    const auto known = std::find_if(values.begin(), values.end(), [code](const auto& value) {
      return value.code == static_cast<std::uint32_t>(code);
    });
    if (known != values.end())
      ++known->rows;
    else
      values.push_back({static_cast<std::uint32_t>(code), 1, m_rows.accepts(m_column, text)});
  }
  return values;
}

QString CPlainFilterSource::text(std::uint32_t code) const { return m_texts.value(static_cast<int>(code)); }

void CPlainFilterSource::setFilter(const std::optional<std::vector<std::uint32_t>>& codes) {
  if (!codes) {
    m_rows.setFilter(m_column, std::nullopt);
    return;
  }
  QSet<QString> texts;
  for (const std::uint32_t code : *codes) texts.insert(text(code));
  m_rows.setFilter(m_column, texts);
}

}  // namespace GW
