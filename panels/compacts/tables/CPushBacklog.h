#pragma once

#include "compacts/push_load.h"
#include "rdservice/IData.h"
#include "utils/CMutex.h"

#include <cstddef>
#include <string>
#include <unordered_map>
#include <vector>

namespace VN {

/// Pushed compacts that wait for the strand: of several of one key only the newest, so that the number of compacts
/// bounds them, however many are pushed. Any thread.
///
/// What is left out makes no difference to the rows. A table tests pushes for their compact type, and those that came
/// with a reply for their account too: a newer push stands for an older one only where the same tests decide on both. A
/// compact thus waits at most twice for each type that it has had meanwhile.
class CPushBacklog {
 public:
  /// True when nothing waited before: somebody has to come and take it.
  bool add(rdservice::IDataPtr record);

  /// Takes everything that waits, in the order in which each key came first.
  std::vector<rdservice::IDataPtr> take();

  CPushLoad takeLoad();

 private:
  utils::CMutex m_mutex;
  std::vector<rdservice::IDataPtr> m_records TS_GUARDED_BY(m_mutex);
  std::unordered_map<std::string, std::size_t> m_places TS_GUARDED_BY(m_mutex);  ///< in `m_records`
  CPushLoad m_load TS_GUARDED_BY(m_mutex);
};

}  // namespace VN
