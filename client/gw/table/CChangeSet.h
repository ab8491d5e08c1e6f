#pragma once

#include "rdservice/IData.h"

#include <QString>

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace GW {

class CSharedRows;

enum class EItemPart : unsigned char {
  Text,
  Visible,
  Enabled,
  Checked,
  CheckedAlone,  ///< as Checked; when on, every other key of the column is unchecked
  Value,
  ResetCell,    ///< unsets the key's cell
  ResetColumn,  ///< unsets every key of the column; without a key
};

/// Of the cell that a key has in a column.
struct CItemChange {
  EItemPart part = EItemPart::Text;
  int column = -1;
  std::string key;
  QString text;      ///< part Text
  bool on = false;   ///< parts Visible, Enabled, Checked, CheckedAlone
  qint64 value = 0;  ///< part Value
};

/// What a batch has gathered. It is applied in this order: clear, drop, records and items as they were gathered. An
/// item goes with the last record of its key gathered before it, and is ignored when that record is.
class CChangeSet {
 public:
  struct CRecord {
    rdservice::IDataPtr record;
    std::uint32_t hash;  ///< of the key; made, like the key, by the writing thread before any lock
    std::uint32_t keyBegin;
    std::uint32_t keySize;
  };

  /// A change of a cell as it is gathered: of a usual batch there are several a record.
  struct CItem {
    QString text;
    qint64 value;
    std::uint32_t records;  ///< how many had been gathered before it
    std::uint32_t hash;     ///< of the key, unless `isOfLast`
    std::uint32_t keyBegin;
    std::uint32_t keySize;
    int column;
    EItemPart part;
    bool on;
    bool isOfLast;  ///< of the record gathered last before it; the key is empty then
  };

  /// A null record is ignored.
  void add(const rdservice::IDataPtr& record);
  void add(const CItemChange& item);
  /// For this key instead of the item's.
  void add(const CItemChange& item, const QString& key);
  /// For so many records more.
  void reserve(std::size_t count);

  template <class T>
  std::string_view key(const T& one) const {
    return {m_keys.data() + one.keyBegin, one.keySize};
  }
  bool isEmpty() const { return records.empty() && items.empty(); }

  std::vector<CRecord> records;
  std::vector<CItem> items;
  std::function<bool(const rdservice::IData&)> belongs;     ///< with it, such rows go unless they are gathered
  std::function<bool(const rdservice::IData&)> keepsCells;  ///< null: no cells of rows that go are kept
  bool clearFirst = false;
  bool refresh = false;  ///< wake the GUI thread after the commit

 private:
  bool isOfLast(const QString& key) const;
  void gather(const CItemChange& item, bool isOfLast, std::string_view key);
  /// Returns where it begins.
  std::uint32_t appendKey(std::string_view key);

  std::vector<char> m_keys;  ///< one after another
};

/// While it lives, changes that this thread makes to a table are gathered in it. They nest, and stand on the stack of
/// one thread; the innermost one of a table takes the changes.
class CChangeGatherer {
 public:
  /// `rows` is only compared, never used.
  explicit CChangeGatherer(const CSharedRows* rows);
  ~CChangeGatherer();
  CChangeGatherer(const CChangeGatherer&) = delete;
  CChangeGatherer& operator=(const CChangeGatherer&) = delete;

  /// Ends the gathering; what was gathered stays.
  void stop();
  bool isGathering() const { return m_rows != nullptr; }

  /// The innermost gatherer of this thread for that table; null when there is none.
  static CChangeSet* find(const CSharedRows* rows);

  CChangeSet changes;

 private:
  const CSharedRows* m_rows;
  CChangeGatherer* m_outer;
  std::thread::id m_thread;
};

}  // namespace GW
