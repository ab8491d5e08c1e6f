#include "CLogCapture.h"

#include "utils/CCallbackList.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <memory>
#include <optional>
#include <stdexcept>
#include <thread>

using testing::ElementsAre;
using utils::CCallbackList;
using utils::CSubscriptionPtr;

TEST(CCallbackList, CallsInOrderPastFailuresAndFreesOnDrop) {
  CLogCapture log;
  std::optional<CCallbackList<int>> list(std::in_place);
  std::vector<int> seen;
  const auto token = std::make_shared<int>(0);
  auto first = list->add([&seen, token](int n) { seen.push_back(n); });
  const auto failing = list->add([](int) { throw std::runtime_error("bad day"); });
  const auto failingOddly = list->add([](int) { throw 5; });
  CSubscriptionPtr added;
  const auto adding = list->add([&](int n) {
    if (!added) added = list->add([&seen](int m) { seen.push_back(m * 100); });
    seen.push_back(n * 10);
  });
  list->call(1);
  list->call(2);
  EXPECT_THAT(seen, ElementsAre(1, 10, 2, 20, 200));
  EXPECT_EQ(log.take()[0], "40000 CCallbackList.h a callback failed: bad day");

  const auto dropping = list->add([&](int) {
    first.reset();
    EXPECT_EQ(token.use_count(), 1);  // freed at once, though the list is being walked
  });
  list->call(3);
  list->call(4);
  EXPECT_THAT(seen, ElementsAre(1, 10, 2, 20, 200, 3, 30, 300, 40, 400));
  list.reset();  // the other handles outlive it
}

TEST(CCallbackList, CallbackMayDropItselfNestedAndDestroyTheList) {
  auto list = std::make_unique<CCallbackList<int>>();
  const auto token = std::make_shared<int>(0);
  int calls = 0;
  CSubscriptionPtr self = list->add([&, token](int depth) {
    ++calls;
    if (depth > 0) return list->call(depth - 1);
    self.reset();
    EXPECT_EQ(token.use_count(), 2);  // still inside: not freed yet
    list->call(0);
    list.reset();
  });
  list->call(3);
  EXPECT_EQ(calls, 4);
  EXPECT_EQ(token.use_count(), 1);
}

TEST(CCallbackList, DropWaitsForOtherThreadsWhichMayCallAgain) {
  CCallbackList<bool> list;
  std::promise<void> entered;
  std::promise<void> mayLeave;
  std::atomic<int> probes{0};
  std::atomic<bool> left{false};
  std::atomic<bool> dropped{false};
  auto handle = list.add([&](bool isProbe) {
    ++probes;
    if (isProbe) return;
    entered.set_value();
    mayLeave.get_future().wait();
    list.call(true);  // closed by now: neither called nor a deadlock
    EXPECT_FALSE(dropped);
    left = true;
  });
  std::thread caller([&] { list.call(false); });
  entered.get_future().wait();
  std::thread dropper([&] {
    handle.reset();
    EXPECT_TRUE(left);
    dropped = true;
  });
  for (int before = -1; before != probes;) {  // until a call does not get through any more
    before = probes;
    list.call(true);
  }
  const int calls = probes;
  mayLeave.set_value();
  caller.join();
  dropper.join();
  list.call(true);
  EXPECT_EQ(probes, calls);
}

TEST(CCallbackList, NothingIsCalledAfterItsHandleIsGone) {
  CCallbackList<int> list;
  std::atomic<bool> done{false};
  std::atomic<int> calls{0};
  std::vector<std::thread> callers;
  for (int t = 0; t < 2; ++t)
    callers.emplace_back([&] {
      while (!done) list.call(1);
    });
  std::vector<std::thread> subscribers;
  for (int t = 0; t < 2; ++t)
    subscribers.emplace_back([&] {
      for (int i = 0; i < 300; ++i) {
        auto target = std::make_unique<int>(0);  // unguarded: the handle alone keeps calls away from it
        std::promise<void> called;
        utils::CMutex mutex;
        auto handle = list.add([&, raw = target.get()](int n) {
          utils::CMutexLock lock(mutex);
          if (*raw == 0) called.set_value();
          *raw += n;
        });
        called.get_future().wait();
        handle.reset();
        calls += *target;
        target.reset();
      }
    });
  for (auto& thread : subscribers) thread.join();
  done = true;
  for (auto& thread : callers) thread.join();
  EXPECT_GE(calls, 600);
}
