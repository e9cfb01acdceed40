#include "adapters/sndfile/SoundFile.h"

#include <gtest/gtest.h>
#include <sndfile.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <limits>

#include "tests/support/TempDirectory.h"
#include "tests/support/Tone.h"

namespace endpin {
namespace {

using Kind = SoundFileError::Kind;
namespace fs = std::filesystem;

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
  static std::vector<std::int16_t> readAll(SoundFile& file) {
    std::vector<std::int16_t> all;
    std::vector<std::int16_t> chunk(1000);
    while (const std::size_t count = file.read(chunk)) {
      all.insert(all.end(), chunk.begin(), chunk.begin() + static_cast<std::ptrdiff_t>(count));
    }
    return all;
  }
};

TEST_F(SoundFileTest, EveryFormatGivesItsSamples) {
  struct Row {
    const char* name;
    int format;
    int channels;
    double tolerance;  // of 32768: what the writer or the codec may change, on average
  };
  const Row rows[] = {
      {"a.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 1, 0.1},
      {"b.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_24, 5, 0.1},
      {"c.wav", SF_FORMAT_WAV | SF_FORMAT_FLOAT, 2, 0},
      {"d.flac", SF_FORMAT_FLAC | SF_FORMAT_PCM_16, 2, 0.1},
      {"e.aiff", SF_FORMAT_AIFF | SF_FORMAT_PCM_16, 1, 0.1},
      {"f.ogg", SF_FORMAT_OGG | SF_FORMAT_VORBIS, 2, 300},
      {"g.mp3", SF_FORMAT_MPEG | SF_FORMAT_MPEG_LAYER_III, 1, 300},
  };
  const auto expected = testing::toS16(tone);
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    SoundFile file(written(row.name, row.format, row.channels));
    EXPECT_EQ(file.rateDoubled(), 88200U);
    const auto samples = readAll(file);
    ASSERT_EQ(samples.size(), expected.size());
    EXPECT_EQ(file.samplesRead(), expected.size());
    EXPECT_FALSE(file.truncated());
    double difference = 0;
    for (std::size_t i = 0; i < samples.size(); ++i)
      difference += std::abs(samples[i] - expected[i]);
    EXPECT_LE(difference / static_cast<double>(samples.size()), row.tolerance);
  }
}

TEST_F(SoundFileTest, ChannelsAreAveragedAndWildValuesTamed) {
  constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
  constexpr float kInfinite = std::numeric_limits<float>::infinity();
  const std::vector<float> frames = {0.5F, -0.25F, 0.5F,      -0.5F, 3.0F, 3.0F, -9.F,  -9.F,
                                     kNaN, 0.5F,   kInfinite, 0,     1.0F, 1.0F, -1.0F, -kInfinite};
  SF_INFO info{.frames = 0,
               .samplerate = 8000,
               .channels = 2,
               .format = SF_FORMAT_WAV | SF_FORMAT_FLOAT,
               .sections = 0,
               .seekable = 0};
  SNDFILE* out = sf_open(folder.file("wild.wav").c_str(), SFM_WRITE, &info);
  sf_writef_float(out, frames.data(), static_cast<sf_count_t>(frames.size() / 2));
  sf_close(out);
  SoundFile file(folder.file("wild.wav"));
  EXPECT_EQ(readAll(file),
            (std::vector<std::int16_t>{4096, 0, 32767, -32768, 0, 32767, 32767, -32768}));
}

TEST_F(SoundFileTest, HeaderlessSamplesAreTakenAsTheyAre) {
  SoundFile file(bytes("a.s16", {'\x01', '\x00', '\xff', '\xff', '\x34', '\x12'}));
  EXPECT_EQ(file.rate(), 7019.5);
  EXPECT_EQ(readAll(file), (std::vector<std::int16_t>{1, -1, 0x1234}));
  EXPECT_FALSE(file.truncated());

  SoundFile odd(bytes("odd.s16", {'\x01', '\x00', '\x02'}));
  EXPECT_EQ(readAll(odd), std::vector<std::int16_t>{1});
  EXPECT_TRUE(odd.truncated());
}

TEST_F(SoundFileTest, UnusableFilesSayWhy) {
  const std::string header = [&] {
    std::ifstream wav(written("whole.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16), std::ios::binary);
    std::string start(30, '\0');
    wav.read(start.data(), 30);
    return start;
  }();
  testing::writeWav(folder.file("silent.wav"), testing::silence(48000, 0));
  const struct {
    std::string path;
    Kind kind;
  } rows[] = {
      {folder.file("nowhere.wav"), Kind::Missing},
      {folder.file("no/such/folder.wav"), Kind::Missing},
      {written("file", SF_FORMAT_WAV | SF_FORMAT_PCM_16) + "/under.wav", Kind::Missing},
      {folder.path().string(), Kind::Unreadable},
      {bytes("empty.wav", ""), Kind::Empty},
      {bytes("empty.s16", ""), Kind::Empty},
      {folder.file("silent.wav"), Kind::Empty},
      {bytes("letter.wav", "Dear Sir, this is no sound at all."), Kind::NotSound},
      {bytes("noise.mp3", std::string(5000, '\xa5')), Kind::NotSound},
      {bytes("header.wav", header), Kind::NotSound},
  };
  for (const auto& row : rows) {
    try {
      SoundFile file(row.path);
      ADD_FAILURE() << row.path << " was opened";
    } catch (const SoundFileError& error) {
      EXPECT_EQ(error.kind(), row.kind) << error.what();
      EXPECT_NE(std::string(error.what()).find(row.path), std::string::npos);
    }
  }
}

TEST_F(SoundFileTest, WhatBreaksOffIsReadToThereAndReported) {
  const struct {
    const char* name;
    int format;
  } rows[] = {
      {"a.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16},
      {"b.aiff", SF_FORMAT_AIFF | SF_FORMAT_PCM_16},
      {"c.au", SF_FORMAT_AU | SF_FORMAT_PCM_16},
      {"d.w64", SF_FORMAT_W64 | SF_FORMAT_PCM_16},
      {"e.rf64", SF_FORMAT_RF64 | SF_FORMAT_PCM_16},
      {"f.flac", SF_FORMAT_FLAC | SF_FORMAT_PCM_16},
      {"g.ogg", SF_FORMAT_OGG | SF_FORMAT_VORBIS},
      {"h.mp3", SF_FORMAT_MPEG | SF_FORMAT_MPEG_LAYER_III},
  };
  for (const auto& row : rows) {
    const std::string path = written(row.name, row.format);
    fs::resize_file(path, fs::file_size(path) * 6 / 10);
    SoundFile file(path);
    EXPECT_LT(readAll(file).size(), 44100U) << row.name;
    EXPECT_TRUE(file.truncated()) << row.name;
  }
}

// Programs that write into a pipe cannot know the length and say the most there is.
TEST_F(SoundFileTest, ALengthThatTheWriterDidNotKnowIsNoTruncation) {
  for (const char* size : {"\xff\xff\xff\xff", "\x00\xf0\xff\x7f"}) {
    const std::string path = written("piped.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16);
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
