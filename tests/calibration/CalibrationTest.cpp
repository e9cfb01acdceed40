// Presets, stepper and restore with their differences; chart; temperament names.
#include "calibration/Calibration.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>

#include "calibration/StringFrequencies.h"
#include "calibration/TemperamentName.h"
#include "tests/fakes/FakePlatform.h"

namespace endpin {
namespace {

constexpr const char* kSelected = "selectedFreqBg.png";

TEST(StringFrequenciesTest, FollowEqualTemperament) {
  constexpr std::array<int, 4> kSemitones = {-12, -19, -26, -33};
  for (const std::int64_t a4 : {392, 415, 440, 466}) {
    const auto frequencies = stringFrequencies(a4);
    for (std::size_t i = 0; i < 4; ++i) {
      const double exact = static_cast<double>(a4) * std::exp2(kSemitones[i] / 12.0);
      EXPECT_NEAR(frequencies[i] / exact, 1.0, 1e-11);
      EXPECT_GT(frequencies[i], exact) << "the factors lie a hair high";
    }
  }
  EXPECT_EQ(stringFrequencies(440), (std::array<double, 4>{220.00000000073578, 146.8323839594813,
                                                           97.99885899614745, 65.4063913257512}));
}

class CalibrationTest : public testing::Test {
 protected:
  CalibrationTest() {
    for (std::size_t i = 0; i < kPresets.size(); ++i) {
      (outlets_.*kPresets[i].button).connect(&buttons_[i]);
    }
    outlets_.calibrationFrequencyValue.connect(&value_);
    outlets_.setFrequencyValueStepper.connect(&stepper_);
    outlets_.currentTemperamentName.connect(&name_);
    outlets_.chartDisplay.connect(&picture_);
    outlets_.firstStringFreq.connect(&chartLabels_[0]);
    outlets_.secondStringFreq.connect(&chartLabels_[1]);
    outlets_.thirdStringFreq.connect(&chartLabels_[2]);
    outlets_.fourthStringFreq.connect(&chartLabels_[3]);
  }

  void choose(std::int64_t a4) {
    calibration_.choosePreset(*presetFor(a4), [] {});
  }
  void step(double value) {
    stepper_.setValue(value);
    calibration_.setFrequencyValue(stepper_);
  }
  // A4 of the one button that is highlighted; 0 for none, -1 for several.
  std::int64_t highlighted() const {
    std::int64_t a4 = 0;
    for (std::size_t i = 0; i < kPresets.size(); ++i) {
      if (buttons_[i].backgroundImage() != kSelected) continue;
      a4 = a4 == 0 ? kPresets[i].a4InHz : -1;
    }
    return a4;
  }

  fakes::FakePlatform fake_;
  CalibrationOutlets outlets_;
  std::array<Button, 9> buttons_;
  Label value_;
  Stepper stepper_;
  Label name_;
  ImageView picture_;
  std::array<Label, 4> chartLabels_;
  Calibration calibration_{outlets_, {fake_.settings, fake_.device, fake_.bundle, fake_.log}};
};

TEST_F(CalibrationTest, PresetsSetEverything) {
  struct Row {
    std::int64_t a4;
    const char* name;
    std::ptrdiff_t frequencyLines;  // in the log: the two oldest pitches repeat theirs
  };
  for (const Row& row : {Row{392, "[a392T]", 2}, Row{415, "[a415T]", 2}, Row{432, "[a432T]", 1},
                         Row{440, "[a440T]", 1}, Row{441, "[a441T]", 1}, Row{442, "[a442T]", 1},
                         Row{443, "[a443T]", 1}, Row{444, "[a444T]", 1}, Row{466, "[a466T]", 1}}) {
    fake_.log.lines.clear();
    choose(row.a4);
    const std::string a4 = std::to_string(row.a4);
    EXPECT_EQ(calibration_.a4InHz(), row.a4);
    EXPECT_EQ(fake_.settings.integerForKey("a4InHzSavedValue"), row.a4);
    EXPECT_EQ(fake_.settings.integerForKey("savedA4Calibration"), 0) << "the stepper's alone";
    EXPECT_EQ(calibration_.frequencies(), stringFrequencies(row.a4));
    EXPECT_EQ(calibration_.toleranceBases(), calibration_.frequencies());
    EXPECT_EQ(highlighted(), row.a4);
    EXPECT_EQ(picture_.image(), "chartiphone" + a4 + ".png");
    EXPECT_EQ(name_.text(), row.name);
    EXPECT_EQ(value_.text(), a4);
    EXPECT_EQ(fake_.log.count("Save A " + a4 + "Hz"), 1);
    const std::string first = std::to_string(calibration_.frequencies()[0]);
    EXPECT_EQ(fake_.log.count(first), row.frequencyLines);
  }
}

TEST_F(CalibrationTest, ThePresetIsNamedBeforeItsHookAndChangedAfter) {
  choose(440);
  int seen = 0;
  calibration_.choosePreset(*presetFor(415), [&] {
    ++seen;
    EXPECT_EQ(calibration_.temperamentIndex(), 2);
    EXPECT_EQ(calibration_.a4InHz(), 440);
  });
  EXPECT_EQ(seen, 1);
}

TEST_F(CalibrationTest, ChartPictureFollowsTheDevice) {
  struct Row {
    std::optional<int> idiom;
    double height;
    const char* picture;
  };
  for (const Row& row : {Row{0, 568, "chartiphone442.png"}, Row{0, 667, "chartipad442.png"},
                         Row{0, 736, "chartipad442.png"}, Row{{}, 844, "chartiphone442.png"},
                         Row{{}, 736, "chartipad442.png"}, Row{1, 1024, "chartipad442.png"},
                         Row{1, 667, "chartipad442.png"}, Row{3, 667, "old"}}) {
    fake_.device.idiom = row.idiom;
    fake_.device.height = row.height;
    picture_.setImage("old");
    choose(442);
    EXPECT_EQ(picture_.image(), row.picture) << row.height;
  }
}

TEST_F(CalibrationTest, TheStepperKeepsTheFrequencies) {
  choose(440);
  const auto before = calibration_.frequencies();
  fake_.log.lines.clear();
  step(441);
  EXPECT_EQ(value_.text(), "441");
  EXPECT_EQ(name_.text(), "[a441T]");
  EXPECT_EQ(fake_.settings.integerForKey("savedA4Calibration"), 441);
  EXPECT_EQ(fake_.settings.integerForKey("a4InHzSavedValue"), 441);
  EXPECT_EQ(calibration_.frequencies(), before);
  EXPECT_EQ(calibration_.toleranceBases(), before);
  EXPECT_EQ(highlighted(), 440) << "whatever the value";
  EXPECT_EQ(picture_.image(), "chartiphone440.png");
  EXPECT_EQ(fake_.log.lines, (std::vector<std::string>{"Save A 440Hz"}));
  calibration_.deriveFrequencies();  // what the next appearance of the screen does
  EXPECT_NEAR(calibration_.frequencies()[0], 220.5, 1e-8);
}

TEST_F(CalibrationTest, StepperAndRestoreNameDifferentPitches) {
  struct Row {
    double a4;
    const char* stepped;
    const char* restored;
    std::int64_t highlight;  // after the restore
  };
  for (const Row& row : {
           Row{391, "", "", 0},
           Row{392, "[a392T]", "[a392T]", 392},
           Row{430, "[a430T]", "", 0},
           Row{432, "[a432T]", "[a432T]", 432},
           Row{435, "[a435T]", "", 0},
           Row{438, "", "", 0},
           Row{439, "[a439T]", "", 0},
           Row{445, "[a445T]", "[a445T]", 0},
           Row{466, "[a466T]", "[a466T]", 466},
           Row{0, "", "", 0},
           Row{440.7, "", "[a440T]", 440},
       }) {
    step(row.a4);
    EXPECT_EQ(name_.text(), row.stepped) << row.a4;
    EXPECT_EQ(calibration_.a4InHz(), static_cast<std::int64_t>(row.a4));
    EXPECT_EQ(highlighted(), 440);

    for (Button& button : buttons_) button.setBackgroundImage("");
    Calibration next(outlets_, {fake_.settings, fake_.device, fake_.bundle, fake_.log});
    const auto saved = static_cast<std::int64_t>(row.a4);
    next.restore(saved);
    next.displayChart();
    EXPECT_EQ(name_.text(), row.restored) << row.a4;
    EXPECT_EQ(highlighted(), row.highlight) << row.a4;
    EXPECT_EQ(stepper_.value(), static_cast<double>(saved));
    EXPECT_EQ(next.a4InHz(), saved);
  }
}

TEST_F(CalibrationTest, Only432BringsItsChartBackAndOnlyOnTablets) {
  for (const std::int64_t a4 : {432, 440}) {
    for (const int idiom : {0, 1}) {
      fake_.device.idiom = idiom;
      picture_.setImage("old");
      calibration_.restore(a4);
      EXPECT_EQ(picture_.image(), a4 == 432 && idiom == 1 ? "chartipad432.png" : "old");
    }
  }
}

TEST_F(CalibrationTest, TheSwitchStopsTheChartLabels) {
  choose(440);
  EXPECT_EQ(chartLabels_[0].text(), "A3 = 220.0Hz");
  EXPECT_EQ(chartLabels_[1].text(), "D3 = 146.8Hz");
  EXPECT_EQ(chartLabels_[2].text(), "G2 = 98.0Hz");
  EXPECT_EQ(chartLabels_[3].text(), "C2 = 65.4Hz");
  Switch chartSwitch;
  calibration_.chart().toggleFreqChart(chartSwitch, fake_.settings, fake_.log);
  EXPECT_FALSE(fake_.settings.boolForKey("frequencyChartEnabled"));
  choose(466);
  EXPECT_EQ(chartLabels_[0].text(), "A3 = 220.0Hz");
  EXPECT_EQ(value_.text(), "466");
  chartSwitch.setOn(true);
  calibration_.chart().toggleFreqChart(chartSwitch, fake_.settings, fake_.log);
  EXPECT_EQ(chartLabels_[0].text(), "A3 = 220.0Hz") << "only the next refresh writes";
  calibration_.displayChart();
  EXPECT_EQ(chartLabels_[3].text(), "C2 = 69.3Hz");
  EXPECT_EQ(fake_.log.count("Frequency chart IS NOT enabled: 0"), 1);
  EXPECT_EQ(fake_.log.count("Frequency chart IS enabled: 1"), 1);
}

TEST_F(CalibrationTest, AMissingNameShowsItsKeyAndAnUnknownIndexNothing) {
  fake_.bundle.missing = {"a440T"};
  choose(440);
  EXPECT_EQ(name_.text(), "a440T");
  displayTemperamentName(15, fake_.bundle, name_);
  EXPECT_EQ(name_.text(), "a440T");
  displayTemperamentName(4, fake_.bundle, name_);
  EXPECT_EQ(name_.text(), "[a430_5T]");
}

}  // namespace
}  // namespace endpin
