#pragma once

#include "bson/BSONObj.h"
#include "compacts/tables/CCompactColumns.h"
#include "compacts/tables/CCompactsBaseTable.h"
#include "compacts/tables/CPushBacklog.h"
#include "rdservice/CStkUnClosedCompacts.h"
#include "rdservice/rdservice_enums.h"
#include "utils/CSubscription.h"
#include "utils/RDError.h"

#include <atomic>
#include <map>
#include <string>
#include <vector>

namespace VN {

/// The compact table that asks the counter for all compacts of the account at once: unclosed compacts (table id 0) or
/// closed ones (table id 1).
class CCompactsTable : public CCompactsBaseTable {
  Q_OBJECT
 public:
  /// `singleSelect`: compacts are selected one at a time, by radio buttons, instead of by check boxes.
  CCompactsTable(int singleSelect, int tableId, int secondId, QWidget* parent);
  ~CCompactsTable() override;

  void setCompactType(int compactType, int repayType) override;
  void onPushData(rdservice::IDataPtr data) override;
  void setSelectColumnVisible(bool visible) override;
  void reservedHook() override;
  void setAccount(const std::string& account, bool serverQuery, bool notifyIfSame) override;
  void clearData(bool dropCache) override;
  bool refresh(const std::string& account, bool flag, bool fullQuery) override;
  int compactIndex(const QString& key) override;
  void setBrushSourceFilter(int brushSource) override;
  void clearTable(const std::string& account) override;
  void clearRadioSelection() override;
  rdservice::IDataPtr currentCheckedData() override;
  QList<rdservice::IDataPtr> checkedDatas() override;
  GW::CBaseTableColumnLineeditDelegate* priorityEditDelegate() override;
  void applyPriorityResults(const std::string& account, const std::vector<rdservice::IDataPtr>& responses,
                            const std::map<std::string, std::string>& labels) override;

  bool handleEvent(int type, int p1, int p2, QString text, void* data) override;

  /// What pushes have kept the strand waiting with. Any thread.
  CPushLoad takePushLoad() { return m_pushes.takeLoad(); }

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
  void refreshPagingButtons();
  void startQuery(bool serverQuery);

  /// Has the rows rebuilt on the strand, once for all who ask before it begins. Any thread.
  void postRebuild(const std::string& account, bool replaced = false);

  // service threads
  void onQueryUnfinishCompact(const std::string& account, const utils::RDError& error,
                              const std::vector<rdservice::IDataPtr>& compacts, int reserved,
                              const bson::BSONObj& extra, rdservice::EKVCompactType type);
  void onQueryCompleteCompact(const std::string& account, const utils::RDError& error,
                              const std::vector<rdservice::IDataPtr>& compacts, int reserved,
                              const bson::BSONObj& extra, rdservice::EKVCompactType type);
  void onCompactChange(bool replaced, const std::string& account, int dataType);
  void onReply(const CReplyText& text, const std::string& account, const utils::RDError& error,
               const std::vector<rdservice::IDataPtr>& compacts, rdservice::EKVCompactType type);
  const CReplyText& rebuildText() const;

  // strand
  void applyReply(const CReplyText& text, const GW::CTableScope& madeFor,
                  const std::vector<rdservice::IDataPtr>& compacts);
  void runRebuild(const std::string& account);
  void rebuildRows(const std::string& account, bool replaced);
  void showPushed(std::vector<rdservice::IDataPtr> pushes);
  using CRecord = std::vector<rdservice::IDataPtr>::const_iterator;
  /// Pushes, whatever account is shown.
  void showPushes(CRecord begin, CRecord end);
  /// What the query of another panel brought: for the account shown alone, as any reply.
  void showOthersReplies(CRecord begin, CRecord end);
  /// False when the table is closing. Part of a batch.
  bool writePushed(const rdservice::IDataPtr& record, int compactType);
  /// With local pages: a push of a compact that stands on another page makes no row here.
  void removeOtherPages(std::vector<rdservice::IDataPtr>& pushes) const;
  /// What the data centre holds of the scope's account and type, on all pages.
  std::vector<rdservice::IDataPtr> recordsOf(const GW::CTableScope& scope) const;
  enum class EItems : unsigned char { Keep, Reset };
  /// The row and its priority text; `Reset` also its select item.
  void writeRow(const rdservice::IDataPtr& record, EItems items);

  const bool m_splitPage;
  const bool m_calcCompactType;
  CCompactColumns m_columns;
  std::atomic<int> m_total{0};  ///< records of every page, as the last rebuild found them

  CPushBacklog m_pushes;  ///< one strand task takes them all

  /// Accounts for which a rebuild waits on the strand, and whether it replaces their set.
  utils::CMutex m_rebuildMutex;
  std::map<std::string, bool> m_rebuilds TS_GUARDED_BY(m_rebuildMutex);

  utils::CSubscriptionPtr m_changeSubscription;
};

}  // namespace VN
