#include "gw/plain/CPlainRows.h"

#include <QLocale>

namespace GW {

namespace {

constexpr int ROLE_NUMBER_CELL = Qt::UserRole;

bool isNumber(const QVariant& value) { return value.userType() == QMetaType::LongLong; }

}  // namespace

CPlainRows::CPlainRows(QObject* parent)
    : QSortFilterProxyModel(parent), m_collator(QLocale(QLocale::Chinese, QLocale::China)) {
  setSourceModel(&m_cells);
  setDynamicSortFilter(false);
  for (const auto changed : {&QAbstractItemModel::rowsInserted, &QAbstractItemModel::rowsRemoved})
    connect(this, changed, this, &CPlainRows::sigChanged);
  connect(this, &QAbstractItemModel::dataChanged, this, &CPlainRows::sigChanged);
  connect(this, &QAbstractItemModel::layoutChanged, this, &CPlainRows::sigChanged);
  connect(this, &QAbstractItemModel::modelReset, this, &CPlainRows::sigChanged);
}

CPlainRows::~CPlainRows() { setSourceModel(nullptr); }

void CPlainRows::setColumns(const std::vector<CPlainColumn>& columns) {
  clear();
  m_columns = columns;
  m_cells.clear();
  m_cells.setColumnCount(static_cast<int>(columns.size()));
  for (int i = 0; i < m_cells.columnCount(); ++i) m_cells.setHeaderData(i, Qt::Horizontal, column(i).title);
}

void CPlainRows::clear() {
  m_filters.clear();
  m_cells.setRowCount(0);
  sort(-1);
  Q_EMIT sigChanged();
}

void CPlainRows::set(const CPlainCell& cell, const QVariant& value, bool isNumberCell) {
  const QModelIndex index = m_cells.index(cell.row, cell.column);
  if (!index.isValid()) return;
  m_cells.setData(index, isNumberCell, ROLE_NUMBER_CELL);
  m_cells.setData(index, value, Qt::DisplayRole);
}

void CPlainRows::setEntered(const CPlainCell& cell, const QString& text) {
  const bool isNumberCell = m_cells.index(cell.row, cell.column).data(ROLE_NUMBER_CELL).toBool();
  bool isNumber = false;
  const qlonglong number = text.toLongLong(&isNumber);
  set(cell, isNumber && isNumberCell ? QVariant(number) : QVariant(text), isNumberCell);
}

Qt::Alignment CPlainRows::alignment(const QModelIndex& displayed) const {
  return Qt::AlignVCenter | (displayed.data(ROLE_NUMBER_CELL).toBool() ? Qt::AlignRight : Qt::AlignLeft);
}

Qt::ItemFlags CPlainRows::flags(const QModelIndex& displayed) const {
  const Qt::ItemFlags flags = QSortFilterProxyModel::flags(displayed);
  const bool isEditable = displayed.isValid() && column(displayed.column()).isEditable;
  return isEditable ? flags : flags & ~Qt::ItemFlags(Qt::ItemIsEditable);
}

CPlainCell CPlainRows::filledCell(const QModelIndex& displayed) const {
  const QModelIndex filled = mapToSource(displayed);
  return {filled.row(), filled.column()};
}

qint64 CPlainRows::sum(int column) const {
  qint64 sum = 0;
  for (int row = 0; row < rowCount(); ++row) {
    const QVariant value = index(row, column).data();
    if (isNumber(value)) sum += value.toLongLong();
  }
  return sum;
}

void CPlainRows::sortByNext(int column) {
  if (!isSortedBy(column))
    sort(column, Qt::AscendingOrder);
  else if (sortOrder() == Qt::AscendingOrder)
    sort(column, Qt::DescendingOrder);
  else
    sort(-1);
  Q_EMIT sigChanged();
}

void CPlainRows::setFilter(int column, const std::optional<QSet<QString>>& texts) {
  if (texts)
    m_filters[column] = *texts;
  else
    m_filters.erase(column);
  invalidate();
  Q_EMIT sigChanged();
}

bool CPlainRows::accepts(int column, const QString& text) const {
  const auto filter = m_filters.find(column);
  return filter == m_filters.end() || filter->second.contains(text);
}

bool CPlainRows::passes(int row, int exceptColumn) const {
  for (const auto& [column, texts] : m_filters)
    if (column != exceptColumn && !texts.contains(cell({row, column}).toString())) return false;
  return true;
}

bool CPlainRows::isBefore(const QVariant& left, const QVariant& right) const {
  if (isNumber(left) != isNumber(right)) return isNumber(left);
  if (isNumber(left)) return left.toLongLong() < right.toLongLong();
  return m_collator.compare(left.toString(), right.toString()) < 0;
}

bool CPlainRows::lessThan(const QModelIndex& left, const QModelIndex& right) const {
  return isBefore(left.data(), right.data());
}

bool CPlainRows::filterAcceptsRow(int row, const QModelIndex&) const { return passes(row, -1); }

}  // namespace GW
