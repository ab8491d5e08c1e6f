#pragma once

#include "host_api.h"
#include "rdservice/IData.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace GW {

class CBaseHighPerformanceTable;

/// What a table shows at present: its account key and compact type, and in tables that count their queries the number
/// of the newest one.
struct CTableScope {
  std::string account;
  int type = 0;
  std::uint64_t query = 0;

  friend bool operator==(const CTableScope& a, const CTableScope& b) {
    return a.account == b.account && a.type == b.type && a.query == b.query;
  }
  friend bool operator!=(const CTableScope& a, const CTableScope& b) { return !(a == b); }
};

/// A set of changes that a table shows all together or not at all.
///
/// It stands on the stack of a strand task or reply handler. While it lives, `updateData`, item changes of the table's
/// delegates and extra column data that this thread gives to the table are gathered in it, without a lock. `commit`
/// takes the table's mutex once, compares the scope that the work was made for with the table's present one, and hands
/// over everything or nothing. Without `commit` nothing happens, so that an exception leaves no half page.
///
/// A record that is older than its row's is ignored, and with it the item changes of its key that follow it.
class HOST_API CTableBatch {
 public:
  /// For the rows of a reply or rebuild that was made for `madeFor`.
  CTableBatch(CBaseHighPerformanceTable& table, CTableScope madeFor);

  /// For pushes: never refused. A record whose version is not above its row's is ignored.
  explicit CTableBatch(CBaseHighPerformanceTable& table);

  /// For pushes that were filtered for a type: refused when the table shows another type by now, whatever its account.
  CTableBatch(CBaseHighPerformanceTable& table, int type);

  ~CTableBatch();
  CTableBatch(const CTableBatch&) = delete;
  CTableBatch& operator=(const CTableBatch&) = delete;

  /// The commit begins by emptying the table and its delegates. Only before anything was gathered.
  void clearFirst();

  /// The commit drops the rows that `belongs` accepts and that are not among the gathered ones: together they replace
  /// one set by another. What the delegates keep for a dropped row goes too, unless `keepsCells` (when given) accepts
  /// it: then it is there when the record comes again. Both run under the table's mutex.
  void dropAbsent(std::function<bool(const rdservice::IData&)> belongs,
                  std::function<bool(const rdservice::IData&)> keepsCells = nullptr);

  /// Hands everything over; false, and nothing done, when the table shows something else by now. Then `present` (when
  /// given) tells what. Once per batch.
  [[nodiscard]] bool commit(CTableScope* present = nullptr);

 private:
  friend class CBaseHighPerformanceTable;
  struct Private;
  std::unique_ptr<Private> m_d;
};

}  // namespace GW
