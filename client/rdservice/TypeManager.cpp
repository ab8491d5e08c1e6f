#include "rdservice/TypeManager.h"

#include "rdservice/field_row.h"
#include "rdservice/rdservice_enums.h"

#include <algorithm>

namespace rdservice {

namespace {

struct CEnumRow {
  const char* typeName;
  int value;
  const char* name;
};

// Rows of one enumeration stand together, in the order in which users choose from them.
constexpr CEnumRow ROWS[] = {
    {ENUM_COMPACT_TYPE, CompactTypeAll, "全部"},
    {ENUM_COMPACT_TYPE, CompactTypeFinancing, "融资"},
    {ENUM_COMPACT_TYPE, CompactTypeSecuritiesLending, "融券"},
    {ENUM_BRUSH_SOURCE, BrushSourceNormal, "普通"},
    {ENUM_BRUSH_SOURCE, BrushSourceSpecial, "专项"},
    {ENUM_RENEWAL_FLAG, '0', "未展期"},
    {ENUM_RENEWAL_FLAG, '1', "已展期"},
    {ENUM_BROKER_TYPE, BrokerTypeFuture, "期货"},
    {ENUM_BROKER_TYPE, BrokerTypeStock, "普通证券"},
    {ENUM_BROKER_TYPE, BrokerTypeCredit, "信用"},
    {ENUM_BROKER_TYPE, BrokerTypeStockOption, "股票期权"},
    {ENUM_BROKER_TYPE, BrokerTypeCreditInstitution, "机构信用"},
    {ENUM_LOGIN_STATUS, LoginStatusNone, "未知"},
    {ENUM_LOGIN_STATUS, LoginStatusLoggedOut, "未登录"},
    {ENUM_LOGIN_STATUS, LoginStatusLoggingIn, "登录中"},
    {ENUM_LOGIN_STATUS, LoginStatusReady, "已登录"},
    {ENUM_LOGIN_STATUS, LoginStatusFailed, "登录失败"},
    {ENUM_OPERATION_TYPE, OperationBuy, "买入"},
    {ENUM_OPERATION_TYPE, OperationSell, "卖出"},
    {ENUM_OPERATION_TYPE, OperationFinancingBuy, "融资买入"},
    {ENUM_OPERATION_TYPE, OperationLendingSell, "融券卖出"},
    {ENUM_OPERATION_TYPE, OperationBuyToReturn, "买券还券"},
    {ENUM_OPERATION_TYPE, OperationDirectReturn, "直接还券"},
    {ENUM_OPERATION_TYPE, OperationSellToRepay, "卖券还款"},
    {ENUM_OPERATION_TYPE, OperationDirectRepay, "直接还款"},
    {ENUM_OPERATION_TYPE, OperationSpecialDirectReturn, "专项直接还券"},
    {ENUM_OPERATION_TYPE, OperationSpecialBuyToReturn, "专项买券还券"},
    {ENUM_ENTRUST_DIRECTION, EntrustDirectionBuy, "买"},
    {ENUM_ENTRUST_DIRECTION, EntrustDirectionSell, "卖"},
    {ENUM_HEDGE_FLAG, HedgeFlagSpeculation, "投机"},
    {ENUM_HEDGE_FLAG, HedgeFlagArbitrage, "套利"},
    {ENUM_HEDGE_FLAG, HedgeFlagHedge, "套保"},
    {ENUM_ORDER_STATE, OrderEntrusted, "已报"},
    {ENUM_ORDER_STATE, OrderFilled, "已成"},
    {ENUM_ORDER_STATE, OrderRefused, "废单"},
    {ENUM_ORDER_STATE, OrderUnanswered, "未应答"},
};

struct CEnumType {
  std::string_view typeName;
  std::vector<CEnumItem> items;
};

std::vector<CEnumType> groupRows() {
  std::vector<CEnumType> types;
  for (const CEnumRow& row : ROWS) {
    if (types.empty() || types.back().typeName != row.typeName) types.push_back({row.typeName, {}});
    types.back().items.push_back({row.value, row.name});
  }
  return types;
}

}  // namespace

const std::vector<CEnumItem>& TypeManager::enumItems(std::string_view typeName) {
  static const std::vector<CEnumType> s_types = groupRows();
  static const std::vector<CEnumItem> s_none;
  const auto found =
      std::find_if(s_types.begin(), s_types.end(), [&](const CEnumType& type) { return type.typeName == typeName; });
  return found == s_types.end() ? s_none : found->items;
}

// No enumeration here is named differently from trader type to trader type.
std::string TypeManager::getEnumItemName(std::string_view typeName, int value, int /*traderType*/) {
  for (const CEnumItem& item : enumItems(typeName))
    if (item.value == value) return item.name;
  return std::to_string(value);
}

std::string operationValueToString(int operationType) {
  return TypeManager::getEnumItemName(ENUM_OPERATION_TYPE, operationType, TraderTypeStockCredit);
}

}  // namespace rdservice
