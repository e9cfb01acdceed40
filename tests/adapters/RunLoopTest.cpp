#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

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

TEST(VirtualRunLoop, AThousandStepsOfATenthAreAThousandTicks) {
  VirtualRunLoop loop;
  int ticks = 0;
  double last = 0;
  loop.scheduleTimer(0.1, [&] {
    ++ticks;
    last = loop.now();
  });
  for (int step = 1; step <= 1000; ++step) {
    loop.advance(0.1);
    ASSERT_EQ(ticks, step);
  }
  EXPECT_NEAR(last, 1000 * 0.1, 1e-9);
}

TEST(VirtualRunLoop, TimersKeepToMultiplesOfTheirInterval) {
  VirtualRunLoop loop;
  std::vector<double> times;
  loop.scheduleTimer(0.1, [&] { times.push_back(loop.now()); });
  loop.runUntil(36000);
  ASSERT_EQ(times.size(), 360000U);
  for (std::size_t n = 1; n <= times.size(); ++n) {
    ASSERT_EQ(times[n - 1], static_cast<double>(n) * 0.1);
  }
}

// Milliseconds of steady time that pass while `body` runs.
template <class Body>
double milliseconds(Body body) {
  const auto begin = Clock::now();
  body();
  return std::chrono::duration<double, std::milli>(Clock::now() - begin).count();
}

TEST(MainRunLoop, ALateTimerSkipsWhatItMissedAndKeepsItsPhase) {
  MainRunLoop loop;
  const auto begin = Clock::now();
  std::vector<double> times;  // in intervals
  loop.scheduleTimer(0.05, [&] {
    times.push_back(std::chrono::duration<double>(Clock::now() - begin).count() / 0.05);
    if (times.size() == 2) std::this_thread::sleep_for(130ms);  // past 3 and 4
    if (times.size() == 4) loop.stop();
  });
  loop.run();
  ASSERT_EQ(times.size(), 4U);
  // On a busy machine a call comes late, never early. Two calls were missed: one comes late, the
  // other never.
  EXPECT_GE(times[0], 1.0);
  EXPECT_GE(times[1], 2.0);
  EXPECT_GE(times[2], 4.6);
  EXPECT_GE(times[3], 5.0);
}

TEST(MainRunLoop, CallsFromOtherThreadsWakeItAndComeInOrder) {
  MainRunLoop loop;
  std::vector<int> calls;
  std::thread other;
  loop.dispatchAsync([&] {
    other = std::thread([&] {
      std::this_thread::sleep_for(20ms);
      for (int i = 0; i < 100; ++i) loop.dispatchAsync([&calls, i] { calls.push_back(i); });
      loop.dispatchAsync([&] { loop.stop(); });
    });
  });
  loop.run();
  other.join();
  ASSERT_EQ(calls.size(), 100U);
  for (int i = 0; i < 100; ++i) EXPECT_EQ(calls[static_cast<std::size_t>(i)], i);
}

TEST(MainRunLoop, ASignalEndsItAndAnErrorPassesThrough) {
  MainRunLoop loop;
  loop.dispatchAsync([] { throw std::runtime_error("no more"); });
  EXPECT_THROW(loop.run(), std::runtime_error);

  const StopSignal stop;
  EXPECT_FALSE(stop.raised());
  EXPECT_FALSE(stop.waitUntil(Clock::now() + 5ms));
  loop.performAfterDelay(0.02, [] { std::raise(SIGTERM); });
  loop.performAfterDelay(30, [] { FAIL() << "the signal was not seen"; });
  EXPECT_LT(milliseconds([&] { loop.run(stop.descriptor()); }), 20000);
  EXPECT_TRUE(stop.raised());
  EXPECT_LT(milliseconds([&] { EXPECT_TRUE(stop.waitUntil(Clock::now() + 30s)); }), 20000);
}

}  // namespace
}  // namespace endpin
