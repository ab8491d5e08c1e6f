#include "vn/CHpfDataTable.h"

#include "gw/view/CHpfTableView.h"
#include "rdservice/struct_registry.h"

#include "utils/threads.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QMenu>
#include <QPointer>

#include <set>

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

struct CHpfDataTable::Private {
  Private(CHpfDataTable* table, int type, int flags)
      : q(table), view(table->findChild<GW::CHpfTableView*>()), recordType(type), menuFlags(flags), extraData(*table) {}

  /// Where the menu was opened. Rows may move while it is open, so that the cell's text is taken then.
  struct CPlace {
    bool isCell;
    QString text;
  };

  void showMenu(const QPoint& position);
  void copyCell(const CPlace& place) { QApplication::clipboard()->setText(place.text); }
  void copyRows(const CPlace&) { QApplication::clipboard()->setText(view->selectedText(false)); }
  void fitColumns(const CPlace&) { q->adjustVisibleRowsColumnWidth(); }
  void find(const CPlace&) { Q_EMIT view->sigFindRequested(); }
  void clearFilters(const CPlace&);
  bool isAlways(const CPlace&) const { return true; }
  bool hasCell(const CPlace& place) const { return place.isCell; }
  bool hasFilter(const CPlace&) const;
  void addColumnChooser(QMenu& menu);
  void addStatisticsSwitch(QMenu& menu);
  void showStatistics(bool shown);

  CHpfDataTable* q;
  GW::CHpfTableView* view;
  int recordType;
  int menuFlags;
  int tradeType = 0;
  bool isStatisticsShown = true;
  std::set<int> statistics;  ///< columns of the statistics row, also while it is not shown
  CHpfExtraDataModel extraData;
};

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
  if (statistics) {
    m_d->statistics.insert(id);
    m_d->showStatistics(m_d->isStatisticsShown);
  }
  return id;
}

CHpfExtraDataModel* CHpfDataTable::getExtraDataModel() const { return &m_d->extraData; }

}  // namespace VN
