#include "rdservice/CAccountInfo.h"

#include "rdservice/field_row.h"
#include "rdservice/key_text.h"
#include "rdservice/rdservice_enums.h"

#include <boost/smart_ptr/make_shared.hpp>

namespace rdservice {

namespace {

using R = CAccountInfo;
using F = EFieldFormat;

constexpr CFieldDes FIELDS[] = {
    fieldRow<&R::accountId>(1, "account_id", "资金账号", F::Plain),
    enumRow<&R::brokerType>(2, "broker_type", "账户类型", ENUM_BROKER_TYPE),
    fieldRow<&R::counterType>(3, "counter_type", "柜台类型", F::Plain),
    fieldRow<&R::name>(4, "name", "账户名称", F::Plain),
    fieldRow<&R::alias>(5, "alias", "账户别名", F::Plain),
    fieldRow<&R::autoLogin>(6, "auto_login", "自动登录", F::Plain),
};

}  // namespace

CAccountInfo::CAccountInfo() = default;
CAccountInfo::~CAccountInfo() = default;
CAccountInfo::CAccountInfo(const CAccountInfo&) = default;
CAccountInfo& CAccountInfo::operator=(const CAccountInfo&) = default;

int CAccountInfo::getBaseId() const { return RecordAccountInfo; }
IDataPtr CAccountInfo::copy() const { return boost::make_shared<CAccountInfo>(*this); }
const CStructDes& CAccountInfo::getStructDes() const { return structDes(); }

const CStructDes& CAccountInfo::structDes() {
  static const CStructDes s_des = makeStructDes(RecordAccountInfo, "accounts", FIELDS);
  return s_des;
}

std::string CAccountInfo::getKey() const { return joinKey(*this); }

std::string accountDisplayID(const CAccountInfo& account) {
  return account.name.empty() ? account.accountId : account.accountId + "(" + account.name + ")";
}

}  // namespace rdservice
