// The application on a platform in memory: layouts, start-up, restore, demonstration, whole ticks.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <set>

#include "app/Application.h"
#include "app/ScreenTable.h"
#include "calibration/StringFrequencies.h"
#include "tests/fakes/FakePlatform.h"

namespace endpin {
namespace {

using Strings = std::vector<std::string>;

struct FakeScreen final : Screen {
  void installLayout(const std::string& name) override { calls.push_back(name); }
  bool asksForStatusBar() const override { return asks; }
  void setNeedsStatusBarAppearanceUpdate(bool hidden) override {
    calls.push_back("asked, hidden " + std::to_string(hidden));
  }
  void setStatusBarHidden(bool hidden, int animation) override {
    calls.push_back("hidden " + std::to_string(hidden) + " animation " + std::to_string(animation));
  }
  bool asks = true;
  Strings calls;
};

TEST(AppDelegateTest, ChoosesTheLayoutByIdiomAndExactHeightAndHidesTheStatusBar) {
  const struct {
    std::optional<int> idiom;
    double height;
    Strings layout;  // none or one
  } rows[] = {
      {0, 480, {"Main_iPhone4s"}},
      {0, 852, {"Main_iPhone12Pro"}},
      {0, 667.5, {}},
      {1, 1024, {"Main_iPad"}},
      {1, 1210, {"Main_iPad_Pro_11"}},
      {1, 844, {}},
      {{}, 844, {}},
  };
  for (const auto& row : rows) {
    fakes::FakePlatform fake;
    fake.device.idiom = row.idiom;
    fake.device.height = row.height;
    FakeScreen screen;
    screen.asks = row.idiom == 0;  // some do
    AppDelegate delegate({fake.device, screen, fake.log});
    EXPECT_TRUE(delegate.applicationDidFinishLaunching()) << "whatever is missing";
    EXPECT_EQ(delegate.hasWindow(), !row.layout.empty()) << row.height;
    Strings calls = row.layout;
    calls.emplace_back(screen.asks ? "asked, hidden 1" : "hidden 1 animation 2");
    EXPECT_EQ(screen.calls, calls) << row.height;
    EXPECT_EQ(fake.log.lines, Strings(row.idiom == 0 ? 5 : 0,
                                      "iPhone has a height of: " + std::to_string(row.height)));
  }
}

// What a screen in another language has to go by.
TEST(ScreenTableTest, NamesEveryElementAndSpeaksOfItInPlainValues) {
  fakes::FakePlatform fake;
  Application application(fake.platform, false);
  std::set<std::string_view> names;
  for (const OutletRow& row : outletTable()) {
    SCOPED_TRACE(row.name);
    View& view = row.of(application.controller());
    EXPECT_TRUE(names.insert(row.name).second) << "twice";
    for (const ViewProperty& property : propertiesOf(view.kind())) {
      if (!property.write) continue;
      const ViewValue before = property.read(view);
      const bool isSwitch = std::holds_alternative<bool>(before);
      const ViewValue after =
          isSwitch ? ViewValue(!std::get<bool>(before)) : ViewValue(std::get<double>(before) + 1);
      property.write(view, after);
      property.write(view, "of another kind");
      EXPECT_EQ(property.read(view), after);
      view.setPresent(false);
      property.write(view, before);
      EXPECT_EQ(property.read(view), isSwitch ? ViewValue(false) : ViewValue(0.0));
      view.setPresent(true);
      EXPECT_EQ(property.read(view), after) << "swallowed while it was absent";
    }
  }
  for (const ActionRow& row : actionTable()) {
    EXPECT_TRUE(names.insert(row.name).second) << row.name << " twice";
    EXPECT_EQ(perform(row, application.controller(), nullptr), !row.sender) << row.name;
  }
}

// A run of the application over settings that outlast it.
struct Launch {
  explicit Launch(fakes::FakeSettings& settings, bool demo = false)
      : platform{fake.input, fake.session, fake.players, fake.output, fake.runLoop,
                 settings,   fake.device,  fake.bundle,  fake.log},
        application(platform, demo) {}
  void start() { application.launch(); }
  Strings shown() const {
    return {app.freq_label.text(), app.noteDisplay.text(), app.LEDDisplay128.image()};
  }

  fakes::FakePlatform fake;
  Platform platform;
  Application application;
  ViewController& app = application.controller();
};

struct ViewControllerTest : ::testing::Test {
  ViewControllerTest() { Launch(settings).start(); }
  fakes::FakeSettings settings;  // as the first launch leaves them
};

TEST(FirstLaunch, WritesDefaultsAndRestoresNothing) {
  fakes::FakeSettings settings;
  settings.setInteger("kRatingPromptUseCount", 1);  // recorded a moment before
  Launch run(settings);
  run.app.micSensitivitySlider.setValue(3);
  run.start();
  EXPECT_EQ(settings.writes,
            (Strings{"kRatingPromptUseCount", "(cleared)", "a4InHzSavedValue", "numberOfRuns",
                     "SavedLanguage", "savedSliderValue", "soundNotificationEnabled",
                     "stringSoundsEnabled", "frequencyChartEnabled", "numberOfRuns",
                     "NewFirstLaunchCello"}));
  EXPECT_EQ(settings.unsynchronized, 0);
  EXPECT_EQ(settings.integerForKey("numberOfRuns"), 1);
  EXPECT_EQ(settings.integerForKey("savedSliderValue"), 5);
  EXPECT_FALSE(run.app.feedback().soundNotificationOn) << "the beep waits for the next launch";
  EXPECT_TRUE(run.app.soundNotificationSwitch.isOn()) << "as it stood";
  EXPECT_EQ(run.app.micSensitivitySlider.value(), 3);
  EXPECT_EQ(run.app.sensitivity().micSensitivityValue, 0);
  EXPECT_EQ(run.app.setA440btn.backgroundImage(), "selectedFreqBg.png");
  EXPECT_EQ(
      (Strings{run.app.currentTemperamentName.text(), run.app.calibrationFrequencyValue.text(),
               run.app.firstStringFreq.text(), run.app.hZLabel.text(), run.app.aboutMsg2.text()}),
      (Strings{"[a440T]", "440", "A3 = 220.0Hz", "[HzTitle]", "[TunerAboutMsg2]"}));
}

TEST_F(ViewControllerTest, LaterLaunchesRestore) {
  settings.setInteger("a4InHzSavedValue", 437);
  settings.setBool("frequencyChartEnabled", false);
  settings.setBool("stringSoundsEnabled", true);
  settings.setDouble("savedSliderValue", 2.9);
  Launch run(settings);
  run.app.freqChartSwitch.setOn(true);
  run.start();
  EXPECT_EQ(settings.integerForKey("numberOfRuns"), 2);
  EXPECT_TRUE(run.app.feedback().soundNotificationOn && run.app.soundNotificationSwitch.isOn());
  EXPECT_TRUE(run.app.feedback().stringSoundsOn && run.app.stringSoundsSwitch.isOn());
  EXPECT_FALSE(run.app.freqChartSwitch.isOn());
  EXPECT_EQ(run.app.micSensitivitySlider.value(), 2);
  EXPECT_EQ(run.app.sensitivity().bottomLimit, 0.002) << "thresholds follow the slider only";
  EXPECT_EQ(run.app.setFrequencyValueStepper.value(), 437);
  EXPECT_EQ(run.app.currentTemperamentName.text(), "");
  EXPECT_EQ(run.app.setA440btn.backgroundImage(), "");
  EXPECT_EQ(run.app.firstStringFreq.text(), "A3 = 218.5Hz") << "the chart is on in every run";
  EXPECT_EQ(run.app.stringReferences()[0].frequency, stringFrequencies(437)[0]);
  EXPECT_EQ(run.fake.log.count("Current set frequency is:437"), 1);
}

TEST_F(ViewControllerTest, StrangeStoredValuesAreBorne) {
  constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
  settings.setInteger("numberOfRuns", kMost - 1);
  settings.setInteger("soundNotificationEnabled", 2);
  settings.setInteger("stringSoundsEnabled", -1);
  for (const double index : {1e300, -0x1p63, std::nan(""), HUGE_VAL}) {
    settings.setDouble("savedSliderValue", index);
    Launch run(settings);
    run.app.micSensitivitySlider.setValue(5);
    run.app.stringSoundsSwitch.setOn(true);
    run.start();
    EXPECT_EQ(run.app.micSensitivitySlider.value(), 0) << index;
    EXPECT_EQ(settings.integerForKey("numberOfRuns"), kMost) << "it does not turn over";
    EXPECT_FALSE(run.app.feedback().soundNotificationOn);
    EXPECT_TRUE(run.app.stringSoundsSwitch.isOn());
  }
}

TEST_F(ViewControllerTest, ATuningForkLeftOpenSilencesTheBeepUntilTheSwitchIsUsed) {
  Launch(settings).app.disableTemporarilySoundConfirmation();
  Launch run(settings);
  run.start();
  EXPECT_TRUE(run.app.soundNotificationSwitch.isOn());
  EXPECT_FALSE(run.app.feedback().soundNotificationOn);
  run.app.soundNotificationAction(run.app.soundNotificationSwitch);
  EXPECT_TRUE(run.app.feedback().soundNotificationOn);
}

TEST_F(ViewControllerTest, StartsInOrderAndKeepsEveryTimer) {
  Launch run(settings);
  run.start();
  EXPECT_TRUE(run.fake.device.idleTimerDisabled);
  EXPECT_EQ(run.fake.log.count("Demo mode OFF, Sound detection started..."), 1);
  EXPECT_EQ(run.fake.input.queue->starts, 1);
  EXPECT_EQ(run.app.tuningFork().synthesizer().curTone, ToneSynthesizer::Square);
  EXPECT_EQ(run.app.timer, 2) << "the volume check's";
  run.app.viewWillAppear(false);
  EXPECT_EQ(run.fake.runLoop.timers, (std::vector{0.1, 0.5, 0.5}));
  EXPECT_EQ(run.fake.output.unitsMade, 2);
  run.app.playA3();
  EXPECT_EQ(run.fake.output.started, 2) << "not the newest";
}

TEST_F(ViewControllerTest, ASessionThatCannotBeHadIsSkippedARefusedCategoryIsNot) {
  const struct {
    bool exists;
    AudioSession::Error error;
    Strings calls;
  } rows[] = {
      {true, {}, {"record 8", "measurement", "active", "playback 0", "record 8", "active"}},
      {true, "busy", {"record 8", "measurement", "active", "playback 0"}},
      {false, "none", {"record 8", "measurement", "playback 0"}},
  };
  for (const auto& row : rows) {
    Launch run(settings);
    run.fake.session.exists = row.exists;
    run.fake.session.categoryError = row.error;
    run.start();
    EXPECT_EQ(run.fake.session.calls, row.calls);
    const std::string complaint = "Error creating session: " + row.error.value_or("");
    EXPECT_EQ(run.fake.log.count(complaint), row.exists ? 0 : 1);
  }
}

TEST_F(ViewControllerTest, PresetsTakeTheRingsAwayAndTonesFollowThemNotTheStepper) {
  Launch run(settings);
  run.start();
  run.app.displayTunedString(1);
  run.app.setFrequencyValueStepper.setValue(466);
  run.app.setFrequencyValue(run.app.setFrequencyValueStepper);
  EXPECT_EQ(run.app.ring1.image(), "ring1.png");
  run.app.playC2();
  EXPECT_EQ(run.app.tfnoteDisplay.text(), "C2");
  EXPECT_NEAR(run.app.tuningFork().synthesizer().toneFrequency, 65.4064F, 1e-4);
  EXPECT_EQ(run.fake.output.starts, 1);
  run.app.stopFreqPlay();
  EXPECT_EQ(run.fake.output.stops, 1);
  run.app.setA441();
  EXPECT_EQ(run.app.ring1.image(), "");
  EXPECT_NEAR(run.app.stringReferences()[0].toleranceBase, 220.5, 1e-8);
}

TEST_F(ViewControllerTest, TheDemonstrationIsFrozenAndSilent) {
  Launch run(settings, true);
  run.start();
  EXPECT_EQ(run.fake.input.queuesMade + run.fake.output.unitsMade, 0);
  EXPECT_EQ(run.fake.runLoop.timers, std::vector{0.5}) << "the volume check only";
  EXPECT_EQ(run.shown(), (Strings{"220.0Hz", "A3", "green128.png"}));
  EXPECT_EQ(run.app.tunedString5.image(), "1st_string_6plus.png");
  run.app.setA415();
  EXPECT_EQ(run.shown(), (Strings{"207.5Hz", "A3", "green128.png"}));
  EXPECT_EQ(run.app.ring1.image(), "ring1.png");
  run.app.playD3();
  EXPECT_EQ(run.app.tfnoteDisplay.text(), "D3");
  EXPECT_EQ(run.fake.output.starts, 0);
  EXPECT_EQ(run.fake.log.count("Demo mode ON. No sound detection available."), 1);
}

}  // namespace
}  // namespace endpin
