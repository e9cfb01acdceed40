#include "tests/support/HarmonicFit.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <numbers>

namespace endpin::testing {
namespace {

constexpr double kPi = std::numbers::pi;

// One Gauss-Newton step on `count` samples from the middle. Over many periods the harmonics are
// orthogonal, so the correction of the fundamental is a weighted mean of their phase drifts.
double improved(const Sound& sound, std::size_t count, int harmonicCount, double fundamental) {
  const float* begin = sound.samples.data() + (sound.samples.size() - count) / 2;
  const double length = static_cast<double>(count);
  const double middle = (length - 1.0) / 2.0;
  std::vector<double> hann(count);
  for (std::size_t n = 0; n < count; ++n) {
    hann[n] = 1.0 + std::cos(2.0 * kPi * (static_cast<double>(n) - middle) / length);
  }
  double drift = 0.0;
  double weight = 0.0;
  for (int k = 1; k <= harmonicCount && k * fundamental < 0.45 * sound.rate; ++k) {
    const double step = 2.0 * kPi * k * fundamental / sound.rate;
    const std::complex<double> turn = std::polar(1.0, -step);
    std::complex<double> phasor = std::polar(1.0, step * middle);
    std::complex<double> value;  // the harmonic as it is
    std::complex<double> slope;  // how its phase drifts
    for (std::size_t n = 0; n < count; ++n, phasor *= turn) {
      const std::complex<double> term = phasor * (hann[n] * begin[n]);
      value += term;
      slope += term * (static_cast<double>(n) - middle);
    }
    drift += k * std::imag(std::conj(value) * slope);
    weight += static_cast<double>(k) * k * std::norm(value);
  }
  if (weight == 0.0) return fundamental;
  const double spread = length * length * (1.0 / 12.0 - 1.0 / (2.0 * kPi * kPi));  // of the window
  return fundamental + drift / (weight * spread) * sound.rate / (2.0 * kPi);
}

}  // namespace

// A window of T seconds pulls harmonic k in only while it is off by less than about 1/T, so the
// window and the number of harmonics grow together as the fundamental becomes known.
double fundamentalOf(const Sound& sound, double guess) {
  double fundamental = guess;
  for (const auto& [seconds, harmonicCount] :
       {std::pair(0.25, 3), {0.5, 5}, {1.0, 8}, {2.0, 14}, {60.0, 20}}) {
    const auto wanted = static_cast<std::size_t>(seconds * sound.rate);
    for (int pass = 0; pass < 3; ++pass) {
      fundamental =
          improved(sound, std::min(wanted, sound.samples.size()), harmonicCount, fundamental);
    }
  }
  return fundamental;
}

double centsBetween(double frequency, double reference) {
  return 1200.0 * std::log2(frequency / reference);
}

double raisedByCents(double frequency, double cents) {
  return frequency * std::exp2(cents / 1200.0);
}

}  // namespace endpin::testing
