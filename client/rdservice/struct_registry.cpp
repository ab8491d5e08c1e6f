#include "rdservice/struct_registry.h"

#include "rdservice/CAccountInfo.h"
#include "rdservice/CCreditRepayPriorityResp.h"
#include "rdservice/CInstrumentInfo.h"
#include "rdservice/CPositionStatics.h"
#include "rdservice/CPriceData.h"
#include "rdservice/CStkClosedCompacts.h"
#include "rdservice/CStkCompactChange.h"
#include "rdservice/CStkOrder.h"
#include "rdservice/CStkUnClosedCompacts.h"
#include "rdservice/CStkUnClosedCompactsStatics.h"
#include "rdservice/CStructDes.h"
#include "rdservice/StockSMTQueryAppointmentInfoResp.h"

namespace rdservice {

const CStructDes* structDesOf(int typeId) {
  static const CStructDes* const ALL[] = {
      &CAccountInfo::structDes(),
      &CInstrumentInfo::structDes(),
      &CStkUnClosedCompacts::structDes(),
      &CStkUnClosedCompactsStatics::structDes(),
      &CStkClosedCompacts::structDes(),
      &CStkCompactChange::structDes(),
      &CCreditRepayPriorityResp::structDes(),
      &CPositionStatics::structDes(),
      &CPriceData::structDes(),
      &CStkOrder::structDes(),
      &StockSMTQueryAppointmentInfoResp::structDes(),
  };
  for (const CStructDes* des : ALL) {
    if (des->typeId() == typeId) return des;
  }
  return nullptr;
}

}  // namespace rdservice
