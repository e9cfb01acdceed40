#include <gtest/gtest.h>

#include <QTest>
#include <algorithm>
#include <chrono>
#include <cmath>
#include <thread>

#include "adapters/qt/QtRunLoop.h"
#include "app/DeviceChoice.h"

namespace endpin {
namespace {

using Clock = std::chrono::steady_clock;

TEST(QtRunLoop, TimersKeepTheirPhaseAndSkipWhatTheyMissed) {
  constexpr double kInterval = 0.05;
  QtRunLoop loop;
  const auto begin = Clock::now();
  double last = 0;  // interval that a call came in
  double smallestLateness = kInterval;
  int calls = 0;
  loop.scheduleTimer(kInterval, [&] {
    const double time = std::chrono::duration<double>(Clock::now() - begin).count();
    const double interval = std::floor(time / kInterval);
    EXPECT_GT(interval, last) << "two calls for one time";
    last = interval;
    // The calls due at 0.15 and 0.20 come late, at 0.235.
    if (++calls == 2) std::this_thread::sleep_until(begin + std::chrono::milliseconds(235));
    if (calls > 3) smallestLateness = std::min(smallestLateness, time - interval * kInterval);
  });
  QTest::qWait(600);
  EXPECT_GE(calls, 5);
  // A busy machine adds lateness here and there; a lost phase would add it everywhere.
  EXPECT_LT(smallestLateness, 0.02);
}

TEST(QtRunLoop, TimersOfOneIntervalWakeTogether) {
  constexpr int kTimers = 100;
  QtRunLoop loop;
  int calls = 0;
  int wakeUps = 0;
  Clock::time_point last;
  const auto fire = [&] {
    const auto now = Clock::now();
    ++calls;
    wakeUps += now - last > std::chrono::microseconds(500);
    last = now;
  };
  for (int timer = 0; timer < kTimers; ++timer) {
    loop.scheduleTimer(0.3, fire);
    std::this_thread::sleep_for(std::chrono::milliseconds(3));
  }
  EXPECT_TRUE(QTest::qWaitFor([&] { return calls >= 3 * kTimers; }));
  EXPECT_LT(wakeUps, kTimers);
}

TEST(QtRunLoop, CallsComeInTheOrderOfTheirDueTimesAndOnTheMainThread) {
  QtRunLoop loop;
  std::string order;
  std::vector<int> handedOver;
  const auto note = [&](char name) { return [&order, name] { order += name; }; };
  loop.performAfterDelay(0.03, note('c'));
  loop.performAfterDelay(0.01, note('b'));
  loop.performAfterDelay(-1, [&] {
    order += 'a';
    loop.performAfterDelay(0.05, note('d'));
  });
  std::thread([&] {
    for (int i = 0; i < 100; ++i) loop.dispatchAsync([&, i] { handedOver.push_back(i); });
  }).join();
  EXPECT_TRUE(handedOver.empty()) << "called on the wrong thread";
  QTest::qWait(10);
  std::this_thread::sleep_for(std::chrono::milliseconds(60));
  QTest::qWait(100);
  EXPECT_EQ(order, "abcd");
  EXPECT_EQ(handedOver.size(), 100U);
  EXPECT_TRUE(std::ranges::is_sorted(handedOver));
}

TEST(DeviceChoice, DevicesAreCalledByIdiomAndHeight) {
  for (const DeviceModel& model : kDeviceTable) {
    EXPECT_EQ(deviceNamed(nameOf(model))->width, model.width) << nameOf(model);
  }
  EXPECT_EQ(deviceNamed("phone:667")->width, 375);
  for (const char* unknown : {"phone:700", "tablet:667", "phone", "phone:667.0", ""}) {
    EXPECT_FALSE(deviceNamed(unknown)) << unknown;
  }
}

TEST(DeviceChoice, SmallScreensGetTheNearestLayout) {
  const struct {
    double width, height;
    bool touch;
    const char* device;
  } rows[] = {
      {390, 844, true, "phone:844"},    {360, 720, true, "phone:812"},
      {320, 480, false, "phone:480"},   {480, 320, true, "phone:480"},
      {499, 900, false, "phone:736"},   {500, 900, false, "desktop"},
      {800, 1280, true, "tablet:1133"}, {1100, 1366, true, "tablet:1366"},
      {1101, 1366, true, "desktop"},    {1366, 768, true, "desktop"},
      {800, 800, true, "desktop"},      {768, 1024, false, "desktop"},
      {0, 0, true, "desktop"},          {853, 480, false, "desktop"},  // a laptop's, at 225 %
  };
  for (const auto& row : rows) {
    const auto model = deviceForScreen(row.width, row.height, row.touch);
    EXPECT_EQ(model ? nameOf(*model) : "desktop", row.device) << row.width << " x " << row.height;
  }
  EXPECT_EQ(nameOf(desktopDevice()), "phone:844");
}

}  // namespace
}  // namespace endpin
