#pragma once

#include "counter/CRenewalRules.h"
#include "counter/ICounter.h"

#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace counter {

struct CSqlCounterOptions {
  std::string databasePath;              ///< UTF-8
  std::chrono::milliseconds latency{0};  ///< from taking a request to its reply
  int failEvery = 0;                     ///< every so many requests one is answered with an error; 0 for never
  int silentEvery = 0;                   ///< every so many requests one is never answered; 0 for never
  int readers = 2;                       ///< threads that answer requests
  std::map<int, int> maxCompacts{};      ///< by counter type: most compacts in one reply; a type left out has no limit
  /// Counter types whose replies begin with the record that the request continues after, on top of the count asked for;
  /// after the last record it comes alone.
  std::set<int> repeatingTypes{};
  /// By counter type: which compacts it extends; a type left out has the default rules.
  std::map<int, CRenewalRules> renewalRules{};
  std::chrono::milliseconds fillDelay{0};         ///< from taking an order to its filling
  int quotesPerMove = 0;                          ///< quotes that move at each interval; 0 for none
  std::chrono::milliseconds quoteInterval{1000};  ///< above 0
  unsigned quoteSeed = 1;                         ///< the same seed makes the same moves
};

/// The broker's side on a SQLite database that `CBookLoader` has filled. Needs a QCoreApplication.
///
/// The database is opened on the counter's own threads; an unusable one answers every request with an error that says
/// why. Error codes are those of counter_errors.h, texts are for users. Every account is logged out at first; a log-in
/// is answered, then reported to the sink. Compacts come in the order of their position strings. Requests taken before
/// `start` wait for it, those taken after `stop` are dropped.
///
/// Replies come from the reader threads, those to orders and to requests that change compacts from a writer thread, or
/// all from a timer thread while there is a latency, which holds nobody up; pushes come from the writer thread. What a
/// reply tells of a change was pushed before. Orders that were not filled when the counter stopped are filled after its
/// next start.
class CSqlCounter final : public ICounter {
 public:
  explicit CSqlCounter(CSqlCounterOptions options);
  /// Stops.
  ~CSqlCounter() override;

  void start(ICounterSink& sink) override;
  void request(const rdservice::IDataPtr& request, CCounterReply reply) override;
  /// Waits for the statements and replies that run, not for the latency. Not from inside a reply or push.
  void stop() override;

  // For requests from now on; setting a rate starts its count anew. Any thread.
  void setLatency(std::chrono::milliseconds latency);
  void setFailEvery(int requests);
  void setSilentEvery(int requests);
  /// For orders from now on.
  void setFillDelay(std::chrono::milliseconds delay);
  /// Quotes that move at each interval from now on, for the first time at once; 0 for none.
  void setQuoteWalk(int quotesPerMove, std::chrono::milliseconds interval);

  /// Something happens at the broker: inserts or replaces the records, all of them or, when one cannot be written,
  /// none (then an error is logged), and pushes them. Each has its account, and the position of the record that it
  /// replaces or one that its account does not have. Any thread; returns at once.
  void changeCompacts(std::vector<rdservice::IDataPtr> records);

  /// Closes one unclosed compact of the account on the day (Julian day number): in one transaction it goes to the
  /// closed compacts, behind those that the account has, with what was owed as paid. Pushes the unclosed compact, owing
  /// nothing any more, and the closed one. An unknown account or key is logged and changes nothing. Any thread; returns
  /// at once.
  void closeCompact(const std::string& accountKey, const std::string& compactKey, std::int32_t closeDate);

  /// The same for the account's first `count` compacts in the order of their position strings, or for all when it has
  /// fewer: in one transaction and one push, for each compact the unclosed one and the closed one.
  void closeFirstCompacts(const std::string& accountKey, int count, std::int32_t closeDate);

  /// Changes interest and unpaid amount of `count` unclosed compacts of the account a little and pushes them. The same
  /// seed on the same book makes the same changes. Any thread; returns at once.
  void changeRandomCompacts(const std::string& accountKey, int count, unsigned seed);

 private:
  struct Private;
  std::unique_ptr<Private> m_d;
};

}  // namespace counter
