// The screen's controller on a fake platform: first launch, restore, demonstration, whole ticks.
#include "app/ViewController.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <numbers>
#include <string>
#include <vector>

#include "audio/LumoListener.h"
#include "calibration/StringFrequencies.h"
#include "tests/fakes/FakePlatform.h"

namespace endpin {
namespace {

class ViewControllerTest : public testing::Test {
 protected:
  ~ViewControllerTest() override { LumoListener::releaseSharedListener(); }

  // A new run of the application on the same store.
  void launch(bool demo = false) {
    LumoListener::releaseSharedListener();
    fake_.runLoop.timers.clear();
    fake_.runLoop.delayed.clear();
    fake_.log.lines.clear();
    controller_ = std::make_unique<ViewController>(fake_.platform, demo);
    connect();
    controller_->viewDidLoad();
    controller_->viewWillAppear(false);
  }

  void connect() {
    ViewController& c = *controller_;
    c.freq_label.connect(&frequency_);
    c.noteDisplay.connect(&note_);
    c.LEDDisplay128.connect(&lamp_);
    c.ring1.connect(&ring1_);
    c.tunedString5.connect(&picture_);
    c.calibrationFrequencyValue.connect(&value_);
    c.currentTemperamentName.connect(&name_);
    c.setFrequencyValueStepper.connect(&stepper_);
    c.micSensitivitySlider.connect(&slider_);
    c.soundNotificationSwitch.connect(&notification_);
    c.stringSoundsSwitch.connect(&sounds_);
    c.freqChartSwitch.connect(&chart_);
    c.setA440btn.connect(&a440_);
    c.firstStringFreq.connect(&chartLabel_);
    c.hZLabel.connect(&hertz_);
    c.aboutMsg2.connect(&about_);
    c.tfnoteDisplay.connect(&forkNote_);
  }

  void play(double hertz) {
    std::vector<std::int16_t> block(4096);
    for (std::size_t n = 0; n < block.size(); ++n) {
      double sum = 0;
      for (int h = 1; h <= 6; ++h) {
        sum += 3000.0 / h *
               std::sin(2 * std::numbers::pi * hertz * h * static_cast<double>(n) / 7019.5);
      }
      block[n] = static_cast<std::int16_t>(sum);
    }
    fake_.input.queue->level = {0.1F, 0.2F};
    fake_.input.queue->deliver(block);
  }

  void expectState(const char* frequency, const char* note, const char* lamp) {
    EXPECT_EQ(frequency_.text(), frequency);
    EXPECT_EQ(note_.text(), note);
    EXPECT_EQ(lamp_.image(), lamp);
  }

  fakes::FakePlatform fake_;
  Label frequency_, note_, value_, name_, chartLabel_, hertz_, about_, forkNote_;
  ImageView lamp_, ring1_, picture_;
  Stepper stepper_;
  Slider slider_;
  Switch notification_, sounds_, chart_;
  Button a440_;
  std::unique_ptr<ViewController> controller_;
};

TEST_F(ViewControllerTest, FirstLaunchWritesDefaultsAndRestoresNothing) {
  fake_.settings.setInteger("kRatingPromptUseCount", 1);  // recorded a moment before
  fake_.settings.writes.clear();
  slider_.setValue(3);
  launch();
  EXPECT_EQ(fake_.settings.writes,
            (std::vector<std::string>{
                "(cleared)", "a4InHzSavedValue", "numberOfRuns", "SavedLanguage",
                "savedSliderValue", "soundNotificationEnabled", "stringSoundsEnabled",
                "frequencyChartEnabled", "numberOfRuns", "NewFirstLaunchCello"}));
  EXPECT_EQ(fake_.settings.integerForKey("numberOfRuns"), 1);
  EXPECT_EQ(fake_.settings.integerForKey("savedSliderValue"), 5);
  EXPECT_FALSE(controller_->feedback().soundNotificationOn) << "the beep waits for the next launch";
  EXPECT_FALSE(notification_.isOn());
  EXPECT_EQ(slider_.value(), 3);
  EXPECT_EQ(controller_->sensitivity().micSensitivityValue, 0);
  EXPECT_EQ(a440_.backgroundImage(), "selectedFreqBg.png");
  EXPECT_EQ(name_.text(), "[a440T]");
  EXPECT_EQ(value_.text(), "440");
  EXPECT_EQ(chartLabel_.text(), "A3 = 220.0Hz");
  EXPECT_EQ(hertz_.text(), "[HzTitle]");
  EXPECT_EQ(about_.text(), "[TunerAboutMsg2]");
}

TEST_F(ViewControllerTest, LaterLaunchesRestore) {
  launch();
  fake_.settings.setInteger("a4InHzSavedValue", 437);
  fake_.settings.setBool("frequencyChartEnabled", false);
  fake_.settings.setDouble("savedSliderValue", 2.9);
  a440_.setBackgroundImage("");
  launch();
  EXPECT_EQ(fake_.settings.integerForKey("numberOfRuns"), 2);
  EXPECT_TRUE(controller_->feedback().soundNotificationOn);
  EXPECT_TRUE(notification_.isOn());
  EXPECT_FALSE(sounds_.isOn());
  EXPECT_FALSE(chart_.isOn());
  EXPECT_EQ(slider_.value(), 2);
  EXPECT_EQ(controller_->sensitivity().bottomLimit, 0.002) << "thresholds follow the slider only";
  EXPECT_EQ(stepper_.value(), 437);
  EXPECT_EQ(name_.text(), "");
  EXPECT_EQ(a440_.backgroundImage(), "");
  EXPECT_EQ(chartLabel_.text(), "A3 = 218.5Hz") << "the chart is on in every run";
  EXPECT_EQ(controller_->stringReferences()[0].frequency, stringFrequencies(437)[0]);
  for (const char* line : {"Current set frequency is:437", "Current saved frequency is:437",
                           "Current A4 calibration is:437"}) {
    EXPECT_EQ(fake_.log.count(line), 1) << line;
  }
}

TEST_F(ViewControllerTest, StrangeSwitchValuesLeaveTheSwitches) {
  launch();
  fake_.settings.setInteger("soundNotificationEnabled", 2);
  fake_.settings.setInteger("stringSoundsEnabled", -1);
  sounds_.setOn(true);
  launch();
  EXPECT_FALSE(controller_->feedback().soundNotificationOn);
  EXPECT_TRUE(sounds_.isOn());
}

TEST_F(ViewControllerTest, StrangeStoredNumbersAreBorne) {
  launch();
  constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
  fake_.settings.setInteger("numberOfRuns", kMost);
  for (const double index : {1e300, -0x1p63, std::nan(""), HUGE_VAL}) {
    fake_.settings.setDouble("savedSliderValue", index);
    slider_.setValue(5);
    launch();
    EXPECT_EQ(slider_.value(), 0) << index;
  }
  EXPECT_EQ(fake_.settings.integerForKey("numberOfRuns"), kMost) << "it does not turn over";
  EXPECT_EQ(countAfter(-1), 0);
  EXPECT_EQ(countAfter(kMost - 1), kMost);
}

TEST_F(ViewControllerTest, ATuningForkLeftOpenSilencesTheBeepUntilTheSwitchIsUsed) {
  launch();
  controller_->disableTemporarilySoundConfirmation();
  launch();
  EXPECT_TRUE(notification_.isOn());
  EXPECT_FALSE(controller_->feedback().soundNotificationOn);
  controller_->soundNotificationAction(notification_);
  EXPECT_TRUE(controller_->feedback().soundNotificationOn);
}

TEST_F(ViewControllerTest, StartsInOrderAndKeepsEveryTimer) {
  launch();
  EXPECT_TRUE(fake_.device.idleTimerDisabled);
  EXPECT_EQ(fake_.session.calls, (std::vector<std::string>{"record 8", "measurement", "active",
                                                           "playback 0", "record 8", "active"}));
  EXPECT_EQ(fake_.input.queue->starts, 1);
  ASSERT_EQ(fake_.runLoop.timers.size(), 2U);
  EXPECT_EQ(fake_.runLoop.timers[0].interval, 0.1);
  EXPECT_EQ(fake_.runLoop.timers[1].interval, 0.5);
  EXPECT_EQ(controller_->timer, 2) << "the volume check's";
  EXPECT_EQ(controller_->tuningFork().synthesizer().curTone, ToneSynthesizer::Square);
  EXPECT_EQ(fake_.log.count("Demo mode OFF, Sound detection started..."), 1);
  controller_->viewWillAppear(false);
  EXPECT_EQ(fake_.runLoop.timers.size(), 3U);
  EXPECT_EQ(fake_.output.unitsMade, 2);
  EXPECT_EQ(fake_.settings.integerForKey("numberOfRuns"), 2);
}

TEST_F(ViewControllerTest, ANoteGoesFromTheMicrophoneToTheLamp) {
  launch();
  launch();
  fake_.runLoop.advance(0.1);
  expectState("", "", "yellow128.png");
  play(stringFrequencies(440)[1]);
  fake_.runLoop.advance(1.0);
  expectState("146.8Hz", "D3", "green128.png");
  EXPECT_EQ(fake_.players.plays, 1);
  EXPECT_NEAR(static_cast<double>(controller_->lastReading().frequency), 146.83, 0.22);
  play(150.0);
  fake_.runLoop.advance(0.1);
  expectState(frequency_.text().c_str(), "D3", "green128.png");
  EXPECT_TRUE(frequency_.text().starts_with("150.") || frequency_.text().starts_with("149."));
  fake_.input.queue->level = {};
  fake_.runLoop.advance(0.1);
  expectState("", "", "yellow128.png");
}

TEST_F(ViewControllerTest, PresetsTakeTheRingsAwayAndTheStepperDoesNot) {
  launch();
  controller_->displayTunedString(1);
  stepper_.setValue(441);
  controller_->setFrequencyValue(stepper_);
  EXPECT_EQ(ring1_.image(), "ring1.png");
  controller_->setA441();
  EXPECT_EQ(ring1_.image(), "");
  EXPECT_NEAR(controller_->stringReferences()[0].toleranceBase, 220.5, 1e-8);
}

TEST_F(ViewControllerTest, TonesFollowTheLastPresetNotTheStepper) {
  launch();
  stepper_.setValue(466);
  controller_->setFrequencyValue(stepper_);
  controller_->playC2();
  EXPECT_EQ(forkNote_.text(), "C2");
  EXPECT_NEAR(controller_->tuningFork().synthesizer().toneFrequency, 65.4064F, 1e-4);
  EXPECT_EQ(fake_.output.starts, 1);
  controller_->stopFreqPlay();
  EXPECT_EQ(fake_.output.stops, 1);
}

TEST_F(ViewControllerTest, TheDemonstrationIsFrozenAndSilent) {
  launch(true);
  EXPECT_EQ(fake_.input.queuesMade, 0);
  EXPECT_EQ(fake_.output.unitsMade, 0);
  ASSERT_EQ(fake_.runLoop.timers.size(), 1U) << "the volume check only";
  expectState("220.0Hz", "A3", "green128.png");
  EXPECT_EQ(ring1_.image(), "ring1.png");
  EXPECT_EQ(picture_.image(), "1st_string_6plus.png");
  controller_->setA415();
  expectState("207.5Hz", "A3", "green128.png");
  EXPECT_EQ(ring1_.image(), "ring1.png");
  controller_->playD3();
  EXPECT_EQ(forkNote_.text(), "D3");
  EXPECT_EQ(fake_.output.starts, 0);
  EXPECT_EQ(fake_.log.count("Demo mode ON. No sound detection available."), 1);
}

TEST_F(ViewControllerTest, ALayoutWithoutOutletsIsHarmless) {
  controller_ = std::make_unique<ViewController>(fake_.platform, false);
  controller_->viewDidLoad();
  controller_->viewWillAppear(false);
  play(220);
  fake_.runLoop.advance(0.5);
  Switch on;
  Slider slider;
  controller_->soundNotificationAction(on);
  controller_->micSensitivity(slider);
  controller_->demoMode();
  EXPECT_EQ(controller_->freq_label->text(), "") << "an empty place keeps nothing";
  EXPECT_EQ(controller_->sensitivity().bottomLimit, 0.007) << "no slider reads as 0";
}

}  // namespace
}  // namespace endpin
