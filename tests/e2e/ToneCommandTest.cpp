// `endpin-cli tone`: the file holds what the tuning fork plays, and is whole or not there.
#include <gtest/gtest.h>
#include <sndfile.h>
#include <sys/stat.h>

#include <algorithm>
#include <cmath>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <numbers>
#include <sstream>
#include <thread>

#include "calibration/ToneSynthesizer.h"
#include "tests/e2e/Listening.h"
#include "tests/support/TempDirectory.h"

namespace endpin::testing {
namespace {

using namespace std::chrono_literals;
namespace fs = std::filesystem;

struct StereoFile {
  SF_INFO info{};
  std::vector<std::int16_t> samples;  // left and right in turn

  int left(std::size_t frame) const { return samples.at(2 * frame); }
  std::size_t frames() const { return samples.size() / 2; }
};

StereoFile readStereo(const std::string& path) {
  StereoFile file;
  SNDFILE* handle = sf_open(path.c_str(), SFM_READ, &file.info);
  if (handle == nullptr) return file;
  file.samples.resize(static_cast<std::size_t>(file.info.frames * file.info.channels));
  sf_read_short(handle, file.samples.data(), static_cast<sf_count_t>(file.samples.size()));
  sf_close(handle);
  return file;
}

class ToneCommand : public ::testing::Test {
 protected:
  std::string path(const std::string& name) const { return folder_.file(name); }

  StereoFile render(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), "tone");
    arguments.insert(arguments.end(), {"--output", path("tone.wav")});
    const Finished finished = runToEnd(endpin(arguments), 20s);
    EXPECT_EQ(finished.exitCode, 0);
    EXPECT_EQ(finished.output + finished.errors, "");
    return readStereo(path("tone.wav"));
  }

  std::vector<std::string> names() const {
    std::vector<std::string> all;
    for (const auto& entry : fs::directory_iterator(folder_.path())) {
      all.push_back(entry.path().filename());
    }
    std::sort(all.begin(), all.end());
    return all;
  }

  TempDirectory folder_;
};

TEST_F(ToneCommand, WritesWhatTheTuningForkPlaysFromItsBeginning) {
  struct Row {
    int string;            // 0 is the highest
    const char* waveform;  // null: left out
    std::uint64_t tone;
    double (*begin)(double turns);  // the waveform before its first corner
  };
  const Row rows[] = {
      {0, "sine", 0, [](double t) { return std::sin(2 * std::numbers::pi * t); }},
      {1, "triangle", 1, [](double t) { return 4 * t; }},
      {2, "sawtooth", 2, [](double t) { return 2 * t; }},
      {3, "square", 3, [](double) { return 1.0; }},
      {3, nullptr, 3, [](double) { return 1.0; }},
  };
  for (const Row& row : rows) {
    const CelloString& string = kCelloStrings[row.string];
    SCOPED_TRACE(string.note);
    std::vector<std::string> arguments = {"--string", string.note, "--seconds", "0.7"};
    if (row.waveform) arguments.insert(arguments.end(), {"--waveform", row.waveform});
    const StereoFile file = render(arguments);
    ASSERT_EQ(file.frames(), 30870U);

    ToneSynthesizer synthesizer;
    synthesizer.toneFrequency = static_cast<float>(string.frequency);
    synthesizer.curTone = row.tone;
    std::vector<std::uint32_t> words(file.frames());
    AudioOutputBuffer buffer{words.data()};
    ToneSynthesizer::renderTone(&synthesizer, static_cast<std::uint32_t>(words.size()),
                                {&buffer, 1});
    for (std::size_t i = 0; i < words.size(); ++i) {
      ASSERT_EQ(file.left(i), static_cast<std::int16_t>(words[i] & 0xFFFFU)) << i;
      ASSERT_EQ(file.samples[2 * i + 1], file.left(i)) << i;
    }
    EXPECT_EQ(file.left(0), 0);
    for (std::size_t i = 1; i < 40; ++i) {
      const double turns = string.frequency * static_cast<double>(i) / 44100;
      const double mix = (std::sin(2 * std::numbers::pi * turns) + row.begin(turns)) / 2;
      EXPECT_NEAR(file.left(i), mix / (2 * std::numbers::pi) * 32767 * 6 * 0.95, 1.01) << i;
    }
  }
}

TEST_F(ToneCommand, FormatAndLengthAreAsAskedFor) {
  for (const auto& [seconds, frames] : {std::pair("1", 44100), std::pair("0.33337", 14702),
                                        std::pair("0.00003", 1), std::pair("1e-1", 4410)}) {
    const StereoFile file = render({"--string", "A3", "--seconds", seconds});
    EXPECT_EQ(file.info.samplerate, 44100);
    EXPECT_EQ(file.info.channels, 2);
    EXPECT_EQ(file.info.format & ~SF_FORMAT_ENDMASK, SF_FORMAT_WAV | SF_FORMAT_PCM_16);
    EXPECT_EQ(file.info.frames, frames) << seconds;
    EXPECT_EQ(fs::file_size(path("tone.wav")), 44U + 4U * static_cast<unsigned>(frames));
  }
}

TEST_F(ToneCommand, ALongSineKeepsItsFrequency) {
  const StereoFile file =
      render({"--string", "G2", "--a4", "432", "--waveform", "sine", "--seconds", "30"});
  std::vector<double> crossings;  // upwards, in frames
  for (std::size_t i = 1; i < file.frames(); ++i) {
    const double a = file.left(i - 1);
    const double b = file.left(i);
    if (a < 0 && b >= 0) crossings.push_back(static_cast<double>(i - 1) + a / (a - b));
  }
  ASSERT_GT(crossings.size(), 2000U);
  const double frequency =
      44100 * static_cast<double>(crossings.size() - 1) / (crossings.back() - crossings.front());
  EXPECT_NEAR(frequency, 432.0 * std::pow(2.0, -26.0 / 12.0), 0.0005);
}

TEST_F(ToneCommand, WhatCannotBeDoneGetsOneLineAndLeavesNothing) {
  fs::create_directory(path("folder.wav"));
  ASSERT_EQ(mkfifo(path("fifo.wav").c_str(), 0600), 0);
  const auto before = names();
  struct Row {
    std::vector<std::string> changes;
    int exitCode;
  };
  const Row rows[] = {
      {{"--string", "E2"}, 2},
      {{"--string", "a3"}, 2},
      {{"--waveform", "pulse"}, 2},
      {{"--waveform", ""}, 2},
      {{"--seconds", "0"}, 2},
      {{"--seconds", "-1"}, 2},
      {{"--seconds", "1,5"}, 2},
      {{"--seconds", "1s"}, 2},
      {{"--seconds", "nan"}, 2},
      {{"--seconds", "inf"}, 2},
      {{"--seconds", "0.00001"}, 2},
      {{"--seconds", "3600.1"}, 2},
      {{"--a4", "440.5"}, 2},
      {{"--a4", "0"}, 2},
      {{"--output", ""}, 2},
      {{"--output", path("nowhere/tone.wav")}, 1},
      {{"--output", path("folder.wav")}, 1},
      {{"--output", path("fifo.wav")}, 1},
  };
  for (const Row& row : rows) {
    std::map<std::string, std::string> options = {
        {"--string", "A3"}, {"--seconds", "0.1"}, {"--output", path("new.wav")}};
    options[row.changes[0]] = row.changes[1];
    std::vector<std::string> arguments = {"tone"};
    for (const auto& [name, value] : options) arguments.push_back(name + '=' + value);
    const Finished finished = runToEnd(endpin(arguments), 10s);
    const std::string what = row.changes[0] + ' ' + row.changes[1];
    EXPECT_EQ(finished.exitCode, row.exitCode) << what << ": " << finished.errors;
    EXPECT_EQ(std::count(finished.errors.begin(), finished.errors.end(), '\n'), 1) << what;
    EXPECT_EQ(names(), before) << what;
  }
  for (const char* missing : {"--string", "--seconds", "--output"}) {
    std::vector<std::string> arguments = {"tone"};
    for (const std::string option : {"--string=A3", "--seconds=0.1", "--output=new.wav"}) {
      if (!option.starts_with(missing)) arguments.push_back(option);
    }
    EXPECT_EQ(runToEnd(endpin(arguments), 10s).exitCode, 2) << missing;
  }
}

TEST_F(ToneCommand, AnInterruptedRunLeavesTheOldFile) {
  std::ofstream(path("tone.wav")) << "old";
  for (const int number : {SIGINT, SIGTERM}) {
    ChildProcess child(endpin({"tone", "--string=A3", "--seconds=3600", "--waveform=sine",
                               "--output=" + path("tone.wav")}));
    while (child.running() && names().size() < 2) std::this_thread::sleep_for(1ms);
    child.signal(number);
    EXPECT_EQ(child.waitFor(5s), 1) << child.errors();
    EXPECT_EQ(names(), std::vector<std::string>{"tone.wav"});
    std::ostringstream content;
    content << std::ifstream(path("tone.wav")).rdbuf();
    EXPECT_EQ(content.str(), "old");
  }
}

}  // namespace
}  // namespace endpin::testing
