// The estimator against expectations worked out in other ways.
#include "audio/PitchEstimator.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <map>
#include <memory>
#include <random>
#include <span>
#include <vector>

#include "tests/support/Tone.h"

namespace endpin {
namespace {

constexpr double kRate = 7019.5;
constexpr double kBinWidth = 0.2142181396484375;

using Block = std::vector<std::int16_t>;

Block tone(double hertz, const std::vector<double>& amplitudes, std::size_t count = 4096) {
  const double seconds = static_cast<double>(count) / kRate;
  return testing::toS16(testing::harmonics(kRate, seconds, hertz, amplitudes));
}

class PitchEstimatorTest : public ::testing::Test {
 protected:
  float estimate(const Block& samples, std::size_t bytes) {
    return estimator_->getFreqFromBuffer(samples.data(), static_cast<std::uint32_t>(bytes), kRate);
  }
  float estimate(const Block& samples) { return estimate(samples, samples.size() * 2); }

  std::unique_ptr<PitchEstimator> estimator_ = std::make_unique<PitchEstimator>();
  std::span<double> magnitudes_{estimator_->freq_db(), PitchEstimator::kSpectrumLength};
  std::span<double> harmonicSum_{estimator_->freq_db_harmonic(), PitchEstimator::kSpectrumLength};
};

// Every bin hands its magnitude to the bin at half and at a third of its place, each of which takes
// the whole part of the largest; the last group of either stays out.
TEST_F(PitchEstimatorTest, HarmonicSumMatchesAPlainRendering) {
  std::mt19937 random(1);
  std::uniform_real_distribution<double> magnitude(0.0, 40.0);
  for (double& m : magnitudes_) m = magnitude(random);
  std::vector<double> expected(magnitudes_.begin(), magnitudes_.end());
  for (const double divisor : {2.0, 3.0}) {
    std::map<std::size_t, double> strongest;
    for (std::size_t bin = 0; bin < magnitudes_.size(); ++bin) {
      double& most = strongest[std::lround(static_cast<double>(bin) / divisor)];
      most = std::max(most, std::trunc(magnitudes_[bin]));
    }
    strongest.erase(std::prev(strongest.end()));
    for (const auto& [bin, most] : strongest) expected[bin] += most;
  }
  estimator_->addHarmonics();
  EXPECT_TRUE(std::ranges::equal(expected, harmonicSum_));

  std::ranges::fill(magnitudes_, 0.0);
  magnitudes_[300] = 10.0;
  estimator_->addHarmonics();
  EXPECT_EQ(estimator_->findTopSpike(), 100U) << "of equals, here 300, 150 and 100, the lowest";
}

TEST_F(PitchEstimatorTest, AClickSoundsInEveryBinAlike) {
  Block samples(4096);
  samples[1234] = 16384;
  estimate(samples);
  for (const double magnitude : magnitudes_) ASSERT_NEAR(magnitude, 1.0, 1e-5);
}

TEST_F(PitchEstimatorTest, EstimatesBlocksInWholeBins) {
  EXPECT_EQ(estimate(tone(220, {0.15, 0.12, 0.09})), 220.00203F);
  EXPECT_EQ(estimate(tone(65.4, {0.09, 0.08, 0.06, 0.04})), 65.33653259277344F);
  EXPECT_NEAR(estimate(tone(98, {0.01, 0.12, 0.11, 0.04})), 98.0, 2 * kBinWidth);
  for (const int constant : {0, -20000, -32768}) {
    EXPECT_EQ(estimate(Block(4096, static_cast<std::int16_t>(constant))), 0.0F) << constant;
  }
  EXPECT_EQ(PitchEstimator::frequencyOfBin(16383, kRate), 3509.5357818603516F);
}

// What an earlier, longer block left behind must not leak into a shorter one.
TEST_F(PitchEstimatorTest, EachEstimateStartsClean) {
  const Block shortBlock = tone(146.8, {0.15, 0.12, 0.09}, 2048);
  const float alone = estimate(shortBlock);
  const float shorter = estimate(Block(shortBlock.begin(), shortBlock.end() - 1));
  estimate(tone(220, {0.15, 0.12, 0.09}));
  EXPECT_EQ(estimate(shortBlock), alone);
  EXPECT_EQ(estimate(shortBlock, 2048 * 2 - 1), shorter) << "an odd byte drops";
  EXPECT_EQ(estimate(shortBlock, 0), 0.0F);
  for (const auto& values : {magnitudes_, harmonicSum_}) {
    EXPECT_EQ(std::ranges::count(values, 0.0), PitchEstimator::kSpectrumLength);
  }
}

TEST_F(PitchEstimatorTest, WindowsInPlace) {
  Block samples = {1000, 1000, 1000, 1000, -1000};
  PitchEstimator::performWindow(samples.data(), 5);
  EXPECT_EQ(samples, (Block{80, 540, 1000, 539, -80}))
      << "the ten digits of 2 pi leave the second half a hair low; truncation shows it";
}

}  // namespace
}  // namespace endpin
