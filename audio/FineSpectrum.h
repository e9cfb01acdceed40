// The power spectrum of one block, and the lines that stand out of it: what the fine estimator
// reads its pitch from. A Hann window keeps neighbouring partials apart, twice as many points as
// samples let a parabola through three bins find a line to a few thousandths of a hertz.
//
// Owned and called by the fine estimator. Thread: one at a time; in the application the main
// thread. Nothing is allocated after construction, and nothing fails. The cosine of the window and
// the logarithms and the exponential of `lineAt` are the only functions that a mathematical library
// may round in its own way: by a last place of a double, where the spectrum itself is single
// precision.
#pragma once

#include <kissfft/kiss_fftr.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <span>

#include "audio/CaptureFormat.h"

namespace endpin {

// A partial of something that sounds.
struct SpectralLine {
  double frequency = 0;  // hertz
  double weight = 0;     // fourth root of its power: a loud partial counts more, but not for all
};

class FineSpectrum {
 public:
  static constexpr std::size_t kTransformSize = 8192;  // points: the block, and as many zeros
  static constexpr double kBinWidth = kCaptureRate / kTransformSize;  // hertz, 0.857

  // Bins whose middle lies between 40 and 1300 Hz. Below there is only rumble; above, vibrato parts
  // the lines.
  static constexpr std::size_t kFirstLineBin = 47;
  static constexpr std::size_t kLastLineBin = 1517;
  // The last one below 3450 Hz, where the resampler's slope begins.
  static constexpr std::size_t kLastBin = 4026;

  FineSpectrum();

  // Takes the first 4096 of these samples, without their mean; missing ones are silence.
  void analyse(std::span<const std::int16_t> samples);

  // Of the last block, in order of frequency. Valid until the next one.
  [[nodiscard]] std::span<const SpectralLine> findLines();

  // The strongest bin, of equals the lowest; both ends included.
  [[nodiscard]] std::size_t strongestBin(std::size_t first, std::size_t last) const;
  // The strongest local maximum whose bin's middle lies within `reach` hertz; 0 for none.
  [[nodiscard]] std::size_t strongestPeakNear(double hertz, double reach) const;
  // The line whose highest bin this is. Neither end of the spectrum.
  [[nodiscard]] SpectralLine lineAt(std::size_t bin) const;

  [[nodiscard]] double powerOf(std::size_t bin) const { return static_cast<double>(power_[bin]); }
  // The sum over bins; both ends included.
  [[nodiscard]] double powerBetween(std::size_t first, std::size_t last) const;
  // The sum over the bins whose middle lies within `reach` hertz.
  [[nodiscard]] double powerNear(double hertz, double reach) const;

 private:
  static constexpr std::size_t kSideLobeBins = 14;   // 12 Hz: the window's side lobes end there
  static constexpr std::size_t kFloorSegment = 64;   // bins that share a median
  static constexpr std::size_t kFloorSegments = 25;  // up to the one after the last line's
  // Lines are further apart than the reach of the side lobes.
  static constexpr std::size_t kMostLines =
      (kLastLineBin - kFirstLineBin) / (kSideLobeBins + 1) + 1;

  struct Range {
    std::size_t first;
    std::size_t last;
  };
  static Range binsNear(double hertz, double reach);

  void transform();
  void measureFloor();
  [[nodiscard]] double floorAt(std::size_t bin) const;
  [[nodiscard]] bool isPeak(std::size_t bin) const;
  [[nodiscard]] bool isHighestAround(std::size_t bin) const;

  struct Free {
    void operator()(kiss_fftr_cfg configuration) const { std::free(configuration); }
  };
  std::unique_ptr<std::remove_pointer_t<kiss_fftr_cfg>, Free> configuration_;
  std::array<float, kBlockSamples> window_;
  std::array<float, kTransformSize> points_{};  // the second half stays 0
  std::array<kiss_fft_cpx, kTransformSize / 2 + 1> transformed_{};
  std::array<float, kTransformSize / 2 + 1> power_{};
  std::array<double, kFloorSegments> floor_{};  // medians of the noise between the lines
  std::array<SpectralLine, kMostLines> lines_;
};

}  // namespace endpin
