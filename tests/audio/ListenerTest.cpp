#include "audio/LumoListener.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <thread>
#include <vector>

#include "tests/fakes/FakePlatform.h"
#include "tests/support/Tone.h"

namespace endpin {
namespace {

using Lines = std::vector<std::string>;

class ListenerTest : public ::testing::Test {
 protected:
  ListenerTest() { LumoListener::usePorts({fake_.input, fake_.session, fake_.log}); }
  ~ListenerTest() override { LumoListener::releaseSharedListener(); }

  static LumoListener& listener() { return *LumoListener::sharedListener(); }
  fakes::FakeInputQueue& queue() { return *fake_.input.queue; }

  static std::vector<std::int16_t> block(double hertz) {
    return testing::toS16(testing::bowedTone(7019.5, 4096 / 7019.5, hertz));
  }
  bool hear(double hertz) { return queue().deliver(block(hertz)); }

  fakes::FakePlatform fake_;
};

TEST_F(ListenerTest, OneInstanceHoweverManyThreadsAskFirst) {
  std::vector<LumoListener*> seen(4);
  std::vector<std::thread> threads;
  for (auto& slot : seen) threads.emplace_back([&slot] { slot = LumoListener::sharedListener(); });
  for (auto& thread : threads) thread.join();
  for (const auto* instance : seen) EXPECT_EQ(instance, &listener());
  EXPECT_EQ(LumoListener::allocWithZone(), nullptr);
  EXPECT_EQ(listener().copyWithZone(), &listener());
}

TEST_F(ListenerTest, ConfiguresTheSessionAndLogsItsFailures) {
  const struct {
    AudioSession::Error category, active;
    Lines calls, told;
  } rows[] = {
      {{}, {}, {"playback 0", "record 8", "active", "inactive"}, {}},
      {{}, "busy", {"playback 0", "record 8", "active", "inactive"}, {"busy", "busy"}},
      {"none", {}, {"playback 0", "inactive"}, {"init Error setting category: none"}},
  };
  for (const auto& row : rows) {
    fake_.session.categoryError = row.category;
    fake_.session.activeError = row.active;
    fake_.session.calls.clear();
    fake_.log.lines.clear();
    listener();
    LumoListener::releaseSharedListener();
    EXPECT_EQ(fake_.session.calls, row.calls);
    EXPECT_EQ(fake_.log.lines, row.told);
  }
}

TEST_F(ListenerTest, ListensOnceHoweverOftenItIsToldAndAnewAfterItStopped) {
  listener().stop();
  listener().listen();
  listener().listen();
  EXPECT_EQ(fake_.input.queuesMade, 1);
  EXPECT_EQ(queue().starts, 2);
  EXPECT_EQ(queue().queued.size(), 3U);
  EXPECT_EQ(queue().metering, 1U);
  EXPECT_EQ(fake_.log.count("AudioQueueSetProperty error: 0"), 1);
  EXPECT_EQ(fake_.input.format.mSampleRate, 7019.5);
  listener().stop();
  EXPECT_FALSE(listener().isListening());
  listener().listen();
  EXPECT_EQ(fake_.input.queuesMade, 2);
  EXPECT_TRUE(listener().isListening());
}

TEST_F(ListenerTest, AnswersNothingWithoutAQueueOrABlock) {
  fake_.input.works = false;
  listener().listen();
  EXPECT_FALSE(listener().isListening());
  EXPECT_EQ(listener().frequency(), 0.0F);
  EXPECT_EQ(listener().averagePower(), 0.0F);

  fake_.input.works = true;
  listener().listen();
  queue().level = {0.25F, 0.5F};
  EXPECT_EQ(listener().frequency(), 0.0F);
  EXPECT_EQ(listener().averagePower(), 0.25F);
  EXPECT_EQ(listener().peakPower(), 0.5F);
  queue().runningStatus = -50;
  EXPECT_EQ(listener().averagePower(), 0.0F) << "a failed query reads as not running";
}

TEST_F(ListenerTest, KeepsTheNewestBlockAndLosesTheBuffersOfAPause) {
  listener().listen();
  ASSERT_TRUE(hear(146.8));
  EXPECT_EQ(queue().queued.size(), 3U) << "the buffer went back";
  EXPECT_NEAR(listener().frequency(), 146.8, 0.22);
  ASSERT_TRUE(hear(98));
  listener().pause();
  EXPECT_FALSE(listener().isListening());
  ASSERT_TRUE(hear(220));
  EXPECT_EQ(queue().queued.size(), 2U);
  EXPECT_NEAR(listener().frequency(), 98, 0.22) << "the dropped block was not copied";
  listener().pause();
  EXPECT_EQ(queue().stops, 1) << "pausing a paused listener does nothing";
  listener().listen();
  ASSERT_TRUE(hear(220));
  EXPECT_NEAR(listener().frequency(), 220, 0.22);
}

// A mark left in the spectrum stays where a block was not estimated again.
TEST_F(ListenerTest, EstimatesABlockOnceUnlessSomethingElseWasEstimatedSince) {
  const auto marked = [](bool anew) {
    constexpr double kMark = -1.0;
    listener().freq_db()[16383] = kMark;
    const float frequency = listener().frequency();
    EXPECT_EQ(listener().freq_db()[16383] != kMark, anew);
    return frequency;
  };
  const auto early = block(98);
  listener().setAudioBuffer(early.data(), 8192);
  EXPECT_EQ(listener().frequency(), 0.0F) << "no rate yet";
  listener().listen();
  EXPECT_NEAR(marked(true), 98, 0.22) << "the queue brought the rate";

  ASSERT_TRUE(hear(146.8));
  const float first = marked(true);
  for (int tick = 0; tick < 5; ++tick) EXPECT_EQ(marked(false), first);
  const auto other = block(220);
  EXPECT_NEAR(listener().getFreqFromBuffer(other.data(), 8192), 220, 0.22);
  EXPECT_EQ(marked(true), first) << "the spectrum is that of the newest block again";
  listener().setAudioBuffer(other.data(), 8192);
  EXPECT_NEAR(marked(true), 220, 0.22);
  listener().setAudioBuffer(other.data(), 0);
  EXPECT_EQ(marked(false), 0.0F);
}

// The blocks that the capture thread swaps in are constants: a mixture of two, or more than the
// 4096 samples of one, would show in the mean.
TEST_F(ListenerTest, CaptureAndFrequencyNeverMixBlocks) {
  listener().listen();
  std::atomic<bool> done = false;
  std::atomic<int> delivered = 0;
  const std::vector<std::int16_t> high(4096, 16000);
  const std::vector<std::int16_t> low(4096, 4000);
  std::thread capture([&] {
    for (; !done; ++delivered) queue().deliver(delivered % 2 == 0 ? high : low);
  });
  while (delivered < 2) std::this_thread::yield();
  for (int i = 0; i < 50; ++i) {
    listener().frequency();
    const double mean = listener().freq_db()[0] * 16384 / 4096;
    EXPECT_TRUE(std::abs(mean - 16000) < 1 || std::abs(mean - 4000) < 1) << mean;
  }
  done = true;
  capture.join();
}

}  // namespace
}  // namespace endpin
