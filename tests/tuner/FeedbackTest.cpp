// Rings, pictures, beep and its re-arm, the sound settings.
#include <gtest/gtest.h>

#include <array>
#include <optional>

#include "tests/fakes/FakePlatform.h"
#include "tuner/TunedStringFeedback.h"

namespace endpin {
namespace {

class FeedbackTest : public testing::Test {
 protected:
  FeedbackTest() {
    outlets_.ring1.connect(&rings_[0]);
    outlets_.ring2.connect(&rings_[1]);
    outlets_.ring3.connect(&rings_[2]);
    outlets_.ring4.connect(&rings_[3]);
    outlets_.tunedString.connect(&small_);
    outlets_.tunedString5.connect(&phone_);
    outlets_.tunedStringiPad.connect(&tablet_);
  }

  fakes::FakePlatform fake_;
  TunerOutlets outlets_;
  std::array<ImageView, 4> rings_;
  ImageView small_;
  ImageView phone_;
  ImageView tablet_;
  TunedStringFeedback feedback_{
      outlets_,
      {fake_.players, fake_.runLoop, fake_.settings, fake_.device, fake_.bundle, fake_.log}};
};

TEST_F(FeedbackTest, ShowsThePictureOfTheScreen) {
  struct Row {
    std::optional<int> idiom;
    double height;
    int string;
    const char* small;
    const char* phone;
    const char* tablet;
  };
  for (const Row& row : {
           Row{0, 480, 3, "3rd_string.png", "old", "old"},
           Row{{}, 480, 1, "1st_string.png", "old", "old"},
           Row{0, 568, 2, "old", "2nd_string_5.png", "old"},
           Row{0, 667, 3, "old", "3rd_string_6.png", "old"},
           Row{0, 736, 1, "old", "1st_string_6plus.png", "old"},
           Row{0, 896, 3, "old", "3rd_string_6plus.png", "old"},
           Row{0, 956, 4, "old", "4th_string_6plus.png", "old"},
           Row{0, 844.5, 4, "old", "old", "old"},
           Row{0, 1024, 1, "old", "old", "old"},
           Row{1, 1024, 1, "old", "old", "1st_string_iPad.png"},
           Row{1, 1366, 1, "old", "old", "1st_string_iPad_Pro.png"},
           Row{1, 1133, 4, "old", "old", "4th_string_iPad_Pro.png"},
           Row{1, 1100, 1, "old", "old", "old"},
           Row{1, 568, 1, "old", "old", "old"},
           Row{2, 1024, 1, "old", "old", "old"},
       }) {
    fake_.device.idiom = row.idiom;
    fake_.device.height = row.height;
    for (ImageView* view : {&small_, &phone_, &tablet_}) view->setImage("old");
    feedback_.removeRings();
    feedback_.displayTunedString(row.string);
    EXPECT_EQ(small_.image(), row.small) << row.height;
    EXPECT_EQ(phone_.image(), row.phone) << row.height;
    EXPECT_EQ(tablet_.image(), row.tablet) << row.height;
    EXPECT_EQ(rings_[static_cast<std::size_t>(row.string - 1)].image(),
              "ring" + std::to_string(row.string) + ".png");
  }
}

TEST_F(FeedbackTest, RingsAccumulateAndGoTogether) {
  feedback_.displayTunedString(0);
  feedback_.displayTunedString(5);
  for (const ImageView& ring : rings_) EXPECT_EQ(ring.image(), "");
  feedback_.displayTunedString(1);
  feedback_.displayTunedString(4);
  EXPECT_TRUE(feedback_.ringShown(1) && feedback_.ringShown(4));
  EXPECT_EQ(rings_[0].image(), "ring1.png");
  EXPECT_EQ(rings_[3].image(), "ring4.png");
  phone_.setImage("picture");
  feedback_.removeRings();
  for (const ImageView& ring : rings_) EXPECT_EQ(ring.image(), "");
  EXPECT_FALSE(feedback_.ringShown(1) || feedback_.ringShown(4));
  EXPECT_EQ(phone_.image(), "picture") << "the picture stays";
}

TEST_F(FeedbackTest, BeepsOncePerStringUntilRearmed) {
  feedback_.soundNotificationOn = true;
  feedback_.prepareBeepSound();
  EXPECT_EQ(fake_.players.paths, (std::vector<std::string>{"/resources/beep-full.mp3"}));
  for (int i = 0; i < 10; ++i) feedback_.playSoundOnce(1);
  EXPECT_EQ(fake_.players.plays, 1);
  EXPECT_EQ(fake_.runLoop.delayed.size(), 1U);
  fake_.runLoop.advance(10);
  feedback_.playSoundOnce(2);
  EXPECT_EQ(fake_.players.plays, 2);
  fake_.runLoop.advance(4.9);
  feedback_.playSoundOnce(2);
  EXPECT_EQ(fake_.players.plays, 2);
  fake_.runLoop.advance(0.2);  // the first string's re-arm re-arms the second as well
  feedback_.playSoundOnce(2);
  EXPECT_EQ(fake_.players.plays, 3);
  feedback_.resetTuningBools();
  EXPECT_TRUE(feedback_.stringTuned(1) && feedback_.stringTuned(2));
  EXPECT_FALSE(feedback_.allStringsTuned());
}

TEST_F(FeedbackTest, WithoutSoundOnlyTheMarkAndTheLogRemain) {
  feedback_.prepareBeepSound();
  for (int i = 0; i < 10; ++i) feedback_.playSoundOnce(3);
  EXPECT_EQ(fake_.log.count("Sonido desactivado"), 10);
  EXPECT_TRUE(feedback_.stringTuned(3));
  EXPECT_FALSE(feedback_.beepPlayed(3));
  EXPECT_EQ(fake_.players.plays, 0);
}

TEST_F(FeedbackTest, AMissingBeepIsSkippedButCounts) {
  fake_.players.missing = true;
  feedback_.soundNotificationOn = true;
  feedback_.prepareBeepSound();
  feedback_.playSoundOnce(1);
  EXPECT_TRUE(feedback_.beepPlayed(1));
  EXPECT_TRUE(fake_.log.lines.empty());
}

TEST_F(FeedbackTest, SoundSettingsPersistAndLog) {
  Switch on;
  on.setOn(true);
  const Switch off;
  feedback_.soundNotificationAction(on);
  feedback_.toggleStringSounds(on);
  EXPECT_TRUE(feedback_.soundNotificationOn && feedback_.stringSoundsOn);
  EXPECT_TRUE(fake_.settings.boolForKey("soundNotificationEnabled"));
  feedback_.soundNotificationAction(off);
  feedback_.toggleStringSounds(off);
  EXPECT_FALSE(feedback_.soundNotificationOn || feedback_.stringSoundsOn);
  EXPECT_FALSE(fake_.settings.boolForKey("stringSoundsEnabled"));
  EXPECT_EQ(fake_.log.count("Has encendido el Switch, valor de la variable = 1"), 2);
  EXPECT_EQ(fake_.log.count("Has apagado el Switch, valor de la variable = 0"), 2);
}

TEST_F(FeedbackTest, TheTuningForkIsOnlyRemembered) {
  feedback_.soundNotificationOn = true;
  feedback_.disableTemporarilySoundConfirmation();
  EXPECT_EQ(fake_.settings.integerForKey("currentlyUsingTuningFork"), 1);
  EXPECT_TRUE(feedback_.tuningForkInUse && feedback_.soundNotificationOn);
  feedback_.enableSoundConfirmation();
  EXPECT_EQ(fake_.settings.integerForKey("currentlyUsingTuningFork"), 0);
  EXPECT_EQ(fake_.log.lines,
            (std::vector<std::string>{"Tuning fork is enabled: 1", "Tuning fork is enabled: 0"}));
}

}  // namespace
}  // namespace endpin
