#pragma once

#include "bson/BSONObj.h"
#include "host_api.h"
#include "rdservice/CAccountInfo.h"
#include "rdservice/CCreditCompactRenewalApply.h"
#include "rdservice/CQueryAppointmentInfoReq.h"
#include "rdservice/CQueryCompactReqV2.h"
#include "rdservice/CQueryDataReq.h"
#include "rdservice/CSetCreditRepayPriorityReq.h"
#include "rdservice/rdservice_enums.h"
#include "utils/CSubscription.h"
#include "utils/RDError.h"
#include "vn/CPlaceCommandParameter.h"

#include <QObject>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace VN {

/// The client's connection to its counter. Requests may be made from any thread.
///
/// When an account has logged in, the client fetches its positions, statistics and orders into the account's store, and
/// subscribes to the quotes of every instrument. When it has logged out or lost its
/// connection, its compacts are dropped from the store, and answers to compact queries made before become errors.
///
/// Every request is answered exactly once: by the counter's first reply, by a time-out error when the counter is
/// silent (`RDError::TimedOut`), or by `RDError::Stopped` when the client ends. Replies are called on a service
/// thread, never from inside the request; only `RDError::Stopped` comes on the stopping thread, and at once from a
/// request made after the stop.
class HOST_API CTradeClient : public QObject {
  Q_OBJECT
 public:
  struct Private;

  /// Records, a number that this client always gives as 0, and extra data of the reply.
  using CCompactReply = std::function<void(const utils::RDError& error, const std::vector<rdservice::IDataPtr>& records,
                                           int reserved, const bson::BSONObj& extra)>;
  using CDataReply = std::function<void(const utils::RDError& error, const std::vector<rdservice::IDataPtr>& records,
                                        const bson::BSONObj& extra)>;
  /// The compacts of `accountKey` of type `dataType` changed in the data centre. `replaced`: its whole set was
  /// replaced; false: a query for it failed and the set is as it was.
  using CCompactChange = std::function<void(bool replaced, const std::string& accountKey, int dataType)>;

  /// What the counter refused, and the CCreditRepayPriorityResp records of the priorities that it set.
  using CPriorityReply =
      std::function<void(const std::vector<utils::RDError>& errors, const std::vector<rdservice::IDataPtr>& responses)>;
  /// The reply's first record, null when it has none.
  using CAppointmentReply =
      std::function<void(const utils::RDError& error, const rdservice::IDataPtr& data, const bson::BSONObj& extra)>;

  /// The running client's; null when no client runs.
  static CTradeClient* instance();

  explicit CTradeClient(std::unique_ptr<Private> d);
  ~CTradeClient() override;

  /// `LoginStatusNone` for an unknown account key.
  rdservice::EBROKER_LOGIN_STATUS getLoginStatus(const std::string& accountKey) const;

  /// The request is copied. The records are the counter's, not yet stored in the data centre.
  void queryUnclosedCompacts(const rdservice::CQueryCompactReqV2Ptr& request, CCompactReply reply);
  void queryClosedCompacts(const rdservice::CQueryCompactReqV2Ptr& request, CCompactReply reply);

  /// The generic query: every record of the request's type that the account has. Compacts, statistics, positions and
  /// orders are stored in the account's data centre as its new set, change details are not; compacts are announced to
  /// `subscribeCompactChange`, failures too. `reply` may be null; it comes after that. The last two arguments are for
  /// the client, 0 by default.
  void queryData(const rdservice::CQueryDataReqPtr& request, CDataReply reply, int reserved1 = 0, int reserved2 = 0);

  /// Sends one order request for each order of the batch and account, and returns. What becomes of them shows in the
  /// accounts' stores as CStkOrder records (RecordStkOrder). False, and nothing is sent, when there is no order, or
  /// one of them is for an account that the client does not know, names no security, or comes to less than one share,
  /// or when the batch asks for what this client does not place.
  bool placeCommands(const CPlaceCommandParameter& parameter);

  // The following take a copy of the request; one without account is answered with `RDError::NoAccount`.

  /// Entries of the request that come back neither as an error nor as a response were cleared. When the request fails
  /// as a whole there is one error for each of its entries, and at least one.
  void setCreditRepayPriority(const rdservice::CSetCreditRepayPriorityReqPtr& request, CPriorityReply reply);
  void applyCompactRenewal(const rdservice::CCreditCompactRenewalApplyPtr& application, CDataReply reply);
  /// The record is a CQueryAppointmentInfoResp.
  void queryAppointmentInfo(const rdservice::CQueryAppointmentInfoReqPtr& request, CAppointmentReply reply);

  /// Called on a service thread.
  [[nodiscard]] utils::CSubscriptionPtr subscribeCompactChange(CCompactChange callback);

  /// Logs an account in or out; the outcome comes through `sigLoginStatus`.
  void setLogin(const std::string& accountKey, bool login);

 Q_SIGNALS:
  /// The log-in status of an account changed; `message` tells why and may be empty. Emitted on a service
  /// thread, and for the beginning of a log-in on the caller's.
  void sigLoginStatus(const rdservice::CAccountInfoPtr& account, rdservice::EBROKER_LOGIN_STATUS status,
                      std::string message);
  /// The user's accounts became known or changed. Emitted on a service thread.
  void sigAccountsChanged();
  /// The counter could not tell its instruments or accounts when the client started; `reason` is for users. Emitted on
  /// a service thread.
  void sigStartFailed(QString reason);

 private:
  std::unique_ptr<Private> m_d;
};

}  // namespace VN
