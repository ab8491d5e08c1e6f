#pragma once

#include "bson/BSONObj.h"
#include "compacts/tables/CCompactsBaseTable.h"
#include "rdservice/CStkUnClosedCompacts.h"
#include "rdservice/rdservice_enums.h"
#include "utils/CSubscription.h"
#include "utils/RDError.h"

#include <map>
#include <string>
#include <vector>

namespace GW {
class CBaseTableColumnRepayPriorityTextDelegate;
}

namespace VN {

/// The compact table that asks the counter for all compacts of the account at once: unclosed compacts (table id 0) or
/// closed ones (table id 1).
class CCompactsTable : public CCompactsBaseTable {
  Q_OBJECT
 public:
  CCompactsTable(int tableId, int secondId, QWidget* parent);
  ~CCompactsTable() override;

  void setCompactType(int compactType, int repayType) override;
  void onPushData(rdservice::IDataPtr data) override;
  void setAccount(const std::string& account, bool serverQuery, bool notifyIfSame) override;
  void clearData(bool dropCache) override;
  bool refresh(const std::string& account, bool flag, bool fullQuery) override;
  void clearTable(const std::string& account) override;

 Q_SIGNALS:
  /// A query finished, or there was nothing to query. Emitted on any thread.
  void sigQueryData();
  /// The table was emptied.
  void sigUpdateTable();
  /// The user double-clicked an unclosed compact.
  void sigDoubleClickCompact(rdservice::CStkUnClosedCompactsPtr compact);
  /// The table of that account must be emptied and rebuilt. Emitted on any thread.
  void sigClearTable(std::string account);

 public Q_SLOTS:
  void slotQueryData();
  void slotUpdateTable();
  void slotClearTable(const std::string& account);

 private:
  // GUI thread
  void buildColumns();
  void startQuery(bool serverQuery);

  // service threads
  void onQueryUnfinishCompact(const std::string& account, const utils::RDError& error,
                              const std::vector<rdservice::IDataPtr>& compacts, int reserved,
                              const bson::BSONObj& extra, rdservice::EKVCompactType type);
  void onQueryCompleteCompact(const std::string& account, const utils::RDError& error,
                              const std::vector<rdservice::IDataPtr>& compacts, int reserved,
                              const bson::BSONObj& extra, rdservice::EKVCompactType type);
  void onCompactChange(bool replaced, const std::string& account, int dataType);
  struct CReplyText;
  void onReply(const CReplyText& text, const std::string& account, const utils::RDError& error,
               const std::vector<rdservice::IDataPtr>& compacts, rdservice::EKVCompactType type);
  const CReplyText& rebuildText() const;
  /// Whether the record is of the type that this table shows; false for null.
  bool isOwnRecord(const rdservice::IDataPtr& record) const;
  void logStale(const CReplyText& text, const GW::CTableScope& madeFor, const GW::CTableScope& present) const;

  // strand
  void applyReply(const CReplyText& text, const GW::CTableScope& madeFor,
                  const std::vector<rdservice::IDataPtr>& compacts);
  void rebuildRows(const std::string& account, bool replaced);
  void applyPushes();
  void writeRow(const rdservice::IDataPtr& record);

  const bool m_calcCompactType;
  int m_priorityTextColumn = -1;
  GW::CBaseTableColumnRepayPriorityTextDelegate* m_priorityText =
      nullptr;  ///< owned by the table; null without the column

  /// Pushed records that wait for the strand; one strand task takes them all.
  utils::CMutex m_pushMutex;
  std::vector<rdservice::IDataPtr> m_pushes TS_GUARDED_BY(m_pushMutex);

  utils::CSubscriptionPtr m_changeSubscription;
};

}  // namespace VN
