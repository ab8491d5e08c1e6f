#include "gw/view/CPagingBar.h"

#include "gw/CUiResource.h"
#include "gw/controls.h"
#include "gw/table_flags.h"
#include "gw/widget_events.h"

#include <QLabel>
#include <QSignalBlocker>

#include <algorithm>
#include <array>
#include <utility>

namespace GW {

namespace {

struct CButtonRow {
  EPagingButton button;
  const char* text;
};

// In the order of the bar; the page number stands behind the second.
constexpr CButtonRow BUTTONS[] = {
    {PagingFirst, "首页"}, {PagingPrevious, "上一页"}, {PagingNext, "下一页"}, {PagingLast, "末页"}};
constexpr EPagingButton BEFORE_PAGE = PagingPrevious;

constexpr const char* PAGE_TEXT = "第 %1 页";
constexpr const char* TOTAL_TEXT = "共 %1 条";
constexpr const char* UNKNOWN_TOTAL_TEXT = "共 -- 条";
constexpr const char* PAGE_SIZE_TEXT = "每页 %1 条";

constexpr int SIZES_ID = 100;  ///< of the combo box, beside the buttons' ids

QString numbered(const char* text, int number) { return QString::fromUtf8(text).arg(number); }

}  // namespace

struct CPagingBar::Private {
  std::array<CSmallNoNormalButton*, 5> buttons{};  ///< by EPagingButton; children, like all of these
  QLabel* pageLabel;
  QLabel* totalLabel;
  QLabel* sizeLabel;
  QLabel* note;
  CComboBox* sizes;
  int page = 1;
  int total = -1;
  bool isLastEnabled = true;  ///< as set

  /// Null for an unknown one.
  CSmallNoNormalButton* button(int id) const {
    return id > 0 && id < static_cast<int>(buttons.size()) ? buttons[static_cast<std::size_t>(id)] : nullptr;
  }
  void showLast(int pageSize) { buttons[PagingLast]->setEnabled(isLastEnabled && total >= 0 && pageSize > 0); }
};

CPagingBar::CPagingBar(QWidget* parent) : CAutoExpandToolBar(parent), m_d(std::make_unique<Private>()) {
  const auto addLabel = [this] {
    auto* const label = new QLabel(this);
    addWidget(label);
    return label;
  };
  for (const CButtonRow& row : BUTTONS) {
    auto* const button = new CSmallNoNormalButton(row.button, QString::fromUtf8(row.text), this);
    button->setEventReceiver(this);
    button->setFocusPolicy(Qt::TabFocus);  // a click leaves the keyboard with the rows
    addWidget(button);
    m_d->buttons[static_cast<std::size_t>(row.button)] = button;
    if (row.button == BEFORE_PAGE) m_d->pageLabel = addLabel();
  }
  m_d->totalLabel = addLabel();
  m_d->sizeLabel = addLabel();
  m_d->sizes = new CComboBox(SIZES_ID, this);
  m_d->sizes->setEventReceiver(this);
  addWidget(m_d->sizes);
  m_d->note = addLabel();
  onUiResourceChanged();
  setPageSizes({});
  setTotal(-1);
  setPage(1);
  setParts(0);
  setNote(QString());
}

CPagingBar::~CPagingBar() = default;

void CPagingBar::setParts(int parts) {
  m_d->pageLabel->setVisible((parts & PagingPartPages) != 0);
  m_d->buttons[PagingLast]->setVisible((parts & PagingPartLast) != 0);
  m_d->totalLabel->setVisible((parts & PagingPartTotal) != 0);
}

void CPagingBar::setPageSizes(const QStringList& sizes) {
  m_d->sizes->beginRefill();
  m_d->sizes->clear();
  for (const QString& size : sizes) {
    if (size.toInt() > 0) m_d->sizes->addItem(numbered(PAGE_SIZE_TEXT, size.toInt()), size);
  }
  {
    const QSignalBlocker quiet(this);  // not the user's choice
    m_d->sizes->endRefill();
  }
  m_d->sizeLabel->setText(m_d->sizes->currentText());
  m_d->sizeLabel->setVisible(m_d->sizes->count() == 1);
  m_d->sizes->setVisible(m_d->sizes->count() > 1);
  m_d->showLast(pageSize());
}

int CPagingBar::pageSize() const { return m_d->sizes->currentKey().toInt(); }

void CPagingBar::setPage(int page) {
  m_d->page = std::max(1, page);
  m_d->pageLabel->setText(numbered(PAGE_TEXT, m_d->page));
}

int CPagingBar::page() const { return m_d->page; }

void CPagingBar::setTotal(int total) {
  m_d->total = std::max(-1, total);
  m_d->totalLabel->setText(total < 0 ? QString::fromUtf8(UNKNOWN_TOTAL_TEXT) : numbered(TOTAL_TEXT, total));
  m_d->showLast(pageSize());
}

void CPagingBar::setNote(const QString& text) {
  m_d->note->setText(text);
  m_d->note->setVisible(!text.isEmpty());
}

int CPagingBar::total() const { return m_d->total; }

void CPagingBar::setButtonEnabled(int button, bool enabled) {
  CSmallNoNormalButton* const widget = m_d->button(button);
  if (button == PagingLast) {
    m_d->isLastEnabled = enabled;
    m_d->showLast(pageSize());
  } else if (widget != nullptr) {
    widget->setEnabled(enabled);
  }
}

bool CPagingBar::isButtonEnabled(int button) const {
  const CSmallNoNormalButton* const widget = m_d->button(button);
  return widget != nullptr && widget->isEnabledTo(this);
}

bool CPagingBar::handleEvent(int type, int p1, int p2, QString text, void* data) {
  if (type == EventComboChanged && p1 == SIZES_ID) {
    m_d->showLast(pageSize());
    Q_EMIT sigPageSizeChanged(pageSize());
    return true;
  }
  if (type != EventButtonClicked) return CAutoExpandToolBar::handleEvent(type, p1, p2, std::move(text), data);
  switch (p1) {
    case PagingFirst: setPage(1); break;
    case PagingPrevious: setPage(m_d->page - 1); break;
    case PagingNext: setPage(m_d->page + 1); break;
    // A total that fills its pages exactly leads to an empty one: whoever reads the pages counts on this formula.
    case PagingLast: setPage(m_d->total / pageSize() + 1); break;
    default: break;
  }
  Q_EMIT sigButton(p1);
  return true;
}

void CPagingBar::onUiResourceChanged() {
  for (QLabel* label : {m_d->pageLabel, m_d->totalLabel, m_d->sizeLabel, m_d->note}) {
    QPalette colors = label->palette();
    colors.setColor(QPalette::WindowText, CUiResource::getColor(QStringLiteral("clr_table_text")));
    colors.setColor(QPalette::Disabled, QPalette::WindowText,
                    CUiResource::getColor(QStringLiteral("clr_table_disabled_text")));
    label->setPalette(colors);
  }
  CAutoExpandToolBar::onUiResourceChanged();
}

}  // namespace GW
