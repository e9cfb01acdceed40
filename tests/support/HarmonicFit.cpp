#include "tests/support/HarmonicFit.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <numbers>

namespace endpin::testing {
namespace {

constexpr double kTwoPi = 2.0 * std::numbers::pi;

struct Moments {
  std::complex<double> value;  // Sum of w(n) x(n) exp(-i step n): the harmonic as it is.
  std::complex<double> slope;  // The same with a factor n: how its phase drifts.
};

// Both sums over `count` samples from `begin`, under a Hann window, n counted from the middle.
Moments demodulate(const float* begin, size_t count, double step) {
  const double middle = static_cast<double>(count - 1) / 2.0;
  const std::complex<double> turn = std::polar(1.0, -step);
  const std::complex<double> windowTurn = std::polar(1.0, kTwoPi / static_cast<double>(count));
  std::complex<double> phasor = std::polar(1.0, step * middle);
  std::complex<double> window = std::polar(1.0, kTwoPi * 0.5 / static_cast<double>(count));
  Moments sums;
  for (size_t n = 0; n < count; ++n) {
    const std::complex<double> term = phasor * ((1.0 - window.real()) * begin[n]);
    sums.value += term;
    sums.slope += term * (static_cast<double>(n) - middle);
    phasor *= turn;
    window *= windowTurn;
  }
  return sums;
}

// The mean square distance from the middle under a Hann window of `count` samples.
double spread(size_t count) {
  const auto length = static_cast<double>(count);
  return length * length * (1.0 / 12.0 - 1.0 / (2.0 * std::numbers::pi * std::numbers::pi));
}

// One Gauss-Newton step. Over many periods the harmonics are orthogonal to each other, so that the
// correction of the common fundamental is a weighted mean of their phase drifts.
double improved(const Sound& sound, size_t count, int harmonicCount, double fundamental) {
  const float* begin = sound.samples.data() + (sound.samples.size() - count) / 2;
  double drift = 0.0;
  double weight = 0.0;
  for (int k = 1; k <= harmonicCount && k * fundamental < 0.45 * sound.rate; ++k) {
    const Moments m = demodulate(begin, count, kTwoPi * k * fundamental / sound.rate);
    drift += k * std::imag(std::conj(m.value) * m.slope);
    weight += static_cast<double>(k) * k * std::norm(m.value);
  }
  if (weight == 0.0) return fundamental;
  return fundamental + drift / (weight * spread(count)) * sound.rate / kTwoPi;
}

}  // namespace

// A window of T seconds pulls harmonic k in only while it is off by less than about 1/T, so the
// window and the number of harmonics grow together as the fundamental becomes known.
double fundamentalOf(const Sound& sound, double guess) {
  struct Stage {
    double seconds;
    int harmonicCount;
  };
  double fundamental = guess;
  for (const Stage stage : {Stage{0.25, 3}, {0.5, 5}, {1.0, 8}, {2.0, 14}, {60.0, 20}}) {
    const size_t count =
        std::min(static_cast<size_t>(stage.seconds * sound.rate), sound.samples.size());
    for (int pass = 0; pass < 3; ++pass) {
      fundamental = improved(sound, count, stage.harmonicCount, fundamental);
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
