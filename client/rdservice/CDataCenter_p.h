#pragma once

#include "rdservice/TraderCenter.h"
#include "rdservice/data_centre_factory.h"
#include "utils/CMutex.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <unordered_map>

namespace rdservice {

struct CDataCenter::Private {
  struct CInstruments {
    std::vector<CInstrumentInfoPtr> all;                  ///< in the counter's order
    std::unordered_map<std::string, std::size_t> places;  ///< by stock key
  };

  const CAccountDataPtr marketData = makeAccountData(nullptr);
  mutable utils::CSharedMutex mutex;
  std::map<std::string, CAccountDataPtr> accounts TS_GUARDED_BY(mutex);  ///< by account key
  CInstruments instruments TS_GUARDED_BY(mutex);
  std::uint64_t lastVersion TS_GUARDED_BY(mutex) = 0;  ///< of the instruments
};

}  // namespace rdservice
