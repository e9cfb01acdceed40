#include "tests/soak/Cellist.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "adapters/capture/CaptureFormat.h"

namespace endpin::soak {
namespace {

constexpr int kBowHarmonics = 12;  // the 12th of the highest A3 still lies below half the rate
constexpr int kThinHarmonics = 3;

}  // namespace

Cellist::Cellist() : bow_(waveOf(kBowHarmonics)), harmonic_(waveOf(kThinHarmonics)) {}

// Harmonics that fall like 1/k, at level 1.
Cellist::Wave Cellist::waveOf(int harmonics) {
  Wave wave{};
  double power = 0;
  for (int k = 1; k <= harmonics; ++k) power += 0.5 / (k * k);
  for (std::size_t i = 0; i <= kPoints; ++i) {
    const double turn = 2 * std::numbers::pi * static_cast<double>(i) / kPoints;
    double sum = 0;
    for (int k = 1; k <= harmonics; ++k) sum += std::sin(k * turn) / k;
    wave[i] = static_cast<float>(sum / std::sqrt(power));
  }
  return wave;
}

void Cellist::play(const Passage& passage) {
  passage_ = passage;
  step_ = passage.frequency / kCaptureRate;
  bend_ = std::pow(passage.glide, 1.0 / kCaptureRate);
}

void Cellist::fill(std::span<std::int16_t> samples) {
  for (std::int16_t& sample : samples) {
    double value = 0;
    switch (passage_.kind) {
      case Passage::Kind::Silence:
        break;
      case Passage::Kind::Noise:
        value = nextNoise();
        break;
      case Passage::Kind::Bow:
        value = nextOf(bow_);
        break;
      case Passage::Kind::Harmonic:
        value = nextOf(harmonic_);
        break;
    }
    const double scaled = std::clamp(value * passage_.level * 32768.0, -32768.0, 32767.0);
    sample = static_cast<std::int16_t>(std::lrint(scaled));
  }
}

double Cellist::nextOf(const Wave& wave) {
  phase_ += step_;
  phase_ -= std::floor(phase_);
  step_ *= bend_;
  const double place = phase_ * kPoints;
  const auto left = static_cast<std::size_t>(place);
  const double part = place - static_cast<double>(left);
  return wave[left] + part * (wave[left + 1] - wave[left]);
}

// Even, of level 1.
double Cellist::nextNoise() {
  return hiss_.between(-std::numbers::sqrt3, std::numbers::sqrt3);
}

}  // namespace endpin::soak
