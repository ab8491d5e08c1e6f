#include "gw/files/CRowPadder.h"

#include "gw/files/table_limits.h"

namespace GW {

EReadResult CRowPadder::take(QStringList&& cells) {
  while (!cells.isEmpty() && cells.last().isEmpty()) cells.removeLast();
  if (cells.isEmpty()) return ReadWhole;
  qint64 chars = 0;
  for (const QString& cell : qAsConst(cells)) chars += cell.size() + 1;
  if (m_width == 0) m_width = cells.size();
  for (; cells.size() < m_width; ++m_padCells) cells.append(QString());
  if (chars > MAX_LINE || cells.size() > MAX_SHEET_COLUMNS || m_padCells > MAX_PAD_CELLS) return ReadTooLarge;
  return m_takeRow(std::move(cells)) ? ReadWhole : ReadCancelled;
}

}  // namespace GW
