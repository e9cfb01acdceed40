// Tone and beep through a real sound server of the test's own, heard from its speaker; and what
// becomes of them when that server dies.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <thread>

#include "adapters/cubeb/CubebOutput.h"
#include "audio/CaptureFormat.h"
#include "calibration/ToneSynthesizer.h"
#include "tests/fakes/AllocationCounter.h"
#include "tests/support/PrivateSoundServer.h"

// Asked by the leak checker, where there is one: cubeb forgets 88 bytes of the sound server's
// library whenever the devices change. A stream that we forget still shows, by cubeb's own memory.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() {
  return "leak:libpulse.so\n";
}

namespace endpin::testing {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

AudioStreamFormat stereo() {
  AudioStreamFormat format = kCaptureFormat;
  format.mSampleRate = 44100.0;
  format.mBytesPerFrame = 4;
  format.mChannelsPerFrame = 2;
  return format;
}

double peak(const Sound& sound) {
  float most = 0;
  for (const float sample : sound.samples) most = std::max(most, std::abs(sample));
  return static_cast<double>(most);
}

// What the speaker plays from now on.
class Recording {
 public:
  explicit Recording(const PrivateSoundServer& server, const char* device = "speaker.monitor")
      : child_(server.record(device)) {
    EXPECT_TRUE(soon(5s, [this] { return !sound().samples.empty(); }));
  }

  Sound sound() const { return PrivateSoundServer::recorded(child_); }
  bool hears(std::chrono::milliseconds limit) {
    return soon(limit, [this] { return peak(sound()) > 0.0; });
  }
  // The next stretch of that many seconds.
  Sound next(double seconds) {
    const double from = sound().seconds();
    EXPECT_TRUE(soon(10s, [&] { return sound().seconds() >= from + seconds; }));
    return slice(sound(), from, from + seconds);
  }
  // Of the next few seconds the longest part into which a busy machine tore no gap.
  Sound nextWhole() {
    Sound whole;
    for (int attempt = 0; attempt < 8 && whole.seconds() < 0.5; ++attempt) {
      for (const Sound& part : partsBetweenSilences(next(1.5))) {
        if (part.seconds() > whole.seconds()) whole = part;
      }
    }
    EXPECT_GT(whole.seconds(), 0.2) << "nothing but gaps";
    return whole;
  }

 private:
  ChildProcess child_;
};

class SoundOut : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!server_.start()) GTEST_SKIP() << server_.reason();
    for (const auto& [name, value] : server_.environment()) setenv(name.c_str(), value.c_str(), 1);
    synthesizer_.toneFrequency = 220.0F;
    synthesizer_.curTone = ToneSynthesizer::Square;
    EXPECT_EQ(unit_->setStreamFormat(stereo()), 0);
    EXPECT_EQ(unit_->setRenderCallback(render, this), 0);
    EXPECT_EQ(unit_->initialize(), 0);
    ASSERT_TRUE(beep_);
  }

  // The tone of the A string, and how often it was asked for.
  static std::int32_t render(void* test, std::uint32_t frames,
                             std::span<AudioOutputBuffer> buffers) {
    auto* self = static_cast<SoundOut*>(test);
    ++self->calls_;
    return ToneSynthesizer::renderTone(&self->synthesizer_, frames, buffers);
  }

  PrivateSoundServer server_;
  ToneSynthesizer synthesizer_;
  std::atomic<int> calls_ = 0;
  std::unique_ptr<AudioOutputUnit> unit_ = CubebOutput().newOutputUnit();
  std::unique_ptr<AudioPlayer> beep_ = CubebPlayers().playerWithContentsOf(ENDPIN_BEEP);
};

// Threads and descriptors of this process.
std::ptrdiff_t belongings() {
  const auto entries = [](const char* folder) {
    return std::distance(std::filesystem::directory_iterator(folder), {});
  };
  return entries("/proc/self/task") + entries("/proc/self/fd");
}

TEST_F(SoundOut, ToneSoundsAtItsPitchAndLevelUntilItIsStopped) {
  Recording recording(server_);
  const auto belongingsBefore = belongings();
  unit_->start();
  unit_->start();
  ASSERT_TRUE(recording.hears(3s));
  const Sound heard = recording.nextWhole();
  EXPECT_NEAR(fundamentalOf(heard, 220.0), 220.0, 0.05);
  // Half a sine of 1 and half a square of 1, times the gain.
  const double power = (0.5 + 1.0 + 4.0 / 3.14159265) / 4.0;
  EXPECT_NEAR(rms(heard), std::sqrt(power) * 29725 / 32768, 0.01);

  unit_->stop();
  EXPECT_TRUE(soon(3s, [&] { return peak(recording.next(0.3)) == 0.0; })) << "it sounds on";
  const int calls = calls_;
  EXPECT_EQ(peak(recording.next(0.3)), 0.0);
  EXPECT_EQ(calls_, calls);
  // Units that were replaced stay until the end: one for each time that the settings were closed.
  EXPECT_TRUE(soon(3s, [&] { return belongings() == belongingsBefore; })) << "it keeps something";
  unit_->start();
  EXPECT_TRUE(Recording(server_).hears(3s)) << "it does not start again";
}

TEST_F(SoundOut, SoundingAllocatesNothing) {
  writeWav(server_.folder().file("long.wav"), harmonics(22050.0, 3.0, 440.0, {0.5}));
  const auto player = CubebPlayers().playerWithContentsOf(server_.folder().file("long.wav"));
  ASSERT_TRUE(player);
  unit_->start();
  player->play();
  ASSERT_TRUE(soon(3s, [&] { return calls_ > 50; }));
  const std::size_t allocations = fakes::allocationCount();
  EXPECT_TRUE(soon(3s, [&] { return calls_ > 100; }));
  EXPECT_EQ(fakes::allocationCount(), allocations);
}

TEST_F(SoundOut, ToneGoesOnWhenTheServerIsBackAndFollowsTheDefaultDevice) {
  unit_->start();
  ASSERT_TRUE(Recording(server_).hears(3s));
  server_.kill();
  const auto back = Clock::now();
  ASSERT_TRUE(server_.start()) << server_.reason();
  Recording recording(server_);
  EXPECT_TRUE(recording.hears(5s));
  EXPECT_LT(Clock::now() - back, 2s);
  EXPECT_NEAR(fundamentalOf(recording.nextWhole(), 220.0), 220.0, 0.05);

  ASSERT_TRUE(server_.control("load-module module-null-sink sink_name=headphones"));
  Recording headphones(server_, "headphones.monitor");
  EXPECT_EQ(peak(headphones.next(0.2)), 0.0);
  ASSERT_TRUE(server_.control("set-default-sink headphones"));
  EXPECT_TRUE(headphones.hears(2s));
  ASSERT_TRUE(server_.control("unload-module module-null-sink")) << "every speaker goes";
  ASSERT_TRUE(server_.control("load-module module-null-sink sink_name=speaker"));
  EXPECT_TRUE(Recording(server_).hears(3s)) << "a speaker that came later";
}

TEST_F(SoundOut, BeepSoundsOnceEachTimeAndWholeAndSoon) {
  const Sound file = readSoundFile(ENDPIN_BEEP);
  Clock::duration soonest = 1s;  // a busy machine may hold up one of them
  for (int time = 0; time < 3; ++time) {
    Recording recording(server_);
    const auto start = Clock::now();
    for (int again = 0; again < 3; ++again) beep_->play();
    EXPECT_TRUE(recording.hears(2s));
    soonest = std::min(soonest, Clock::now() - start);
    std::this_thread::sleep_for(1s);
    const auto heard = partsBetweenSilences(recording.sound(), 0.4);
    ASSERT_EQ(heard.size(), 1U);
    EXPECT_NEAR(soundingSeconds(heard[0]), soundingSeconds(file), 0.03);
    EXPECT_NEAR(peak(heard[0]), peak(file), 0.05 * peak(file));
  }
  EXPECT_LT(soonest, 300ms);
}

TEST(SoundOutWithoutServer, RefusesWhatItCannotPlay) {
  EXPECT_EQ(CubebPlayers().playerWithContentsOf("/nonexistent.mp3"), nullptr);
  ToneSynthesizer tone;
  const auto unit = CubebOutput().newOutputUnit();
  EXPECT_NE(unit->start(), 0);
  EXPECT_NE(unit->stop(), 0);
  EXPECT_NE(unit->setStreamFormat(kCaptureFormat), 0) << "one channel, and no whole rate";
  EXPECT_EQ(unit->setRenderCallback(ToneSynthesizer::renderTone, &tone), 0);
  EXPECT_NE(unit->initialize(), 0) << "without a format";
}

}  // namespace
}  // namespace endpin::testing
