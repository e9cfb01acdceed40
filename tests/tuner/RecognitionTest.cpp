// Bands and the tick: what is shown for which frequency.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "calibration/Presets.h"
#include "calibration/StringFrequencies.h"
#include "tests/fakes/FakePlatform.h"
#include "tuner/DetectionTick.h"

namespace endpin {
namespace {

StringReferences referencesAt(std::int64_t a4) {
  StringReferences references;
  const auto frequencies = stringFrequencies(a4);
  for (std::size_t i = 0; i < 4; ++i) references[i] = {frequencies[i], frequencies[i]};
  return references;
}

// The largest float that is at most `edge`.
float floatAtMost(double edge) {
  const auto nearest = static_cast<float>(edge);
  return static_cast<double>(nearest) <= edge ? nearest : std::nextafter(nearest, 0.0F);
}

// One float inside and one outside each edge, for every preset and string.
TEST(RecognitionTest, BandsEndWhereTheyShould) {
  constexpr double kDivisors[] = {1000.0, 1000.0, 850.0, 875.0};
  constexpr float kInfinity = std::numeric_limits<float>::infinity();
  for (const Preset& preset : kPresets) {
    const StringReferences references = referencesAt(preset.a4InHz);
    for (int number = 1; number <= 4; ++number) {
      const auto i = static_cast<std::size_t>(number - 1);
      const double width = references[i].frequency / kDivisors[i];
      const float highest = floatAtMost(references[i].frequency + width);
      const float above = std::nextafter(highest, kInfinity);
      float lowest = floatAtMost(references[i].frequency - width);
      if (static_cast<double>(lowest) < references[i].frequency - width) {
        lowest = std::nextafter(lowest, kInfinity);
      }
      const float below = std::nextafter(lowest, 0.0F);
      EXPECT_EQ(matchingString(static_cast<double>(highest), references), number) << preset.a4InHz;
      EXPECT_EQ(matchingString(static_cast<double>(lowest), references), number) << preset.a4InHz;
      EXPECT_EQ(matchingString(static_cast<double>(above), references), 0) << preset.a4InHz;
      EXPECT_EQ(matchingString(static_cast<double>(below), references), 0) << preset.a4InHz;
    }
  }
}

TEST(RecognitionTest, JudgesKnownFrequencies) {
  const StringReferences references = referencesAt(440);
  struct Row {
    float frequency;
    int number;
  };
  for (const Row& row :
       {Row{220.2F, 1}, Row{220.3F, 0}, Row{220.22F, 0}, Row{98.11F, 3}, Row{146.8324F, 2},
        Row{65.4F, 4}, Row{0.0F, 0}, Row{std::numeric_limits<float>::quiet_NaN(), 0}}) {
    EXPECT_EQ(matchingString(static_cast<double>(row.frequency), references), row.number)
        << row.frequency;
  }
  StringReferences exact = references;
  exact[0] = {256.0, 1000.0};  // bounds that are exact: 255 and 257
  EXPECT_EQ(matchingString(255.0, exact), 1);
  EXPECT_EQ(matchingString(257.0, exact), 1);
  exact[0].toleranceBase = 0;
  EXPECT_EQ(matchingString(256.0, exact), 1) << "a band without width still has its centre";
  EXPECT_EQ(matchingString(256.5, exact), 0);
}

class TickTest : public testing::Test {
 protected:
  TickTest() {
    outlets_.freq_label.connect(&frequency_);
    outlets_.noteDisplay.connect(&note_);
    outlets_.LEDDisplay.connect(&lamp_);
    outlets_.tunedString5.connect(&picture_);
    outlets_.ring1.connect(&ring1_);
    feedback_.soundNotificationOn = true;
    feedback_.prepareBeepSound();
  }

  void tick(float hertz, float power = 0.1F) { tick_.run({power, hertz}, references_); }

  void expectShown(const char* frequency, const char* note, const char* lamp, bool pictureHidden) {
    EXPECT_EQ(frequency_.text(), frequency);
    EXPECT_EQ(note_.text(), note);
    EXPECT_EQ(lamp_.image(), lamp);
    EXPECT_EQ(picture_.hidden(), pictureHidden);
  }

  fakes::FakePlatform fake_;
  TunerOutlets outlets_;
  Label frequency_;
  Label note_;
  ImageView lamp_;
  ImageView picture_;
  ImageView ring1_;
  Sensitivity sensitivity_;
  TunedStringFeedback feedback_{
      outlets_,
      {fake_.players, fake_.runLoop, fake_.settings, fake_.device, fake_.bundle, fake_.log}};
  int prompts_ = 0;
  StringReferences references_ = referencesAt(440);
  DetectionTick tick_{outlets_, sensitivity_, feedback_, fake_.runLoop, [this] { ++prompts_; }};
};

TEST_F(TickTest, ShowsOneNoteFromSilenceToSilence) {
  tick(0, 0);
  expectShown("", "", "yellow64.png", true);
  tick(220.3F);
  expectShown("220.3Hz", "", "yellow64.png", true);
  tick(220.2F);
  expectShown("220.0Hz", "A3", "green64.png", false);
  EXPECT_EQ(picture_.image(), "1st_string_6plus.png");
  EXPECT_EQ(ring1_.image(), "ring1.png");
  tick(221.0F);
  expectShown("221.0Hz", "A3", "green64.png", false);
  EXPECT_FLOAT_EQ(static_cast<float>(tick_.lastMeasuredFrequency()), 221.0F);
  tick(98.0F, 0.003F);  // inside the hysteresis band: everything stays
  expectShown("221.0Hz", "A3", "green64.png", false);
  tick(1000.1F);
  expectShown("", "", "yellow64.png", true);
  EXPECT_EQ(ring1_.image(), "ring1.png") << "rings outlast silence";
}

TEST_F(TickTest, OvertonesShowTheLastJudgement) {
  tick(800.0F);
  expectShown("", "", "", false);  // nothing was judged yet
  tick(146.8F);
  tick(700.0F);
  expectShown("700.0Hz", "D3", "green64.png", false);
  tick(700.1F);
  expectShown("146.8Hz", "D3", "green64.png", false);
  references_ = referencesAt(415);  // the text of the old calibration stays until the next match
  tick(900.0F);
  EXPECT_EQ(frequency_.text(), "146.8Hz");
}

TEST_F(TickTest, SchedulesPromptAndRearmPerTickOnceAllAreTuned) {
  for (const float hertz : {220.0F, 146.8F, 98.0F}) tick(hertz);
  tick(300.0F);
  EXPECT_EQ(fake_.runLoop.delayed.size(), 3U) << "three beeps' re-arms only";
  tick(65.4F);
  EXPECT_EQ(fake_.runLoop.delayed.size(), 4U);
  for (int i = 0; i < 10; ++i) tick(300.0F);
  EXPECT_EQ(fake_.runLoop.delayed.size(), 4U + 20U);
  tick(220.0F);
  EXPECT_EQ(fake_.runLoop.delayed.size(), 24U) << "a matching tick schedules nothing";
  EXPECT_EQ(fake_.players.plays, 4);
  fake_.runLoop.advance(1.9);
  EXPECT_EQ(prompts_, 0);
  fake_.runLoop.advance(0.2);
  EXPECT_EQ(prompts_, 10);
  tick(220.0F);
  EXPECT_EQ(fake_.players.plays, 4);
  fake_.runLoop.advance(2.0);
  tick(220.0F);
  EXPECT_EQ(fake_.players.plays, 5) << "re-armed after four seconds";
}

}  // namespace
}  // namespace endpin
