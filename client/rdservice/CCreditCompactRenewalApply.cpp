#include "rdservice/CCreditCompactRenewalApply.h"

#include "rdservice/CStkUnClosedCompacts.h"
#include "rdservice/field_row.h"
#include "rdservice/rdservice_enums.h"

#include <boost/smart_ptr/make_shared.hpp>

namespace rdservice {

namespace {

using R = CCreditCompactRenewalApply;
using F = EFieldFormat;

constexpr CFieldDes FIELDS[] = {
    fieldRow<&R::accountInfo>(1, "account", "资金账号", F::Plain),
    fieldRow<&R::exchangeId>(2, "exchange", "交易所", F::Plain),
    fieldRow<&R::code>(3, "code", "证券代码", F::Plain),
    fieldRow<&R::compactNumber>(4, "compact_no", "合约编号", F::Plain),
    fieldRow<&R::openDate>(5, "open_date", "开仓日期", F::Date),
    fieldRow<&R::expiryDate>(6, "expiry_date", "到期日期", F::Date),
    fieldRow<&R::renewalDays>(7, "renewal_days", "展期天数", F::Plain),
    fieldRow<&R::newExpiryDate>(8, "new_expiry_date", "展期后到期日期", F::Date),
    fieldRow<&R::flag>(9, "flag", "展期方式", F::Plain),
    fieldRow<&R::reserved>(10, "reserved", "备用", F::Plain),
};

}  // namespace

CCreditCompactRenewalApply::CCreditCompactRenewalApply() = default;
CCreditCompactRenewalApply::~CCreditCompactRenewalApply() = default;
CCreditCompactRenewalApply::CCreditCompactRenewalApply(const CCreditCompactRenewalApply&) = default;
CCreditCompactRenewalApply& CCreditCompactRenewalApply::operator=(const CCreditCompactRenewalApply&) = default;

int CCreditCompactRenewalApply::getBaseId() const { return RequestCompactRenewal; }
IDataPtr CCreditCompactRenewalApply::copy() const { return boost::make_shared<CCreditCompactRenewalApply>(*this); }
const CStructDes& CCreditCompactRenewalApply::getStructDes() const { return structDes(); }

const CStructDes& CCreditCompactRenewalApply::structDes() {
  static const CStructDes s_des = makeStructDes(RequestCompactRenewal, "renewal_application", FIELDS);
  return s_des;
}

std::string CCreditCompactRenewalApply::getKey() const {
  return CStkUnClosedCompacts::genKey(accountInfo, exchangeId, code, openDate, compactNumber);
}

}  // namespace rdservice
