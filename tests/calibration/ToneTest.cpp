// The reference tone: samples against formulas worked out separately, and the tuning fork's states.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <numbers>
#include <vector>

#include "calibration/ToneSynthesizer.h"
#include "calibration/TuningFork.h"
#include "tests/fakes/AllocationCounter.h"
#include "tests/fakes/FakePlatform.h"

namespace endpin {
namespace {

std::vector<std::uint32_t> render(ToneSynthesizer& synthesizer, std::size_t frames) {
  std::vector<std::uint32_t> words(frames);
  AudioOutputBuffer buffer{words.data()};
  EXPECT_EQ(ToneSynthesizer::renderTone(&synthesizer, static_cast<std::uint32_t>(frames),
                                        std::span(&buffer, 1)),
            0);
  return words;
}

std::int16_t left(std::uint32_t word) {
  return static_cast<std::int16_t>(word & 0xFFFFU);
}
std::int16_t right(std::uint32_t word) {
  return static_cast<std::int16_t>(word >> 16U);
}

// A wave of period 1 at `turns`, from its shape: not from an oscillator that runs along.
double shape(std::uint64_t tone, double turns) {
  const double t = turns - std::floor(turns);
  switch (tone) {
    case ToneSynthesizer::Triangle:
      return t < 0.25 ? 4 * t : t < 0.75 ? 2 - 4 * t : 4 * t - 4;
    case ToneSynthesizer::Sawtooth:
      return t <= 0.5 ? 2 * t : 2 * t - 2;
    case ToneSynthesizer::Square:
      return t <= 0.5 ? 1 : -1;
    default:
      return std::sin(2 * std::numbers::pi * t);
  }
}

TEST(ToneTest, SamplesFollowTheFormula) {
  constexpr std::size_t kFrames = 4410;
  for (const std::uint64_t tone : {0U, 1U, 2U, 3U, 7U}) {
    for (const float hertz : {65.40639F, 220.0F, 440.0F}) {
      ToneSynthesizer synthesizer;
      synthesizer.curTone = tone;
      synthesizer.toneFrequency = hertz;
      const auto words = render(synthesizer, kFrames);
      const double step = static_cast<double>(hertz / 44100.0F);
      std::size_t off = 0;
      for (std::size_t n = 1; n < kFrames; ++n) {
        const double turns = step * static_cast<double>(n);
        const double sine = std::sin(2 * std::numbers::pi * turns);
        const double mix = (sine + shape(tone, turns)) / 2;
        const double expected = mix / (2 * std::numbers::pi) * 32767 * 6 * 0.95;
        off += std::abs(left(words[n]) - expected) > 1.5 ? 1 : 0;
        ASSERT_EQ(left(words[n]), right(words[n]));
      }
      // At a jump of the square or the sawtooth the rounding of the phase may choose either side.
      EXPECT_LE(off, tone == 2 || tone == 3 ? 2U : 0U) << tone << " at " << hertz;
      EXPECT_EQ(left(words[0]), 0) << "every waveform starts from nothing";
    }
  }
}

TEST(ToneTest, PeaksWhereItShould) {
  ToneSynthesizer synthesizer;
  synthesizer.toneFrequency = 220.0F;
  for (const std::uint64_t tone : {0U, 3U, 7U}) {
    synthesizer.curTone = tone;
    int highest = 0;
    int lowest = 0;
    for (const std::uint32_t word : render(synthesizer, 44100)) {
      highest = std::max<int>(highest, left(word));
      lowest = std::min<int>(lowest, left(word));
    }
    EXPECT_NEAR(highest, 29725, 20) << tone;
    EXPECT_NEAR(lowest, -29725, 20) << tone;
  }
}

TEST(ToneTest, ChangesPitchWithoutAJump) {
  ToneSynthesizer synthesizer;
  synthesizer.toneFrequency = 220.0F;
  const auto before = render(synthesizer, 1000);
  synthesizer.toneFrequency = 146.83F;
  const auto after = render(synthesizer, 1000);
  const double steepest = 29725 * 2 * std::numbers::pi * 220 / 44100;
  EXPECT_LE(std::abs(left(after[0]) - left(before.back())), steepest + 1);
}

TEST(ToneTest, FillsEveryBufferAndNothingElse) {
  ToneSynthesizer synthesizer;
  std::vector<std::uint32_t> a(65, 0xDEADBEEF);
  std::vector<std::uint32_t> b(65, 0xDEADBEEF);
  std::vector<AudioOutputBuffer> buffers = {{a.data()}, {b.data()}};
  EXPECT_EQ(ToneSynthesizer::renderTone(&synthesizer, 0, buffers), 0);
  EXPECT_EQ(ToneSynthesizer::renderTone(&synthesizer, 64, {}), 0);
  EXPECT_EQ(a[0], 0xDEADBEEF);
  ToneSynthesizer::renderTone(&synthesizer, 64, buffers);
  EXPECT_EQ(a[0], 0U) << "nothing was rendered before";
  EXPECT_NE(b[0], 0U) << "the second buffer goes on where the first ended";
  EXPECT_EQ(a[64], 0xDEADBEEF);
  EXPECT_EQ(b[64], 0xDEADBEEF);
}

TEST(ToneTest, RenderingAllocatesNothing) {
  ToneSynthesizer synthesizer;
  synthesizer.curTone = ToneSynthesizer::Square;
  std::vector<std::uint32_t> words(4096);
  AudioOutputBuffer buffer{words.data()};
  const std::size_t before = fakes::allocationCount();
  for (int i = 0; i < 10; ++i) ToneSynthesizer::renderTone(&synthesizer, 4096, {&buffer, 1});
  EXPECT_EQ(fakes::allocationCount(), before);
  const auto proof = std::make_unique<int>(1);
  EXPECT_EQ(fakes::allocationCount(), before + 1) << "the counter counts";
}

TEST(ToneTest, AbsurdFrequenciesStayInRange) {
  for (const float hertz : {0.0F, -440.0F, 1e9F, std::numeric_limits<float>::infinity(),
                            std::numeric_limits<float>::quiet_NaN()}) {
    ToneSynthesizer synthesizer;
    synthesizer.curTone = ToneSynthesizer::Triangle;
    synthesizer.toneFrequency = hertz;
    render(synthesizer, 1000);  // the undefined-behaviour sanitizer is the judge
  }
}

class TuningForkTest : public testing::Test {
 protected:
  TuningForkTest() {
    outlets_.tfnoteDisplay.connect(&note_);
    outlets_.tfFreqLabel.connect(&frequency_);
  }
  fakes::FakeOutput output_;
  CalibrationOutlets outlets_;
  Label note_;
  Label frequency_;
  TuningFork fork_{outlets_, output_};
};

TEST_F(TuningForkTest, PlaysRetunesAndStops) {
  fork_.setupAudio();
  EXPECT_EQ(output_.format.mSampleRate, 44100.0);
  EXPECT_EQ(output_.format.mBytesPerFrame, 4U);
  EXPECT_EQ(output_.format.mChannelsPerFrame, 2U);
  EXPECT_EQ(output_.starts, 0);
  fork_.stopFreqPlay();
  EXPECT_EQ(output_.stops, 0) << "it does not play yet";

  fork_.play(1, 220.04, true);
  EXPECT_EQ(note_.text(), "A3");
  EXPECT_EQ(frequency_.text(), "220.0Hz");
  fork_.play(2, 146.8324, true);
  EXPECT_EQ(output_.starts, 2) << "every press starts";
  EXPECT_EQ(fork_.synthesizer().toneFrequency, 146.8324F);
  EXPECT_EQ(fork_.curPlayState, TuningFork::Playing);
  fork_.stopFreqPlay();
  fork_.stopFreqPlay();
  EXPECT_EQ(output_.stops, 1);
  EXPECT_EQ(fork_.curPlayState, TuningFork::Stopped);
}

TEST_F(TuningForkTest, StaysSilentWhenInaudibleOrWithoutOutput) {
  output_.missing = true;
  fork_.setupAudio();
  fork_.play(4, 65.4064, true);
  fork_.stopFreqPlay();
  output_.missing = false;
  fork_.setupAudio();
  fork_.play(3, 97.9989, false);
  EXPECT_EQ(note_.text(), "G2");
  EXPECT_EQ(frequency_.text(), "98.0Hz");
  EXPECT_EQ(output_.starts, 0);
  EXPECT_EQ(fork_.curPlayState, TuningFork::Stopped);
}

}  // namespace
}  // namespace endpin
