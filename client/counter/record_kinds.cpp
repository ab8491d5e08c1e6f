#include "counter/record_kinds.h"

#include "rdservice/CAccountInfo.h"
#include "rdservice/CInstrumentInfo.h"
#include "rdservice/CStkClosedCompacts.h"
#include "rdservice/CStkUnClosedCompacts.h"

#include <boost/make_shared.hpp>

#include <algorithm>

namespace counter {

namespace {

using rdservice::CAccountInfo;
using rdservice::CInstrumentInfo;
using rdservice::CStkClosedCompacts;
using rdservice::CStkUnClosedCompacts;

template <class Record>
rdservice::IDataPtr makeRecord() {
  return boost::make_shared<Record>();
}

}  // namespace

const std::vector<CRecordKind>& recordKinds() {
  static const std::vector<CRecordKind> s_kinds = {
      {CAccountInfo::structDes(),
       makeRecord<CAccountInfo>,
       {"account_id"},
       {"account_id", "broker_type", "counter_type"},
       nullptr,
       false,
       false},
      {CInstrumentInfo::structDes(),
       makeRecord<CInstrumentInfo>,
       {"exchange", "code"},
       {"exchange", "code", "name"},
       nullptr,
       false,
       false},
      {CStkUnClosedCompacts::structDes(),
       makeRecord<CStkUnClosedCompacts>,
       {"account", "open_date", "compact_no", "exchange", "code"},
       {"account", "exchange", "code", "compact_type", "compact_no", "open_date"},
       "position_string",
       true,
       false},
      {CStkClosedCompacts::structDes(),
       makeRecord<CStkClosedCompacts>,
       {"account", "open_date", "compact_no", "exchange", "code"},
       {"account", "exchange", "code", "compact_type", "compact_no", "open_date", "close_date"},
       "position_string",
       true,
       true},
  };
  return s_kinds;
}

const CRecordKind* recordKind(int typeId) {
  const auto& kinds = recordKinds();
  const auto found = std::find_if(kinds.begin(), kinds.end(),
                                  [typeId](const CRecordKind& kind) { return kind.des.typeId() == typeId; });
  return found == kinds.end() ? nullptr : &*found;
}

const rdservice::CFieldDes* CRecordKind::accountField() const {
  const auto* const found = std::find_if(
      des.begin(), des.end(), [](const auto& field) { return field.type == rdservice::EFieldType::Account; });
  return found == des.end() ? nullptr : found;
}

}  // namespace counter
