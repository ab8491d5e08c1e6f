#pragma once

#include "counter/CBookLoader.h"
#include "rdservice/CAccountInfo.h"
#include "rdservice/CInternedText.h"
#include "rdservice/field_text.h"

#include <atomic>
#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>

namespace counter {

/// What the files of a book being loaded know of each other. One thread.
class CBookContext {
 public:
  /// `giveUp` may become true on another thread.
  CBookContext(QDate today, const std::atomic<bool>& giveUp);

  void addError(const std::string& file, int line, int column, std::string message);
  CBookResult& result() { return m_result; }
  const rdservice::CParseContext& parsing() const { return m_parsing; }
  bool isGivenUp() const { return m_giveUp; }

  /// Remembers an account or instrument, for the records that refer to it.
  void addReferent(const rdservice::IDataPtr& record);
  /// Some records of the type could not be read: a record that refers to an unknown one may be right.
  void setIncomplete(int typeId) { m_incomplete.insert(typeId); }
  bool isIncomplete(int typeId) const { return m_incomplete.count(typeId) != 0; }

  /// Null when the book has no such account.
  rdservice::CAccountInfoPtr account(std::string_view accountId) const;
  /// The security's name, null when the book has no such instrument.
  const rdservice::CInternedText* instrumentName(const std::string& stockKey) const;

  /// The next generated position string of the account, in rising order.
  std::string nextPosition(const std::string& kind, const rdservice::CAccountInfo& account);

 private:
  const std::atomic<bool>& m_giveUp;
  CBookResult m_result;
  rdservice::CParseContext m_parsing;
  std::unordered_map<std::string, rdservice::CAccountInfoPtr> m_accounts;   ///< by account id
  std::unordered_map<std::string, rdservice::CInternedText> m_instruments;  ///< name by stock key
  std::unordered_map<std::string, std::int64_t> m_positions;                ///< last one given, by kind and account
  std::set<int> m_incomplete;                                               ///< record types
};

}  // namespace counter
