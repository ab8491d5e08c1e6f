#include "vn/CHpfDataTable.h"

#include "gw/CTableView.h"
#include "rdservice/struct_registry.h"

#include "utils/threads.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QHeaderView>
#include <QMenu>

#include <algorithm>

namespace VN {

namespace {

enum EMenuFlag : int { MenuCopyCell = 1, MenuCopyRows = 2, MenuFitColumns = 4, MenuChooseColumns = 8 };

constexpr const char* CHOOSE_COLUMNS_TEXT = "显示的列";

}  // namespace

struct CHpfDataTable::Private {
  Private(CHpfDataTable* table, int type, int flags)
      : q(table), view(table->findChild<GW::CTableView*>()), recordType(type), menuFlags(flags) {}

  void showMenu(const QPoint& position);
  void copyCell(const QModelIndex& index);
  void copyRows(const QModelIndex& index);
  void fitColumns(const QModelIndex&) { q->adjustVisibleRowsColumnWidth(); }
  void addColumnChooser(QMenu& menu);
  std::vector<int> shownColumns() const;

  CHpfDataTable* q;
  GW::CTableView* view;
  int recordType;
  int menuFlags;
  int tradeType = 0;
};

void CHpfDataTable::Private::showMenu(const QPoint& position) {
  struct CEntry {
    EMenuFlag flag;
    const char* text;
    void (Private::*run)(const QModelIndex&);
    bool needsCell;
  };
  static constexpr CEntry ENTRIES[] = {
      {MenuCopyCell, "复制单元格", &Private::copyCell, true},
      {MenuCopyRows, "复制选中行", &Private::copyRows, true},
      {MenuFitColumns, "调整列宽", &Private::fitColumns, false},
  };
  const QPersistentModelIndex index = view->indexAt(position);
  QMenu menu(q);
  for (const CEntry& entry : ENTRIES) {
    if ((menuFlags & entry.flag) == 0) continue;
    QAction* action = menu.addAction(QString::fromUtf8(entry.text));
    action->setEnabled(index.isValid() || !entry.needsCell);
    QObject::connect(action, &QAction::triggered, q, [this, run = entry.run, index] { (this->*run)(index); });
  }
  if ((menuFlags & MenuChooseColumns) != 0) addColumnChooser(menu);
  if (!menu.isEmpty()) menu.exec(view->viewport()->mapToGlobal(position));
}

void CHpfDataTable::Private::copyCell(const QModelIndex& index) {
  QApplication::clipboard()->setText(q->cellText(index.row(), index.column()));
}

void CHpfDataTable::Private::copyRows(const QModelIndex&) {
  QModelIndexList rows = view->selectionModel()->selectedRows();
  std::sort(rows.begin(), rows.end());
  const std::vector<int> columns = shownColumns();
  QStringList lines;
  for (const QModelIndex& row : rows) {
    QStringList cells;
    for (const int id : columns) cells.push_back(q->cellText(row.row(), id));
    lines.push_back(cells.join(QLatin1Char('\t')));
  }
  QApplication::clipboard()->setText(lines.join(QLatin1Char('\n')));
}

void CHpfDataTable::Private::addColumnChooser(QMenu& menu) {
  QMenu* columns = menu.addMenu(QString::fromUtf8(CHOOSE_COLUMNS_TEXT));
  const bool isLastShown = shownColumns().size() == 1;
  for (int id = 0; id < q->columnCount(); ++id) {
    QAction* action = columns->addAction(q->columnTitle(id));
    action->setCheckable(true);
    action->setChecked(!q->isColumnHidden(id));
    action->setEnabled(!action->isChecked() || !isLastShown);
    QObject::connect(action, &QAction::triggered, q, [this, id](bool shown) { q->setColumnHidden(id, !shown); });
  }
}

std::vector<int> CHpfDataTable::Private::shownColumns() const {
  std::vector<int> columns;
  for (int position = 0; position < q->columnCount(); ++position) {
    const int id = view->horizontalHeader()->logicalIndex(position);
    if (!q->isColumnHidden(id)) columns.push_back(id);
  }
  return columns;
}

CHpfDataTable::CHpfDataTable(int tableId, int recordType, QWidget* parent, int menuFlags)
    : GW::CStandardHpfTable(tableId, parent), m_d(new Private(this, recordType, menuFlags)) {
  if (const rdservice::CStructDes* des = rdservice::structDesOf(recordType)) addRecordColumns(*des);
  m_d->view->setContextMenuPolicy(Qt::CustomContextMenu);
  connect(m_d->view, &QWidget::customContextMenuRequested, this, [this](const QPoint& p) { m_d->showMenu(p); });
}

CHpfDataTable::~CHpfDataTable() = default;

int CHpfDataTable::recordType() const { return m_d->recordType; }

void CHpfDataTable::setTradeType(int tradeType) {
  utils::assertGui();
  m_d->tradeType = tradeType;
}

int CHpfDataTable::tradeType() const { return m_d->tradeType; }

int CHpfDataTable::addColumn(const CHpfDataColumnProperty& property, bool, bool movable, const QString&) {
  const int id = addPlainColumn(property.number, property.title, Qt::Alignment(property.alignment));
  m_d->view->setColumnMovable(id, movable);
  return id;
}

}  // namespace VN
