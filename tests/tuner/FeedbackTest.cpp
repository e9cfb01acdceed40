// What one tick shows and sounds: texts, lamp, rings, pictures, beep and its re-arm.
#include <gtest/gtest.h>

#include <optional>

#include "calibration/StringFrequencies.h"
#include "tests/fakes/FakePlatform.h"
#include "tuner/DetectionTick.h"

namespace endpin {
namespace {

StringReferences referencesAt440() {
  StringReferences references;
  const auto frequencies = stringFrequencies(440);
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

  // The numbers of those that are seen.
  std::string rings() {
    std::string numbers;
    for (int number = 1; number <= 4; ++number) {
      const std::string one = std::to_string(number);
      const std::string image = outlets_.ring(number).image();
      if (image == "ring" + one + ".png") numbers += one;
      EXPECT_EQ(feedback_.ringShown(number), !image.empty());
    }
    return numbers;
  }

  fakes::FakePlatform fake_;
  TunerOutlets outlets_;
  Sensitivity sensitivity_;
  TunedStringFeedback feedback_{
      outlets_,
      {fake_.players, fake_.runLoop, fake_.settings, fake_.device, fake_.bundle, fake_.log}};
  int prompts_ = 0;
  const StringReferences references_ = referencesAt440();
  DetectionTick tick_{outlets_, sensitivity_, feedback_, fake_.runLoop, [this] { ++prompts_; }};
};

TEST_F(FeedbackTest, ShowsNotesFromSilenceToSilence) {
  fake_.device.idiom = {};  // counts as a phone
  const struct {
    float hertz, power;
    const char *frequency, *note, *lamp;
    bool pictureHidden;
  } rows[] = {
      {0, 0, "", "", "yellow64.png", true},
      {800.0F, 0.1F, "", "", "yellow64.png", true},  // an overtone: nothing was judged yet
      {220.3F, 0.1F, "220.3Hz", "", "yellow64.png", true},
      {220.2F, 0.1F, "220.0Hz", "A3", "green64.png", false},
      {221.0F, 0.1F, "221.0Hz", "A3", "green64.png", false},
      {98.0F, 0.003F, "221.0Hz", "A3", "green64.png", false},  // within the hysteresis
      {700.0F, 0.1F, "700.0Hz", "A3", "green64.png", false},
      {700.1F, 0.1F, "220.0Hz", "A3", "green64.png", false},  // as it was judged last
      {1000.1F, 0.1F, "", "", "yellow64.png", true},
  };
  for (const auto& row : rows) {
    tick(row.hertz, row.power);
    SCOPED_TRACE(row.hertz);
    EXPECT_EQ(outlets_.freq_label.text(), row.frequency);
    EXPECT_EQ(outlets_.noteDisplay.text(), row.note);
    EXPECT_EQ(outlets_.LEDDisplay.image(), row.lamp);
    EXPECT_EQ(outlets_.tunedString5.hidden(), row.pictureHidden);
  }
  EXPECT_EQ(outlets_.tunedString5.image(), "1st_string_6plus.png");
  EXPECT_EQ(rings(), "1");
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
  for (const int number : {0, 1, 5, 3, 4}) feedback_.displayTunedString(number);
  EXPECT_EQ(rings(), "134");
  feedback_.removeRings();
  EXPECT_EQ(rings(), "");
  EXPECT_EQ(outlets_.tunedString5.image(), "4th_string_6plus.png") << "the picture stays";
}

TEST_F(FeedbackTest, AnUnknownScreenKeepsItsPicture) {
  const std::pair<std::optional<int>, double> rows[] = {{0, 844.5}, {0, 1024}, {1, 568}, {2, 1024}};
  for (const auto& [idiom, height] : rows) {
    fake_.device.idiom = idiom;
    fake_.device.height = height;
    feedback_.displayTunedString(1);
    EXPECT_EQ(outlets_.tunedString.image() + outlets_.tunedString5.image() +
                  outlets_.tunedStringiPad.image(),
              "")
        << height;
  }
}

TEST_F(FeedbackTest, BeepsOncePerStringUntilRearmed) {
  EXPECT_EQ(fake_.players.paths, (std::vector<std::string>{"/resources/beep-full.mp3"}));
  const struct {
    double seconds;  // at which the string is in tune
    int string;
    int plays;  // since the beginning
  } rows[] = {
      {0, 1, 1},    {10, 2, 2},
      {14.9, 2, 2}, {15.1, 2, 3},   // the first string's re-arm re-arms the second as well
      {25.1, 2, 4}, {29.95, 2, 4},  // what did not sound 15 seconds ago re-arms nothing
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
