#pragma once

#include "gw/CTableChanges.h"

#include "gw/CTableBatch.h"
#include "rdservice/IData.h"
#include "utils/CMutex.h"

#include <cstddef>
#include <functional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace GW {

/// How a batch treats a record whose row exists.
enum class ERowRule : unsigned char {
  Ordinary,  ///< replaces it unless the record is older; an unpublished record always replaces
  Push,      ///< replaces it only when the record is newer
};

/// Whether a batch may still be shown; called with the lock held.
using CScopeTest = std::function<bool(const CTableScope& present)>;

/// A row that the GUI side has to take over. Slot numbers count arrivals.
struct CDrainedRow {
  int slot;
  CShownRow row;
};

/// Changes for the GUI side, in this order: rows dropped, then rows new or replaced (new slots rise without gaps).
struct CTableDrain {
  bool cleared = false;       ///< every row is dropped
  bool replaced = false;      ///< rows are dropped and renumbered by `newSlots`
  std::vector<int> newSlots;  ///< by old slot: the new one, -1 for dropped
  std::vector<CDrainedRow> rows;
  bool isBusy = false;  ///< a writer held the lock: nothing more was taken
};

/// The side of a table that all threads share: what was handed over, and which of it the GUI side has not taken yet.
/// It outlives its table in the hands of batches; then it is closed and refuses them.
class CTableStore {
 public:
  /// `wake` is called (any thread, with the lock held) when the GUI side shall drain soon, once until it does.
  explicit CTableStore(std::function<void()> wake);

  /// All or nothing: false when closed or when the present scope does not satisfy `accepts` (null: any will do).
  /// `present` may be null. The changes are used up when it returns true.
  bool commit(CTableChanges& changes, const CScopeTest& accepts, ERowRule rule, CTableScope* present);

  /// Lets `fill` add changes to this thread's batch of the table, or to a batch of one that is committed here.
  template <class F>
  void change(F fill) {
    if (CTableChanges* gathered = CChangeGatherer::find(this)) {
      fill(*gathered);
      return;
    }
    CTableChanges changes;
    fill(changes);
    commit(changes, nullptr, ERowRule::Ordinary, nullptr);
  }

  void setScope(const CTableScope& scope);
  CTableScope scope() const;

  rdservice::IDataPtr find(const std::string& key) const;
  std::vector<rdservice::IDataPtr> all() const;
  CItemState item(int column, const std::string& key) const;
  bool hasText(int column) const;

  /// Takes up to `limit` changed rows and appends them to `drain`; true when changes are left. Dropped rows are
  /// reported only to an empty `drain`. Does not wait for a writer: takes nothing while one holds the lock. GUI thread.
  bool drain(std::size_t limit, CTableDrain& drain);
  bool isDrained() const;

  /// Empties everything; the GUI side empties itself. GUI thread.
  void clear();
  /// Empties everything and refuses all that comes.
  void close();

 private:
  struct CRow {
    int slot = -1;  ///< -1: items have arrived, the record has not
    bool isDirty = false;
    rdservice::IDataPtr record;
    CItemStates items;
  };
  using CRows = std::unordered_map<std::string, CRow>;

  /// What a change has replaced, to be freed without the lock.
  struct CGarbage {
    CRows rows;
    std::vector<CRows::node_type> nodes;
    std::vector<rdservice::IDataPtr> records;

    std::size_t size() const { return rows.size() + nodes.size() + records.size(); }
  };

  bool take(std::size_t limit, CTableDrain& drain) TS_REQUIRES(m_mutex);
  void clearRows(CGarbage& garbage) TS_REQUIRES(m_mutex);
  void renumber(const std::vector<int>& newSlots, CGarbage& garbage) TS_REQUIRES(m_mutex);
  void dropAbsent(const CTableChanges& changes, CGarbage& garbage) TS_REQUIRES(m_mutex);
  bool put(CRecordChange& change, ERowRule rule, CGarbage& garbage) TS_REQUIRES(m_mutex);
  void changeItem(CItemChange& change) TS_REQUIRES(m_mutex);
  void resetItems(int column) TS_REQUIRES(m_mutex);
  void markDirty(CRow& row) TS_REQUIRES(m_mutex);
  void countText(int column, const QString& text, int step) TS_REQUIRES(m_mutex);
  bool hasDropped() const TS_REQUIRES(m_mutex) { return m_cleared || m_replaced; }

  /// Guards everything below. Taken once a batch and once a drain step; nothing but `belongs` and `wake`
  /// is called with it held.
  mutable utils::CMutex m_mutex;
  CTableScope m_scope TS_GUARDED_BY(m_mutex);
  bool m_closed TS_GUARDED_BY(m_mutex) = false;
  CRows m_rows TS_GUARDED_BY(m_mutex);
  std::vector<CRows::value_type*> m_slots TS_GUARDED_BY(m_mutex);  ///< by arrival
  std::vector<int> m_texts TS_GUARDED_BY(m_mutex);                 ///< by column id: keys with a non-empty text

  std::vector<int> m_dirty TS_GUARDED_BY(m_mutex);  ///< slots in the order of their first change
  std::size_t m_dirtyBegin TS_GUARDED_BY(m_mutex) = 0;
  std::size_t m_drained TS_GUARDED_BY(m_mutex) = 0;  ///< slots the GUI side has, once it took what was dropped
  bool m_cleared TS_GUARDED_BY(m_mutex) = false;
  bool m_replaced TS_GUARDED_BY(m_mutex) = false;
  std::vector<int> m_newSlots TS_GUARDED_BY(m_mutex);  ///< by the GUI side's present slot

  std::function<void()> m_wake TS_GUARDED_BY(m_mutex);
  bool m_isWoken TS_GUARDED_BY(m_mutex) = false;
};

}  // namespace GW
