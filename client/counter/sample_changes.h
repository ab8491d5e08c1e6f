#pragma once

#include "counter/sample_writing.h"

namespace counter {

struct CSampleSecurity;

/// What other files tell of an unclosed compact of the sample book.
struct CSampleCompact {
  const CSampleSecurity* security;
  bool isLending;
  bool isRenewed;
  std::int64_t number;  ///< of the compact
  std::int64_t age;     ///< days since it was opened
  std::int64_t volume;  ///< shares when it was opened
  std::int64_t open;    ///< shares still owed
  std::int64_t amount;  ///< cents when it was opened
  std::int64_t unpaid;  ///< cents still owed
  bool isSpecial;
  std::int64_t term;      ///< days from opening to expiry
  std::int64_t interest;  ///< cents
};

/// Writes change details: how each compact was opened, repaid and renewed until it owes what it owes now.
class CSampleChanges {
 public:
  CSampleChanges(const QString& path, std::uint32_t seed);

  /// Serial numbers begin anew.
  void beginAccount(const char* account);
  void add(const CSampleCompact& compact);
  std::string finish() { return m_file.finish(); }

 private:
  CSampleFile m_file;
  CSampleRandom m_random;
  const char* m_account = nullptr;
  std::int64_t m_serial = 0;
};

}  // namespace counter
