#include "gw/view/CFindBar.h"

#include "gw/view/CHpfTableView.h"
#include "gw/view/CSlicedTask.h"

#include "gw/ui_resources.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QToolButton>

#include <algorithm>

namespace GW {

namespace {

constexpr const char* TEXT_FIND = "查找";
constexpr const char* TEXT_PREVIOUS = "上一个";
constexpr const char* TEXT_NEXT = "下一个";
constexpr const char* TEXT_CLOSE = "关闭";
constexpr const char* TEXT_SEARCHING = "查找中…";
constexpr const char* TEXT_NOTHING = "未找到";

/// Rows that move without end must not keep a search going for ever.
constexpr int MAX_LAPS = 3;

}  // namespace

CFindBar::CFindBar(CHpfTableView& view, QWidget* parent)
    : QFrame(parent),
      m_view(&view),
      m_rows(view.rows()),
      m_text(new QLineEdit(this)),
      m_state(new QLabel(this)),
      m_task(new CSlicedTask(this)) {
  setVisible(false);
  setFocusProxy(m_text);
  m_text->setAccessibleName(QString::fromUtf8(TEXT_FIND));
  m_text->setMinimumWidth(fontMetrics().horizontalAdvance(QLatin1Char('0')) * 24);
  auto* close = new QToolButton(this);
  close->setText(QString(QChar(0x00d7)));
  close->setAccessibleName(QString::fromUtf8(TEXT_CLOSE));
  close->setToolTip(QString::fromUtf8(TEXT_CLOSE));
  close->setAutoRaise(true);

  auto* layout = new QHBoxLayout(this);
  layout->setContentsMargins(6, 3, 6, 3);
  layout->setSpacing(6);
  layout->addWidget(new QLabel(QString::fromUtf8(TEXT_FIND), this));
  layout->addWidget(m_text);
  const struct {
    const char* text;
    void (CFindBar::*run)();
  } buttons[] = {{TEXT_PREVIOUS, &CFindBar::findPrevious}, {TEXT_NEXT, &CFindBar::findNext}};
  for (const auto& [text, run] : buttons) {
    auto* button = new QPushButton(QString::fromUtf8(text), this);
    giveSmallButtonLook(button);
    connect(button, &QPushButton::clicked, this, run);
    layout->addWidget(button);
  }
  layout->addWidget(m_state);
  layout->addStretch();
  layout->addWidget(close);

  connect(close, &QToolButton::clicked, this, [this] { closeBar(); });
  connect(m_text, &QLineEdit::textChanged, this, [this] { start(false, true); });
  connect(&view, &CHpfTableView::sigFindRequested, this, [this] { open(); });
  view.installEventFilter(this);
}

CFindBar::~CFindBar() = default;

void CFindBar::open() {
  show();
  m_text->setFocus(Qt::ShortcutFocusReason);
  m_text->selectAll();
}

void CFindBar::closeBar() {
  hide();
  if (m_view) m_view->setFocus(Qt::OtherFocusReason);
}

void CFindBar::findNext() { start(false, false); }

void CFindBar::findPrevious() { start(true, false); }

bool CFindBar::isSearching() const { return m_task->isRunning(); }

void CFindBar::start(bool backwards, bool withCurrent) {
  m_task->stop();
  m_wanted = m_text->text();
  if (!m_view || m_wanted.isEmpty()) {
    m_state->clear();
    return;
  }
  m_step = backwards ? -1 : 1;
  m_left = m_rows.rowCount();
  m_laps = 0;
  m_row = m_view->currentRow();
  if (m_row < 0)
    m_row = backwards ? 0 : m_left - 1;
  else if (withCurrent)
    m_row -= m_step;
  m_slot = m_rows.slotAt(m_row);
  m_task->start([this] { return examineNext(); }, [this] { m_state->setText(QString::fromUtf8(TEXT_SEARCHING)); });
}

bool CFindBar::examineNext() {
  const int count = m_rows.rowCount();
  m_left = std::min(m_left, count);
  if (!m_view || m_left == 0) {
    m_state->setText(QString::fromUtf8(TEXT_NOTHING));
    return false;
  }
  --m_left;
  m_row = (m_row + m_step + count) % count;
  m_slot = m_rows.slotAt(m_row);
  const int column = findColumn(m_slot);
  if (column < 0) return true;
  m_state->clear();
  m_task->stop();
  m_view->selectRows(m_row, m_row);
  m_view->setCurrentCell(m_row, column);
  m_view->scrollToCell(m_row, column);
  return false;
}

/// The first column from the left that shows the text; -1 for none.
int CFindBar::findColumn(int slot) const {
  for (const int column : m_view->shownColumns()) {
    if (m_rows.text(slot, column).contains(m_wanted, Qt::CaseInsensitive)) return column;
  }
  return -1;
}

void CFindBar::rowsChanged(const CRowsChange& change) {
  if (!isSearching() || change.kind == CRowsChange::Content) return;
  if (change.kind == CRowsChange::Append) {
    m_left += change.added;
    return;
  }
  if (change.newSlots != nullptr)
    m_slot = m_slot >= 0 && m_slot < static_cast<int>(change.newSlots->size())
                 ? (*change.newSlots)[static_cast<std::size_t>(m_slot)]
                 : -1;
  const int row = m_rows.rowOf(m_slot);
  m_row = row >= 0 ? row : std::min(m_row, m_rows.rowCount() - 1);
  if (m_laps < MAX_LAPS) m_left = m_rows.rowCount();  // rows ahead may have moved behind
  ++m_laps;
}

void CFindBar::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_F3: start((event->modifiers() & Qt::ShiftModifier) != 0, false); break;
    case Qt::Key_Escape: closeBar(); break;
    default: QFrame::keyPressEvent(event);
  }
}

void CFindBar::hideEvent(QHideEvent* event) {
  m_task->stop();
  m_state->clear();
  QFrame::hideEvent(event);
}

/// Of the view's events. The last of them come while the view is being destroyed: it is not touched here.
bool CFindBar::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::KeyPress && !isHidden() && static_cast<QKeyEvent*>(event)->key() == Qt::Key_F3) {
    keyPressEvent(static_cast<QKeyEvent*>(event));
    return true;
  }
  return QFrame::eventFilter(watched, event);
}

}  // namespace GW
