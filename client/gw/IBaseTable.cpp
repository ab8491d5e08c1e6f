#include "gw/IBaseTable.h"

#include "gw/view/CPagingBar.h"
#include "gw/widget_events.h"

#include "utils/threads.h"

#include <QAction>
#include <QMenu>
#include <QPointer>

#include <algorithm>
#include <atomic>

namespace GW {

struct IBaseTable::Private {
  Private(int id, CPagingBar* pagingBar) : tableId(id), bar(pagingBar) {}

  const int tableId;
  CPagingBar* const bar;  ///< child of the table
  int flags = 0;
  std::atomic<int> page{1};  ///< the bar's, for other threads
  QList<QAction*> menuActions;
};

IBaseTable::IBaseTable(int tableId, QWidget* parent)
    : CBaseWidget(parent), m_d(new Private{tableId, new CPagingBar(this)}) {
  m_d->bar->hide();
  connect(m_d->bar, &CPagingBar::sigButton, this, [this](int button) {
    const QPointer<IBaseTable> table = this;
    finishEditing();
    if (!table) return;
    m_d->page = m_d->bar->page();
    handleEvent(EventButtonClicked, button, 0, QString(), nullptr);
  });
}

IBaseTable::~IBaseTable() = default;

int IBaseTable::getID() const { return m_d->tableId; }

int IBaseTable::tableFlags() const { return m_d->flags; }

void IBaseTable::setTableFlags(int flags) {
  utils::assertGui();
  m_d->flags = flags;
  m_d->bar->setVisible((flags & TableFlagPaging) != 0);
}

void IBaseTable::setPagingQueryType(const QStringList& pageSizes) {
  utils::assertGui();
  m_d->bar->setPageSizes(pageSizes);
}

void IBaseTable::setSimplePagingQueryType(int parts) {
  utils::assertGui();
  m_d->bar->setParts(parts);
}

int IBaseTable::getPageNum() const { return m_d->page; }

void IBaseTable::resetPageNum(int page) {
  utils::assertGui();
  m_d->page = std::max(1, page);
  m_d->bar->setPage(m_d->page);
}

void IBaseTable::setPagingNote(const QString& text) {
  utils::assertGui();
  m_d->bar->setNote(text);
}

void IBaseTable::setPagingTotal(int rows) {
  utils::assertGui();
  m_d->bar->setTotal(rows);
}

void IBaseTable::setPagingQueryBtnEnable(int button, bool enabled) {
  utils::assertGui();
  m_d->bar->setButtonEnabled(button, enabled);
}

bool IBaseTable::isPagingQueryBtnEnabled(int button) const {
  utils::assertGui();
  return m_d->bar->isButtonEnabled(button);
}

QAction* IBaseTable::addMenuAction(const QString& text) {
  utils::assertGui();
  m_d->menuActions.push_back(new QAction(text, this));
  return m_d->menuActions.back();
}

void IBaseTable::addMenuSeparator() { addMenuAction(QString())->setSeparator(true); }

void IBaseTable::addMenu(QMenu* menu) {
  utils::assertGui();
  menu->setParent(this, menu->windowFlags());
  m_d->menuActions.push_back(menu->menuAction());
}

const QList<QAction*>& IBaseTable::menuActions() const { return m_d->menuActions; }

QWidget* IBaseTable::pagingBar() const { return m_d->bar; }

}  // namespace GW
