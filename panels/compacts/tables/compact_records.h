#pragma once

#include "rdservice/CAccountData.h"
#include "rdservice/CPositionStatics.h"
#include "rdservice/CStkUnClosedCompacts.h"
#include "utils/CLogCenter.h"

#include <map>
#include <string>
#include <vector>

namespace VN {

/// The account's part of the data centre; null for an unknown account. Any thread.
rdservice::CAccountDataPtr accountDataOf(const std::string& account);

/// The account of an unclosed or closed compact; null for any other record.
rdservice::CAccountInfoPtr accountInfoOf(const rdservice::IData& record);
/// 0 without an account.
int counterTypeOf(const rdservice::IData& record);

/// The type of an unclosed or closed compact; `CompactTypeAll` for any other record.
int compactTypeOf(const rdservice::IData& record);
/// Whether an unclosed or closed compact is of that type; any is when it is `CompactTypeAll`.
bool isOfType(const rdservice::IData& record, int compactType);

/// What the account holds of a security to return or to repay with; null when it holds none. Any thread.
rdservice::CPositionStaticsPtr positionOf(const rdservice::CAccountDataPtr& store, const std::string& exchangeId,
                                          const std::string& code);

/// Whether the counter lets compacts be renewed by a number of days, and knows no repayment by double click.
bool isRenewalCounter(int counterType);

/// Writes the priorities of a counter's answer into the account's stored compacts, whose modify tag becomes `modifyTag`
/// (null: stays), and returns the compacts as they are stored now. `labels`: stock key by field A. Any thread.
std::vector<rdservice::IDataPtr> storePriorities(const std::string& account,
                                                 const std::vector<rdservice::IDataPtr>& responses,
                                                 const std::map<std::string, std::string>& labels,
                                                 const char* modifyTag);

/// The records of a page counted from 1; a page behind the last one is empty.
std::vector<rdservice::IDataPtr> pageOf(const std::vector<rdservice::IDataPtr>& records, int page, int pageSize);

/// Location and texts of the lines that a reply handler writes.
struct CReplyText {
  utils::CLogSite site;
  const char* stale;
  const char* success;
  const char* failure;
};

constexpr CReplyText unclosedReplyText(utils::CLogSite site) {
  return {
      site, "[unclosed compact] acc changed, data acc = {0}, current acc = {1}, data compact = {2}, cur compact = {3}.",
      "[unclosed compact] query success, acc {0} datas {1}", "[unclosed compact] query fail : acc = {0}, errmsg = {1}"};
}

constexpr CReplyText closedReplyText(utils::CLogSite site) {
  return {site,
          "[closed compatc] acc changed : data acc = {0}, current acc = {1}, data compact = {2}, cur compact = {3}.",
          "[closed compact] query success : data acc = {0}, data size = {1}.",
          "[closed compact] fail : acc = {0}, errmsg = {1}."};
}

}  // namespace VN
