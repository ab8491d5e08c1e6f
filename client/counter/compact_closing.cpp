#include "counter/compact_closing.h"

#include "counter/CSqlConnection.h"
#include "counter/CSqlTable.h"
#include "counter/record_kinds.h"
#include "counter/sql_rows.h"
#include "rdservice/CStkClosedCompacts.h"
#include "rdservice/CStkUnClosedCompacts.h"
#include "rdservice/rdservice_enums.h"

#include <QSqlQuery>
#include <QVariant>

#include <boost/make_shared.hpp>

#include <algorithm>

namespace counter {

namespace {

using rdservice::CAccountInfoPtr;
using rdservice::CStkClosedCompacts;
using rdservice::CStkClosedCompactsPtr;
using rdservice::CStkUnClosedCompacts;
using rdservice::CStkUnClosedCompactsPtr;

constexpr const char* FIRST_POSITION = "0000000001";

/// A text that sorts behind `last`: its number and one when it ends in one that can still grow.
std::string positionAfter(std::string last) {
  const auto isNine = [](char c) { return c == '9'; };
  const auto digit = std::find_if_not(last.rbegin(), last.rend(), isNine);
  if (digit == last.rend() || *digit < '0' || *digit > '8') return last + FIRST_POSITION;
  ++*digit;
  std::fill(last.rbegin(), digit, '0');
  return last;
}

/// Runs a statement and stands on its first row; false with an `error` when it failed, without when it gave none.
bool runToRow(QSqlQuery& query, const QString& statement, const std::vector<QVariant>& values, std::string& error) {
  bool ok = query.prepare(statement);
  for (const auto& value : values) query.addBindValue(value);
  ok = ok && query.exec();
  if (!ok) error = sqlErrorText(query);
  return ok && query.next();
}

/// An unclosed compact's key as an SQL term. Its columns all stand in the table's key, which finds a row by it.
QString keyTerm() {
  // The parts in the order of CStkUnClosedCompacts::genKey.
  QString key;
  for (const char* part : {"account", "exchange", "code", "open_date", "compact_no"})
    key += (key.isEmpty() ? QString() : QStringLiteral(" || '____' || ")) + CSqlTable::column(part);
  return key;
}

/// Row number of the account's unclosed compact with the key; 0 with an `error` when there is none.
qlonglong findRow(const CSqlConnection& connection, const CRecordKind& kind, const std::string& accountKey,
                  const std::string& compactKey, std::string& error) {
  auto query = connection.makeQuery();
  if (runToRow(query,
               QStringLiteral("SELECT rowid FROM %1 WHERE %2 = ? AND %3 = ?")
                   .arg(CSqlTable::column(kind.des.name()), CSqlTable::column(kind.accountField()->name), keyTerm()),
               {QString::fromStdString(accountKey), QString::fromStdString(compactKey)}, error))
    return query.value(0).toLongLong();
  if (error.empty()) error = "the account has no such unclosed compact";
  return 0;
}

CStkUnClosedCompactsPtr takeRow(const CSqlConnection& connection, const CRecordKind& kind, qlonglong row,
                                const CAccountInfoPtr& account, std::string& error) {
  const CSqlTable table(kind);
  const auto condition = QStringLiteral(" WHERE rowid = ?");
  auto compact = boost::make_shared<CStkUnClosedCompacts>();
  auto query = connection.makeQuery();
  if (runToRow(query, table.selectStatement() + condition, {row}, error)) table.read(query, *compact, account);
  query.finish();
  if (error.empty())
    runToRow(query, QStringLiteral("DELETE FROM %1").arg(CSqlTable::column(kind.des.name())) + condition, {row}, error);
  return compact;
}

/// A closed compact cannot be renewed any more.
void dropAppointment(const CSqlConnection& connection, const CStkUnClosedCompacts& compact, std::string& error) {
  const auto& kind = *recordKind(rdservice::RecordStockSMTQueryAppointmentInfoResp);
  auto query = connection.makeQuery();
  const auto row =
      ofCompact(compact.accountInfo->getKey(), compact.exchangeId, compact.code, compact.fieldB, compact.fieldA);
  runToRow(query, QStringLiteral("DELETE FROM %1 ").arg(CSqlTable::column(kind.des.name())) + row.condition, row.values,
           error);
}

std::string nextPosition(const CSqlConnection& connection, const CRecordKind& kind, const std::string& accountKey,
                         std::string& error) {
  auto query = connection.makeQuery();
  const bool found = runToRow(query,
                              QStringLiteral("SELECT max(%1) FROM %2 WHERE %3 = ?")
                                  .arg(CSqlTable::column(kind.position), CSqlTable::column(kind.des.name()),
                                       CSqlTable::column(kind.accountField()->name)),
                              {QString::fromStdString(accountKey)}, error);
  return positionAfter(found ? query.value(0).toString().toStdString() : std::string());
}

/// What was owed has been paid. The volume is that of the shares settled last.
CStkClosedCompactsPtr closedOf(const CStkUnClosedCompacts& compact, std::int32_t closeDate) {
  auto closed = boost::make_shared<CStkClosedCompacts>();
  closed->accountInfo = compact.accountInfo;
  closed->exchangeId = compact.exchangeId;
  closed->code = compact.code;
  closed->name = compact.name;
  closed->compactType = compact.compactType;
  closed->source = compact.source;
  closed->fieldA = compact.fieldA;
  closed->fieldB = compact.fieldB;
  closed->closeDate = closeDate;
  closed->repayPriority = compact.repayPriority;
  closed->volume = compact.financingVolume + compact.lendingVolume;
  closed->compactAmount = compact.compactAmount;
  closed->repaidAmount = compact.repaidAmount + compact.unpaidAmount;
  closed->interestAmount = compact.interestAmount + compact.penaltyAmount;
  closed->feeAmount = compact.feeAmount;
  return closed;
}

void settle(CStkUnClosedCompacts& compact) {
  compact.repaidAmount += compact.unpaidAmount;
  compact.financingVolume = compact.lendingVolume = 0;
  compact.unpaidAmount = compact.interestAmount = compact.feeAmount = 0;
  compact.penaltyAmount = compact.equityCompensation = 0;
}

}  // namespace

std::vector<std::string> firstCompacts(const CSqlConnection& connection, const std::string& accountKey, int count,
                                       std::string& error) {
  const auto& kind = *recordKind(rdservice::RecordStkUnClosedCompacts);
  const auto statement = QStringLiteral("SELECT %1 FROM %2 WHERE %3 = ? ORDER BY %4 LIMIT ?")
                             .arg(keyTerm(), CSqlTable::column(kind.des.name()),
                                  CSqlTable::column(kind.accountField()->name), CSqlTable::column(kind.position));
  std::vector<std::string> keys;
  auto query = connection.makeQuery();
  bool found = runToRow(query, statement, {QString::fromStdString(accountKey), std::max(count, 0)}, error);
  for (; found; found = query.next()) keys.push_back(query.value(0).toString().toStdString());
  return keys;
}

std::vector<rdservice::IDataPtr> moveToClosed(const CSqlConnection& connection, const CAccountInfoPtr& account,
                                              const std::string& compactKey, std::int32_t closeDate,
                                              std::string& error) {
  const auto& unclosedKind = *recordKind(rdservice::RecordStkUnClosedCompacts);
  const auto& closedKind = *recordKind(rdservice::RecordStkClosedCompacts);
  const auto accountKey = account->getKey();
  const auto row = findRow(connection, unclosedKind, accountKey, compactKey, error);
  if (!error.empty()) return {};
  const auto compact = takeRow(connection, unclosedKind, row, account, error);
  if (!error.empty()) return {};
  dropAppointment(connection, *compact, error);
  if (!error.empty()) return {};
  const auto closed = closedOf(*compact, closeDate);
  closed->positionString = nextPosition(connection, closedKind, accountKey, error);
  if (!error.empty()) return {};
  const CSqlTable table(closedKind);
  auto query = connection.makeQuery();
  const bool prepared = query.prepare(table.upsertStatement());
  if (prepared) table.bind(query, *closed);
  if (!prepared || !query.exec()) {
    error = sqlErrorText(query);
    return {};
  }
  settle(*compact);
  return {compact, closed};
}

}  // namespace counter
