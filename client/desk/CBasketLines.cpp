#include "CBasketLines.h"

#include "rdservice/CPriceData.h"
#include "rdservice/TraderCenter.h"
#include "rdservice/TypeManager.h"
#include "rdservice/rdservice_enums.h"

#include <QHeaderView>
#include <QLineEdit>
#include <QLocale>
#include <QRegularExpressionValidator>
#include <QStyledItemDelegate>

#include <algorithm>

namespace {

using VN::CBasketStockData;

constexpr int REFRESH_PERIOD_MS = 100;
constexpr int COLUMN_GAP = 16;
constexpr int ROW_MARGIN = 6;
constexpr const char* AMOUNT_SAMPLE = "000,000,000.00";

enum EColumn : int { ColumnMarket, ColumnCode, ColumnName, ColumnOperation, ColumnVolume, ColumnAmount, ColumnCount };

constexpr const char* TITLES[ColumnCount] = {"市场", "代码", "名称", "交易类型", "数量(可改)", "金额(元)"};
constexpr const char* VOLUME_TIP = "双击修改数量";

bool isNumber(int column) { return column == ColumnVolume || column == ColumnAmount; }

QString grouped(qint64 number) { return QLocale(QLocale::Chinese).toString(number); }
QString grouped(double yuan) { return QLocale(QLocale::Chinese).toString(yuan, 'f', 2); }

/// At the last price; as the basket has it while there is none.
double amountOf(const CBasketStockData& line) {
  const double price = rdservice::CPriceDataHelper::getLastPrice(rdservice::PriceSourceLast, line.market.toStdString(),
                                                                 line.code.toStdString());
  return price > 0 ? static_cast<double>(line.volume) * price : line.amount;
}

}  // namespace

/// Shows and edits whole numbers of shares, at least 1.
class CBasketLines::CVolumeDelegate : public QStyledItemDelegate {
 public:
  explicit CVolumeDelegate(CBasketLines& lines) : QStyledItemDelegate(&lines), m_lines(lines) {}

  QString displayText(const QVariant& value, const QLocale&) const override { return grouped(value.toLongLong()); }

  QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem&, const QModelIndex&) const override {
    auto* editor = new QLineEdit(parent);
    editor->setAlignment(Qt::AlignRight);
    editor->setFrame(false);
    static const QRegularExpression SHARES(QStringLiteral("[1-9][0-9]{0,11}"));
    editor->setValidator(new QRegularExpressionValidator(SHARES, editor));
    return editor;
  }

  void setEditorData(QWidget* editor, const QModelIndex& index) const override {
    static_cast<QLineEdit*>(editor)->setText(QString::number(index.data(Qt::EditRole).toLongLong()));
  }

  void setModelData(QWidget* editor, QAbstractItemModel*, const QModelIndex& index) const override {
    auto* line = static_cast<QLineEdit*>(editor);
    if (line->hasAcceptableInput()) m_lines.setVolume(index.row(), line->text().toLongLong());
  }

 private:
  CBasketLines& m_lines;
};

CBasketLines::CBasketLines(QWidget* parent) : QTableWidget(0, ColumnCount, parent) {
  setAccessibleName(QStringLiteral("篮子明细"));
  for (int column = 0; column < ColumnCount; ++column) {
    auto* title = new QTableWidgetItem(QString::fromUtf8(TITLES[column]));
    title->setTextAlignment((isNumber(column) ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
    setHorizontalHeaderItem(column, title);
  }
  setItemDelegateForColumn(ColumnVolume, new CVolumeDelegate(*this));
  horizontalHeader()->setSectionsClickable(false);
  horizontalHeader()->setHighlightSections(false);
  horizontalHeader()->setSectionResizeMode(ColumnName, QHeaderView::Stretch);
  verticalHeader()->hide();
  verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  verticalHeader()->setDefaultSectionSize(fontMetrics().height() + ROW_MARGIN);
  setSelectionBehavior(SelectRows);
  setSelectionMode(ExtendedSelection);
  setEditTriggers(DoubleClicked | EditKeyPressed | AnyKeyPressed);
  setTabKeyNavigation(false);
  setShowGrid(false);
  setAlternatingRowColors(true);
  setWordWrap(false);

  m_quotes = rdservice::TraderCenter::instance()->getDataCenter()->getMarketData()->subscribe(
      rdservice::RecordPriceData, std::string(),
      [this](const std::vector<rdservice::IDataPtr>&) { m_hasNewQuotes = true; });
  connect(&m_refresh, &QTimer::timeout, this, [this] {
    if (isVisible() && m_hasNewQuotes.exchange(false)) showAmounts();
  });
  m_refresh.start(REFRESH_PERIOD_MS);
}

CBasketLines::~CBasketLines() { m_quotes.reset(); }

void CBasketLines::showBasket(const CBasketPtr& basket) {
  const bool isOther = basket != m_basket;
  m_basket = basket;
  if (isOther) setRowCount(0);
  setRowCount(basket ? basket->stocks.size() : 0);
  for (int row = 0; row < rowCount(); ++row) showLine(row);
  showAmounts();
  if (isOther && rowCount() > 0) fitColumns();
}

/// Amounts have room to grow.
void CBasketLines::fitColumns() {
  resizeColumnsToContents();
  for (int column = 0; column < ColumnCount; ++column)
    if (column != ColumnName) setColumnWidth(column, columnWidth(column) + COLUMN_GAP);
  const int least = fontMetrics().horizontalAdvance(QString::fromUtf8(AMOUNT_SAMPLE)) + COLUMN_GAP;
  setColumnWidth(ColumnAmount, std::max(columnWidth(ColumnAmount), least));
}

void CBasketLines::showLine(int row) {
  const CBasketStockData& line = m_basket->stocks.at(row);
  const QVariant cells[ColumnCount] = {
      line.market,         line.code,
      line.name,           QString::fromStdString(rdservice::operationValueToString(line.operation)),
      qint64{line.volume}, QString()};
  for (int column = 0; column < ColumnCount; ++column) {
    if (item(row, column) == nullptr) {
      auto* cell = new QTableWidgetItem;
      if (column != ColumnVolume) cell->setFlags(cell->flags() & ~Qt::ItemIsEditable);
      if (column == ColumnVolume) cell->setToolTip(QString::fromUtf8(VOLUME_TIP));
      cell->setTextAlignment((isNumber(column) ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
      setItem(row, column, cell);
    }
    if (column != ColumnAmount) item(row, column)->setData(Qt::EditRole, cells[column]);
  }
}

void CBasketLines::showAmounts() {
  if (m_basket && m_basket->stocks.size() != rowCount()) return showBasket(m_basket);  // changed, and not yet saved
  for (int row = 0; row < rowCount(); ++row)
    item(row, ColumnAmount)->setText(grouped(amountOf(m_basket->stocks.at(row))));
  if (m_shown) m_shown();
}

void CBasketLines::setVolume(int row, std::int64_t volume) {
  if (!m_basket || row < 0 || row >= m_basket->stocks.size()) return;
  CBasketStockData& line = m_basket->stocks[row];
  if (line.volume == volume) return;
  line.volume = volume;
  line.amount = amountOf(line);
  if (m_edited) m_edited();
}

std::vector<int> CBasketLines::selectedLines() const {
  std::vector<int> rows;
  for (int row = 0; row < rowCount(); ++row)
    if (selectionModel()->isRowSelected(row, QModelIndex())) rows.push_back(row);
  return rows;
}

double CBasketLines::totalAmount() const {
  double total = 0;
  for (int row = 0; row < rowCount(); ++row) total += amountOf(m_basket->stocks.at(row));
  return total;
}
