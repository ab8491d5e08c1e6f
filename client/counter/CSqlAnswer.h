#pragma once

#include "bson/BSONObj.h"
#include "rdservice/IData.h"
#include "utils/RDError.h"

#include <vector>

namespace counter {

/// What a request is answered with.
struct CSqlAnswer {
  utils::RDError error;
  std::vector<rdservice::IDataPtr> records;
  bson::BSONObj extra{};
};

/// The answer to a request that may change records, and those that it changed. No record stands in both.
struct CWriteAnswer {
  CSqlAnswer answer;
  std::vector<rdservice::IDataPtr> changed{};
};

}  // namespace counter
