#include "audio/CaptureQueue.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <functional>
#include <thread>

#include "tests/fakes/AllocationCounter.h"

namespace endpin {
namespace {

// Keeps what it is given, and gives the buffers back unless told otherwise.
struct CaptureQueueTest : ::testing::Test {
  CaptureQueue queue{heard, this};
  std::vector<AudioInputBuffer*> filled;
  std::vector<std::int16_t> firsts;  // first sample of each block
  bool givesBack = true;
  std::atomic<int> inCallback = 0;
  std::atomic<int> callbacks = 0;

  CaptureQueueTest() {
    for (int i = 0; i < 3; ++i) {
      AudioInputBuffer* buffer = nullptr;
      EXPECT_EQ(queue.allocateBuffer(8192, &buffer), 0);
      EXPECT_EQ(queue.enqueueBuffer(buffer), 0);
    }
  }
  static void heard(void* test, AudioInputQueue* from, AudioInputBuffer* buffer) {
    auto& self = *static_cast<CaptureQueueTest*>(test);
    ++self.inCallback;
    self.filled.push_back(buffer);
    self.firsts.push_back(buffer->mAudioData[0]);
    if (self.givesBack) from->enqueueBuffer(buffer);
    ++self.callbacks;
    --self.inCallback;
  }
  void deliver(std::size_t count, std::int16_t value) {
    queue.deliver(std::vector<std::int16_t>(count, value));
  }
  bool running() const {
    std::uint32_t answer = 7;
    EXPECT_EQ(queue.isRunning(answer), 0);
    return answer == 1;
  }
  LevelMeterState level() const {
    LevelMeterState state;
    EXPECT_EQ(queue.currentLevelMeter(&state, sizeof state), 0);
    return state;
  }
};

TEST_F(CaptureQueueTest, BuffersCirculateInOrderAndABlockWithoutOneIsLost) {
  queue.start();
  for (std::int16_t k = 0; k < 10; ++k) {
    givesBack = k < 5;
    deliver(4096, k);
  }
  ASSERT_EQ(firsts, (std::vector<std::int16_t>{0, 1, 2, 3, 4, 5, 6, 7}));
  EXPECT_EQ(filled[1], filled[4]);
  EXPECT_EQ(filled[0]->mAudioDataByteSize, 8192U);
  EXPECT_EQ(queue.lostBlocks(), 2U);
  ASSERT_EQ(queue.enqueueBuffer(filled[0]), 0);
  deliver(4096, 10);
  EXPECT_EQ(firsts.back(), 10) << "the newest sound, not the lost one";
}

TEST_F(CaptureQueueTest, AllocatesNothingPerBuffer) {
  filled.reserve(1000);
  firsts.reserve(1000);
  queue.start();
  const std::vector<std::int16_t> burst(1500, 9);
  const std::size_t before = fakes::allocationCount();
  for (int i = 0; i < 1000; ++i) queue.deliver(burst);
  EXPECT_EQ(fakes::allocationCount(), before);
  EXPECT_EQ(filled.size(), 1000 * 1500 / 4096);
}

TEST_F(CaptureQueueTest, RunsWhileStartedAndDelivered) {
  const struct {
    const char* what;
    std::function<void()> happens;
    bool running;
    std::vector<std::int16_t> firsts;  // so far
  } rows[] = {
      {"not started", [&] { deliver(5000, 1); }, false, {}},
      {"started", [&] { queue.start(); }, true, {}},
      {"lost in the midst", [&] { deliver(4000, 1), queue.deviceLost(); }, false, {}},
      {"back, without what was before", [&] { deliver(4095, 2); }, true, {}},
      {"a block", [&] { deliver(1, 2); }, true, {2}},
      {"to stop after a block", [&] { deliver(100, 3), queue.stop(false); }, true, {2}},
      {"after it", [&] { deliver(8192, 3); }, false, {2, 3}},
      {"cut short", [&] { queue.start(), deliver(100, 4), queue.stop(true); }, false, {2, 3}},
      {"no block to end", [&] { queue.start(), queue.stop(false); }, false, {2, 3}},
      {"started anew", [&] { queue.start(), deliver(4095, 5); }, true, {2, 3}},
  };
  for (const auto& row : rows) {
    row.happens();
    EXPECT_EQ(running(), row.running) << row.what;
    EXPECT_EQ(firsts, row.firsts) << row.what;
  }
}

TEST_F(CaptureQueueTest, TheLevelIsOfTheLast702SamplesAndForgottenWithTheDevice) {
  queue.start();
  deliver(700, 16384);
  EXPECT_EQ(level().mAveragePower, 0.0F) << "not switched on";
  queue.enableLevelMetering(1);
  EXPECT_EQ(level().mAveragePower, 0.5F);
  deliver(351, -32768);
  EXPECT_FLOAT_EQ(level().mAveragePower, std::sqrt(0.625F));
  EXPECT_EQ(level().mPeakPower, 1.0F);
  deliver(702, 8);
  EXPECT_EQ(level().mPeakPower, 8 / 32768.0F);
  std::vector<std::int16_t> burst(9000, 8);
  std::fill(burst.end() - 702, burst.end(), 16384);
  queue.deliver(burst);
  EXPECT_EQ(level().mAveragePower, 0.5F);
  queue.deviceLost();
  EXPECT_EQ(level().mAveragePower, 0.0F);
}

TEST_F(CaptureQueueTest, ForeignAndQueuedBuffersAreRefused) {
  AudioInputBuffer foreign;
  AudioInputBuffer* buffer = &foreign;
  EXPECT_NE(queue.enqueueBuffer(&foreign), 0);
  EXPECT_NE(queue.enqueueBuffer(nullptr), 0);
  ASSERT_EQ(queue.allocateBuffer(8192, &buffer), 0);
  EXPECT_EQ(queue.enqueueBuffer(buffer), 0);
  EXPECT_NE(queue.enqueueBuffer(buffer), 0) << "it is queued already";
  EXPECT_NE(queue.allocateBuffer(8190, &buffer), 0);
  EXPECT_EQ(buffer, nullptr);
}

// The device comes and goes on one thread while the other starts, stops and asks: no buffer may get
// lost, and none may be filled after stop() has returned.
TEST_F(CaptureQueueTest, NoBufferIsLostBetweenTwoThreads) {
  queue.enableLevelMetering(1);
  std::atomic<bool> done = false;
  std::thread device([&] {
    const std::vector<std::int16_t> burst(1500, 9);
    for (int i = 0; !done; ++i) {
      queue.deliver(burst);
      if (i % 50 == 49) queue.deviceLost();
    }
  });
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
  while (callbacks < 1000 && std::chrono::steady_clock::now() < deadline) {
    queue.start();
    std::this_thread::yield();
    EXPECT_LE(level().mPeakPower, 1.0F);
    queue.stop(true);
    EXPECT_EQ(inCallback, 0);
    EXPECT_FALSE(running());
  }
  done = true;
  device.join();
  EXPECT_GE(callbacks, 1000);
  const std::size_t before = filled.size();
  queue.start();
  givesBack = false;
  deliver(5 * 4096, 1);
  EXPECT_EQ(filled.size() - before, 3U);
}

}  // namespace
}  // namespace endpin
