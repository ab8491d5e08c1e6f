#pragma once

#include "gw/controls.h"
#include "host_api.h"

#include <memory>

namespace VN {

/// A button that locks itself for a while after a click, counting the seconds down in its text. GUI thread.
///
/// The click is delivered first, the lock follows. While locked the button looks disabled but still delivers its
/// clicks: `isLocked` is a state for the owner to read.
class HOST_API CCountDownButton : public GW::CSmallNoNormalButton {
  Q_OBJECT
 public:
  CCountDownButton(int id, const QString& text, QWidget* parent);
  ~CCountDownButton() override;

  /// Seconds that a click locks the button for; 0 never locks. Starts at 0.
  void setTimeInterval(int seconds);
  bool isLocked() const;
  /// Ends a running count-down.
  void unlock();

 private:
  struct Private;
  std::unique_ptr<Private> m_d;
};

}  // namespace VN
