#include "kit/records.h"

#include "gw/CBaseHighPerformanceTable.h"

#include <boost/make_shared.hpp>

namespace kit {

rdservice::CStkUnClosedCompactsPtr compact(const rdservice::CAccountInfoPtr& account, const std::string& number,
                                           double unpaid, char type) {
  const auto record = boost::make_shared<rdservice::CStkUnClosedCompacts>();
  record->accountInfo = account;
  record->exchangeId = "SH";
  record->code = "600000";
  record->name = "浦发银行";
  record->compactType = type;
  record->fieldA = number;
  record->fieldB = 2460000;
  record->unpaidAmount = unpaid;
  return record;
}

rdservice::CStkClosedCompactsPtr closedCompact(const rdservice::CAccountInfoPtr& account, const std::string& number,
                                               double repaid, char type) {
  const auto record = boost::make_shared<rdservice::CStkClosedCompacts>();
  record->accountInfo = account;
  record->exchangeId = "SH";
  record->code = "600000";
  record->name = "浦发银行";
  record->compactType = type;
  record->fieldA = number;
  record->fieldB = 2460000;
  record->repaidAmount = repaid;
  return record;
}

int columnOf(const GW::CBaseHighPerformanceTable& table, const std::string& title) {
  int id = table.columnCount() - 1;
  while (id >= 0 && table.columnTitle(id).toStdString() != title) --id;
  return id;
}

std::vector<std::string> visible(const GW::CBaseHighPerformanceTable& table, const std::vector<std::string>& titles) {
  std::vector<int> columns;
  for (const std::string& title : titles)
    for (int id = 0; id < table.columnCount(); ++id)
      if (table.columnTitle(id).toStdString() == title) columns.push_back(id);
  std::vector<std::string> lines;
  for (int row = 0; row < table.rowCount(); ++row) {
    std::string line;
    for (const int column : columns) line += (line.empty() ? "" : " | ") + table.cellText(row, column).toStdString();
    lines.push_back(line);
  }
  return lines;
}

}  // namespace kit
