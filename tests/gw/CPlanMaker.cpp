#include "CPlanMaker.h"

#include "CTestTable.h"

#include "rdservice/CDataVersion.h"

#include <iterator>

namespace {

constexpr const char* NAMES[] = {"浦发银行", "安徽建工", "重庆啤酒", "长江电力", "ST中安",
                                 "贵州茅台", "",         "Apple",    "apple"};
constexpr double AMOUNTS[] = {0.0, -0.0, 1.5, -1234.56, 9.1, 10.01, 1e9};
/// Numbers, codes that begin alike, words.
constexpr const char* TEXTS[] = {"", "7", "12", "600", "-3", "contract-01", "contract-1", "contract", "备注", "安全"};
constexpr std::int64_t VOLUMES[] = {0, 9, 10, 100, -100, 900000000000000, -900000000000000};

}  // namespace

std::string CPlanMaker::keyOf(int number) { return (number % 2 == 0 ? "k" : "compact-") + std::to_string(number); }

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
  GW::CItemChange item;
  item.column = CTestTable::ColumnText + below(CTestTable::ColumnEnd - CTestTable::ColumnText);
  if (item.column != CTestTable::ColumnExtra && isOneIn(60)) {
    item.part = GW::EItemPart::ResetColumn;
    return item;
  }
  item.key = key();
  const auto any = static_cast<GW::EItemPart>(below(4));  // text, visible, enabled, checked
  item.part = any;
  if (item.column == CTestTable::ColumnRanked && isOneIn(2)) item.part = GW::EItemPart::Value;
  if (item.column == CTestTable::ColumnExtra) item.part = isOneIn(2) ? GW::EItemPart::Value : GW::EItemPart::Text;
  if (item.part == GW::EItemPart::Text)
    item.text = QString::fromUtf8(TEXTS[below(static_cast<int>(std::size(TEXTS)))]);
  else if (item.part == GW::EItemPart::Value)
    item.value = below(30) * 1000;
  else
    item.on = !isOneIn(3);
  return item;
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
