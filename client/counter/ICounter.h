#pragma once

#include "bson/BSONObj.h"
#include "rdservice/IData.h"
#include "rdservice/rdservice_enums.h"
#include "utils/RDError.h"

#include <functional>
#include <string>
#include <vector>

namespace counter {

/// What a counter tells the client on its own account. Called on the counter's service threads, never from inside a
/// request or from inside `start` and `stop`.
class ICounterSink {
 public:
  virtual ~ICounterSink() = default;

  /// Records that changed at the counter, each with its account set, unpublished.
  virtual void onPush(const std::vector<rdservice::IDataPtr>& records) = 0;

  /// The log-in state of an account changed. `text` tells why, and may be empty.
  virtual void onLoginStatus(const std::string& accountKey, rdservice::EBROKER_LOGIN_STATUS status,
                             const std::string& text) = 0;
};

/// Answer to one request: the error, the records (unpublished), and extra data of the reply.
using CCounterReply = std::function<void(const utils::RDError& error, const std::vector<rdservice::IDataPtr>& records,
                                         const bson::BSONObj& extra)>;

/// The broker's side: the only place where the client meets a counter. Any thread may call.
///
/// A counter ought to answer each request once; the trade client copes with counters that answer late, twice or never.
class ICounter {
 public:
  virtual ~ICounter() = default;

  /// Begins to push to `sink`, which lives until `stop` has returned.
  virtual void start(ICounterSink& sink) = 0;

  /// Takes a request record of any type (`CQueryCompactReqV2`, `CQueryDataReq`, ...), which nobody changes any more.
  /// `reply` is called on a service thread, never from inside this call. A request of an unknown type is answered with
  /// `RDError::Unsupported`.
  virtual void request(const rdservice::IDataPtr& request, CCounterReply reply) = 0;

  /// Ends all work: when it returns, no reply and no push is running and none comes later. Requests still out may stay
  /// unanswered. Idempotent.
  virtual void stop() = 0;
};

}  // namespace counter
