#include "COrderTable.h"

#include "column_widths.h"

#include "rdservice/rdservice_enums.h"

namespace {

constexpr int TABLE_ID = 102;
constexpr int MENU_FLAGS = 255;

/// Field numbers of CStkOrder.
enum EField : int {
  FieldAccount = 1,
  FieldOrderId = 2,
  FieldExchange = 3,
  FieldCode = 4,
  FieldName = 5,
  FieldOperation = 6,
  FieldVolume = 7,
  FieldPrice = 8,
  FieldState = 9,
  FieldFilledVolume = 10,
  FieldFilledAmount = 11,
  FieldReason = 12,
  FieldDate = 13,
  FieldTime = 14,
  FieldBatch = 15,
};

/// From the left; the others follow.
constexpr int FIRST_FIELDS[] = {FieldTime,   FieldAccount,      FieldExchange,    FieldCode,
                                FieldName,   FieldOperation,    FieldVolume,      FieldState,
                                FieldReason, FieldFilledVolume, FieldFilledAmount};
constexpr int HIDDEN_FIELDS[] = {FieldBatch};
constexpr CFieldSample WIDTHS[] = {{FieldTime, "委托时间00"},
                                   {FieldAccount, "00000000"},
                                   {FieldExchange, "交易所"},
                                   {FieldCode, "证券代码"},
                                   {FieldName, "五个字宽度"},
                                   {FieldVolume, "0,000,000"},
                                   {FieldState, "委托状态"},
                                   {FieldFilledVolume, "0,000,000"},
                                   {FieldFilledAmount, "00,000,000.00"},
                                   {FieldReason, "可用数量不足: 可用 0,000,000，委托 0,000,000"}};

}  // namespace

COrderTable::COrderTable(QWidget* parent)
    : CHpfDataTable(TABLE_ID, rdservice::RecordStkOrder, parent, MENU_FLAGS),
      m_feed(*this, [this](const std::vector<rdservice::IDataPtr>& orders) { updateDatas(orders, false); }) {
  setObjectName(QStringLiteral("orderTable"));
  arrangeColumns();
}

COrderTable::~COrderTable() = default;

void COrderTable::arrangeColumns() {
  const auto column = [this](int field) { return getColumnIdByFileId(rdservice::RecordStkOrder * 100 + field); };
  int position = 0;
  for (const int field : FIRST_FIELDS) moveColumn(column(field), position++);
  for (const int field : HIDDEN_FIELDS) setColumnHidden(column(field), true);
  setColumnWidths(*this, WIDTHS);
  setColumnSumVisible(column(FieldPrice), false);
  setSortColumn(column(FieldDate), Qt::DescendingOrder);
  addSortColumn(column(FieldTime), Qt::DescendingOrder);
  addSortColumn(column(FieldOrderId), Qt::DescendingOrder);
}
