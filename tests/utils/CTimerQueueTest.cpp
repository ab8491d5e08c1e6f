#include "CLogCapture.h"

#include "net/CTimerQueue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <stdexcept>
#include <thread>
#include <vector>

using namespace std::chrono_literals;
using testing::ElementsAre;

TEST(CTimerQueue, RunsByDueTimePastFailuresAndCancellations) {
  CLogCapture log;
  net::CTimerQueue timers;
  std::promise<void> mayLeave;
  std::promise<void> finished;
  std::vector<std::string> seen;
  const auto note = [&seen](const char* name) { return [&seen, name] { seen.emplace_back(name); }; };
  // While the thread is held, functions become due in the past, in an order of their own.
  std::promise<void> entered;
  const auto running = timers.after(0ms, [&] {
    entered.set_value();
    mayLeave.get_future().wait();
  });
  entered.get_future().wait();
  timers.after(-1h, note("1h ago"));
  timers.after(-3h, note("3h ago"));
  const auto cancelled = timers.after(-2h, note("cancelled"));
  timers.after(-3h, [] { throw std::runtime_error("bad day"); });
  timers.after(-2h, note("2h ago"));
  const auto far = timers.after(1h, note("far"));
  const auto begin = std::chrono::steady_clock::now();
  timers.after(20ms, [&] {
    EXPECT_GE(std::chrono::steady_clock::now() - begin, 20ms);
    finished.set_value();
  });
  EXPECT_TRUE(timers.cancel(cancelled));
  EXPECT_FALSE(timers.cancel(cancelled));
  EXPECT_FALSE(timers.cancel(running));
  EXPECT_FALSE(timers.cancel(0));
  mayLeave.set_value();
  finished.get_future().wait();
  EXPECT_TRUE(timers.cancel(far));
  timers.stop();
  EXPECT_THAT(seen, ElementsAre("3h ago", "2h ago", "1h ago"));
  EXPECT_THAT(log.take(), ElementsAre("40000 CTimerQueue.cpp a timed function failed: bad day"));
}

TEST(CTimerQueue, StopWaitsForWhatRunsAndFreesTheRest) {
  net::CTimerQueue timers;
  const auto token = std::make_shared<int>(0);
  std::promise<void> entered;
  std::promise<void> mayLeave;
  std::atomic<bool> left{false};
  timers.after(0ms, [&] {
    entered.set_value();
    mayLeave.get_future().wait();
    left = true;
  });
  entered.get_future().wait();
  for (const auto delay : {-1000ms, 0ms, 1000000ms}) timers.after(delay, [token] { *token += 1; });
  std::thread stopper([&] {
    timers.stop();
    EXPECT_TRUE(left);
  });
  while (token.use_count() > 1) std::this_thread::yield();  // freed before what runs has ended
  EXPECT_FALSE(left);
  mayLeave.set_value();
  stopper.join();
  EXPECT_EQ(timers.after(0ms, [token] { *token += 1; }), 0U);
  EXPECT_EQ(token.use_count(), 1);
  EXPECT_EQ(*token, 0);
}

TEST(CTimerQueue, FunctionMayStopOrDestroyTheQueue) {
  net::CTimerQueue stopped;
  std::promise<void> done;
  bool ranLater = false;
  stopped.after(-1ms, [&] {
    stopped.after(-1h, [&ranLater] { ranLater = true; });
    stopped.stop();
    done.set_value();
  });
  done.get_future().wait();
  stopped.stop();
  EXPECT_FALSE(ranLater);

  auto destroyed = std::make_unique<net::CTimerQueue>();
  std::promise<void> gone;
  destroyed->after(0ms, [&] {
    destroyed.reset();
    gone.set_value();
  });
  gone.get_future().wait();
}
