// The control thread and the gate before the render callback, without a sound server.
#include "adapters/cubeb/StreamKeeper.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <future>
#include <optional>

#include "adapters/cubeb/RenderGate.h"
#include "tests/fakes/AllocationCounter.h"

namespace endpin {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using Outcome = KeptStream::Outcome;

template <typename Condition>
bool soon(Condition holds, std::chrono::milliseconds limit = 3s) {
  const auto deadline = Clock::now() + limit;
  while (!holds() && Clock::now() < deadline) std::this_thread::sleep_for(1ms);
  return holds();
}

// Does what the test says, and counts.
class DrivenStream : public KeptStream {
 public:
  Outcome open() override {
    ++opens;
    if (hang) hung.get_future().wait();
    return onOpen;
  }
  Outcome check() override {
    ++checks;
    return onCheck.exchange(Outcome::Open);
  }
  void close() override { ++closes; }
  std::chrono::milliseconds interval() const override { return 5ms; }

  std::atomic<Outcome> onOpen = Outcome::Open;
  std::atomic<Outcome> onCheck = Outcome::Open;  // of the next check only
  std::atomic<bool> hang = false;
  std::promise<void> hung;  // fulfilled: the call returns
  std::atomic<int> opens = 0;
  std::atomic<int> checks = 0;
  std::atomic<int> closes = 0;
};

class StreamKeeperTest : public testing::Test {
 protected:
  const std::shared_ptr<DrivenStream> stream_ = std::make_shared<DrivenStream>();
  std::optional<StreamKeeper> keeper_{std::in_place, stream_};
};

TEST_F(StreamKeeperTest, OpensWhenAskedChecksAndCloses) {
  std::this_thread::sleep_for(20ms);
  EXPECT_EQ(stream_->opens, 0) << "nobody asked";
  keeper_->open();
  keeper_->open();
  EXPECT_TRUE(keeper_->wanted());
  EXPECT_TRUE(soon([&] { return stream_->checks > 3; }));
  EXPECT_EQ(stream_->opens, 1);
  keeper_->close();
  EXPECT_TRUE(soon([&] { return stream_->closes == 1; }));
  keeper_->open();
  EXPECT_TRUE(soon([&] { return stream_->opens == 2; }));
  keeper_.reset();
  EXPECT_EQ(stream_->closes, 2) << "the destructor closes";
}

TEST_F(StreamKeeperTest, TriesAgainUntilItOpensAndOpensWhatFailedAtOnce) {
  stream_->onOpen = Outcome::Missing;
  const auto begin = Clock::now();
  keeper_->open();
  EXPECT_TRUE(soon([&] { return stream_->opens == 3; }));
  EXPECT_GE(Clock::now() - begin, 950ms) << "half a second between two tries";
  EXPECT_EQ(stream_->checks, 0);
  stream_->onOpen = Outcome::Open;
  EXPECT_TRUE(soon([&] { return stream_->checks > 0; }));
  const int opens = stream_->opens;
  stream_->onCheck = Outcome::Missing;
  EXPECT_TRUE(soon([&] { return stream_->opens == opens + 1; }, 400ms));
  EXPECT_EQ(stream_->closes, 0);
}

TEST_F(StreamKeeperTest, ForgetsWhatIsFinished) {
  for (const bool atOnce : {false, true}) {
    const int closes = stream_->closes;
    stream_->onOpen = atOnce ? Outcome::Finished : Outcome::Open;
    stream_->onCheck = Outcome::Finished;
    keeper_->open();
    EXPECT_TRUE(soon([&] { return stream_->closes == closes + 1; }));
    EXPECT_FALSE(keeper_->wanted());
  }
  EXPECT_EQ(stream_->opens, 2);
}

TEST_F(StreamKeeperTest, LeavesALibraryThatHangsToItself) {
  stream_->hang = true;
  const auto begin = Clock::now();
  keeper_->open();
  EXPECT_TRUE(soon([&] { return stream_->opens == 1; }));
  keeper_->close();
  keeper_->open();
  keeper_.reset();
  EXPECT_LT(Clock::now() - begin, 1500ms);
  EXPECT_EQ(stream_->closes, 0);
  stream_->hung.set_value();
  EXPECT_TRUE(soon([&] { return stream_->closes == 1; })) << "what opens later is closed";
  EXPECT_TRUE(soon([&] { return stream_.use_count() == 1; })) << "the control thread has ended";
}

// Counts its calls, and writes a full-scale frame to each place.
std::int32_t renderOnes(void* userData, std::uint32_t frames,
                        std::span<AudioOutputBuffer> buffers) {
  ++*static_cast<int*>(userData);
  for (std::uint32_t i = 0; i < frames; ++i) buffers[0].mData[i] = 0x7fff7fff;
  return 0;
}

TEST(RenderGateTest, PassesOnOnlyWhatShallBeHeardAndAllocatesNothing) {
  int calls = 0;
  RenderGate gate(renderOnes, &calls);
  std::array<std::uint32_t, 65> words{};
  const auto filled = [&] {
    words.fill(1);
    EXPECT_EQ(gate.fill(words.data(), 64), 64U);
    EXPECT_EQ(words[63], words[0]);
    EXPECT_EQ(words[64], 1U) << "beyond the end";
    return words[0];
  };
  const std::size_t before = fakes::allocationCount();
  EXPECT_EQ(filled(), 0U) << "muted at first";
  gate.mute(false);
  EXPECT_EQ(filled(), 0x7fff7fffU);
  gate.mute(true);
  EXPECT_EQ(filled(), 0U);
  gate.mute(false);
  gate.shut();
  EXPECT_EQ(filled(), 0U);
  EXPECT_EQ(fakes::allocationCount(), before);
  EXPECT_EQ(calls, 1);
}

TEST(RenderGateTest, ShutsWhileTheAudioThreadRuns) {
  for (int round = 0; round < 200; ++round) {
    // Plain memory that goes right after the gate is shut: a sanitizer sees who comes too late.
    auto calls = std::make_unique<int>(0);
    RenderGate gate(renderOnes, calls.get());
    gate.mute(false);
    std::atomic<bool> quit = false;
    std::atomic<int> rounds = 0;
    std::thread audio([&] {
      std::array<std::uint32_t, 64> words{};
      for (; !quit; ++rounds) gate.fill(words.data(), 64);
    });
    EXPECT_TRUE(soon([&] { return rounds > 10; }));
    gate.shut();
    const int last = *calls;
    EXPECT_GT(last, 10);
    const int passed = rounds;
    EXPECT_TRUE(soon([&] { return rounds > passed + 10; }));
    EXPECT_EQ(*calls, last);
    calls.reset();
    quit = true;
    audio.join();
  }
}

}  // namespace
}  // namespace endpin
