// The main job, from a sound file to the green lamp: a sampled cello, retuned exactly.
#include <gtest/gtest.h>
#include <sndfile.h>

#include <chrono>
#include <cmath>
#include <cstdio>

#include "tests/e2e/Listening.h"
#include "tests/support/HarmonicFit.h"
#include "tests/support/TempDirectory.h"

namespace endpin::testing {
namespace {

using namespace std::chrono_literals;

class SoundFile : public ::testing::Test {
 protected:
  Ticks listenTo(const std::string& path) {
    const Finished finished =
        runToEnd(endpin({"listen", "--json", "--input", path, "--a4", "440"}), 30s,
                 {{"HOME", folder_.path().string()}, {"XDG_DATA_HOME", folder_.file("data")}});
    EXPECT_EQ(finished.exitCode, 0) << path << ": " << finished.errors;
    return parseTicks(finished.output);
  }

  Ticks listenTo(const Sound& sound) {
    writeWav(folder_.file("note.wav"), sound);
    return listenTo(folder_.file("note.wav"));
  }

  TempDirectory folder_;
};

class SampledCello : public SoundFile {
 protected:
  void SetUp() override {
    if (const std::string why = whyNoSampledCello(); !why.empty()) GTEST_SKIP() << why;
  }
};

CelloNote noteOf(int string, double cents = 0.0) {
  CelloNote note{kCelloStrings[string].midiNote, kCelloStrings[string].frequency};
  note.cents = cents;
  return note;
}

TEST_F(SampledCello, EveryStringInTuneLightsItsOwnGreen) {
  for (int string = 0; string < 4; ++string) {
    SCOPED_TRACE(kCelloStrings[string].note);
    const Ticks ticks = listenTo(sampledCello(noteOf(string)));
    expectJudged(ticks, string);
    const double share = shareInTune(ticks, string);
    std::printf("  %s: %.1f %% of the steady ticks in tune\n", kCelloStrings[string].note,
                100.0 * share);
    EXPECT_GE(share, kLeastShareOfFile[string]);
  }
}

TEST_F(SampledCello, TenCentsOffIsNeverGreen) {
  for (int string = 0; string < 4; ++string) {
    for (const double cents : {-10.0, 10.0}) {
      SCOPED_TRACE(std::string(kCelloStrings[string].note) + " " + std::to_string(cents));
      expectNoJudgement(listenTo(sampledCello(noteOf(string, cents))));
    }
  }
}

TEST_F(SampledCello, NoiseTwentyDecibelsBelowChangesNothing) {
  for (int string = 0; string < 4; ++string) {
    SCOPED_TRACE(kCelloStrings[string].note);
    CelloNote note = noteOf(string);
    note.noiseLevel = 0.01;
    const Ticks ticks = listenTo(slice(sampledCello(note), 0.0, 7.0));
    expectJudged(ticks, string);
    EXPECT_GE(shareInTune(ticks, string), kLeastShareOfFile[string]);
  }
}

// One file of each kind, each with a string of its own: the strings have been through already.
TEST_F(SampledCello, EveryKindOfFileIsJudgedAlike) {
  const struct {
    const char* name;
    int string;
    double rate;
    int format;
    int channels;
  } rows[] = {{"note44.wav", 0, 44100.0, SF_FORMAT_WAV | SF_FORMAT_PCM_16, 2},
              {"note8.wav", 1, 8000.0, SF_FORMAT_WAV | SF_FORMAT_FLOAT, 1},
              {"note96.flac", 2, 96000.0, SF_FORMAT_FLAC | SF_FORMAT_PCM_24, 1},
              {"note22.ogg", 3, 22050.0, SF_FORMAT_OGG | SF_FORMAT_VORBIS, 2},
              {"note48.mp3", 1, 48000.0, SF_FORMAT_MPEG | SF_FORMAT_MPEG_LAYER_III, 2}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    const Sound sound = resampled(sampledCello(noteOf(row.string)), row.rate);
    writeSoundFile(folder_.file(row.name), sound, row.format, row.channels);
    const Ticks ticks = listenTo(folder_.file(row.name));
    expectJudged(ticks, row.string);
    EXPECT_GE(shareInTune(ticks, row.string), kLeastShareOfFile[row.string]);
  }
  writeRawS16(folder_.file("note.s16"), resampled(sampledCello(noteOf(0)), 7019.5));
  expectJudged(listenTo(folder_.file("note.s16")), 0);
}

// The clock of a file: ten ticks a second of it, each block when its last sample has been heard,
// and the level of the last tenth.
TEST_F(SoundFile, TimesAndLevelsAreThoseOfTheFile) {
  constexpr double kBlockSeconds = 4096.0 / 7019.5;
  const Ticks ticks = listenTo(joined(bowedTone(48000.0, 2.0, 220.0, 0.1),
                                      bowedTone(48000.0, 1.05, 146.8323839594813, 0.05)));
  ASSERT_EQ(ticks.size(), 30U);
  for (size_t n = 0; n < ticks.size(); ++n) {
    const Tick& tick = ticks[n];
    EXPECT_NEAR(tick.time, 0.1 * static_cast<double>(n + 1), 1e-9);
    EXPECT_EQ(tick.frequency > 0.0F, tick.time > kBlockSeconds) << tick.time;
    if (tick.time > 0.15 && tick.time < 1.95) {
      EXPECT_NEAR(tick.power, 0.1, 0.003) << tick.time;
    }
    if (tick.time > 2.15) {
      EXPECT_NEAR(tick.power, 0.05, 0.0015) << tick.time;
    }
  }
}

}  // namespace
}  // namespace endpin::testing
