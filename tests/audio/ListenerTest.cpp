#include "audio/LumoListener.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <numbers>
#include <thread>
#include <vector>

#include "tests/fakes/FakePlatform.h"

namespace endpin {
namespace {

using fakes::FakePlatform;

std::vector<std::int16_t> blockOf(double hertz) {
  std::vector<std::int16_t> samples(4096);
  for (std::size_t n = 0; n < samples.size(); ++n) {
    double sum = 0;
    for (int h = 1; h <= 4; ++h) {
      sum +=
          5000.0 / h * std::sin(2 * std::numbers::pi * hertz * h * static_cast<double>(n) / 7019.5);
    }
    samples[n] = static_cast<std::int16_t>(sum);
  }
  return samples;
}

class ListenerTest : public testing::Test {
 protected:
  ListenerTest() { LumoListener::usePorts({fake_.input, fake_.session, fake_.log}); }
  ~ListenerTest() override { LumoListener::releaseSharedListener(); }

  LumoListener& listener() { return *LumoListener::sharedListener(); }
  fakes::FakeInputQueue& queue() { return *fake_.input.queue; }

  FakePlatform fake_;
};

TEST_F(ListenerTest, IsASingleton) {
  LumoListener* shared = LumoListener::sharedListener();
  EXPECT_EQ(LumoListener::sharedListener(), shared);
  EXPECT_EQ(LumoListener::allocWithZone(), nullptr);
  EXPECT_EQ(shared->copyWithZone(), shared);
}

TEST_F(ListenerTest, ConfiguresTheSessionAndLogsItsFailures) {
  listener();
  EXPECT_EQ(fake_.session.calls, (std::vector<std::string>{"playback 0", "record 8", "active"}));
  EXPECT_TRUE(fake_.log.lines.empty());

  LumoListener::releaseSharedListener();
  fake_.session.calls.clear();
  fake_.session.activeError = "busy";
  listener();
  LumoListener::releaseSharedListener();
  EXPECT_EQ(fake_.log.lines, (std::vector<std::string>{"busy", "busy"})) << "on and off";

  fake_.session.calls.clear();
  fake_.log.lines.clear();
  fake_.session.categoryError = "no such category";
  listener();
  EXPECT_EQ(fake_.session.calls, (std::vector<std::string>{"playback 0"}));
  EXPECT_EQ(fake_.log.lines,
            (std::vector<std::string>{"init Error setting category: no such category"}));
}

TEST_F(ListenerTest, ListensOnceHoweverOftenItIsTold) {
  listener().listen();
  listener().listen();
  EXPECT_EQ(fake_.input.queuesMade, 1);
  EXPECT_EQ(queue().starts, 2);
  EXPECT_EQ(queue().allocatedBuffers(), 3U);
  EXPECT_EQ(queue().queuedBuffers(), 3U);
  EXPECT_EQ(queue().metering, 1U);
  EXPECT_EQ(fake_.log.count("AudioQueueSetProperty error: 0"), 1);
  EXPECT_EQ(fake_.input.format.mSampleRate, 7019.5);
  EXPECT_EQ(fake_.input.format.mFormatFlags, 12U);
  EXPECT_EQ(fake_.input.format.mBitsPerChannel, 16U);
}

TEST_F(ListenerTest, AnswersNothingWithoutAQueueOrABlock) {
  EXPECT_EQ(listener().frequency(), 0.0F);
  EXPECT_EQ(listener().averagePower(), 0.0F);
  EXPECT_EQ(listener().levels(), nullptr);
  listener().listen();
  queue().level = {0.25F, 0.5F};
  EXPECT_EQ(listener().frequency(), 0.0F);
  EXPECT_EQ(listener().averagePower(), 0.25F);
  EXPECT_EQ(listener().peakPower(), 0.5F);
  queue().runningStatus = -50;
  EXPECT_FALSE(listener().isListening()) << "a failed query reads as not running";
  EXPECT_EQ(listener().averagePower(), 0.0F);
}

TEST_F(ListenerTest, SurvivesAPlatformWithoutAMicrophone) {
  fake_.input.works = false;
  listener().listen();
  EXPECT_FALSE(listener().isListening());
  EXPECT_EQ(listener().frequency(), 0.0F);
  fake_.input.works = true;
  listener().listen();
  EXPECT_TRUE(listener().isListening());
}

TEST_F(ListenerTest, KeepsTheNewestBlockAndGivesTheBufferBack) {
  listener().listen();
  ASSERT_TRUE(queue().deliver(blockOf(146.8)));
  EXPECT_EQ(queue().queuedBuffers(), 3U);
  EXPECT_NEAR(listener().frequency(), 146.8, 0.22);
  ASSERT_TRUE(queue().deliver(blockOf(98)));
  EXPECT_NEAR(listener().frequency(), 98, 0.22);
}

TEST_F(ListenerTest, DropsBuffersWhilePausedAndLosesThem) {
  listener().listen();
  ASSERT_TRUE(queue().deliver(blockOf(98)));
  listener().pause();
  EXPECT_FALSE(listener().isListening());
  ASSERT_TRUE(queue().deliver(blockOf(220)));
  EXPECT_EQ(queue().queuedBuffers(), 2U);
  EXPECT_NEAR(listener().frequency(), 98, 0.22) << "the dropped block was not copied";
  listener().pause();
  EXPECT_EQ(queue().stops, 1) << "pausing a paused listener does nothing";
  listener().listen();
  ASSERT_TRUE(queue().deliver(blockOf(220)));
  EXPECT_NEAR(listener().frequency(), 220, 0.22);
}

TEST_F(ListenerTest, StopsAndStartsWithANewQueue) {
  listener().stop();
  listener().listen();
  listener().stop();
  EXPECT_FALSE(listener().isListening());
  listener().listen();
  EXPECT_EQ(fake_.input.queuesMade, 2);
  EXPECT_TRUE(listener().isListening());
}

TEST_F(ListenerTest, FillsExactlyTheFirstHalfOfItsMemory) {
  listener().listen();
  const std::vector<std::int16_t> full(4096, 12345);
  listener().setAudioBuffer(full.data(), 8192);
  EXPECT_EQ(listener().frequency(), 0.0F) << "a constant block peaks at bin 0";
  EXPECT_NEAR(listener().freq_db()[0], 12345.0 * 4096 / 16384, 0.01);
}

// Every snapshot is one block, never half of two: the two blocks swapped in by the capture thread
// are constants, so that a mixture would show in the mean.
TEST_F(ListenerTest, CaptureAndFrequencyNeverMixBlocks) {
  listener().listen();
  const std::vector<std::int16_t> high(4096, 16000);
  const std::vector<std::int16_t> low(4096, 4000);
  std::atomic<bool> done = false;
  std::atomic<int> delivered = 0;
  std::thread capture([&] {
    while (!done) {
      queue().deliver(delivered % 2 == 0 ? high : low);
      ++delivered;
    }
  });
  while (delivered == 0) std::this_thread::yield();
  for (int i = 0; i < 50; ++i) {
    listener().frequency();
    const double mean = listener().freq_db()[0] * 16384 / 4096;
    EXPECT_TRUE(std::abs(mean - 16000) < 1 || std::abs(mean - 4000) < 1) << mean;
  }
  done = true;
  capture.join();
  EXPECT_GT(delivered, 1);
}

TEST_F(ListenerTest, OneInstanceHoweverManyThreadsAskFirst) {
  std::vector<LumoListener*> seen(4);
  std::vector<std::thread> threads;
  for (auto& slot : seen) threads.emplace_back([&slot] { slot = LumoListener::sharedListener(); });
  for (auto& thread : threads) thread.join();
  for (const auto* instance : seen) EXPECT_EQ(instance, seen.front());
}

}  // namespace
}  // namespace endpin
