#pragma once

#include "counter/CBrokerAccounts.h"
#include "counter/CSqlAnswer.h"

#include <QString>
#include <QVariant>

#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace rdservice {
class CLoginReq;
class CSubscribeQuotesReq;
class CQueryCompactReqV2;
class CQueryDataReq;
class CQueryAppointmentInfoReq;
}  // namespace rdservice

namespace counter {

class CQuoteFeed;
class CSqlConnection;
struct CRecordKind;

/// How counters hand out compacts; see CSqlCounterOptions.
struct CCompactBatches {
  std::map<int, int> maxCompacts{};
  std::set<int> repeatingTypes{};
};

/// Works out the answers of the SQL counter. Any thread, each with its own connection.
class CSqlRequests {
 public:
  /// `giveUp` is asked now and then during long work; when it says true the answer's content no longer matters.
  CSqlRequests(CBrokerAccounts& accounts, CQuoteFeed& quotes, CCompactBatches batches, std::function<bool()> giveUp);

  /// Never throws. Errors of the database are logged.
  CSqlAnswer answer(const CSqlConnection& connection, const rdservice::IData& request);

 private:
  CSqlAnswer queryAccounts(const CSqlConnection& connection);
  CSqlAnswer queryInstruments(const CSqlConnection& connection);
  CSqlAnswer login(const CSqlConnection& connection, const rdservice::CLoginReq& request);
  CSqlAnswer queryCompacts(const CSqlConnection& connection, const rdservice::CQueryCompactReqV2& request);
  CSqlAnswer queryData(const CSqlConnection& connection, const rdservice::CQueryDataReq& request);
  CSqlAnswer queryAppointments(const CSqlConnection& connection, const rdservice::CQueryAppointmentInfoReq& request);
  CSqlAnswer subscribeQuotes(const CSqlConnection& connection, const rdservice::CSubscribeQuotesReq& request);
  CSqlAnswer select(const CSqlConnection& connection, const CRecordKind& kind, const QString& condition,
                    const std::vector<QVariant>& values, const rdservice::CAccountInfoPtr& account) const;
  /// Runs a statement that selects the kind's fields in their order.
  CSqlAnswer read(const CSqlConnection& connection, const CRecordKind& kind, const QString& statement,
                  const std::vector<QVariant>& values, const rdservice::CAccountInfoPtr& account) const;

  CBrokerAccounts& m_accounts;
  CQuoteFeed& m_quotes;
  const CCompactBatches m_batches;
  const std::function<bool()> m_giveUp;
};

}  // namespace counter
