#include "CPositionTable.h"

#include "column_widths.h"

#include "gw/CTableBatch.h"
#include "gw/column_delegates.h"
#include "rdservice/CPriceData.h"
#include "rdservice/TraderCenter.h"
#include "rdservice/rdservice_enums.h"
#include "rdservice/stock_key.h"

#include <cmath>
#include <set>

namespace {

using rdservice::CPositionStatics;
using rdservice::IDataPtr;

constexpr int TABLE_ID = 101;
constexpr int MENU_FLAGS = 255;
constexpr int RIGHT = Qt::AlignRight | Qt::AlignVCenter;
constexpr double PRICE_UNITS = 10000;  ///< of a yuan, to sort by

enum EAddedColumn : int { ColumnLastPrice = 1, ColumnMarketValue = 2 };

constexpr const char* LAST_PRICE_TITLE = "最新价";
constexpr const char* MARKET_VALUE_TITLE = "市值";

/// Field numbers of CPositionStatics.
enum EField : int {
  FieldAccount = 1,
  FieldExchange = 2,
  FieldCode = 3,
  FieldName = 4,
  FieldDirection = 5,
  FieldHedgeFlag = 6,
  FieldCurrentVolume = 7,
  FieldAvailableVolume = 8,
  FieldCostPrice = 9,
};

constexpr int HIDDEN_FIELDS[] = {FieldDirection, FieldHedgeFlag};  ///< securities are all held alike
constexpr CFieldSample WIDTHS[] = {
    {FieldAccount, "00000000"}, {FieldExchange, "交易所"},          {FieldCode, "证券代码"},
    {FieldName, "五个字宽度"},  {FieldCurrentVolume, "00,000,000"}, {FieldAvailableVolume, "00,000,000"},
    {FieldCostPrice, "000.000"}};
constexpr const char* PRICE_SAMPLE = "000.000";
constexpr const char* VALUE_SAMPLE = "0,000,000,000";

constexpr int fileId(int field) { return rdservice::RecordPositionStatics * 100 + field; }

std::string stockKey(const CPositionStatics& position) {
  return rdservice::makeStockKey(position.exchangeId.str(), position.code.str());
}

/// Prices have as many decimals as the steps in which they move.
QString priceText(const CPositionStatics& position, double price) {
  const auto instrument = rdservice::TraderCenter::instance()->getDataCenter()->getInstrument(position.exchangeId.str(),
                                                                                              position.code.str());
  constexpr double CENT = 0.01;
  return QString::number(price, 'f', instrument && instrument->priceTick < CENT ? 3 : 2);
}

}  // namespace

/// Sorted by price, not by text.
class CPositionTable::CPriceColumn : public GW::CBaseTableColumnSimpleTextDelegate {
 public:
  CPriceColumn(int columnId, GW::CBaseHighPerformanceTable* table)
      : CBaseTableColumnSimpleTextDelegate(columnId, table) {
    setValueOrder([](std::optional<qint64> value) { return value.value_or(0); });
  }

  void setPrice(const QString& key, double price, const QString& text) {
    setItemText(key, text);
    setItemValue(key, std::llround(price * PRICE_UNITS));
  }
};

CPositionTable::CPositionTable(QWidget* parent)
    : CHpfDataTable(TABLE_ID, rdservice::RecordPositionStatics, parent, MENU_FLAGS) {
  setObjectName(QStringLiteral("positionTable"));
  addColumns();
  // First the quotes: a position that comes later looks its price up.
  m_quotes = rdservice::TraderCenter::instance()->getDataCenter()->getMarketData()->subscribe(
      rdservice::RecordPriceData, std::string(), [this](const std::vector<IDataPtr>& quotes) { writeQuotes(quotes); });
  m_feed =
      std::make_unique<CAccountFeed>(*this, [this](const std::vector<IDataPtr>& positions) { writeRows(positions); });
}

CPositionTable::~CPositionTable() {
  m_feed.reset();
  m_quotes.reset();
}

void CPositionTable::addColumns() {
  const auto add = [this](int number, const char* title, const char* sample, bool statistics) {
    VN::CHpfDataColumnProperty column;
    column.title = QString::fromUtf8(title);
    column.number = number;
    column.alignment = RIGHT;
    const int id = addColumn(column, statistics, true, QString());
    setColumnWidth(id, widthFor(*this, sample));
    return id;
  };
  const int priceColumn = add(ColumnLastPrice, LAST_PRICE_TITLE, PRICE_SAMPLE, false);
  m_price = new CPriceColumn(priceColumn, this);
  setColumnDelegate(priceColumn, m_price);
  m_valueColumn = add(ColumnMarketValue, MARKET_VALUE_TITLE, VALUE_SAMPLE, true);
  getExtraDataModel()->addColumn(m_valueColumn, VN::CExtraColumnInfo());
  const int costColumn = getColumnIdByFileId(fileId(FieldCostPrice));
  moveColumnBehind(priceColumn, costColumn);
  moveColumnBehind(m_valueColumn, priceColumn);
  setColumnWidths(*this, WIDTHS);
  setColumnSumVisible(costColumn, false);
  for (const int field : HIDDEN_FIELDS) setColumnHidden(getColumnIdByFileId(fileId(field)), true);
}

void CPositionTable::writeRows(const std::vector<IDataPtr>& positions) {
  const utils::CMutexLock lock(m_writing);
  GW::CTableBatch batch(*this);
  for (const IDataPtr& record : positions) {
    updateData(record, false);
    writePrice(static_cast<const CPositionStatics&>(*record));
  }
  static_cast<void>(batch.commit());  // of a push: never refused
}

void CPositionTable::writeQuotes(const std::vector<IDataPtr>& quotes) {
  std::set<std::string> stocks;
  for (const IDataPtr& quote : quotes) stocks.insert(quote->getKey());
  const utils::CMutexLock lock(m_writing);
  GW::CTableBatch batch(*this);
  const std::vector<IDataPtr> rows = getAllDatas();
  for (const IDataPtr& row : rows) {
    const auto& position = static_cast<const CPositionStatics&>(*row);
    if (stocks.count(stockKey(position)) > 0) writePrice(position);
  }
  static_cast<void>(batch.commit());
}

/// The store's price, not that of the push: pushes may overtake each other.
void CPositionTable::writePrice(const CPositionStatics& position) {
  const double price = rdservice::CPriceDataHelper::getLastPrice(rdservice::PriceSourceLast, position.exchangeId.str(),
                                                                 position.code.str());
  if (price <= 0) return;
  const std::string key = position.getKey();
  m_price->setPrice(QString::fromStdString(key), price, priceText(position, price));
  getExtraDataModel()->addData(key, m_valueColumn,
                               qint64{std::llround(static_cast<double>(position.currentVolume) * price)});
}
