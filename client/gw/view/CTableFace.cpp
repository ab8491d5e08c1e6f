#include "gw/view/CTableFace.h"

#include "gw/delegates/CDelegateControl.h"

#include "gw/CUiResource.h"
#include "utils/threads.h"

#include <QBrush>
#include <QMetaMethod>

#include <algorithm>
#include <utility>

namespace GW {

namespace {

constexpr std::size_t MAX_CHANGE_SIGNALS = 8;

}  // namespace

bool CTableFace::isBox(const CTableColumn& column) {
  if (!column.delegate) return false;
  const ECellControl kind = CDelegateControl::of(std::as_const(*column.delegate)).kind;
  return kind == ECellControl::CheckBox || kind == ECellControl::RadioButton;
}

CTableFace::CTableFace(CShownRows& rows, CSetStat setStat, QObject* parent)
    : IBaseHpfTableModel(parent), m_rows(rows), m_setStat(std::move(setStat)) {}

CTableFace::~CTableFace() = default;

void CTableFace::rowsAboutToChange(const CRowsChange& change) {
  utils::assertGui();
  switch (change.kind) {
    case CRowsChange::Content: break;
    case CRowsChange::Append: {
      const auto& slots = change.changedSlots;
      const int above = change.firstAdded - 1;
      if (above >= 0 && std::find(slots.begin(), slots.end(), m_rows.slotAt(above)) != slots.end()) holdRow(above);
      beginInsertRows({}, change.firstAdded, change.firstAdded + change.added - 1);
      break;
    }
    case CRowsChange::Order:
      // The hint keeps a header from looking at its columns.
      Q_EMIT layoutAboutToBeChanged({}, VerticalSortHint);
      m_persistentSlots.clear();
      for (const QModelIndex& index : persistentIndexList()) m_persistentSlots.push_back(m_rows.slotAt(index.row()));
      break;
    case CRowsChange::Reset: beginResetModel(); break;
  }
}

void CTableFace::rowsChanged(const CRowsChange& change) {
  switch (change.kind) {
    case CRowsChange::Content: break;
    case CRowsChange::Append: endInsertRows(); break;
    case CRowsChange::Order: {
      const QModelIndexList before = persistentIndexList();
      QModelIndexList after;
      after.reserve(before.size());
      auto slot = m_persistentSlots.begin();
      for (const QModelIndex& index : before) after.push_back(this->index(m_rows.rowOf(*slot++), index.column()));
      changePersistentIndexList(before, after);
      Q_EMIT layoutChanged({}, VerticalSortHint);
      break;
    }
    case CRowsChange::Reset: endResetModel(); return;
  }
  m_heldRow = -1;
  m_heldTexts.clear();
  emitChanged(change.changedSlots);
}

/// Rows change and come in one step, but onlookers are told of the new rows first, and may compare the row above them
/// with what it was.
void CTableFace::holdRow(int row) {
  const int slot = m_rows.slotAt(row);
  m_heldRow = row;
  for (int column = 0; column < m_rows.columnCount(); ++column) m_heldTexts.push_back(m_rows.text(slot, column));
}

void CTableFace::emitChanged(const std::vector<int>& slots) {
  static const QMetaMethod changed = QMetaMethod::fromSignal(&QAbstractItemModel::dataChanged);
  if (!isSignalConnected(changed)) return;  // finding the rows of a push takes longer than the push itself
  std::vector<int> rows;
  rows.reserve(slots.size());
  for (const int slot : slots) {
    const int row = m_rows.rowOf(slot);
    if (row >= 0) rows.push_back(row);
  }
  if (rows.empty() || columnCount() == 0) return;
  std::sort(rows.begin(), rows.end());

  std::vector<std::pair<int, int>> ranges;
  for (const int row : rows) {
    if (!ranges.empty() && row <= ranges.back().second + 1)
      ranges.back().second = row;
    else
      ranges.emplace_back(row, row);
  }
  if (ranges.size() > MAX_CHANGE_SIGNALS) ranges = {{rows.front(), rows.back()}};
  for (const auto& [first, last] : ranges) Q_EMIT dataChanged(index(first, 0), index(last, columnCount() - 1));
}

void CTableFace::columnAboutToBeAdded() { beginInsertColumns({}, columnCount(), columnCount()); }

void CTableFace::columnAdded() { endInsertColumns(); }

void CTableFace::columnChanged(int columnId) {
  if (columnId < 0 || columnId >= columnCount()) return;
  Q_EMIT headerDataChanged(Qt::Horizontal, columnId, columnId);
  if (rowCount() > 0) Q_EMIT dataChanged(index(0, columnId), index(rowCount() - 1, columnId));
}

void CTableFace::setColumnStatEnable(int columnId, bool enabled, int statType, int, const QString&) {
  if (statType == 0 && m_setStat) m_setStat(columnId, enabled);
}

int CTableFace::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : m_rows.rowCount(); }

int CTableFace::columnCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : m_rows.columnCount(); }

QVariant CTableFace::data(const QModelIndex& index, int role) const {
  const CTableColumn* column = m_rows.column(index.column());
  const int slot = m_rows.slotAt(index.row());
  if (column == nullptr || slot < 0) return {};
  const CItemColumn* items = m_rows.items(index.column());
  switch (role) {
    case Qt::DisplayRole:
      return index.row() == m_heldRow ? m_heldTexts.value(index.column()) : m_rows.text(slot, index.column());
    case Qt::TextAlignmentRole: return int(column->alignment);
    case Qt::CheckStateRole:
      if (!isBox(*column) || (items != nullptr && !items->isVisible(slot))) return {};
      return items != nullptr && items->isChecked(slot) ? Qt::Checked : Qt::Unchecked;
    case Qt::ForegroundRole:
      if (items == nullptr || items->isEnabled(slot)) return {};
      return QBrush(CUiResource::getColor(QStringLiteral("clr_table_disabled_text")));
    default: return {};
  }
}

QVariant CTableFace::headerData(int section, Qt::Orientation orientation, int role) const {
  const CTableColumn* column = orientation == Qt::Horizontal ? m_rows.column(section) : nullptr;
  if (column == nullptr) return {};
  if (role == Qt::DisplayRole) return column->title;
  if (role == Qt::TextAlignmentRole) return int(Qt::AlignCenter);
  return {};
}

Qt::ItemFlags CTableFace::flags(const QModelIndex& index) const {
  Qt::ItemFlags flags = QAbstractTableModel::flags(index);
  const CItemColumn* items = index.isValid() ? m_rows.items(index.column()) : nullptr;
  if (items != nullptr && !items->isEnabled(m_rows.slotAt(index.row()))) flags.setFlag(Qt::ItemIsEnabled, false);
  return flags;
}

}  // namespace GW
