#pragma once

namespace counter {

/// Error codes of the SQL counter's answers, beside those of `utils::RDError`.
enum ECounterError : int {
  CounterUnknownAccount = 1001,
  CounterNotLoggedIn = 1002,
  CounterDatabaseUnusable = 1003,  ///< the database could not be opened; every request fails so
  CounterSqlFailed = 1004,         ///< the message holds the SQL text and the database's complaint
  CounterSimulated = 1005,         ///< a failure that `failEvery` asked for
  CounterRequestRefused = 1006,    ///< the request, or an entry of it, asks for what the broker does not do
};

}  // namespace counter
