#include "rdservice/service_requests.h"

#include "rdservice/field_row.h"
#include "rdservice/key_text.h"
#include "rdservice/rdservice_enums.h"

#include <boost/smart_ptr/make_shared.hpp>

namespace rdservice {

namespace {

constexpr CFieldDes LOGIN_FIELDS[] = {
    fieldRow<&CLoginReq::accountKey>(1, "account_key", "账户", EFieldFormat::Plain),
    fieldRow<&CLoginReq::login>(2, "login", "登录", EFieldFormat::Plain),
};

}  // namespace

CQueryAccountsReq::CQueryAccountsReq() = default;
CQueryAccountsReq::~CQueryAccountsReq() = default;
std::string CQueryAccountsReq::getKey() const { return {}; }
int CQueryAccountsReq::getBaseId() const { return RequestQueryAccounts; }
IDataPtr CQueryAccountsReq::copy() const { return boost::make_shared<CQueryAccountsReq>(*this); }
const CStructDes& CQueryAccountsReq::getStructDes() const {
  static const CStructDes s_des(RequestQueryAccounts, "query_accounts", nullptr, 0);
  return s_des;
}

CQueryInstrumentsReq::CQueryInstrumentsReq() = default;
CQueryInstrumentsReq::~CQueryInstrumentsReq() = default;
std::string CQueryInstrumentsReq::getKey() const { return {}; }
int CQueryInstrumentsReq::getBaseId() const { return RequestQueryInstruments; }
IDataPtr CQueryInstrumentsReq::copy() const { return boost::make_shared<CQueryInstrumentsReq>(*this); }
const CStructDes& CQueryInstrumentsReq::getStructDes() const {
  static const CStructDes s_des(RequestQueryInstruments, "query_instruments", nullptr, 0);
  return s_des;
}

CLoginReq::CLoginReq() = default;
CLoginReq::~CLoginReq() = default;
CLoginReq::CLoginReq(const CLoginReq&) = default;
CLoginReq& CLoginReq::operator=(const CLoginReq&) = default;
std::string CLoginReq::getKey() const { return joinKey(accountKey, login); }
int CLoginReq::getBaseId() const { return RequestLogin; }
IDataPtr CLoginReq::copy() const { return boost::make_shared<CLoginReq>(*this); }
const CStructDes& CLoginReq::getStructDes() const {
  static const CStructDes s_des = makeStructDes(RequestLogin, "login", LOGIN_FIELDS);
  return s_des;
}

}  // namespace rdservice
