// endpin-web-bits FOLDER: the native side of the comparison with the page's modules. Writes what
// was asked and what this processor answers, little-endian:
//   blocks.bin  for each block its length in bytes (uint32), 4096 samples (int16), and the two
//               estimators' answers (float)
//   tones.bin   for each stretch of tone its frequency (float), waveform and frames (uint32), and
//               as many frames (uint32)
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "audio/CaptureFormat.h"
#include "audio/FineEstimator.h"
#include "audio/PitchEstimator.h"
#include "calibration/ToneSynthesizer.h"
#include "tests/support/SampledCello.h"
#include "tests/support/Tone.h"

namespace endpin::testing {
namespace {

struct Block {
  std::uint32_t byteLength = kBlockBytes;
  std::vector<std::int16_t> samples = std::vector<std::int16_t>(kBlockSamples);
};

struct Stretch {
  float frequency;
  std::uint32_t waveform;
  std::uint32_t frames;
};

template <class T>
void put(std::ofstream& file, const T& value) {
  file.write(reinterpret_cast<const char*>(&value), sizeof value);
}

// Whole blocks of a sound at the capture rate.
void append(std::vector<Block>& blocks, const Sound& sound) {
  const auto samples = toS16(sound);
  for (std::size_t start = 0; start + kBlockSamples <= samples.size(); start += kBlockSamples) {
    const auto first = samples.begin() + static_cast<std::ptrdiff_t>(start);
    blocks.push_back({.samples = {first, first + kBlockSamples}});
  }
}

void appendRandom(std::vector<Block>& blocks) {
  std::mt19937 random(1);
  for (const int most : {1, 30, 1000, 32767}) {
    for (int i = 0; i < 30; ++i) {
      Block& block = blocks.emplace_back();
      for (auto& sample : block.samples) {
        sample = static_cast<std::int16_t>(static_cast<int>(random() % (2U * most + 1U)) - most);
      }
    }
  }
}

void appendStrings(std::vector<Block>& blocks) {
  for (const CelloString& string : kCelloStrings) {
    for (double cents = -60; cents <= 60; cents += 7.5) {
      const Sound tone = bowedTone(kCaptureRate, 1.2, raisedByCents(string.frequency, cents), 0.05);
      append(blocks, mixed(tone, noise(kCaptureRate, 1.2, 0.002)));
      append(blocks, throughSmallMicrophone(tone, 200));
    }
    append(blocks, resampled(sampledCello({.midiNote = string.midiNote,
                                           .frequency = string.frequency,
                                           .seconds = 2.5}),
                             kCaptureRate));
  }
}

void appendEdges(std::vector<Block>& blocks) {
  for (const int value : {0, 1, -1, 12345, 32767, -32768}) {
    blocks.emplace_back().samples.assign(kBlockSamples, static_cast<std::int16_t>(value));
  }
  // Full scale up and down. Not at half the rate: no bin holds that, and what a transform leaves in
  // the others is its rounding, which differs between two builds of the library.
  for (const std::size_t period : {3U, 32U, 107U}) {
    Block& block = blocks.emplace_back();
    for (std::size_t i = 0; i < kBlockSamples; ++i) {
      block.samples[i] = static_cast<std::int16_t>(i % period < period / 2 ? 32767 : -32768);
    }
  }
  for (const std::size_t place : {0U, 1U, 2047U, 4095U}) {
    for (const int click : {1, 32767, -32768}) {
      blocks.emplace_back().samples[place] = static_cast<std::int16_t>(click);
    }
  }
  for (const std::uint32_t byteLength : {0U, 1U, 2U, 4095U, 8191U}) {
    Block block = blocks.front();
    block.byteLength = byteLength;
    blocks.push_back(block);
  }
}

std::vector<Stretch> stretches() {
  constexpr float kNone = 0.0F;
  std::vector<Stretch> all;
  for (std::uint32_t waveform = 0; waveform <= 4; ++waveform) {  // the last one is none
    for (const float frequency : {65.406391F, 97.998859F, 146.832384F, 220.0F, 233.081881F, 27.5F,
                                  439.99F, 1000.0F, kNone, 11025.0F, 22050.0F, 1e6F}) {
      all.push_back({frequency, waveform, 22050});
      all.push_back({frequency * 1.01F, waveform, 63});  // odd lengths: between two sweeps
    }
  }
  all.push_back({std::nanf(""), ToneSynthesizer::Sine, 64});
  return all;
}

void writeBlocks(std::ofstream file) {
  std::vector<Block> blocks;
  appendRandom(blocks);
  appendStrings(blocks);
  appendEdges(blocks);
  static PitchEstimator estimator;
  static FineEstimator fineEstimator;
  for (const Block& block : blocks) {
    put(file, block.byteLength);
    for (const std::int16_t sample : block.samples) put(file, sample);
    put(file, estimator.getFreqFromBuffer(block.samples.data(), block.byteLength, kCaptureRate));
    put(file, fineEstimator.estimate(block.samples.data(), block.byteLength));
  }
}

void writeTones(std::ofstream file) {
  ToneSynthesizer synthesizer;
  for (const Stretch& stretch : stretches()) {
    put(file, stretch);
    synthesizer.toneFrequency = stretch.frequency;
    synthesizer.curTone = stretch.waveform;
    std::vector<std::uint32_t> frames(stretch.frames);
    AudioOutputBuffer buffer{.mData = frames.data()};
    ToneSynthesizer::renderTone(&synthesizer, stretch.frames, {&buffer, 1});
    for (const std::uint32_t frame : frames) put(file, frame);
  }
}

}  // namespace
}  // namespace endpin::testing

int main(int argc, char** argv) {
  if (argc != 2) return EXIT_FAILURE;
  const std::string folder = argv[1];
  endpin::testing::writeBlocks(std::ofstream(folder + "/blocks.bin", std::ios::binary));
  endpin::testing::writeTones(std::ofstream(folder + "/tones.bin", std::ios::binary));
}
