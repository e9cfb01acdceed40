#include "adapters/offline/FileMicrophone.h"

#include <gtest/gtest.h>

#include <cmath>

#include "adapters/capture/CaptureFormat.h"
#include "tests/support/TempDirectory.h"
#include "tests/support/Tone.h"

namespace endpin {
namespace {

struct FileMicrophoneTest : ::testing::Test {
  testing::TempDirectory folder;
  VirtualRunLoop loop;
  std::vector<std::int16_t> samples;  // of the file
  std::optional<CapturedSound> sound;
  std::unique_ptr<FileMicrophone> microphone;
  std::unique_ptr<AudioInputQueue> queue;

  struct Block {
    double time;
    std::vector<std::int16_t> samples;
  };
  std::vector<Block> blocks;

  // A headerless file of noise, which is captured as it is.
  void open(std::size_t count) {
    testing::Sound noise = testing::noise(7019.5, 60, 0.1);
    noise.samples.resize(count);
    samples = testing::toS16(noise);
    testing::writeRawS16(folder.file("noise.s16"), noise);
    listenTo("noise.s16");
  }

  void listenTo(const std::string& name) {
    sound.emplace(SoundFile(folder.file(name)));
    microphone = std::make_unique<FileMicrophone>(*sound, loop);
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
    self.blocks.push_back({self.loop.now(), {data, data + buffer->mAudioDataByteSize / 2}});
    from->enqueueBuffer(buffer);
  }

  float level() const {
    LevelMeterState state;
    queue->currentLevelMeter(&state, sizeof state);
    return state.mAveragePower;
  }

  // Of the samples up to `end`, by another formula than the meter's.
  float levelBefore(std::size_t end) const {
    const std::size_t begin = end > 702 ? end - 702 : 0;
    double sum = 0;
    for (std::size_t i = begin; i < end; ++i) sum += std::pow(samples[i] / 32768.0, 2);
    return static_cast<float>(std::sqrt(sum / static_cast<double>(end - begin)));
  }
};

TEST_F(FileMicrophoneTest, BlocksComeWholeInOrderAndOnTime) {
  open(16 * 4096 + 4095);
  loop.runUntil(20);
  ASSERT_EQ(blocks.size(), 16U);  // the last, partial one never comes
  for (std::size_t k = 0; k < blocks.size(); ++k) {
    EXPECT_EQ(blocks[k].time, static_cast<double>((k + 1) * 4096) / 7019.5);
    const auto first = samples.begin() + static_cast<std::ptrdiff_t>(k * 4096);
    EXPECT_TRUE(std::equal(blocks[k].samples.begin(), blocks[k].samples.end(), first)) << k;
  }
}

TEST_F(FileMicrophoneTest, TheLevelIsThatOfTheInstant) {
  open(20000);
  std::uint32_t running = 0;
  queue->isRunning(running);
  EXPECT_EQ(running, 1U);
  EXPECT_EQ(level(), 0.0F);
  for (std::size_t tick = 1; tick <= 40; ++tick) {
    loop.runUntil(static_cast<double>(tick) * 0.1);
    const std::size_t captured = std::min<std::size_t>(tick * 14039 / 20, samples.size());
    ASSERT_NEAR(level(), levelBefore(captured), 1e-7) << tick;
  }
}

TEST_F(FileMicrophoneTest, ResampledBlocksComeOnTimeToo) {
  testing::writeWav(folder.file("tone.wav"), testing::bowedTone(44100, 3.0, 220, 0.1), 2);
  listenTo("tone.wav");
  for (int tick = 1; tick <= 30; ++tick) {
    ASSERT_TRUE(sound->lastsFor(static_cast<std::uint64_t>(tick)));
    loop.runUntil(tick * 0.1);
    if (tick > 2) {
      ASSERT_NEAR(level(), 0.1, 0.005) << tick;
    }
    ASSERT_EQ(blocks.size(), static_cast<std::size_t>(tick * 0.1 * 7019.5 / 4096)) << tick;
  }
  EXPECT_FALSE(sound->lastsFor(31));
  EXPECT_FALSE(sound->truncated());
}

TEST_F(FileMicrophoneTest, ASoundIsCapturedToItsLastSample) {
  testing::writeWav(folder.file("tone.wav"), testing::bowedTone(44100, 2.0, 220, 0.1));
  CapturedSound whole(SoundFile(folder.file("tone.wav")));
  samples.resize(20000);
  ASSERT_EQ(whole.take(samples), 14039U);
  EXPECT_EQ(whole.take(samples), 0U);
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
  EXPECT_EQ(blocks[0].samples[0], samples[7019]);  // a new block, from where the clock stood
  queue.reset();                                   // with a block under way
  loop.runUntil(5.0);
  EXPECT_EQ(blocks.size(), 1U);
}

TEST_F(FileMicrophoneTest, OtherFormatsAreRefused) {
  open(10);
  AudioStreamFormat stereo = kCaptureFormat;
  stereo.mChannelsPerFrame = 2;
  AudioStreamFormat faster = kCaptureFormat;
  faster.mSampleRate = 8000;
  EXPECT_EQ(microphone->newInput(stereo, heard, this), nullptr);
  EXPECT_EQ(microphone->newInput(faster, heard, this), nullptr);
}

}  // namespace
}  // namespace endpin
