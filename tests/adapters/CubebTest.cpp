// What stands between the sound library and the rest, without a sound server.
#include <gtest/gtest.h>

#include <array>
#include <future>
#include <optional>

#include "adapters/cubeb/InputDevices.h"
#include "adapters/cubeb/RenderGate.h"
#include "adapters/cubeb/SampleRing.h"
#include "adapters/cubeb/StreamKeeper.h"
#include "tests/support/Soon.h"

namespace endpin {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using testing::soon;
using Outcome = KeptStream::Outcome;

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

struct StreamKeeperTest : ::testing::Test {
  const std::shared_ptr<DrivenStream> stream = std::make_shared<DrivenStream>();
  std::optional<StreamKeeper> keeper{std::in_place, stream};
};

TEST_F(StreamKeeperTest, TriesUntilItOpensOpensWhatFailedAtOnceAndCloses) {
  std::this_thread::sleep_for(20ms);
  EXPECT_EQ(stream->opens, 0) << "nobody asked";
  stream->onOpen = Outcome::Missing;
  const auto begin = Clock::now();
  keeper->open();
  keeper->open();
  EXPECT_TRUE(keeper->wanted());
  EXPECT_TRUE(soon(3s, [&] { return stream->opens == 3; }));
  EXPECT_GE(Clock::now() - begin, 950ms) << "half a second between two tries";
  EXPECT_EQ(stream->checks, 0);
  stream->onOpen = Outcome::Open;
  EXPECT_TRUE(soon(3s, [&] { return stream->checks > 3; }));
  const int opens = stream->opens;
  stream->onCheck = Outcome::Missing;
  EXPECT_TRUE(soon(400ms, [&] { return stream->opens == opens + 1; }));
  EXPECT_EQ(stream->closes, 0);
  keeper->close();
  EXPECT_TRUE(soon(3s, [&] { return stream->closes == 1; }));
  keeper->open();
  EXPECT_TRUE(soon(3s, [&] { return stream->opens == opens + 2; }));
  keeper.reset();
  EXPECT_EQ(stream->closes, 2) << "the destructor closes";
}

TEST_F(StreamKeeperTest, LeavesALibraryThatHangsToItself) {
  stream->hang = true;
  const auto begin = Clock::now();
  keeper->open();
  EXPECT_TRUE(soon(3s, [&] { return stream->opens == 1; }));
  keeper->close();
  keeper->open();
  keeper.reset();
  EXPECT_LT(Clock::now() - begin, 1500ms);
  EXPECT_EQ(stream->closes, 0);
  stream->hung.set_value();
  EXPECT_TRUE(soon(3s, [&] { return stream->closes == 1; })) << "what opens later is closed";
  EXPECT_TRUE(soon(3s, [&] { return stream.use_count() == 1; })) << "the control thread has ended";
}

std::int32_t countCalls(void* calls, std::uint32_t, std::span<AudioOutputBuffer>) {
  ++*static_cast<int*>(calls);
  return 0;
}

TEST(RenderGateTest, ShutsWhileTheAudioThreadRuns) {
  for (int round = 0; round < 200; ++round) {
    // Plain memory that goes right after the gate is shut: a sanitizer sees who comes too late.
    auto calls = std::make_unique<int>(0);
    RenderGate gate(countCalls, calls.get());
    gate.mute(false);
    std::atomic<bool> quit = false;
    std::atomic<int> rounds = 0;
    std::thread audio([&] {
      std::array<std::uint32_t, 64> words{};
      for (; !quit; ++rounds) gate.fill(words.data(), 64);
    });
    EXPECT_TRUE(soon(3s, [&] { return rounds > 10; }));
    gate.shut();
    const int last = *calls;
    EXPECT_GT(last, 10);
    const int passed = rounds;
    EXPECT_TRUE(soon(3s, [&] { return rounds > passed + 10; }));
    EXPECT_EQ(*calls, last);
    calls.reset();
    quit = true;
    audio.join();
  }
}

TEST(SampleRing, HandsOverEverySampleInOrderOrCountsIt) {
  SampleRing ring(1000);  // holds 1024
  constexpr std::uint64_t kTotal = 2'000'000;
  std::atomic<bool> wrong = false;
  std::thread callback([&] {
    for (std::uint64_t next = 0; next < kTotal && !wrong;) {
      std::array<std::int16_t, 500> part{};
      for (std::int16_t& sample : part) sample = static_cast<std::int16_t>(next++);
      const std::uint64_t dropped = ring.dropped();
      ring.push(part);
      const std::uint64_t lost = ring.dropped() - dropped;
      next -= lost;  // comes again: the order shows no gap
      if (lost > 0) std::this_thread::yield();
    }
  });
  std::array<std::int16_t, 300> pulled{};
  std::uint64_t expected = 0;
  while (expected < kTotal && !wrong) {
    const std::size_t count = ring.pull(pulled);
    for (std::size_t i = 0; i < count; ++i) {
      wrong = wrong || pulled[i] != static_cast<std::int16_t>(expected++);
    }
    if (count == 0) std::this_thread::yield();
  }
  callback.join();
  EXPECT_FALSE(wrong) << "before sample " << expected;
  while (ring.pull(pulled) > 0) {
  }
  const std::uint64_t dropped = ring.dropped();
  ring.push(std::vector<std::int16_t>(1030));
  EXPECT_EQ(ring.dropped() - dropped, 6U);
}

TEST(InputDevicesTest, ByIdThenByNameOrElseTheDefaultMicrophone) {
  std::vector<InputDevice> devices(4);
  devices[0] = {.id = "out.monitor", .name = "Monitor", .isMonitor = true};
  devices[1] = {.id = "usb", .name = "USB mic"};
  devices[2] = {.id = "internal", .name = "Internal mic", .isDefault = true};
  devices[3] = {.id = "USB mic", .name = "x"};
  const auto chosen = [&](const std::string& wanted) {
    const InputDevice* found = chooseInput(devices, wanted);
    return found ? found->id : "none";
  };
  EXPECT_EQ(chosen("internal"), "internal");
  EXPECT_EQ(chosen("Internal mic"), "internal");
  EXPECT_EQ(chosen("USB mic"), "USB mic") << "an id comes before a name";
  EXPECT_EQ(chosen("usb mic"), "none");
  EXPECT_EQ(chosen(""), "internal");
  devices[2].isPluggedIn = false;
  EXPECT_EQ(chosen(""), "usb");
  devices[2].isDefault = false;
  devices[0].isDefault = true;
  EXPECT_EQ(chosen(""), "usb");
  devices.resize(1);  // only what a speaker plays is left
  EXPECT_EQ(chosen(""), "none");
  EXPECT_EQ(chosen("out.monitor"), "out.monitor");
}

}  // namespace
}  // namespace endpin
