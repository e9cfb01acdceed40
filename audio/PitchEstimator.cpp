#include "audio/PitchEstimator.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "audio/CaptureFormat.h"

namespace endpin {

float PitchEstimator::frequencyOfBin(std::uint32_t bin, double sampleRate) {
  constexpr double kPerPoint = 1.0 / kTransformSize;
  return static_cast<float>(static_cast<double>(static_cast<float>(bin)) * sampleRate * kPerPoint);
}

float PitchEstimator::getFreqFromBuffer(const std::int16_t* samples, std::uint32_t byteLength,
                                        double sampleRate) {
  performFFT(samples, byteLength >> 1);
  addHarmonics();
  return frequencyOfBin(findTopSpike(), sampleRate);
}

void PitchEstimator::performFFT(const std::int16_t* samples, std::uint32_t totalSamples) {
  // Only the padding needs clearing: everything else that an estimate reads, it writes before.
  std::copy_n(samples, totalSamples, in_fft.begin());
  std::fill(in_fft.begin() + totalSamples, in_fft.end(), 0.0F);

  kiss_fftr_cfg configuration = kiss_fftr_alloc(kTransformSize, 0, nullptr, nullptr);
  kiss_fftr(configuration, in_fft.data(), out_fft.data());
  std::free(configuration);

  constexpr double kScale = 1.0 / kSpectrumLength;
  for (std::uint32_t k = 0; k < kSpectrumLength; ++k) {
    const double r = out_fft[k].r;
    const double i = out_fft[k].i;
    freq_db_[k] = std::sqrt(r * r + i * i) * kScale;
  }
}

// Each bin j receives the strongest magnitude of the bins that round to j when divided by 2, and
// again by 3, without its fraction; the fundamental itself keeps its fraction. Rounding halves away
// from zero gives the groups {2j-1, 2j} and {3j-1, 3j, 3j+1}, the first group lacking the bins
// below zero. The last group of either decimation (j = 8192 and j = 5461) stays out on purpose.
void PitchEstimator::addHarmonics() {
  constexpr std::uint32_t kHalf = kSpectrumLength / 2;
  constexpr std::uint32_t kThird = (kSpectrumLength - 1) / 3;
  // Dropping the fraction commutes with the maximum, so it is done once for all bins; the whole
  // numbers (at most 65536) are exact in single precision, where twice as many fit a register.
  auto& whole = wholeMagnitudes_;
  for (std::uint32_t k = 0; k < kSpectrumLength; ++k) {
    whole[k] = static_cast<float>(static_cast<std::int32_t>(freq_db_[k]));
  }

  freq_db_harmonic_[0] = freq_db_[0] + static_cast<double>(whole[0]);
  for (std::uint32_t j = 1; j < kHalf; ++j) {
    freq_db_harmonic_[j] =
        freq_db_[j] + static_cast<double>(std::max(whole[2 * j - 1], whole[2 * j]));
  }
  std::copy(freq_db_.begin() + kHalf, freq_db_.end(), freq_db_harmonic_.begin() + kHalf);

  freq_db_harmonic_[0] += static_cast<double>(std::max(whole[0], whole[1]));
  for (std::uint32_t j = 1; j < kThird; ++j) {
    const float* group = &whole[3 * j - 1];
    freq_db_harmonic_[j] += static_cast<double>(std::max(std::max(group[0], group[1]), group[2]));
  }
}

// The maximum first, then the first bin that holds it: two passes that vectorise, where a search
// that carries the index does not.
std::uint32_t PitchEstimator::findTopSpike() const {
  double best = 0.0;
  for (const double value : freq_db_harmonic_) best = value > best ? value : best;
  if (best == 0.0) return 0;
  const auto* spike = std::find(freq_db_harmonic_.begin(), freq_db_harmonic_.end(), best);
  return static_cast<std::uint32_t>(spike - freq_db_harmonic_.begin());
}

std::vector<SpectrumBin> PitchEstimator::binsBetween(double lower, double upper) {
  std::vector<SpectrumBin> bins;
  for (std::uint32_t bin = 0; bin < kSpectrumLength; ++bin) {
    const float frequency = frequencyOfBin(bin, kCaptureRate);
    const auto hertz = static_cast<double>(frequency);
    if (lower <= hertz && hertz <= upper) bins.push_back({bin, frequency});
  }
  return bins;
}

double PitchEstimator::hamming_window(std::int16_t n, std::int16_t total) {
  constexpr double kTwoPi = 6.283185308;  // ten digits, kept as they are
  const auto last = static_cast<double>(std::int32_t{total} - 1);
  return std::fma(std::cos((kTwoPi / last) * n), -0.46, 0.54);
}

void PitchEstimator::performWindow(std::int16_t* samples, std::uint32_t totalSamples) {
  for (std::uint32_t i = 0; i < totalSamples; ++i) {
    const double w =
        hamming_window(static_cast<std::int16_t>(i), static_cast<std::int16_t>(totalSamples));
    samples[i] = static_cast<std::int16_t>(w * samples[i]);
  }
}

}  // namespace endpin
