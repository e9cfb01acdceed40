// Makes the reference tone sample by sample: a sine blended with a brighter waveform.
//
// The main thread sets frequency and waveform; the audio render thread calls renderTone, which owns
// everything else here. Neither waits for the other.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <span>

#include "ports/AudioOutput.h"

namespace endpin {

class ToneSynthesizer {
 public:
  static constexpr double kSampleRate = 44100.0;  // hertz

  enum Waveform : std::uint64_t { Sine = 0, Triangle = 1, Sawtooth = 2, Square = 3 };

  // Render callback: `userData` is the synthesizer. Fills every buffer with `frames` frames, the
  // same sample left and right, and returns 0. The oscillators go on where the last call left them.
  // Thread: audio render. Realtime-safe: yes.
  static std::int32_t renderTone(void* userData, std::uint32_t frames,
                                 std::span<AudioOutputBuffer> buffers);

  // Written by the main thread, read at every sample.
  std::atomic<float> toneFrequency{440.0F};  // hertz
  std::atomic<std::uint64_t> curTone{Sine};  // a Waveform; any other value is a pure sine

 private:
  // Thread: audio render.
  struct Oscillators {
    double tonePhase = 0.0;           // radians, at most 2 pi
    double tonePhaseIncrement = 0.0;  // cycles per sample
    double triangleValue = 0.0;       // -1 to 1
    float triangleDirection = 1.0F;   // slope of the triangle, +1 or -1
    double sawtoothValue = 0.0;       // above -1, up to 1
    double squareValue = 0.0;         // +1 or -1 once running
  };

  // A few samples are made in two sweeps: first the sines, then everything that follows from them.
  // The call to `sin` costs every value that a register holds, so it is kept apart.
  static constexpr std::size_t kSweep = 64;
  struct Sweep {
    std::array<double, kSweep> sine;
    std::array<double, kSweep> increment;
    std::array<double, kSweep> nextPhase;
  };

  void render(std::uint32_t frames, std::uint32_t* output);
  void sweepPhase(std::size_t frames, Sweep& sweep);
  void sweepWaveforms(std::size_t frames, const Sweep& sweep, std::uint32_t* output);

  static constexpr float kHarmonicPercent = 50.0F;  // share of the waveform in the blend

  Oscillators oscillators_;
};

}  // namespace endpin
