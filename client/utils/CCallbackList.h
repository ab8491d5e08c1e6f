#pragma once

#include "utils/CCallGate.h"

#include "utils/CLogCenter.h"
#include "utils/CMutex.h"
#include "utils/CSubscription.h"

#include <algorithm>
#include <exception>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace utils {

/// Callbacks of one service event. Any thread may add, call and drop, also from inside a callback; no lock is held
/// while a callback runs. Handles may outlive the list, and a callback may destroy it.
///
/// Dropping a handle keeps the promise of CSubscription: afterwards no call runs on another thread and none comes.
/// Two callbacks that run at once must therefore not drop each other's handle.
template <class... Args>
class CCallbackList {
 public:
  using CFunction = std::function<void(Args...)>;

  CCallbackList() : m_state(std::make_shared<CState>()) {}
  CCallbackList(const CCallbackList&) = delete;
  CCallbackList& operator=(const CCallbackList&) = delete;

  /// `function` is called from now on, and freed when the handle is dropped.
  [[nodiscard]] CSubscriptionPtr add(CFunction function) {
    auto entry = std::make_shared<CEntry>(std::move(function));
    m_state->add(entry);
    return std::make_shared<CHandle>(m_state, std::move(entry));
  }

  /// Calls every callback added so far, in that order, on this thread. What one of them throws is logged and keeps
  /// nobody else from being called.
  void call(Args... arguments) const {
    const auto entries = m_state->entries();
    for (const auto& entry : *entries) entry->call(arguments...);
  }

 private:
  class CEntry {
   public:
    explicit CEntry(CFunction function) : m_function(std::move(function)) {}

    template <class... A>
    void call(A&... arguments) {
      if (!m_gate.enter()) return;
      try {
        m_function(arguments...);
      } catch (const std::exception& e) {
        logError({"CCallbackList.h", "utils::CCallbackList::call"}, "a callback failed: {0}", e.what());
      } catch (...) {
        logError({"CCallbackList.h", "utils::CCallbackList::call"}, "a callback failed");
      }
      m_gate.leave();
    }

    /// A function that drops itself is freed with the entry, when the call has ended.
    void drop() {
      if (m_gate.close()) m_function = nullptr;
    }

   private:
    CCallGate m_gate;
    CFunction m_function;
  };

  using CEntries = std::vector<std::shared_ptr<CEntry>>;

  class CState {
   public:
    void add(const std::shared_ptr<CEntry>& entry) {
      CMutexLock lock(m_mutex);
      auto entries = std::make_shared<CEntries>(*m_entries);
      entries->push_back(entry);
      m_entries = std::move(entries);
    }
    void remove(const std::shared_ptr<CEntry>& entry) {
      CMutexLock lock(m_mutex);
      auto entries = std::make_shared<CEntries>(*m_entries);
      entries->erase(std::remove(entries->begin(), entries->end(), entry), entries->end());
      m_entries = std::move(entries);
    }
    std::shared_ptr<const CEntries> entries() const {
      CMutexLock lock(m_mutex);
      return m_entries;
    }

   private:
    mutable CMutex m_mutex;
    std::shared_ptr<const CEntries> m_entries TS_GUARDED_BY(m_mutex) = std::make_shared<CEntries>();
  };

  class CHandle : public CSubscription {
   public:
    CHandle(std::weak_ptr<CState> state, std::shared_ptr<CEntry> entry)
        : m_state(std::move(state)), m_entry(std::move(entry)) {}
    ~CHandle() override {
      m_entry->drop();
      if (const auto state = m_state.lock()) state->remove(m_entry);
    }

   private:
    std::weak_ptr<CState> m_state;
    std::shared_ptr<CEntry> m_entry;
  };

  std::shared_ptr<CState> m_state;
};

}  // namespace utils
