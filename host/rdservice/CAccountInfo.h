#pragma once

#include "rdservice/IData.h"

namespace rdservice {

/// An account at a counter. The book's account file and the counter supply it.
class HOST_API CAccountInfo : public IData {
 public:
  CAccountInfo();
  ~CAccountInfo() override;
  CAccountInfo(const CAccountInfo&);
  CAccountInfo& operator=(const CAccountInfo&);

  /// The account key: broker type and account id joined by ".".
  std::string getKey() const override;
  int getBaseId() const override;
  IDataPtr copy() const override;
  const CStructDes& getStructDes() const override;
  static const CStructDes& structDes();

  std::string accountId;         ///< fund account id; begins with a digit
  std::int32_t brokerType = 0;   ///< EBrokerType
  std::int32_t counterType = 0;  ///< the counter's system type; selects the broker switches of the account
  std::string name;              ///< holder's name
  std::string alias;             ///< the user's own name for the account; may be empty
  std::int32_t autoLogin = 1;    ///< 1: the client logs the account in when it starts
};

using CAccountInfoPtr = boost::shared_ptr<CAccountInfo>;

/// The account as users see it: its id, and its holder's name in brackets when it has one.
HOST_API std::string accountDisplayID(const CAccountInfo& account);

}  // namespace rdservice
