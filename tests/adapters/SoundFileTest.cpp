#include "adapters/sndfile/SoundFile.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sndfile.hh>

#include "tests/support/TempDirectory.h"
#include "tests/support/Tone.h"

namespace endpin {
namespace {

using Kind = SoundFileError::Kind;
using Samples = std::vector<std::int16_t>;
namespace fs = std::filesystem;

constexpr int kWav = SF_FORMAT_WAV | SF_FORMAT_PCM_16;

struct SoundFileTest : ::testing::Test {
  testing::TempDirectory folder;
  const testing::Sound tone = testing::bowedTone(44100, 1.0, 220);

  std::string written(const char* name, int format, int channels = 1) const {
    testing::writeSoundFile(folder.file(name), tone, format, channels);
    return folder.file(name);
  }
  std::string bytes(const char* name, const std::string& content) const {
    std::ofstream(folder.file(name), std::ios::binary) << content;
    return folder.file(name);
  }
  static Samples readAll(SoundFile& file) {
    Samples all;
    Samples chunk(1000);
    while (const std::size_t count = file.read(chunk)) {
      all.insert(all.end(), chunk.begin(), chunk.begin() + static_cast<std::ptrdiff_t>(count));
    }
    return all;
  }
};

TEST_F(SoundFileTest, EveryFormatGivesItsSamplesAndTellsWhereItBreaksOff) {
  const struct {
    const char* name;
    int format;
    int channels;
    double tolerance;  // of 32768: what the writer or the codec may change, on average
  } rows[] = {
      {"a.wav", kWav, 1, 0.1},
      {"b.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_24, 5, 0.1},
      {"c.wav", SF_FORMAT_WAV | SF_FORMAT_FLOAT, 2, 0},
      {"d.flac", SF_FORMAT_FLAC | SF_FORMAT_PCM_16, 2, 0.1},
      {"e.aiff", SF_FORMAT_AIFF | SF_FORMAT_PCM_16, 1, 0.1},
      {"f.ogg", SF_FORMAT_OGG | SF_FORMAT_VORBIS, 2, 300},
      {"g.mp3", SF_FORMAT_MPEG | SF_FORMAT_MPEG_LAYER_III, 1, 300},
  };
  const auto expected = testing::toS16(tone);
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    const std::string path = written(row.name, row.format, row.channels);
    SoundFile file(path);
    EXPECT_EQ(file.rateDoubled(), 88200U);
    const auto samples = readAll(file);
    ASSERT_EQ(samples.size(), expected.size());
    EXPECT_EQ(file.samplesRead(), expected.size());
    EXPECT_FALSE(file.truncated());
    double difference = 0;
    for (std::size_t i = 0; i < samples.size(); ++i) {
      difference += std::abs(samples[i] - expected[i]);
    }
    EXPECT_LE(difference / static_cast<double>(samples.size()), row.tolerance);

    fs::resize_file(path, fs::file_size(path) * 6 / 10);
    SoundFile broken(path);
    EXPECT_LT(readAll(broken).size(), expected.size());
    EXPECT_TRUE(broken.truncated());
  }
}

TEST_F(SoundFileTest, ChannelsAreAveragedAndWildValuesTamed) {
  constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
  constexpr float kInfinite = std::numeric_limits<float>::infinity();
  const float frames[] = {0.5F, -0.25F, 0.5F,      -0.5F, 3.0F, 3.0F, -9.F,  -9.F,
                          kNaN, 0.5F,   kInfinite, 0,     1.0F, 1.0F, -1.0F, -kInfinite};
  const std::string path = folder.file("wild.wav");
  SndfileHandle(path, SFM_WRITE, SF_FORMAT_WAV | SF_FORMAT_FLOAT, 2, 8000).writef(frames, 8);
  SoundFile file(path);
  EXPECT_EQ(readAll(file), (Samples{4096, 0, 32767, -32768, 0, 32767, 32767, -32768}));
}

TEST_F(SoundFileTest, HeaderlessSamplesAreTakenAsTheyAre) {
  SoundFile file(bytes("a.s16", {'\x01', '\x00', '\xff', '\xff', '\x34', '\x12'}));
  EXPECT_EQ(file.rate(), 7019.5);
  EXPECT_EQ(readAll(file), (Samples{1, -1, 0x1234}));
  EXPECT_FALSE(file.truncated());

  SoundFile odd(bytes("odd.s16", {'\x01', '\x00', '\x02'}));
  EXPECT_EQ(readAll(odd), Samples{1});
  EXPECT_TRUE(odd.truncated());
}

TEST_F(SoundFileTest, UnusableFilesSayWhy) {
  fs::resize_file(written("header.wav", kWav), 30);
  testing::writeWav(folder.file("silent.wav"), testing::silence(48000, 0));
  for (const auto& [path, kind] :
       {std::pair(folder.file("nowhere.wav"), Kind::Missing),
        {written("file", kWav) + "/under.wav", Kind::Missing},
        {folder.path().string(), Kind::Unreadable},
        {bytes("empty.wav", ""), Kind::Empty},
        {folder.file("silent.wav"), Kind::Empty},
        {bytes("letter.wav", "Dear Sir, this is no sound at all."), Kind::NotSound},
        {bytes("noise.mp3", std::string(5000, '\xa5')), Kind::NotSound},
        {folder.file("header.wav"), Kind::NotSound}}) {
    try {
      SoundFile file(path);
      ADD_FAILURE() << path << " was opened";
    } catch (const SoundFileError& error) {
      EXPECT_EQ(error.kind(), kind) << error.what();
      EXPECT_NE(std::string(error.what()).find(path), std::string::npos);
    }
  }
}

// Programs that write into a pipe cannot know the length and say the most there is.
TEST_F(SoundFileTest, ALengthThatTheWriterDidNotKnowIsNoTruncation) {
  for (const char* size : {"\xff\xff\xff\xff", "\x00\xf0\xff\x7f"}) {
    const std::string path = written("piped.wav", kWav);
    std::fstream file(path, std::ios::binary | std::ios::in | std::ios::out);
    for (const int field : {4, 40}) file.seekp(field).write(size, 4);
    file.close();
    SoundFile sound(path);
    EXPECT_EQ(readAll(sound).size(), 44100U);
    EXPECT_FALSE(sound.truncated());
  }
}

}  // namespace
}  // namespace endpin
