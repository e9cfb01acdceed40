// What stands between the sound library and the rest, without a sound server.
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <array>
#include <numeric>
#include <optional>
#include <thread>

#include "adapters/cubeb/CaptureStream.h"
#include "adapters/cubeb/CubebMicrophone.h"
#include "adapters/cubeb/CubebOutput.h"
#include "adapters/cubeb/InputDevices.h"
#include "adapters/cubeb/RenderGate.h"
#include "audio/CaptureFormat.h"
#include "tests/fakes/FakePlatform.h"
#include "tests/fakes/FakeSoundLibrary.h"
#include "tests/support/Soon.h"

namespace endpin {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using testing::soon;

// A microphone and a listener that counts its blocks.
struct MicrophoneTest : ::testing::Test {
  using State = MicrophoneStatus::State;

  fakes::FakeSoundLibrary& library = fakes::soundLibrary;
  fakes::FakeLog log;
  std::optional<CubebMicrophone> microphone;
  std::unique_ptr<AudioInputQueue> queue;
  std::atomic<int> blocks = 0;

  void listen(const std::string& wanted = "") {
    microphone.emplace(wanted, log);
    const auto heard = [](void* test, AudioInputQueue* from, AudioInputBuffer* buffer) {
      ++static_cast<MicrophoneTest*>(test)->blocks;
      from->enqueueBuffer(buffer);
    };
    queue = microphone->newInput(kCaptureFormat, heard, this);
    AudioInputBuffer* buffer = nullptr;
    queue->allocateBuffer(8192, &buffer);
    queue->enqueueBuffer(buffer);
    queue->start();
  }
  // Whether it comes to hear that microphone, or gives that reason for hearing none.
  bool says(std::chrono::milliseconds limit, State state, const std::string& text) const {
    return soon(limit, [&] {
      const MicrophoneStatus status = microphone->status();
      return status.state == state && status.text == text;
    });
  }
  bool hears() {
    const int before = blocks;
    library.hear(std::vector<std::int16_t>(40000));
    return soon(1s, [&] { return blocks > before; });
  }
  void SetUp() override {
    library.refuses = library.isHung = false;
    library.opens = 0;
    library.change({{"usb"}, {"internal", true}});
  }
  void TearDown() override {
    library.hang(false);
    queue.reset();
    EXPECT_TRUE(soon(3s, [&] { return library.contexts == 0; })) << "what was opened is closed";
  }
};

TEST_F(MicrophoneTest, IsTriedUntilItOpensAndOpenedAnewWhenItFailsOrFallsSilent) {
  library.refuses = true;
  const auto begin = Clock::now();
  listen();
  EXPECT_TRUE(soon(3s, [&] { return library.opens == 3; }));
  EXPECT_GE(Clock::now() - begin, 950ms) << "half a second between two tries";
  EXPECT_TRUE(says(1s, State::Missing, "no microphone can be opened"));
  library.refuses = false;
  EXPECT_TRUE(says(1s, State::Open, "internal"));
  EXPECT_TRUE(hears());

  ASSERT_TRUE(library.fail());
  EXPECT_TRUE(soon(400ms, [&] { return library.opens == 5; })) << "at once";
  EXPECT_TRUE(says(1s, State::Open, "internal"));
  EXPECT_TRUE(hears());
  EXPECT_FALSE(soon(1200ms, [&] { return library.opens > 5; }));
  EXPECT_TRUE(soon(800ms, [&] { return library.opens == 6; })) << "no samples at all";
  EXPECT_TRUE(says(1s, State::Open, "internal"));
  queue->stop(true);
  EXPECT_TRUE(soon(1s, [&] { return library.contexts == 0; }));
  EXPECT_TRUE(says(1s, State::Closed, ""));
}

TEST_F(MicrophoneTest, IsLeftWhenItsStreamWasMovedToAnotherDevice) {
  listen();
  ASSERT_TRUE(says(1s, State::Open, "internal"));
  library.change({{"usb", true}, {"internal"}}, false);
  EXPECT_TRUE(says(2s, State::Open, "usb")) << "it follows the default";
  EXPECT_EQ(library.opens, 1);
  library.change({{"internal"}});
  EXPECT_TRUE(says(400ms, State::Open, "internal")) << "rather than what a speaker plays";
  library.change({{"internal"}, {"usb", true}});
  EXPECT_TRUE(says(400ms, State::Open, "usb")) << "a default one came";
  EXPECT_EQ(library.opens, 3);
  library.change({});
  EXPECT_TRUE(says(400ms, State::Missing, "the microphone is gone"));

  library.change({{"usb"}, {"internal", true}});
  listen("usb");
  ASSERT_TRUE(says(1s, State::Open, "usb"));
  library.change({{"internal", true}});
  EXPECT_TRUE(says(400ms, State::Missing, "the microphone is gone"));
}

// Those switches that a thread asked for itself: it fell asleep. The test and a sanitizer have
// some.
TEST_F(MicrophoneTest, SleepsWhileNothingHappens) {
  listen();
  ASSERT_TRUE(says(1s, State::Open, "internal"));
  ASSERT_TRUE(hears());
  rusage before{}, after{};
  getrusage(RUSAGE_SELF, &before);
  std::this_thread::sleep_for(1s);
  getrusage(RUSAGE_SELF, &after);
  EXPECT_LT(after.ru_nvcsw - before.ru_nvcsw, 20);
}

TEST_F(MicrophoneTest, NobodyWaitsForALibraryThatHangs) {
  library.hang(true);
  const auto begin = Clock::now();
  listen();
  EXPECT_TRUE(soon(1s, [&] { return library.isHung.load(); }));
  queue->stop(true);
  queue->start();
  queue.reset();
  EXPECT_LT(Clock::now() - begin, 1500ms);
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

// The library closes the stream when it comes to it; until then it asks for sound.
TEST(SoundOutTest, NobodyWaitsForALibraryThatHangsAndNothingSoundsAfterTheEnd) {
  fakes::FakeSoundLibrary& library = fakes::soundLibrary;
  AudioStreamFormat stereo = kCaptureFormat;
  stereo.mSampleRate = 44100.0;
  stereo.mBytesPerFrame = 4;
  stereo.mChannelsPerFrame = 2;
  for (const bool hangsFirst : {false, true}) {
    int calls = 0;
    auto unit = CubebOutput().newOutputUnit();
    ASSERT_EQ(unit->setStreamFormat(stereo), 0);
    ASSERT_EQ(unit->setRenderCallback(countCalls, &calls), 0);
    ASSERT_EQ(unit->initialize(), 0);
    library.hang(hangsFirst);
    unit->start();
    std::array<std::uint32_t, 64> words{};
    ASSERT_TRUE(hangsFirst || soon(1s, [&] { return library.render(words); }));
    library.hang(true);
    const int before = calls;
    EXPECT_EQ(before, hangsFirst ? 0 : 1);
    auto beep = CubebPlayers().playerWithContentsOf(ENDPIN_BEEP);
    ASSERT_TRUE(beep);
    const auto begin = Clock::now();
    unit->stop();
    unit->start();
    beep->play();
    EXPECT_TRUE(soon(1s, [&] { return library.contexts == 2; })) << "both wait";
    beep.reset();
    unit.reset();
    EXPECT_LT(Clock::now() - begin, 1500ms);
    words.fill(7);
    EXPECT_EQ(library.render(words), !hangsFirst);
    EXPECT_TRUE(hangsFirst || std::ranges::count(words, 0U) == 64) << "silence";
    library.hang(false);
    EXPECT_TRUE(soon(3s, [&] { return library.contexts == 0; }));
    EXPECT_EQ(calls, before);
  }
}

TEST(SoundOutTest, ABeepThatComesTooLateIsDropped) {
  fakes::FakeSoundLibrary& library = fakes::soundLibrary;
  const auto beep = CubebPlayers().playerWithContentsOf(ENDPIN_BEEP);
  const auto sounds = [&] {
    std::array<std::uint32_t, 64> words{};
    return library.render(words) && std::ranges::count(words, 0U) < 64;
  };
  library.hang(true);
  beep->play();
  std::this_thread::sleep_for(600ms);
  library.hang(false);
  EXPECT_FALSE(soon(400ms, sounds)) << "half a second has passed";
  EXPECT_TRUE(soon(5s, [&] {
    beep->play();
    return sounds();
  })) << "the next one";
}

TEST(SampleRing, HandsOverEverySampleInOrderOrCountsIt) {
  SampleRing ring(1000);  // holds 1024
  constexpr std::uint64_t kTotal = 2'000'000;
  std::jthread callback([&ring](const std::stop_token& stop) {
    std::array<std::int16_t, 500> part{};
    for (std::uint64_t next = 0; next < kTotal && !stop.stop_requested();) {
      std::iota(part.begin(), part.end(), static_cast<std::int16_t>(next));
      const std::uint64_t dropped = ring.dropped();
      ring.push(part);
      next += part.size() - (ring.dropped() - dropped);  // what is lost comes again
      std::this_thread::yield();
    }
  });
  std::array<std::int16_t, 300> pulled{};
  for (std::uint64_t expected = 0; expected < kTotal;) {
    const std::size_t count = ring.pull(pulled);
    for (std::size_t i = 0; i < count; ++i) {
      ASSERT_EQ(pulled[i], static_cast<std::int16_t>(expected++));
    }
    if (count == 0) std::this_thread::yield();
  }
  callback.join();
  while (ring.pull(pulled) > 0) {
  }
  const std::uint64_t dropped = ring.dropped();
  ring.push(std::vector<std::int16_t>(1030));
  EXPECT_EQ(ring.dropped() - dropped, 6U);
}

TEST(InputDevicesTest, ByIdThenByNameOrElseTheDefaultMicrophone) {
  std::vector<InputDevice> devices = {
      {.id = "out.monitor", .name = "Monitor", .isDefault = true, .isMonitor = true},
      {.id = "unplugged", .name = "Socket", .isDefault = true, .isPluggedIn = false},
      {.id = "usb", .name = "USB mic"},
      {.id = "internal", .name = "Internal mic", .isDefault = true},
      {.id = "USB mic", .name = "x"}};
  const std::pair<const char*, const char*> rows[] = {
      {"internal", "internal"}, {"Internal mic", "internal"},
      {"USB mic", "USB mic"},  // an id comes before a name
      {"usb mic", "none"},      {"out.monitor", "out.monitor"},
      {"", "internal"},
  };
  const auto chosen = [&](const std::string& wanted) {
    const InputDevice* found = chooseInput(devices, wanted);
    return found ? found->id : "none";
  };
  for (const auto& [wanted, id] : rows) EXPECT_EQ(chosen(wanted), id) << wanted;
  devices[3].isDefault = false;
  EXPECT_EQ(chosen(""), "usb");
  devices.resize(2);
  EXPECT_EQ(chosen(""), "none");
}

// Full scale as long as it is asked; a jump between two frames would be heard as a click.
TEST(RenderGateTest, FadesInAndOutAndBetweenTwoTones) {
  const auto loud = [](void*, std::uint32_t frames, std::span<AudioOutputBuffer> buffers) {
    std::fill_n(buffers[0].mData, frames, 0x7FFF7FFFU);
    return std::int32_t{0};
  };
  RenderGate gate(loud, nullptr);
  int last = 0, jump = 0;
  // The lowest of what comes next.
  const auto play = [&](std::uint32_t frames) {
    std::vector<std::uint32_t> words(frames);
    gate.fill(words.data(), frames);
    int lowest = 0x7FFF;
    for (const std::uint32_t word : words) {
      const int sample = static_cast<std::int16_t>(word & 0xFFFFU);
      EXPECT_EQ(word >> 16U, word & 0xFFFFU);
      jump = std::max(jump, std::abs(sample - std::exchange(last, sample)));
      lowest = std::min(lowest, sample);
    }
    return lowest;
  };
  play(100);
  EXPECT_EQ(last, 0);
  gate.mute(false);
  play(441);
  EXPECT_EQ(last, 0x7FFF) << "whole within 10 ms";
  gate.dip();
  EXPECT_EQ(play(882), 0);
  EXPECT_EQ(last, 0x7FFF);
  gate.mute(true);
  play(220);
  EXPECT_FALSE(gate.isSilent()) << "not yet, after 5 ms";
  play(221);
  EXPECT_TRUE(gate.isSilent());
  EXPECT_LE(jump, 0x7FFF / 300);
}

}  // namespace
}  // namespace endpin
