// The estimator against expectations worked out in other ways: spectra made by hand, a plain
// rendering of the harmonic sum, a Fourier sum in double precision, tones of known pitch.
#include "audio/PitchEstimator.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <numbers>
#include <random>
#include <span>
#include <vector>

namespace endpin {
namespace {

constexpr double kRate = 7019.5;
constexpr double kBinWidth = 0.2142181396484375;
constexpr std::size_t kBlock = 4096;

struct Partial {
  double hertz;
  double amplitude;
};

std::vector<std::int16_t> tone(std::span<const Partial> partials, std::size_t count = kBlock) {
  std::vector<std::int16_t> samples(count);
  for (std::size_t n = 0; n < count; ++n) {
    double sum = 0;
    for (const Partial& p : partials) {
      sum += p.amplitude *
             std::sin(2 * std::numbers::pi * p.hertz * static_cast<double>(n) / kRate + p.hertz);
    }
    samples[n] = static_cast<std::int16_t>(std::lround(sum));
  }
  return samples;
}

class PitchEstimatorTest : public testing::Test {
 protected:
  float estimate(const std::vector<std::int16_t>& samples) {
    return estimator_->getFreqFromBuffer(samples.data(),
                                         static_cast<std::uint32_t>(samples.size() * 2), kRate);
  }
  std::span<double> magnitudes() {
    return {estimator_->freq_db(), PitchEstimator::kSpectrumLength};
  }
  std::span<double> harmonicSum() {
    return {estimator_->freq_db_harmonic(), PitchEstimator::kSpectrumLength};
  }
  std::uint32_t spikeOf(std::span<const std::pair<std::size_t, double>> spectrum) {
    std::fill(magnitudes().begin(), magnitudes().end(), 0.0);
    for (const auto& [bin, magnitude] : spectrum) magnitudes()[bin] = magnitude;
    estimator_->addHarmonics();
    return estimator_->findTopSpike();
  }

  std::unique_ptr<PitchEstimator> estimator_ = std::make_unique<PitchEstimator>();
};

TEST_F(PitchEstimatorTest, ConvertsBinsToHertz) {
  EXPECT_EQ(PitchEstimator::frequencyOfBin(0, kRate), 0.0F);
  EXPECT_EQ(PitchEstimator::frequencyOfBin(1027, kRate), 220.00203F);
  EXPECT_EQ(PitchEstimator::frequencyOfBin(305, kRate), 65.33653259277344F);
  EXPECT_EQ(PitchEstimator::frequencyOfBin(16383, kRate), 3509.5357818603516F);
}

TEST_F(PitchEstimatorTest, PicksTheSpikeOfAHandMadeSpectrum) {
  struct Row {
    const char* what;
    std::vector<std::pair<std::size_t, double>> spectrum;
    std::uint32_t spike;
  };
  const std::vector<Row> rows = {
      {"silence", {}, 0},
      {"a fraction keeps the fundamental on top", {{300, 10.5}}, 300},
      {"a whole number ties with its half and third: the lowest wins", {{300, 10.0}}, 100},
      {"magnitudes below one have no harmonics", {{300, 0.99}, {200, 0.995}}, 200},
      {"equal spikes: the lower bin", {{9000, 3.5}, {12000, 3.5}}, 9000},
      {"the second harmonic of 8191 still counts", {{8191, 5.5}, {16382, 5.0}}, 8191},
      {"the last group of the halves is left out", {{8192, 5.5}, {16383, 7.25}}, 16383},
      {"the last group of the thirds is left out", {{5461, 1.5}, {16382, 7.25}}, 16382},
      {"the last third that counts is 5460", {{5460, 1.5}, {16381, 7.25}}, 5460},
      {"a weak fundamental under strong harmonics", {{300, 2.0}, {599, 9.7}, {901, 9.2}}, 300},
      {"the lowest bin can win", {{0, 4.5}, {1, 2.25}}, 0},
  };
  for (const Row& row : rows) EXPECT_EQ(spikeOf(row.spectrum), row.spike) << row.what;
}

// The harmonic sum as a player would describe it: every bin hands its magnitude to the bin at half
// and at a third of its place, each of which takes the whole part of the largest.
TEST_F(PitchEstimatorTest, HarmonicSumMatchesAPlainRendering) {
  std::mt19937 random(1);
  std::uniform_real_distribution<double> magnitude(0.0, 40.0);
  for (int round = 0; round < 3; ++round) {
    for (double& m : magnitudes()) m = magnitude(random);
    std::vector<double> expected(magnitudes().begin(), magnitudes().end());
    for (const double h : {2.0, 3.0}) {
      std::int32_t j = 0;
      std::int32_t most = 0;
      for (std::size_t i = 0; i < expected.size(); ++i) {
        const auto r = static_cast<std::int32_t>(std::round(static_cast<double>(i) / h));
        if (j < r) {
          expected[static_cast<std::size_t>(j)] += static_cast<double>(most);
          j = r;
          most = 0;
        }
        most = static_cast<std::int32_t>(std::max(magnitudes()[i], static_cast<double>(most)));
      }
    }
    estimator_->addHarmonics();
    EXPECT_TRUE(std::ranges::equal(expected, harmonicSum()));
  }
}

TEST_F(PitchEstimatorTest, MagnitudesMatchAFourierSum) {
  const std::vector<Partial> partials = {{146.83, 4000}, {293.7, 6000}, {1000, 900}};
  const auto samples = tone(partials);
  estimate(samples);
  for (const std::size_t k : {0U, 1U, 685U, 1371U, 4668U, 16383U}) {
    double re = 0;
    double im = 0;
    for (std::size_t n = 0; n < samples.size(); ++n) {
      const double angle = 2 * std::numbers::pi * static_cast<double>(k * n % 32768) / 32768;
      re += samples[n] * std::cos(angle);
      im -= samples[n] * std::sin(angle);
    }
    EXPECT_NEAR(magnitudes()[k], std::hypot(re, im) / 16384, 2e-3) << "bin " << k;
  }
}

TEST_F(PitchEstimatorTest, EstimatesBlocks) {
  const std::vector<Partial> rich = {{98, 3000}, {196, 2500}, {294, 2000}, {392, 1200}};
  const std::vector<Partial> weakFundamental = {{98, 300}, {196, 4000}, {294, 3500}, {392, 1200}};
  EXPECT_NEAR(estimate(tone(rich)), 98.0, kBinWidth);
  EXPECT_NEAR(estimate(tone(weakFundamental)), 98.0, 2 * kBinWidth);

  const std::vector<std::int16_t> silence(kBlock, 0);
  EXPECT_EQ(estimate(silence), 0.0F);
  EXPECT_EQ(estimate(std::vector<std::int16_t>(kBlock, -20000)), 0.0F) << "constant";
  EXPECT_EQ(estimate(std::vector<std::int16_t>(kBlock, -32768)), 0.0F) << "constant, full scale";
}

// What an earlier, longer block left behind must not leak into a shorter one.
TEST_F(PitchEstimatorTest, EachEstimateStartsClean) {
  const std::vector<Partial> a = {{220, 5000}, {440, 4000}, {660, 3000}};
  const std::vector<Partial> d = {{146.8, 5000}, {293.6, 4000}, {440.4, 3000}};
  const auto shortBlock = tone(d, 2048);
  const float alone = estimate(shortBlock);
  estimate(tone(a, 4096));
  EXPECT_EQ(estimate(shortBlock), alone);
  const auto withOddByte = shortBlock;
  EXPECT_EQ(estimator_->getFreqFromBuffer(withOddByte.data(), 2048 * 2 - 1, kRate),
            estimate(tone(d, 2047)))
      << "an odd byte drops";
  EXPECT_EQ(estimator_->getFreqFromBuffer(shortBlock.data(), 0, kRate), 0.0F);
  EXPECT_TRUE(std::ranges::all_of(magnitudes(), [](double m) { return m == 0; }));
  EXPECT_TRUE(std::ranges::all_of(harmonicSum(), [](double m) { return m == 0; }));
}

TEST_F(PitchEstimatorTest, WindowsInPlace) {
  std::vector<std::int16_t> samples(5, 1000);
  samples[4] = -1000;
  PitchEstimator::performWindow(samples.data(), 5);
  EXPECT_EQ(samples, (std::vector<std::int16_t>{80, 540, 1000, 539, -80}))
      << "the ten digits of 2 pi leave the second half a hair low; truncation shows it";
}

}  // namespace
}  // namespace endpin
