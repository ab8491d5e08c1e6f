#include "counter/record_kinds.h"

#include "rdservice/CAccountInfo.h"
#include "rdservice/CInstrumentInfo.h"
#include "rdservice/CPositionStatics.h"
#include "rdservice/CPriceData.h"
#include "rdservice/CStkClosedCompacts.h"
#include "rdservice/CStkCompactChange.h"
#include "rdservice/CStkOrder.h"
#include "rdservice/CStkUnClosedCompacts.h"
#include "rdservice/CStkUnClosedCompactsStatics.h"
#include "rdservice/StockSMTQueryAppointmentInfoResp.h"

#include <boost/make_shared.hpp>

#include <algorithm>

namespace counter {

namespace {

using rdservice::CAccountInfo;
using rdservice::CInstrumentInfo;
using rdservice::CPositionStatics;
using rdservice::CPriceData;
using rdservice::CStkClosedCompacts;
using rdservice::CStkCompactChange;
using rdservice::CStkOrder;
using rdservice::CStkUnClosedCompacts;
using rdservice::CStkUnClosedCompactsStatics;
using rdservice::StockSMTQueryAppointmentInfoResp;

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
       EBookFile::Needed},
      {CInstrumentInfo::structDes(),
       makeRecord<CInstrumentInfo>,
       {"exchange", "code"},
       {"exchange", "code", "name"},
       nullptr,
       false,
       EBookFile::Needed},
      {CStkUnClosedCompacts::structDes(),
       makeRecord<CStkUnClosedCompacts>,
       {"account", "open_date", "compact_no", "exchange", "code"},
       {"account", "exchange", "code", "compact_type", "compact_no", "open_date"},
       "position_string",
       true,
       EBookFile::Needed},
      {CStkClosedCompacts::structDes(),
       makeRecord<CStkClosedCompacts>,
       {"account", "open_date", "compact_no", "exchange", "code"},
       {"account", "exchange", "code", "compact_type", "compact_no", "open_date", "close_date"},
       "position_string",
       true,
       EBookFile::Optional},
      {CStkCompactChange::structDes(),
       makeRecord<CStkCompactChange>,
       {"account", "change_date", "serial_no"},
       {"account", "exchange", "code", "compact_type", "compact_no", "open_date", "change_date", "change_kind",
        "serial_no"},
       nullptr,
       true,
       EBookFile::Optional},
      {CPositionStatics::structDes(),
       makeRecord<CPositionStatics>,
       {"account", "exchange", "code", "direction", "hedge_flag"},
       {"account", "exchange", "code", "current_volume", "available_volume"},
       nullptr,
       true,
       EBookFile::Optional},
      {CPriceData::structDes(),
       makeRecord<CPriceData>,
       {"exchange", "code"},
       {"exchange", "code", "last_price"},
       nullptr,
       true,
       EBookFile::Optional},
      {CStkOrder::structDes(),
       makeRecord<CStkOrder>,
       {"account", "order_date", "order_id"},
       {},
       nullptr,
       true,
       EBookFile::None},
      {StockSMTQueryAppointmentInfoResp::structDes(),
       makeRecord<StockSMTQueryAppointmentInfoResp>,
       {"account", "open_date", "compact_no", "exchange", "code"},
       {"account", "exchange", "code", "compact_type", "compact_no", "open_date", "expiry_date"},
       nullptr,
       true,
       EBookFile::Optional},
  };
  return s_kinds;
}

const CRecordKind& statisticsKind() {
  static const CRecordKind s_kind = {CStkUnClosedCompactsStatics::structDes(),
                                     makeRecord<CStkUnClosedCompactsStatics>,
                                     {"exchange", "code", "compact_type", "source", "account"},
                                     {},
                                     nullptr,
                                     true,
                                     EBookFile::None};
  return s_kind;
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
