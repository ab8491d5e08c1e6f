#pragma once

#include "host_api.h"
#include "rdservice/CAccountInfo.h"
#include "rdservice/IData.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace VN {

/// Queries every compact of an account, batch after batch, until a batch brings nothing new.
///
/// Made by `std::make_shared`; once started it lives until it has completed, also when nobody else holds it:
///
///     std::make_shared<VN::CCompactQueryModel>(
///         account, rdservice::RecordStkUnClosedCompacts,
///         [](bool success, std::vector<rdservice::IDataPtr> records, const std::string& errorText) { ... })->start();
///
/// The completion is called exactly once, on a service thread and never from inside `start`; only when the client
/// stops it comes on the stopping thread, and at once from a start after the stop. It keeps what it captured until
/// then, so that a table captures a guard of itself and the account and compact type that the query was made for.
///
/// The records are the counter's, each key once, not yet stored, and each knows when it was asked for: hand them to the
/// account's `CAccountData` themselves, not copies, so that what was pushed since then is not overwritten.
class HOST_API CCompactQueryModel : public std::enable_shared_from_this<CCompactQueryModel> {
 public:
  /// On failure there are no records, and `errorText` tells users why.
  using CCompletion =
      std::function<void(bool success, std::vector<rdservice::IDataPtr> records, std::string errorText)>;
  /// Records so far. Called after each batch that brought some, on service threads, one call at a time.
  using CProgress = std::function<void(std::size_t records)>;

  /// `account` is not null; `dataType` is RecordStkUnClosedCompacts or RecordStkClosedCompacts.
  CCompactQueryModel(rdservice::CAccountInfoPtr account, int dataType, CCompletion completion,
                     CProgress progress = nullptr);
  ~CCompactQueryModel();
  CCompactQueryModel(const CCompactQueryModel&) = delete;
  CCompactQueryModel& operator=(const CCompactQueryModel&) = delete;

  /// Begins; once. Any thread.
  void start();
  /// Asks for no more batches: when the one that is out has come, the query ends as failed. Any thread.
  void stop();

 private:
  struct Private;
  std::unique_ptr<Private> m_d;
};

}  // namespace VN
