// Turns one block of samples into one frequency: a zero-padded 32768-point spectrum, plus itself
// decimated by 2 and by 3, and the highest bin of that sum.
//
// Owned and called by the listener. Thread: one at a time; in the application the main thread.
#pragma once

#include <kissfft/kiss_fftr.h>

#include <array>
#include <cstdint>
#include <vector>

namespace endpin {

// A bin of the spectrum and its frequency in hertz, as the estimate reports it.
struct SpectrumBin {
  std::uint32_t number;
  float frequency;
};

class PitchEstimator {
 public:
  static constexpr std::uint32_t kTransformSize = 32768;                // points
  static constexpr std::uint32_t kSpectrumLength = kTransformSize / 2;  // bins; Nyquist is left out

  // The whole estimate of `byteLength` bytes of samples taken at `sampleRate` hertz: a whole
  // multiple of the bin width (sampleRate / 32768), in hertz, 0 for silence. An odd byte drops.
  // Nothing but the transform's configuration is allocated.
  // `samples` holds at most 32768 values.
  float getFreqFromBuffer(const std::int16_t* samples, std::uint32_t byteLength, double sampleRate);

  // Fills `in_fft`, `out_fft` and the magnitudes. `totalSamples` is at most 32768, unchecked.
  void performFFT(const std::int16_t* samples, std::uint32_t totalSamples);

  // Fills the harmonic sum from the magnitudes.
  void addHarmonics();

  // The highest bin of the harmonic sum; the lowest of equals; 0 when nothing exceeds 0.
  [[nodiscard]] std::uint32_t findTopSpike() const;

  // One coefficient of a Hamming window over `total` samples.
  [[nodiscard]] static double hamming_window(std::int16_t n, std::int16_t total);

  // Windows the samples in place. The estimate does not use it: the transform sees the block as it
  // was captured.
  static void performWindow(std::int16_t* samples, std::uint32_t totalSamples);

  // Linear magnitudes and their harmonic sum: kSpectrumLength values each, owned by the estimator,
  // overwritten by the next estimate. Despite the name these are not decibels.
  double* freq_db() { return freq_db_.data(); }
  double* freq_db_harmonic() { return freq_db_harmonic_.data(); }

  // The frequency of a bin as the estimate reports it.
  [[nodiscard]] static float frequencyOfBin(std::uint32_t bin, double sampleRate);

  // The bins whose frequency lies from `lower` to `upper` hertz, both included, from the lowest: no
  // captured block is ever estimated to anything between two bins.
  [[nodiscard]] static std::vector<SpectrumBin> binsBetween(double lower, double upper);

 private:
  std::array<float, kTransformSize> in_fft{};
  std::array<kiss_fft_cpx, kTransformSize> out_fft{};  // the transform writes bins 0 to 16384
  std::array<double, kSpectrumLength> freq_db_{};
  std::array<double, kSpectrumLength> freq_db_harmonic_{};
  std::array<float, kSpectrumLength> wholeMagnitudes_{};  // scratch of addHarmonics
};

}  // namespace endpin
