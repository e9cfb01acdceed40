// Level gates, sensitivity slider, volume warning.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "tests/fakes/FakePlatform.h"
#include "tuner/Sensitivity.h"
#include "tuner/VolumeWarning.h"

namespace endpin {
namespace {

using Gate = Sensitivity::Gate;

TEST(GateTest, JudgesLevelAndFrequency) {
  const float above = std::nextafter(1000.0F, 2000.0F);
  const float nan = std::numeric_limits<float>::quiet_NaN();
  struct Row {
    const char* what;
    float power;
    float frequency;
    Gate gate;
  };
  Sensitivity sensitivity;
  sensitivity.bottomLimit = 0.25;  // exact in single precision, so that the edges can be met
  sensitivity.topLimit = 0.5;
  for (const Row& row : {
           Row{"silence", 0.0F, 0.0F, Gate::Clear},
           Row{"just below the bottom", std::nextafter(0.25F, 0.0F), 220.0F, Gate::Clear},
           Row{"the bottom", 0.25F, 220.0F, Gate::Hold},
           Row{"the top", 0.5F, 220.0F, Gate::Hold},
           Row{"just above the top", std::nextafter(0.5F, 1.0F), 220.0F, Gate::Detect},
           Row{"highest plausible", 1.0F, 1000.0F, Gate::Detect},
           Row{"too high", 1.0F, above, Gate::Clear},
           Row{"too high in the band", 0.3F, above, Gate::Clear},
           Row{"no data", 1.0F, 0.0F, Gate::Detect},
           Row{"no number", 1.0F, nan, Gate::Clear},
           Row{"no level", nan, 220.0F, Gate::Clear},
       }) {
    EXPECT_EQ(sensitivity.judge(row.power, row.frequency), row.gate) << row.what;
  }
}

TEST(GateTest, SliderChoosesThresholdsBeforeItSnaps) {
  struct Row {
    double released;
    std::int64_t index;
    double snapped;
    double bottom;
    double top;
  };
  for (const Row& row : {
           Row{0, 0, 0, 0.007, 0.0095},
           Row{1.2, 1, 1, 0.006, 0.0085},
           Row{2.5, 2, 3, 0.005, 0.0075},
           Row{3, 3, 3, 0.004, 0.0065},
           Row{4.7, 4, 5, 0.003, 0.0055},
           Row{7, 7, 7, 0.002, 0.0045},
           Row{10, 10, 10, 0.002, 0.0045},
           Row{11, 11, 11, 0.1, 0.2},  // out of range: thresholds stay
           Row{-1, -1, -1, 0.1, 0.2},
       }) {
    fakes::FakeSettings settings;
    fakes::FakeLog log;
    Sensitivity sensitivity{.bottomLimit = 0.1, .topLimit = 0.2};
    Slider slider;
    slider.setValue(row.released);
    sensitivity.micSensitivity(slider, slider, settings, log);
    EXPECT_EQ(sensitivity.micSensitivityValue, row.index);
    EXPECT_EQ(slider.value(), row.snapped);
    EXPECT_EQ(settings.integerForKey("savedSliderValue"), static_cast<std::int64_t>(row.snapped));
    EXPECT_EQ(sensitivity.bottomLimit, row.bottom) << row.released;
    EXPECT_EQ(sensitivity.topLimit, row.top) << row.released;
    EXPECT_GE(settings.synchronized, 1);
    ASSERT_EQ(log.lines.size(), 3U);
    EXPECT_EQ(log.lines[0], "micSensitivityValue: " + std::to_string(row.index));
  }
}

TEST(GateTest, RestoringTheSliderLeavesTheThresholds) {
  Sensitivity sensitivity;
  Slider slider;
  sensitivity.restore(0.9, slider);
  EXPECT_EQ(sensitivity.micSensitivityValue, 0);
  EXPECT_EQ(slider.value(), 0);
  EXPECT_EQ(sensitivity.bottomLimit, 0.002);
  EXPECT_EQ(sensitivity.topLimit, 0.0045);
}

TEST(GateTest, LowVolumeBlinks) {
  TunerOutlets outlets;
  Label text;
  Label triangle;
  int changes = 0;
  outlets.turnUpTheVolumeLabel.connect(&text);
  outlets.turnUpTheVolumeTriangleLabel.connect(&triangle);
  text.onChange([&] { ++changes; });

  showVolumeWarning(0.5F, outlets);
  EXPECT_TRUE(text.hidden() && triangle.hidden());
  showVolumeWarning(0.49F, outlets);
  EXPECT_FALSE(text.hidden() || triangle.hidden());
  EXPECT_TRUE(text.animation().repeat && text.animation().autoreverse);
  EXPECT_EQ(triangle.animation().duration, 0.25);
  const int once = changes;
  showVolumeWarning(0.0F, outlets);
  EXPECT_GT(changes, once) << "the animation is started again at every check";
}

}  // namespace
}  // namespace endpin
