// Presets, stepper and restore with their differences; chart; temperament names.
#include "calibration/Calibration.h"

#include <gtest/gtest.h>

#include <array>

#include "calibration/StringFrequencies.h"
#include "tests/fakes/FakePlatform.h"

namespace endpin {
namespace {

TEST(StringFrequenciesTest, FollowEqualTemperament) {
  const std::array<double, 4> at440 = {220.00000000073578, 146.8323839594813, 97.99885899614745,
                                       65.4063913257512};
  EXPECT_EQ(stringFrequencies(440), at440);
  EXPECT_NEAR(stringFrequencies(415)[3], at440[3] * 415 / 440, 1e-9);
}

class CalibrationTest : public testing::Test {
 protected:
  // A4 of the one button that is highlighted; 0 for none, -1 for several.
  std::int64_t highlighted() const {
    std::int64_t a4 = 0;
    for (const Preset& preset : kPresets) {
      if ((outlets_.*preset.button).backgroundImage() != "selectedFreqBg.png") continue;
      a4 = a4 == 0 ? preset.a4InHz : -1;
    }
    return a4;
  }

  fakes::FakePlatform fake_;
  CalibrationOutlets outlets_;
  Calibration calibration_{outlets_, {fake_.settings, fake_.device, fake_.bundle, fake_.log}};
};

TEST_F(CalibrationTest, PresetsSetEverythingAfterTheirHook) {
  std::int64_t before = 0;
  for (const std::int64_t hertz : {392, 415, 432, 440, 441, 442, 443, 444, 466}) {
    const std::string a4 = std::to_string(hertz);
    for (const auto& idiom : {std::optional(1), std::optional(3), std::optional<int>()}) {
      fake_.device.idiom = idiom;
      fake_.log.lines.clear();
      calibration_.choosePreset(*presetFor(hertz), [&] {
        EXPECT_EQ(calibration_.a4InHz(), before);
        calibration_.displayTemperamentName();
        EXPECT_EQ(outlets_.currentTemperamentName.text(), "[a" + a4 + "T]") << "named already";
        outlets_.currentTemperamentName.setText("");
      });
      before = hertz;
      EXPECT_EQ(outlets_.chartDisplay.image(), (idiom ? "chartipad" : "chartiphone") + a4 + ".png");
    }
    EXPECT_EQ(calibration_.a4InHz(), hertz);
    EXPECT_EQ(fake_.settings.integerForKey("a4InHzSavedValue"), hertz);
    EXPECT_EQ(calibration_.frequencies(), stringFrequencies(hertz));
    EXPECT_EQ(calibration_.toleranceBases(), calibration_.frequencies());
    EXPECT_EQ(highlighted(), hertz);
    EXPECT_EQ(outlets_.currentTemperamentName.text(), "[a" + a4 + "T]");
    EXPECT_EQ(outlets_.calibrationFrequencyValue.text(), a4);
    EXPECT_EQ(fake_.log.count("Save A " + a4 + "Hz"), 1);
    const std::string first = std::to_string(calibration_.frequencies()[0]);
    EXPECT_EQ(fake_.log.count(first), hertz < 432 ? 2 : 1) << "the two oldest repeat theirs";
  }
}

TEST_F(CalibrationTest, TheStepperKeepsTheFrequenciesAndARestoreNamesFewerPitches) {
  calibration_.choosePreset(*presetFor(440), [] {});
  const auto before = calibration_.frequencies();
  const struct {
    double a4;
    const char* stepped;
    const char* restored;
    std::int64_t highlight;  // after the restore
  } rows[] = {
      {391, "", "", 0},
      {430, "[a430T]", "", 0},
      {432, "[a432T]", "[a432T]", 432},
      {435, "[a435T]", "", 0},
      {438, "", "", 0},
      {439, "[a439T]", "", 0},
      {445, "[a445T]", "[a445T]", 0},
      {0, "", "", 0},
      {440.7, "", "[a440T]", 440},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.a4);
    const auto saved = static_cast<std::int64_t>(row.a4);
    const std::string shown = saved == 0 ? "00" : std::to_string(saved);
    outlets_.chartDisplay.setImage("");
    outlets_.setFrequencyValueStepper.setValue(row.a4);
    calibration_.setFrequencyValue(outlets_.setFrequencyValueStepper);
    EXPECT_EQ(outlets_.currentTemperamentName.text(), row.stepped);
    EXPECT_EQ(outlets_.calibrationFrequencyValue.text(), shown);
    EXPECT_EQ(calibration_.a4InHz(), saved);
    EXPECT_EQ(fake_.settings.integerForKey("savedA4Calibration"), saved);
    EXPECT_EQ(fake_.settings.integerForKey("a4InHzSavedValue"), saved);
    EXPECT_EQ(calibration_.frequencies(), before);
    EXPECT_EQ(highlighted(), 440) << "whatever the value";
    EXPECT_EQ(outlets_.chartDisplay.image(), "chartiphone440.png");

    for (const Preset& preset : kPresets) (outlets_.*preset.button).setBackgroundImage("");
    Calibration next(outlets_, {fake_.settings, fake_.device, fake_.bundle, fake_.log});
    for (const int idiom : {1, 0}) {
      fake_.device.idiom = idiom;
      outlets_.chartDisplay.setImage("old");
      outlets_.calibrationFrequencyValue.setText("");
      next.restore(saved);
      EXPECT_EQ(outlets_.calibrationFrequencyValue.text(), shown);
      EXPECT_EQ(outlets_.chartDisplay.image(),
                saved == 432 && idiom == 1 ? "chartipad432.png" : "old");
    }
    next.displayChart();
    EXPECT_EQ(outlets_.currentTemperamentName.text(), row.restored);
    EXPECT_EQ(highlighted(), row.highlight);
    EXPECT_EQ(outlets_.setFrequencyValueStepper.value(), static_cast<double>(saved));
    EXPECT_EQ(next.a4InHz(), saved);
    next.deriveFrequencies();  // what the next appearance of the screen does
    EXPECT_EQ(next.frequencies(), stringFrequencies(saved));
  }
}

}  // namespace
}  // namespace endpin
