#include "CPlanMaker.h"

#include "CTestTable.h"

#include "rdservice/CDataVersion.h"

#include <limits>

namespace {

constexpr const char* NAMES[] = {"浦发银行", "安徽建工", "重庆啤酒", "长江电力", "ST中安",
                                 "贵州茅台", "",         "Apple",    "apple"};
constexpr double AMOUNTS[] = {0.0, -0.0, 1.5, -1234.5, 9.0, 10.0, 1e9};
constexpr std::int64_t VOLUMES[] = {
    0, 9, 10, 100, -100, std::numeric_limits<std::int64_t>::max(), std::numeric_limits<std::int64_t>::min()};

}  // namespace

std::string CPlanMaker::key() { return "k" + std::to_string(below(40)); }

CTestRecordPtr CPlanMaker::record() {
  auto record = boost::make_shared<CTestRecord>();
  record->id = key();
  record->group = static_cast<char>('0' + below(3));
  record->name = NAMES[below(static_cast<int>(std::size(NAMES)))];
  record->volume = VOLUMES[below(static_cast<int>(std::size(VOLUMES)))];
  record->amount = AMOUNTS[below(static_cast<int>(std::size(AMOUNTS)))];
  record->date = 2459000 + below(5);
  record->serial = ++m_serial;
  const int kind = below(4);  // unpublished, older than most, newest, newest
  const std::uint64_t version = kind == 0   ? 0
                                : kind == 1 ? m_version - static_cast<std::uint64_t>(below(100))
                                            : ++m_version;
  rdservice::CDataVersion::stamp(*record, version);
  return record;
}

GW::CItemChange CPlanMaker::item() {
  const int column = CTestTable::ColumnText + below(2);
  if (isOneIn(60)) return {GW::EItemPart::ResetColumn, column, std::string(), QString(), false};
  const auto part = static_cast<GW::EItemPart>(below(4));
  const bool isText = part == GW::EItemPart::Text;
  return {part, column, key(), isText ? QString::number(below(30)) : QString(), !isText && !isOneIn(3)};
}

CBatchPlan CPlanMaker::plan() {
  CBatchPlan plan;
  plan.rule = isOneIn(3) ? GW::ERowRule::Push : GW::ERowRule::Ordinary;
  plan.clearFirst = isOneIn(25);
  if (isOneIn(6)) plan.dropGroup = static_cast<char>('0' + below(3));
  const int records = isOneIn(4) ? below(40) : below(5);
  for (int i = 0; i < records; ++i) plan.records.push_back(record());
  for (int i = below(6); i > 0; --i) plan.items.push_back(item());
  return plan;
}
