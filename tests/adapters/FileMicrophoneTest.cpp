// A sound file as the microphone, and the resampler behind it.
#include "adapters/offline/FileMicrophone.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <numbers>

#include "audio/CaptureFormat.h"
#include "tests/support/TempDirectory.h"
#include "tests/support/Tone.h"

namespace endpin {
namespace {

using Samples = std::vector<std::int16_t>;

struct FileMicrophoneTest : ::testing::Test {
  testing::TempDirectory folder;
  VirtualRunLoop loop;
  Samples samples;  // of the file
  std::optional<CapturedSound> sound;
  std::optional<FileMicrophone> microphone;
  std::unique_ptr<AudioInputQueue> queue;
  std::vector<std::pair<double, Samples>> blocks;  // and when they came

  // A headerless file of noise, which is captured as it is.
  void open(std::size_t count) {
    testing::Sound noise = testing::noise(7019.5, 60, 0.1);
    noise.samples.resize(count);
    samples = testing::toS16(noise);
    std::ofstream(folder.file("noise.s16"), std::ios::binary)
        .write(reinterpret_cast<const char*>(samples.data()), 2 * std::ssize(samples));
    sound.emplace(SoundFile(folder.file("noise.s16")));
    microphone.emplace(*sound, loop);
    queue = microphone->newInput(kCaptureFormat, heard, this);
    for (int i = 0; i < 3; ++i) {
      AudioInputBuffer* buffer = nullptr;
      queue->allocateBuffer(8192, &buffer);
      queue->enqueueBuffer(buffer);
    }
    queue->enableLevelMetering(1);
    queue->start();
  }

  static void heard(void* test, AudioInputQueue* from, AudioInputBuffer* buffer) {
    auto& self = *static_cast<FileMicrophoneTest*>(test);
    const std::int16_t* data = buffer->mAudioData;
    self.blocks.emplace_back(self.loop.now(), Samples(data, data + buffer->mAudioDataByteSize / 2));
    from->enqueueBuffer(buffer);
  }

  float level() const {
    LevelMeterState state;
    queue->currentLevelMeter(&state, sizeof state);
    return state.mAveragePower;
  }
};

TEST_F(FileMicrophoneTest, BlocksComeWholeAndOnTimeAndSilenceFollowsTheFile) {
  open(8 * 4096 + 4000);
  EXPECT_EQ(level(), 0.0F);
  samples.resize(16 * 4096);  // what is to be heard
  for (std::size_t tick = 1; tick <= 93; ++tick) {
    loop.runUntil(static_cast<double>(tick) * 0.1);
    const bool sounds = tick < 53;
    EXPECT_TRUE(tick == 53 || std::abs(level() - (sounds ? 0.1F : 0)) <= (sounds ? 0.015F : 0));
  }
  ASSERT_EQ(blocks.size(), 15U);
  for (std::size_t k = 0; k < blocks.size(); ++k) {
    EXPECT_EQ(blocks[k].first, static_cast<double>((k + 1) * 4096) / 7019.5);
    const auto first = samples.begin() + static_cast<std::ptrdiff_t>(k * 4096);
    EXPECT_EQ(blocks[k].second, Samples(first, first + 4096)) << k;
  }
}

TEST_F(FileMicrophoneTest, TimePassesWhileItIsStopped) {
  open(20000);
  loop.runUntil(0.3);
  queue->stop(true);
  loop.runUntil(1.0);
  EXPECT_TRUE(blocks.empty());
  queue->start();
  loop.runUntil(2.0);
  ASSERT_EQ(blocks.size(), 1U);
  EXPECT_EQ(blocks[0].second[0], samples[7019]);  // a new block, from where the clock stood
  queue.reset();                                  // with a block under way
  loop.runUntil(5.0);
  EXPECT_EQ(blocks.size(), 1U);
}

std::int16_t toneAt(double seconds) {
  return static_cast<std::int16_t>(
      std::lrint(12000 * std::sin(2 * std::numbers::pi * 220 * seconds)));
}

Samples resampled(double rate, const Samples& input, std::size_t chunk) {
  CaptureResampler resampler(rate);
  Samples output;
  for (std::size_t i = 0; i < input.size(); i += chunk) {
    const std::size_t size = std::min(chunk, input.size() - i);
    resampler.process(std::span(input).subspan(i, size), output);
    resampler.process({}, output);  // nothing is not the end
  }
  resampler.flush(output);
  return output;
}

// Sample i of the output is the tone at i / 7019.5 s: no delay, no drift, no sample too many.
TEST(CaptureResampler, KeepsATonesPitchAndItsPlaceInTime) {
  for (const auto& [rate, chunk] : {std::pair(8000.0, 1U),
                                    {11025.0, 5000U},
                                    {44100.0, 480U},
                                    {48000.0, 480U},
                                    {192000.0, 5000U}}) {
    Samples input;
    for (double i = 0; i < rate * 4; ++i) input.push_back(toneAt(i / rate));
    const Samples output = resampled(rate, input, chunk);
    ASSERT_EQ(output.size(), 28078U) << rate;
    int worst = 0;
    for (std::size_t i = 300; i < output.size() - 300; ++i) {
      worst = std::max(worst, std::abs(output[i] - toneAt(static_cast<double>(i) / 7019.5)));
    }
    EXPECT_LE(worst, 2) << rate << " Hz in chunks of " << chunk;
  }
}

TEST(CapturedSound, EndsWithItsLastSample) {
  const testing::TempDirectory folder;
  testing::writeWav(folder.file("tone.wav"), testing::bowedTone(44100, 2.0, 220, 0.1), 2);
  CapturedSound sound(SoundFile(folder.file("tone.wav")));
  Samples samples(20000);
  EXPECT_EQ(sound.take(samples), 14039U);
  EXPECT_EQ(sound.take(samples), 0U);
}

TEST(CaptureResampler, KeepsSilenceSilent) {
  for (const std::int16_t sample : resampled(48000, Samples(48000, 0), 480)) ASSERT_EQ(sample, 0);
}

}  // namespace
}  // namespace endpin
