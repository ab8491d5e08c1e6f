#pragma once

#include "bson/BSONObj.h"
#include "compacts/tables/CCompactColumns.h"
#include "compacts/tables/CCompactsBaseTable.h"
#include "compacts/tables/CPageBook.h"
#include "rdservice/CStkUnClosedCompacts.h"
#include "rdservice/rdservice_enums.h"
#include "utils/CMutex.h"
#include "utils/RDError.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace VN {

class CCompactQueryModel;

/// The compact table that shows its account's compacts page by page and asks the counter for a page at a time, from the
/// position where the last one ended: unclosed compacts (table id 0) or closed ones (table id 1).
class CCompactsPageTable : public CCompactsBaseTable {
  Q_OBJECT
 public:
  /// `singleSelect`: compacts are selected one at a time, by radio buttons, instead of by check boxes.
  CCompactsPageTable(int singleSelect, int tableId, int secondId, QWidget* parent);
  ~CCompactsPageTable() override;

  void setCompactType(int compactType, int repayType) override;
  /// Nothing: the pages are as they were when the counter was asked.
  void onPushData(rdservice::IDataPtr data) override;
  void setSelectColumnVisible(bool visible) override;
  void reservedHook() override;
  void setAccount(const std::string& account, bool queryIfChanged, bool notifyIfSame) override;
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

 Q_SIGNALS:
  /// A query finished, or there was nothing to query. Emitted on any thread.
  void sigQueryData();
  /// The table was emptied.
  void sigUpdateTable();
  /// The user double-clicked an unclosed compact.
  void sigDoubleClickCompact(rdservice::CStkUnClosedCompactsPtr compact);
  /// The table of that account must be emptied. Emitted on any thread; nobody listens.
  void sigClearTable(std::string account);

 public Q_SLOTS:
  void slotQueryData();
  void slotUpdateTable();

 private:
  // GUI thread
  void startQuery(bool direct, bool fullQuery);
  void queryEverything(const std::string& account);
  /// A query of everything that nobody waits for any more.
  void stopFullQuery();
  void refreshPagingButtons();
  void pressed(GW::EPagingButton button);
  void showProgress();

  // any thread
  /// Rows of a page: the limit of the account's counter, or 500.
  static int pageSizeOf(const std::string& account);
  CPageRules rulesFor(const GW::CTableScope& scope) const;
  /// The next batch, unless something else has been asked of the table since it was at `number`.
  void queryPage(const std::string& account, std::uint64_t number);
  /// The query that is out brings nothing.
  void abandonQuery();
  void sendQuery(const GW::CTableScope& scope, const std::string& position);
  /// What `turn` makes of the book is what the table shows from now on; `turn` runs under the book's mutex.
  CPageStep turnBook(const std::function<CPageStep(CPageBook&)>& turn);
  void postRefreshOfButtons();
  /// Has a page shown, and frees what the book gave up, on the strand.
  void postStep(const GW::CTableScope& scope, CPageStep step);

  // service threads
  void onQueryUnfinishCompact(const std::string& account, const utils::RDError& error,
                              const std::vector<rdservice::IDataPtr>& compacts, int reserved,
                              const bson::BSONObj& extra, rdservice::EKVCompactType type, std::uint64_t query);
  void onQueryCompleteCompact(const std::string& account, const utils::RDError& error,
                              const std::vector<rdservice::IDataPtr>& compacts, int reserved,
                              const bson::BSONObj& extra, rdservice::EKVCompactType type, std::uint64_t query);
  void onFullQueryUnfinishCompact(const std::string& account, int type, bool success,
                                  std::vector<rdservice::IDataPtr> records, const std::string& errorText,
                                  std::uint64_t query);
  void onFullQueryfinishCompact(const std::string& account, int type, bool success,
                                std::vector<rdservice::IDataPtr> records, const std::string& errorText,
                                std::uint64_t query);
  void onReply(const CReplyText& text, const GW::CTableScope& madeFor, const utils::RDError& error,
               const std::vector<rdservice::IDataPtr>& compacts);
  void onFullReply(const CReplyText& text, const GW::CTableScope& madeFor, bool success,
                   std::vector<rdservice::IDataPtr> records, const std::string& errorText);
  /// The line and the signal of what came too late. Any thread.
  void endStale(const CReplyText& text, const GW::CTableScope& madeFor) const;

  // strand; each ends with `sigQueryData()`
  void appendBatch(const CReplyText& text, const GW::CTableScope& madeFor,
                   const std::vector<rdservice::IDataPtr>& compacts);
  /// A query that brought nothing.
  void finish(const CReplyText& text, const GW::CTableScope& madeFor);
  /// A full query's records.
  void replaceAll(const CReplyText& text, const GW::CTableScope& madeFor,
                  const std::vector<rdservice::IDataPtr>& records);
  /// The book holds what the data centre holds; `position` is where a next batch begins, none leaves it.
  void rebuildBook(const CReplyText& text, const GW::CTableScope& madeFor, std::optional<std::string> position);
  void doStep(const CReplyText& text, const GW::CTableScope& madeFor, const CPageStep& step);
  void showPage(const CReplyText& text, const GW::CTableScope& madeFor, const CPageStep& step);
  /// The row, its select item, and the priority text that the data centre holds.
  void writeRow(const rdservice::CAccountDataPtr& store, const rdservice::IDataPtr& record);
  const CReplyText& pageText() const;

  CCompactColumns m_columns;
  /// Taken before the account's lock, never inside it.
  mutable utils::CMutex m_bookMutex;
  CPageBook m_book TS_GUARDED_BY(m_bookMutex);
  /// Records that the full query under way has brought so far.
  std::atomic<std::size_t> m_received{0};
  std::weak_ptr<CCompactQueryModel> m_fullQuery;  ///< GUI thread
  std::atomic<bool> m_isProgressPosted{false};
};

}  // namespace VN
