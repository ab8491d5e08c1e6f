#pragma once

#include <QObject>

namespace kit {

/// Counts the emissions of a signal that other threads emit too: they reach the count through the event loop.
/// (QSignalSpy is called on the emitting thread.)
class CSignalCount : public QObject {
 public:
  template <class Sender, class Signal>
  CSignalCount(const Sender* sender, Signal signal) {
    connect(sender, signal, this, [this] { ++m_count; });
  }

  int count() const { return m_count; }

 private:
  int m_count = 0;
};

}  // namespace kit
