#include "audio/FineSpectrum.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <numeric>

namespace endpin {
namespace {

// How far a line stands out of the noise, 12 dB, and above the rounding of 16 bits, where the
// strongest line is all there is.
constexpr double kLeastAboveFloor = 16.0;
constexpr double kLeastOfStrongest = 1e-5;

}  // namespace

FineSpectrum::FineSpectrum()
    : configuration_(
          kiss_fftr_alloc(static_cast<int>(kTransformSize), /*inverse=*/0, nullptr, nullptr)) {
  for (std::size_t i = 0; i < kBlockSamples; ++i) {
    const double turns = (static_cast<double>(i) + 0.5) / kBlockSamples;
    window_[i] = static_cast<float>(0.5 - 0.5 * std::cos(2.0 * std::numbers::pi * turns));
  }
}

void FineSpectrum::analyse(std::span<const std::int16_t> samples) {
  samples = samples.first(std::min(samples.size(), kBlockSamples));
  const auto sum = std::accumulate(samples.begin(), samples.end(), std::int64_t{0});
  const double mean =
      samples.empty() ? 0.0 : static_cast<double>(sum) / static_cast<double>(samples.size());
  points_.fill(0.0F);
  for (std::size_t i = 0; i < samples.size(); ++i) {
    points_[i] = static_cast<float>(samples[i] - mean) * window_[i];
  }
  transform();
}

void FineSpectrum::transform() {
  kiss_fftr(configuration_.get(), points_.data(), transformed_.data());
  for (std::size_t k = 0; k < power_.size(); ++k) {
    power_[k] = transformed_[k].r * transformed_[k].r + transformed_[k].i * transformed_[k].i;
  }
}

std::span<const SpectralLine> FineSpectrum::findLines() {
  measureFloor();
  const double least = kLeastOfStrongest * powerOf(strongestBin(kFirstLineBin, kLastLineBin));
  std::size_t count = 0;
  for (std::size_t bin = kFirstLineBin; bin <= kLastLineBin; ++bin) {
    if (!isPeak(bin) || powerOf(bin) < least || !isHighestAround(bin)) continue;
    if (powerOf(bin) >= kLeastAboveFloor * floorAt(bin)) lines_[count++] = lineAt(bin);
  }
  return std::span(lines_).first(count);
}

// A median forgets the lines themselves as long as they fill less than half of the segment.
void FineSpectrum::measureFloor() {
  std::array<float, kFloorSegment> sorted;
  constexpr std::size_t kMiddle = kFloorSegment / 2;
  for (std::size_t segment = 0; segment < kFloorSegments; ++segment) {
    std::copy_n(&power_[segment * kFloorSegment], kFloorSegment, sorted.begin());
    const auto upper = sorted.begin() + kMiddle;
    std::nth_element(sorted.begin(), upper, sorted.end());
    floor_[segment] = (static_cast<double>(*upper) +
                       static_cast<double>(*std::max_element(sorted.begin(), upper))) /
                      2.0;
  }
}

// Straight lines between the middles of the segments. Lines begin above the first middle.
double FineSpectrum::floorAt(std::size_t bin) const {
  constexpr double kFirstMiddle = (kFloorSegment - 1) / 2.0;
  const double place = (static_cast<double>(bin) - kFirstMiddle) / kFloorSegment;
  const auto segment = static_cast<std::size_t>(place);
  const double rise = floor_[segment + 1] - floor_[segment];
  return floor_[segment] + rise * (place - static_cast<double>(segment));
}

bool FineSpectrum::isPeak(std::size_t bin) const {
  return power_[bin] > power_[bin - 1] && power_[bin] >= power_[bin + 1];
}

// Of equals the lowest, so that two lines never lie closer than the side lobes reach.
bool FineSpectrum::isHighestAround(std::size_t bin) const {
  const float* here = &power_[bin];
  return *std::max_element(here - kSideLobeBins, here) < *here &&
         *std::max_element(here + 1, here + kSideLobeBins + 1) <= *here;
}

std::size_t FineSpectrum::strongestBin(std::size_t first, std::size_t last) const {
  const auto* strongest = std::max_element(power_.data() + first, power_.data() + last + 1);
  return static_cast<std::size_t>(strongest - power_.data());
}

std::size_t FineSpectrum::strongestPeakNear(double hertz, double reach) const {
  const Range range = binsNear(hertz, reach);
  std::size_t best = 0;
  for (std::size_t bin = range.first; bin <= range.last; ++bin) {
    if (isPeak(bin) && (best == 0 || power_[bin] > power_[best])) best = bin;
  }
  return best;
}

// The vertex of the parabola through the logarithms of three bins. Only a bin at the end of a range
// has a stronger neighbour; its line is taken to lie half a bin away at most.
SpectralLine FineSpectrum::lineAt(std::size_t bin) const {
  constexpr double kLeast = 1e-9;  // a bin may be 0
  const double below = std::log(std::max(powerOf(bin - 1) / powerOf(bin), kLeast));
  const double above = std::log(std::max(powerOf(bin + 1) / powerOf(bin), kLeast));
  const double bend = below + above;
  const double shift = bend < 0.0 ? std::clamp(0.5 * (below - above) / bend, -0.5, 0.5) : 0.0;
  const double power = powerOf(bin) * std::exp(-0.25 * (below - above) * shift);
  return {(static_cast<double>(bin) + shift) * kBinWidth, std::sqrt(std::sqrt(power))};
}

double FineSpectrum::powerBetween(std::size_t first, std::size_t last) const {
  return std::accumulate(power_.data() + first, power_.data() + last + 1, 0.0);
}

double FineSpectrum::powerNear(double hertz, double reach) const {
  const Range range = binsNear(hertz, reach);
  return powerBetween(range.first, range.last);
}

// Never the first or the last bin, which have no neighbour on one side.
FineSpectrum::Range FineSpectrum::binsNear(double hertz, double reach) {
  const double first = std::ceil((hertz - reach) / kBinWidth);
  const double last = std::floor((hertz + reach) / kBinWidth);
  return {static_cast<std::size_t>(std::max(first, 1.0)),
          static_cast<std::size_t>(std::clamp(last, 0.0, kTransformSize / 2.0 - 1))};
}

}  // namespace endpin
