// Level gates, sensitivity slider, in-tune bands.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "calibration/Presets.h"
#include "calibration/StringFrequencies.h"
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
    EXPECT_GE(settings.synchronized, 1);
    ASSERT_EQ(log.lines.size(), 3U);
    EXPECT_EQ(log.lines[0], "micSensitivityValue: " + std::to_string(row.index));
  }
}

// The floats at each edge and on either side of it, for every preset and string.
TEST(RecognitionTest, BandsEndWhereTheyShould) {
  constexpr double kDivisors[] = {1000.0, 1000.0, 850.0, 875.0};
  for (const Preset& preset : kPresets) {
    StringReferences references;
    const auto frequencies = stringFrequencies(preset.a4InHz);
    for (std::size_t i = 0; i < 4; ++i) references[i] = {frequencies[i], frequencies[i], ""};
    for (std::size_t i = 0; i < 4; ++i) {
      const double lower = frequencies[i] - frequencies[i] / kDivisors[i];
      const double upper = frequencies[i] + frequencies[i] / kDivisors[i];
      for (const double edge : {lower, upper}) {
        const auto near = static_cast<float>(edge);
        for (const double hertz : {std::nextafter(near, 0.0F), near, std::nextafter(near, 1e3F)}) {
          const bool inside = lower <= hertz && hertz <= upper;
          EXPECT_EQ(matchingString(hertz, references), inside ? i + 1 : 0) << hertz;
        }
      }
    }
  }
  // Bounds that can be met, 255 and 257, and a band without width.
  const StringReferences exact = {{{256.0, 1000.0}, {146.75, 0.0}, {98.0, 98.0}, {65.5, 65.5}}};
  const std::pair<double, int> rows[] = {
      {255.0, 1}, {257.0, 1}, {146.75, 2}, {146.5, 0}, {kNan, 0}};
  for (const auto& [hertz, number] : rows) EXPECT_EQ(matchingString(hertz, exact), number) << hertz;
}

}  // namespace
}  // namespace endpin
