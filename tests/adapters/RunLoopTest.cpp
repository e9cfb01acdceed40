#include <gtest/gtest.h>

#include <csignal>
#include <stdexcept>
#include <thread>

#include "adapters/offline/TimerQueue.h"
#include "adapters/offline/VirtualRunLoop.h"
#include "adapters/posix/MainRunLoop.h"
#include "adapters/posix/StopSignal.h"

namespace endpin {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

TEST(VirtualRunLoop, FiresInOrderOfDueTimeAndThenOfAsking) {
  VirtualRunLoop loop;
  std::string fired;
  loop.scheduleTimer(0.5, [&] { fired += 'T'; });
  loop.performAfterDelay(1.0, [&] { fired += 'b'; });
  loop.performAfterDelay(0.7, [&] {
    fired += 'a';
    loop.performAfterDelay(0.1, [&] { fired += '+'; });
    loop.dispatchAsync([&] { fired += 'd'; });
  });
  loop.performAfterDelay(1.0, [&] { fired += 'c'; });
  loop.scheduleTimer(0.25, [&] { fired += '.'; });
  loop.runUntil(1.0);
  EXPECT_EQ(fired, ".T.ad.+Tbc.");
  EXPECT_EQ(loop.now(), 1.0);
}

TEST(VirtualRunLoop, TimersKeepToMultiplesOfTheirIntervalInStepsAndForHours) {
  VirtualRunLoop loop;
  std::vector<double> times;
  loop.scheduleTimer(0.1, [&] { times.push_back(loop.now()); });
  for (std::size_t step = 1; step <= 1000; ++step) {
    loop.advance(0.1);
    ASSERT_EQ(times.size(), step);
  }
  loop.runUntil(36000);
  ASSERT_EQ(times.size(), 360000U);
  for (std::size_t n = 1; n <= times.size(); ++n) {
    ASSERT_NEAR(times[n - 1], static_cast<double>(n) * 0.1, n <= 1000 ? 1e-9 : 0.0);
  }
}

// Two calls are missed: one comes late, the other never.
TEST(TimerQueue, ALateTimerSkipsWhatItMissedAndKeepsItsPhase) {
  TimerQueue queue;
  queue.addTimer(100.0, 0.5, [] {});
  std::vector<double> dues;
  for (const double now : {100.5, 101.0, 102.25, 102.5, 103.0}) {
    dues.push_back(queue.nextDue());
    queue.take(now);
  }
  EXPECT_EQ(dues, (std::vector{100.5, 101.0, 101.5, 102.5, 103.0}));
}

TEST(MainRunLoop, CallsFromOtherThreadsWakeItAndComeInOrder) {
  MainRunLoop loop;
  std::string calls;
  std::thread other;
  loop.dispatchAsync([&] {
    other = std::thread([&] {
      std::this_thread::sleep_for(20ms);
      for (const char name : {'x', 'y', 'z'}) loop.dispatchAsync([&, name] { calls += name; });
      loop.dispatchAsync([&] { loop.stop(); });
    });
  });
  loop.run();
  other.join();
  EXPECT_EQ(calls, "xyz");
}

TEST(MainRunLoop, ASignalEndsItAndAnErrorPassesThrough) {
  MainRunLoop loop;
  loop.dispatchAsync([] { throw std::runtime_error("no more"); });
  EXPECT_THROW(loop.run(), std::runtime_error);

  const StopSignal stop;
  EXPECT_FALSE(stop.raised());
  EXPECT_FALSE(stop.waitUntil(Clock::now() + 5ms));
  const auto begin = Clock::now();
  loop.performAfterDelay(0.02, [] { std::raise(SIGTERM); });
  loop.performAfterDelay(30, [] { FAIL() << "the signal was not seen"; });
  loop.run(stop.descriptor());
  EXPECT_TRUE(stop.raised());
  EXPECT_TRUE(stop.waitUntil(Clock::now() + 30s));
  EXPECT_LT(Clock::now() - begin, 20s);
}

}  // namespace
}  // namespace endpin
