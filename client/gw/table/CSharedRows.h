#pragma once

#include "gw/table/CChangeSet.h"
#include "gw/table/CItemState.h"
#include "gw/table/CKeyIndex.h"
#include "gw/table/CRowsDrain.h"
#include "gw/table/item_columns.h"

#include "gw/CTableBatch.h"
#include "rdservice/IData.h"
#include "utils/CMutex.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace GW {

/// How a batch treats a record whose row exists.
enum class ERowRule : unsigned char {
  Ordinary,  ///< replaces it unless the record is older; an unpublished record always replaces
  Push,      ///< replaces it only when the record is newer
};

/// Whether a batch may still be shown; called with the lock held.
using CScopeTest = std::function<bool(const CTableScope& present)>;

/// The side of a table that all threads share: what was handed over, and which of it the GUI side has not taken yet.
/// It outlives its table in the hands of batches and delegates; then it is closed and refuses what comes.
class CSharedRows {
 public:
  /// `wake` is called (any thread, with the lock held) when the GUI side shall drain soon, once until it does.
  explicit CSharedRows(std::function<void()> wake);
  ~CSharedRows();

  /// All or nothing: false when closed or when the present scope does not satisfy `accepts` (null: any will do).
  /// `present` may be null. The changes are used up when it returns true.
  bool commit(CChangeSet& changes, const CScopeTest& accepts, ERowRule rule, CTableScope* present);

  /// Lets `fill` add changes to this thread's batch of the table, or to a batch of one that is committed here.
  template <class F>
  void change(F fill) {
    if (CChangeSet* gathered = CChangeGatherer::find(this)) {
      fill(*gathered);
      return;
    }
    CChangeSet changes;
    fill(changes);
    commit(changes, nullptr, ERowRule::Ordinary, nullptr);
  }

  void setScope(const CTableScope& scope);
  CTableScope scope() const;

  rdservice::IDataPtr find(const std::string& key) const;
  /// -1 when no record of that key has arrived.
  int slotOf(const std::string& key) const;
  std::vector<rdservice::IDataPtr> all() const;

  CItemState item(int column, const std::string& key) const;
  bool hasText(int column) const;
  /// The first (by arrival) checked key of the column; when there is none, one whose record has not arrived; else
  /// empty.
  std::string checkedKey(int column) const;
  /// Whether the column has set cells and every one of them, also those whose record has not arrived, is checked.
  bool isAllChecked(int column) const;

  /// Takes up to `limit` changed rows and appends them to `drain`; true when changes are left. Dropped rows, and those
  /// that were taken before and have changed since an empty drain was given, are reported only to an empty `drain`.
  /// Does not wait for a writer: takes nothing while one holds the lock. GUI thread.
  bool drain(std::size_t limit, CRowsDrain& drain);
  bool isDrained() const;

  /// Empties everything; the GUI side empties itself. GUI thread.
  void clear();
  /// The same, but set cells wait for their records to come again.
  void clearKeepingCells();
  /// Empties everything and refuses all that comes.
  void close();
  /// Bytes held for the rows beyond the records themselves.
  std::size_t memory() const;

 private:
  enum EMark : std::uint8_t {
    Dirty = 1,   ///< the GUI side has the row, but not its last change
    Refused = 2  ///< the present commit has not taken the last record of the key so far
  };

  /// Rows by slot, the number of arrival.
  struct CRows {
    rdservice::CHashedPlaces slots;  ///< by the keys of the records
    std::vector<rdservice::IDataPtr> records;
    std::vector<std::uint8_t> marks;  ///< of EMark
    CItemColumns items;

    /// -1 when there is none.
    int find(std::uint32_t hash, std::string_view key) const;
  };

  /// Cells whose record has not arrived, by a numbering of their own. A key without set cells counts as absent.
  struct CEarlyItems {
    CKeyIndex keys;
    CItemColumns items;
  };

  /// What a change has thrown out, to be freed without the lock.
  struct CGarbage {
    CRows rows;
    CEarlyItems early;
    std::vector<rdservice::IDataPtr> records;

    std::size_t size() const {
      return rows.records.size() + static_cast<std::size_t>(early.keys.size()) + records.size();
    }
  };

  bool isEmptyFor(const CChangeSet& changes) const;
  static CRows rowsOf(CChangeSet& changes);
  static void undoRows(CRows& rows, CChangeSet& changes);
  int slotCount() const TS_REQUIRES(m_mutex) { return static_cast<int>(m_rows.slots.size()); }
  int put(const CChangeSet& changes, CChangeSet::CRecord& change, ERowRule rule, std::vector<int>& refused)
      TS_REQUIRES(m_mutex);
  void takeEarlyItems(const CChangeSet::CRecord& change, std::string_view key, int slot) TS_REQUIRES(m_mutex);
  void tidyEarlyItems(CGarbage& garbage) TS_REQUIRES(m_mutex);
  void changeItem(const CChangeSet::CItem& change, std::string_view key, int slot) TS_REQUIRES(m_mutex);
  void unsetCell(const CChangeSet::CItem& change, std::string_view key, int slot) TS_REQUIRES(m_mutex);
  void uncheckAll(int column) TS_REQUIRES(m_mutex);
  void resetItems(int column) TS_REQUIRES(m_mutex);
  void markDirty(int slot) TS_REQUIRES(m_mutex);

  void clearRows(CGarbage& garbage) TS_REQUIRES(m_mutex);
  /// The row's set cells are early ones from now on.
  void keepCells(int slot) TS_REQUIRES(m_mutex);
  void dropAbsent(const CChangeSet& changes, CGarbage& garbage) TS_REQUIRES(m_mutex);
  void renumber(const std::vector<int>& newSlots, int kept, CGarbage& garbage) TS_REQUIRES(m_mutex);
  void renumberDrained(const std::vector<int>& newSlots) TS_REQUIRES(m_mutex);

  bool take(std::size_t limit, CRowsDrain& drain) TS_REQUIRES(m_mutex);
  bool hasDropped() const TS_REQUIRES(m_mutex) { return m_cleared || m_replaced; }
  bool hasUndrained() const TS_REQUIRES(m_mutex) { return m_dirtyBegin < m_dirty.size() || m_drained < slotCount(); }

  /// Guards everything below. Taken once a batch and once a drain step; nothing but `belongs`, a scope test and `wake`
  /// is called with it held.
  mutable utils::CMutex m_mutex;
  CTableScope m_scope TS_GUARDED_BY(m_mutex);
  bool m_closed TS_GUARDED_BY(m_mutex) = false;
  CRows m_rows TS_GUARDED_BY(m_mutex);
  CEarlyItems m_early TS_GUARDED_BY(m_mutex);

  /// Slots that the GUI side has, once it took what was dropped. Those above are new to it and taken in order, so that
  /// only those below are ever marked dirty.
  int m_drained TS_GUARDED_BY(m_mutex) = 0;
  std::vector<int> m_dirty TS_GUARDED_BY(m_mutex);  ///< slots in the order of their first change
  std::size_t m_dirtyBegin TS_GUARDED_BY(m_mutex) = 0;
  std::size_t m_dirtyEnd TS_GUARDED_BY(m_mutex) = 0;  ///< of those that the present drain may take
  bool m_cleared TS_GUARDED_BY(m_mutex) = false;
  bool m_replaced TS_GUARDED_BY(m_mutex) = false;
  std::vector<int> m_newSlots TS_GUARDED_BY(m_mutex);  ///< by the GUI side's present slot

  std::function<void()> m_wake TS_GUARDED_BY(m_mutex);
  bool m_isWoken TS_GUARDED_BY(m_mutex) = false;
};

}  // namespace GW
