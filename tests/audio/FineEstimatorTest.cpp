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
  using Share = double (*)(int number, double hertz);  // of what a partial at that frequency has
  const Share whole = [](int, double) { return 1.0; };
  const Share phone = [](int, double hertz) {  // two first-order high passes at 180 Hz
    return hertz * hertz / (180.0 * 180.0 + hertz * hertz);
  };
  const struct {
    const char* name;
    Share share;
    double noise = 99.0;  // decibels below the tone
    double level = 0.1;   // RMS
  } rows[] = {
      {"rich", whole},
      {"three partials", [](int k, double) { return k <= 3 ? 1.0 : 0.0; }},
      {"no fundamental", [](int k, double) { return k > 1 ? 1.0 : 0.0; }},
      {"weak odd partials", [](int k, double) { return k % 2 ? 0.1 : 1.0; }},
      {"odd partials only", [](int k, double) { return k % 2 ? 1.0 : 0.0; }},
      {"through a phone", phone},
      {"loudest around 900 Hz",
       [](int k, double hertz) { return hertz > 600.0 && hertz < 1200.0 ? k : 1.0; }},
      {"with gaps",
       [](int k, double) { return k <= 3 || k == 5 || k == 8 || k == 14 ? 1.0 : 0.0; }},
      {"hardly above silence", whole, 99.0, 0.002},
      {"in noise", whole, 10.0},
      {"in noise, through a phone", phone, 10.0},
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
      {"partials 35 cents off",
       mixed(mixed(sine(100.0), sine(204.1)), mixed(sine(294.0), sine(408.0)))},
      {"high partials 11 Hz off", mixed(tone(200.0, {0.1, 0.1}), mixed(sine(811.0), sine(989.0)))},
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
