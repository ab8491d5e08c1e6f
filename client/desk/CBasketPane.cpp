#include "CBasketPane.h"

#include "CBasketLines.h"
#include "gw/CMessageBox.h"
#include "gw/CSimpleInputDialog.h"
#include "gw/controls.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QLocale>
#include <QShortcut>
#include <QSplitter>
#include <QStackedWidget>

#include <algorithm>

namespace {

constexpr int MARGIN = 6;
constexpr int ROW_GAP = 4;
constexpr int NAMES_WIDTH = 200;
constexpr int LINES_WIDTH = 660;
constexpr int LEAST_HEIGHT = 50;  ///< of lists, so that they do not take the compacts' room

constexpr const char* EMPTY_TEXT = "还没有篮子\n在合约面板的“负债统计”中点击右键，可以生成负债篮子";
constexpr const char* UNNAMED_TEXT = "(未命名)";
constexpr const char* TOTAL_TEXT = "共 %1 行，金额合计 %2 元";
constexpr const char* RENAME_TITLE = "重命名篮子";
constexpr const char* RENAME_LABEL = "新名称";
constexpr const char* TAKEN_TEXT = "已有名为“%1”的篮子";
constexpr const char* DELETE_TITLE = "删除篮子";
constexpr const char* DELETE_TEXT = "确定删除篮子“%1”？";
constexpr const char* DELETE_LINES_TITLE = "删除证券";
constexpr const char* DELETE_LINES_TEXT = "确定从篮子“%1”中删除选中的 %2 行？";
constexpr const char* NOT_SAVED_TITLE = "警告";

QVBoxLayout* columnOn(QWidget* widget) {
  auto* column = new QVBoxLayout(widget);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(ROW_GAP);
  return column;
}

}  // namespace

CBasketPane::CBasketPane(QWidget* parent) : QWidget(parent), m_pages(new QStackedWidget(this)) {
  auto* empty = new QLabel(QString::fromUtf8(EMPTY_TEXT));
  empty->setAlignment(Qt::AlignCenter);
  empty->setEnabled(false);  // in the colour of texts that are not data
  auto* split = new QSplitter(Qt::Horizontal);
  split->setChildrenCollapsible(false);
  split->addWidget(makeNames());
  split->addWidget(makeLines());
  split->setStretchFactor(1, 1);
  split->setSizes({NAMES_WIDTH, LINES_WIDTH});
  m_pages->addWidget(empty);
  m_pages->addWidget(split);
  auto* frame = columnOn(this);
  frame->setContentsMargins(MARGIN, MARGIN, MARGIN, MARGIN);
  frame->addWidget(m_pages);
  m_changes = VN::getUserConfig()->subscribeBaskets([this] { fill(); });
  fill();
}

CBasketPane::~CBasketPane() { m_changes.reset(); }

QPushButton* CBasketPane::makeButton(const char* text, const char* accessibleName, void (CBasketPane::*press)()) {
  auto* button = new GW::CSmallNoNormalButton(0, QString::fromUtf8(text), nullptr);
  button->setAccessibleName(QString::fromUtf8(accessibleName));
  connect(button, &QPushButton::clicked, this, press);
  return button;
}

QWidget* CBasketPane::makeNames() {
  auto* side = new QWidget;
  m_names = new QListWidget;
  m_names->setAccessibleName(QStringLiteral("篮子"));
  m_names->setAlternatingRowColors(true);
  m_names->setMinimumHeight(LEAST_HEIGHT);
  connect(m_names, &QListWidget::currentRowChanged, this, [this](int row) { choose(row); });
  connect(m_names, &QListWidget::itemDoubleClicked, this, [this] { renameBasket(); });
  connect(new QShortcut(Qt::Key_F2, m_names, nullptr, nullptr, Qt::WidgetShortcut), &QShortcut::activated, this,
          &CBasketPane::renameBasket);
  connect(new QShortcut(Qt::Key_Delete, m_names, nullptr, nullptr, Qt::WidgetShortcut), &QShortcut::activated, this,
          &CBasketPane::deleteBasket);
  auto* buttons = new QHBoxLayout;
  buttons->setSpacing(MARGIN);
  buttons->addWidget(makeButton("重命名", "重命名篮子", &CBasketPane::renameBasket));
  buttons->addWidget(makeButton("删除", "删除篮子", &CBasketPane::deleteBasket));
  buttons->addStretch(1);
  auto* column = columnOn(side);
  column->addWidget(m_names, 1);
  column->addLayout(buttons);
  return side;
}

QWidget* CBasketPane::makeLines() {
  auto* side = new QWidget;
  m_lines = new CBasketLines(side);
  m_lines->setMinimumHeight(LEAST_HEIGHT);
  m_lines->onEdited([this] { save(); });
  m_lines->onShown([this] { showTotal(); });
  connect(m_lines, &QTableWidget::itemSelectionChanged, this, [this] { enableButtons(); });
  connect(new QShortcut(Qt::Key_Delete, m_lines, nullptr, nullptr, Qt::WidgetShortcut), &QShortcut::activated, this,
          &CBasketPane::deleteLines);
  m_total = new QLabel;
  m_deleteLines = makeButton("删除选中行", "删除选中的证券", &CBasketPane::deleteLines);
  auto* below = new QHBoxLayout;
  below->addWidget(m_deleteLines);
  below->addStretch(1);
  below->addWidget(m_total);
  auto* column = columnOn(side);
  column->addWidget(m_lines, 1);
  column->addLayout(below);
  return side;
}

void CBasketPane::fill() {
  m_baskets = VN::getUserConfig()->getBasketSettings();
  const int place = std::max(m_names->currentRow(), 0);
  {
    const QSignalBlocker quiet(m_names);
    while (m_names->count() > m_baskets.size()) delete m_names->takeItem(m_names->count() - 1);
    while (m_names->count() < m_baskets.size()) m_names->addItem(QString());
    for (int row = 0; row < m_baskets.size(); ++row) {
      const QString name = m_baskets.at(row)->name();
      m_names->item(row)->setText(name.isEmpty() ? QString::fromUtf8(UNNAMED_TEXT) : name);
    }
    const int kept = m_baskets.indexOf(m_chosen);
    m_names->setCurrentRow(kept >= 0 ? kept : std::min(place, m_baskets.size() - 1));
  }
  m_pages->setCurrentIndex(m_baskets.isEmpty() ? 0 : 1);
  choose(m_names->currentRow());
}

void CBasketPane::choose(int row) {
  m_chosen = row >= 0 && row < m_baskets.size() ? m_baskets.at(row) : nullptr;
  m_lines->showBasket(m_chosen);
  enableButtons();
}

void CBasketPane::showTotal() {
  m_total->setText(QString::fromUtf8(TOTAL_TEXT)
                       .arg(m_lines->rowCount())
                       .arg(QLocale(QLocale::Chinese).toString(m_lines->totalAmount(), 'f', 2)));
}

void CBasketPane::enableButtons() { m_deleteLines->setEnabled(!m_lines->selectedLines().empty()); }

void CBasketPane::renameBasket() {
  if (!m_chosen) return;
  auto* dialog = new GW::CSimpleInputDialog(QString::fromUtf8(RENAME_TITLE), QString::fromUtf8(RENAME_LABEL), this);
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->setText(m_chosen->name());
  dialog->getInput([this, basket = m_chosen](const QString& text) {
    const QString name = text.trimmed();
    if (name == basket->name()) return;
    if (const auto problem = VN::getUserConfig()->renameBasketSetting(basket->name(), name))
      showProblem(*problem);
    else
      GW::CMessageBox::warning(this, QString::fromUtf8(RENAME_TITLE), QString::fromUtf8(TAKEN_TEXT).arg(name));
  });
}

// While a question is open the pane may go (then it is answered by none of its buttons), or the baskets may change.

void CBasketPane::deleteBasket() {
  if (!m_chosen) return;
  const CBasketPtr basket = m_chosen;
  const int answer = GW::CMessageBox::question(this, QString::fromUtf8(DELETE_TITLE),
                                               QString::fromUtf8(DELETE_TEXT).arg(basket->name()));
  if (answer == QMessageBox::Yes)
    showProblem(VN::getUserConfig()->removeBasketSetting(basket->name()).value_or(QString()));
}

void CBasketPane::deleteLines() {
  const std::size_t count = m_lines->selectedLines().size();
  if (!m_chosen || count == 0) return;
  const CBasketPtr basket = m_chosen;
  const int answer = GW::CMessageBox::question(this, QString::fromUtf8(DELETE_LINES_TITLE),
                                               QString::fromUtf8(DELETE_LINES_TEXT).arg(basket->name()).arg(count));
  if (answer != QMessageBox::Yes || basket != m_chosen) return;
  std::vector<int> rows = m_lines->selectedLines();
  if (rows.size() != count) return;
  std::for_each(rows.rbegin(), rows.rend(), [&](int row) { basket->stocks.removeAt(row); });
  m_lines->clearSelection();
  save();
}

void CBasketPane::save() { showProblem(VN::getUserConfig()->saveBaskets()); }

void CBasketPane::showProblem(const QString& problem) {
  if (problem.isEmpty()) return;
  // Queued: the editor of the cell that was changed closes first.
  QMetaObject::invokeMethod(
      this, [this, problem] { GW::CMessageBox::warning(this, QString::fromUtf8(NOT_SAVED_TITLE), problem); },
      Qt::QueuedConnection);
}
