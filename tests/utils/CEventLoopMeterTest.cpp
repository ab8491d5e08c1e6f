#include "utils/CEventLoopMeter.h"

#include <gtest/gtest.h>

#include <QEventLoop>
#include <QTimer>

namespace {

TEST(CEventLoopMeter, NoticesALoopThatStandsStill) {
  constexpr int STILL_MS = 60;
  utils::CEventLoopMeter meter(5, nullptr);
  QEventLoop loop;
  QTimer::singleShot(0, [] {
    QElapsedTimer still;
    still.start();
    while (still.elapsed() < STILL_MS) {
    }
  });
  QTimer::singleShot(STILL_MS + 30, &loop, &QEventLoop::quit);
  loop.exec();
  EXPECT_GE(meter.longestGap(), STILL_MS - 10);
  EXPECT_GE(meter.missedFrames(), (STILL_MS - 10) / utils::CEventLoopMeter::FRAME_MS);
  meter.reset();
  EXPECT_EQ(meter.longestGap(), 0);
  EXPECT_EQ(meter.missedFrames(), 0);
}

}  // namespace
