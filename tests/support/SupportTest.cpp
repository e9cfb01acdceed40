// The tests' own instruments, tested: a ruler that is off by a cent would measure nothing.
#include <gtest/gtest.h>
#include <sndfile.h>

#include <chrono>
#include <cmath>
#include <csignal>
#include <thread>

#include "tests/support/ChildProcess.h"
#include "tests/support/HarmonicFit.h"
#include "tests/support/PrivateSoundServer.h"
#include "tests/support/SampledCello.h"
#include "tests/support/TempDirectory.h"
#include "tests/support/Tone.h"

namespace endpin::testing {
namespace {

using namespace std::chrono_literals;

TEST(HarmonicFit, FindsTheFundamentalFarMoreFinelyThanAnyBand) {
  struct Row {
    const char* what;
    double fundamental;
    double guessOffCents;
    std::vector<double> amplitudes;
    double noise;
    double toleranceCents;
  };
  const Row rows[] = {
      {"rich", 220.0, 0.0, {0.2, 0.1, 0.07, 0.05, 0.04, 0.03}, 0.0, 0.001},
      {"flat guess", 146.8323839594813, -25.0, {0.2, 0.1, 0.07, 0.05}, 0.0, 0.001},
      {"sharp guess", 65.4063913257512, 25.0, {0.2, 0.1, 0.07, 0.05, 0.04}, 0.0, 0.001},
      {"weak fundamental", 65.31, 4.0, {0.001, 0.1, 0.2, 0.05, 0.1, 0.02}, 0.0, 0.001},
      {"one sine", 97.99885899614745, 7.0, {0.2}, 0.0, 0.001},
      {"noise", 97.99885899614745, 7.0, {0.1, 0.05, 0.05, 0.02}, 0.01, 0.05},
      {"noise, low", 65.4063913257512, -7.0, {0.05, 0.1, 0.05, 0.02}, 0.01, 0.05},
  };
  for (const Row& row : rows) {
    const Sound tone = harmonics(48000.0, 4.0, row.fundamental, row.amplitudes);
    const Sound heard = mixed(tone, noise(48000.0, 4.0, row.noise));
    const double guess = raisedByCents(row.fundamental, row.guessOffCents);
    const double error = centsBetween(fundamentalOf(heard, guess), row.fundamental);
    EXPECT_LT(std::abs(error), row.toleranceCents) << row.what;
    std::printf("  %-16s error %+.6f cents\n", row.what, error);
  }
}

TEST(Tone, FilesCarryTheSoundThatWasPutIn) {
  const TempDirectory folder;
  const Sound tone = bowedTone(48000.0, 3.0, 146.8323839594813);
  const struct {
    const char* name;
    int format;
    int channels;
  } rows[] = {{"a.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 2},
              {"a.flac", SF_FORMAT_FLAC | SF_FORMAT_PCM_24, 1},
              {"a.ogg", SF_FORMAT_OGG | SF_FORMAT_VORBIS, 2},
              {"a.mp3", SF_FORMAT_MPEG | SF_FORMAT_MPEG_LAYER_III, 2}};
  for (const auto& row : rows) {
    writeSoundFile(folder.file(row.name), tone, row.format, row.channels);
    const Sound read = slice(readSoundFile(folder.file(row.name)), 0.5, 2.5);
    EXPECT_NEAR(rms(read), 0.1, 0.002) << row.name;
    const double found = fundamentalOf(read, 146.8);
    EXPECT_NEAR(centsBetween(found, 146.8323839594813), 0.0, 0.01) << row.name;
  }
  EXPECT_EQ(toS16({48000.0, {0.0F, 0.5F, -1.0F, 1.0F, -2.0F}}),
            (std::vector<std::int16_t>{0, 16384, -32768, 32767, -32768}));
  const auto parts = partsBetweenSilences({1000.0, {0, 1, 0, 1, 0, 0, 1, 1, 0, 0}}, 0.002);
  ASSERT_EQ(parts.size(), 2U);
  EXPECT_EQ(parts[0].samples, (std::vector<float>{1, 0, 1}));
  EXPECT_EQ(parts[1].samples, (std::vector<float>{1, 1}));
}

TEST(SampledCello, LandsWhereItIsAskedTo) {
  if (const std::string why = whyNoSampledCello(); !why.empty()) GTEST_SKIP() << why;
  for (const CelloString& string : kCelloStrings) {
    for (const bool plucked : {false, true}) {
      CelloNote note{string.midiNote, string.frequency};
      note.plucked = plucked;
      note.cents = plucked ? 0.0 : -10.0;
      const Sound sound = sampledCello(note);
      const double cents = centsBetween(measuredPitch(sound, note), string.frequency);
      std::printf("  %s%s: %+.5f cents, %.1f s\n", string.note, plucked ? " plucked" : "", cents,
                  sound.seconds());
      EXPECT_NEAR(cents, note.cents, plucked ? 0.5 : 0.05) << string.note;
    }
  }
}

TEST(ChildProcess, KeepsOutputsAndExitCodes) {
  const Finished finished =
      runToEnd({"sh", "-c", "echo $GREETING; echo oops >&2; exit 3"}, 5s, {{"GREETING", "hello"}});
  EXPECT_EQ(finished.exitCode, 3);
  EXPECT_EQ(finished.output, "hello\n");
  EXPECT_EQ(finished.errors, "oops\n");
  EXPECT_EQ(runToEnd({"/nowhere/at-all"}, 5s).exitCode, 127);
  EXPECT_EQ(runToEnd({"sleep", "60"}, 50ms).exitCode, std::nullopt);
  ChildProcess sleeper({"sleep", "60"});
  EXPECT_TRUE(sleeper.running());
  sleeper.signal(SIGTERM);
  EXPECT_EQ(sleeper.waitFor(5s), 128 + SIGTERM);
}

class SoundServer : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!server_.start()) GTEST_SKIP() << server_.reason();
  }
  // What the microphone hears of a tone that is played into it for a while.
  Sound heard(const Sound& tone) {
    writeWav(server_.folder().file("tone.wav"), tone);
    const auto recording = server_.record("virtmic");
    std::this_thread::sleep_for(200ms);
    auto player = server_.playIntoMicrophone(server_.folder().file("tone.wav"));
    EXPECT_EQ(player.waitFor(10s), 0) << player.errors();
    // The end of it is still on its way: until a fifth of a second of silence has followed.
    Sound all = PrivateSoundServer::recorded(recording);
    for (int waits = 0; waits < 50 && rms(slice(all, all.seconds() - 0.2, all.seconds())) > 0.0;
         ++waits) {
      std::this_thread::sleep_for(100ms);
      all = PrivateSoundServer::recorded(recording);
    }
    return all;
  }
  PrivateSoundServer server_;
};

TEST_F(SoundServer, TheMicrophoneHearsAllThatIsPlayed) {
  const Sound sound = heard(bowedTone(48000.0, 2.0, 146.8323839594813));
  EXPECT_NEAR(soundingSeconds(sound), 2.0, 0.01);
  const Sound part = longestPart(sound);
  std::printf("  in %zu parts, the longest of %.2f s\n", partsBetweenSilences(sound).size(),
              part.seconds());
  EXPECT_NEAR(rms(part), 0.1, 0.002);
  EXPECT_NEAR(centsBetween(fundamentalOf(part, 146.8), 146.8323839594813), 0.0, 0.05);
}

TEST_F(SoundServer, TheMicrophoneComesAndGoesAndTheServerToo) {
  const Sound tone = bowedTone(48000.0, 0.5, 220.0);
  ASSERT_TRUE(server_.removeMicrophone());
  EXPECT_FALSE(server_.removeMicrophone());
  ASSERT_TRUE(server_.addMicrophone());
  EXPECT_NEAR(rms(longestPart(heard(tone))), 0.1, 0.005);
  server_.kill();
  EXPECT_FALSE(server_.addMicrophone());
  ASSERT_TRUE(server_.start()) << server_.reason();
  EXPECT_NEAR(rms(longestPart(heard(tone))), 0.1, 0.005);
}

}  // namespace
}  // namespace endpin::testing
