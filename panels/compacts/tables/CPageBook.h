#pragma once

#include "compacts/tables/CPageCache.h"
#include "gw/table_flags.h"

#include <cstdint>
#include <optional>

namespace VN {

/// What the table has to do next.
struct CPageStep {
  enum EDo : unsigned char {
    Nothing,
    Stale,   ///< the reply or work was made for a query or page that is over; nothing was changed
    Show,    ///< the rows are the records [begin, end) of the book, which may be none
    Query,   ///< ask the counter for the records behind `position`
    Reload,  ///< `rebuild` from the data centre, then show what that says
  };

  EDo what = Nothing;
  std::uint64_t number = 0;  ///< of the query or page: `CTableScope::query` of the rows' batch
  std::size_t begin = 0;
  std::size_t end = 0;
  std::string position{};
  /// Records that the book gave up. Free them without the lock, and many of them off the GUI thread.
  std::vector<rdservice::IDataPtr> dropped{};
};

struct CPageButtons {
  bool first = false;
  bool previous = false;
  bool next = false;
};

/// What of a counter's reply goes into the book: made by `sift`, completed by `setHeld`, taken in by `accept`.
class CPageBatch {
 public:
  const std::vector<rdservice::IDataPtr>& records() const { return m_records; }
  /// The records as the data centre holds them: what `CAccountData::updateDatas(records())` returned.
  void setHeld(std::vector<rdservice::IDataPtr> held);

 private:
  friend class CPageBook;
  std::vector<rdservice::IDataPtr> m_records;
  std::vector<std::uint64_t> m_keyHashes;  ///< of `m_records`; made without the table's lock
  int m_compactType = 32;
  std::optional<std::string> m_position;  ///< where the next request goes on; none leaves it
};

/// Page number, record cache and position of a paged compact table: a plain class that tells the table what to do. The
/// table calls it under its mutex and does what the step says without. Page sizes are records, above 0 (else 500), and
/// may differ from call to call.
///
/// Resets, queries and page turns are numbered; only work of the newest number goes in, and each reply once.
///
///   refresh            lock { step = book.reset(dropCache) }            GUI
///   batch query        lock { step = book.beginQuery() }                GUI or strand; then send with step.position;
///                                                                       the reply's callback keeps step.number
///   reply, failed      lock { step = book.fail(number, size) }          strand
///   reply, success     lock { batch = book.sift(number, reply, rules) } strand; none: stale
///                      batch->setHeld(store->updateDatas(batch->records()));     first stored, then shown
///                      lock { step = book.accept(number, std::move(*batch), size) }
///   full query         `beginQuery` as above; its success:
///                      store->updateCompacts(type, records);            on the strand
///                      CPageCache cache(store->getData(type), rules);
///                      lock { step = book.rebuild(number, cache, size, position of the last of `records`) }
///   button             lock { step = book.press(button, size, compactType) }     GUI; Query: the query has begun
///   Reload             CPageCache cache(store->getData(type), rules);   strand
///                      lock { step = book.rebuild(number, cache, size) }
///   Show               lock { page = book.records(step) }, on the strand, when `book.isCurrent(step.number)`; write
///                      them in a GW::CTableBatch whose scope has `query = step.number`, `clearFirst()`, commit
///   slotQueryData      lock { buttons = book.buttons(size) }            GUI
///
/// After `reset`, `beginQuery` and `press` the table's scope takes `number()`, before the lock is given up.
class CPageBook {
 public:
  /// Page 1, from the beginning; a query that is out is void. With `dropCache` the cache is emptied, otherwise it is
  /// there to be shown until the next query begins, and `indexOf` no longer finds its keys.
  CPageStep reset(bool dropCache);

  /// A new query, which makes an older one void. The first one after a reset starts with an empty cache.
  CPageStep beginQuery();

  /// What of the reply is to be stored: records that the rules take, and where the counter repeats itself only those
  /// whose position no cached record has. None when the reply is stale.
  std::optional<CPageBatch> sift(std::uint64_t number, const std::vector<rdservice::IDataPtr>& reply,
                                 const CPageRules& rules);
  /// Ends the query: a record whose key is cached takes that one's place, the others are appended. When nothing came,
  /// or nothing for the page, the page before is shown again.
  CPageStep accept(std::uint64_t number, CPageBatch batch, int pageSize);
  /// Ends the query without records; the page before is shown again.
  CPageStep fail(std::uint64_t number, int pageSize);

  /// Replaces the cache, which is the caller's again when the step says stale. `position`: of the last record that a
  /// full query brought; a reload leaves it.
  CPageStep rebuild(std::uint64_t number, CPageCache& cache, int pageSize, std::optional<std::string> position = {});

  /// First, previous and next page. Nothing while a query is out. `compactType` is the one shown.
  CPageStep press(GW::EPagingButton button, int pageSize, int compactType);

  /// Takes over a later version of a cached record, without changing pages.
  void renew(const rdservice::IDataPtr& record);

  /// All off while a query is out.
  CPageButtons buttons(int pageSize) const;
  /// A copy of the step's records.
  std::vector<rdservice::IDataPtr> records(const CPageStep& step) const;
  /// Place of the key in order of arrival, from 1; 0 when it is not cached.
  int indexOf(const std::string& key) const;
  /// Records received and kept.
  std::size_t size() const { return m_cache.size(); }
  int pageNo() const { return m_page; }
  const std::string& position() const { return m_position; }
  /// Of the newest reset, query or page turn.
  std::uint64_t number() const { return m_number; }
  bool isCurrent(std::uint64_t number) const { return number == m_number; }

 private:
  bool isOut(std::uint64_t number) const { return m_isOut && number == m_number; }
  CPageStep stale() const { return {CPageStep::Stale, m_number}; }
  /// The present page, or the last one when that begins behind the end.
  CPageStep show(int pageSize);
  CPageStep stepBack(int pageSize);

  CPageCache m_cache;
  std::string m_position;
  int m_page = 1;
  std::uint64_t m_number = 0;
  bool m_isOut = false;   ///< the query `m_number` waits for its reply
  bool m_isVoid = false;  ///< the cache is from before a reset
};

}  // namespace VN
