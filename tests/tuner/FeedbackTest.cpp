// What one tick shows and sounds: texts, lamp, rings, pictures, beep and its re-arm.
#include <gtest/gtest.h>

#include <optional>
#include <set>

#include "calibration/StringFrequencies.h"
#include "tests/fakes/FakePlatform.h"
#include "tuner/DetectionTick.h"

namespace endpin {
namespace {

StringReferences referencesAt(std::int64_t a4) {
  StringReferences references;
  const auto frequencies = stringFrequencies(a4);
  for (std::size_t i = 0; i < 4; ++i) {
    references[i] = {frequencies[i], frequencies[i], kStringNotes[i]};
  }
  return references;
}

class FeedbackTest : public testing::Test {
 protected:
  FeedbackTest() {
    feedback_.soundNotificationOn = true;
    feedback_.prepareBeepSound();
  }

  void tick(float hertz, float power = 0.1F) { tick_.run({power, hertz}, references_); }

  void expectShown(const char* frequency, const char* note, const char* lamp, bool pictureHidden) {
    EXPECT_EQ(outlets_.freq_label.text(), frequency);
    EXPECT_EQ(outlets_.noteDisplay.text(), note);
    EXPECT_EQ(outlets_.LEDDisplay.image(), lamp);
    EXPECT_EQ(outlets_.tunedString5.hidden(), pictureHidden);
  }
  void expectRings(const std::set<int>& numbers) {
    for (int number = 1; number <= 4; ++number) {
      const bool there = numbers.contains(number);
      EXPECT_EQ(outlets_.ring(number).image(),
                there ? "ring" + std::to_string(number) + ".png" : "");
      EXPECT_EQ(feedback_.ringShown(number), there);
    }
  }

  fakes::FakePlatform fake_;
  TunerOutlets outlets_;
  Sensitivity sensitivity_;
  TunedStringFeedback feedback_{
      outlets_,
      {fake_.players, fake_.runLoop, fake_.settings, fake_.device, fake_.bundle, fake_.log}};
  int prompts_ = 0;
  StringReferences references_ = referencesAt(440);
  DetectionTick tick_{outlets_, sensitivity_, feedback_, fake_.runLoop, [this] { ++prompts_; }};
};

TEST_F(FeedbackTest, ShowsOneNoteFromSilenceToSilence) {
  fake_.device.idiom = {};  // counts as a phone
  tick(0, 0);
  expectShown("", "", "yellow64.png", true);
  tick(220.3F);
  expectShown("220.3Hz", "", "yellow64.png", true);
  tick(220.2F);
  expectShown("220.0Hz", "A3", "green64.png", false);
  EXPECT_EQ(outlets_.tunedString5.image(), "1st_string_6plus.png");
  expectRings({1});
  tick(221.0F);
  expectShown("221.0Hz", "A3", "green64.png", false);
  tick(98.0F, 0.003F);  // inside the hysteresis band: everything stays
  expectShown("221.0Hz", "A3", "green64.png", false);
  tick(1000.1F);
  expectShown("", "", "yellow64.png", true);
  expectRings({1});
}

TEST_F(FeedbackTest, OvertonesShowTheLastJudgement) {
  tick(800.0F);
  expectShown("", "", "yellow64.png", true);  // nothing was judged yet
  tick(146.8F);
  tick(700.0F);
  expectShown("700.0Hz", "D3", "green64.png", false);
  references_ = referencesAt(415);  // the text of the old calibration stays until the next match
  tick(700.1F);
  expectShown("146.8Hz", "D3", "green64.png", false);
}

TEST_F(FeedbackTest, PromptsAndRearmsForEveryTickThatMissesOnceAllAreTuned) {
  for (const float hertz : {220.0F, 146.8F, 98.0F, 300.0F}) tick(hertz);
  fake_.runLoop.advance(5);
  EXPECT_EQ(prompts_, 0) << "one string is missing";
  tick(65.4F);
  for (int i = 0; i < 10; ++i) tick(300.0F);
  tick(220.0F);  // a match schedules nothing
  EXPECT_EQ(fake_.players.plays, 4);
  fake_.runLoop.advance(1.9);
  EXPECT_EQ(prompts_, 0);
  fake_.runLoop.advance(2.0);
  EXPECT_EQ(prompts_, 10);
  tick(220.0F);
  EXPECT_EQ(fake_.players.plays, 4);
  fake_.runLoop.advance(0.2);
  tick(220.0F);
  EXPECT_EQ(fake_.players.plays, 5) << "re-armed after four seconds";
}

TEST_F(FeedbackTest, RingsAccumulateAndGoTogether) {
  feedback_.displayTunedString(0);
  feedback_.displayTunedString(5);
  expectRings({});
  for (const int number : {1, 3, 4}) feedback_.displayTunedString(number);
  expectRings({1, 3, 4});
  feedback_.removeRings();
  expectRings({});
  EXPECT_EQ(outlets_.tunedString5.image(), "4th_string_6plus.png") << "the picture stays";
}

TEST_F(FeedbackTest, AnUnknownScreenKeepsItsPicture) {
  const std::pair<std::optional<int>, double> rows[] = {
      {0, 844.5}, {0, 1024}, {1, 1100}, {1, 568}, {2, 1024}};
  for (const auto& [idiom, height] : rows) {
    fake_.device.idiom = idiom;
    fake_.device.height = height;
    feedback_.displayTunedString(1);
    for (const ImageView* picture :
         {&outlets_.tunedString, &outlets_.tunedString5, &outlets_.tunedStringiPad}) {
      EXPECT_EQ(picture->image(), "") << height;
    }
  }
}

TEST_F(FeedbackTest, BeepsOncePerStringUntilRearmed) {
  EXPECT_EQ(fake_.players.paths, (std::vector<std::string>{"/resources/beep-full.mp3"}));
  const struct {
    double seconds;  // at which the string is in tune
    int string;
    int plays;  // since the beginning
  } rows[] = {
      {0, 1, 1},
      {0, 1, 1},
      {10, 2, 2},
      {14.9, 2, 2},
      {15.1, 2, 3},  // the first string's re-arm re-arms the second as well
      {24.9, 2, 3},
      {25.1, 2, 4},
      {29.95, 2, 4},  // what did not sound 15 seconds ago re-arms
                      // nothing
      {30.2, 2, 5},
  };
  for (const auto& row : rows) {
    fake_.runLoop.advance(row.seconds - fake_.runLoop.now());
    feedback_.playSoundOnce(row.string);
    EXPECT_EQ(fake_.players.plays, row.plays) << row.seconds;
  }
  feedback_.resetTuningBools();
  EXPECT_TRUE(feedback_.stringTuned(1) && feedback_.stringTuned(2));
  EXPECT_FALSE(feedback_.allStringsTuned());
}

TEST_F(FeedbackTest, MarksTheStringWithoutSoundOrWithoutABeep) {
  feedback_.soundNotificationOn = false;
  for (int i = 0; i < 10; ++i) feedback_.playSoundOnce(3);
  EXPECT_EQ(fake_.log.count("Sonido desactivado"), 10);
  EXPECT_TRUE(feedback_.stringTuned(3));
  EXPECT_FALSE(feedback_.beepPlayed(3));
  fake_.players.missing = true;
  feedback_.soundNotificationOn = true;
  feedback_.prepareBeepSound();
  feedback_.playSoundOnce(3);
  EXPECT_TRUE(feedback_.beepPlayed(3)) << "a missing one is skipped but counts";
  EXPECT_EQ(fake_.players.plays, 0);
}

}  // namespace
}  // namespace endpin
