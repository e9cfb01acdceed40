#include "cli/CommandLine.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <thread>

#include "adapters/cli11/ProgramError.h"
#include "adapters/cubeb/CubebOutput.h"
#include "adapters/posix/StopSignal.h"
#include "adapters/sndfile/WavWriter.h"
#include "calibration/StringFrequencies.h"
#include "calibration/TuningFork.h"

namespace endpin {
namespace {

constexpr std::size_t kFramesAtATime = 4096;

// Renders as the audio thread does, and writes what is heard left and right.
class ToneFile {
 public:
  explicit ToneFile(const std::string& path)
      : writer_(path, static_cast<int>(ToneSynthesizer::kSampleRate), 2) {}

  void append(ToneSynthesizer& synthesizer, std::size_t frames) {
    AudioOutputBuffer buffer{words_.data()};
    ToneSynthesizer::renderTone(&synthesizer, static_cast<std::uint32_t>(frames), {&buffer, 1});
    for (std::size_t i = 0; i < frames; ++i) {
      samples_[2 * i] = static_cast<std::int16_t>(words_[i] & 0xFFFFU);
      samples_[2 * i + 1] = static_cast<std::int16_t>(words_[i] >> 16U);
    }
    writer_.write(std::span(samples_).first(2 * frames));
  }

  void finish() { writer_.finish(); }

 private:
  WavWriter writer_;
  std::array<std::uint32_t, kFramesAtATime> words_{};
  std::array<std::int16_t, 2 * kFramesAtATime> samples_{};
};

void writeTone(const ToneOptions& options, const StopSignal& stop) {
  ToneSynthesizer synthesizer;
  const double frequency = stringFrequencies(options.a4)[options.string];
  synthesizer.toneFrequency = static_cast<float>(frequency);
  synthesizer.curTone = options.waveform;
  ToneFile file(options.output);
  for (std::uint64_t left = options.frames; left > 0;) {
    if (stop.raised())
      throw ProgramError(kExitFailure, options.output + ": interrupted, not written");
    const auto frames = static_cast<std::size_t>(std::min<std::uint64_t>(left, kFramesAtATime));
    file.append(synthesizer, frames);
    left -= frames;
  }
  file.finish();
}

// Throws ProgramError when no speaker asks for the tone.
void playTone(const ToneOptions& options, const StopSignal& stop) {
  using Clock = std::chrono::steady_clock;
  constexpr auto kSpeakerLimit = std::chrono::seconds(3);
  constexpr auto kFading = std::chrono::milliseconds(150);
  CubebOutput output;
  CalibrationOutlets nowhere;
  TuningFork fork(nowhere, output);
  fork.setupAudio();
  fork.synthesizer().curTone = options.waveform;
  fork.play(static_cast<int>(options.string) + 1, stringFrequencies(options.a4)[options.string],
            true);
  const auto limit = Clock::now() + kSpeakerLimit;
  while (!fork.isSounding() && !stop.waitUntil(Clock::now() + std::chrono::milliseconds(20))) {
    if (Clock::now() > limit) throw ProgramError(kExitFailure, "no speaker can be opened");
  }
  const std::chrono::duration<double> length(static_cast<double>(options.frames) /
                                             ToneSynthesizer::kSampleRate);
  const bool endless = options.frames == 0;
  stop.waitUntil(endless ? Clock::time_point::max()
                         : Clock::now() + std::chrono::duration_cast<Clock::duration>(length));
  fork.stopFreqPlay();
  std::this_thread::sleep_for(kFading);
}

}  // namespace

int runTone(const ToneOptions& options) {
  const StopSignal stop;
  try {
    if (options.output.empty()) {
      playTone(options, stop);
    } else {
      writeTone(options, stop);
    }
  } catch (const WavWriterError& error) {
    throw ProgramError(kExitFailure, error.what());
  }
  return 0;
}

}  // namespace endpin
