// The reference tone: samples against formulas worked out separately, and the tuning fork's states.
#include <gtest/gtest.h>

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

// The left channel; the right one is the same.
std::vector<std::int16_t> render(ToneSynthesizer& synthesizer, std::uint32_t frames) {
  std::vector<std::int16_t> samples(2 * std::size_t{frames});
  AudioOutputBuffer buffer{reinterpret_cast<std::uint32_t*>(samples.data())};
  EXPECT_EQ(ToneSynthesizer::renderTone(&synthesizer, frames, {&buffer, 1}), 0);
  std::vector<std::int16_t> left;
  for (std::size_t i = 0; i < samples.size(); i += 2) {
    EXPECT_EQ(samples[i], samples[i + 1]);
    left.push_back(samples[i]);
  }
  return left;
}

TEST(ToneTest, SamplesFollowTheFormula) {
  constexpr double kPi = std::numbers::pi;
  for (const std::uint64_t tone : {0U, 1U, 2U, 3U, 4U}) {
    for (const float hertz : {65.40639F, 220.0F, 440.0F}) {
      ToneSynthesizer synthesizer;
      synthesizer.curTone = tone;
      synthesizer.toneFrequency = hertz;
      const auto samples = render(synthesizer, 4410);
      int off = 0;
      for (std::size_t n = 1; n < samples.size(); ++n) {
        const double turn = std::remainder(static_cast<double>(n) * (hertz / 44100.0F), 1.0);
        const double sine = std::sin(2 * kPi * turn);
        const double waves[] = {sine, std::asin(sine) / kPi * 2, 2 * turn, turn < 0 ? -1.0 : 1.0,
                                sine};
        const double expected = (sine + waves[tone]) / 2 / (2 * kPi) * 32767 * 6 * 0.95;
        off += std::abs(samples[n] - expected) > 1.5 ? 1 : 0;
      }
      // At a jump of the square or the sawtooth the rounding of the phase may choose either side.
      EXPECT_LE(off, tone == 2 || tone == 3 ? 2 : 0) << tone << " at " << hertz;
      EXPECT_EQ(samples[0], 0) << "every waveform starts from nothing";
      if (tone != 0) continue;
      synthesizer.toneFrequency = 30.0F;
      const double steepest = 29725 * 2 * kPi * hertz / 44100;
      EXPECT_NEAR(render(synthesizer, 1)[0], samples.back(), steepest + 1) << "retuned with a jump";
    }
  }
}

TEST(ToneTest, FillsEveryBufferAndNothingElseAndAllocatesNothing) {
  ToneSynthesizer synthesizer;
  std::vector<std::uint32_t> a(65, 0xDEADBEEF);
  std::vector<std::uint32_t> b = a;
  std::vector<AudioOutputBuffer> buffers = {{a.data()}, {b.data()}};
  const std::size_t allocations = fakes::allocationCount();
  ToneSynthesizer::renderTone(&synthesizer, 0, buffers);
  ToneSynthesizer::renderTone(&synthesizer, 64, {});
  EXPECT_EQ(a[0], 0xDEADBEEF);
  ToneSynthesizer::renderTone(&synthesizer, 64, buffers);
  EXPECT_EQ(fakes::allocationCount(), allocations);
  EXPECT_EQ(a[0], 0U) << "nothing was rendered before";
  EXPECT_NE(b[0], 0U) << "the second buffer goes on where the first ended";
  EXPECT_EQ(a[64], 0xDEADBEEF);
  EXPECT_EQ(b[64], 0xDEADBEEF);
  const auto proof = std::make_unique<int>(1);
  EXPECT_EQ(fakes::allocationCount(), allocations + 1) << "the counter counts";
}

// A value that no sample can hold is held at the largest, whose low half is -1; what is not a
// number is silent.
TEST(ToneTest, AbsurdFrequenciesStayInRange) {
  const std::pair<float, int> rows[] = {{1e9F, -1},
                                        {std::numeric_limits<float>::infinity(), 0},
                                        {std::numeric_limits<float>::quiet_NaN(), 0}};
  for (const auto& [hertz, last] : rows) {
    ToneSynthesizer synthesizer;
    synthesizer.curTone = ToneSynthesizer::Sawtooth;
    synthesizer.toneFrequency = hertz;
    EXPECT_EQ(render(synthesizer, 1000).back(), last) << hertz;
  }
}

TEST(TuningForkTest, IsSilentWithoutAnOutputOrWhenInaudible) {
  fakes::FakeOutput output;
  CalibrationOutlets outlets;
  TuningFork fork(outlets, output);
  output.missing = true;
  fork.setupAudio();
  fork.play(4, 65.4064, true);
  EXPECT_EQ(fork.curPlayState, TuningFork::Playing);
  fork.stopFreqPlay();
  output.missing = false;
  fork.setupAudio();
  EXPECT_EQ(output.format.mSampleRate, 44100.0);
  EXPECT_EQ(output.userData, &fork.synthesizer());
  fork.play(3, 97.9989, false);
  fork.stopFreqPlay();
  EXPECT_EQ(outlets.tfnoteDisplay.text(), "G2");
  EXPECT_EQ(fork.synthesizer().toneFrequency, 97.9989F);
  EXPECT_EQ(output.starts + output.stops, 0);
  EXPECT_EQ(fork.curPlayState, TuningFork::Stopped);
}

}  // namespace
}  // namespace endpin
