#pragma once

#include "rdservice/CAccountInfo.h"
#include "rdservice/IData.h"

namespace rdservice {

/// Asks the counter for its accounts. Answered by CAccountInfo records.
class HOST_API CQueryAccountsReq : public IData {
 public:
  CQueryAccountsReq();
  ~CQueryAccountsReq() override;
  std::string getKey() const override;
  int getBaseId() const override;
  IDataPtr copy() const override;
  const CStructDes& getStructDes() const override;
};

/// Asks the counter for every instrument. Answered by CInstrumentInfo records.
class HOST_API CQueryInstrumentsReq : public IData {
 public:
  CQueryInstrumentsReq();
  ~CQueryInstrumentsReq() override;
  std::string getKey() const override;
  int getBaseId() const override;
  IDataPtr copy() const override;
  const CStructDes& getStructDes() const override;
};

/// Logs an account in or out. Answered without records.
class HOST_API CLoginReq : public IData {
 public:
  CLoginReq();
  ~CLoginReq() override;
  CLoginReq(const CLoginReq&);
  CLoginReq& operator=(const CLoginReq&);
  std::string getKey() const override;
  int getBaseId() const override;
  IDataPtr copy() const override;
  const CStructDes& getStructDes() const override;

  std::string accountKey;
  std::int32_t login = 1;  ///< 1 log in, 0 log out
};

using CLoginReqPtr = boost::shared_ptr<CLoginReq>;

}  // namespace rdservice
