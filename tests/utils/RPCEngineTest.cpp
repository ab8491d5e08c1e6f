#include "CLogCapture.h"

#include "net/engine_factory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <memory>
#include <stdexcept>
#include <thread>
#include <vector>

using testing::ElementsAre;

namespace {

void waitFor(net::CStrand& strand) {
  std::promise<void> reached;
  strand.post([&reached] { reached.set_value(); });
  reached.get_future().wait();
}

}  // namespace

TEST(RPCEngine, StrandRunsInOrderOneAtATime) {
  const auto engine = net::makeRPCEngine(4);
  EXPECT_EQ(net::RPCEngine::instance(), engine.get());
  constexpr int POSTERS = 3;
  constexpr int TASKS = 400;
  const auto strand = engine->getStrand("a");
  const auto other = engine->getStrand("b");
  EXPECT_EQ(strand, engine->getStrand("a"));
  EXPECT_NE(strand, other);
  EXPECT_FALSE(strand->isCurrent());

  std::vector<std::vector<int>> seen(POSTERS);  // unguarded: the strand orders it
  std::vector<std::thread> posters;
  int wrong = 0;
  for (int p = 0; p < POSTERS; ++p)
    posters.emplace_back([&, p] {
      for (int i = 0; i < TASKS; ++i)
        strand->post([&, p, i] {
          seen[static_cast<std::size_t>(p)].push_back(i);
          if (!strand->isCurrent() || other->isCurrent()) ++wrong;
        });
    });
  for (auto& poster : posters) poster.join();
  // What a task holds goes on the strand too.
  strand->post([held = std::shared_ptr<int>(new int(0), [&](const int* p) {
                  delete p;
                  if (!strand->isCurrent()) ++wrong;
                })] {});
  waitFor(*strand);
  EXPECT_EQ(wrong, 0);
  std::vector<int> expected;
  for (int i = 0; i < TASKS; ++i) expected.push_back(i);
  for (const auto& numbers : seen) EXPECT_EQ(numbers, expected);
}

TEST(RPCEngine, StrandsRunBesideEachOtherAndPastFailures) {
  CLogCapture log;
  const auto engine = net::makeRPCEngine(2);
  const auto a = engine->getStrand("a");
  const auto b = engine->getStrand("b");
  a->post([] { throw std::runtime_error("bad day"); });
  a->post([] { throw 5; });
  a->post([&] { waitFor(*b); });  // needs a second thread
  waitFor(*a);
  const std::string line = "40000 CSerialQueue.cpp a task failed";
  EXPECT_THAT(log.take(), ElementsAre(line + ": bad day", line));
}

TEST(RPCEngine, StopFreesWhatIsQueuedWithoutRunningIt) {
  auto engine = net::makeRPCEngine(1);
  const auto busy = engine->getStrand("busy");
  const auto queued = engine->getStrand("queued");
  std::promise<void> entered;
  std::promise<void> mayLeave;
  std::atomic<bool> left{false};
  std::atomic<int> ran{0};
  const auto token = std::make_shared<int>(0);
  busy->post([&] {
    entered.set_value();
    mayLeave.get_future().wait();
    EXPECT_TRUE(busy->isCurrent());
    busy->post([&ran, token] { ++ran; });
    left = true;
  });
  entered.get_future().wait();
  // A task's end may post again, also when it never ran.
  const std::shared_ptr<int> posting(new int(0), [&](const int* p) {
    delete p;
    queued->post([&ran] { ++ran; });
  });
  for (int i = 0; i < 20; ++i) queued->post([&ran, token, end = posting] { ++ran; });

  std::thread stopper([&] {
    net::stopEngine(*engine);
    EXPECT_TRUE(left);
  });
  // Only a post to a closed strand frees the task before it returns: the one thread is busy.
  for (auto probe = std::make_shared<int>(0);; std::this_thread::yield()) {
    queued->post([&ran, probe] { ++ran; });
    if (probe.use_count() == 1) break;
    probe = std::make_shared<int>(0);
  }
  mayLeave.set_value();
  stopper.join();
  EXPECT_EQ(ran, 0);
  EXPECT_EQ(token.use_count(), 1);
  EXPECT_EQ(posting.use_count(), 1);

  net::stopEngine(*engine);
  engine->getStrand("late")->post([&ran, token] { ++ran; });
  engine.reset();
  EXPECT_EQ(net::RPCEngine::instance(), nullptr);
  queued->post([&ran, token] { ++ran; });
  EXPECT_FALSE(queued->isCurrent());
  EXPECT_EQ(token.use_count(), 1);
  EXPECT_EQ(ran, 0);
}
