#include "vn/CHpfDataTable.h"

#include "vn/CHpfDataTablePrivate.h"

#include "rdservice/struct_registry.h"

#include "utils/threads.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QMenu>
#include <QPointer>

namespace VN {

namespace {

enum EMenuFlag : int {
  MenuCopyCell = 1,
  MenuCopyRows = 2,
  MenuFitColumns = 4,
  MenuChooseColumns = 8,
  MenuFind = 16,
  MenuStatistics = 32,
  MenuClearFilters = 64,
};

constexpr const char* CHOOSE_COLUMNS_TEXT = "显示的列";
constexpr const char* STATISTICS_TEXT = "统计行";

}  // namespace

void CHpfDataTable::Private::showMenu(const QPoint& position) {
  struct CEntry {
    EMenuFlag flag;
    const char* text;
    void (Private::*run)(const CPlace&);
    bool (Private::*isPossible)(const CPlace&) const;
  };
  static constexpr CEntry ENTRIES[] = {
      {MenuCopyCell, "复制单元格", &Private::copyCell, &Private::hasCell},
      {MenuCopyRows, "复制选中行", &Private::copyRows, &Private::hasCell},
      {MenuFind, "查找…", &Private::find, &Private::isAlways},
      {MenuClearFilters, "清除筛选", &Private::clearFilters, &Private::hasFilter},
      {MenuFitColumns, "调整列宽", &Private::fitColumns, &Private::isAlways},
  };
  const int row = view->rowAt(position.y());
  const int columnId = view->columnAt(position.x());
  const CPlace place{row >= 0 && columnId >= 0, q->cellText(row, columnId)};
  const QPointer<QMenu> opened = new QMenu(q);  // the table, and with it the menu, may go while it is open
  QMenu& menu = *opened;
  for (const CEntry& entry : ENTRIES) {
    if ((menuFlags & entry.flag) == 0) continue;
    QAction* action = menu.addAction(QString::fromUtf8(entry.text));
    action->setEnabled((this->*entry.isPossible)(place));
    QObject::connect(action, &QAction::triggered, q, [this, run = entry.run, place] { (this->*run)(place); });
  }
  if ((menuFlags & MenuStatistics) != 0) addStatisticsSwitch(menu);
  if ((menuFlags & MenuChooseColumns) != 0) addColumnChooser(menu);
  menu.addActions(q->menuActions());
  if (!menu.isEmpty()) menu.exec(view->viewport()->mapToGlobal(position));
  delete opened.data();
}

void CHpfDataTable::Private::copyCell(const CPlace& place) { QApplication::clipboard()->setText(place.text); }

void CHpfDataTable::Private::copyRows(const CPlace&) { QApplication::clipboard()->setText(view->selectedText(false)); }

void CHpfDataTable::Private::clearFilters(const CPlace&) {
  for (int id = 0; id < q->columnCount(); ++id) q->onFilterTrigger(id, GW::FilterNone, {});
}

bool CHpfDataTable::Private::hasFilter(const CPlace&) const {
  int id = q->columnCount() - 1;
  while (id >= 0 && !q->isFiltered(id)) --id;
  return id >= 0;
}

void CHpfDataTable::Private::addColumnChooser(QMenu& menu) {
  QMenu* columns = menu.addMenu(QString::fromUtf8(CHOOSE_COLUMNS_TEXT));
  const bool isLastShown = view->shownColumns().size() == 1;
  for (int id = 0; id < q->columnCount(); ++id) {
    if (!q->isColumnChoosable(id)) continue;
    QAction* action = columns->addAction(q->columnTitle(id));
    action->setCheckable(true);
    action->setChecked(!q->isColumnHidden(id));
    action->setEnabled(!action->isChecked() || !isLastShown);
    QObject::connect(action, &QAction::triggered, q, [this, id](bool shown) { q->setColumnHidden(id, !shown); });
  }
}

void CHpfDataTable::Private::addStatisticsSwitch(QMenu& menu) {
  if (statistics.empty()) return;
  QAction* action = menu.addAction(QString::fromUtf8(STATISTICS_TEXT));
  action->setCheckable(true);
  action->setChecked(isStatisticsShown);
  QObject::connect(action, &QAction::triggered, q, [this](bool shown) { showStatistics(shown); });
}

void CHpfDataTable::Private::showStatistics(bool shown) {
  isStatisticsShown = shown;
  for (const int id : statistics) q->setColumnSumVisible(id, shown);
}

void CHpfDataTable::Private::setStatistics(int columnId, bool enabled) {
  if (enabled)
    statistics.insert(columnId);
  else
    statistics.erase(columnId);
  q->setColumnSumVisible(columnId, enabled && isStatisticsShown);
}

CHpfDataTable::CHpfDataTable(int tableId, int recordType, QWidget* parent, int menuFlags)
    : GW::CStandardHpfTable(tableId, parent), m_d(new Private(this, recordType, menuFlags)) {
  if (const rdservice::CStructDes* des = rdservice::structDesOf(recordType)) addRecordColumns(*des);
  for (int id = 0; id < columnCount(); ++id) m_d->statistics.insert(id);
  m_d->showStatistics(true);
  connect(m_d->view, &GW::CHpfTableView::sigMenuRequested, this, [this](const QPoint& p) { m_d->showMenu(p); });
}

CHpfDataTable::~CHpfDataTable() = default;

int CHpfDataTable::recordType() const { return m_d->recordType; }

void CHpfDataTable::setTradeType(int tradeType) {
  utils::assertGui();
  m_d->tradeType = tradeType;
}

int CHpfDataTable::tradeType() const { return m_d->tradeType; }

int CHpfDataTable::addColumn(const CHpfDataColumnProperty& property, bool statistics, bool movable, const QString&) {
  const int id = addPlainColumn(property.number, property.title, Qt::Alignment(property.alignment));
  m_d->view->setColumnMovable(id, movable);
  if (statistics) m_d->setStatistics(id, true);
  return id;
}

CHpfExtraDataModel* CHpfDataTable::getExtraDataModel() const { return &m_d->extraData; }

}  // namespace VN
