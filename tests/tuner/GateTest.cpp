// Level gates, sensitivity slider, in-tune bands.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "tests/fakes/FakePlatform.h"
#include "tuner/Sensitivity.h"
#include "tuner/StringRecognition.h"

namespace endpin {
namespace {

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

TEST(GateTest, JudgesLevelAndFrequency) {
  using enum Sensitivity::Gate;
  const float quieter = std::nextafter(0.25F, 0.0F);
  const float louder = std::nextafter(0.5F, 1.0F);
  const float higher = std::nextafter(1000.0F, 2000.0F);
  // Limits that are exact in single precision, so that the edges can be met.
  const Sensitivity sensitivity{.bottomLimit = 0.25, .topLimit = 0.5};
  const struct {
    float power, frequency;
    Sensitivity::Gate gate;
  } rows[] = {
      {0.0F, 0.0F, Clear},   {quieter, 220.0F, Clear}, {0.25F, 220.0F, Hold},
      {0.5F, 220.0F, Hold},  {louder, 220.0F, Detect}, {1.0F, 1000.0F, Detect},
      {1.0F, higher, Clear}, {0.3F, higher, Clear},    {1.0F, 0.0F, Detect},
      {1.0F, kNan, Clear},   {kNan, 220.0F, Clear},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(sensitivity.judge(row.power, row.frequency), row.gate)
        << row.power << " " << row.frequency;
  }
}

TEST(GateTest, SliderChoosesThresholdsBeforeItSnaps) {
  const struct {
    double released;
    std::int64_t index, saved;
    double bottom, top;
  } rows[] = {
      {0, 0, 0, 0.007, 0.0095},    {1.2, 1, 1, 0.006, 0.0085}, {2.5, 2, 3, 0.005, 0.0075},
      {3, 3, 3, 0.004, 0.0065},    {4.7, 4, 5, 0.003, 0.0055}, {7, 7, 7, 0.002, 0.0045},
      {10, 10, 10, 0.002, 0.0045}, {11, 11, 11, 0.1, 0.2},  // out of range: thresholds stay
      {-1, -1, -1, 0.1, 0.2},
  };
  for (const auto& row : rows) {
    fakes::FakeSettings settings;
    fakes::FakeLog log;
    Sensitivity sensitivity{.bottomLimit = 0.1, .topLimit = 0.2};
    Slider slider;
    slider.setValue(row.released);
    sensitivity.micSensitivity(slider, slider, settings, log);
    EXPECT_EQ(sensitivity.micSensitivityValue, row.index);
    EXPECT_EQ(slider.value(), static_cast<double>(row.saved));
    EXPECT_EQ(settings.integerForKey("savedSliderValue"), row.saved);
    EXPECT_EQ(sensitivity.bottomLimit, row.bottom) << row.released;
    EXPECT_EQ(sensitivity.topLimit, row.top) << row.released;
    EXPECT_EQ(settings.unsynchronized, 0);
    EXPECT_EQ(log.count("micSensitivityValue: " + std::to_string(row.index)), 1);
  }
}

// Bounds that can be met: a hertz to either side, and two for the string whose band is wider than
// its own frequency would make it.
TEST(RecognitionTest, BandsEndWhereTheyShould) {
  const StringReferences references = {
      {{1256.0, 2000.0, ""}, {1000.0, 1000.0, ""}, {850.0, 850.0, ""}, {875.0, 875.0, ""}}};
  for (int number = 1; number <= 4; ++number) {
    const StringReference& reference = references[static_cast<std::size_t>(number - 1)];
    const double reach = number == 1 ? 2.0 : 1.0;
    for (const double edge : {reference.frequency - reach, reference.frequency + reach}) {
      const double outside = std::nextafter(edge, edge < reference.frequency ? 0.0 : 1e4);
      EXPECT_EQ(matchingString(edge, references), number) << edge;
      EXPECT_EQ(matchingString(outside, references), 0) << edge;
    }
  }
  EXPECT_EQ(matchingString(kNan, references), 0);
}

}  // namespace
}  // namespace endpin
