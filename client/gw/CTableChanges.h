#pragma once

#include "rdservice/IData.h"

#include <QString>

#include <functional>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace GW {

class CTableStore;

/// State of one delegate cell. A key without state has the state of a default constructed one.
struct CItemState {
  QString text;
  bool visible = true;
  bool enabled = true;
  bool checked = false;
  std::optional<qint64> value;

  friend bool operator==(const CItemState& a, const CItemState& b) {
    return a.visible == b.visible && a.enabled == b.enabled && a.checked == b.checked && a.value == b.value &&
           a.text == b.text;
  }
};

/// The states of one row by column id. A row has few delegate columns, so that a search from the front is fastest.
using CItemStates = std::vector<std::pair<int, CItemState>>;

/// A row as the store hands it over and the GUI thread holds it.
struct CShownRow {
  rdservice::IDataPtr record;
  CItemStates items;
};

/// The state of a column; a default one when the row has none.
const CItemState& itemOf(const CItemStates& items, int column);

enum class EItemPart : unsigned char {
  Text,
  Visible,
  Enabled,
  Checked,
  ResetColumn,  ///< forgets every key of the column; without a key
  Value,
};

struct CItemChange {
  EItemPart part;
  int column;
  std::string key;
  QString text;             ///< part Text
  bool on;                  ///< parts Visible, Enabled, Checked
  qint64 value = 0;         ///< part Value
  std::size_t records = 0;  ///< how many records had been gathered before it
};

struct CRecordChange {
  std::string key;  ///< made by the writing thread, before any lock
  rdservice::IDataPtr record;
};

/// What a batch has gathered. It is applied in this order: clear, drop, records and items as they were gathered. An
/// item goes with the last record of its key gathered before it, and is ignored when that record is.
struct CTableChanges {
  std::vector<CRecordChange> records;
  std::vector<CItemChange> items;
  std::function<bool(const rdservice::IData&)> belongs;  ///< with it, such rows go unless they are gathered
  bool clearFirst = false;
  bool refresh = false;  ///< wake the GUI thread after the commit

  void add(const rdservice::IDataPtr& record);
  void add(CItemChange item);
  bool isEmpty() const { return records.empty() && items.empty(); }
};

/// While it lives, changes that this thread makes to the store's table are gathered in it. They nest, and stand on the
/// stack of one thread; the innermost one of a table takes the changes.
class CChangeGatherer {
 public:
  /// `store` is only compared, never used.
  explicit CChangeGatherer(const CTableStore* store);
  ~CChangeGatherer();
  CChangeGatherer(const CChangeGatherer&) = delete;
  CChangeGatherer& operator=(const CChangeGatherer&) = delete;

  /// Ends the gathering; what was gathered stays.
  void stop();
  bool isGathering() const { return m_store != nullptr; }

  /// The innermost gatherer of this thread for that table; null when there is none.
  static CTableChanges* find(const CTableStore* store);

  CTableChanges changes;

 private:
  const CTableStore* m_store;
  CChangeGatherer* m_outer;
  std::thread::id m_thread;
};

}  // namespace GW
