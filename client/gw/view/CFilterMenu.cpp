#include "gw/view/CFilterMenu.h"

#include "gw/view/CFilterValues.h"

#include "gw/CUiResource.h"
#include "gw/ui_resources.h"

#include <QCheckBox>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMouseEvent>
#include <QPointer>
#include <QPushButton>
#include <QScreen>
#include <QStyledItemDelegate>
#include <QVBoxLayout>

#include <algorithm>

namespace GW {

namespace {

constexpr const char* TEXT_SEARCH = "输入文字筛选";
constexpr const char* TEXT_ALL = "全部";
constexpr const char* TEXT_SEARCHING = "查找中…";
constexpr const char* TEXT_NOTHING = "未找到";
constexpr const char* TEXT_OK = "确定";
constexpr const char* TEXT_CANCEL = "取消";

constexpr int RELOAD_MS = 200;  ///< rows that are loaded anew come in many turns
constexpr int MIN_VALUES = 4;   ///< the list has room for so many
constexpr int MAX_VALUES = 14;
constexpr int LINE_SPACING = 4;
constexpr int MIN_WIDTH = 220;
constexpr int MARGIN = 8;
constexpr int MAX_WIDTH = 420;

/// Styles outline a box in a darker shade of the window's colour, which nobody sees in dark colours.
void showOutlines(QPalette& colors) {
  constexpr int DARKENING = 140;
  colors.setColor(QPalette::Window,
                  CUiResource::getColor(QStringLiteral("clr_table_control_border")).lighter(DARKENING));
}

/// A column of a record table.
class CRowsSource : public IFilterSource {
 public:
  CRowsSource(CShownRows& rows, int columnId) : m_rows(rows), m_columnId(columnId) {
    m_rows.holdValues(m_columnId, true);
  }
  ~CRowsSource() override { m_rows.holdValues(m_columnId, false); }

  std::vector<CShownRows::CValue> values() override { return m_rows.values(m_columnId); }
  QString text(std::uint32_t code) const override { return m_rows.valueText(m_columnId, code); }
  void setFilter(const std::optional<std::vector<std::uint32_t>>& codes) override {
    if (codes)
      m_rows.setFilterByCodes(m_columnId, *codes);
    else
      m_rows.setFilter(m_columnId, std::nullopt);
  }

 private:
  CShownRows& m_rows;
  const int m_columnId;
};

/// The whole line of a value is its box.
class CValueDelegate : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;

  QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
    return QStyledItemDelegate::sizeHint(option, index) + QSize(0, LINE_SPACING);
  }

 protected:
  void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
    QStyledItemDelegate::initStyleOption(option, index);
    showOutlines(option->palette);
  }
  bool editorEvent(QEvent* event, QAbstractItemModel* model, const QStyleOptionViewItem& option,
                   const QModelIndex& index) override {
    switch (event->type()) {
      case QEvent::MouseButtonPress:
      case QEvent::MouseButtonDblClick: return true;  // the second click of two follows as a release
      case QEvent::MouseButtonRelease: {
        const auto* mouse = static_cast<const QMouseEvent*>(event);
        if (mouse->button() != Qt::LeftButton || !option.rect.contains(mouse->pos())) return false;
        const bool isOn = index.data(Qt::CheckStateRole).toInt() == Qt::Checked;
        return model->setData(index, isOn ? Qt::Unchecked : Qt::Checked, Qt::CheckStateRole);
      }
      default: return QStyledItemDelegate::editorEvent(event, model, option, index);
    }
  }
};

QListView* makeList(QAbstractItemModel* values, QWidget* parent) {
  auto* list = new QListView(parent);
  list->setModel(values);
  list->setItemDelegate(new CValueDelegate(list));
  list->setUniformItemSizes(true);
  list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  list->setTextElideMode(Qt::ElideMiddle);  // the number at the end stays
  list->setEditTriggers(QAbstractItemView::NoEditTriggers);
  return list;
}

}  // namespace

CFilterMenu::CFilterMenu(CShownRows& rows, int columnId, QWidget* view)
    : CFilterMenu(std::make_unique<CRowsSource>(rows, columnId), columnId, view) {}

CFilterMenu::CFilterMenu(std::unique_ptr<IFilterSource> source, int columnId, QWidget* view)
    : QFrame(view, Qt::Popup),
      m_columnId(columnId),
      m_values(new CFilterValues(std::move(source), this)),
      m_text(new QLineEdit(this)),
      m_all(new QCheckBox(QString::fromUtf8(TEXT_ALL), this)),
      m_state(new QLabel(this)),
      m_list(makeList(m_values, this)),
      m_ok(new QPushButton(QString::fromUtf8(TEXT_OK), this)),
      m_cancel(new QPushButton(QString::fromUtf8(TEXT_CANCEL), this)) {
  setAttribute(Qt::WA_DeleteOnClose);
  addWidgets();

  connect(m_values, &CFilterValues::sigChanged, this, [this] { showState(); });
  connect(m_text, &QLineEdit::textChanged, this, [this](const QString& text) {
    m_acceptsWhenFound = false;
    m_values->search(text.trimmed());
    showState();
  });
  connect(m_all, &QCheckBox::clicked, this, [this] {
    m_values->tickShown(m_values->shownState() != Qt::Checked);
    showState();
  });
  connect(m_ok, &QPushButton::clicked, this, [this] { accept(); });
  connect(m_cancel, &QPushButton::clicked, this, [this] { close(); });
  m_reload.setSingleShot(true);
  connect(&m_reload, &QTimer::timeout, this, [this] { reload(); });
  m_values->load();
}

CFilterMenu::~CFilterMenu() = default;

void CFilterMenu::addWidgets() {
  setFrameShape(QFrame::StyledPanel);
  setFocusProxy(m_text);
  m_text->setPlaceholderText(QString::fromUtf8(TEXT_SEARCH));
  m_text->setAccessibleName(QString::fromUtf8(TEXT_SEARCH));
  m_text->installEventFilter(this);
  m_all->setTristate(true);
  setBoxColors();
  m_cancel->setAutoDefault(true);  // Enter on it cancels
  for (QPushButton* button : {m_ok, m_cancel}) giveSmallButtonLook(button);

  auto* all = new QHBoxLayout;
  all->setContentsMargins(m_list->frameWidth() + 2, 0, 2, 0);
  all->addWidget(m_all);
  all->addStretch();
  all->addWidget(m_state);
  auto* buttons = new QHBoxLayout;
  buttons->addStretch();
  buttons->addWidget(m_ok);
  buttons->addWidget(m_cancel);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(MARGIN, MARGIN, MARGIN, MARGIN);
  layout->setSpacing(6);
  layout->addWidget(m_text);
  layout->addLayout(all);
  layout->addWidget(m_list, 1);
  layout->addLayout(buttons);
}

void CFilterMenu::popup(const QRect& section) {
  const int lines = std::clamp(m_values->rowCount(), MIN_VALUES, MAX_VALUES);
  QStyleOptionViewItem lineOption;
  lineOption.initFrom(m_list);
  QSize line(section.width(), fontMetrics().height() + LINE_SPACING);
  for (int row = 0; row < std::min(lines, m_values->rowCount()); ++row)
    line = line.expandedTo(m_list->itemDelegate()->sizeHint(lineOption, m_values->index(row)));
  m_list->setFixedHeight(lines * line.height() + 2 * m_list->frameWidth());
  const int around = 2 * MARGIN + 2 * m_list->frameWidth() + style()->pixelMetric(QStyle::PM_ScrollBarExtent);
  const int width = std::clamp(line.width() + around, MIN_WIDTH, MAX_WIDTH);
  resize(width, sizeHint().height());

  const QScreen* screen = QGuiApplication::screenAt(section.center());
  if (screen == nullptr) screen = QGuiApplication::primaryScreen();
  const QRect room = screen->availableGeometry();
  QPoint place = section.bottomLeft() + QPoint(0, 1);
  if (place.y() + height() > room.bottom() + 1 && section.top() - height() >= room.top())
    place.setY(section.top() - height());
  place.setX(std::max(room.left(), std::min(place.x(), room.right() + 1 - width)));
  move(place);
  show();
  m_text->setFocus(Qt::PopupFocusReason);
}

void CFilterMenu::rowsChanged(const CRowsChange& change) {
  const bool isDropped = change.kind == CRowsChange::Reset && change.newSlots != nullptr;
  const bool isFilling = m_hasDropped && (change.kind == CRowsChange::Append || change.kind == CRowsChange::Reset);
  m_hasDropped = m_hasDropped || isDropped;
  if ((isDropped || isFilling) && !m_reload.isActive()) m_reload.start(RELOAD_MS);
}

void CFilterMenu::reload() {
  m_reload.stop();
  m_values->load();
  showState();
}

void CFilterMenu::showState() {
  const bool isSearching = m_values->isSearching();
  if (m_acceptsWhenFound && !isSearching) {
    accept();
    return;
  }
  const bool isEmpty = m_values->rowCount() == 0;
  m_all->setCheckState(m_values->shownState());
  m_all->setEnabled(!isSearching && !isEmpty);
  m_ok->setEnabled(!isSearching && m_values->shownState() != Qt::Unchecked);
  m_state->setText(isSearching ? QString::fromUtf8(TEXT_SEARCHING)
                   : isEmpty   ? QString::fromUtf8(TEXT_NOTHING)
                               : QString());
}

void CFilterMenu::accept() {
  m_acceptsWhenFound = false;
  if (m_reload.isActive()) reload();
  m_acceptsWhenFound = m_values->isSearching();
  if (m_acceptsWhenFound || m_values->shownState() == Qt::Unchecked) return;
  const QPointer<CFilterMenu> self(this);
  m_values->apply();
  if (self) Q_EMIT sigFilterChanged(m_columnId);
  if (self) close();
}

void CFilterMenu::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter: accept(); break;
    case Qt::Key_Escape: close(); break;
    default: QFrame::keyPressEvent(event);
  }
}

void CFilterMenu::changeEvent(QEvent* event) {
  if (event->type() == QEvent::PaletteChange) setBoxColors();
  QFrame::changeEvent(event);
}

void CFilterMenu::setBoxColors() {
  QPalette colors;
  showOutlines(colors);
  m_all->setPalette(colors);
}

bool CFilterMenu::eventFilter(QObject* watched, QEvent* event) {
  if (watched == m_text && event->type() == QEvent::KeyPress) {
    const int key = static_cast<QKeyEvent*>(event)->key();
    if ((key == Qt::Key_Down || key == Qt::Key_PageDown) && m_values->rowCount() > 0) {
      m_list->setFocus(Qt::OtherFocusReason);
      if (!m_list->currentIndex().isValid()) m_list->setCurrentIndex(m_values->index(0));
      return true;
    }
  }
  return QFrame::eventFilter(watched, event);
}

}  // namespace GW
