#include <gtest/gtest.h>

#include <QEventLoop>
#include <QTest>
#include <chrono>
#include <thread>

#include "adapters/qt/QtRunLoop.h"
#include "app/DeviceChoice.h"

namespace endpin {
namespace {

using Clock = std::chrono::steady_clock;

TEST(QtRunLoop, TimersOfOneIntervalWakeTogether) {
  constexpr int kTimers = 100;
  QtRunLoop loop;
  QEventLoop events;  // the test's own waiting looks only now and then
  int calls = 0;
  int wakeUps = 0;
  Clock::time_point last;
  const auto fire = [&] {
    const auto now = Clock::now();
    if (++calls == 3 * kTimers) events.quit();
    wakeUps += now - last > std::chrono::microseconds(500);
    last = now;
  };
  for (int timer = 0; timer < kTimers; ++timer) {
    loop.scheduleTimer(0.3, fire);
    std::this_thread::sleep_for(std::chrono::milliseconds(3));
  }
  events.exec();
  EXPECT_LT(wakeUps, kTimers);
}

TEST(QtRunLoop, CallsComeInTheOrderOfTheirDueTimesAndOnTheMainThread) {
  QtRunLoop loop;
  std::string order, handedOver;
  loop.performAfterDelay(0.03, [&] { order += 'b'; });
  loop.performAfterDelay(-1, [&] {
    order += 'a';
    loop.performAfterDelay(0.05, [&] { order += 'c'; });
  });
  std::thread([&] {
    for (const char name : {'x', 'y', 'z'}) loop.dispatchAsync([&, name] { handedOver += name; });
  }).join();
  EXPECT_EQ(handedOver, "") << "called on the wrong thread";
  QTest::qWait(10);
  std::this_thread::sleep_for(std::chrono::milliseconds(60));
  QTest::qWait(100);
  EXPECT_EQ(order, "abc");
  EXPECT_EQ(handedOver, "xyz");
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
