// What the screen tells of hearing itself: troubles, level, microphones, fine hearing, what is
// spoken; and what happens when the main screen comes back.
#include <gtest/gtest.h>

#include <optional>

#include "app/Application.h"
#include "calibration/StringFrequencies.h"
#include "tests/fakes/FakePlatform.h"
#include "tests/support/Tone.h"

namespace endpin {
namespace {

using Strings = std::vector<std::string>;

// The second start, at A4 = 440, listening to a fake microphone.
struct HearingTest : ::testing::Test {
  HearingTest() {
    fake.settings.setBool("NewFirstLaunchCello", true);
    fake.settings.setInteger("numberOfRuns", 1);
    fake.settings.setInteger("a4InHzSavedValue", 440);
    fake.settings.setBool("soundNotificationEnabled", true);
  }
  ViewController& start(bool fineByDefault = false) {
    application.emplace(fake.platform, false, fineByDefault);
    application->launch();
    screen().announcement.onChange([this] { spoken.push_back(screen().announcement.text()); });
    return screen();
  }
  ViewController& screen() { return application->controller(); }
  void hear(double hertz, float level = 0.1F) {
    fake.input.queue->level = {level, level};
    fake.input.queue->deliver(
        testing::toS16(testing::harmonics(7019.5, 4096 / 7019.5, hertz, {0.1, 0.05, 0.03, 0.02})));
    fake.runLoop.advance(0.1);
  }
  void silence() {
    fake.input.queue->level = {};
    fake.runLoop.advance(0.1);
  }
  std::string lamp() { return screen().LEDDisplay.image(); }

  fakes::FakePlatform fake;
  std::optional<Application> application;
  Strings spoken;
};

TEST_F(HearingTest, SaysWhyNothingIsHeardOnceAndTakesItBackAtOnce) {
  start();
  const std::pair<HearingTrouble, std::string> rows[] = {
      {HearingTrouble::NoSoundService, "TroubleNoSound"},
      {HearingTrouble::MicrophoneMuted, "TroubleMuted"}};
  for (const auto& [trouble, key] : rows) {
    spoken.clear();
    fake.microphones.now = trouble;
    fake.runLoop.advance(0.4);
    EXPECT_EQ(screen().troubleTitle.text(), "") << "it may be another microphone's beginning";
    fake.runLoop.advance(1);
    EXPECT_EQ(screen().troubleTitle.text(), "[" + key + "]");
    EXPECT_EQ(screen().troubleRemedy.text(), "[" + key + "Remedy]");
    EXPECT_EQ(spoken, Strings{"[" + key + "]. [" + key + "Remedy]"});
    fake.microphones.now = HearingTrouble::None;
    fake.runLoop.advance(0.1);
    EXPECT_EQ(screen().troubleTitle.text() + screen().troubleRemedy.text(), "");
    EXPECT_EQ(spoken.back(), "[ListeningTitle]");
  }
}

TEST_F(HearingTest, TheLevelRisesAtOnceAndFallsAStepATick) {
  start();
  const std::pair<float, double> rows[] = {{0.0019F, 0}, {0.002F, 1}, {0.003F, 2}, {0.0045F, 3},
                                           {0.005F, 4},  {0.02F, 5},  {0.045F, 6}, {1.0F, 7}};
  for (const auto& [power, step] : rows) {
    fake.input.queue->level = {power, power};
    fake.runLoop.advance(0.1);
    EXPECT_EQ(screen().inputLevel.level(), step) << power;
  }
  fake.input.queue->level = {};
  for (double step = 6; step >= 0; --step) {
    fake.runLoop.advance(0.1);
    EXPECT_EQ(screen().inputLevel.level(), step);
  }
}

TEST_F(HearingTest, AStringInTuneIsSpokenOnceUntilItWasLetGo) {
  fake.bundle.texts["NoteInTune"] = "%@ in tune";
  start();
  hear(220);
  fake.runLoop.advance(1);
  hear(225);
  hear(220);
  EXPECT_EQ(spoken, Strings{"A3 in tune"}) << "wavering";
  hear(146.8324);
  silence();
  hear(146.8324);
  EXPECT_EQ(spoken, (Strings{"A3 in tune", "D3 in tune", "", "D3 in tune"}));
  silence();
  spoken.clear();
  fake.input.queue->level = {0.1F, 0.1F};
  fake.runLoop.advance(0.3);
  EXPECT_EQ(lamp(), "green64.png") << "the next note has begun, and no block of it is there";
  hear(98);
  EXPECT_EQ(spoken, Strings{"G2 in tune"});
}

TEST_F(HearingTest, AMicrophoneIsChosenKeptAndWaitedFor) {
  fake.bundle.texts["NowUsing"] = "now: %@";
  start();
  EXPECT_EQ(screen().microphoneChoices.choices(),
            "[FollowTheSystem]\tnow: Built-in\nBuilt-in\nClip");
  EXPECT_EQ(screen().microphoneName.text(), "Built-in");
  screen().microphoneChoices.setChosen(2);
  screen().chooseMicrophone(screen().microphoneChoices);
  EXPECT_EQ(fake.microphones.used, Strings{"usb"});
  EXPECT_EQ(fake.settings.unsynchronized, 0);

  const int listings = fake.microphones.listings;
  fake.runLoop.advance(1);
  EXPECT_EQ(fake.microphones.listings, listings) << "not at every tick";
  fake.microphones.all.pop_back();
  fake.microphones.inUse = "";
  ++fake.microphones.changed;
  fake.runLoop.advance(0.1);
  EXPECT_EQ(fake.microphones.listings, listings + 1);
  start();
  EXPECT_EQ(fake.microphones.used, (Strings{"usb", "usb"})) << "before it listens";
  EXPECT_EQ(screen().microphoneChoices.choices(),
            "[FollowTheSystem]\nBuilt-in\nClip\t[NotConnected]");
  EXPECT_EQ(screen().microphoneChoices.chosen(), 2);
  EXPECT_EQ(screen().microphoneName.text(), "Clip");
  for (const double line : {7.0, -1.0, 0.0}) {
    screen().microphoneChoices.setChosen(line);
    screen().chooseMicrophone(screen().microphoneChoices);
    EXPECT_EQ(fake.microphones.used.back(), "") << "the system's choice";
  }
}

TEST_F(HearingTest, FineHearingIsTheUsersChoiceAndElseTheFaces) {
  EXPECT_TRUE(start(true).fineHearingSwitch.isOn());
  EXPECT_FALSE(start(false).fineHearingSwitch.isOn());
  EXPECT_FALSE(fake.settings.stringForKey("fineHearingEnabled"));
  screen().setA443();
  EXPECT_FALSE(screen().byEarMark.hidden() || screen().byEarHint.hidden()) << "C2 has no bin";
  EXPECT_EQ(screen().fineHearingHint.text(), "[FineHearingByEar]");
  hear(65.8523);
  EXPECT_EQ(lamp(), "yellow64.png");
  screen().turnOnFineHearing();
  hear(65.8523);
  EXPECT_EQ(lamp(), "green64.png") << "in force at once";
  EXPECT_TRUE(screen().byEarMark.hidden() && screen().fineHearingSwitch.isOn());
  EXPECT_TRUE(start(false).fineHearingSwitch.isOn()) << "kept";
  screen().fineHearingSwitch.setOn(false);
  screen().toggleFineHearing(screen().fineHearingSwitch);
  EXPECT_FALSE(start(true).fineHearingSwitch.isOn()) << "kept, too";
  fake.settings.removeAll();
  EXPECT_TRUE(start(true).fineHearingSwitch.isOn());
  EXPECT_FALSE(fake.settings.stringForKey("fineHearingEnabled")) << "not the first launch's";
}

TEST_F(HearingTest, FineHearingLetsAStringGoAfterTwoBlocksAndKeepsTheReadOutInNoise) {
  start(true);
  const double sharp = 220 * 1.006;  // ten cents
  hear(220);
  hear(sharp);
  fake.runLoop.advance(0.4);
  EXPECT_EQ(lamp(), "green64.png") << "one block";
  hear(220);
  hear(sharp);
  EXPECT_EQ(lamp(), "green64.png") << "not two in a row";
  hear(sharp);
  EXPECT_EQ(lamp(), "yellow64.png");
  EXPECT_TRUE(screen().tunedString5.hidden());
  EXPECT_EQ(screen().freq_label.text(), "221.3Hz");
  fake.input.queue->deliver(testing::toS16(testing::noise(7019.5, 4096 / 7019.5, 0.1)));
  fake.runLoop.advance(0.1);
  EXPECT_EQ(screen().lastReading().frequency, 0.0F);
  EXPECT_EQ(screen().freq_label.text(), "221.3Hz");
  start(false);
  hear(220);
  for (int block = 0; block < 4; ++block) hear(sharp);
  EXPECT_EQ(lamp(), "green64.png") << "the default ear waits for silence";
}

TEST_F(HearingTest, AFirstStartAsksForANoteUntilItHearsOne) {
  start();
  EXPECT_EQ(screen().firstNoteHint.text(), "") << "a later one does not";
  fake.settings.removeAll();
  start();
  EXPECT_EQ(screen().firstNoteHint.text(), "[BowAString]");
  hear(900);
  fake.runLoop.advance(1);
  EXPECT_EQ(screen().firstNoteHint.text(), "[BowAString]") << "no cello";
  hear(215);
  fake.runLoop.advance(0.2);
  EXPECT_EQ(screen().firstNoteHint.text(), "");
}

// Each return is an appearance with all that belongs to one.
TEST_F(HearingTest, WhatWasSteppedIsTrueWhenTheMainScreenReturns) {
  fake.settings.removeAll();
  start();
  hear(220);
  EXPECT_EQ(fake.players.plays, 0) << "the first launch is silent";
  screen().playA3();
  EXPECT_TRUE(screen().stopTFButton.enabled());
  screen().setFrequencyValueStepper.setValue(442);
  screen().setFrequencyValue(screen().setFrequencyValueStepper);
  EXPECT_EQ(screen().firstStringFreq.text(), "A3 = 220.0Hz");
  screen().returnToMainScreen();
  EXPECT_EQ(fake.output.stops, 1) << "no tone goes on";
  EXPECT_FALSE(screen().stopTFButton.enabled());
  EXPECT_EQ(screen().firstStringFreq.text(), "A3 = 221.0Hz");
  EXPECT_EQ(screen().stringReferences()[0].frequency, stringFrequencies(442)[0]);
  hear(221);
  EXPECT_EQ(fake.players.plays, 1);
}

}  // namespace
}  // namespace endpin
