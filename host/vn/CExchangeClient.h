#pragma once

#include "host_api.h"
#include "rdservice/CInstrumentInfo.h"

#include <QString>

#include <vector>

namespace VN {

/// The securities that the client knows. Any thread.
class HOST_API CExchangeClient {
 public:
  /// By stock key, or by code alone: then the first exchange that lists it, by its id. Null when unknown.
  static rdservice::CInstrumentInfoPtr getInstrument(const QString& code);

  /// At most `most` securities for what a user has typed so far: those whose code, pinyin initials or name begin with
  /// it, then those that contain it, each in order of their code. Case does not matter.
  static std::vector<rdservice::CInstrumentInfoPtr> findInstruments(const QString& typed, int most);
};

}  // namespace VN
