// The fine estimator against sounds whose pitch is known because they were made with it.
#include "audio/FineEstimator.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <memory>
#include <numbers>
#include <vector>

#include "tests/fakes/AllocationCounter.h"
#include "tests/support/Tone.h"

namespace endpin {
namespace {

using testing::Sound;

constexpr double kRate = 7019.5;
constexpr double kSeconds = 4096.5 / kRate;

using Amplitudes = std::vector<double>;

// Partials up to number `count`, falling like 1 / number.
Amplitudes falling(int count) {
  Amplitudes amplitudes;
  for (int k = 1; k <= count; ++k) amplitudes.push_back(0.1 / k);
  return amplitudes;
}

Sound tone(double hertz, const Amplitudes& amplitudes) {
  return testing::harmonics(kRate, kSeconds, hertz, amplitudes);
}
Sound sine(double hertz, double amplitude = 0.1) {
  return tone(hertz, {amplitude});
}
Sound withNoise(const Sound& sound, double decibelsBelow, std::uint32_t seed) {
  const double level = testing::rms(sound) * std::pow(10.0, -decibelsBelow / 20.0);
  return mixed(sound, testing::noise(kRate, kSeconds, level, seed));
}

// A voice: its pitch falls from one frequency to another, its loudest partials from 300 to 900 Hz.
Sound glide(double from, double to) {
  Sound sound = testing::silence(kRate, kSeconds);
  double turns = 0.0;
  for (std::size_t n = 0; n < sound.samples.size(); ++n) {
    const double hertz = from + (to - from) * static_cast<double>(n) / 4096.0;
    turns += hertz / kRate;
    double sum = 0.0;
    for (int k = 1; k * hertz < 3000.0; ++k) {
      const double loudness = k * hertz > 300.0 && k * hertz < 900.0 ? 0.05 : 0.01;
      sum += loudness * std::sin(2.0 * std::numbers::pi * turns * k);
    }
    sound.samples[n] = static_cast<float>(sum);
  }
  return sound;
}

class FineEstimatorTest : public ::testing::Test {
 protected:
  double estimate(const std::vector<std::int16_t>& samples, std::size_t bytes) {
    return static_cast<double>(
        estimator_->estimate(samples.data(), static_cast<std::uint32_t>(bytes)));
  }
  double estimate(const Sound& sound) { return estimate(testing::toS16(sound), 8192); }
  // Cents between what is heard and what there is; large when nothing is heard.
  double centsOff(const Sound& sound, double hertz) {
    return 1200.0 * std::log2(std::max(estimate(sound), 1.0) / hertz);
  }

  std::unique_ptr<FineEstimator> estimator_ = std::make_unique<FineEstimator>();
};

// Calls with the fundamental of each string, at several calibrations, in and out of tune.
void forEachPitch(const std::function<void(double hertz)>& check) {
  for (const double a4 : {392.0, 415.0, 440.0, 443.0, 466.0}) {
    for (const int semitones : {12, 19, 26, 33}) {
      for (const double cents : {-20.0, -5.0, -1.0, 0.0, 1.0, 5.0, 20.0}) {
        check(a4 * std::exp2(-semitones / 12.0 + cents / 1200.0));
      }
    }
  }
}

TEST_F(FineEstimatorTest, HearsAStringBetweenTheBinsWhateverItsTimbre) {
  const struct {
    const char* name;
    double (*share)(int number, double hertz);  // of what a partial at that frequency has
    double level = 0.1;                         // RMS
    double noise = 99.0;                        // decibels below the tone
  } rows[] = {
      {"no fundamental", [](int k, double) { return k > 1 ? 1.0 : 0.0; }},
      {"weak odd partials", [](int k, double) { return k % 2 ? 0.1 : 1.0; }},
      {"odd partials only", [](int k, double) { return k % 2 ? 1.0 : 0.0; }},
      {"loudest around 900 Hz",
       [](int k, double hertz) { return hertz > 600.0 && hertz < 1200.0 ? k : 1.0; }},
      {"hardly above silence", [](int, double) { return 1.0; }, 0.002},
      {"in noise, through two first-order high passes at 180 Hz",
       [](int, double hertz) { return hertz * hertz / (180.0 * 180.0 + hertz * hertz); }, 0.1,
       10.0},
  };
  for (const auto& row : rows) {
    forEachPitch([&](double hertz) {
      Amplitudes amplitudes = falling(20);
      for (int k = 1; k <= 20; ++k) {
        amplitudes[static_cast<std::size_t>(k) - 1] *= row.share(k, k * hertz);
      }
      const Sound clean = scaledToRms(tone(hertz, amplitudes), row.level);
      const Sound heard = row.noise < 99.0 ? withNoise(clean, row.noise, 1) : clean;
      EXPECT_NEAR(centsOff(heard, hertz), 0.0, row.noise < 99.0 ? 0.5 : 0.1)
          << row.name << " at " << hertz;
    });
  }
  EXPECT_NEAR(centsOff(scaledToRms(tone(98.0, falling(20)), 1.0), 98.0), 0.0, 0.2) << "clipped";
}

TEST_F(FineEstimatorTest, HearsPureSinesAtTheirOwnPitch) {
  for (double hertz = 50.0; hertz < 3001.0;) {
    EXPECT_NEAR(centsOff(sine(hertz), hertz), 0.0, 0.2) << hertz;
    hertz += hertz > 1280.0 && hertz < 1305.0 ? 0.2 : 0.013 * hertz;  // where whistles begin
  }
}

// Lines at `first`, `first` + 1, … times the fundamental, all so many cents off.
struct Lines {
  double first;
  int count;
  double amplitude;
  double cents = 0.0;
};

// What sounds along bends some partials, covers others, or is louder. The string has the pitch that
// its own partials agree on, the high ones more than the low, but for the very highest.
TEST_F(FineEstimatorTest, HearsTheStringAmongWhatSoundsAlong) {
  const struct {
    const char* name;
    double hertz;
    std::vector<Lines> lines;
  } rows[] = {
      {"strongest partial pulled", 146.8, {{1, 1, 0.08}, {2, 1, 0.15, 18.0}, {3, 5, 0.04}}},
      {"low partials pulled", 98.0, {{1, 4, 0.1, 5.0}, {5, 3, 0.1}}},
      {"a neighbour's upper partials", 98.0, {{1, 4, 0.2}, {5, 6, 0.04, 20.0}}},
      {"beyond a gap, the highest bent", 98.0, {{1, 5, 0.02}, {11, 3, 0.1, 3.0}}},
      {"seven other lines louder",
       65.4,
       {{1, 4, 0.02}, {5, 1, 0.021}, {6, 14, 0.02}, {6.28, 7, 0.0245}}},
  };
  for (const auto& row : rows) {
    Sound sound = testing::silence(kRate, kSeconds);
    for (const auto& [first, count, amplitude, cents] : row.lines) {
      for (int n = 0; n < count; ++n) {
        const double hertz = testing::raisedByCents((first + n) * row.hertz, cents);
        sound = mixed(sound, sine(hertz, amplitude));
      }
    }
    EXPECT_NEAR(centsOff(sound, row.hertz), 0.0, 0.5) << row.name;
  }
}

TEST_F(FineEstimatorTest, HearsNoPitchWhereThereIsNone) {
  const Sound silence = testing::silence(kRate, kSeconds);
  Sound click = silence;
  click.samples[2000] = 1.0F;
  const std::pair<const char*, Sound> rows[] = {
      {"silence", silence},
      {"click", click},
      {"a tone under noise", withNoise(tone(98.0, falling(12)), -6.0, 3)},
      {"two whistles", mixed(sine(1800.0), sine(2500.0))},
      {"two pitches", mixed(sine(200.0), sine(330.0))},
      {"a chord", tone(100.0, {0, 0, 0.1, 0, 0.1, 0.1, 0.1})},
      {"partials 35 cents off",
       mixed(mixed(sine(100.0), sine(204.1)), mixed(sine(294.0), sine(408.0)))},
      {"high partials 11 Hz off", mixed(tone(200.0, {0.1, 0.1}), mixed(sine(811.0), sine(989.0)))},
      {"a falling voice", glide(140.0, 110.0)},
      {"rumble", sine(20.0)},
  };
  for (const auto& [name, sound] : rows) EXPECT_EQ(estimate(sound), 0.0) << name;
  for (std::uint32_t seed = 10; seed < 60; ++seed) {
    EXPECT_EQ(estimate(testing::noise(kRate, kSeconds, 0.1, seed)), 0.0) << "noise " << seed;
  }
}

TEST_F(FineEstimatorTest, SurvivesExtremeSamples) {
  const struct {
    int (*sample)(int n);
    bool mayHavePitch = true;
  } rows[] = {
      {[](int) { return -32768; }, false},
      {[](int) { return 32767; }, false},
      {[](int n) { return n % 2 ? 32767 : -32768; }},
      {[](int n) { return n / 36 % 2 ? 32767 : -32768; }},
  };
  for (const auto& row : rows) {
    std::vector<std::int16_t> samples;
    for (int n = 0; n < 4096; ++n) samples.push_back(static_cast<std::int16_t>(row.sample(n)));
    const double heard = estimate(samples, 8192);
    EXPECT_TRUE(heard == 0.0 || (row.mayHavePitch && heard >= 27.0 && heard <= 3451.0))
        << heard << " in row " << &row - rows;
  }
}

TEST_F(FineEstimatorTest, TakesBlocksOfAnyLengthKeepsNothingOfThemAndAllocatesNothing) {
  const auto string = testing::toS16(testing::harmonics(kRate, 2.0, 146.8, falling(12)));
  const auto voice = testing::toS16(glide(140.0, 110.0));
  std::vector<std::int16_t> shifted = string;
  for (std::int16_t& sample : shifted) sample = static_cast<std::int16_t>(sample / 8 + 20000);
  const double half = estimate(string, 4096);
  const double whole = estimate(string, 8192);
  const std::size_t allocations = fakes::allocationCount();
  for (const std::size_t bytes : {0, 1, 2}) EXPECT_EQ(estimate(string, bytes), 0.0);
  EXPECT_EQ(estimate(voice, 8192), 0.0);
  EXPECT_EQ(estimate(string, 4097), half) << "an odd byte drops";
  EXPECT_EQ(estimate(string, 20000), whole) << "the first block counts";
  EXPECT_NEAR(estimate(shifted, 4096), 146.8, 0.1) << "far from zero";
  EXPECT_NEAR(half, 146.8, 0.1);
  EXPECT_EQ(fakes::allocationCount(), allocations);
}

}  // namespace
}  // namespace endpin
