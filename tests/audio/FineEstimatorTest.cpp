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

// Partials up to number `count`, every `step`-th of them, falling like 1 / number.
Amplitudes falling(int count, int step = 1, int rest = 0) {
  Amplitudes amplitudes;
  for (int k = 1; k <= count; ++k) amplitudes.push_back(k % step == rest ? 0.1 / k : 0.0);
  return amplitudes;
}

// What two first-order high passes leave of them.
Amplitudes throughPhone(Amplitudes amplitudes, double fundamental, double corner = 180.0) {
  for (std::size_t k = 0; k < amplitudes.size(); ++k) {
    const double ratio = static_cast<double>(k + 1) * fundamental / corner;
    amplitudes[k] *= ratio * ratio / (1.0 + ratio * ratio);
  }
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
    double tolerance;  // cents
    std::function<Sound(double hertz)> sound;
  } rows[] = {
      {"rich", 0.1, [](double hertz) { return tone(hertz, falling(20)); }},
      {"three partials", 0.1, [](double hertz) { return tone(hertz, falling(3)); }},
      {"no fundamental", 0.1,
       [](double hertz) {
         Amplitudes amplitudes = falling(20);
         amplitudes[0] = 0.0;
         return tone(hertz, amplitudes);
       }},
      {"weak odd partials", 0.1,
       [](double hertz) {
         Amplitudes amplitudes = falling(20);
         for (std::size_t k = 0; k < 20; k += 2) amplitudes[k] *= 0.1;
         return tone(hertz, amplitudes);
       }},
      {"odd partials only", 0.1, [](double hertz) { return tone(hertz, falling(20, 2, 1)); }},
      {"through a phone", 0.1,
       [](double hertz) { return tone(hertz, throughPhone(falling(20), hertz)); }},
      {"loudest around 900 Hz", 0.1,
       [](double hertz) {
         Amplitudes amplitudes = falling(20);
         for (std::size_t k = 0; k < 20; ++k) {
           const double partial = static_cast<double>(k + 1) * hertz;
           if (partial > 600.0 && partial < 1200.0) amplitudes[k] = 0.1;
         }
         return tone(hertz, amplitudes);
       }},
      {"with gaps", 0.1,
       [](double hertz) {
         Amplitudes amplitudes = falling(14);
         for (const std::size_t k : {4, 6, 7, 9, 10, 11, 12, 13}) amplitudes[k - 1] = 0.0;
         return tone(hertz, amplitudes);
       }},
      {"hardly above silence", 0.1,
       [](double hertz) { return scaledToRms(tone(hertz, falling(20)), 0.002); }},
      {"in noise", 0.5, [](double hertz) { return withNoise(tone(hertz, falling(20)), 10.0, 1); }},
      {"in noise, through a phone", 0.5,
       [](double hertz) {
         return withNoise(tone(hertz, throughPhone(falling(20), hertz)), 10.0, 2);
       }},
  };
  for (const auto& row : rows) {
    forEachPitch([&](double hertz) {
      EXPECT_NEAR(centsOff(row.sound(hertz), hertz), 0.0, row.tolerance)
          << row.name << " at " << hertz;
    });
  }
}

TEST_F(FineEstimatorTest, HearsPureSinesAtTheirOwnPitch) {
  for (double hertz = 50.0; hertz < 3001.0; hertz *= 1.013) {
    EXPECT_NEAR(centsOff(sine(hertz), hertz), 0.0, 0.2) << hertz;
  }
  for (double hertz = 1295.0; hertz < 1305.0; hertz += 0.1) {
    EXPECT_NEAR(centsOff(sine(hertz), hertz), 0.0, 0.2) << "where whistles begin, " << hertz;
  }
}

// A neighbouring string that sounds along pulls one partial; a room bends all of them a little.
TEST_F(FineEstimatorTest, AgreesOnAPitchWithPartialsOutOfPlace) {
  forEachPitch([&](double hertz) {
    for (const std::size_t number : {1, 3}) {
      Amplitudes others = falling(12);
      others[number - 1] = 0.0;
      const double pulled = testing::raisedByCents(static_cast<double>(number) * hertz, 10.0);
      EXPECT_NEAR(centsOff(mixed(tone(hertz, others), sine(pulled)), hertz), 0.0, 0.5)
          << number << " pulled, " << hertz;
    }
    const Sound bent = mixed(tone(testing::raisedByCents(hertz, 1.0), falling(12, 2, 1)),
                             tone(testing::raisedByCents(hertz, -1.0), falling(12, 2, 0)));
    EXPECT_NEAR(centsOff(bent, hertz), 0.0, 0.6) << "bent, " << hertz;
  });
}

TEST_F(FineEstimatorTest, HearsNoPitchWhereThereIsNone) {
  Sound click = testing::silence(kRate, kSeconds);
  click.samples[2000] = 1.0F;
  Sound clicks = click;
  for (std::size_t n = 0; n < 4096; n += 300 + n % 127) clicks.samples[n] = 0.7F;
  Sound bell = sine(300.0, 0.2);
  for (const double hertz : {347, 419, 463, 509, 557, 641, 683, 733, 809, 877, 971, 1091}) {
    bell = mixed(bell, sine(hertz, 0.03));
  }
  const struct {
    const char* name;
    Sound sound;
  } rows[] = {
      {"silence", testing::silence(kRate, kSeconds)},
      {"click", click},
      {"clicks", clicks},
      {"noise", testing::noise(kRate, kSeconds, 0.1)},
      {"quiet noise", testing::noise(kRate, kSeconds, 0.0001)},
      {"a tone under noise", withNoise(tone(98.0, falling(12)), -6.0, 3)},
      {"a whistle under noise", withNoise(sine(1800.0), 0.0, 4)},
      {"two whistles", mixed(sine(1800.0), sine(2500.0))},
      {"two pitches", mixed(sine(200.0), sine(330.0))},
      {"two pitches far apart", mixed(sine(100.0), sine(1000.0))},
      {"a chord", tone(100.0, {0, 0, 0.1, 0, 0.1, 0.1, 0.1})},
      {"a bell", bell},
      {"a falling voice", glide(140.0, 110.0)},
      {"a rising voice", glide(200.0, 260.0)},
      {"another falling voice", glide(230.0, 215.0)},
      {"rumble", sine(20.0)},
  };
  for (const auto& row : rows) EXPECT_EQ(estimate(row.sound), 0.0) << row.name;
  for (std::uint32_t seed = 10; seed < 60; ++seed) {
    EXPECT_EQ(estimate(testing::noise(kRate, kSeconds, 0.1, seed)), 0.0) << "noise " << seed;
  }
}

TEST_F(FineEstimatorTest, SurvivesExtremeSamples) {
  const std::function<int(int n)> rows[] = {
      [](int) { return -32768; },
      [](int) { return 32767; },
      [](int n) { return n == 4095 ? -32768 : 0; },
      [](int n) { return n % 2 ? 32767 : -32768; },
      [](int n) { return n % 2; },
      [](int n) { return n / 36 % 2 ? 32767 : -32768; },
  };
  constexpr std::ptrdiff_t kWithoutPitch = 3;  // of the rows; the others may have one
  for (const auto& row : rows) {
    std::vector<std::int16_t> samples;
    for (int n = 0; n < 4096; ++n) samples.push_back(static_cast<std::int16_t>(row(n)));
    const double heard = estimate(samples, 8192);
    EXPECT_TRUE(heard == 0.0 || (&row - rows >= kWithoutPitch && heard >= 27.0 && heard <= 3451.0))
        << heard << " in row " << &row - rows;
  }
  const Sound overdriven = testing::scaledToRms(tone(98.0, falling(20)), 1.0);
  EXPECT_NEAR(centsOff(overdriven, 98.0), 0.0, 0.2);
}

TEST_F(FineEstimatorTest, TakesBlocksOfAnyLength) {
  const auto samples = testing::toS16(testing::harmonics(kRate, 2.0, 146.8, falling(12)));
  EXPECT_EQ(estimate(samples, 0), 0.0);
  EXPECT_EQ(estimate(samples, 1), 0.0);
  EXPECT_EQ(estimate(samples, 2), 0.0);
  EXPECT_NEAR(estimate(samples, 4096), 146.8, 0.1);
  std::vector<std::int16_t> shifted = samples;
  for (std::int16_t& sample : shifted) sample = static_cast<std::int16_t>(sample / 8 + 20000);
  EXPECT_NEAR(estimate(shifted, 4096), 146.8, 0.1) << "far from zero";
  EXPECT_EQ(estimate(samples, 4097), estimate(samples, 4096)) << "an odd byte drops";
  EXPECT_EQ(estimate(samples, 20000), estimate(samples, 8192)) << "the first block counts";
}

TEST_F(FineEstimatorTest, KeepsNothingFromBlockToBlockAndAllocatesNothing) {
  const auto string = testing::toS16(tone(65.4, falling(12)));
  const auto voice = testing::toS16(glide(140.0, 110.0));
  const double half = estimate(string, 4096);
  const double alone = estimate(string, 8192);
  const std::size_t allocations = fakes::allocationCount();
  EXPECT_EQ(estimate(voice, 8192), 0.0);
  EXPECT_EQ(estimate(string, 4096), half);
  EXPECT_EQ(estimate(string, 8192), alone);
  EXPECT_EQ(fakes::allocationCount(), allocations);
}

}  // namespace
}  // namespace endpin
